#include "catalogue/connectorconfig.h"

#include "common/document.h"
#include "common/xmlread.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>

#include <algorithm>

KVC_REGISTER_COMPONENT(LCD::ConfigModel::ConnectorConfigManager, "tavio.lcd.configmodel.connector")

namespace LCD {
namespace ConfigModel {

using namespace Connector;
using namespace xml;

namespace {

const char kTrContext[] = "LCD::ConfigModel::ConnectorConfigManager";

// ---- the resolution file -----------------------------------------------------

// Resolutions of the standard catalogue and of the "Types" group: every
// attribute is read, so a missing "Interlaced" gives 0.
s_resolutionResolutionRatioArray readCatalogueResolutions(const QDomElement& group) {
    s_resolutionResolutionRatioArray list;
    forEachChild(group, [&](const QDomElement& e) {
        s_resolutionResolutionRatio& r = list.emplace_back();
        readInts(e, {{"Width", &r.width},
                     {"Height", &r.height},
                     {"RefreshRate", &r.refreshRate},
                     {"Interlaced", &r.interlaced},
                     {"StandardType", &r.standardType}});
    });
    return list;
}

// The interface table that follows "ResolutionRatios": connector, interface,
// capacity mode, resolution, value. "Coefficient" is not read (stays 0.01).
std::vector<s_Connector> readInterfaceTable(const QDomElement& table) {
    std::vector<s_Connector> connectors;
    forEachChild(table, [&](const QDomElement& c) {
        s_Connector& connector = connectors.emplace_back();
        connector.type = intAttr(c, "Type");
        forEachChild(c, [&](const QDomElement& d) {
            s_ConnectorInterface& in = connector.interfaces.emplace_back();
            readInts(d, {{"Support", &in.support}, {"Editable", &in.editable}, {"Type", &in.type}});
            const QDomElement modes = firstChild(d);
            if (!isNamed(modes, "ResolutionRatios")) return; // no capacity modes
            forEachChild(modes, [&](const QDomElement& f) {
                s_ResoluCapacityMode& mode = in.capacityModes.emplace_back();
                mode.value = intAttr(f, "Value");
                forEachChild(f, [&](const QDomElement& h) {
                    s_resolutionResolutionRatio& r = mode.resolutions.emplace_back();
                    readInts(h, {{"AutoRefresh", &r.autoRefresh},
                                 {"Width", &r.width},
                                 {"Height", &r.height},
                                 {"RefreshRate", &r.refreshRate},
                                 {"Interlaced", &r.interlaced},
                                 {"StandardType", &r.standardType}});
                    r.values = readValueList(h, ListFrom::AnyChild);
                });
            });
        });
    });
    return connectors;
}

// ---- the connector description -------------------------------------------------
//
// Every reader below leaves its record untouched for a null element: an
// optional element that is missing keeps the initial values, and after the
// first missing required element (Section returns null from then on) nothing
// more is read. Attributes are read with an empty default: absent gives 0.

// "Support", "Editable", "Value", "DataType" and the "Value" of every child.
void readEnumSet(const QDomElement& e, s_ConnectorEnumSet& out) {
    if (e.isNull()) return;
    readInts(e, {{"Support", &out.support},
                 {"Editable", &out.editable},
                 {"Value", &out.value},
                 {"DataType", &out.dataType}});
    out.values = readValues<ConnectorEnumValue>(e, ListFrom::AnyChild);
}

void readNames(Section& s, const QDomElement& e, std::string& zh_CN, std::string& en) {
    zh_CN = firstNodeText(s.need(e, "zh_CN"));
    en = firstNodeText(s.need(e, "en"));
}

void readStepRange(const QDomElement& e, s_ConnectorStepRange& out) {
    update(e, kEmpty, out.range);
    if (!e.isNull()) out.step = intAttr(e, "Step"); // not range.step, which stays 1.0
}

void readRateRange(const QDomElement& e, s_ConnectorRateRange& out) {
    update(e, kEmpty, out.range);
    if (!e.isNull()) out.coefficient = floatAttr(e, "Coefficient");
}

void readResolutionRatios(const QDomElement& e, s_ConnectorResolutionRatios& out) {
    updatePair(e, out);
    const QDomElement ratio = child(e, "ResolutionRatio");
    updatePair(ratio, out.resolutionRatio);
    readStepRange(child(ratio, "Width"), out.resolutionRatio.width);
    readStepRange(child(ratio, "Height"), out.resolutionRatio.height);
    readRateRange(child(ratio, "RefreshRate"), out.resolutionRatio.refreshRate);
}

void readAdvancedAxis(const QDomElement& e, s_ConnectorTimingAxis& axis) {
    updatePair(e, axis);
    const auto all = {"Support", "Editable", "Min", "Max", "DataType", "Value"};
    readRangeAttrs(child(e, "AddTime"), axis.addTime, all);
    readRangeAttrs(child(e, "FrontPorch"), axis.frontPorch, all);
    readRangeAttrs(child(e, "Sync"), axis.sync, all);
    readRangeAttrs(child(e, "TotalTime"), axis.totalTime, all);
    // The values listed under "SyncPolarity" have no place in the axis record.
    readRangeAttrs(child(e, "SyncPolarity"), axis.polarity, {"Support", "Editable", "Value", "DataType"});
}

void readCapacityMode(Section& s, const QDomElement& e, s_CapacityModeInInterface& mode) {
    readInts(e, {{"Support", &mode.support}, {"Editable", &mode.editable}, {"Value", &mode.value}});

    const QDomElement band = s.need(e, "BandWidth");
    if (!band.isNull()) {
        updatePair(band, mode.bandWidth);
        mode.bandWidth.max = intAttr(band, "Max");
        mode.bandWidth.min = intAttr(band, "Min");
    }
    readResolutionRatios(s.need(e, "ResolutionRatios"), mode.resolutionRatios);

    const QDomElement adv = child(e, "AdvResolutionRatio"); // optional, as are its children
    updatePair(adv, mode.advResolutionRatio);
    readAdvancedAxis(child(adv, "Horizontal"), mode.advResolutionRatio.horizontal);
    readAdvancedAxis(child(adv, "Vertical"), mode.advResolutionRatio.vertical);

    forEachChild(child(e, "Disables"), [&](const QDomElement& d) {     // optional
        s_resolutionResolutionRatio& r = mode.disables.emplace_back(); // interlaced stays 1
        readInts(d, {{"Width", &r.width}, {"Height", &r.height}, {"RefreshRate", &r.refreshRate}});
        r.coefficient = floatAttr(d, "Coefficient");
    });
}

void readCapacityModes(Section& s, const QDomElement& e, s_ConnectorCfg& c) {
    if (e.isNull()) return;
    readInts(e, {{"Support", &c.capacityModeSupport}, {"Editable", &c.capacityModeEditable}});
    forEachChild(e, [&](const QDomElement& i) {
        s_Interface& in = c.interfaces.emplace_back();
        in.type = intAttr(i, "Type");
        forEachChild(i,
                     [&](const QDomElement& m) { readCapacityMode(s, m, in.capacityModes.emplace_back()); });
    });
}

void readHdcp(Section& s, const QDomElement& e, s_ConnectorHDCP& hdcp) {
    updatePair(e, hdcp);
    forEachChild(e, [&](const QDomElement& i) {
        s_InterfaceInHDCP& in = hdcp.interfaces.emplace_back();
        in.type = intAttr(i, "Type");
        readEnumSet(s.needLogged(i, "Enable"), in.enable);
        readEnumSet(child(i, "Type"), in.typeSet); // optional
    });
}

void readLimit(const QDomElement& e, s_ConnectorLimit& limit) {
    if (!e.isNull())
        readInts(e, {{"Support", &limit.support},
                     {"Editable", &limit.editable},
                     {"DataType", &limit.dataType},
                     {"Min", &limit.min},
                     {"Max", &limit.max}});
}

void readGeneral(Section& s, const QDomElement& e, s_ConnectorGeneral& general) {
    updatePair(e, general);
    const QDomElement type = s.needLogged(e, "Type");
    if (!type.isNull()) {
        readInts(type, {{"Support", &general.type.support},
                        {"Editable", &general.type.editable},
                        {"DataType", &general.type.dataType}});
        general.type.values = readValues<ConnectorEnumValue>(type, ListFrom::AnyChild);
    }
    readLimit(s.needLogged(e, "Name"), general.name);
    readLimit(s.needLogged(e, "NameGB2312"), general.nameGB2312);
}

// A preset timing axis reads only "Support", "Editable", "Min" and "DataType"
// of porch, sync and total: their "Max" and "Value" keep the defaults.
void readPresetAxis(Section& s, const QDomElement& e, s_PresetTimingAxis& axis) {
    updatePair(e, axis);
    readRangeAttrs(s.needLogged(e, "AddTime"), axis.addTime,
                   {"Support", "Editable", "Min", "Max", "DataType", "Value"});
    readRangeAttrs(s.needLogged(e, "FrontPorch"), axis.frontPorch,
                   {"Support", "Editable", "Min", "DataType"});
    readRangeAttrs(s.needLogged(e, "Sync"), axis.sync, {"Support", "Editable", "Min", "DataType"});
    readRangeAttrs(s.needLogged(e, "TotalTime"), axis.totalTime, {"Support", "Editable", "Min", "DataType"});
    readEnumSet(s.needLogged(e, "SyncPolarity"), axis.polarity);
}

void readPresetTiming(Section& s, const QDomElement& e, s_ConnectorPresetTiming& timing) {
    updatePair(e, timing);
    forEachChild(e, [&](const QDomElement& i) {
        s_PreSetTimingInterface& t = timing.interfaces.emplace_back();
        t.type = intAttr(i, "Type");
        readEnumSet(s.needLogged(i, "Interlaced"), t.interlaced);
        readLimit(s.needLogged(i, "BandWidth"), t.bandWidth);
        const QDomElement refresh = s.needLogged(i, "Refresh");
        if (!refresh.isNull()) {
            readInts(refresh, {{"Support", &t.refresh.support},
                               {"Editable", &t.refresh.editable},
                               {"Value", &t.refresh.value},
                               {"DataType", &t.refresh.dataType}});
            t.refresh.coefficient = floatAttr(refresh, "Coefficient");
            t.refresh.values = readValues<ConnectorEnumValue>(refresh, ListFrom::AnyChild);
        }
        readPresetAxis(s, s.needLogged(i, "Horizontal"), t.horizontal);
        readPresetAxis(s, s.needLogged(i, "Vertical"), t.vertical);
    });
}

// "ColorDepths", "ColorSpaces", "ColorRanges": per interface one enum set.
template <class Group, class Item>
void readColorGroup(Section& s, const QDomElement& e, const char* setTag, Group& group,
                    s_ConnectorEnumSet Item::*set) {
    updatePair(e, group);
    forEachChild(e, [&](const QDomElement& i) {
        Item& item = group.interfaces.emplace_back();
        item.type = intAttr(i, "Type");
        readEnumSet(s.needLogged(i, setTag), item.*set);
    });
}

void readRGB(Section& s, const QDomElement& e, s_ConnectorRGB& rgb) {
    if (!e.isNull()) rgb.support = intAttr(e, "Support");
    const auto channel = {"Support", "Max", "Min", "DataType", "Value"}; // no "Editable"
    readRangeAttrs(s.need(e, "R"), rgb.r, channel);
    readRangeAttrs(s.need(e, "G"), rgb.g, channel);
    readRangeAttrs(s.need(e, "B"), rgb.b, channel);
}

void readImageQuality(Section& s, const QDomElement& e, s_ConnectorImageQuality& quality) {
    updatePair(e, quality);
    forEachChild(e, [&](const QDomElement& i) {
        s_InterfaceInImageQuality& q = quality.interfaces.emplace_back();
        q.type = intAttr(i, "Type");
        readRGB(s, s.need(i, "Contrast"), q.contrast);
        readRGB(s, s.need(i, "Brightness"), q.brightness);
        const auto all = {"Support", "Max", "Min", "DataType", "Value", "Editable"};
        readRangeAttrs(s.need(i, "Hue"), q.hue, all);
        readRangeAttrs(s.need(i, "Saturation"), q.saturation, all);
        const QDomElement gamma = s.need(i, "Gamma");
        readRangeAttrs(gamma, q.gamma, all);
        if (!gamma.isNull()) q.gammaCoefficient = floatAttr(gamma, "Coefficient");
    });
}

void readCutoutRatio(const QDomElement& e, s_CutoutRatio& r) {
    if (e.isNull()) return;
    readInts(e, {{"Support", &r.support},
                 {"Editable", &r.editable},
                 {"DataType", &r.dataType},
                 {"Value", &r.value},
                 {"RangeType", &r.rangeType}});
    r.coefficient = floatAttr(e, "Coefficient");
}

void readCrop(Section& s, const QDomElement& e, s_ConnectorCrop& crop) {
    updatePair(e, crop);
    readEnumSet(s.need(e, "Enable"), crop.enable);
    readCutoutRatio(s.need(e, "XRatio"), crop.xRatio);
    readCutoutRatio(s.need(e, "YRatio"), crop.yRatio);
    readCutoutRatio(s.need(e, "WidthRatio"), crop.widthRatio);
    readCutoutRatio(s.need(e, "HeightRatio"), crop.heightRatio);
    const QDomElement count = s.need(e, "MaxCount");
    if (!count.isNull())
        readInts(count, {{"Support", &crop.maxCount.support},
                         {"Editable", &crop.maxCount.editable},
                         {"DataType", &crop.maxCount.dataType},
                         {"Value", &crop.maxCount.value},
                         {"RangeType", &crop.maxCount.rangeType}});
}

// ---- searches -------------------------------------------------------------------

// The first element of `list` that satisfies `pred`, or null.
template <class T, class Pred> const T* findFirst(const std::vector<T>& list, Pred&& pred) {
    const auto it = std::find_if(list.cbegin(), list.cend(), pred);
    return it == list.cend() ? nullptr : &*it;
}

// Every connector of `type` in load order until `look` finds something in one.
template <class Look>
auto searchConnectors(const std::vector<s_VrnConnector>& files, int type, Look&& look)
    -> decltype(look(std::declval<const s_ConnectorCfg&>())) {
    for (const s_VrnConnector& file : files)
        for (const s_ConnectorCfg& c : file.connectors)
            if (c.type == type)
                if (const auto found = look(c)) return found;
    return nullptr;
}

// The first connector of `type`; attribute queries never look further.
const s_ConnectorCfg* firstConnector(const std::vector<s_VrnConnector>& files, int type) {
    return searchConnectors(files, type, [](const s_ConnectorCfg& c) { return &c; });
}

const s_CapacityModeInInterface* findCapacityMode(const std::vector<s_VrnConnector>& files, int capacityMode,
                                                  int connectorType, int interfaceType) {
    const auto inMode = [&](const s_CapacityModeInInterface& m) { return m.value == capacityMode; };
    return searchConnectors(
        files, connectorType, [&](const s_ConnectorCfg& c) -> const s_CapacityModeInInterface* {
            for (const s_Interface& in : c.interfaces) {
                if (in.type != interfaceType) continue;
                if (const s_CapacityModeInInterface* mode = findFirst(in.capacityModes, inMode)) return mode;
            }
            return nullptr;
        });
}

const s_PreSetTimingInterface* findTiming(const std::vector<s_VrnConnector>& files, int connectorType,
                                          int timingType) {
    return searchConnectors(files, connectorType, [&](const s_ConnectorCfg& c) {
        return findFirst(c.presetTiming.interfaces,
                         [&](const s_PreSetTimingInterface& t) { return t.type == timingType; });
    });
}

bool sameMode(const s_resolutionResolutionRatio& a, const s_resolutionResolutionRatio& b) {
    return a.width == b.width && a.height == b.height && a.refreshRate == b.refreshRate;
}

} // namespace

ConnectorConfigManager::ConnectorConfigManager() = default;
ConnectorConfigManager::~ConnectorConfigManager() = default;

// ---- loading --------------------------------------------------------------------

bool ConnectorConfigManager::readConfig(const QString& path, QString& error) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    if (!prepareDirectory(path, loader, error)) return false;

