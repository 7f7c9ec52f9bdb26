// The key-check list and the print-key-number table.

#include <QtTest/QtTest>

#include "testutil.h"
#include "ui/keycheckconfig.h"
#include "ui/printkeynoconfig.h"

using namespace LCD::ConfigModel;

using KeyList = QList<QPair<int, QString>>;
Q_DECLARE_METATYPE(KeyList)

class UiListsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keyEntries_data() {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<KeyList>("expected");
        QTest::newRow("entry without attributes") << QByteArray("<Key/>") << KeyList{{0, QString()}};
        QTest::newRow("hexadecimal value reads 0")
            << QByteArray("<Key Value=\"0x10\" Name=\"MENU\"/>") << KeyList{{0, "MENU"}};
        QTest::newRow("any element name, comments and text skipped")
            << QByteArray("<Key Value=\"1\" Name=\"A\"/><!-- c --> text <Group Value=\"2\" Name=\"title\"/>")
            << KeyList{{1, "A"}, {2, "title"}};
        QTest::newRow("name kept unchanged") << QByteArray("<Key Value=\"-3\" Name=\" 菜单 \"/>")
                                             << KeyList{{-3, QString::fromUtf8(" 菜单 ")}};
        QTest::newRow("no entries") << QByteArray() << KeyList{};
    }

    void keyEntries() {
        QFETCH(QByteArray, keys);
        QFETCH(KeyList, expected);
        QTemporaryDir dir;
        const QString path =
            test::writeFile(dir, "checklist.xml", "<LCD><LcdKeys>" + keys + "</LcdKeys></LCD>");
        KeyCheckConfig config;
        QString error;
        QVERIFY(config.readConfig(path, error));
        QVERIFY(error.isEmpty());
        QCOMPARE(config.getKeyCheckList(), expected);
    }

    void keyListFailuresLeaveTheListAlone() {
        QTemporaryDir dir;
        const QString good =
            test::writeFile(dir, "good.xml", "<LCD><LcdKeys><K Value=\"5\" Name=\"OK\"/></LcdKeys></LCD>");
        const QString noKeys = test::writeFile(dir, "nokeys.xml", "<LCD><Keys/></LCD>");
        KeyCheckConfig config;
        QString error;
        QVERIFY(config.readConfig(good, error));
        QVERIFY(!config.readConfig(noKeys, error));
        QCOMPARE(error, QStringLiteral("node not matches."));
        QVERIFY(config.readConfig(good, error)); // success keeps the earlier failure's text
        QCOMPARE(error, QStringLiteral("node not matches."));
        QCOMPARE(config.getKeyCheckList(), (KeyList{{5, "OK"}, {5, "OK"}})); // reload doubles
    }

    void printKeyLookups_data() {
        QTest::addColumn<int>("device");
        QTest::addColumn<int>("card");
        QTest::addColumn<int>("modelId");
        QTest::addColumn<QStringList>("keys"); // "id:text"
        QTest::newRow("found") << 1 << 10 << 10 << QStringList{"1:A1", "2:A2"};
        QTest::newRow("first device wins") << 1 << 11 << -1 << QStringList{};
        QTest::newRow("card without ModelId is model 0") << 2 << 0 << 0 << QStringList{"0:"};
        QTest::newRow("unknown device") << 3 << 10 << -1 << QStringList{};
        QTest::newRow("device element of any name, no cards") << 4 << 0 << -1 << QStringList{};
    }

    void printKeyLookups() {
        QFETCH(int, device);
        QFETCH(int, card);
        QFETCH(int, modelId);
        QFETCH(QStringList, keys);
        QTemporaryDir dir;
        const QString path = test::writeFile(dir, "printkeynoconfig.xml", R"(<LCD>
            <Device ModelId="1"><Subcard ModelId="10"><Key Id="1" PrintKeyNo="A1"/><Key Id="2" PrintKeyNo="A2"/></Subcard></Device>
            <Device ModelId="1"><Subcard ModelId="11"><Key Id="1" PrintKeyNo="B1"/></Subcard></Device>
            <Device ModelId="2"><Card/><Subcard><Key/></Subcard></Device>
            <Chassis ModelId="4"/>
        </LCD>)");
        PrintKeyNoConfig config;
        QString error;
        QVERIFY(config.readConfig(path, error));
        for (const SubcardPrintKeyNoInfo& info :
             {config.getPrintKeyNoCfg(device, card), config.getAuxPrintkeyNoCfg(device, card)}) {
            QCOMPARE(info.modelId, modelId);
            QStringList got;
            for (const PrintKeyNoInfo& key : info.printKeyNos) {
                got << QStringLiteral("%1:%2").arg(key.id).arg(QString::fromStdString(key.printKeyNo));
                QCOMPARE(key.reserved, 0);
            }
            QCOMPARE(got, keys);
        }
    }

    void shippedFilesLoadCleanly() {
        KeyCheckConfig keys;
        PrintKeyNoConfig printKeys;
        QCOMPARE(test::loadProblems([&](QString& error) {
                     return keys.readConfig(test::sharedConfig("ui/checklist.xml"), error) &&
                            printKeys.readConfig(test::sharedConfig("ui/printkeynoconfig.xml"), error);
                 }),
                 QString());
        // Their contents are pinned by the tool's dumps (tst_lcdcfg_show).
        // A failed load leaves the table alone; a second load appends, the first copy answers.
        QString error;
        QVERIFY(!printKeys.readConfig(test::sharedConfig("ui/missing.xml"), error));
        QCOMPARE(printKeys.getPrintKeyNoCfg(29974, 2101).modelId, 2101);
        QVERIFY(printKeys.readConfig(test::sharedConfig("ui/printkeynoconfig.xml"), error));
        QCOMPARE(printKeys.getPrintKeyNoCfg(29974, 2101).printKeyNos.size(), size_t(4));
    }
};

QTEST_GUILESS_MAIN(UiListsTest)
#include "tst_keycheck.moc"
