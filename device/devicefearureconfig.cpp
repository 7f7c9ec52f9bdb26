#include "device/devicefearureconfig.h"

#include "common/document.h"
#include "common/xmlread.h"

namespace LCD {
namespace ConfigModel {

using namespace xml;
using namespace Feature;

LCD_DEFINE_SINGLETON(DeviceFeatureConfigManager, DeviceFeature)

namespace {

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
    readIdentity(device.element(), f);
    readTypeName(device, f); // kept even when the parse fails below
    const Children features(required.need(device, "Features"));
    const QDomElement hdr = required.need(device, "HDR");
    if (!required.complete()) return false;

    f.hdr = readPair(hdr); // hdrMode is never read
    // "LayerAlphaFunction" is optional: a missing one is skipped without a message
    if (const QDomElement alpha = device("LayerAlphaFunction"); !alpha.isNull()) {
        f.layerAlphaFunction = readPair(alpha);
        f.layerAlphaValues.clear();
    }
    readFeatures(features, f.features);
    readSystemSections(device, f);
    section(f.deviceSelfTest, [&](Section& s, s_SupportInfo& selfTest) {
        // only "Support" is read; editable stays -1
        readInts(s.need(device, "DeviceSelfTest"), {{"Support", &selfTest.support, "1"}});
    });
    section(f.interfaceGroup,
            [&](Section& s, s_SupportInfo& group) { group = readPair(s.need(device, "InterfaceGroup")); });
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
    if (!section(f.enName, [&](Section& s, std::string& en) { en = text(s.need(typeName, "en")); })) return;
    section(f.zhName, [&](Section& s, std::string& zh) { zh = text(s.need(typeName, "zh_CN")); });
}

void Walk::readFeatures(const Children& features, s_Features& f) {
    section(std::tie(f.screen, f.screenId, f.screenType), [&](Section& s, auto& local) {
        auto& [screen, screenId, screenType] = local;
        const Attrs type = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"}};
        const QDomElement e = s.need(features, "Screen");
        screen = readPair(e);
        screenId = readRange(s.need(e, "ScreenId"), kNamed);
        screenType = readOptions(s.need(e, "ScreenType"), type, ListFrom::AnyChild);
    });
    section(f.genlock, [&](Section& s, s_Genlock& g) {
        const QDomElement genlock = s.need(features, "Genlock");
        g.genlock = readPair(genlock);
        g.type = readOptions(s.need(genlock, "Type"), kLenientOptions, ListFrom::AnyChild);
        const QDomElement phase = s.need(genlock, "Phase");
        g.phase = readPair(phase);
        g.phaseEnable = readOptions(s.need(phase, "Enable"), kLenientOptions, ListFrom::AnyChild);
        g.phaseOffset = readRange(s.need(phase, "Offset"), kLenient);
    });
    section(f.hdcp, [&](Section& s, s_SupportInfo& hdcp) { hdcp = readPair(s.need(features, "HDCP")); });
    readDynamicRangConversion(features, f);
    section(f.dynamicRang, [&](Section& s, s_ValueSetting& range) {
        range = readValueSetting(s.need(features, "DynamicRang"), kLenientOptions);
    });
    section(f.interfaceMapping, [&](Section& s, s_InterfaceMapping& m) {
        const QDomElement mapping = s.need(features, "InterfaceMapping");
        m.mapping = readPair(mapping);
        m.type = readOptions(s.need(mapping, "Type"), kLenientOptions, ListFrom::AnyChild);
        const QDomElement pattern = s.need(mapping, "TestPattern");
        s_TestPattern& p = m.testPattern;
        p.pattern = readPair(pattern);
        p.enable = readOptions(s.need(pattern, "Enable"), kLenientOptions, ListFrom::AnyChild);
        p.type = readOptions(s.need(pattern, "Type"), kLenientOptions, ListFrom::AnyChild);
        p.bright = readRange(s.need(pattern, "Bright"), kLenient);
        p.gridSpace = readRange(s.need(pattern, "GridSpace"), kLenient);
        p.gridLineWidth = readRange(s.need(pattern, "GridLineWidth"), kLenient);
        p.speed = readRange(s.need(pattern, "Speed"), kLenient);
    });
    section(std::tie(f.cutoutPos, f.cutoutEnable, f.cutoutType), [&](Section& s, auto& local) {
        auto& [cutoutPos, enable, type] = local;
        const QDomElement e = s.need(features, "CutoutPos");
        cutoutPos = readPair(e);
        enable = readOptions(s.need(e, "Enable"), kLenientOptions, ListFrom::AnyChild);
        type = readOptions(s.need(e, "Type"), kLenientOptions, ListFrom::AnyChild);
    });
    section(std::tie(f.group, f.groupName), [&](Section& s, auto& local) {
        auto& [group, name] = local;
        const Attrs text = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"},
                            {"Value", ""},     {"Min", "0"},     {"Max", "255"}};
        const QDomElement e = s.need(features, "Group");
        group = readPair(e);
        name = readTextRange(s.need(e, "Name"), text);
    });
    // "Swap" and "Language" are enumerated settings on the section element itself
    section(f.swap, [&](Section& s, s_OptionList& swap) {
        swap = readOptions(s.need(features, "Swap"), kLenientOptions, ListFrom::EnumFirst);
    });
    section(f.language, [&](Section& s, s_OptionList& language) {
        language = readOptions(s.need(features, "Language"), kLenientOptions, ListFrom::EnumFirst);
    });
    section(std::tie(f.switchEffect, f.switchTime, f.switchDirection), [&](Section& s, auto& local) {
        auto& [effect, time, direction] = local;
        const Attrs timeAttrs = {{"Support", "1"}, {"Editable", "1"}, {"Value", "500"},
                                 {"Min", "100"},   {"Max", "10000"},  {"DataType", "2"}};
        const Attrs directionAttrs = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"},
                                      {"Min", "0"},     {"Max", "1"},      {"DataType", "2"}};
        const QDomElement e = s.need(features, "SwitchEffect");
        effect = readPair(e);
        time = readRange(s.need(e, "Time"), timeAttrs);
        direction = readRange(s.need(e, "Direction"), directionAttrs);
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
                conversion = readPair(drc);
                enable = readOptions(s.need(drc, "Enable"), kLenientOptions, ListFrom::AnyChild);
                type = readOptions(s.need(drc, "Type"), kLenientOptions, ListFrom::AnyChild);
            });
        if (!complete) return;
        f.layerModes = {};
        f.layerModesList.clear();
    }
    if (const QDomElement modes = child(drc, "LayerModes"); !modes.isNull()) {
        f.layerModes = readPair(modes);
        f.layerModesList = readEachChild(modes, [](const QDomElement& mode) {
            return s_LayerModesSupportInfo{intAttr(mode, "HDRSupport"), intAttr(mode, "Value")};
        });
    }
}

