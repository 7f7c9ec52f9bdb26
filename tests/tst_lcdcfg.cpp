// The command-line tool, run as a user runs it.

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include "testutil.h"

#include <cstdio>

namespace {

using test::lcdcfg;
using test::Run;

// Plants a fault in `path` (see plantedFaults).
// `path` renamed to `to`, the new name as bytes, percent-encoded.
QByteArray renamed(const QString& path, const QString& to) {
    return QFile::encodeName(QFileInfo(path).path()) + '/' + QByteArray::fromPercentEncoding(to.toLatin1());
}

void plant(const QString& path, const QString& from, const QString& to) {
    if (from == "mkdir") {
        QVERIFY(QDir().mkpath(path));
        return;
    }
    if (from == "*") {
        QVERIFY(QFileInfo(path).isDir() ? QDir(path).removeRecursively() : QFile::remove(path));
        return;
    }
    if (from == "rename") {
        QVERIFY(::rename(QFile::encodeName(path).constData(), renamed(path, to).constData()) == 0);
        return;
    }
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QString text = QString::fromUtf8(file.readAll());
    file.close();
    QVERIFY2(from.isEmpty() || text.contains(from), qPrintable(from));
    text = from.isEmpty() ? to : text.replace(from, to);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text.toUtf8());
}

// Every entry under `root`, to show that checking it changes nothing.
QStringList listing(const QString& root) {
    QStringList entries;
    QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        entries << it.next();
    entries.sort();
    return entries;
}

} // namespace

class LcdcfgTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pluginListsTheComponentsInTableOrder() {
        const Run run = lcdcfg({"plugin"});
        QCOMPARE(run.code, 0);
        QStringList rows;
        for (const QString& line : run.out.split('\n'))
            if (line.startsWith("  ")) rows << line.simplified();
        QCOMPARE(rows,
                 (QStringList{
                     "1 tavio.lcd.configmodel.device DeviceTessanConfigManager DeviceConfigInterface",
                     "2 tavio.lcd.configmodel.subcard SubcardConfigManager SubcardConfigInterface",
                     "3 tavio.lcd.configmodel.connector ConnectorConfigManager ConnectorConfigInterface",
                     "4 tavio.lcd.configmodel.menuconfigmanager MenuConfigManager MenuConfigInterface",
                     "5 tavio.lcd.configmodel.hdrconfig HDRConfig IHDRConfig",
                     "6 tavio.lcd.configmodel.keycheck KeyCheckConfig IKeyCheckConfig",
                     "7 tavio.lcd.configmodel.printkeyno PrintKeyNoConfig IPrintKeyNoConfig",
                 }));
        QVERIFY(run.out.contains("description {\"desc\":\"configmodel plugin!\",\"end\":0 }"));
    }

    void shippedConfigurationChecksClean() {
        const Run run = lcdcfg({"check", test::sharedConfig(QString())});
        QVERIFY2(run.code == 0, qPrintable(run.out + run.err));
        QCOMPARE(run.out, QString("no problems\n"));
    }

    // One planted fault per row, each on a fresh copy of the shipped tree:
    // `from` "*" removes `file`, "mkdir" makes it a folder, an empty `from` writes `to` as the file,
    // otherwise every `from` becomes `to`; "|" plants it in several files;
    // file "<root>" renames the tree to `to`. Every "FILE:LINE:CODE" of
    // `expected` is reported, with that exit status, and nothing is created.
    void plantedFaults_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<int>("code");
        const QString slot = "device/29974/29974_slot.xml";
        const QString mosaic = "device/29974/29974_screen_mosaic.xml";
        const QString splice = "device/29974/29974_screen_splice.xml";
        auto row = [](const char* name, const QString& file, const QString& from, const QString& to,
                      const QStringList& expected,
                      int code) { QTest::newRow(name) << file << from << to << expected << code; };
        row("misspelt required element", slot, "Device>", "Devise>", {slot + ":6:missing-element"}, 1);
        row("misspelt optional element", mosaic, "DeviceModes", "DeviceModez",
            {mosaic + ":7:element-misspelt"}, 1);
        row("number attribute with a letter", "subcard/2104_12gsdi_2in.xml", "ModelId=\"2104\"",
            "ModelId=\"21O4\"", {"subcard/2104_12gsdi_2in.xml:7:number-invalid"}, 1);
        row("misspelt attribute", "subcard/2104_12gsdi_2in.xml", "ModelId=\"2104\"", "ModelID=\"2104\"",
            {"subcard/2104_12gsdi_2in.xml:7:attribute-misspelt"}, 1);
        row("connector file read as nothing", "connector/connector_dvi.xml", "Connectors>", "Connectorz>",
            {"connector/connector_dvi.xml:0:file-unread"}, 1);
        row("malformed XML", "ui/printkeynoconfig.xml", "", "<LCD>", {"ui/printkeynoconfig.xml:1:parse"}, 1);
        row("empty card file", "subcard/2102_dvi_4in.xml", "", "",
            {"subcard/2102_dvi_4in.xml:1:parse", "subcard/2102_dvi_4in.xml:0:records-lost"}, 1);
        row("wrong version", "connector/connector_dvi.xml", "<Vrn version=\"1.0\"", "<Vrn version=\"2.0\"",
            {"connector/connector_dvi.xml:5:version", "connector/connector_dvi.xml:0:records-lost"}, 1);
        row("two broken card files", "subcard/2102_dvi_4in.xml|subcard/2103_dp12_2in.xml", "", "<Vrn>",
            {"subcard/2102_dvi_4in.xml:1:parse", "subcard/2103_dp12_2in.xml:1:parse"}, 1);
        row("two broken screen files", mosaic + "|device/29974/29974_screen_splice.xml", "", "<Vrn",
            {mosaic + ":1:parse", "device/29974/29974_screen_splice.xml:1:parse"}, 1);
        row("card missing from the catalogue", slot, "ModuleId=\"2104\"", "ModuleId=\"2105\"",
            {slot + ":21:card-unknown"}, 1);
        row("connector type without description", "subcard/2103_dp12_2in.xml", "Type=\"8\"", "Type=\"9\"",
            {"subcard/2103_dp12_2in.xml:17:connector-type-undescribed"}, 1);
        row("layout cell on an input slot", mosaic, "SlotIndex=\"5\" ConnectorIndex=\"1\"",
            "SlotIndex=\"1\" ConnectorIndex=\"1\"", {mosaic + ":26:layout-slot"}, 1);
        row("overlapping cells in the splice file", splice,
            "X=\"0\" Y=\"1080\" Width=\"1920\" Height=\"1080\" Row=\"2\" Column=\"1\" SlotIndex=\"6\"",
            "X=\"0\" Y=\"0\" Width=\"1920\" Height=\"1080\" Row=\"1\" Column=\"1\" SlotIndex=\"6\"",
            {splice + ":35:layout-overlap"}, 1);
        row("layout cell on an absent connector", mosaic, "SlotIndex=\"5\" ConnectorIndex=\"4\"",
            "SlotIndex=\"5\" ConnectorIndex=\"9\"", {mosaic + ":29:layout-connector"}, 1);
        row("cross-card member of an unknown card", "device/29974/29974_crosscard.xml",
            "ModuleId=\"2101\" Slot=\"2\"", "ModuleId=\"2109\" Slot=\"2\"",
            {"device/29974/29974_crosscard.xml:22:crosscard-module-unknown"}, 1);
        row("print keys of an unknown card", "ui/printkeynoconfig.xml", "ModelId=\"2103\"",
            "ModelId=\"2109\"", {"ui/printkeynoconfig.xml:18:printkey-model-unknown"}, 1);
        row("menu key without function item", "menu/menuitems.xml", "Key=\"101\"", "Key=\"999\"",
            {"menu/menuitems.xml:7:menu-key-without-item"}, 1);
        row("menu key twice", "menu/menuitems.xml", "Key=\"104\"", "Key=\"103\"",
            {"menu/menuitems.xml:10:menu-key-duplicate"}, 1);
        row("broken function items lose the menu tree", "menu/menufcitems.xml", "", "<LCD",
            {"menu/menufcitems.xml:1:parse", "menu/menufcitems.xml:0:records-lost"}, 1);
        row("HDR value without text", "func/hdr/lcdhdrinputconfig.xml", "<SupportValue>12<",
            "<SupportValue>13<", {"func/hdr/lcdhdrinputconfig.xml:18:hdr-value-without-text"}, 1);
        row("HDR value read as 0 beside a written 0", "func/hdr/lcdhdrinputconfig.xml",
            "<!-- AUTO -->\n        <ValueInfo Type=\"0\"> <!-- bit depth -->\n"
            "            <SupportValue>255</SupportValue>\n            <SupportValue>8<",
            "<!-- AUTO -->\n        <ValueInfo Type=\"0\"> <!-- bit depth -->\n"
            "            <SupportValue>255</SupportValue>\n            <SupportValue>eight<",
            {"func/hdr/lcdhdrinputconfig.xml:16:hdr-value-without-text"}, 1);
        row("duplicated card id", "subcard/2103_dp12_2in.xml", "ModelId=\"2103\"", "ModelId=\"2102\"",
            {"subcard/2103_dp12_2in.xml:6:card-duplicate"}, 1);
        row("empty Chinese card name warns", "subcard/2102_dvi_4in.xml", "<zh_CN>4路DVI输入卡</zh_CN>",
            "<zh_CN></zh_CN>", {"subcard/2102_dvi_4in.xml:6:name-missing-zh"}, 0);
        row("no English device name warns", "device/29974/29974_feature.xml",
            "<en>4U LCD Splicing Processor</en>", "", {"device/29974/29974_feature.xml:11:name-missing-en"},
            0);
        row("current device missing", "device/29974", "*", "", {"device:0:current-device-missing"}, 1);
        row("empty model folder warns", "device/12345", "mkdir", "", {"device/12345:0:model-dir-empty"}, 0);
        row("missing directory, not created", "subcard", "*", "", {"subcard:0:directory-missing"}, 1);
        row("card file named with undecodable bytes", "subcard/2102_dvi_4in.xml", "rename",
            "0000%FF%FE_card.xml", {"subcard/0000\\xff\\xfe_card.xml:0:undecodable-name"}, 1);
        row("key list without LcdKeys", "ui/checklist.xml", "", "<LCD/>",
            {"ui/checklist.xml:1:missing-element"}, 1);
        row("missing HDR file warns", "func/hdr/lcdhdrinputconfig.xml", "*", "",
            {"func/hdr/lcdhdrinputconfig.xml:0:load"}, 0);
        row("tree named otherwise", "<root>", "", "mytree", {}, 0);
    }

    void plantedFaults() {
        QFETCH(QString, file);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QStringList, expected);
        QFETCH(int, code);
        QTemporaryDir dir;
        QString config = test::shippedCopy(dir, "share/config");
        if (file == "<root>") {
            QVERIFY(QDir().rename(config, dir.filePath(to)));
            config = dir.filePath(to);
        } else {
            for (const QString& f : file.split('|'))
                plant(config + "/" + f, from, to);
        }
        const QStringList before = listing(config);
        const Run run = lcdcfg({"check", "--json", config});
        QCOMPARE(listing(config), before);
        if (from == "rename") // QTemporaryDir removes by decoded names
            ::rename(renamed(config + "/" + file, to).constData(),
                     QFile::encodeName(config + "/" + file).constData());
        QStringList reported;
        for (const QJsonValue& p : QJsonDocument::fromJson(run.out.toUtf8())["problems"].toArray())
            reported << QString("%1:%2:%3")
                            .arg(p["file"].toString())
                            .arg(p["line"].toInt())
                            .arg(p["code"].toString());
        for (const QString& problem : expected)
            QVERIFY2(reported.contains(problem), qPrintable(problem + " not in\n" + reported.join('\n')));
        QVERIFY2(!expected.isEmpty() || reported.isEmpty(), qPrintable(reported.join('\n')));
        QCOMPARE(run.code, code);
        if (code == 0 && !expected.isEmpty()) // warnings only: --strict fails
            QCOMPARE(lcdcfg({"check", "--strict", config}).code, 1);
    }

    // Every verb that reads a tree takes it with --root DIR, and as a positional
    // ROOT where it has no other positional argument (`positional`, run too
    // when given, must print the same); $LCD_CONFIG names no tree meanwhile,
    // so a verb that ignored the option would fail.
    void everyVerbTakesTheTree_data() {
        QTest::addColumn<QStringList>("withRoot");
        QTest::addColumn<QStringList>("positional");
        QTest::addColumn<int>("code");
        const QString r = "ROOT";
        QTest::newRow("check") << QStringList{"check", "--root", r} << QStringList{"check", r} << 0;
        QTest::newRow("lint") << QStringList{"lint", "--json", "--root", r}
                              << QStringList{"lint", "--json", r} << 0;
        QTest::newRow("report") << QStringList{"report", "-o", "-", "--root", r}
                                << QStringList{"report", "-o", "-", r} << 0;
        QTest::newRow("show") << QStringList{"show", "keys", "--root", r} << QStringList{} << 0;
        QTest::newRow("dump") << QStringList{"dump", "--json", "menu", "--root", r} << QStringList{} << 0;
        QTest::newRow("explain") << QStringList{"explain", "--root", r, "card", "2103"} << QStringList{} << 0;
        QTest::newRow("diff") << QStringList{"diff", r, "--root", r} << QStringList{"diff", r, r} << 0;
        QTest::newRow("reference") << QStringList{"reference", "--output", "OUT", "--root", r}
                                   << QStringList{"reference", "--output", "OUT", r} << 0;
    }

    void everyVerbTakesTheTree() {
        QFETCH(QStringList, withRoot);
        QFETCH(QStringList, positional);
        QFETCH(int, code);
        QTemporaryDir dir;
        const QString config = test::shippedCopy(dir);
        auto bind = [&](QStringList args) {
            args.replaceInStrings(QRegularExpression("^ROOT$"), config);
            args.replaceInStrings(QRegularExpression("^OUT$"), dir.filePath("out"));
            return args;
        };
        const QByteArray saved = qgetenv("LCD_CONFIG");
        qputenv("LCD_CONFIG", dir.filePath("none").toUtf8());
        const Run run = lcdcfg(bind(withRoot));
        const Run other = positional.isEmpty() ? run : lcdcfg(bind(positional));
        saved.isNull() ? qunsetenv("LCD_CONFIG") : qputenv("LCD_CONFIG", saved);
        QVERIFY2(run.code == code, qPrintable(run.out + run.err));
        QCOMPARE(other.code, run.code);
        QCOMPARE(other.out, run.out);
    }

    // `check` and `check --json` on a small faulty tree, against the files
    // under tests/data/lcdcfg (LCD_UPDATE_GOLDEN=1 rewrites them).
    void goldenOutput_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("golden");
        QTest::newRow("text") << QStringList{} << "check.txt";
        QTest::newRow("json") << QStringList{"--json"} << "check.json";
    }

    void goldenOutput() {
        QFETCH(QStringList, options);
        QFETCH(QString, golden);
        QTemporaryDir dir;
        const QString config = test::shippedCopy(dir, "share/config");
        plant(config + "/device/29974/29974_slot.xml", "ModuleId=\"2104\"", "ModuleId=\"2105\"");
        plant(config + "/subcard/2103_dp12_2in.xml", "", "<Vrn version=\"1.0\"></Vrm>");
        plant(config + "/subcard/2102_dvi_4in.xml", "<en>4-port DVI input card</en>", "<en></en>");
        plant(config + "/menu/menuitems.xml", "Key=\"101\"", "Key=\"999\"");
        const Run run = lcdcfg(QStringList{"check"} + options + QStringList{config});
        QCOMPARE(run.code, 1);
        test::compareGolden(golden, run.out.toUtf8());
    }

    void usageErrors_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");
        QTest::newRow("version") << QStringList{"--version"} << 0 << "lcdcfg 0.1.0";
        QTest::newRow("unknown command") << QStringList{"frobnicate"} << 2 << "unknown command frobnicate";
        QTest::newRow("no command") << QStringList{} << 2 << "usage: lcdcfg COMMAND";
        QTest::newRow("missing plug-in") << QStringList{"plugin", "--plugin", "/nonexistent.so"} << 2
                                         << "plug-in not found: /nonexistent.so";
        QTest::newRow("missing configuration") << QStringList{"check", "--root", "/nonexistent"} << 2
                                               << "no configuration directory /nonexistent";
        QTest::newRow("two roots") << QStringList{"check", "a", "b"} << 2 << "one ROOT at most";
        QTest::newRow("unknown option") << QStringList{"check", "--frobnicate"} << 2 << "Unknown option";
        QTest::newRow("report without output") << QStringList{"report"} << 2 << "-o FILE.html is required";
        QTest::newRow("report in an unknown language")
            << QStringList{"report", "-o", "-", "--locale", "fr"} << 2 << "--locale is en or zh_CN, not fr";
    }

    void usageErrors() {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, text);
        const Run run = lcdcfg(args);
        QCOMPARE(run.code, code);
        QVERIFY2((run.out + run.err).contains(text), qPrintable(run.out + run.err));
    }
};

QTEST_GUILESS_MAIN(LcdcfgTest)
#include "tst_lcdcfg.moc"
