// What the elements and attributes of the description files mean for the
// device and the host, one row each: the file kind (empty: any kind), the
// end of the element's path, the attribute (empty: the element itself) and
// the meaning. The first row that matches counts, so a row for one element
// comes before a row for every element of a name. Hover, `reference` and
// `schema` show the meaning above how the readers read the element.

#include "tools/lcdcfg/formats.h"

namespace lcdcfg {

namespace {

struct Meaning {
    const char* kind;
    const char* path;
    const char* attribute;
    const char* text;
};

const Meaning kMeanings[] = {
    // ---- slot file: the chassis
    {"device-slot", "Vrn/Device", "",
     "The chassis of this device model: its card slots and cross-card setting."},
    {"device-slot", "Device/CrossCard", "",
     "Whether connectors of different cards can be joined into one group on this model."},
    {"device-slot", "Device/Slots", "", "The card slots of the chassis, one element per kind of card."},
    {"device-slot", "Slots/MainControlCardSlots", "", "The slots that take the main control card."},
    {"device-slot", "Slots/InputCardSlots", "",
     "The slots that take input cards. A slot without an Index is skipped here."},
    {"device-slot", "Slots/OutputCardSlots", "", "The slots that take output cards."},
    {"device-slot", "Slots/MixCardSlots", "",
     "The slots that take mixed cards, each slot naming the cards placed in it."},
    {"device-slot", "Slots/MVRCardSlots", "", "The slots that take multiviewer cards."},
    {"device-slot", "Slots/AUXCardSlots", "", "The slots that take auxiliary cards."},
    {"device-slot", "Slots/EXPCardSlots", "", "The slots that take expansion cards."},
    {"device-slot", "", "SilkScreenName", "The label printed on the chassis for this group of slots."},
    {"device-slot", "", "PluginDirection",
     "The code of the direction in which cards are plugged into these slots."},
    {"device-slot", "", "InterfaceType", "The code of the interface type of these slots."},
    {"device-slot", "Slot", "", "One numbered slot of the group."},
    {"device-slot", "Slot", "Index",
     "The slot's number on the chassis: layouts and cross-card groups name the slot by it."},
    {"device-slot", "Subcards", "", "The card models that fit here."},
    {"device-slot", "Subcard", "ModuleId",
     "A card model id: the card file that describes it has this ModelId."},
    {"device-slot", "ConnectorGroup", "Value", "The number of a connector group of the card in this slot."},
    {"device-slot", "ConnectorGroup", "GroupName", "The name the operator sees for that connector group."},
    // ---- cross-card file
    {"device-crosscard", "Subcards/Subcard", "",
     "One card model: how its connectors may be grouped, on the card and across the device."},
    {"device-crosscard", "Subcards/Subcard", "Value",
     "The card model id this entry is about (a ModelId of the card catalogue)."},
    {"device-crosscard", "InterfaceGroup", "", "Grouping the interfaces of one card."},
    {"device-crosscard", "DeviceInterfaceGroup", "",
     "Grouping interfaces of several cards across the device."},
    {"device-crosscard", "DeviceInterfaceGroup", "Offset",
     "The number the device-level interface groups are counted from."},
    {"device-crosscard", "DeviceMode", "Value", "The device mode these groups apply in."},
    {"device-crosscard", "Group", "GroupId", "The number of the connector group."},
    {"device-crosscard", "Group/Connector", "", "One member connector of the group."},
    {"device-crosscard", "Group/Connector", "ModuleId", "The card model of the member connector."},
    {"device-crosscard", "Group/Connector", "Slot", "The slot of that card: an Index of the slot file."},
    {"device-crosscard", "Group/Connector", "Position", "The connector's position on the card."},
    {"device-crosscard", "Group/Connector", "IsMain", "1 for the group's main connector."},
    {"device-crosscard", "Group/Connector", "ConvertTimingPriority",
     "The member's priority when the group's timing is converted."},
    // ---- feature, screen and layer files
    {"device-feature", "Vrn/Device", "",
     "What this device model can do, as the operator interface offers it."},
    {"device-feature", "Vrn/Device", "ModuleId", "The model id of the device this file describes."},
    {"device-feature", "Vrn/Device", "ConnectorPluginMode",
     "How connectors are plugged on this model (a code)."},
    {"device-feature", "Vrn/Device", "SeriesShortName", "The short name of the product series."},
    {"device-feature", "Device/TypeName", "", "The device type's name and icon as the operator sees them."},
    {"device-feature", "Device/Features", "", "The functions of the device, one element each."},
    {"device-screen", "Device/Screens", "", "The kinds of screen the device can drive, one element each."},
    {"device-screen", "Screens/Screen", "", "One kind of screen and how it may be spliced."},
    {"device-layer", "Device/Layers", "", "The kinds of layer the device can show, one element each."},
    {"device-layer", "Layers/Layer", "", "One kind of layer and its limits."},
    // ---- card catalogue
    {"subcard", "Vrn/Subcards", "", "The card models this file describes, one element each."},
    {"subcard", "Subcards/Subcard", "", "One card model: its names, connectors and capacity."},
    {"subcard", "Subcards/Subcard", "ModelId",
     "The card model id: slot files, cross-card files and print keys name the card by it."},
    {"subcard", "Subcards/Subcard", "CardMode",
     "The card's mode (a code), told apart from other modes of one model."},
    {"subcard", "Subcards/Subcard", "InterlacedMaxCount",
     "How many interlaced inputs the card can take at most (0 to 65535)."},
    {"subcard", "Subcard/Name", "", "The card's name as the operator sees it."},
    {"subcard", "Subcard/Associations", "", "The card models this card works together with."},
    {"subcard", "Subcard/Connectors", "", "The card's connectors and the timings they accept."},
    {"subcard", "Connectors/Connector", "", "One connector of the card."},
    {"subcard", "Interface", "Type", "The interface of the connector (a code)."},
    {"subcard", "", "Type",
     "The connector type: a connector description with this Type tells its names and abilities."},
    {"subcard", "", "Position", "The connector's position on the card, counted as printed."},
    {"subcard", "", "PrintKeyNo", "The key number printed beside the connector."},
    {"subcard", "Subcard/ConnectorGroups", "", "The groups the card's connectors are arranged in."},
    {"subcard", "Subcard/CapacityGroups", "", "The capacities the card offers in each device mode."},
    {"subcard", "Subcard/Sections", "", "The sections of the card, each by its code."},
    {"subcard", "Subcard/ConnectorCopy", "", "Copying one connector's picture to others."},
    // ---- connector catalogue
    {"connector", "Vrn/Connectors", "", "The connector types this file describes, one element each."},
    {"connector", "Connectors/Connector", "",
     "One connector type: its names, signal and what it can do in each capacity mode."},
    {"connector", "Connectors/Connector", "Type", "The connector type: cards name their connectors by it."},
    {"connector", "Connectors/Connector", "Icon", "The icon the operator interface shows for it."},
    {"connector", "Connector/ShortName", "", "The short name shown where space is scarce."},
    {"connector", "Connector/SignalType", "Value", "The kind of signal the connector carries (a code)."},
    {"connector", "Connector/CapacityMode", "", "What the connector can do in each capacity mode."},
    {"connector", "Connector/HDCP", "", "Copy protection on the connector."},
    {"connector", "Connector/PresetTiming", "", "The timings the operator can pick from a list."},
    {"connector", "Connector/ColorDepths", "", "The colour depths the connector offers."},
    {"connector", "Connector/ColorSpaces", "", "The colour spaces the connector offers."},
    {"connector", "Connector/ColorRanges", "", "The colour ranges the connector offers."},
    {"connector", "Connector/DynamicRange", "", "The dynamic ranges (SDR, HDR10, HLG) the connector offers."},
    {"connector", "Connector/ImageQuality", "", "The picture adjustments the connector offers."},
    {"resolutions", "Vrn/ResolutionRatios", "",
     "The standard resolutions, grouped by capacity mode. The element after it assigns them to connectors."},
    {"resolutions", "CapacityMode", "Value", "The capacity mode these resolutions belong to."},
    {"resolutions", "Resolution", "", "One resolution."},
    {"resolutions", "", "Width", "The width in pixels."},
    {"resolutions", "", "Height", "The height in lines."},
    {"resolutions", "", "RefreshRate", "The refresh rate."},
    {"resolutions", "", "StandardType", "The standard the resolution comes from (a code)."},
    {"resolutions", "", "AutoRefresh", "1 when the refresh rate follows the source."},
    {"resolutions", "Connector", "Type", "The connector type these resolutions apply to."},
    {"resolutions", "Interface", "Type", "The interface of the connector type (a code)."},
    // ---- menu
    {"menu-items", "MenuItems/MenuItem", "",
     "One function of the operator's menu: how it looks, whatever the place the menu tree gives it."},
    {"menu-items", "MenuItem", "Key", "The function's key: the menu tree places it by this key."},
    {"menu-items", "MenuItem", "Icon", "The resource path of the function's icon."},
    {"menu-items", "MenuItem", "Type", "What kind of function it is (a code)."},
    {"menu-items", "MenuItem", "Unit", "The unit shown beside the function's value."},
    {"menu-tree", "LCD/MenuBar", "", "The operator's menu, entries nested as the menu shows them."},
    {"menu-tree", "MenuItem", "", "One menu entry, with its sub-entries inside it."},
    {"menu-tree", "MenuItem", "Key",
     "The entry's key: the function item of this key tells its name and icon."},
    {"menu-tree", "MenuItem", "Order", "A position hint for the entry. It is kept, not used for sorting."},
    // ---- keys
    {"key-check", "LCD/LcdKeys", "", "The device keys the host checks."},
    {"key-check", "LcdKeys/Key", "", "One checked key."},
    {"key-check", "Key", "Value", "The key code."},
    {"key-check", "Key", "Name", "The name shown for the key."},
    {"print-keys", "LCD/Device", "", "The printed key numbers of one device model."},
    {"print-keys", "LCD/Device", "ModelId", "The device model id (its model folder)."},
    {"print-keys", "Device/Subcard", "", "The printed key numbers of one card model in that device."},
    {"print-keys", "Device/Subcard", "ModelId", "The card model id (a ModelId of the card catalogue)."},
    {"print-keys", "Key", "Id", "The key or connector position on the card."},
    {"print-keys", "Key", "PrintKeyNo", "The number printed on (or shown for) that key."},
    // ---- HDR options
    {"hdr-options", "Key", "",
     "One setting value and the values the options may then take (255 stands for AUTO)."},
    {"hdr-options", "Key", "Type", "The setting the choice depends on (a code)."},
    {"hdr-options", "Key", "Value", "The value of that setting."},
    {"hdr-options", "ValueInfo", "", "The values allowed for one option while the setting has that value."},
    {"hdr-options", "ValueInfo", "Type",
     "The option (bit depth, colour gamut or dynamic range) the values are for."},
    {"hdr-options", "SupportValue", "", "One allowed value (255 for AUTO)."},
    // ---- any file
    {"", "", "Support", "1 when the function is offered, 0 when the operator interface hides it."},
    {"", "", "Editable", "1 when the operator may change the setting, 0 when it is shown read-only."},
    {"", "Name/en", "", "The English name."},
    {"", "Name/zh_CN", "", "The Chinese name."},
    {"", "TypeName/en", "", "The English name."},
    {"", "TypeName/zh_CN", "", "The Chinese name."},
};

bool endsWithPath(const QString& path, const char* end) {
    const QLatin1String tail(end);
    return tail.size() == 0 || path == tail ||
           (path.endsWith(tail) && path.at(path.size() - tail.size() - 1) == QLatin1Char('/'));
}

} // namespace

QString meaningOf(const QString& kind, const QString& path, const QString& attribute) {
    for (const Meaning& m : kMeanings)
        if ((!*m.kind || kind == QLatin1String(m.kind)) && attribute == QLatin1String(m.attribute) &&
            (*m.path || !attribute.isEmpty()) && endsWithPath(path, m.path))
            return QLatin1String(m.text);
    return QString();
}

} // namespace lcdcfg
