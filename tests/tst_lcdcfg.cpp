// The command-line tool, run as a user runs it.

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include "testutil.h"

namespace {

using test::lcdcfg;
using test::Run;

// A copy of the shipped configuration under `dir`/share/config.
QString copyConfig(const QTemporaryDir& dir) {
    const QString target = dir.filePath(QStringLiteral("share/config"));
    QDirIterator it(test::sharedConfig(QString()), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString relative = QDir(test::sharedConfig(QString())).relativeFilePath(source);
        QDir().mkpath(QFileInfo(target + "/" + relative).absolutePath());
        QFile::copy(source, target + "/" + relative);
    }
    return target;
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
        const Run run = lcdcfg({"check", "--config", test::sharedConfig(QString())});
        QVERIFY2(run.code == 0, qPrintable(run.out + run.err));
        QVERIFY(run.out.endsWith("configuration loads cleanly\n"));
        QVERIFY(!run.out.contains("FAIL") && !run.out.contains("warn"));
    }

    void brokenFilesAreReported_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("line");
        QTest::newRow("key list without LcdKeys")
            << "ui/checklist.xml" << QByteArray("<LCD/>") << 1 << "FAIL  key-check   node not matches.";
        QTest::newRow("malformed print keys") << "ui/printkeynoconfig.xml" << QByteArray("<LCD>") << 1
                                              << "FAIL  print-keys  Parse error at line 1, column 6:";
        QTest::newRow("malformed device file") << "device/29974/29974_slot.xml" << QByteArray("<Vrn>") << 1
                                               << "FAIL  devices     Parse error at line 1, column 6:";
        QTest::newRow("missing HDR file warns") << "func/hdr/lcdhdrinputconfig.xml" << QByteArray() << 3
                                                << "HDR input config file is not exist,file name:";
    }

    void brokenFilesAreReported() {
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        QFETCH(int, code);
        QFETCH(QString, line);
        QTemporaryDir dir;
        const QString config = copyConfig(dir);
        if (content.isEmpty())
            QFile::remove(config + "/" + file);
        else
            test::writeFile(dir, "share/config/" + file, content);
        const Run run = lcdcfg({"check", "--config", config});
        QCOMPARE(run.code, code);
        QVERIFY2(run.out.contains(line), qPrintable(run.out));
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
        QTest::newRow("missing configuration") << QStringList{"check", "--config", "/nonexistent"} << 2
                                               << "no configuration directory /nonexistent";
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
