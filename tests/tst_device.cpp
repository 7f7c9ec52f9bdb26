// The device registry: which files of a device directory make up a model,
// what a rejected file leaves behind, the questions about the current device,
// and the shipped directory through the host.

#include "device/deviceconfig.h"
#include "host/kvchost.h"
#include "testutil.h"

#include <memory>

using namespace LCD::ConfigModel;
using Devicecfg::s_Device;
using Registry = DeviceTessanConfigManager;

using Files = QMap<QString, QByteArray>; // path below the device directory -> content; "x/" is a directory
Q_DECLARE_METATYPE(Files)
Q_DECLARE_METATYPE(Registry*)

namespace {

QByteArray vrn(const QByteArray& device) {
    return "<Vrn><Device>" + device + "</Device></Vrn>";
}
QByteArray feature(const QByteArray& en, const QByteArray& features = {}) {
    return vrn("<TypeName><en>" + en + "</en><zh_CN>中文</zh_CN></TypeName><HDR/><Features>" + features +
               "</Features><InterfaceGroup Support=\"1\"/>");
}
// <Screens><Screen Type="n"/></Screens> and the like.
QByteArray list(const QByteArray& tag, const char* attr, int n) {
    return "<" + tag + "s><" + tag + " " + attr + "=\"" + QByteArray::number(n) + "\"/></" + tag + "s>";
}
const auto screens = [](int type) { return list("Screen", "Type", type); };
const auto layers = [](int type) { return list("Layer", "Type", type); };
const auto crosscards = [](int moduleId) { return list("Subcard", "Value", moduleId); };
const QByteArray kSlot = vrn("<CrossCard Support=\"1\"/><Slots><MainControlCardSlots/></Slots>");

// One line per model: id, English type name, cross-card support, screen and
// layer types, cross-card card models (lists sorted: reading order is the
// file system's).
QString summary(const Registry& registry) {
    QStringList lines;
    for (const s_Device& d : registry.DeviceConfigs()) {
        const auto numbers = [](const auto& items, auto field) {
            QStringList out;
            for (const auto& item : items)
                out << QString::number(item.*field);
            out.sort();
            return out.join(',');
        };
        lines << QStringLiteral("%1 en=%2 cross=%3 screens=%4 layers=%5 cards=%6")
                     .arg(d.modelId)
                     .arg(QString::fromStdString(d.feature.enName))
                     .arg(d.slot.crossCard.support)
                     .arg(numbers(d.screens, &Screen::s_Screen::type),
                          numbers(d.layers, &Layercfg::s_Layer::type),
                          numbers(d.crossSubcards, &CrossCard::s_CrossSubcard::moduleId));
    }
    lines.sort();
    return lines.join("; ");
}

void writeFiles(const QTemporaryDir& dir, const Files& files) {
    for (auto it = files.begin(); it != files.end(); ++it) {
        if (it.key().endsWith('/'))
            QDir().mkpath(dir.filePath(it.key()));
        else
            test::writeFile(dir, it.key(), it.value());
    }
}

// Every diagnostic as "debug: text" or "warning: text"; all of them are
// written in the category "default".
QString messages(const test::MessageRecorder& recorder) {
    QStringList out;
    for (const test::Message& m : recorder.messages()) {
        const char* kind = m.type == QtDebugMsg ? "debug: " : "warning: ";
        out << (m.category == "default" ? kind : "other category: ") + m.text;
    }
    return out.join("; ");
}

// One question to the registry ("screen 7": its first word and numbers) and
// the answer as text.
QString ask(Registry& r, const QString& question) {
    const QStringList q = question.split(' ');
    const QString what = q[0];
    const int a = q.value(1).toInt();
    if (what == "model") return QString::number(r.findDeviceModelId());
    if (what == "record")
        return r.curDeviceConfigs() == s_Device{} ? "default" : QString::number(r.curDeviceConfigs().modelId);
    if (what == "name") return r.findDeviceTypeName();
    if (what == "screen") return r.screenConfigs(a) ? "found" : "null";
    if (what == "layer") return r.layerConfigs(a) ? "found" : "null";
    if (what == "cross") return r.crosscardInterfaceGroup(a) ? "found" : "null";
    if (what == "group") return QString::number(r.deviceSupportInterfaceGroup());
    if (what == "card") return QString::number(r.findSubcardModelId(a));
    // "connectors model slot card": the list is appended to, never cleared.
    std::vector<Slot::s_Slot> slots{{99, {}}};
    QString out = r.findSlotConnectors(a, q[2].toInt(), q[3].toInt(), slots) ? "true" : "false";
    for (const Slot::s_Slot& s : slots) {
        QStringList cards;
        for (const Slot::s_InlineSubcard& c : s.subcards)
            cards << QString::number(c.moduleId);
        out += QStringLiteral(" %1[%2]").arg(s.index).arg(cards.join(','));
    }
    return out;
}

} // namespace

