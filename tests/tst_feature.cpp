// The device feature file. Most cases edit the shipped sample in memory (remove
// or replace elements) and compare the whole record with the sample's record,
// changed only where the edit should show.

#include "device/devicefearureconfig.h"
#include "testutil.h"

#include <functional>

using namespace LCD::ConfigModel;
using Feature::s_DeviceFeature;
using Expect = std::function<void(s_DeviceFeature&)>;
Q_DECLARE_METATYPE(Expect)

namespace {

const QString kSample = test::sharedConfig("device/29974/29974_feature.xml");

QDomDocument sampleDocument() {
    QFile file(kSample);
    return test::document(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
}

QDomElement at(const QDomDocument& doc, const QString& path) {
    QDomElement e = doc.documentElement();
    for (const QString& name : path.split('/'))
        e = e.firstChildElement(name);
    return e;
}

struct Parsed {
    bool ok = false;
    QString error;
    s_DeviceFeature f;
};
Parsed parse(const QDomDocument& doc) {
    Parsed p;
    p.ok = DeviceFeatureConfigManager::instance()->parseDeviceFeaturecfg(doc, p.error, p.f);
    return p;
}

QString invalidNode(const QString& tag) {
    return tag.isEmpty() ? QString() : QString("Invalid [%1] node.").arg(tag);
}

// What a fatal parse leaves: the identity read before the check.
void identityOnly(s_DeviceFeature& f) {
    s_DeviceFeature kept;
    auto identity = [](s_DeviceFeature& r) {
        return std::tie(r.moduleId, r.connectorPluginMode, r.seriesShortName, r.name, r.icon, r.enName,
                        r.zhName);
    };
    identity(kept) = identity(f);
    f = kept;
}

template <class... T> void reset(T&... fields) {
    ((fields = T{}), ...);
}

} // namespace

class TestFeature : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void identity();
    void edits_data();
    void edits();
    void sample();
};

// "ModuleId" keeps its low 16 bits; absent attributes give 0 and an empty name.
void TestFeature::identity() {
    for (const auto& [moduleId, stored] : {std::pair("70000", 4464), std::pair("abc", 0)}) {
        const s_DeviceFeature f = parse(test::document("<Vrn><Device ModuleId='" + QByteArray(moduleId) +
                                                       "'><Features/><HDR/></Device></Vrn>"))
                                      .f;
        QCOMPARE(std::tuple(int(f.moduleId), int(f.connectorPluginMode), f.name),
                 std::tuple(stored, 0, std::string()));
    }
}

