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
        QVERIFY(QDir().mkpath(QFile::decodeName(renamed(path, to)).section('/', 0, -2)));
        QVERIFY(::rename(QFile::encodeName(path).constData(), renamed(path, to).constData()) == 0);
        return;
    }
    const bool latin1 = from.startsWith("latin1:"); // the file is saved as Latin-1 too
    const QString what = latin1 ? from.mid(7) : from;
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QString text = QString::fromUtf8(file.readAll());
    file.close();
    QVERIFY2(what.isEmpty() || text.contains(what), qPrintable(what));
    text = what.isEmpty() ? to : text.replace(what, to);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(latin1 ? text.toLatin1() : text.toUtf8());
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
    // `from` "*" removes `file`, "mkdir" makes it a folder, "rename" moves it to `to` (relative to its
    // folder), an empty `from` writes `to` as the file, otherwise every `from` becomes `to` (with a
    // "latin1:" prefix, in a file then saved as Latin-1); "|" plants it in several files;
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
        row("empty Chinese card name", "subcard/2102_dvi_4in.xml", "<zh_CN>4路DVI输入卡</zh_CN>",
            "<zh_CN></zh_CN>", {"subcard/2102_dvi_4in.xml:6:name-missing-zh"}, 1);
        row("no English device name", "device/29974/29974_feature.xml", "<en>4U LCD Splicing Processor</en>",
            "", {"device/29974/29974_feature.xml:11:name-missing-en"}, 1);
        row("device without type name", "device/29974/29974_feature.xml",
            "<TypeName Icon=\"images/device/ts4u.png\">\n      <en>4U LCD Splicing Processor</en>\n"
            "      <zh_CN>4U液晶拼接处理器</zh_CN>\n    </TypeName>",
            "",
            {"device/29974/29974_feature.xml:10:name-missing-en",
             "device/29974/29974_feature.xml:10:name-missing-zh"},
            1);
        row("template without Chinese name", mosaic, " zh_CN=\"横向条屏 1x4\"", "",
            {mosaic + ":12:name-missing-zh"}, 1);
        row("function item without English name", "menu/menufcitems.xml", "<en>Screens</en>", "",
            {"menu/menufcitems.xml:9:name-missing-en"}, 1);
        row("current device missing", "device/29974", "*", "", {"device:0:current-device-missing"}, 1);
        row("empty model folder warns", "device/12345", "mkdir", "", {"device/12345:0:model-dir-empty"}, 0);
        row("missing directory, not created", "subcard", "*", "", {"subcard:0:directory-missing"}, 1);
        row("card file named with undecodable bytes", "subcard/2102_dvi_4in.xml", "rename",
            "0000%FF%FE_card.xml", {"subcard/0000\\xff\\xfe_card.xml:0:undecodable-name"}, 1);
        row("key list without LcdKeys", "ui/checklist.xml", "", "<LCD/>",
            {"ui/checklist.xml:1:missing-element"}, 1);
        row("missing HDR file warns", "func/hdr/lcdhdrinputconfig.xml", "*", "",
            {"func/hdr/lcdhdrinputconfig.xml:0:load"}, 0);
        row("Min above Max", mosaic, "Min=\"100\" Max=\"2000\"", "Min=\"3000\" Max=\"2000\"",
            {mosaic + ":15:range-inverted"}, 1);
        row("Value above Max", mosaic, "Value=\"744\"", "Value=\"7440\"",
            {mosaic + ":15:range-value-outside"}, 1);
        row("resolution of negative width", "connector/resolutions.xml", "Width=\"720\" Height=\"480\"",
            "Width=\"-720\" Height=\"480\"", {"connector/resolutions.xml:9:range-size-empty"}, 1);
        row("count stored as 0", "subcard/2104_12gsdi_2in.xml", "InterlacedMaxCount=\"2\"",
            "InterlacedMaxCount=\"-1\"", {"subcard/2104_12gsdi_2in.xml:7:field-overflow"}, 1);
        row("model number beyond 16 bits", "device/29974/29974_feature.xml", "<Device ModuleId=\"29974\"",
            "<Device ModuleId=\"95510\"", {"device/29974/29974_feature.xml:10:field-overflow"}, 1);
        row("slot index in two groups", slot, "<Slot Index=\"3\"/>", "<Slot Index=\"6\"/>",
            {slot + ":33:slot-duplicate"}, 1);
        row("two screen files of one type", splice, "Screen Type=\"1\"", "Screen Type=\"2\"",
            {splice + ":3:screen-type-duplicate"}, 1);
        row("HDR value twice", "func/hdr/lcdhdrinputconfig.xml", "<SupportValue>10<", "<SupportValue>8<",
            {"func/hdr/lcdhdrinputconfig.xml:17:hdr-value-duplicate"}, 1);
        row("model folder not named by a number", "device/29974", "rename", "v29974",
            {"device/v29974:0:model-dir-unnamed"}, 1);
        row("model without feature file", "device/29974/29974_feature.xml", "*", "",
            {"device/29974:0:model-file-missing"}, 1);
        row("card file one folder too deep", "subcard/2104_12gsdi_2in.xml", "rename", "mixed/x/2104.xml",
            {"subcard/mixed/x/2104.xml:0:file-misplaced"}, 1);
        row("HDR file out of its folder", "func/hdr/lcdhdrinputconfig.xml", "rename", "../input.xml",
            {"func/input.xml:0:file-misplaced"}, 1);
        row("file name of two kinds", "device/29974/29974_layer_pip.xml", "rename", "29974_slot_layer.xml",
            {"device/29974/29974_slot_layer.xml:0:file-kind-ambiguous"}, 1);
        row("Latin-1 declared, UTF-8 written", "subcard/2102_dvi_4in.xml", "encoding=\"UTF-8\"",
            "encoding=\"ISO-8859-1\"", {"subcard/2102_dvi_4in.xml:8:encoding-mismatch"}, 1);
        row("saved in another encoding", "subcard/2102_dvi_4in.xml", "latin1:4路DVI输入卡", "4-DVI carté",
            test::byQt<QStringList>({"subcard/2102_dvi_4in.xml:8:text-undecodable"},
                                    {"subcard/2102_dvi_4in.xml:1:parse"}), // Qt 6 refuses the bytes
            1);
        row("unknown entity", "subcard/2102_dvi_4in.xml", "<en>", "<en>4&nbsp;",
            test::byQt<QStringList>({"subcard/2102_dvi_4in.xml:9:entity-unknown"},
                                    {"subcard/2102_dvi_4in.xml:9:parse"}), // Qt 6 refuses the entity
            1);
        row("element left open", "device/29974/29974_feature.xml", "<HDR Support=\"1\" Editable=\"1\"/>",
            "<HDR Support=\"1\" Editable=\"1\">",
            {"device/29974/29974_feature.xml:16:element-unclosed",
             "device/29974/29974_feature.xml:252:parse"},
            1);
        row("accepted cards after the first slot", slot, "<Slot Index=\"8\"/>",
            "<Slot Index=\"8\"/><Subcards><Subcard ModuleId=\"3101\"/></Subcards>",
            {slot + ":35:element-read-as"}, 1);
        const QString cross = "device/29974/29974_crosscard.xml";
        row("key code twice", "ui/checklist.xml", "Value=\"17\"", "Value=\"16\"",
            {"ui/checklist.xml:7:key-duplicate"}, 1);
        row("card twice in the print keys", "ui/printkeynoconfig.xml", "ModelId=\"2103\"", "ModelId=\"2102\"",
            {"ui/printkeynoconfig.xml:18:printkey-card-duplicate"}, 1);
        row("card twice in the cross-card file", cross, "<Subcard Value=\"3101\">",
            "<Subcard Value=\"2101\">", {cross + ":33:crosscard-card-duplicate"}, 1);
        row("two layer files of one type", "device/29974/29974_layer_pip.xml", "Layer Type=\"2\"",
            "Layer Type=\"1\"",
            {"device/29974/29974_layer_pip.xml:4:layer-type-duplicate", mosaic + ":106:layer-type-unknown"},
            1);
        row("two connectors at one position", "subcard/2101_hdmi20_4in.xml",
            "InterfaceType=\"2\" Position=\"2\"", "InterfaceType=\"2\" Position=\"1\"",
            {"subcard/2101_hdmi20_4in.xml:65:connector-position-duplicate",
             "ui/printkeynoconfig.xml:8:printkey-position-unknown"},
            1);
        row("connector type described twice", "connector/connector_dp12.xml", "Connector Type=\"8\"",
            "Connector Type=\"6\"", {"connector/connector_hdmi20.xml:7:connector-type-duplicate"}, 1);
        row("resolution twice in a mode", "connector/resolutions.xml",
            "Width=\"720\" Height=\"480\" RefreshRate=\"5994\"",
            "Width=\"640\" Height=\"480\" RefreshRate=\"6000\"",
            {"connector/resolutions.xml:9:resolution-duplicate"}, 1);
        row("cross-card member in no slot", cross, "Slot=\"2\" Position=\"1\"", "Slot=\"42\" Position=\"1\"",
            {cross + ":22:crosscard-slot-unknown"}, 1);
        row("cross-card member on no connector", cross, "Slot=\"2\" Position=\"1\"",
            "Slot=\"2\" Position=\"7\"", {cross + ":22:crosscard-connector-unknown"}, 1);
        row("mixed slot naming a group its card lacks", slot, "ConnectorGroup Value=\"2\"",
            "ConnectorGroup Value=\"7\"", {slot + ":46:connector-group-unknown"}, 1);
        row("card pairing with an unknown card", "subcard/2101_hdmi20_4in.xml",
            "Association ModelId=\"2103\"", "Association ModelId=\"2109\"",
            {"subcard/2101_hdmi20_4in.xml:14:association-unknown"}, 1);
        row("grouping after the first cross-card device mode", cross,
            "</DeviceMode>\n        <DeviceMode Value=\"2\">",
            "</DeviceMode><Offset/>\n        <DeviceMode Value=\"2\">", {cross + ":16:element-read-as"}, 1);
        row("element after the first section of a card", "subcard/2101_hdmi20_4in.xml",
            "<Section Code=\"2\"/>", "<Section Code=\"2\"/><Note Code=\"9\"/>",
            {"subcard/2101_hdmi20_4in.xml:161:element-read-as"}, 1);
        row("grouping after the first device mode", mosaic,
            "</DeviceMode>\n                    <!-- device mode 2",
            "</DeviceMode><Templetes Value=\"2\"/>\n                    <!-- device mode 2",
            {mosaic + ":115:element-read-as"}, 1);
        row("setting value none of its options", "device/29974/29974_feature.xml",
            "DataType=\"0\" Value=\"0\">\n          <Enum Value=\"0\"/> <!-- free run -->",
            "DataType=\"0\" Value=\"7\">\n          <Enum Value=\"0\"/> <!-- free run -->",
            {"device/29974/29974_feature.xml:29:range-value-unlisted"}, 1);
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
        QVERIFY2(!QString(run.out).remove(config).contains(QDir::tempPath()),
                 qPrintable(run.out)); // no scaffold
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
    // `dump` names the file the card load stopped at (only its "stopped" is kept).
    void goldenOutput_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("golden");
        QTest::addColumn<int>("code");
        QTest::newRow("text") << QStringList{"check", "ROOT"} << "check.txt" << 1;
        QTest::newRow("json") << QStringList{"check", "--json", "ROOT"} << "check.json" << 1;
        QTest::newRow("dump stopped")
            << QStringList{"dump", "--json", "--root", "ROOT"} << "dump-stopped.json" << 0;
    }

    void goldenOutput() {
        QFETCH(QStringList, args);
        QFETCH(QString, golden);
        QFETCH(int, code);
        QTemporaryDir dir;
        const QString config = test::shippedCopy(dir, "share/config");
        plant(config + "/device/29974/29974_slot.xml", "ModuleId=\"2104\"", "ModuleId=\"2105\"");
        plant(config + "/subcard/2103_dp12_2in.xml", "", "<Vrn version=\"1.0\"></Vrm>");
        plant(config + "/subcard/2102_dvi_4in.xml", "<en>4-port DVI input card</en>", "<en></en>");
        plant(config + "/menu/menuitems.xml", "Key=\"101\"", "Key=\"999\"");
        const Run run = lcdcfg(args.replaceInStrings(QRegularExpression("^ROOT$"), config));
        QCOMPARE(run.code, code);
        const QString printed =
            args.first() == "dump"
                ? QString::fromUtf8(
                      QJsonDocument(
                          QJsonDocument::fromJson(run.out.toUtf8()).object().value("stopped").toObject())
                          .toJson())
                : run.out;
        test::compareGolden(golden, printed.toUtf8());
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
