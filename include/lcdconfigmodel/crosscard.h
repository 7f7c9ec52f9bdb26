#pragma once

// Records of the device cross-card file: per card model, whether its
// connectors can be grouped (on the card and across the device) and, per
// device mode, which connectors of which slots form each group.

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

    LCD_RECORD_FIELDS(s_CrossConnectorGroup, moduleId, slot, position, isMain, convertTimingPriority)
};

// One connector group with its members in file order.
struct s_CrossConnectorGroups {
    qint32 groupId = 0;
    std::vector<s_CrossConnectorGroup> connectors;

    LCD_RECORD_FIELDS(s_CrossConnectorGroups, groupId, connectors)
};

// The connector groups of one device mode, in file order.
struct s_CrossDeviceMode {
    qint32 value = 0; // device mode number
    std::vector<s_CrossConnectorGroups> groups;

    LCD_RECORD_FIELDS(s_CrossDeviceMode, value, groups)
};

// One card model. A fresh record has 0, 0 in both pairs; a file that leaves
// out "InterfaceGroup" or "DeviceInterfaceGroup" gives 1, 1 (and offset 100).
struct s_CrossSubcard {
    qint32 moduleId = 0;                      // card model id
    s_SupportInfo interfaceGroup{0, 0};       // grouping on the card
    s_SupportInfo deviceInterfaceGroup{0, 0}; // grouping across the device
    qint32 offset = 100;                      // numbering offset of the device-level group
    std::vector<s_CrossDeviceMode> deviceModes;

    LCD_RECORD_FIELDS(s_CrossSubcard, moduleId, interfaceGroup, deviceInterfaceGroup, offset, deviceModes)
};

// The whole cross-card file, one record per "Subcard" in file order.
using s_CrossSubcards = std::vector<s_CrossSubcard>;

} // namespace CrossCard
} // namespace ConfigModel
} // namespace LCD