void Walk::readSystemSections(const Children& device, s_DeviceFeature& f) {
    section(std::tie(f.general, f.generalName, f.generalStatus), [&](Section& s, auto& local) {
        auto& [general, name, status] = local;
        const QDomElement e = s.need(device, "General");
        general = readPair(e);
        name = readRange(s.need(e, "Name"), kNamed);
        status = readOptions(s.need(e, "Status"), kLenientOptions, ListFrom::EnumFirst);
    });
    section(std::tie(f.networks, f.network), [&](Section& s, auto& local) {
        auto& [networks, network] = local;
        const QDomElement e = s.need(device, "NetWorks");
        networks = readPair(e);
        const QDomElement net = s.need(e, "NetWork"); // only the first one counts
        readInts(net, {{"Support", &network.support, "1"},
                       {"Editable", &network.editable, "1"},
                       {"Index", &network.index, "1"}});
        network.dhcp = readOptions(s.need(net, "Dhcp"), kLenientOptions, ListFrom::EnumFirst);
        network.ip = readTextRange(s.need(net, "Ip"), kLenientOptions);
        network.subNetMask = readTextRange(s.need(net, "SubNetMask"), kLenientOptions);
        network.gateway = readTextRange(s.need(net, "Gateway"), kLenientOptions);
    });
    section(f.projectFile, [&](Section& s, s_ProjectFile& p) {
        const Attrs fileId = {{"Support", "0"}, {"Editable", "1"}, {"DataType", "0"},
                              {"Value", "0"},   {"Min", "0"},      {"Max", "0"}};
        const QDomElement e = s.need(device, "ProjectFile");
        p.projectFile = readPair(e);
        p.fileId = readRange(s.need(e, "FileId"), fileId);
        p.fileType = readOptions(s.need(e, "FileType"), kLenientOptions, ListFrom::EnumFirst);
        const QDomElement general = s.need(e, "FileGeneral");
        p.fileGeneral = readPair(general, "0", "1");
        p.fileGeneralName = readRange(s.need(general, "Name"), kNamed);
        const QDomElement contain = s.need(e, "Contain");
        p.contain.contain = readPair(contain);
        p.contain.other = readOptions(s.need(contain, "Other"), kContained, ListFrom::EnumFirst);
        p.contain.bkg = readOptions(s.need(contain, "BKG"), kContained, ListFrom::EnumFirst);
        p.contain.logo = readOptions(s.need(contain, "Logo"), kContained, ListFrom::EnumFirst);
        p.contain.preset = readOptions(s.need(contain, "Preset"), kContained, ListFrom::EnumFirst);
    });
    section(std::tie(f.file, f.fileItems), [&](Section& s, auto& local) {
        auto& [file, items] = local;
        const QDomElement e = s.need(device, "File");
        file = readPair(e);
        items = readRangeList(e, kEmpty);
    });
    section(f.deviceModes, [&](Section& s, s_OptionList& modes) {
        modes = readOptions(s.need(device, "DeviceModes"), kContained, ListFrom::EnumFirst);
    });
    section(std::tie(f.powerCtrl, f.powerCtrlType), [&](Section& s, auto& local) {
        auto& [powerCtrl, type] = local;
        const QDomElement e = s.need(device, "PowerCtrl");
        powerCtrl = readPair(e);
        type = readOptions(s.need(e, "Type"), kLenientOptions, ListFrom::AnyChild);
    });
    section(f.subcard, [&](Section& s, s_Subcard& c) {
        const QDomElement e = s.need(device, "Subcard");
        c.subcard = readPair(e);
        c.cardType = readOptions(s.need(e, "CardType"), kLenientOptions, ListFrom::AnyChild);
        const QDomElement connector = s.need(e, "Connector");
        c.connector.connector = readPair(connector);
        c.connector.type = readOptions(s.need(connector, "Type"), kCardOptions, ListFrom::AnyChild);
        c.connector.workMode = readOptions(s.need(connector, "WorkMode"), kCardOptions, ListFrom::AnyChild);
        c.connector.capacityMode =
            readOptions(s.need(connector, "CapacityMode"), kCardOptions, ListFrom::AnyChild);
    });
    section(std::tie(f.restoreFactory, f.restoreFactoryType), [&](Section& s, auto& local) {
        auto& [restore, type] = local;
        const QDomElement e = s.need(device, "RestoreFactory");
        restore = readPair(e);
        type = readOptions(s.need(e, "Type"), kCardOptions, ListFrom::AnyChild);
    });
    section(f.upgrade, [&](Section& s, s_Upgrade& u) {
        const QDomElement e = s.need(device, "Upgrade");
        u.upgrade = readPair(e);
        u.type = readOptions(s.need(e, "Type"), kCardOptions, ListFrom::AnyChild);
        u.reboot = readOptions(s.need(e, "Reboot"), kCardOptions, ListFrom::AnyChild);
        u.deleteFile = readOptions(s.need(e, "DeleteFile"), kCardOptions, ListFrom::AnyChild);
        const QDomElement cards = s.need(e, "Cards");
        u.cards = readPair(cards);
        u.cardsType = readOptions(s.need(cards, "Type"), kCardOptions, ListFrom::AnyChild);
    });
}

