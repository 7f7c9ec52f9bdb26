#pragma once

// The connector catalogue with its resolution file: what every connector type
// can display (capacity modes, resolutions, timings) and which picture
// attributes it offers.
//
// Records are plain values. Integers are read from attributes by decimal
// conversion: an absent attribute or text that is no number gives 0. A record
// that no element fills keeps its initial value: -1 in every support/editable
// pair (nothing stated), 0 elsewhere, and the s_RangeValue defaults.

#include <QtCore/QString>
#include <QtCore/qglobal.h>

#include <string>
#include <vector>

#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace Connector {

// ---- the resolution file ----------------------------------------------------

// One resolution of the standard catalogue, the interface table or a
// connector's disabled list. Refresh rates are whole numbers scaled by the
// coefficient (6000 x 0.01 = 60 Hz).
struct s_resolutionResolutionRatio {
    qint32 width = 0;
    qint32 height = 0;
    qint32 refreshRate = 0;
    qint32 interlaced = 1; // a reader that skips "Interlaced" leaves 1
    qint32 standardType = 0;
    qint32 autoRefresh = 0;
    float coefficient = 0.01f;
    std::vector<qint32> values;

    LCD_RECORD_FIELDS(s_resolutionResolutionRatio, width, height, refreshRate, interlaced, standardType,
                      autoRefresh, coefficient, values)
};
using s_resolutionResolutionRatioArray = std::vector<s_resolutionResolutionRatio>;

// One capacity mode with its resolutions.
struct s_ResoluCapacityMode {
    qint32 value = 0;
    s_resolutionResolutionRatioArray resolutions;

    LCD_RECORD_FIELDS(s_ResoluCapacityMode, value, resolutions)
};

// The standard resolution catalogue.
struct s_VrnResolution {
    std::vector<s_ResoluCapacityMode> capacityModes;
    qint32 typeValue = 0; // the interface type the "Types" group applies to
    s_resolutionResolutionRatioArray typeResolutions;

    LCD_RECORD_FIELDS(s_VrnResolution, capacityModes, typeValue, typeResolutions)
};

// One interface of a connector type in the resolution file's interface table.
struct s_ConnectorInterface {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 type = 0;
    std::vector<s_ResoluCapacityMode> capacityModes;

    LCD_RECORD_FIELDS(s_ConnectorInterface, support, editable, type, capacityModes)
};

// A connector type's entry in the interface table.
struct s_Connector {
    qint32 type = 0;
    std::vector<s_ConnectorInterface> interfaces;

    LCD_RECORD_FIELDS(s_Connector, type, interfaces)
};

// ---- small shapes of a connector description --------------------------------

// One allowed value of a connector attribute.
struct ConnectorEnumValue {
    qint32 value = 0;

    LCD_RECORD_FIELDS(ConnectorEnumValue, value)
};

// A choice among listed values.
struct s_ConnectorEnumSet {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;
    std::vector<ConnectorEnumValue> values;

    LCD_RECORD_FIELDS(s_ConnectorEnumSet, support, editable, value, dataType, values)
};

struct s_ConnectorLimit {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 min = 0;
    qint32 max = 0;
    qint32 dataType = 0;

    LCD_RECORD_FIELDS(s_ConnectorLimit, support, editable, min, max, dataType)
};

// Pixel-clock limits ("Min"/"Max" are read as 32-bit numbers and widened).
struct s_ConnectorBandWidth {
    qint32 support = -1;
    qint32 editable = -1;
    qint64 min = 0;
    qint64 max = 0;

    LCD_RECORD_FIELDS(s_ConnectorBandWidth, support, editable, min, max)
};

struct s_ConnectorStepRange {
    s_RangeValue range;
    qint32 step = 0; // "Step"; range.step stays 1.0

    LCD_RECORD_FIELDS(s_ConnectorStepRange, range, step)
};

struct s_ConnectorRateRange {
    s_RangeValue range;
    float coefficient = 0.0f;

    LCD_RECORD_FIELDS(s_ConnectorRateRange, range, coefficient)
};

struct s_CutoutRatio {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 dataType = 0;
    qint32 value = 0;
    qint32 rangeType = 0;
    float coefficient = 0.0f;

    LCD_RECORD_FIELDS(s_CutoutRatio, support, editable, dataType, value, rangeType, coefficient)
};