    const QDir dir(path);
    const QStringList names =
        dir.entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QString& name : names) {
        QDomDocument doc;
        if (!parseDocumentFile(dir.absoluteFilePath(name), loader, doc, error) ||
            !checkDocumentRoot(doc, loader, error))
            return false; // what earlier files brought stays loaded

        // The first element decides the kind of file; any other kind is skipped.
        const QDomElement first = firstChild(doc.documentElement());
        if (isNamed(first, "ResolutionRatios")) {
            if (!readConfigResolution(first, m_resolution)) {
                error = loader.text("Resolution file parsed error.");
                return false;
            }
            m_connectors = readInterfaceTable(next(first));
        } else if (isNamed(first, "Connectors")) {
            s_VrnConnector file;
            forEachChild(first, [&](const QDomElement& e) {
                s_ConnectorCfg connector;
                if (readConfigConnector(e, error, connector)) // a rejected description is dropped
                    file.connectors.push_back(std::move(connector));
            });
            m_connectorFiles.push_back(std::move(file));
        }
    }
    return true;
}

bool ConnectorConfigManager::readConfigResolution(const QDomElement& resolutionRatios, s_VrnResolution& out) {
    if (resolutionRatios.isNull()) return false;
    s_VrnResolution catalogue;
    forEachChild(resolutionRatios, [&](const QDomElement& k) {
        if (isNamed(k, "Types")) { // Types > type element ("Value") > group > resolutions
            const QDomElement type = firstChild(k);
            const QDomElement group = firstChild(type);
            if (group.isNull()) return;
            catalogue.typeValue = intAttr(type, "Value");
            catalogue.typeResolutions = readCatalogueResolutions(group);
        } else { // any other name is a capacity mode
            s_ResoluCapacityMode& mode = catalogue.capacityModes.emplace_back();
            mode.value = intAttr(k, "Value");
            mode.resolutions = readCatalogueResolutions(k);
        }
    });
    out = std::move(catalogue);
    return true;
}

