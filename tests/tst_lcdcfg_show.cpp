// lcdcfg show, dump and diff, run as a user runs them: their output on the
// shipped configuration against golden files under tests/data/lcdcfg/
// (LCD_UPDATE_GOLDEN=1 rewrites them; the dumps pin every record the shipped
// tree loads into), and the diff of the shipped tree against a copy with
// planted changes.

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include "testutil.h"

namespace {

using test::lcdcfg;
using test::Run;

// A copy of the shipped configuration under `dir`/config with a few changes
// planted: each replaces the first `from` in `file` by `to`.
struct Plant {
    const char* file;
    const char* from;
    const char* to;
};
QString plantedCopy(const QTemporaryDir& dir, std::initializer_list<Plant> plants) {
    const QString target = test::shippedCopy(dir);
    for (const Plant& plant : plants) {
        QFile file(target + "/" + plant.file);
        if (!file.open(QIODevice::ReadOnly)) qFatal("no %s in the shipped tree", plant.file);
        QByteArray content = file.readAll();
        const int at = content.indexOf(plant.from);
        if (at < 0) qFatal("%s no longer holds %s", plant.file, plant.from);
        content.replace(at, qstrlen(plant.from), plant.to);
        file.close();
        test::writeFile(dir, QStringLiteral("config/") + plant.file, content);
    }
    return target;
}

} // namespace

class LcdcfgShowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void goldenOutputs_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("golden");
        QTest::newRow("show device") << QStringList{"show", "device", "--locale", "en"} << "show-device.txt";
        QTest::newRow("show card") << QStringList{"show", "card", "2201"} << "show-card-2201.txt";
        QTest::newRow("show connector")
            << QStringList{"show", "connector", "6", "--interface", "2", "--mode", "2"}
            << "show-connector-6.txt";
        QTest::newRow("show menu") << QStringList{"show", "menu"} << "show-menu.txt";
        QTest::newRow("show hdr") << QStringList{"show", "hdr"} << "show-hdr.txt";
        QTest::newRow("show keys") << QStringList{"show", "keys"} << "show-keys.txt";
        QTest::newRow("dump key-check")
            << QStringList{"dump", "--json", "key-check"} << "dump-key-check.json";
        QTest::newRow("dump print-keys")
            << QStringList{"dump", "--json", "print-keys"} << "dump-print-keys.json";
        // Every record the shipped tree loads into, field by field.
        QTest::newRow("dump devices") << QStringList{"dump", "--json", "devices"} << "dump-devices.json";
        QTest::newRow("dump cards") << QStringList{"dump", "--json", "cards"} << "dump-cards.json";
        QTest::newRow("dump connectors")
            << QStringList{"dump", "--json", "connectors"} << "dump-connectors.json";
    }

    void goldenOutputs() {
        QFETCH(QStringList, args);
        QFETCH(QString, golden);
        const Run run = lcdcfg(args << "--root" << test::sharedConfig(QString()));
        QVERIFY2(run.code == 0, qPrintable(run.err));
        test::compareGolden(golden, run.out.toUtf8());
    }

    // On the shipped tree, or on a copy with `plant` (file, then a text and
    // its replacement, or "rename"/"copy" and the new name).
    void answersAndRefusals_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("plant");
        QTest::newRow("Chinese type name") << QStringList{"show", "device", "--locale", "zh_CN"} << 0
                                           << "type name         4U液晶拼接处理器" << QStringList{};
        QTest::newRow("unknown locale") << QStringList{"show", "device", "--locale", "fr"} << 2
                                        << "--locale is en or zh_CN, not fr" << QStringList{};
        QTest::newRow("unknown card")
            << QStringList{"show", "card", "9"} << 1 << "no card model 9" << QStringList{};
        QTest::newRow("unknown connector type")
            << QStringList{"show", "connector", "5"} << 1 << "no connector type 5" << QStringList{};
        QTest::newRow("unknown subject")
            << QStringList{"show", "screens"} << 2 << "cannot show screens" << QStringList{};
        QTest::newRow("unknown component")
            << QStringList{"dump", "--json", "screens"} << 2 << "unknown component screens" << QStringList{};
        QTest::newRow("one tree") << QStringList{"diff"} << 2 << "OLD and NEW expected" << QStringList{};
        const QString slot = "device/29974/29974_slot.xml";
        QTest::newRow("explain a model in a folder named after it")
            << QStringList{"explain", "slot", "29974", "9"} << 0
            << "placed card        2201          device/29974.old/29974_slot.xml:43"
            << QStringList{"device/29974", "rename", "device/29974.old"};
        QTest::newRow("explain the second of two cards of one model in a slot")
            << QStringList{"explain", "slot", "29974", "9"} << 0
            << "connector group  3             " + slot + ":48"
            << QStringList{slot, "</Subcard>",
                           "</Subcard><Subcard ModuleId=\"2201\"><ConnectorGroups>"
                           "<ConnectorGroup Value=\"3\"/></ConnectorGroups></Subcard>"};
        QTest::newRow("explain the feature file a model keeps")
            << QStringList{"explain", "feature", "29974", "features.genlock.type"} << 0
            << "Value     0  device/29974/29974_feature_z.xml:29"
            << QStringList{"device/29974/29974_feature.xml", "copy", "device/29974/29974_feature_z.xml"};
    }

    void answersAndRefusals() {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, text);
        QFETCH(QStringList, plant);
        QTemporaryDir dir;
        QString root = test::sharedConfig(QString());
        const QByteArray file = plant.value(0).toUtf8(), from = plant.value(1).toUtf8(),
                         to = plant.value(2).toUtf8();
        if (from == "rename" || from == "copy") {
            root = test::shippedCopy(dir);
            QVERIFY(from == "rename" ? QDir().rename(root + "/" + file, root + "/" + to)
                                     : QFile::copy(root + "/" + file, root + "/" + to));
        } else if (!plant.isEmpty()) {
            root = plantedCopy(dir, {{file.constData(), from.constData(), to.constData()}});
        }
        const Run run = lcdcfg(args << "--root" << root);
        QCOMPARE(run.code, code);
        QVERIFY2((run.out + run.err).contains(text), qPrintable(run.out + run.err));
    }

    // A slot gained, a card connector lost, a resolution no longer disabled
    // and a feature default changed: one sentence each, in the records' terms.
    void diffNamesPlantedChanges() {
        QTemporaryDir dir;
        const QString changed = plantedCopy(
            dir,
            {{"device/29974/29974_slot.xml", R"(<Slot Index="10"/>)",
              R"(<Slot Index="10"/><Slot Index="11"/>)"},
             {"subcard/2102_dvi_4in.xml",
              R"(<Connector Type="2" InterfaceType="2" Position="4" Enable="1" PrintKeyNo="4" Visible="1" )"
              R"(CapacityMode="0" WorkMode="0" BackupPos="0"/>)",
              ""},
             {"connector/connector_hdmi20.xml",
              R"(<Resolution Width="4096" Height="2160" RefreshRate="6000" Coefficient="0.01"/>)", ""},
             {"device/29974/29974_feature.xml",
              "<Genlock Support=\"1\" Editable=\"1\">\n        <Type Support=\"1\" Editable=\"1\" "
              "DataType=\"0\" Value=\"0\">",
              "<Genlock Support=\"1\" Editable=\"1\">\n        <Type Support=\"1\" Editable=\"1\" "
              "DataType=\"0\" Value=\"1\">"}});
        const QString shipped = test::sharedConfig(QString());
        const Run same = lcdcfg({"diff", shipped, shipped});
        QCOMPARE(same.code, 0);
        QCOMPARE(same.out, QString("no differences\n"));

        const Run text = lcdcfg({"diff", shipped, changed});
        QCOMPARE(text.code, 1);
        test::compareGolden("diff-planted.txt", text.out.toUtf8());

        const Run json = lcdcfg({"diff", "--json", shipped, changed});
        QCOMPARE(json.code, 1);
        const QJsonObject changes = QJsonDocument::fromJson(json.out.toUtf8()).object();
        QCOMPARE(changes["count"].toInt(), 4);
        QStringList paths;
        for (const QJsonValue& change : changes["changes"].toArray())
            paths << change["kind"].toString() + " " + change["path"].toString();
        QVERIFY2(paths.contains("added /devices/models/29974/slot/slots/mixCardSlots/slots/11"),
                 qPrintable(paths.join('\n')));
    }
};

QTEST_GUILESS_MAIN(LcdcfgShowTest)
#include "tst_lcdcfg_show.moc"
