#include "device/devicefearureconfig.h"

#include "common/document.h"
#include "common/xmlread.h"

namespace LCD {
namespace ConfigModel {

using namespace xml;
using namespace Feature;

LCD_DEFINE_SINGLETON(DeviceFeatureConfigManager, DeviceFeature)

namespace {

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
    void readTypeName(const QDomElement& device, s_DeviceFeature& f);
    void readFeatures(const QDomElement& features, s_Features& f);
    void readDynamicRangConversion(const QDomElement& features, s_Features& f);
    void readSystemSections(const QDomElement& device, s_DeviceFeature& f);
    void readLateFeatures(const QDomElement& features, s_Features& f);

    template <class Target, class Read> bool section(Target&& target, Read&& read) {
        return transact(std::forward<Target>(target), m_error, m_loader, std::forward<Read>(read));
    }

    QString& m_error;
    const Loader& m_loader;
};

bool Walk::read(const QDomElement& root, s_DeviceFeature& f) {
    Section required(m_error, m_loader); // "Device", "Features" and "HDR" are fatal
    const QDomElement device = required.need(root, "Device");
    if (!required.complete()) return false;
    readIdentity(device, f);
    readTypeName(device, f); // kept even when the parse fails below
    const QDomElement features = required.need(device, "Features");
    const QDomElement hdr = required.need(device, "HDR");
    if (!required.complete()) return false;

    f.hdr = readPair(hdr); // hdrMode is never read
    // "LayerAlphaFunction" is optional: a missing one is skipped without a message
    if (const QDomElement alpha = child(device, "LayerAlphaFunction"); !alpha.isNull()) {
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
void Walk::readTypeName(const QDomElement& device, s_DeviceFeature& f) {
    QDomElement typeName;
    if (!section(f.icon, [&](Section& s, std::string& icon) {
            typeName = s.need(device, "TypeName");
            icon = textAttr(typeName, "Icon");
        }))
        return;
    if (!section(f.enName, [&](Section& s, std::string& en) { en = text(s.need(typeName, "en")); })) return;
    section(f.zhName, [&](Section& s, std::string& zh) { zh = text(s.need(typeName, "zh_CN")); });
}

void Walk::readFeatures(const QDomElement& features, s_Features& f) {
    section(std::tie(f.screen, f.screenId, f.screenType), [&](Section& s, auto& local) {
        auto& [screen, screenId, screenType] = local;
        const Attrs id = {
            {"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Min", "0"}, {"Max", "255"}};
        const Attrs type = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"}};
        const QDomElement e = s.need(features, "Screen");
        screen = readPair(e);
        screenId = readRange(s.need(e, "ScreenId"), id);
        screenType = readOptions(s.need(e, "ScreenType"), type, ListFrom::AnyChild);
    });
    section(f.genlock, [&](Section& s, s_Genlock& g) {
        const Attrs options = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"}, {"Value", "0"}};
        const Attrs offset = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"},
                              {"Value", "0"},    {"Min", "0"},     {"Max", "0"}};
        const QDomElement genlock = s.need(features, "Genlock");
        g.genlock = readPair(genlock);
        g.type = readOptions(s.need(genlock, "Type"), options, ListFrom::AnyChild);
        const QDomElement phase = s.need(genlock, "Phase");
        g.phase = readPair(phase);
        g.phaseEnable = readOptions(s.need(phase, "Enable"), options, ListFrom::AnyChild);
        g.phaseOffset = readRange(s.need(phase, "Offset"), offset);
    });
    section(f.hdcp, [&](Section& s, s_SupportInfo& hdcp) { hdcp = readPair(s.need(features, "HDCP")); });
    readDynamicRangConversion(features, f);
    section(f.dynamicRang, [&](Section& s, s_ValueSetting& range) {
        const Attrs attrs = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"}, {"Value", "0"}};
        range = readValueSetting(s.need(features, "DynamicRang"), attrs);
    });
    section(f.interfaceMapping, [&](Section& s, s_InterfaceMapping& m) {
        const Attrs options = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"}, {"Value", "0"}};
        const Attrs range = {{"DataType", "0"}, {"Support", "1"}, {"Editable", "1"},
                             {"Value", "0"},    {"Min", "0"},     {"Max", "0"}};
        const QDomElement mapping = s.need(features, "InterfaceMapping");
        m.mapping = readPair(mapping);
        m.type = readOptions(s.need(mapping, "Type"), options, ListFrom::AnyChild);
        const QDomElement pattern = s.need(mapping, "TestPattern");
        s_TestPattern& p = m.testPattern;
        p.pattern = readPair(pattern);
        p.enable = readOptions(s.need(pattern, "Enable"), options, ListFrom::AnyChild);
        p.type = readOptions(s.need(pattern, "Type"), options, ListFrom::AnyChild);
        p.bright = readRange(s.need(pattern, "Bright"), range);
        p.gridSpace = readRange(s.need(pattern, "GridSpace"), range);
        p.gridLineWidth = readRange(s.need(pattern, "GridLineWidth"), range);
        p.speed = readRange(s.need(pattern, "Speed"), range);
    });
    section(std::tie(f.cutoutPos, f.cutoutEnable, f.cutoutType), [&](Section& s, auto& local) {
        auto& [cutoutPos, enable, type] = local;
        const Attrs options = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}};
        const QDomElement e = s.need(features, "CutoutPos");
        cutoutPos = readPair(e);
        enable = readOptions(s.need(e, "Enable"), options, ListFrom::AnyChild);
        type = readOptions(s.need(e, "Type"), options, ListFrom::AnyChild);
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
    const Attrs listed = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}};
    section(f.swap, [&](Section& s, s_OptionList& swap) {
        swap = readOptions(s.need(features, "Swap"), listed, ListFrom::EnumFirst);
    });
    section(f.language, [&](Section& s, s_OptionList& language) {
        language = readOptions(s.need(features, "Language"), listed, ListFrom::EnumFirst);
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
void Walk::readDynamicRangConversion(const QDomElement& features, s_Features& f) {
    const QDomElement drc = Section(m_error, m_loader).need(features, "DynamicRangConversion");
    if (drc.isNull()) return;
    if (!child(drc, "Enable").isNull()) {
        const bool complete =
            section(std::tie(f.dynamicRangConversion, f.drcEnable, f.drcType), [&](Section& s, auto& local) {
                auto& [conversion, enable, type] = local;
                const Attrs options = {
                    {"DataType", "0"}, {"Support", "1"}, {"Editable", "1"}, {"Value", "0"}};
                conversion = readPair(drc);
                enable = readOptions(s.need(drc, "Enable"), options, ListFrom::AnyChild);
                type = readOptions(s.need(drc, "Type"), options, ListFrom::AnyChild);
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

void Walk::readSystemSections(const QDomElement& device, s_DeviceFeature& f) {
    section(std::tie(f.general, f.generalName, f.generalStatus), [&](Section& s, auto& local) {
        auto& [general, name, status] = local;
        const Attrs nameAttrs = {
            {"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Min", "0"}, {"Max", "255"}};
        const Attrs statusAttrs = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}};
        const QDomElement e = s.need(device, "General");
        general = readPair(e);
        name = readRange(s.need(e, "Name"), nameAttrs);
        status = readOptions(s.need(e, "Status"), statusAttrs, ListFrom::EnumFirst);
    });
    section(std::tie(f.networks, f.network), [&](Section& s, auto& local) {
        auto& [networks, network] = local;
        const Attrs dhcp = {{"Support", "1"}, {"Editable", "1"}, {"Value", "0"}, {"DataType", "0"}};
        const Attrs address = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}};
        const QDomElement e = s.need(device, "NetWorks");
        networks = readPair(e);
        const QDomElement net = s.need(e, "NetWork"); // only the first one counts
        readInts(net, {{"Support", &network.support, "1"},
                       {"Editable", &network.editable, "1"},
                       {"Index", &network.index, "1"}});
        network.dhcp = readOptions(s.need(net, "Dhcp"), dhcp, ListFrom::EnumFirst);
        network.ip = readTextRange(s.need(net, "Ip"), address);
        network.subNetMask = readTextRange(s.need(net, "SubNetMask"), address);
        network.gateway = readTextRange(s.need(net, "Gateway"), address);
    });
    section(f.projectFile, [&](Section& s, s_ProjectFile& p) {
        const Attrs fileId = {{"Support", "0"}, {"Editable", "1"}, {"DataType", "0"},
                              {"Value", "0"},   {"Min", "0"},      {"Max", "0"}};
        const Attrs fileType = {{"Support", "1"}, {"Editable", "1"}, {"Value", "0"}, {"DataType", "0"}};
        const Attrs name = {
            {"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Min", "0"}, {"Max", "255"}};
        const Attrs contained = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"}, {"DataType", "0"}};
        const QDomElement e = s.need(device, "ProjectFile");
        p.projectFile = readPair(e);
        p.fileId = readRange(s.need(e, "FileId"), fileId);
        p.fileType = readOptions(s.need(e, "FileType"), fileType, ListFrom::EnumFirst);
        const QDomElement general = s.need(e, "FileGeneral");
        p.fileGeneral = readPair(general, "0", "1");
        p.fileGeneralName = readRange(s.need(general, "Name"), name);
        const QDomElement contain = s.need(e, "Contain");
        p.contain.contain = readPair(contain);
        p.contain.other = readOptions(s.need(contain, "Other"), contained, ListFrom::EnumFirst);
        p.contain.bkg = readOptions(s.need(contain, "BKG"), contained, ListFrom::EnumFirst);
        p.contain.logo = readOptions(s.need(contain, "Logo"), contained, ListFrom::EnumFirst);
        p.contain.preset = readOptions(s.need(contain, "Preset"), contained, ListFrom::EnumFirst);
    });
    section(std::tie(f.file, f.fileItems), [&](Section& s, auto& local) {
        auto& [file, items] = local;
        const Attrs item = {{"Support", ""},  {"Editable", ""}, {"Value", ""},
                            {"DataType", ""}, {"Min", ""},      {"Max", ""}};
        const QDomElement e = s.need(device, "File");
        file = readPair(e);
        items = readRangeList(e, item);
    });
    section(f.deviceModes, [&](Section& s, s_OptionList& modes) {
        const Attrs attrs = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"}, {"DataType", "0"}};
        modes = readOptions(s.need(device, "DeviceModes"), attrs, ListFrom::EnumFirst);
    });
    section(std::tie(f.powerCtrl, f.powerCtrlType), [&](Section& s, auto& local) {
        auto& [powerCtrl, type] = local;
        const Attrs typeAttrs = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}};
        const QDomElement e = s.need(device, "PowerCtrl");
        powerCtrl = readPair(e);
        type = readOptions(s.need(e, "Type"), typeAttrs, ListFrom::AnyChild);
    });
    section(f.subcard, [&](Section& s, s_Subcard& c) {
        const Attrs cardType = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}};
        const Attrs options = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"}, {"DataType", "1"}};
        const QDomElement e = s.need(device, "Subcard");
        c.subcard = readPair(e);
        c.cardType = readOptions(s.need(e, "CardType"), cardType, ListFrom::AnyChild);
        const QDomElement connector = s.need(e, "Connector");
        c.connector.connector = readPair(connector);
        c.connector.type = readOptions(s.need(connector, "Type"), options, ListFrom::AnyChild);
        c.connector.workMode = readOptions(s.need(connector, "WorkMode"), options, ListFrom::AnyChild);
        c.connector.capacityMode =
            readOptions(s.need(connector, "CapacityMode"), options, ListFrom::AnyChild);
    });
    section(std::tie(f.restoreFactory, f.restoreFactoryType), [&](Section& s, auto& local) {
        auto& [restore, type] = local;
        const Attrs typeAttrs = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"}, {"DataType", "1"}};
        const QDomElement e = s.need(device, "RestoreFactory");
        restore = readPair(e);
        type = readOptions(s.need(e, "Type"), typeAttrs, ListFrom::AnyChild);
    });
    section(f.upgrade, [&](Section& s, s_Upgrade& u) {
        const Attrs options = {{"Support", "1"}, {"Editable", "1"}, {"Value", "1"}, {"DataType", "1"}};
        const QDomElement e = s.need(device, "Upgrade");
        u.upgrade = readPair(e);
        u.type = readOptions(s.need(e, "Type"), options, ListFrom::AnyChild);
        u.reboot = readOptions(s.need(e, "Reboot"), options, ListFrom::AnyChild);
        u.deleteFile = readOptions(s.need(e, "DeleteFile"), options, ListFrom::AnyChild);
        const QDomElement cards = s.need(e, "Cards");
        u.cards = readPair(cards);
        u.cardsType = readOptions(s.need(cards, "Type"), options, ListFrom::AnyChild);
    });
}

// The three "Features" sections read after the system sections.
void Walk::readLateFeatures(const QDomElement& features, s_Features& f) {
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