// One connector description, read into a fresh record that is committed only
// when every required element was found. need: required; needLogged: required,
// and its absence also written as a "Log:" warning; child: optional.
bool ConnectorConfigManager::readConfigConnector(const QDomElement& connector, QString& error,
                                                 s_ConnectorCfg& out) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    return transact(out, error, loader, [&](Section& s, s_ConnectorCfg& c) {
        const QDomElement& e = connector;
        c.type = intAttr(e, "Type");
        c.icon = textAttr(e, "Icon");
        readNames(s, s.need(e, "Name"), c.name.zh_CN, c.name.en);
        readNames(s, s.need(e, "ShortName"), c.shortName.zh_CN, c.shortName.en);
        c.signalType = intAttr(s.need(e, "SignalType"), "Value");
        readCapacityModes(s, s.need(e, "CapacityMode"), c);
        readHdcp(s, s.needLogged(e, "HDCP"), c.hdcp);
        readGeneral(s, s.needLogged(e, "General"), c.general);
        readPresetTiming(s, s.needLogged(e, "PresetTiming"), c.presetTiming);
        readColorGroup(s, s.needLogged(e, "ColorDepths"), "ColorDepth", c.colorDepths,
                       &s_InterfaceInColorDepth::colorDepth);
        readColorGroup(s, s.needLogged(e, "ColorSpaces"), "ColorSpace", c.colorSpaces,
                       &s_InterfaceInColorSpace::colorSpace);
        readColorGroup(s, s.needLogged(e, "ColorRanges"), "ColorRange", c.colorRanges,
                       &s_InterfaceInColorRange::colorRange);
        readEnumSet(s.needLogged(e, "FormatMapping"), c.dynamicRange.formatMapping);
        updatePair(s.needLogged(e, "DynamicRange"), c.dynamicRange);
        readImageQuality(s, s.need(e, "ImageQuality"), c.imageQuality);
        readCrop(s, s.need(e, "Crop"), c.crop);
        const QDomElement timingSelect = s.need(e, "TimingSelect");
        updatePair(timingSelect, c.timingSelect);
        readEnumSet(s.need(timingSelect, "Select"), c.timingSelect.select);
        updatePair(s.need(e, "EDID"), c.edid);
        // c.hdr: no element of a connector file fills it.
    });
}

