#pragma once

// Records of the device cross-card file: per card model, whether its
// connectors can be grouped (on the card and across the device) and, per
// device mode, which connectors of which slots form each group.

#include <tuple>
#include <vector>

#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace CrossCard {

// One member connector of a connector group.
struct s_CrossConnectorGroup {
    qint32 moduleId = 0;              // card model id
    qint32 slot = 0;                  // slot number
    qint32 position = 0;              // connector position on the card
    qint32 isMain = 0;                // 1 for the group's main connector
    qint32 convertTimingPriority = 0; // order in timing conversion

    bool operator==(const s_CrossConnectorGroup& o) const {
        return std::tie(moduleId, slot, position, isMain, convertTimingPriority) ==
               std::tie(o.moduleId, o.slot, o.position, o.isMain, o.convertTimingPriority);
    }
    bool operator!=(const s_CrossConnectorGroup& o) const { return !(*this == o); }
};

// One connector group with its members in file order.
struct s_CrossConnectorGroups {
    qint32 groupId = 0;
    std::vector<s_CrossConnectorGroup> connectors;

    bool operator==(const s_CrossConnectorGroups& o) const {
        return groupId == o.groupId && connectors == o.connectors;
    }
    bool operator!=(const s_CrossConnectorGroups& o) const { return !(*this == o); }
};

// The connector groups of one device mode, in file order.
struct s_CrossDeviceMode {
    qint32 value = 0; // device mode number
    std::vector<s_CrossConnectorGroups> groups;

    bool operator==(const s_CrossDeviceMode& o) const { return value == o.value && groups == o.groups; }
    bool operator!=(const s_CrossDeviceMode& o) const { return !(*this == o); }
};

// One card model. A fresh record has 0, 0 in both pairs; a file that leaves
// out "InterfaceGroup" or "DeviceInterfaceGroup" gives 1, 1 (and offset 100).
struct s_CrossSubcard {
    qint32 moduleId = 0;                      // card model id
    s_SupportInfo interfaceGroup{0, 0};       // grouping on the card
    s_SupportInfo deviceInterfaceGroup{0, 0}; // grouping across the device
    qint32 offset = 100;                      // numbering offset of the device-level group
    std::vector<s_CrossDeviceMode> deviceModes;

    bool operator==(const s_CrossSubcard& o) const {
        return std::tie(moduleId, interfaceGroup, deviceInterfaceGroup, offset, deviceModes) ==
               std::tie(o.moduleId, o.interfaceGroup, o.deviceInterfaceGroup, o.offset, o.deviceModes);
    }
    bool operator!=(const s_CrossSubcard& o) const { return !(*this == o); }
};

// The whole cross-card file, one record per "Subcard" in file order.
using s_CrossSubcards = std::vector<s_CrossSubcard>;

} // namespace CrossCard
} // namespace ConfigModel
} // namespace LCD