void TestFeature::edits_data() {
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QByteArray>("replacement");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("error");
    QTest::addColumn<Expect>("expect");
    const auto row = [](const char* name, QStringList paths, bool ok, const char* error, Expect expect) {
        QTest::newRow(name) << paths << QByteArray() << ok << QString(error) << expect;
    };
    const auto replaced = [](const char* name, const char* path, const char* xml, Expect expect) {
        QTest::newRow(name) << QStringList{path} << QByteArray(xml) << true << QString() << expect;
    };
    using F = s_DeviceFeature;
    row("missing Device is fatal", {"Device"}, false, "Device", [](F& f) { f = {}; });
    row("missing Features is fatal, identity kept", {"Device/Features"}, false, "Features", identityOnly);
    row("missing HDR is fatal", {"Device/HDR"}, false, "HDR", identityOnly);
    row("missing TypeName is not fatal", {"Device/TypeName"}, true, "TypeName",
        [](F& f) { reset(f.icon, f.enName, f.zhName); });
    row("missing en keeps icon, skips zh_CN", {"Device/TypeName/en"}, true, "en",
        [](F& f) { f.enName = f.zhName = ""; });
    row("missing LayerAlphaFunction is silent", {"Device/LayerAlphaFunction"}, true, "",
        [](F& f) { f.layerAlphaFunction = {}; });
    row("later of two missing sections wins", {"Device/InterfaceGroup", "Device/Features/Screen"}, true,
        "InterfaceGroup",
        [](F& f) { reset(f.interfaceGroup, f.features.screen, f.features.screenId, f.features.screenType); });
    row("CheckBlank is read after the system sections", {"Device/Features/CheckBlank", "Device/Upgrade"},
        true, "CheckBlank", [](F& f) { reset(f.features.checkBlank, f.upgrade); });
    row("Genlock without Phase keeps its defaults", {"Device/Features/Genlock/Phase"}, true, "Phase",
        [](F& f) { f.features.genlock = {}; });
    row("Upgrade without Reboot keeps its defaults", {"Device/Upgrade/Reboot"}, true, "Reboot",
        [](F& f) { f.upgrade = {}; });
    row("Connector without CapacityMode drops Subcard", {"Device/Subcard/Connector/CapacityMode"}, true,
        "CapacityMode", [](F& f) { f.subcard = {}; });
    row("NetWork without Gateway drops NetWorks", {"Device/NetWorks/NetWork/Gateway"}, true, "Gateway",
        [](F& f) { reset(f.networks, f.network); });
    row("DynamicRangConversion without Type drops LayerModes", {"Device/Features/DynamicRangConversion/Type"},
        true, "Type", [](F& f) {
            auto& x = f.features;
            reset(x.dynamicRangConversion, x.drcEnable, x.drcType, x.layerModes, x.layerModesList);
        });
    row("DynamicRangConversion without Enable keeps LayerModes",
        {"Device/Features/DynamicRangConversion/Enable"}, true, "",
        [](F& f) { reset(f.features.dynamicRangConversion, f.features.drcEnable, f.features.drcType); });
    row("DynamicRangConversion without LayerModes", {"Device/Features/DynamicRangConversion/LayerModes"},
        true, "", [](F& f) { reset(f.features.layerModes, f.features.layerModesList); });
    replaced("ScreenId Value not read", "Device/Features/Screen/ScreenId", "<ScreenId Value='7'/>",
             [](F& f) { f.features.screenId = s_RangeValue{1, 1, 0, 0, 0, 255, 1.0}; });
    replaced("Enum-first list takes any name after the first Enum", "Device/Features/Swap",
             "<Swap><Item Value='9'/><Enum Value='0'/><Enum Value='1'/><Other Value='5'/></Swap>", [](F& f) {
                 f.features.swap = s_OptionList{1, 1, 0, 0, {{0}, {1}, {5}}};
             });
    replaced("Enum-first list without Enum is empty", "Device/DeviceModes",
             "<DeviceModes><Mode Value='2'/></DeviceModes>", [](F& f) {
                 f.deviceModes = s_OptionList{1, 1, 1, 0, {}};
             });
    replaced("any list takes every child", "Device/PowerCtrl/Type",
             "<Type><A Value='4'/><Enum/><B Value='x'/></Type>", [](F& f) {
                 f.powerCtrlType = s_OptionList{1, 1, 0, 0, {{4}, {0}, {0}}};
             });
    replaced("ThirdPlugins repeat the section pair", "Device/Features/ThirdPlugins",
             "<ThirdPlugins Support='0'><A Type='1'/><B/><C Type='3' Support='1'/></ThirdPlugins>", [](F& f) {
                 f.features.thirdPlugins = {0, 1};
                 f.features.thirdPluginList = {{0, 1, 1}, {0, 1, 0}, {0, 1, 3}};
             });
    replaced(
        "AntiStatic reads children by position", "Device/Features/AntiStatic",
        "<AntiStatic Editable='0'><X Value='0' Min='9'/><Y Value='7' Min='2'/><Z Value='8'/></AntiStatic>",
        [](F& f) {
            auto& x = f.features;
            x.antiStatic = {1, 0};
            std::tie(x.antiStaticEnable, x.antiStaticValue, x.antiStaticMin, x.antiStaticMax) =
                std::tuple(0, 7, 2, 1);
        });
    replaced("AntiStatic without children reads the defaults", "Device/Features/AntiStatic", "<AntiStatic/>",
             [](F& f) {
                 auto& x = f.features;
                 x.antiStatic = {1, 1};
                 std::tie(x.antiStaticEnable, x.antiStaticValue, x.antiStaticMin, x.antiStaticMax) =
                     std::tuple(1, 1, 1, 1);
             });
    replaced("CheckBlank defaults to 110, DataType not read", "Device/Features/CheckBlank",
             "<CheckBlank DataType='5'/>", [](F& f) {
                 f.features.checkBlank = s_OptionList{1, 1, 110, 0, {}};
             });
    replaced("SwitchEffect defaults", "Device/Features/SwitchEffect",
             "<SwitchEffect><Direction/><Time/></SwitchEffect>", [](F& f) {
                 f.features.switchEffect = {1, 1};
                 f.features.switchTime = s_RangeValue{1, 1, 500, 2, 100, 10000, 1.0};
                 f.features.switchDirection = s_RangeValue{1, 1, 1, 2, 0, 1, 1.0};
             });
    replaced("FileId support defaults to 0", "Device/ProjectFile/FileId", "<FileId/>",
             [](F& f) { f.projectFile.fileId = s_RangeValue{0, 1, 0, 0, 0, 0, 1.0}; });
    replaced("File range list reads every child", "Device/File",
             "<File Editable='0'><A/><B Support='1' Max='9'/></File>", [](F& f) {
                 f.file = {1, 0};
                 f.fileItems = {s_RangeValue{0, 0, 0, 0, 0, 0, 1.0}, s_RangeValue{1, 0, 0, 0, 0, 9, 1.0}};
             });
    replaced("NetWork defaults", "Device/NetWorks/NetWork",
             "<NetWork><Dhcp/><Ip/><SubNetMask Value='255.0.0.0' Max='9'/><Gateway/></NetWork>", [](F& f) {
                 const s_TextRange address{1, 1, "0", 0, 0, 255};
                 f.network = {
                     1, 1, 1, s_OptionList{1, 1, 0, 0, {}}, address, {1, 1, "255.0.0.0", 0, 0, 255}, address};
             });
    replaced("DeviceSelfTest ignores Editable", "Device/DeviceSelfTest",
             "<DeviceSelfTest Support='0' Editable='0'/>", [](F& f) {
                 f.deviceSelfTest = {0, -1};
             });
    replaced("HDR children leave hdrMode alone", "Device/HDR", "<HDR Editable='0'><Mode Value='3'/></HDR>",
             [](F& f) {
                 f.hdr = {1, 0};
             });
}