bool ConnectorConfigManager::getAttribute(s_RangeValue& out, const QDomElement& parent,
                                          const QLatin1String& tag, QString& error) {
    const QByteArray name(tag.data(), tag.size());
    return readRangeStrict(parent, name.constData(), out, error,
                           {"Support", "Editable", "Value", "Min", "Max", "DataType"});
}

bool ConnectorConfigManager::getRGB(s_RangeValue& out, const QDomElement& parent, const QLatin1String& tag,
                                    QString& error) {
    const QByteArray name(tag.data(), tag.size());
    return readRangeStrict(parent, name.constData(), out, error,
                           {"Support", "Editable", "Max", "Min", "DataType", "Value"});
}

// ---- attribute queries ------------------------------------------------------------

const s_ConnectorHDCP* ConnectorConfigManager::findHDCPInfo(int connectorType) const {
    const s_ConnectorCfg* c = firstConnector(m_connectorFiles, connectorType);
    return c ? &c->hdcp : nullptr;
}

const s_ConnectorEDID* ConnectorConfigManager::findEDIDInfo(int connectorType) const {
    const s_ConnectorCfg* c = firstConnector(m_connectorFiles, connectorType);
    return c ? &c->edid : nullptr;
}

const s_ConnectorDynamicRange* ConnectorConfigManager::findDynamicRangeInfo(int connectorType) const {
    const s_ConnectorCfg* c = firstConnector(m_connectorFiles, connectorType);
    return c ? &c->dynamicRange : nullptr;
}

