#include "catalogue/connectorconfig.h"

#include "common/document.h"
#include "common/facts.h"
#include "common/xmlread.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>

#include <algorithm>

KVC_REGISTER_COMPONENT(LCD::ConfigModel::ConnectorConfigManager,
                       LCD::ConfigModel::facts::component(LCD::ConfigModel::facts::Component::Connectors).id)

namespace LCD {
namespace ConfigModel {

using namespace Connector;
using namespace xml;

namespace {

// Texts are translated in the class's own context.
constexpr char kTrContext[] = "LCD::ConfigModel::ConnectorConfigManager";

// ---- the resolution file -----------------------------------------------------

// Resolutions of the standard catalogue and of the "Types" group: every
// attribute is read, so a missing "Interlaced" gives 0.
s_resolutionResolutionRatio readCatalogueResolution(const QDomElement& e) {
    return readAs<s_resolutionResolutionRatio>(
        e, {{"Width", ""}, {"Height", ""}, {"RefreshRate", ""}, {"Interlaced", ""}, {"StandardType", ""}});
}

// The interface table that follows "ResolutionRatios": connector, interface,
// capacity mode, resolution, value. "Coefficient" is not read (stays 0.01).
s_resolutionResolutionRatio readTableResolution(const QDomElement& e) {
    return readAs<s_resolutionResolutionRatio>(e,
                                               {{"AutoRefresh", ""},
                                                {"Width", ""},
                                                {"Height", ""},
                                                {"RefreshRate", ""},
                                                {"Interlaced", ""},
                                                {"StandardType", ""}},
                                               ListFrom::AnyChild);
}

s_ResoluCapacityMode readTableCapacityMode(const QDomElement& e) {
    return {intAttr(e, "Value"), readEachChild(e, RecordKind::TableResolution, readTableResolution)};
}

s_ConnectorInterface readTableInterface(const QDomElement& e) {
    auto in = readAs<s_ConnectorInterface>(e, {{"Support", ""}, {"Editable", ""}, {"Type", ""}});
    if (const QDomElement modes = child(e); isNamed(modes, "ResolutionRatios")) // else no capacity modes
        in.capacityModes = readEachChild(modes, RecordKind::TableMode, readTableCapacityMode);
    return in;
}

s_Connector readTableConnector(const QDomElement& e) {
    return {intAttr(e, "Type"), readEachChild(e, RecordKind::TableInterface, readTableInterface)};
}

// ---- the connector description -------------------------------------------------
//
// Every reader below leaves its record untouched for a null element: an
// optional element that is missing keeps the initial values, and after the
// first missing required element (Section returns null from then on) nothing
// more is read. Attributes are read with an empty default (absent gives 0), in
// the order of their table. need: required; kLogged: required, and its absence
// also written as a "Log:" warning; child: optional.

constexpr Missing kLogged = Missing::EndsLogged;
// Timing ranges read all six attributes in this order.
const Attrs kTimingRange{{"Support", ""}, {"Editable", ""}, {"Min", ""},
                         {"Max", ""},     {"DataType", ""}, {"Value", ""}};
// Preset porch, sync and total: their "Max" and "Value" keep the defaults.
const Attrs kPresetRange{{"Support", ""}, {"Editable", ""}, {"Min", ""}, {"DataType", ""}};
const Attrs kLimit{{"Support", ""}, {"Editable", ""}, {"DataType", ""}, {"Min", ""}, {"Max", ""}};
const Attrs kBandWidth{{"Support", ""}, {"Editable", ""}, {"Max", ""}, {"Min", ""}};
const Attrs kTypeHeader{{"Support", ""}, {"Editable", ""}, {"DataType", ""}};
const Attrs kRefresh{{"Support", ""}, {"Editable", ""}, {"Value", ""}, {"DataType", ""}, {"Coefficient", ""}};
const Attrs kCount{{"Support", ""}, {"Editable", ""}, {"DataType", ""}, {"Value", ""}, {"RangeType", ""}};
const Attrs kCutoutRatio{{"Support", ""}, {"Editable", ""},  {"DataType", ""},
                         {"Value", ""},   {"RangeType", ""}, {"Coefficient", ""}};
// Contrast and brightness channels have no "Editable".
const Attrs kChannel{{"Support", ""}, {"Max", ""}, {"Min", ""}, {"DataType", ""}, {"Value", ""}};
const Attrs kPicture{{"Support", ""},  {"Max", ""},   {"Min", ""},
                     {"DataType", ""}, {"Value", ""}, {"Editable", ""}};
const Attrs kRgbRange{{"Support", ""}, {"Editable", ""}, {"Max", ""},
                      {"Min", ""},     {"DataType", ""}, {"Value", ""}};

void readNames(Section& s, const QDomElement& e, std::string& zh_CN, std::string& en) {
    zh_CN = firstNodeText(s.need(e, "zh_CN"));
    en = firstNodeText(s.need(e, "en"));
}

void readResolutionRatios(const QDomElement& e, s_ConnectorResolutionRatios& out) {
    update(e, kEmptyPair, out);
    const Children ratio(child(e, "ResolutionRatio"));
    update(ratio.element(), kEmptyPair, out.resolutionRatio);
    s_ConnectorResolutionRatio& r = out.resolutionRatio;
    const QDomElement width = ratio("Width");
    update(width, kEmpty, r.width.range);
    update(width, {{"Step", ""}}, r.width); // not range.step, which stays 1.0
    const QDomElement height = ratio("Height");
    update(height, kEmpty, r.height.range);
    update(height, {{"Step", ""}}, r.height);
    const QDomElement rate = ratio("RefreshRate");
    update(rate, kEmpty, r.refreshRate.range);
    update(rate, {{"Coefficient", ""}}, r.refreshRate);
}

void readAdvancedAxis(const QDomElement& e, s_ConnectorTimingAxis& axis) {
    update(e, kEmptyPair, axis);
    const Children c(e);
    update(c("AddTime"), kTimingRange, axis.addTime);
    update(c("FrontPorch"), kTimingRange, axis.frontPorch);
    update(c("Sync"), kTimingRange, axis.sync);
    update(c("TotalTime"), kTimingRange, axis.totalTime);
    // The values listed under "SyncPolarity" have no place in the axis record.
    update(c("SyncPolarity"), kEmptyOptions, axis.polarity);
}

void readCapacityMode(Section& s, const QDomElement& e, s_CapacityModeInInterface& mode) {
    update(e, {{"Support", ""}, {"Editable", ""}, {"Value", ""}}, mode);
    const Children c(e);
    update(s.need(c, "BandWidth"), kBandWidth, mode.bandWidth);
    readResolutionRatios(s.need(c, "ResolutionRatios"), mode.resolutionRatios);

    const QDomElement adv = c("AdvResolutionRatio"); // optional, as are its children
    update(adv, kEmptyPair, mode.advResolutionRatio);
    readAdvancedAxis(child(adv, "Horizontal"), mode.advResolutionRatio.horizontal);
    readAdvancedAxis(child(adv, "Vertical"), mode.advResolutionRatio.vertical);

    mode.disables = readEachChild(
        c("Disables"), RecordKind::ModeDisable, [](const QDomElement& d) { // optional; interlaced stays 1
            return readAs<s_resolutionResolutionRatio>(
                d, {{"Width", ""}, {"Height", ""}, {"RefreshRate", ""}, {"Coefficient", ""}});
        });
}

void readCapacityModes(Section& s, const QDomElement& e, s_ConnectorCfg& c) {
    if (e.isNull()) return;
    const auto pair = readAs<s_SupportInfo>(e, kEmptyPair);
    std::tie(c.capacityModeSupport, c.capacityModeEditable) = std::tie(pair.support, pair.editable);
    c.interfaces = readEachChild(e, RecordKind::DescriptionInterface, [&](const QDomElement& i) {
        s_Interface in;
        in.type = intAttr(i, "Type");
        in.capacityModes = readEachChild(i, RecordKind::InterfaceMode, [&](const QDomElement& m) {
            s_CapacityModeInInterface mode;
            readCapacityMode(s, m, mode);
            return mode;
        });
        return in;
    });
}

void readHdcp(Section& s, const QDomElement& e, s_ConnectorHDCP& hdcp) {
    update(e, kEmptyPair, hdcp);
    hdcp.interfaces = readEachChild(e, RecordKind::HdcpInterface, [&](const QDomElement& i) {
        s_InterfaceInHDCP in;
        in.type = intAttr(i, "Type");
        update(s.need(i, "Enable", kLogged), kEmptyOptions, ListFrom::AnyChild, in.enable);
        update(child(i, "Type"), kEmptyOptions, ListFrom::AnyChild, in.typeSet); // optional
        return in;
    });
}

void readGeneral(Section& s, const QDomElement& e, s_ConnectorGeneral& general) {
    update(e, kEmptyPair, general);
    const Children c(e);
    update(s.need(c, "Type", kLogged), kTypeHeader, ListFrom::AnyChild, general.type);
    update(s.need(c, "Name", kLogged), kLimit, general.name);
    update(s.need(c, "NameGB2312", kLogged), kLimit, general.nameGB2312);
}

void readPresetAxis(Section& s, const QDomElement& e, s_PresetTimingAxis& axis) {
    update(e, kEmptyPair, axis);
    const Children c(e);
    update(s.need(c, "AddTime", kLogged), kTimingRange, axis.addTime);
    update(s.need(c, "FrontPorch", kLogged), kPresetRange, axis.frontPorch);
    update(s.need(c, "Sync", kLogged), kPresetRange, axis.sync);
    update(s.need(c, "TotalTime", kLogged), kPresetRange, axis.totalTime);
    update(s.need(c, "SyncPolarity", kLogged), kEmptyOptions, ListFrom::AnyChild, axis.polarity);
}

void readPresetTiming(Section& s, const QDomElement& e, s_ConnectorPresetTiming& timing) {
    update(e, kEmptyPair, timing);
    timing.interfaces = readEachChild(e, RecordKind::TimingInterface, [&](const QDomElement& i) {
        s_PreSetTimingInterface t;
        t.type = intAttr(i, "Type");
        const Children c(i);
        update(s.need(c, "Interlaced", kLogged), kEmptyOptions, ListFrom::AnyChild, t.interlaced);
        update(s.need(c, "BandWidth", kLogged), kLimit, t.bandWidth);
        update(s.need(c, "Refresh", kLogged), kRefresh, ListFrom::AnyChild, t.refresh);
        readPresetAxis(s, s.need(c, "Horizontal", kLogged), t.horizontal);
        readPresetAxis(s, s.need(c, "Vertical", kLogged), t.vertical);
        return t;
    });
}

// "ColorDepths", "ColorSpaces", "ColorRanges": per interface one enum set.
template <class Group, class Item>
void readColorGroup(Section& s, const QDomElement& e, const char* setTag, Group& group,
                    s_ConnectorEnumSet Item::*set) {
    update(e, kEmptyPair, group);
    group.interfaces = readEachChild(e, RecordKind::ColorInterface, [&](const QDomElement& i) {
        Item item;
        item.type = intAttr(i, "Type");
        update(s.need(i, setTag, kLogged), kEmptyOptions, ListFrom::AnyChild, item.*set);
        return item;
    });
}

void readRGB(Section& s, const QDomElement& e, s_ConnectorRGB& rgb) {
    update(e, {{"Support", ""}}, rgb);
    const Children c(e);
    update(s.need(c, "R"), kChannel, rgb.r);
    update(s.need(c, "G"), kChannel, rgb.g);
    update(s.need(c, "B"), kChannel, rgb.b);
}

void readImageQuality(Section& s, const QDomElement& e, s_ConnectorImageQuality& quality) {
    update(e, kEmptyPair, quality);
    quality.interfaces = readEachChild(e, RecordKind::QualityInterface, [&](const QDomElement& i) {
        s_InterfaceInImageQuality q;
        q.type = intAttr(i, "Type");
        const Children c(i);
        readRGB(s, s.need(c, "Contrast"), q.contrast);
        readRGB(s, s.need(c, "Brightness"), q.brightness);
        update(s.need(c, "Hue"), kPicture, q.hue);
        update(s.need(c, "Saturation"), kPicture, q.saturation);
        const QDomElement gamma = s.need(c, "Gamma");
        update(gamma, kPicture, q.gamma);
        if (!gamma.isNull()) q.gammaCoefficient = floatAttr(gamma, "Coefficient");
        return q;
    });
}

void readCrop(Section& s, const QDomElement& e, s_ConnectorCrop& crop) {
    update(e, kEmptyPair, crop);
    const Children c(e);
    update(s.need(c, "Enable"), kEmptyOptions, ListFrom::AnyChild, crop.enable);
    update(s.need(c, "XRatio"), kCutoutRatio, crop.xRatio);
    update(s.need(c, "YRatio"), kCutoutRatio, crop.yRatio);
    update(s.need(c, "WidthRatio"), kCutoutRatio, crop.widthRatio);
    update(s.need(c, "HeightRatio"), kCutoutRatio, crop.heightRatio);
    update(s.need(c, "MaxCount"), kCount, crop.maxCount);
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

    QDomDocument doc; // one for every file: it is let go as the next file is parsed
    for (const QString& filePath : facts::connectorFiles(path)) {
        if (!parseDocumentFile(filePath, loader, doc, error) || !checkDocumentRoot(doc, loader, error))
            return false; // what earlier files brought stays loaded

        // The first element decides the kind of file; any other kind is skipped.
        const QDomElement first = child(doc.documentElement());
        if (isNamed(first, "ResolutionRatios")) {
            if (!readConfigResolution(first, m_resolution)) {
                error = loader.text("Resolution file parsed error.");
                observe::diagnose(DiagnosticKind::FileRejected, error, first);
                return false;
            }
            m_connectors = readEachChild(next(first), RecordKind::TableConnector, readTableConnector);
        } else if (isNamed(first, "Connectors")) {
            const observe::Record r(RecordKind::ConnectorFile, m_connectorFiles.size(), first);
            s_VrnConnector file;
            forEachChild(first, [&](const QDomElement& e) {
                const observe::Record r(RecordKind::ConnectorDescription, file.connectors.size(), e);
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
            const QDomElement type = child(k);
            const QDomElement group = child(type);
            if (group.isNull()) return;
            catalogue.typeValue = intAttr(type, "Value");
            catalogue.typeResolutions = readEachChild(group, RecordKind::Resolution, readCatalogueResolution);
        } else { // any other name is a capacity mode
            const observe::Record r(RecordKind::ResolutionMode, catalogue.capacityModes.size(), k);
            catalogue.capacityModes.push_back(
                {intAttr(k, "Value"), readEachChild(k, RecordKind::Resolution, readCatalogueResolution)});
        }
    });
    out = std::move(catalogue);
    return true;
}

// One connector description, read into a fresh record that is committed only
// when every required element was found.
bool ConnectorConfigManager::readConfigConnector(const QDomElement& connector, QString& error,
                                                 s_ConnectorCfg& out) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    return transact(out, error, loader, [&](Section& s, s_ConnectorCfg& c) {
        const Children e(connector);
        c.type = intAttr(connector, "Type");
        c.icon = textAttr(connector, "Icon");
        readNames(s, s.need(e, "Name"), c.name.zh_CN, c.name.en);
        readNames(s, s.need(e, "ShortName"), c.shortName.zh_CN, c.shortName.en);
        c.signalType = intAttr(s.need(e, "SignalType"), "Value");
        readCapacityModes(s, s.need(e, "CapacityMode"), c);
        readHdcp(s, s.need(e, "HDCP", kLogged), c.hdcp);
        readGeneral(s, s.need(e, "General", kLogged), c.general);
        readPresetTiming(s, s.need(e, "PresetTiming", kLogged), c.presetTiming);
        readColorGroup(s, s.need(e, "ColorDepths", kLogged), "ColorDepth", c.colorDepths,
                       &s_InterfaceInColorDepth::colorDepth);
        readColorGroup(s, s.need(e, "ColorSpaces", kLogged), "ColorSpace", c.colorSpaces,
                       &s_InterfaceInColorSpace::colorSpace);
        readColorGroup(s, s.need(e, "ColorRanges", kLogged), "ColorRange", c.colorRanges,
                       &s_InterfaceInColorRange::colorRange);
        update(s.need(e, "FormatMapping", kLogged), kEmptyOptions, ListFrom::AnyChild,
               c.dynamicRange.formatMapping);
        update(s.need(e, "DynamicRange", kLogged), kEmptyPair, c.dynamicRange);
        readImageQuality(s, s.need(e, "ImageQuality"), c.imageQuality);
        readCrop(s, s.need(e, "Crop"), c.crop);
        const QDomElement timingSelect = s.need(e, "TimingSelect");
        update(timingSelect, kEmptyPair, c.timingSelect);
        update(s.need(timingSelect, "Select"), kEmptyOptions, ListFrom::AnyChild, c.timingSelect.select);
        update(s.need(e, "EDID"), kEmptyPair, c.edid);
        // c.hdr: no element of a connector file fills it.
    });
}

// The child `tag` of `parent` must exist ("Invalid [%1] node.", untranslated,
// otherwise); `out` keeps its step.
namespace {
bool readRequiredRange(const QDomElement& parent, const QLatin1String& tag, Attrs attrs, s_RangeValue& out,
                       QString& error) {
    const Loader loader{kDeviceFile, nullptr, LCD_LOG_SITE};
    Section s(error, loader);
    const QByteArray name(tag.data(), tag.size());
    update(s.need(parent, name.constData()), attrs, out);
    return s.complete();
}
} // namespace

bool ConnectorConfigManager::getAttribute(s_RangeValue& out, const QDomElement& parent,
                                          const QLatin1String& tag, QString& error) {
    return readRequiredRange(parent, tag, kEmpty, out, error);
}

bool ConnectorConfigManager::getRGB(s_RangeValue& out, const QDomElement& parent, const QLatin1String& tag,
                                    QString& error) {
    return readRequiredRange(parent, tag, kRgbRange, out, error);
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