struct s_CutoutCount {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 dataType = 0;
    qint32 value = 0;
    qint32 rangeType = 0;

    LCD_RECORD_FIELDS(s_CutoutCount, support, editable, dataType, value, rangeType)
};

// Names as UTF-8.
struct s_Name {
    std::string zh_CN;
    std::string en;

    LCD_RECORD_FIELDS(s_Name, zh_CN, en)
};
struct s_ShortName {
    std::string zh_CN;
    std::string en;

    LCD_RECORD_FIELDS(s_ShortName, zh_CN, en)
};

// ---- per-interface records ----------------------------------------------------

// The default resolution of a capacity mode with its ranges.
struct s_ConnectorResolutionRatio {
    qint32 support = -1;
    qint32 editable = -1;
    s_ConnectorStepRange width;
    s_ConnectorStepRange height;
    s_ConnectorRateRange refreshRate;

    LCD_RECORD_FIELDS(s_ConnectorResolutionRatio, support, editable, width, height, refreshRate)
};

struct s_ConnectorResolutionRatios {
    qint32 support = -1;
    qint32 editable = -1;
    s_ConnectorResolutionRatio resolutionRatio;

    LCD_RECORD_FIELDS(s_ConnectorResolutionRatios, support, editable, resolutionRatio)
};

// One axis of an advanced timing: active ("AddTime"), porch, sync, polarity, total.
struct s_ConnectorTimingAxis {
    qint32 support = -1;
    qint32 editable = -1;
    s_RangeValue addTime;
    s_RangeValue frontPorch;
    s_RangeValue sync;
    s_RangeValue polarity;
    s_RangeValue totalTime;

    LCD_RECORD_FIELDS(s_ConnectorTimingAxis, support, editable, addTime, frontPorch, sync, polarity,
                      totalTime)
};

struct s_ConnectorAdvResolutionRatio {
    qint32 support = -1;
    qint32 editable = -1;
    s_ConnectorTimingAxis horizontal;
    s_ConnectorTimingAxis vertical;

    LCD_RECORD_FIELDS(s_ConnectorAdvResolutionRatio, support, editable, horizontal, vertical)
};

// What an interface of a connector offers in one capacity mode.
struct s_CapacityModeInInterface {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0; // the capacity mode number
    s_ConnectorBandWidth bandWidth;
    s_ConnectorResolutionRatios resolutionRatios;
    s_ConnectorAdvResolutionRatio advResolutionRatio;
    s_resolutionResolutionRatioArray disables; // removed from the standard catalogue

    LCD_RECORD_FIELDS(s_CapacityModeInInterface, support, editable, value, bandWidth, resolutionRatios,
                      advResolutionRatio, disables)
};

struct s_Interface {
    qint32 type = 0;
    std::vector<s_CapacityModeInInterface> capacityModes;

    LCD_RECORD_FIELDS(s_Interface, type, capacityModes)
};

struct s_InterfaceInHDCP {
    qint32 type = 0;
    s_ConnectorEnumSet enable;
    s_ConnectorEnumSet typeSet; // the HDCP versions

    LCD_RECORD_FIELDS(s_InterfaceInHDCP, type, enable, typeSet)
};

struct s_ConnectorRefreshSet {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;
    float coefficient = 0.0f;
    std::vector<ConnectorEnumValue> values;

    LCD_RECORD_FIELDS(s_ConnectorRefreshSet, support, editable, value, dataType, coefficient, values)
};

struct s_PresetTimingAxis {
    qint32 support = -1;
    qint32 editable = -1;
    s_RangeValue addTime;
    s_RangeValue frontPorch;
    s_RangeValue sync;
    s_ConnectorEnumSet polarity;
    s_RangeValue totalTime;

    LCD_RECORD_FIELDS(s_PresetTimingAxis, support, editable, addTime, frontPorch, sync, polarity, totalTime)
};

// The limits of one timing standard (the timing type).
struct s_PreSetTimingInterface {
    qint32 type = 0;
    s_ConnectorEnumSet interlaced;
    s_ConnectorLimit bandWidth;
    s_ConnectorRefreshSet refresh;
    s_PresetTimingAxis horizontal;
    s_PresetTimingAxis vertical;

