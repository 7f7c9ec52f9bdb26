// The key-check list and the print-key-number table (the shipped ones are
// pinned by tst_lcdcfg_show's dumps).

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

    // A failed load leaves the table alone and its text stays after a later
    // success; a second load appends, the first copy answers.
    void failuresAndReloads() {
        QTemporaryDir dir;
        const QString good =
            test::writeFile(dir, "good.xml", "<LCD><LcdKeys><K Value=\"5\" Name=\"OK\"/></LcdKeys></LCD>");
        KeyCheckConfig keys;
        QString error;
        QVERIFY(keys.readConfig(good, error));
        QVERIFY(!keys.readConfig(test::writeFile(dir, "nokeys.xml", "<LCD><Keys/></LCD>"), error));
        QCOMPARE(error, QStringLiteral("node not matches."));
        QVERIFY(keys.readConfig(good, error));
        QCOMPARE(error, QStringLiteral("node not matches."));
        QCOMPARE(keys.getKeyCheckList(), (KeyList{{5, "OK"}, {5, "OK"}}));

        PrintKeyNoConfig printKeys;
        const QString shipped = test::sharedConfig("ui/printkeynoconfig.xml");
        QVERIFY(printKeys.readConfig(shipped, error));
        QVERIFY(!printKeys.readConfig(test::sharedConfig("ui/missing.xml"), error));
        QCOMPARE(printKeys.getPrintKeyNoCfg(29974, 2101).modelId, 2101);
        QVERIFY(printKeys.readConfig(shipped, error));
        QCOMPARE(printKeys.getPrintKeyNoCfg(29974, 2101).printKeyNos.size(), size_t(4));
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
};

QTEST_GUILESS_MAIN(UiListsTest)
#include "tst_keycheck.moc"