// Removes (or replaces with `replacement`) each element of `paths` in the
// sample, parses it and compares with the sample's record changed by `expect`.
void TestFeature::edits() {
    QFETCH(QStringList, paths);
    QFETCH(QByteArray, replacement);
    QFETCH(bool, ok);
    QFETCH(QString, error);
    QFETCH(Expect, expect);

    s_DeviceFeature expected = parse(sampleDocument()).f;
    expect(expected);

    QDomDocument doc = sampleDocument();
    for (const QString& path : paths) {
        const QDomElement e = at(doc, path);
        QVERIFY2(!e.isNull(), qPrintable(path));
        if (replacement.isEmpty()) {
            e.parentNode().removeChild(e);
        } else {
            QDomDocument part;
            QVERIFY(part.setContent(replacement, true));
            e.parentNode().replaceChild(doc.importNode(part.documentElement(), true), e);
        }
    }
    const Parsed parsed = parse(doc);
    QCOMPARE(parsed.ok, ok);
    QCOMPARE(parsed.error, invalidNode(error));
    LCD_COMPARE_RECORDS(parsed.f, expected);
}

void TestFeature::sample() {
    s_DeviceFeature f;
    QCOMPARE(test::loadProblems([&](QString& error) {
                 return DeviceFeatureConfigManager::instance()->parseDeviceFeaturecfg(kSample, error, f);
             }),
             QString());
    LCD_COMPARE_RECORDS(f, parse(sampleDocument()).f); // both overloads agree
    // Values the tool's device listing does not show (tst_lcdcfg_show pins the others).
    LCD_COMPARE_RECORDS(f.features.screenId, (s_RangeValue{1, 0, 0, 0, 1, 16, 1.0}));
    QCOMPARE(f.features.genlock.phaseOffset.max, 1125);
    LCD_COMPARE_RECORDS(f.features.layerModesList.back(), (Feature::s_LayerModesSupportInfo{0, 2}));
    QCOMPARE(f.features.antiStaticValue, 3);
    QCOMPARE(f.network.ip.text, std::string("192.168.0.10")); // the second NetWork is ignored
    QCOMPARE(f.fileItems.at(1).dataType, 1);
}

QTEST_GUILESS_MAIN(TestFeature)
#include "tst_feature.moc"
