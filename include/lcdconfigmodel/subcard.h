#pragma once

// The card (subcard) catalogue: one record per card model, read from every
// "*.xml" file of the catalogue directory and of its direct sub-directories,
// and the queries the host asks about card models.
//
// Integers read from the files are decimal conversions with an empty default,
// so an absent or non-numeric attribute gives 0. Texts are UTF-8.

#include <QtCore/QString>

#include <string>
#include <vector>

#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace Subcard {

// The card's name in both languages (the text of "zh_CN" and "en" under "Name").
struct s_Name {
    std::string zhCN;
    std::string en;

    LCD_RECORD_FIELDS(s_Name, zhCN, en)
};

// One connector of a card; `position` (counted from 1) is the key of the
// connector queries. The two reserved fields are not filled by any file.
struct s_Connector {
    qint32 enable = 0;
    qint32 position = 0;
    qint32 visible = 0;
    qint32 capacityMode = 0;
    qint32 workMode = 0;
    qint32 backupPos = 0;
    qint32 type = 0; // the shared connector type number (2 DVI, 6 HDMI2.0, 8 DP1.2, 13 12G-SDI, ...)
    qint32 printKeyNo = 0;
    qint32 interfaceType = 0;
    qint32 reserved1 = 0;
    qint32 reserved2 = 0;

    LCD_RECORD_FIELDS(s_Connector, enable, position, visible, capacityMode, workMode, backupPos, type,
                      printKeyNo, interfaceType, reserved1, reserved2)
};

// A connector as a capacity of a device mode lists it: the connector, its
// group and its dynamic-range setting.
struct s_ConnectorInConnectorsDeviceModeCapacitysCapacity : s_Connector {
    qint32 groupId = 0;
    s_ValueSetting dynamicRange; // "DynamicRange": Support, Editable, Value, DataType

    LCD_DERIVED_RECORD_FIELDS(s_ConnectorInConnectorsDeviceModeCapacitysCapacity, s_Connector, groupId,
                              dynamicRange)
};

// One capacity (bandwidth arrangement) of a device mode, under "Connectors".
struct s_CapacityInConnectorsDeviceModeCapacitys {
    std::string name;
    qint32 enable = 0;
    qint32 value = 0;
    std::vector<s_ConnectorInConnectorsDeviceModeCapacitysCapacity> connectors;

    LCD_RECORD_FIELDS(s_CapacityInConnectorsDeviceModeCapacitys, name, enable, value, connectors)
};

// A device mode under "Connectors" with its capacities. `reserved` is not
// filled by any file.
struct s_DeviceModeInConnectors {
    qint32 value = 0;
    qint32 reserved = 0;
    qint32 capacitysValue = 0;
    std::vector<s_CapacityInConnectorsDeviceModeCapacitys> capacitys;

    LCD_RECORD_FIELDS(s_DeviceModeInConnectors, value, reserved, capacitysValue, capacitys)
};

// One preset thumbnail timing. `reserved` is not filled by any file.
struct s_ResolutionRatio {
    qint32 width = 0;
    qint32 height = 0;
    qint32 interlaced = 0;
    qint32 reserved = 0;
    std::vector<std::string> refreshs; // refresh rates as written, e.g. "59.94"

    LCD_RECORD_FIELDS(s_ResolutionRatio, width, height, interlaced, reserved, refreshs)
};

// The preset thumbnail timings of a connector type: one ratio per capacity
// mode of every work mode, in file order.
struct s_PresetThumbTiming {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 interfaceType = 0;
    std::vector<s_ResolutionRatio> resolutionRatios;

    LCD_RECORD_FIELDS(s_PresetThumbTiming, support, editable, interfaceType, resolutionRatios)
};

// One connector type of a card ("Connector" under "Types").
struct s_TypesConnector {
    qint32 type = 0;
    s_PresetThumbTiming presetThumbTiming;

    LCD_RECORD_FIELDS(s_TypesConnector, type, presetThumbTiming)
};
using s_TypesGroups = std::vector<s_TypesConnector>;

// "Connectors": its children sorted by tag name into three lists.
struct s_Connectors {
    std::vector<s_Connector> connectors;
    std::vector<s_DeviceModeInConnectors> deviceModes;
    s_TypesGroups types;

    LCD_RECORD_FIELDS(s_Connectors, connectors, deviceModes, types)
};

// A group of connectors ("ConnectorGroups"); `value` is the group number.
struct s_ConnectorGroup {
    qint32 value = 0;
    qint32 selectNum = 0;
    std::vector<s_Connector> connectors;

    LCD_RECORD_FIELDS(s_ConnectorGroup, value, selectNum, connectors)
};

// "ConnectorGroups" with its one "Capacity".
struct s_Capacity {
    qint32 groupsValue = 0;
    std::string name;
    qint32 value = 0;
    std::vector<s_ConnectorGroup> groups;

    LCD_RECORD_FIELDS(s_Capacity, groupsValue, name, value, groups)
};

// A connector's state in one device mode of a capacity group.
struct s_ConnectorInCapacityGroups {
    qint32 enable = 0;
    qint32 position = 0;
    qint32 visible = 0;
    qint32 capacityMode = 0;
    qint32 workMode = 0;
    qint32 backupPos = 0;

    LCD_RECORD_FIELDS(s_ConnectorInCapacityGroups, enable, position, visible, capacityMode, workMode,
                      backupPos)
};

struct s_DeviceMode {
    qint32 value = 0;
    std::vector<s_ConnectorInCapacityGroups> connectors;

    LCD_RECORD_FIELDS(s_DeviceMode, value, connectors)
};

// One capacity of "CapacityGroups" with its device modes.
struct s_CapacityInCapacityGroups {
    std::string name;
    qint32 enable = 0;
    qint32 value = 0;
    std::vector<s_DeviceMode> deviceModes;

