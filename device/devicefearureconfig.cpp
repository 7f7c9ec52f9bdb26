#include "device/devicefearureconfig.h"

#include "common/document.h"
#include "common/xmlread.h"

namespace LCD {
namespace ConfigModel {

using namespace xml;
using namespace Feature;

LCD_DEFINE_SINGLETON(DeviceFeatureConfigManager, DeviceFeature)

namespace {

// Texts are translated in the class's own context.
constexpr char kTrContext[] = "LCD::ConfigModel::DeviceFeatureConfigManager";

// Default tables shared by several sections of the file.
// A named range: "Value" is not read.
const Attrs kNamed = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Min", "0"}, {"Max", "255"}};
// Card, restore and upgrade options: value and data type 1.
const Attrs kCardOptions = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"}, {"DataType", "1"}};
// Project-file contents and device modes: value 1.
const Attrs kContained = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"}, {"DataType", "0"}};

// One walk over the "Device" element, section by section in the order they
// are processed. Each section is one transaction: it is read into fresh
// records and stored only when every required element was found; otherwise
// "Invalid [%1] node." names the first missing one and the walk goes on.
// Sections without required children (HDCP, DynamicRang, AntiStatic, ...) are
// therefore stored as soon as their element is found.
class Walk {
public:
    Walk(QString& error, const Loader& loader) : m_error(error), m_loader(loader) {}

    bool read(const QDomElement& root, s_DeviceFeature& f);

private:
    void readIdentity(const QDomElement& device, s_DeviceFeature& f);
    void readTypeName(const Children& device, s_DeviceFeature& f);
    void readFeatures(const Children& features, s_Features& f);
    void readDynamicRangConversion(const Children& features, s_Features& f);
    void readSystemSections(const Children& device, s_DeviceFeature& f);
    void readLateFeatures(const Children& features, s_Features& f);

    template <class Target, class Read> bool section(Target&& target, Read&& read) {
        return transact(std::forward<Target>(target), m_error, m_loader, std::forward<Read>(read));
    }