// The three "Features" sections read after the system sections.
void Walk::readLateFeatures(const Children& features, s_Features& f) {
    section(std::tie(f.thirdPlugins, f.thirdPluginList), [&](Section& s, auto& local) {
        const QDomElement e = s.need(features, "ThirdPlugins");
        const s_SupportInfo pair = readPair(e);
        // every entry repeats the section's own pair; only "Type" is the entry's
        local = {pair, readEachChild(e, [&](const QDomElement& plugin) {
                     return s_ThirdPlugin{pair.support, pair.editable, intAttr(plugin, "Type")};
                 })};
    });
    section(std::tie(f.antiStatic, f.antiStaticEnable, f.antiStaticValue, f.antiStaticMin, f.antiStaticMax),
            [&](Section& s, auto& local) {
                auto& [antiStatic, enable, value, min, max] = local;
                const QDomElement e = s.need(features, "AntiStatic");
                antiStatic = readPair(e);
                // two children by position, whatever their names; a missing one reads as its defaults
                readInts(childAt(e, 0), {{"Value", &enable, "1"}});
                readInts(childAt(e, 1), {{"Value", &value, "1"}, {"Min", &min, "1"}, {"Max", &max, "1"}});
            });
    section(f.checkBlank, [&](Section& s, s_OptionList& blank) {
        const Attrs attrs = {{"Support", "1"}, {"Editable", "1"}, {"Value", "110"}}; // "DataType" is not read
        blank = readOptions(s.need(features, "CheckBlank"), attrs, ListFrom::AnyChild);
    });
}

} // namespace

DeviceFeatureConfigManager::DeviceFeatureConfigManager() = default;
DeviceFeatureConfigManager::~DeviceFeatureConfigManager() = default;

bool DeviceFeatureConfigManager::parseDeviceFeaturecfg(const QString& path, QString& error,
                                                       s_DeviceFeature& feature) {
    const Loader loader{kDeviceFile, staticMetaObject.className(), LCD_LOG_SITE};
    QDomDocument doc;
    return loadDocument(path, loader, doc, error) && Walk(error, loader).read(doc.documentElement(), feature);
}

bool DeviceFeatureConfigManager::parseDeviceFeaturecfg(const QDomDocument& doc, QString& error,
                                                       s_DeviceFeature& feature) {
    const Loader loader{kDeviceFile, staticMetaObject.className(), LCD_LOG_SITE};
    return checkDocumentRoot(doc, loader, error) && Walk(error, loader).read(doc.documentElement(), feature);
}

} // namespace ConfigModel
} // namespace LCD