    LCD_RECORD_FIELDS(s_PreSetTimingInterface, type, interlaced, bandWidth, refresh, horizontal, vertical)
};

struct s_InterfaceInColorDepth {
    qint32 type = 0;
    s_ConnectorEnumSet colorDepth;

    LCD_RECORD_FIELDS(s_InterfaceInColorDepth, type, colorDepth)
};

struct s_InterfaceInColorSpace {
    qint32 type = 0;
    s_ConnectorEnumSet colorSpace;

    LCD_RECORD_FIELDS(s_InterfaceInColorSpace, type, colorSpace)
};

struct s_InterfaceInColorRange {
    qint32 type = 0;
    s_ConnectorEnumSet colorRange;

    LCD_RECORD_FIELDS(s_InterfaceInColorRange, type, colorRange)
};

// Contrast or brightness per colour channel.
struct s_ConnectorRGB {
    qint32 support = -1;
    s_RangeValue r;
    s_RangeValue g;
    s_RangeValue b;

    LCD_RECORD_FIELDS(s_ConnectorRGB, support, r, g, b)
};

struct s_InterfaceInImageQuality {
    qint32 type = 0;
    s_ConnectorRGB contrast;
    s_ConnectorRGB brightness;
    s_RangeValue hue;
    s_RangeValue saturation;
    s_RangeValue gamma;
    float gammaCoefficient = 0.0f;

    LCD_RECORD_FIELDS(s_InterfaceInImageQuality, type, contrast, brightness, hue, saturation, gamma,
                      gammaCoefficient)
};

// A test pattern offered while cropping (no connector file element fills it).
struct s_TestPattern {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    std::vector<ConnectorEnumValue> values;

    LCD_RECORD_FIELDS(s_TestPattern, support, editable, value, values)
};

// Cropping limits of one capacity mode (no connector file element fills it).
struct s_CutoutGeneralInInterface {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0; // the capacity mode number
    s_CutoutCount maxCount;
    s_TestPattern testPattern;

    LCD_RECORD_FIELDS(s_CutoutGeneralInInterface, support, editable, value, maxCount, testPattern)
};

struct s_InterfaceInCutoutGeneral {
    qint32 type = 0;
    std::vector<s_CutoutGeneralInInterface> capacityModes;

    LCD_RECORD_FIELDS(s_InterfaceInCutoutGeneral, type, capacityModes)
};

// ---- attribute groups -------------------------------------------------------

struct s_ConnectorHDCP {
    qint32 support = -1;
    qint32 editable = -1;
    std::vector<s_InterfaceInHDCP> interfaces;

    LCD_RECORD_FIELDS(s_ConnectorHDCP, support, editable, interfaces)
};

struct s_ConnectorGeneralType {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 dataType = 0;
    std::vector<ConnectorEnumValue> values;

    LCD_RECORD_FIELDS(s_ConnectorGeneralType, support, editable, dataType, values)
};

struct s_ConnectorGeneral {
    qint32 support = -1;
    qint32 editable = -1;
    s_ConnectorGeneralType type;
    s_ConnectorLimit name;       // length limits of the user's name
    s_ConnectorLimit nameGB2312; // the same in GB2312 bytes

    LCD_RECORD_FIELDS(s_ConnectorGeneral, support, editable, type, name, nameGB2312)
};

struct s_ConnectorPresetTiming {
    qint32 support = -1;
    qint32 editable = -1;
    std::vector<s_PreSetTimingInterface> interfaces;

    LCD_RECORD_FIELDS(s_ConnectorPresetTiming, support, editable, interfaces)
};

struct s_ConnectorColorDepths {
    qint32 support = -1;
    qint32 editable = -1;
    std::vector<s_InterfaceInColorDepth> interfaces;

    LCD_RECORD_FIELDS(s_ConnectorColorDepths, support, editable, interfaces)
};

struct s_ConnectorColorSpaces {
    qint32 support = -1;
    qint32 editable = -1;
    std::vector<s_InterfaceInColorSpace> interfaces;

    LCD_RECORD_FIELDS(s_ConnectorColorSpaces, support, editable, interfaces)
};

struct s_ConnectorColorRanges {
    qint32 support = -1;
    qint32 editable = -1;
    std::vector<s_InterfaceInColorRange> interfaces;

