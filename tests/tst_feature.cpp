// The device feature file. Most cases edit the shipped sample in memory (remove
// or replace elements) and compare what changed in the record, field by field,
// with tests/data/feature/<row>.txt.

#include "device/devicefearureconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using Feature::s_DeviceFeature;

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
    const auto row = [](const char* name, QStringList paths, bool ok, const char* error) {
        QTest::newRow(name) << paths << QByteArray() << ok << QString(error);
    };
    const auto replaced = [](const char* name, const char* path, const char* xml) {
        QTest::newRow(name) << QStringList{path} << QByteArray(xml) << true << QString();
    };
    row("missing Device is fatal", {"Device"}, false, "Device");
    row("missing Features is fatal, identity kept", {"Device/Features"}, false, "Features");
    row("missing HDR is fatal", {"Device/HDR"}, false, "HDR");
    row("missing TypeName is not fatal", {"Device/TypeName"}, true, "TypeName");
    row("missing en keeps icon, skips zh_CN", {"Device/TypeName/en"}, true, "en");
    row("missing LayerAlphaFunction is silent", {"Device/LayerAlphaFunction"}, true, "");
    row("later of two missing sections wins", {"Device/InterfaceGroup", "Device/Features/Screen"}, true,
        "InterfaceGroup");
    row("CheckBlank is read after the system sections", {"Device/Features/CheckBlank", "Device/Upgrade"},
        true, "CheckBlank");
    row("Genlock without Phase keeps its defaults", {"Device/Features/Genlock/Phase"}, true, "Phase");
    row("Upgrade without Reboot keeps its defaults", {"Device/Upgrade/Reboot"}, true, "Reboot");
    row("Connector without CapacityMode drops Subcard", {"Device/Subcard/Connector/CapacityMode"}, true,
        "CapacityMode");
    row("NetWork without Gateway drops NetWorks", {"Device/NetWorks/NetWork/Gateway"}, true, "Gateway");
    row("DynamicRangConversion without Type drops LayerModes", {"Device/Features/DynamicRangConversion/Type"},
        true, "Type");
    row("DynamicRangConversion without Enable keeps LayerModes",
        {"Device/Features/DynamicRangConversion/Enable"}, true, "");
    row("DynamicRangConversion without LayerModes", {"Device/Features/DynamicRangConversion/LayerModes"},
        true, "");
    replaced("ScreenId Value not read", "Device/Features/Screen/ScreenId", "<ScreenId Value='7'/>");
    replaced("Enum-first list takes any name after the first Enum", "Device/Features/Swap",
             "<Swap><Item Value='9'/><Enum Value='0'/><Enum Value='1'/><Other Value='5'/></Swap>");
    replaced("Enum-first list without Enum is empty", "Device/DeviceModes",
             "<DeviceModes><Mode Value='2'/></DeviceModes>");
    replaced("any list takes every child", "Device/PowerCtrl/Type",
             "<Type><A Value='4'/><Enum/><B Value='x'/></Type>");
    replaced("ThirdPlugins repeat the section pair", "Device/Features/ThirdPlugins",
             "<ThirdPlugins Support='0'><A Type='1'/><B/><C Type='3' Support='1'/></ThirdPlugins>");
    replaced(
        "AntiStatic reads children by position", "Device/Features/AntiStatic",
        "<AntiStatic Editable='0'><X Value='0' Min='9'/><Y Value='7' Min='2'/><Z Value='8'/></AntiStatic>");
    replaced("AntiStatic without children reads the defaults", "Device/Features/AntiStatic", "<AntiStatic/>");
    replaced("CheckBlank defaults to 110, DataType not read", "Device/Features/CheckBlank",
             "<CheckBlank DataType='5'/>");
    replaced("SwitchEffect defaults", "Device/Features/SwitchEffect",
             "<SwitchEffect><Direction/><Time/></SwitchEffect>");
    replaced("FileId support defaults to 0", "Device/ProjectFile/FileId", "<FileId/>");
    replaced("File range list reads every child", "Device/File",
             "<File Editable='0'><A/><B Support='1' Max='9'/></File>");
    replaced("NetWork defaults", "Device/NetWorks/NetWork",
             "<NetWork><Dhcp/><Ip/><SubNetMask Value='255.0.0.0' Max='9'/><Gateway/></NetWork>");
    replaced("DeviceSelfTest ignores Editable", "Device/DeviceSelfTest",
             "<DeviceSelfTest Support='0' Editable='0'/>");
    replaced("HDR children leave hdrMode alone", "Device/HDR", "<HDR Editable='0'><Mode Value='3'/></HDR>");
}

// Removes (or replaces with `replacement`) each element of `paths` in the
// sample, parses it and compares what changed from the sample's record.
void TestFeature::edits() {
    QFETCH(QStringList, paths);
    QFETCH(QByteArray, replacement);
    QFETCH(bool, ok);
    QFETCH(QString, error);
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
    test::compareChanges("feature", parse(sampleDocument()).f, parsed.f);
}

void TestFeature::sample() {
    s_DeviceFeature f;
    QCOMPARE(test::loadProblems([&](QString& error) {
                 return DeviceFeatureConfigManager::instance()->parseDeviceFeaturecfg(kSample, error, f);
             }),
             QString());
    // Both overloads agree; the record itself is pinned by tst_lcdcfg_show's device dump.
    LCD_COMPARE_RECORDS(f, parse(sampleDocument()).f);
}

QTEST_GUILESS_MAIN(TestFeature)
#include "tst_feature.moc"
