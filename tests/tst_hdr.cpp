// HDR option tables: the parse rules, where the files are found, the
// selection by direction, "AUTO" and the value texts (the shipped files'
// answers are in tst_lcdcfg_show's golden).

#include "hdr/hdrconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;

namespace {

// "0:255,10;2:3": each dependent type with its values.
QString describe(const std::map<int, std::list<int>>& dependents) {
    QStringList parts;
    for (const auto& [type, values] : dependents) {
        QStringList numbers;
        for (int v : values)
            numbers << QString::number(v);
        parts << QString::number(type) + ':' + numbers.join(',');
    }
    return parts.join(';');
}

// "0/8{1:0} 1/1{0:10}": every key in table order.
QString describe(const HDROptionTable& table) {
    QStringList keys;
    for (const auto& [key, dependents] : table)
        keys << QStringLiteral("%1/%2{%3}").arg(key.type).arg(key.value).arg(describe(dependents));
    return keys.join(' ');
}

const QByteArray kHdr10At10Bit =
    R"(<Key Type="1" Value="1"><ValueInfo Type="0"><SupportValue>10</SupportValue></ValueInfo></Key>)";

// Runs one scope in another working directory.
struct WorkingDirectory {
    explicit WorkingDirectory(const QString& path) { QDir().mkpath(path), QDir::setCurrent(path); }
    ~WorkingDirectory() { QDir::setCurrent(saved); }
    const QString saved = QDir::currentPath();
};

} // namespace

class HdrTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parseRules_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("table");
        QTest::newRow("elements before the first Key are skipped")
            << R"(<Other Type="9" Value="9"><ValueInfo Type="0"/></Other>)" + kHdr10At10Bit << "1/1{0:10}";
        QTest::newRow("later siblings are keys whatever their name, in key order")
            << kHdr10At10Bit +
                   R"(<Opt Type="0" Value="8"><ValueInfo Type="1"><SupportValue>0</SupportValue></ValueInfo></Opt>)"
            << "0/8{1:0} 1/1{0:10}";
        QTest::newRow("no Key element, no keys")
            << QByteArray(R"(<Opt Type="0" Value="8"><ValueInfo Type="1"/></Opt>)") << "";
        QTest::newRow("a repeated key merges, the first list of a type wins")
            << kHdr10At10Bit +
                   R"(<Key Type="1" Value="1"><ValueInfo Type="0"><SupportValue>12</SupportValue></ValueInfo><ValueInfo Type="2"/></Key>)"
            << "1/1{0:10;2:}";
        QTest::newRow("ValueInfo and SupportValue: first by name, then any sibling; text as a number")
            << QByteArray(
                   R"(<Key Type="1" Value="1"><X Type="5"/><ValueInfo Type="0"><X>1</X><SupportValue> 10 </SupportValue><V>x</V></ValueInfo><Info Type="2"><SupportValue>3</SupportValue></Info></Key>)")
            << "1/1{0:10,0;2:3}";
        QTest::newRow("a key without ValueInfo adds nothing")
            << QByteArray(R"(<Key Type="1" Value="1"/><Key Type="1" Value="2"><X Type="0"/></Key>)") << "";
        QTest::newRow("absent numbers give 0")
            << QByteArray("<Key><ValueInfo><SupportValue/></ValueInfo></Key>") << "0/0{0:0}";
    }
    void parseRules() {
        QFETCH(QByteArray, body);
        QTemporaryDir dir;
        HDRConfig config;
        HDROptionTable table;
        QString error;
        QVERIFY(config.readConfig(
            test::writeFile(dir, "hdr.xml", "<Kalmir version=\"1.0\">" + body + "</Kalmir>"), error, table));
        QVERIFY(error.isEmpty());
        QTEST(describe(table), "table");
    }

    // The files lie in <working directory>/../share/config/func/hdr/.
    void initFindsFilesBesideWorkingDirectory_data() {
        QTest::addColumn<QByteArray>("input"); // null: no file; "dir": a directory in its place
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QString>("warnings"); // %IN, %OUT: the two paths
        QTest::addColumn<QString>("hdr10");    // input|output
        const QByteArray file = "<Kalmir>" + kHdr10At10Bit + "</Kalmir>";
        const QString missingIn = "HDR input config file is not exist,file name: %IN";
        QTest::newRow("both files read") << file << file << ""
                                         << "0:10|0:10";
        QTest::newRow("missing input file") << QByteArray() << file << missingIn << "|0:10";
        QTest::newRow("missing output file")
            << file << QByteArray() << "HDR output config file is not exist,file name: %OUT"
            << "0:10|";
        QTest::newRow("a directory is no file") << QByteArray("dir") << file << missingIn << "|0:10";
        QTest::newRow("root LCD rejected")
            << file << QByteArray("<LCD/>") << "This file is not a valid configuration file."
            << "0:10|";
    }
    void initFindsFilesBesideWorkingDirectory() {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, output);
        QFETCH(QString, warnings);
        QTemporaryDir dir;
        const QString hdrDir = QDir(dir.path()).canonicalPath() + "/share/config/func/hdr/";
        const QString in = hdrDir + "lcdhdrinputconfig.xml", out = hdrDir + "lcdhdroutputconfig.xml";
        for (const auto& [path, content] : {std::pair{in, input}, std::pair{out, output}}) {
            if (content == "dir")
                QDir().mkpath(path);
            else if (!content.isNull())
                test::writeFile(dir, QDir(dir.path()).relativeFilePath(path), content);
        }
        WorkingDirectory cwd(dir.path() + "/bin");
        HDRConfig config;
        test::MessageRecorder recorder;
        config.initInputConfig();
        config.initOutputConfig();
        QCOMPARE(recorder.warnings().join('\n'), warnings.replace("%IN", in).replace("%OUT", out));
        for (const test::Message& m : recorder.messages())
            QVERIFY(m.file.endsWith("hdrconfig.cpp") && m.function.contains("HDRConfig::init"));
        QTEST(describe(config.getCanSelectedValues({HDRDynamicRange, 1}, HDRInputConfig)) + '|' +
                  describe(config.getCanSelectedValues({HDRDynamicRange, 1}, HDROutputConfig)),
              "hdr10");
        QVERIFY(config.getCanSelectedValues({HDRDynamicRange, 1}, 3).empty()); // no direction, no table
    }

    void autoResolves_data() {
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("actual");
        QTest::addColumn<QVector<int>>("resolved"); // bit depth, colour gamut, dynamic range
        QTest::newRow("AUTO, actual unknown: 8 bit, Rec.709, SDR") << 255 << -1 << QVector<int>{8, 1, 0};
        QTest::newRow("AUTO, actual known") << 255 << 2 << QVector<int>{2, 2, 2};
        QTest::newRow("a chosen value ignores actual") << 10 << 12 << QVector<int>{10, 10, 10};
    }
    void autoResolves() {
        QFETCH(int, value);
        QFETCH(int, actual);
        HDRConfig config;
        QTEST((QVector<int>{config.autoToActualForBitDepth(value, actual),
                            config.autoToActualForColorGamut(value, actual),
                            config.autoToActualForDynamicRange(value, actual)}),
              "resolved");
    }

    void keyValueTexts_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<QList<int>>("values");
        QTest::addColumn<QHash<int, QString>>("texts");
        QTest::newRow("bit depth: unknown numbers skipped, repeats once")
            << 0 << QList<int>{16, 3, 8, 16} << QHash<int, QString>{{16, "16 bit"}, {8, "8 bit"}};
        QTest::newRow("dynamic range")
            << 1 << QList<int>{255, 2} << QHash<int, QString>{{255, "AUTO"}, {2, "HLG"}};
        QTest::newRow("colour gamut") << 2 << QList<int>{3, 9} << QHash<int, QString>{{3, "Rec.2020"}};
        QTest::newRow("colour space is never chosen") << 3 << QList<int>{0, 1} << QHash<int, QString>();
    }
    void keyValueTexts() {
        QFETCH(int, type);
        QFETCH(QList<int>, values);
        HDRConfig config;
        QTEST(config.getKeyValue(type, std::list<int>(values.begin(), values.end())), "texts");
    }
};

QTEST_GUILESS_MAIN(HdrTest)
#include "tst_hdr.moc"