const s_ConnectorColorDepths* ConnectorConfigManager::findColorDepthsInfo(int connectorType) const {
    const s_ConnectorCfg* c = firstConnector(m_connectorFiles, connectorType);
    return c ? &c->colorDepths : nullptr;
}

const s_ConnectorHDR* ConnectorConfigManager::findHDRInfo(int connectorType) const {
    const s_ConnectorCfg* c = firstConnector(m_connectorFiles, connectorType);
    return c ? &c->hdr : nullptr;
}

const s_ConnectorColorSpaces* ConnectorConfigManager::findColorSpacesInfo(int connectorType) const {
    const s_ConnectorCfg* c = firstConnector(m_connectorFiles, connectorType);
    return c ? &c->colorSpaces : nullptr;
}

s_ConnectorHDCP ConnectorConfigManager::findConnectorHDCP(int connectorType) const {
    const s_ConnectorCfg* c = firstConnector(m_connectorFiles, connectorType);
    return c ? c->hdcp : s_ConnectorHDCP{};
}

// ---- resolution and timing queries --------------------------------------------------

const std::vector<s_CapacityModeInInterface>*
ConnectorConfigManager::findResoluCapacityMode(int connectorType) const {
    constexpr int kInterfaceType = 2;
    return searchConnectors(m_connectorFiles, connectorType,
                            [&](const s_ConnectorCfg& c) -> const std::vector<s_CapacityModeInInterface>* {
                                if (c.capacityModeSupport != 1) return nullptr;
                                const s_Interface* in = findFirst(c.interfaces, [](const s_Interface& i) {
                                    return i.type == kInterfaceType;
                                });
                                return in ? &in->capacityModes : nullptr;
                            });
}

