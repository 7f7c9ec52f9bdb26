// The plug-in as the host sees it: loaded with dlopen through the host
// stand-in, its record, its descriptor table and the component life cycle.

#include <QtCore/QLibraryInfo>
#include <QtTest/QtTest>

#include "host/kvchost.h"
#include "lcdconfigmodel.h"

using namespace LCD::ConfigModel;

class PluginTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QString error;
        QVERIFY2(m_host.load(&error), qPrintable(error));
    }

    void pluginRecord() {
        const kvc::PluginInfo* info = m_host.info();
        QCOMPARE(info->infoVersion, "0.1");
        QCOMPARE(info->name, "configmodel");
        QCOMPARE(info->version, "0.1.0");
        QCOMPARE(info->description, "{\"desc\":\"configmodel plugin!\",\"end\":0 }");
        QCOMPARE(qstrlen(info->description), 39u);
        // pluginfo() hands out the same record every time.
        QCOMPARE(static_cast<const void*>(pluginfo()), static_cast<const void*>(info));
    }

    void componentTable() {
        const QStringList expected = {
            "tavio.lcd.configmodel.device",     "tavio.lcd.configmodel.subcard",
            "tavio.lcd.configmodel.connector",  "tavio.lcd.configmodel.menuconfigmanager",
            "tavio.lcd.configmodel.hdrconfig",  "tavio.lcd.configmodel.keycheck",
            "tavio.lcd.configmodel.printkeyno",
        };
        const auto components = m_host.components();
        QStringList ids;
        for (const kvc::ComponentInfo* c : components) {
            ids << QLatin1String(c->id);
            QCOMPARE(c->description, "{\"end\":0 }\r\n");
            QCOMPARE(qstrlen(c->description), 12u);
        }
        QCOMPARE(ids, expected);
        QCOMPARE(m_host.info()->componentTable[7], nullptr);
    }

    void lifeCycle() {
        for (const kvc::ComponentInfo* c : m_host.components()) {
            QVERIFY(c->creatorFn && c->deletorFn && c->messageHandlerFn);
            void* object = c->creatorFn();
            QVERIFY2(object, c->id);
            QCOMPARE(c->messageHandlerFn(object), nullptr);
            QCOMPARE(c->messageHandlerFn(nullptr), nullptr);
            c->deletorFn(object);
            c->deletorFn(nullptr); // harmless
        }
    }

    void componentsWorkThroughTheirInterface() {
        auto keys = m_host.create<IKeyCheckConfig>(QStringLiteral("tavio.lcd.configmodel.keycheck"));
        QVERIFY(keys);
        QVERIFY(keys->getKeyCheckList().isEmpty());
        auto printKeys = m_host.create<IPrintKeyNoConfig>(QStringLiteral("tavio.lcd.configmodel.printkeyno"));
        QVERIFY(printKeys);
        QCOMPARE(printKeys->getPrintKeyNoCfg(29974, 2101).modelId, -1);
    }

    void pluginitKeepsTheLastPointer() {
        int first = 0;
        int second = 0;
        pluginit(&first);
        pluginit(&second);
        QCOMPARE(kvc::api::get().host, static_cast<void*>(&second));
        QCOMPARE(kvc::api::get().reserved1, nullptr);
        QCOMPARE(kvc::api::get().reserved2, nullptr);
    }

    void hostReportsWhatIsWrong_data() {
        QTest::addColumn<QString>("library");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("message");
        QTest::newRow("missing file") << "/nonexistent/liblcd.so"
                                      << ""
                                      << "plug-in not found: /nonexistent/liblcd.so";
        const QString qtXml = QLibraryInfo::location(QLibraryInfo::LibrariesPath) + "/libQt5Xml.so.5";
        QTest::newRow("missing symbol") << qtXml << ""
                                        << "does not export pluginit";
        QTest::newRow("unknown id") << QString() << "tavio.lcd.configmodel.nothing"
                                    << "unknown component id: tavio.lcd.configmodel.nothing";
    }

    void hostReportsWhatIsWrong() {
        QFETCH(QString, library);
        QFETCH(QString, id);
        QFETCH(QString, message);
        QString error;
        if (library.isEmpty()) {
            auto object = m_host.create<IKeyCheckConfig>(id, &error);
            QVERIFY(!object);
        } else {
            kvchost::PluginHost other(library);
            QVERIFY(!other.load(&error));
        }
        QVERIFY2(error.contains(message), qPrintable(error));
    }

    void constantTables() {
        using namespace LCD::Constants;
        QVERIFY(!g_mapConnectorTypeName.contains(LCD::Enum::Interface::ConnectorType(12)));
        QCOMPARE(g_mapConnectorTypeName.size(), 13);
        QCOMPARE(g_mapConnectorTypeName.value(LCD::Enum::Interface::ConnectorType(13)),
                 QStringLiteral("12G-SDI"));
        QList<int> order;
        for (auto it = g_mapIconPath.cbegin(); it != g_mapIconPath.cend(); ++it)
            order << it.key();
        QCOMPARE(order, (QList<int>{0,   1,   2,   3,   4,   5,   6,   7,   256, 257, 258,
                                    259, 260, 261, 262, 263, 512, 513, 514, 515, 516, 517}));
        QCOMPARE(g_mapIconPath.value(LCD::Enum::TestPatternType(7)),
                 QStringLiteral("/share/themes/dark/images/icon_test_gird.png"));
        QCOMPARE(int(g_mapOrderColorSpace.value(0)), 3);
        QCOMPARE(int(g_mapOrderColorSpace.value(3)), 0);
        QCOMPARE(int(g_mapOrderColorSpace.value(255)), 255);
        QCOMPARE(g_mapThumbTagName.size(), 6);
        QCOMPARE(g_mapDetailTimingTagName.size(), 14);
        QCOMPARE(g_mapDetailTimingTagName.lastKey(), LCD::Enum::Interface::DetailTagName(13));
        QCOMPARE(GroupKeyTimeout, QStringLiteral("TIMEOUT"));
        QCOMPARE(OutputDynamicViewModel, std::string("outputinterfacedynamicviewmodelmessagehander"));
    }

private:
    kvchost::PluginHost m_host{QStringLiteral(LCD_PLUGIN_PATH)};
};

QTEST_GUILESS_MAIN(PluginTest)
#include "tst_plugin.moc"