    LCD_RECORD_FIELDS(s_ConnectorColorRanges, support, editable, interfaces)
};

struct s_ConnectorDynamicRange {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 formatMappingSupport = -1; // no element fills this pair
    qint32 formatMappingEditable = -1;
    s_ConnectorEnumSet formatMapping;

    LCD_RECORD_FIELDS(s_ConnectorDynamicRange, support, editable, formatMappingSupport, formatMappingEditable,
                      formatMapping)
};

// No element of a connector file fills this block; it keeps its initial values.
struct s_ConnectorHDR {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 metadataSupport = -1;
    qint32 metadataEditable = -1;
    s_ConnectorEnumSet format;
    s_ConnectorEnumSet gamut;
    s_RangeValue maxLuminance;
    s_RangeValue minLuminance;
    s_RangeValue maxFrameAverageLuminance;

    LCD_RECORD_FIELDS(s_ConnectorHDR, support, editable, metadataSupport, metadataEditable, format, gamut,
                      maxLuminance, minLuminance, maxFrameAverageLuminance)
};

struct s_ConnectorImageQuality {
    qint32 support = -1;
    qint32 editable = -1;
    std::vector<s_InterfaceInImageQuality> interfaces;

    LCD_RECORD_FIELDS(s_ConnectorImageQuality, support, editable, interfaces)
};

struct s_ConnectorCrop {
    qint32 support = -1;
    qint32 editable = -1;
    s_ConnectorEnumSet enable;
    s_CutoutRatio xRatio;
    s_CutoutRatio yRatio;
    s_CutoutRatio widthRatio;
    s_CutoutRatio heightRatio;
    s_CutoutCount maxCount;
    qint32 generalSupport = -1; // no element fills the pair or the list
    qint32 generalEditable = -1;
    std::vector<s_InterfaceInCutoutGeneral> interfaces;

    LCD_RECORD_FIELDS(s_ConnectorCrop, support, editable, enable, xRatio, yRatio, widthRatio, heightRatio,
                      maxCount, generalSupport, generalEditable, interfaces)
};

struct s_ConnectorTimingSelect {
    qint32 support = -1;
    qint32 editable = -1;
    s_ConnectorEnumSet select;

    LCD_RECORD_FIELDS(s_ConnectorTimingSelect, support, editable, select)
};

struct s_ConnectorEDID {
    qint32 support = -1;
    qint32 editable = -1;

    LCD_RECORD_FIELDS(s_ConnectorEDID, support, editable)
};

// ---- one connector type, one connector file ----------------------------------

struct s_ConnectorCfg {
    qint32 type = 0; // the connector type number
    std::string icon;
    s_Name name;
    s_ShortName shortName;
    qint32 signalType = 0;
    qint32 capacityModeSupport = 0;
    qint32 capacityModeEditable = 0;
    std::vector<s_Interface> interfaces;
    s_ConnectorHDCP hdcp;
    s_ConnectorGeneral general;
    s_ConnectorPresetTiming presetTiming;
    s_ConnectorColorDepths colorDepths;
    s_ConnectorColorSpaces colorSpaces;
    s_ConnectorColorRanges colorRanges;
    s_ConnectorDynamicRange dynamicRange;
    s_ConnectorHDR hdr;
    s_ConnectorImageQuality imageQuality;
    s_ConnectorCrop crop;
    s_ConnectorTimingSelect timingSelect;
    s_ConnectorEDID edid;

    LCD_RECORD_FIELDS(s_ConnectorCfg, type, icon, name, shortName, signalType, capacityModeSupport,
                      capacityModeEditable, interfaces, hdcp, general, presetTiming, colorDepths, colorSpaces,
                      colorRanges, dynamicRange, hdr, imageQuality, crop, timingSelect, edid)
};

struct s_VrnConnector {
    std::vector<s_ConnectorCfg> connectors; // in file order

    LCD_RECORD_FIELDS(s_VrnConnector, connectors)
};

} // namespace Connector

// The connector catalogue. Searches run over connector files in load order,
// then connectors in file order, then list entries in file order; the first
// match wins. Pointers point into the loaded records and stay valid until the
// next readConfig or the component's destruction. Queries never fail; before
// any load they all answer as for an unknown connector type.
class LCD_CONFIGMODEL_EXPORT ConnectorConfigInterface {
public:
    virtual ~ConnectorConfigInterface() = default;