const s_ConnectorResolutionRatios*
ConnectorConfigManager::findConnectorResolutionRatios(int capacityMode, int connectorType,
                                                      int interfaceType) const {
    const s_CapacityModeInInterface* mode =
        findCapacityMode(m_connectorFiles, capacityMode, connectorType, interfaceType);
    return mode ? &mode->resolutionRatios : nullptr;
}

const s_ConnectorResolutionRatio*
ConnectorConfigManager::findConnectorDefaultResolution(int capacityMode, int connectorType,
                                                       int interfaceType) const {
    const s_ConnectorResolutionRatios* ratios =
        findConnectorResolutionRatios(capacityMode, connectorType, interfaceType);
    return ratios ? &ratios->resolutionRatio : nullptr;
}

const s_ConnectorAdvResolutionRatio*
ConnectorConfigManager::findConnectorDefaultAdvResolution(int capacityMode, int connectorType,
                                                          int interfaceType) const {
    const s_CapacityModeInInterface* mode =
        entryHolding(findConnectorResolutionRatios(capacityMode, connectorType, interfaceType));
    return mode ? &mode->advResolutionRatio : nullptr;
}

s_resolutionResolutionRatioArray
ConnectorConfigManager::findConnectorStandardResolution(int capacityMode, int connectorType,
                                                        int interfaceType) const {
    const s_ConnectorResolutionRatios* ratios =
        findConnectorResolutionRatios(capacityMode, connectorType, interfaceType);
    if (!ratios) return {};
    const s_CapacityModeInInterface* entry = entryHolding(ratios);

    const s_ResoluCapacityMode* standard = findFirst(
        m_resolution.capacityModes, [&](const s_ResoluCapacityMode& m) { return m.value == capacityMode; });
    if (!standard) {
        qWarning().noquote() << "not find capacityMode:" << capacityMode;
        return {};
    }

    s_resolutionResolutionRatioArray result = standard->resolutions;
    if (entry) {
        const s_resolutionResolutionRatioArray& disables = entry->disables;
        result.erase(std::remove_if(result.begin(), result.end(),
                                    [&](const s_resolutionResolutionRatio& r) {
                                        return std::any_of(disables.cbegin(), disables.cend(),
                                                           [&](const auto& d) { return sameMode(r, d); });
                                    }),
                     result.end());
    }
    return result;
}

