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
        // pluginfo() hands out the same record every time.
        QCOMPARE(static_cast<const void*>(pluginfo()), static_cast<const void*>(info));
        // The component ids and their order are checked through the tool (tst_lcdcfg).
        for (const kvc::ComponentInfo* c : m_host.components())
            QCOMPARE(c->description, "{\"end\":0 }\r\n");
        QCOMPARE(m_host.components().size(), 7);
        QCOMPARE(info->componentTable[7], nullptr);
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
        QTest::addColumn<QString>("library"); // empty: this plug-in
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("message");
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        const QString qtXml = QLibraryInfo::path(QLibraryInfo::LibrariesPath) + "/libQt6Xml.so.6";
#else
        const QString qtXml = QLibraryInfo::location(QLibraryInfo::LibrariesPath) + "/libQt5Xml.so.5";
#endif
        QTest::newRow("missing file") << "/nonexistent/liblcd.so"
                                      << ""
                                      << "plug-in not found: /nonexistent/liblcd.so";
        QTest::newRow("missing symbol") << qtXml << ""
                                        << "does not export pluginit";
        QTest::newRow("unknown id") << ""
                                    << "tavio.lcd.configmodel.nothing"
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

    // The quirks of the shared tables: a gap in the connector types, the
    // spellings of icon paths and view-model names, the colour-space order.
    void constantTables() {
        using namespace LCD::Constants;
        using LCD::Enum::Interface::ConnectorType;
        QVERIFY(!g_mapConnectorTypeName.contains(ConnectorType(12)));
        QCOMPARE(g_mapConnectorTypeName.value(ConnectorType(13)), QStringLiteral("12G-SDI"));
        QCOMPARE(g_mapIconPath.value(LCD::Enum::TestPatternType(7)),
                 QStringLiteral("/share/themes/dark/images/icon_test_gird.png"));
        QCOMPARE(QList<int>({int(g_mapOrderColorSpace.value(0)), int(g_mapOrderColorSpace.value(3)),
                             int(g_mapOrderColorSpace.value(255))}),
                 QList<int>({3, 0, 255}));
        QCOMPARE(g_mapDetailTimingTagName.lastKey(), LCD::Enum::Interface::DetailTagName(13));
        QCOMPARE(GroupKeyTimeout, QStringLiteral("TIMEOUT"));
        QCOMPARE(OutputDynamicViewModel, std::string("outputinterfacedynamicviewmodelmessagehander"));
    }

private:
    kvchost::PluginHost m_host{QStringLiteral(LCD_PLUGIN_PATH)};
};

QTEST_GUILESS_MAIN(PluginTest)
#include "tst_plugin.moc"