    LCD_RECORD_FIELDS(s_CapacityInCapacityGroups, name, enable, value, deviceModes)
};

// Connector copy data: capacity -> device mode -> group -> connectors that
// copy one another.
struct s_ConnectorInfo {
    qint32 position = 0;

    LCD_RECORD_FIELDS(s_ConnectorInfo, position)
};

struct s_ConnectorGroupInfo {
    qint32 value = 0;
    std::vector<s_ConnectorInfo> connectors;

    LCD_RECORD_FIELDS(s_ConnectorGroupInfo, value, connectors)
};

struct s_DeviceModeInfo {
    qint32 value = 0;
    std::vector<s_ConnectorGroupInfo> groups;

    LCD_RECORD_FIELDS(s_DeviceModeInfo, value, groups)
};

struct s_CapacityInfo {
    std::string name;
    qint32 enable = 0;
    qint32 value = 0;
    std::vector<s_DeviceModeInfo> deviceModes;

    LCD_RECORD_FIELDS(s_CapacityInfo, name, enable, value, deviceModes)
};

// "ConnectorCopy"; the capacities are the children of its "MainRelated".
struct s_ConnectorCopy {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    s_SupportInfo mainRelated;
    std::vector<s_CapacityInfo> capacityInfos;

    LCD_RECORD_FIELDS(s_ConnectorCopy, support, editable, value, mainRelated, capacityInfos)
};

// A card model this card may be paired with.
struct s_Association {
    qint32 modelId = 0;
    qint32 cardMode = 0;

    LCD_RECORD_FIELDS(s_Association, modelId, cardMode)
};

// A panel section of the card.
struct s_Section {
    qint32 code = 0;

    LCD_RECORD_FIELDS(s_Section, code)
};

// One card model of the catalogue.
struct s_Subcard {
    qint32 modelId = 0;
    qint32 cardMode = 0;
    quint16 interlacedMaxCount = 0;
    s_Name name;
    s_Connectors connectors;
    s_Capacity capacity;
    std::vector<s_CapacityInCapacityGroups> capacityGroups;
    std::vector<s_Section> sections;
    s_ConnectorCopy connectorCopy;
    std::vector<s_Association> associations;

    LCD_RECORD_FIELDS(s_Subcard, modelId, cardMode, interlacedMaxCount, name, connectors, capacity,
                      capacityGroups, sections, connectorCopy, associations)
};

} // namespace Subcard

// What findSubcardModeData gives as `value` when nothing matches.
constexpr qint32 kNoSubcardDeviceMode = -1;

// The card catalogue. Every query searches the cards whose modelId equals the
// modelId argument ("matching cards") in catalogue order: file order, then
// document order. Pointers (and the reference of subcardConfig()) point into
// the catalogue and stay valid until the next readConfig or the component's
// destruction. Before any readConfig every query answers as for an unknown
// card model.
class LCD_CONFIGMODEL_EXPORT SubcardConfigInterface {
public:
    virtual ~SubcardConfigInterface() = default;

    // Appends the card models of every "*.xml" file under the directory `path`
    // (its direct sub-directories included; a missing directory is created).
    // false: `error` holds the reason; the models read before stay. true may
    // still leave the message of a skipped file or a missing optional section
    // in `error` (the last one).
    virtual bool readConfig(const QString& path, QString& error) = 0;
    // The catalogue in load order.
    virtual const std::vector<Subcard::s_Subcard>& subcardConfig() const = 0;

    // The first connector at `position` over the matching cards' connector
    // lists (a card without it does not stop the search); null when none.
    virtual const Subcard::s_Connector* findConnector(int modelId, int position) = 0;
    // The first connector group that holds `position`; null when none.
    virtual const Subcard::s_ConnectorGroup* findConnectorLocatedGroup(int modelId, int position) = 0;
    // The connectors of the last group numbered `groupId`, each with the
    // interfaceType of the last card connector at its position; empty when none.
    virtual std::vector<Subcard::s_Connector> findConnectorByGroupId(int modelId, int groupId) = 0;
    // The last device mode `deviceMode` of capacity `capacity` in the capacity
    // groups. When none: value kNoSubcardDeviceMode (-1) and no connectors.
    virtual Subcard::s_DeviceMode findSubcardModeData(int modelId, int capacity, int deviceMode) = 0;
    // The positions that copy one another with `position` in `deviceMode`: the
    // first copy group holding it, searched over all capacities (`capacity`
    // takes no part). Empty when none.
    virtual std::vector<Subcard::s_ConnectorInfo> findConnectorCopyData(int modelId, int capacity,
                                                                        int deviceMode, int position) = 0;
    // The card mode of the first matching card; -1 when there is none.
    virtual int findCardMode(int modelId) = 0;
    // The first capacity `capacity` of device mode `deviceMode` under
    // "Connectors". When none: a default record (empty name, 0, 0, no connectors).
    virtual Subcard::s_CapacityInConnectorsDeviceModeCapacitys
    findConnectorDeviceModeCapacity(int modelId, int capacity, int deviceMode) = 0;
    // dynamicRange.support of the first connector at `position` in those
    // capacities (a capacity without it does not stop the search); 0 when none.
    virtual int findConnectorDeviceModeCapacityDynamicRangeSupport(int modelId, int capacity, int deviceMode,
                                                                   int position) = 0;
    // The connector types of the first matching card; empty when none.
    virtual std::vector<Subcard::s_TypesConnector> findConnectorTypesData(int modelId) = 0;
    // Whether the first matching card lists `otherModelId` among its
    // associations (card modes are not compared); false when there is no card.
    virtual bool isAssociationSubcard(int modelId, int otherModelId) = 0;
};

} // namespace ConfigModel
} // namespace LCD