s_resolutionResolutionRatioArray ConnectorConfigManager::findConnectorResolutions(int capacityMode,
                                                                                  int connectorType,
                                                                                  int interfaceType) const {
    constexpr int kHighestMode = 2;
    s_resolutionResolutionRatioArray all;
    for (int mode = 0; mode <= std::min(capacityMode, kHighestMode); ++mode) {
        const s_resolutionResolutionRatioArray part =
            findConnectorStandardResolution(mode, connectorType, interfaceType);
        all.insert(all.end(), part.cbegin(), part.cend());
    }
    if (interfaceType == m_resolution.typeValue) {
        for (const s_resolutionResolutionRatio& t : m_resolution.typeResolutions) {
            const auto it = std::find_if(
                all.begin(), all.end(), [&](const s_resolutionResolutionRatio& r) { return sameMode(r, t); });
            if (it != all.end()) it->interlaced = t.interlaced;
        }
    }
    return all;
}

s_resolutionResolutionRatioArray
ConnectorConfigManager::findSDIConnectorResolutionRatios(int capacityMode, int connectorType,
                                                         int interfaceType) const {
    for (const s_Connector& c : m_connectors) {
        if (c.type != connectorType) continue;
        for (const s_ConnectorInterface& in : c.interfaces) {
            if (in.type != interfaceType) continue;
            if (const s_ResoluCapacityMode* mode = findFirst(
                    in.capacityModes, [&](const s_ResoluCapacityMode& m) { return m.value == capacityMode; }))
                return mode->resolutions;
        }
    }
    return {};
}

s_resolutionResolutionRatio
ConnectorConfigManager::findSDIConnectorResolutions(int width, int height, int interlaced, int capacityMode,
                                                    int connectorType, int interfaceType, int) const {
    const s_resolutionResolutionRatioArray list =
        findSDIConnectorResolutionRatios(capacityMode, connectorType, interfaceType);
    if (list.empty()) {
        qWarning().noquote() << "resolution config error";
        return {};
    }
    const s_resolutionResolutionRatio* found = findFirst(list, [&](const s_resolutionResolutionRatio& r) {
        return r.autoRefresh != 1 && r.width == width && r.height == height && r.interlaced == interlaced;
    });
    return found ? *found : s_resolutionResolutionRatio{};
}

s_ConnectorRefreshSet ConnectorConfigManager::findConnectorRates(int connectorType, int timingType) const {
    const s_PreSetTimingInterface* timing = findTiming(m_connectorFiles, connectorType, timingType);
    return timing ? timing->refresh : s_ConnectorRefreshSet{};
}

s_PreSetTimingInterface ConnectorConfigManager::findConnectorTiming(int connectorType, int timingType) const {
    const s_PreSetTimingInterface* timing = findTiming(m_connectorFiles, connectorType, timingType);
    return timing ? *timing : s_PreSetTimingInterface{};
}

s_resolutionResolutionRatioArray
ConnectorConfigManager::findInterfaceInterlacedResolu(int interfaceType) const {
    return interfaceType == m_resolution.typeValue ? m_resolution.typeResolutions
                                                   : s_resolutionResolutionRatioArray{};
}

const s_CapacityModeInInterface*
ConnectorConfigManager::entryHolding(const s_ConnectorResolutionRatios* ratios) const {
    if (!ratios) return nullptr;
    for (const s_VrnConnector& file : m_connectorFiles)
        for (const s_ConnectorCfg& c : file.connectors)
            for (const s_Interface& in : c.interfaces)
                for (const s_CapacityModeInInterface& mode : in.capacityModes)
                    if (&mode.resolutionRatios == ratios) return &mode;
    return nullptr; // a block that is not ours (an override's answer)
}

} // namespace ConfigModel
} // namespace LCD
