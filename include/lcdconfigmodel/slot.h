#pragma once

// Records of the device slot file: the chassis of one device model, its slot
// groups, the slots of each group, the card models a group accepts and the
// cards placed in mixed-card slots.
//
// Several records have a field named `slots`; include this header through
// lcdconfigmodel.h, which hides Qt's `slots` keyword while it is read. A host
// that keeps Qt's keywords names the field with the keyword macro pushed away
// (#pragma push_macro("slots"), #undef slots, ..., #pragma pop_macro("slots")).

#include <string>
#include <vector>

#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace Slot {

// One connector group of a card placed in a mixed-card slot.
struct s_ConnectorGroup {
    qint32 value = 0;      // group id
    std::string groupName; // UTF-8

    LCD_RECORD_FIELDS(s_ConnectorGroup, value, groupName)
};

// A card placed in a mixed-card slot, with its connector groups in file order.
struct s_InlineSubcard {
    qint32 moduleId = 0; // card model id
    std::vector<s_ConnectorGroup> connectorGroups;

    LCD_RECORD_FIELDS(s_InlineSubcard, moduleId, connectorGroups)
};

// One numbered slot; `subcards` is filled only in the mixed-card group.
struct s_Slot {
    qint32 index = 0;
    std::vector<s_InlineSubcard> subcards;

    LCD_RECORD_FIELDS(s_Slot, index, subcards)
};

// A card model that a slot group accepts.
struct s_Subcard {
    qint32 moduleId = 0;

    LCD_RECORD_FIELDS(s_Subcard, moduleId)
};

// One slot group. A group the file does not describe (or describes without
// the cards it accepts, see the slot parser) is left at these defaults.
struct s_SlotAttr {
    std::string silkScreenName; // label printed on the chassis, UTF-8
    qint32 pluginDirection = 0;
    qint32 interfaceType = 0;
    std::vector<s_Slot> slots;       // in file order
    std::vector<s_Subcard> subcards; // accepted card models, in file order

    LCD_RECORD_FIELDS(s_SlotAttr, silkScreenName, pluginDirection, interfaceType, slots, subcards)
};

// The slot groups, in the order the device queries walk them.
struct s_Slots {
    s_SlotAttr mainControlCardSlots; // "MainControlCardSlots"
    s_SlotAttr mixCardSlots;         // "MixCardSlots"
    s_SlotAttr inputCardSlots;       // "InputCardSlots"
    s_SlotAttr outputCardSlots;      // "OutputCardSlots"
    s_SlotAttr mvrCardSlots;         // "MVRCardSlots"
    s_SlotAttr auxCardSlots;         // "AUXCardSlots"
    s_SlotAttr expCardSlots;         // "EXPCardSlots"

    LCD_RECORD_FIELDS(s_Slots, mainControlCardSlots, mixCardSlots, inputCardSlots, outputCardSlots,
                      mvrCardSlots, auxCardSlots, expCardSlots)
};

// The whole slot file.
struct s_VrnSolt {
    s_Slots slots;
    s_SupportInfo crossCard; // cross-card support of the model; -1, -1 until a file is read

    LCD_RECORD_FIELDS(s_VrnSolt, slots, crossCard)
};

} // namespace Slot
} // namespace ConfigModel
} // namespace LCD