class TestDevice : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir; // models 29974 and 12345, see initTestCase
    Registry m_empty, m_other, m_loaded;

private Q_SLOTS:
    void initTestCase() {
        const QByteArray slot =
            vrn("<CrossCard Support=\"1\"/><Slots>"
                "<MainControlCardSlots><Subcards/><Slot Index=\"9\"/></MainControlCardSlots>"
                "<MixCardSlots><Slot Index=\"9\"/>"
                "<Slot Index=\"9\"><Subcards><Subcard ModuleId=\"2201\"/></Subcards></Slot>"
                "<Slot Index=\"10\"><Subcards><Subcard ModuleId=\"2202\"/>"
                "<Subcard ModuleId=\"2202\"/></Subcards></Slot></MixCardSlots></Slots>");
        writeFiles(m_dir, {{"29974/a_feature.xml", feature("4U", "<CheckBlank Value=\"120\"/>")},
                           {"29974/a_slot.xml", slot},
                           {"29974/a_screen.xml", vrn(screens(1))},
                           {"29974/b_screen.xml", vrn(screens(2))},
                           {"29974/c_screen.xml", vrn(screens(1))},
                           {"29974/a_layer.xml", vrn(layers(1))},
                           {"29974/a_crosscard.xml", vrn(crosscards(2101))},
                           {"12345/a_slot.xml", slot}});
        QTemporaryDir other;
        writeFiles(other, {{"12345/a_slot.xml", slot}});
        QString error;
        test::MessageRecorder recorder;
        QVERIFY(m_loaded.readConfig(m_dir.path(), error) && m_other.readConfig(other.path(), error));
        QVERIFY(recorder.clean());
    }

    void modelFiles_data() {
        QTest::addColumn<Files>("files");
        QTest::addColumn<QString>("models");
        QTest::addColumn<QString>("error"); // %1: the device directory
        QTest::addColumn<QString>("messages");
        const QString nothing = "29974 en= cross=-1 screens= layers= cards=";
        const auto row = [](const char* name, const Files& files, const QString& models,
                            const QString& messages = {}, const QString& error = "before") {
            QTest::newRow(name) << files << models << error << messages;
        };
        row("non-numeric directory is skipped",
            {{"abc/a_feature.xml", feature("A")}, {"29974/f_feature.xml", feature("B")}},
            "29974 en=B cross=-1 screens= layers= cards=", "debug: invalid dir name :  abc");
        row("base name is the model id", {{"29974.old/a_slot.xml", kSlot}},
            "29974 en= cross=1 screens= layers= cards=");
        row("Feature.xml has no dispatch word", {{"29974/Feature.xml", feature("A")}}, nothing);
        row("pattern ignores case, other and hidden names unread",
            {{"29974/a_feature.XML", feature("A")},
             {"29974/a_screen.txt", "<broken"},
             {"29974/.b_feature.xml", feature("B")}},
            "29974 en=A cross=-1 screens= layers= cards=");
        row("screen_layer.xml goes to both parsers",
            {{"29974/screen_layer.xml", vrn(screens(3) + layers(4))}},
            "29974 en= cross=-1 screens=3 layers=4 cards=");
        row("rejected screen skips layer and cross-card",
            {{"29974/screen_layer_crosscard.xml", vrn(layers(4) + crosscards(2101))}}, nothing,
            "warning: Error: Invalid [Screens] node.");
        row("rejected feature file leaves its identity out",
            {{"29974/a_feature.xml", vrn("<TypeName><en>A</en></TypeName><HDR/>")}}, nothing,
            "warning: Error: Invalid [Features] node.");
        row("rejected slot file leaves its cross-card support out",
            {{"29974/a_slot.xml", vrn("<CrossCard/><Slots/>")}}, nothing,
            "warning: Error: Invalid [MainControlCardSlots] node.");
        row("malformed file sets the error, the load goes on",
            {{"29974/a_slot.xml", "<Vrn>"}, {"29974/b_layer.xml", vrn(layers(1))}},
            "29974 en= cross=-1 screens= layers=1 cards=", {},
            test::byQt("Parse error at line 1, column 6:\nunexpected end of file",
                       "Parse error at line 1, column 5:\nPremature end of document."));
        row("entry that cannot be opened sets the error", {{"29974/folder.xml/", {}}}, nothing, {},
            "Fail to open file [%1/29974/folder.xml]!");
        row("non-fatal screen problem is no warning", {{"29974/a_screen.xml", vrn(screens(2))}},
            "29974 en= cross=-1 screens=2 layers= cards=");
    }
    void modelFiles() {
        QFETCH(Files, files);
        QFETCH(QString, error);
        QTemporaryDir dir;
        writeFiles(dir, files);
        Registry registry;
        QString actual = "before";
        test::MessageRecorder recorder;
        QVERIFY(registry.readConfig(dir.path(), actual));
        QCOMPARE(actual, error.contains("%1") ? error.arg(dir.path()) : error);
        QTEST(summary(registry), "models");
        QTEST(messages(recorder), "messages");
    }

    void secondLoadAppends() {
        QString error;
        Registry registry;
        QVERIFY(registry.readConfig(m_dir.path(), error) && registry.readConfig(m_dir.path(), error));
        const QList<s_Device>& devices = registry.DeviceConfigs();
        QCOMPARE(devices.size(), 4);
        LCD_COMPARE_RECORDS(devices.mid(0, 2), devices.mid(2));
        // Queries point into the first copy: the first of two type-1 screens in reading order.
        const s_Device& current = devices.at(devices.at(0).modelId == 29974 ? 0 : 1);
        const auto first = std::find_if(current.screens.begin(), current.screens.end(),
                                        [](const Screen::s_Screen& s) { return s.type == 1; });
        QCOMPARE(registry.screenConfigs(1), &*first);
        QCOMPARE(registry.crosscardInterfaceGroup(2101), &current.crossSubcards.front());
    }

    void queries_data() {
        QTest::addColumn<Registry*>("registry");
        QTest::addColumn<QString>("question");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("messages");
        const auto row = [](const char* name, Registry* r, const char* question, const char* answer,
                            const QString& messages) {
            QTest::newRow(name) << r << question << answer << messages;
        };
        const QString none = "warning: could not find device's cfg.";
        const QString empty = none + "; warning: could not find device(0)'s cfg.";
        const QString missing = "warning: could not find device(29974)'s cfg.";
        row("empty: model id 0", &m_empty, "model", "0", none);
        row("empty: default record", &m_empty, "record", "default", none);
        row("empty: no type name", &m_empty, "name", "", empty);
        row("empty: no screen", &m_empty, "screen 1", "null", empty);
        row("empty: no layer", &m_empty, "layer 1", "null", empty);
        row("empty: no cross card", &m_empty, "cross 2101", "null", empty);
        row("empty: interface group 0", &m_empty, "group", "0", empty);
        row("empty: no card in a slot", &m_empty, "card 9", "0", empty);
        row("empty: slot connectors false", &m_empty, "connectors 29974 9 2201", "false 99[]", "");
        row("without 29974: model id still 29974", &m_other, "model", "29974", missing);
        row("without 29974: default record", &m_other, "record", "default", missing);
        row("without 29974: no type name", &m_other, "name", "", missing + "; " + missing);
        row("without 29974: slot connectors of any model", &m_other, "connectors 12345 9 2201",
            "true 99[] 9[2201]", "");
        row("current record", &m_loaded, "record", "29974", "");
        row("missing screen type", &m_loaded, "screen 7", "null",
            "warning: could not find screen type(7)'s cfg.");
        row("missing layer type", &m_loaded, "layer 7", "null",
            "warning: could not find layer type(7)'s cfg.");
        row("missing cross card", &m_loaded, "cross 7", "null",
            "warning: could not find cross card moduleID(7)'s cfg.");
        row("card in a slot, past slots without one", &m_loaded, "card 9", "2201", "");
        row("no card in a slot, no message", &m_loaded, "card 5", "0", "");
        row("slot with two matching cards listed twice", &m_loaded, "connectors 29974 10 2202",
            "true 99[] 10[2202,2202] 10[2202,2202]", "");
        row("no matching slot leaves the list", &m_loaded, "connectors 29974 9 2202", "true 99[]", "");
    }
    void queries() {
        QFETCH(Registry*, registry);
        QFETCH(QString, question);
        test::MessageRecorder recorder;
        QTEST(ask(*registry, question), "answer");
        QTEST(messages(recorder), "messages");
    }

    // With an application object when wanted, "lcd_locale" set unless invalid.
    void typeName_data() {
        QTest::addColumn<bool>("application");
        QTest::addColumn<QVariant>("locale");
        QTest::addColumn<QString>("name");
        QTest::newRow("no application object: Chinese") << false << QVariant() << "中文";
        QTest::newRow("unset: Chinese") << true << QVariant() << "中文";
        QTest::newRow("en: English") << true << QVariant("en") << "4U";
        QTest::newRow("EN: Chinese") << true << QVariant("EN") << "中文";
        QTest::newRow("en_US: Chinese") << true << QVariant("en_US") << "中文";
    }
    void typeName() {
        QFETCH(bool, application);
        QFETCH(QVariant, locale);
        static int argc = 1;
        static char name[] = "tst_device";
        static char* argv[] = {name, nullptr};
        std::unique_ptr<QCoreApplication> app;
        if (application) app = std::make_unique<QCoreApplication>(argc, argv);
        if (app && locale.isValid()) app->setProperty("lcd_locale", locale);
        QTEST(m_loaded.findDeviceTypeName(), "name");
    }

    // The shipped directory through the host: each part is the record its
    // parser reads from the file by path.
    void shippedDirectoryThroughHost() {
        kvchost::PluginHost host;
        QString error;
        QVERIFY2(host.load(&error), qPrintable(error));
        const auto device = host.create<DeviceConfigInterface>("tavio.lcd.configmodel.device", &error);
        QVERIFY2(device, qPrintable(error));
        QCOMPARE(test::loadProblems(
                     [&](QString& e) { return device->readConfig(test::sharedConfig("device"), e); }),
                 QString());
        // A host linked against the library also reaches the non-virtual queries.
        Registry& registry = *static_cast<Registry*>(device.get());
        QCOMPARE(registry.DeviceConfigs().size(), 1);
        const s_Device& d = registry.DeviceConfigs().at(0);
        // What the parser of `part` reads from the shipped file 29974_`part`.xml.
        const auto parsed = [&](auto parse, const char* part, auto record) {
            QString e;
            if (!(registry.*parse)(test::sharedConfig("device/29974/29974_%1.xml").arg(part), e, record))
                qWarning("%s: %s", part, qPrintable(e));
            return record;
        };
        using R = Registry;
        LCD_COMPARE_RECORDS(d.feature,
                            parsed(&R::parseDeviceFeaturecfg, "feature", Feature::s_DeviceFeature{}));
        LCD_COMPARE_RECORDS(d.slot, parsed(&R::parseDeviceSlotcfg, "slot", Slot::s_VrnSolt{}));
        LCD_COMPARE_RECORDS(d.crossSubcards,
                            parsed(&R::parseDeviceCrossCardcfg, "crosscard", CrossCard::s_CrossSubcards{}));
        LCD_COMPARE_RECORDS(*device->screenConfigs(1),
                            parsed(&R::parseDeviceScreencfg, "screen_splice", Screen::s_VrnScreen{}));
        LCD_COMPARE_RECORDS(*device->screenConfigs(2),
                            parsed(&R::parseDeviceScreencfg, "screen_mosaic", Screen::s_VrnScreen{}));
        LCD_COMPARE_RECORDS(*registry.layerConfigs(1),
                            parsed(&R::parseDeviceLayercfg, "layer_normal", Layercfg::s_VrnLayer{}));
        LCD_COMPARE_RECORDS(*registry.layerConfigs(2),
                            parsed(&R::parseDeviceLayercfg, "layer_pip", Layercfg::s_VrnLayer{}));
        // The records are in tst_lcdcfg_show's device dump, the answers lcdcfg shows in its golden.
    }
};

QTEST_APPLESS_MAIN(TestDevice)
#include "tst_device.moc"