    QString& m_error;
    const Loader& m_loader;
};

bool Walk::read(const QDomElement& root, s_DeviceFeature& f) {
    Section required(m_error, m_loader); // "Device", "Features" and "HDR" are fatal
    const Children device(required.need(root, "Device"));
    if (!required.complete()) return false;
    const observe::Record r(RecordKind::Feature, 0, device.element());
    readIdentity(device.element(), f);
    readTypeName(device, f); // kept even when the parse fails below
    const Children features(required.need(device, "Features"));
    const QDomElement hdr = required.need(device, "HDR");
    if (!required.complete()) return false;

    f.hdr = readAs<s_SupportInfo>(hdr, kLenientPair); // hdrMode is never read
    // "LayerAlphaFunction" is optional: a missing one is skipped without a message
    if (const QDomElement alpha = device("LayerAlphaFunction"); !alpha.isNull()) {
        f.layerAlphaFunction = readAs<s_SupportInfo>(alpha, kLenientPair);
        f.layerAlphaValues.clear();
    }
    readFeatures(features, f.features);
    readSystemSections(device, f);
    section(f.deviceSelfTest, [&](Section& s, s_SupportInfo& selfTest) {
        // only "Support" is read; editable stays -1
        update(s.need(device, "DeviceSelfTest"), {{"Support", "1"}}, selfTest);
    });
    section(f.interfaceGroup, [&](Section& s, s_SupportInfo& group) {
        group = readAs<s_SupportInfo>(s.need(device, "InterfaceGroup"), kLenientPair);
    });
    readLateFeatures(features, f.features);
    return true;
}

void Walk::readIdentity(const QDomElement& device, s_DeviceFeature& f) {
    f.moduleId = static_cast<quint16>(uintAttr(device, "ModuleId")); // the low 16 bits
    f.connectorPluginMode = static_cast<quint16>(uintAttr(device, "ConnectorPluginMode", "0"));
    f.seriesShortName = textAttr(device, "SeriesShortName");
    f.name = textAttr(device, "Name");
}

// Not transactional: each field is kept as soon as it is read, and the first
// missing element ends the section.
void Walk::readTypeName(const Children& device, s_DeviceFeature& f) {
    QDomElement typeName;
    if (!section(f.icon, [&](Section& s, std::string& icon) {
            typeName = s.need(device, "TypeName");
            icon = textAttr(typeName, "Icon");
        }))
        return;
    if (!section(f.enName, [&](Section& s, std::string& en) {
            en = elementText(s.need(typeName, "en")).toStdString();
        }))
        return;
    section(f.zhName,
            [&](Section& s, std::string& zh) { zh = elementText(s.need(typeName, "zh_CN")).toStdString(); });
}

void Walk::readFeatures(const Children& features, s_Features& f) {
    section(std::tie(f.screen, f.screenId, f.screenType), [&](Section& s, auto& local) {
        auto& [screen, screenId, screenType] = local;
        const Attrs type = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"}};
        const QDomElement e = s.need(features, "Screen");
        screen = readAs<s_SupportInfo>(e, kLenientPair);
        screenId = readAs<s_RangeValue>(s.need(e, "ScreenId"), kNamed);
        screenType = readAs<s_OptionList>(s.need(e, "ScreenType"), type, ListFrom::AnyChild);
    });
    section(f.genlock, [&](Section& s, s_Genlock& g) {
        const QDomElement genlock = s.need(features, "Genlock");
        g.genlock = readAs<s_SupportInfo>(genlock, kLenientPair);
        g.type = readAs<s_OptionList>(s.need(genlock, "Type"), kLenientOptions, ListFrom::AnyChild);
        const QDomElement phase = s.need(genlock, "Phase");
        g.phase = readAs<s_SupportInfo>(phase, kLenientPair);
        g.phaseEnable = readAs<s_OptionList>(s.need(phase, "Enable"), kLenientOptions, ListFrom::AnyChild);
        g.phaseOffset = readAs<s_RangeValue>(s.need(phase, "Offset"), kLenient);
    });
    section(f.hdcp, [&](Section& s, s_SupportInfo& hdcp) {
        hdcp = readAs<s_SupportInfo>(s.need(features, "HDCP"), kLenientPair);
    });
    readDynamicRangConversion(features, f);
    section(f.dynamicRang, [&](Section& s, s_ValueSetting& range) {
        range = readAs<s_ValueSetting>(s.need(features, "DynamicRang"), kLenientOptions);
    });
    section(f.interfaceMapping, [&](Section& s, s_InterfaceMapping& m) {
        const QDomElement mapping = s.need(features, "InterfaceMapping");
        m.mapping = readAs<s_SupportInfo>(mapping, kLenientPair);
        m.type = readAs<s_OptionList>(s.need(mapping, "Type"), kLenientOptions, ListFrom::AnyChild);
        const QDomElement pattern = s.need(mapping, "TestPattern");
        s_TestPattern& p = m.testPattern;
        p.pattern = readAs<s_SupportInfo>(pattern, kLenientPair);
        p.enable = readAs<s_OptionList>(s.need(pattern, "Enable"), kLenientOptions, ListFrom::AnyChild);
        p.type = readAs<s_OptionList>(s.need(pattern, "Type"), kLenientOptions, ListFrom::AnyChild);
        p.bright = readAs<s_RangeValue>(s.need(pattern, "Bright"), kLenient);
        p.gridSpace = readAs<s_RangeValue>(s.need(pattern, "GridSpace"), kLenient);
        p.gridLineWidth = readAs<s_RangeValue>(s.need(pattern, "GridLineWidth"), kLenient);
        p.speed = readAs<s_RangeValue>(s.need(pattern, "Speed"), kLenient);
    });
    section(std::tie(f.cutoutPos, f.cutoutEnable, f.cutoutType), [&](Section& s, auto& local) {
        auto& [cutoutPos, enable, type] = local;
        const QDomElement e = s.need(features, "CutoutPos");
        cutoutPos = readAs<s_SupportInfo>(e, kLenientPair);
        enable = readAs<s_OptionList>(s.need(e, "Enable"), kLenientOptions, ListFrom::AnyChild);
        type = readAs<s_OptionList>(s.need(e, "Type"), kLenientOptions, ListFrom::AnyChild);
    });
    section(std::tie(f.group, f.groupName), [&](Section& s, auto& local) {
        auto& [group, name] = local;
        const Attrs text = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"},
                            {"Value", ""},     {"Min", "0"},     {"Max", "255"}};
        const QDomElement e = s.need(features, "Group");
        group = readAs<s_SupportInfo>(e, kLenientPair);
        name = readAs<s_TextRange>(s.need(e, "Name"), text);
    });
    // "Swap" and "Language" are enumerated settings on the section element itself
    section(f.swap, [&](Section& s, s_OptionList& swap) {
        swap = readAs<s_OptionList>(s.need(features, "Swap"), kLenientOptions, ListFrom::EnumFirst);
    });
    section(f.language, [&](Section& s, s_OptionList& language) {
        language = readAs<s_OptionList>(s.need(features, "Language"), kLenientOptions, ListFrom::EnumFirst);
    });
    section(std::tie(f.switchEffect, f.switchTime, f.switchDirection), [&](Section& s, auto& local) {
        auto& [effect, time, direction] = local;
        const Attrs timeAttrs = {{"Support", "1"}, {"Editable", "1"}, {"Value", "500"},
                                 {"Min", "100"},   {"Max", "10000"},  {"DataType", "2"}};
        const Attrs directionAttrs = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"},
                                      {"Min", "0"},     {"Max", "1"},      {"DataType", "2"}};
        const QDomElement e = s.need(features, "SwitchEffect");
        effect = readAs<s_SupportInfo>(e, kLenientPair);
        time = readAs<s_RangeValue>(s.need(e, "Time"), timeAttrs);
        direction = readAs<s_RangeValue>(s.need(e, "Direction"), directionAttrs);
    });
}

// Three steps. Without "Enable" the section's own settings are skipped
// silently; a missing "Type" abandons everything, "LayerModes" included.
// "LayerModes" is optional and stored on its own.
void Walk::readDynamicRangConversion(const Children& features, s_Features& f) {
    const QDomElement drc = Section(m_error, m_loader).need(features, "DynamicRangConversion");
    if (drc.isNull()) return;
    if (!child(drc, "Enable").isNull()) {
        const bool complete =
            section(std::tie(f.dynamicRangConversion, f.drcEnable, f.drcType), [&](Section& s, auto& local) {
                auto& [conversion, enable, type] = local;
                conversion = readAs<s_SupportInfo>(drc, kLenientPair);
                enable = readAs<s_OptionList>(s.need(drc, "Enable"), kLenientOptions, ListFrom::AnyChild);
                type = readAs<s_OptionList>(s.need(drc, "Type"), kLenientOptions, ListFrom::AnyChild);
            });
        if (!complete) return;
        f.layerModes = {};
        f.layerModesList.clear();
    }
    if (const QDomElement modes = child(drc, "LayerModes"); !modes.isNull()) {
        f.layerModes = readAs<s_SupportInfo>(modes, kLenientPair);
        f.layerModesList = readEachChild(modes, RecordKind::FeatureLayerMode, [](const QDomElement& mode) {
            return s_LayerModesSupportInfo{intAttr(mode, "HDRSupport"), intAttr(mode, "Value")};
        });
    }
}

void Walk::readSystemSections(const Children& device, s_DeviceFeature& f) {
    section(std::tie(f.general, f.generalName, f.generalStatus), [&](Section& s, auto& local) {
        auto& [general, name, status] = local;
        const QDomElement e = s.need(device, "General");
        general = readAs<s_SupportInfo>(e, kLenientPair);
        name = readAs<s_RangeValue>(s.need(e, "Name"), kNamed);
        status = readAs<s_OptionList>(s.need(e, "Status"), kLenientOptions, ListFrom::EnumFirst);
    });
    section(std::tie(f.networks, f.network), [&](Section& s, auto& local) {
        auto& [networks, network] = local;
        const QDomElement e = s.need(device, "NetWorks");
        networks = readAs<s_SupportInfo>(e, kLenientPair);
        const QDomElement net = s.need(e, "NetWork"); // only the first one counts
        update(net, {{"Support", "1"}, {"Editable", "1"}, {"Index", "1"}}, network);
        network.dhcp = readAs<s_OptionList>(s.need(net, "Dhcp"), kLenientOptions, ListFrom::EnumFirst);
        network.ip = readAs<s_TextRange>(s.need(net, "Ip"), kLenientOptions);
        network.subNetMask = readAs<s_TextRange>(s.need(net, "SubNetMask"), kLenientOptions);
        network.gateway = readAs<s_TextRange>(s.need(net, "Gateway"), kLenientOptions);
    });
    section(f.projectFile, [&](Section& s, s_ProjectFile& p) {
        const Attrs fileId = {{"Support", "0"}, {"Editable", "1"}, {"DataType", "0"},
                              {"Value", "0"},   {"Min", "0"},      {"Max", "0"}};
        const QDomElement e = s.need(device, "ProjectFile");
        p.projectFile = readAs<s_SupportInfo>(e, kLenientPair);
        p.fileId = readAs<s_RangeValue>(s.need(e, "FileId"), fileId);
        p.fileType = readAs<s_OptionList>(s.need(e, "FileType"), kLenientOptions, ListFrom::EnumFirst);
        const QDomElement general = s.need(e, "FileGeneral");
        p.fileGeneral = readAs<s_SupportInfo>(general, {{"Support", "0"}, {"Editable", "1"}});
        p.fileGeneralName = readAs<s_RangeValue>(s.need(general, "Name"), kNamed);
        const QDomElement contain = s.need(e, "Contain");
        p.contain.contain = readAs<s_SupportInfo>(contain, kLenientPair);
        p.contain.other = readAs<s_OptionList>(s.need(contain, "Other"), kContained, ListFrom::EnumFirst);
        p.contain.bkg = readAs<s_OptionList>(s.need(contain, "BKG"), kContained, ListFrom::EnumFirst);
        p.contain.logo = readAs<s_OptionList>(s.need(contain, "Logo"), kContained, ListFrom::EnumFirst);
        p.contain.preset = readAs<s_OptionList>(s.need(contain, "Preset"), kContained, ListFrom::EnumFirst);
    });
    section(std::tie(f.file, f.fileItems), [&](Section& s, auto& local) {
        auto& [file, items] = local;
        const QDomElement e = s.need(device, "File");
        file = readAs<s_SupportInfo>(e, kLenientPair);
        items = readEachChild(e, RecordKind::FeatureFileItem,
                              [](const QDomElement& i) { return readAs<s_RangeValue>(i, kEmpty); });
    });
    section(f.deviceModes, [&](Section& s, s_OptionList& modes) {
        modes = readAs<s_OptionList>(s.need(device, "DeviceModes"), kContained, ListFrom::EnumFirst);
    });
    section(std::tie(f.powerCtrl, f.powerCtrlType), [&](Section& s, auto& local) {
        auto& [powerCtrl, type] = local;
        const QDomElement e = s.need(device, "PowerCtrl");
        powerCtrl = readAs<s_SupportInfo>(e, kLenientPair);
        type = readAs<s_OptionList>(s.need(e, "Type"), kLenientOptions, ListFrom::AnyChild);
    });
    section(f.subcard, [&](Section& s, s_Subcard& c) {
        const QDomElement e = s.need(device, "Subcard");
        c.subcard = readAs<s_SupportInfo>(e, kLenientPair);
        c.cardType = readAs<s_OptionList>(s.need(e, "CardType"), kLenientOptions, ListFrom::AnyChild);
        const QDomElement connector = s.need(e, "Connector");
        c.connector.connector = readAs<s_SupportInfo>(connector, kLenientPair);
        c.connector.type = readAs<s_OptionList>(s.need(connector, "Type"), kCardOptions, ListFrom::AnyChild);
        c.connector.workMode =
            readAs<s_OptionList>(s.need(connector, "WorkMode"), kCardOptions, ListFrom::AnyChild);
        c.connector.capacityMode =
            readAs<s_OptionList>(s.need(connector, "CapacityMode"), kCardOptions, ListFrom::AnyChild);
    });
    section(std::tie(f.restoreFactory, f.restoreFactoryType), [&](Section& s, auto& local) {
        auto& [restore, type] = local;
        const QDomElement e = s.need(device, "RestoreFactory");
        restore = readAs<s_SupportInfo>(e, kLenientPair);
        type = readAs<s_OptionList>(s.need(e, "Type"), kCardOptions, ListFrom::AnyChild);
    });
    section(f.upgrade, [&](Section& s, s_Upgrade& u) {
        const QDomElement e = s.need(device, "Upgrade");
        u.upgrade = readAs<s_SupportInfo>(e, kLenientPair);
        u.type = readAs<s_OptionList>(s.need(e, "Type"), kCardOptions, ListFrom::AnyChild);
        u.reboot = readAs<s_OptionList>(s.need(e, "Reboot"), kCardOptions, ListFrom::AnyChild);
        u.deleteFile = readAs<s_OptionList>(s.need(e, "DeleteFile"), kCardOptions, ListFrom::AnyChild);
        const QDomElement cards = s.need(e, "Cards");
        u.cards = readAs<s_SupportInfo>(cards, kLenientPair);
        u.cardsType = readAs<s_OptionList>(s.need(cards, "Type"), kCardOptions, ListFrom::AnyChild);
    });
}

// The three "Features" sections read after the system sections.
void Walk::readLateFeatures(const Children& features, s_Features& f) {
    section(std::tie(f.thirdPlugins, f.thirdPluginList), [&](Section& s, auto& local) {
        const QDomElement e = s.need(features, "ThirdPlugins");
        const s_SupportInfo pair = readAs<s_SupportInfo>(e, kLenientPair);
        // every entry repeats the section's own pair; only "Type" is the entry's
        local = {pair, readEachChild(e, RecordKind::ThirdPlugin, [&](const QDomElement& plugin) {
                     return s_ThirdPlugin{pair.support, pair.editable, intAttr(plugin, "Type")};
                 })};
    });
    section(std::tie(f.antiStatic, f.antiStaticEnable, f.antiStaticValue, f.antiStaticMin, f.antiStaticMax),
            [&](Section& s, auto& local) {
                auto& [antiStatic, enable, value, min, max] = local;
                const QDomElement e = s.need(features, "AntiStatic");
                antiStatic = readAs<s_SupportInfo>(e, kLenientPair);
                // two children by position, whatever their names; a missing one reads as its defaults
                const QDomElement first = child(e);
                enable = intAttr(first, "Value", "1");
                const auto range =
                    readAs<s_RangeValue>(next(first), {{"Value", "1"}, {"Min", "1"}, {"Max", "1"}});
                std::tie(value, min, max) = std::tie(range.value, range.min, range.max);
            });
    section(f.checkBlank, [&](Section& s, s_OptionList& blank) {
        const Attrs attrs = {{"Support", "1"}, {"Editable", "1"}, {"Value", "110"}}; // "DataType" is not read
        blank = readAs<s_OptionList>(s.need(features, "CheckBlank"), attrs, ListFrom::AnyChild);
    });
}

} // namespace

DeviceFeatureConfigManager::DeviceFeatureConfigManager() = default;
DeviceFeatureConfigManager::~DeviceFeatureConfigManager() = default;

bool DeviceFeatureConfigManager::parseDeviceFeaturecfg(const QString& path, QString& error,
                                                       s_DeviceFeature& feature) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    QDomDocument doc;
    return loadDocument(path, loader, doc, error) && Walk(error, loader).read(doc.documentElement(), feature);
}

bool DeviceFeatureConfigManager::parseDeviceFeaturecfg(const QDomDocument& doc, QString& error,
                                                       s_DeviceFeature& feature) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    return checkDocumentRoot(doc, loader, error) && Walk(error, loader).read(doc.documentElement(), feature);
}

} // namespace ConfigModel
} // namespace LCD