    // Loads every "*.xml" file of directory `path` (created when missing) in
    // case-insensitive name order. false: the first file that cannot be read
    // ends the load (earlier files stay loaded) and `error` says why. true with
    // a non-empty `error`: at least one connector description was dropped.
    virtual bool readConfig(const QString& path, QString& error) = 0;

    // The attribute groups of the first connector of `connectorType`; later
    // connectors of the type are never consulted. Null for an unknown type.
    virtual const Connector::s_ConnectorHDCP* findHDCPInfo(int connectorType) const = 0;
    virtual const Connector::s_ConnectorEDID* findEDIDInfo(int connectorType) const = 0;
    virtual const Connector::s_ConnectorDynamicRange* findDynamicRangeInfo(int connectorType) const = 0;
    virtual const Connector::s_ConnectorColorDepths* findColorDepthsInfo(int connectorType) const = 0;
    virtual const Connector::s_ConnectorHDR* findHDRInfo(int connectorType) const = 0;

    // The capacity modes of interface type 2 of the first connector of the
    // type whose "CapacityMode" support is 1 and that has such an interface; null otherwise.
    virtual const std::vector<Connector::s_CapacityModeInInterface>*
    findResoluCapacityMode(int connectorType) const = 0;

    virtual const Connector::s_ConnectorColorSpaces* findColorSpacesInfo(int connectorType) const = 0;

    // The resolution block of a connector's interface in a capacity mode, or null.
    virtual const Connector::s_ConnectorResolutionRatios*
    findConnectorResolutionRatios(int capacityMode, int connectorType, int interfaceType) const = 0;
    // The default resolution inside findConnectorResolutionRatios, or null.
    virtual const Connector::s_ConnectorResolutionRatio*
    findConnectorDefaultResolution(int capacityMode, int connectorType, int interfaceType) const = 0;
    // The advanced timing ranges of the same capacity mode entry, or null.
    virtual const Connector::s_ConnectorAdvResolutionRatio*
    findConnectorDefaultAdvResolution(int capacityMode, int connectorType, int interfaceType) const = 0;

    // The standard catalogue's resolutions of `capacityMode` minus the ones the
    // connector disables (same width, height and refresh rate). Empty when the
    // connector lacks the mode; empty with the warning "not find capacityMode:"
    // when the catalogue lacks it.
    virtual Connector::s_resolutionResolutionRatioArray
    findConnectorStandardResolution(int capacityMode, int connectorType, int interfaceType) const = 0;
    // The standard resolutions of modes 0 to min(capacityMode, 2), in mode
    // order; for the "Types" interface type the listed resolutions take the
    // group's interlacing. Empty when nothing matches.
    virtual Connector::s_resolutionResolutionRatioArray
    findConnectorResolutions(int capacityMode, int connectorType, int interfaceType) const = 0;

    // A copy of the resolutions the resolution file's interface table lists for
    // the connector, interface and mode; empty when it lists none.
    virtual Connector::s_resolutionResolutionRatioArray
    findSDIConnectorResolutionRatios(int capacityMode, int connectorType, int interfaceType) const = 0;
    // The first entry of findSDIConnectorResolutionRatios that is not
    // auto-refresh and has the width, height and interlacing; otherwise the
    // default record (interlaced 1, coefficient 0.01), with the warning
    // "resolution config error" when the list is empty. `reserved` is unused.
    virtual Connector::s_resolutionResolutionRatio
    findSDIConnectorResolutions(int width, int height, int interlaced, int capacityMode, int connectorType,
                                int interfaceType, int reserved) const = 0;

    // The refresh rates of a preset timing type; -1, -1 and nothing else when no
    // connector of the type has it.
    virtual Connector::s_ConnectorRefreshSet findConnectorRates(int connectorType, int timingType) const = 0;
    // The whole preset timing; a record with initial values when missing.
    virtual Connector::s_PreSetTimingInterface findConnectorTiming(int connectorType,
                                                                   int timingType) const = 0;
    // A copy of findHDCPInfo's group; -1, -1 and no interfaces for an unknown type.
    virtual Connector::s_ConnectorHDCP findConnectorHDCP(int connectorType) const = 0;
};

} // namespace ConfigModel
} // namespace LCD
