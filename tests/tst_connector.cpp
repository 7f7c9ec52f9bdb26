// The connector catalogue: its files, the description element and the queries
// (the shipped catalogue is pinned by tst_lcdcfg_show's connector dump and
// golden).

#include "catalogue/connectorconfig.h"
#include "testutil.h"

#include <functional>

using namespace LCD::ConfigModel;
using namespace LCD::ConfigModel::Connector;
using Query = std::function<QString(const ConnectorConfigManager&)>;
Q_DECLARE_METATYPE(Query)

namespace {

// A connector description with every required and every optional element.
const QByteArray kDescription = test::testData("connector/description.xml");

QByteArray connectorFile(const QByteArray& descriptions) {
    return "<Vrn version=\"1.0\"><Connectors>" + descriptions + "</Connectors></Vrn>";
}

// The description with the elements at `removed` ("Name/en") taken out.
QDomDocument description(const QStringList& removed = {}) {
    QDomDocument doc = test::document(kDescription);
    for (const QString& path : removed) {
        QDomElement e = doc.documentElement();
        for (const QString& step : path.split('/'))
            e = e.firstChildElement(step);
        e.parentNode().removeChild(e);
    }
    return doc;
}

s_ConnectorCfg read(const QDomDocument& doc) {
    QString error;
    s_ConnectorCfg c;
    if (!ConnectorConfigManager::readConfigConnector(doc.documentElement(), error, c))
        qWarning("description rejected: %s", qPrintable(error));
    return c;
}

// "WxH@R" per entry, with "i" when interlaced and the value list in brackets.
QString describe(const s_resolutionResolutionRatioArray& list) {
    QStringList out;
    for (const s_resolutionResolutionRatio& r : list) {
        QStringList values;
        for (qint32 v : r.values)
            values << QString::number(v);
        out << QString::asprintf("%dx%d@%d%s", r.width, r.height, r.refreshRate, r.interlaced ? "i" : "") +
                   (values.isEmpty() ? "" : "[" + values.join(',') + "]");
    }
    return out.join(' ');
}

} // namespace

class TestConnector : public QObject {
    Q_OBJECT

    ConnectorConfigManager m_catalogue; // tests/data/connector/catalogue

private Q_SLOTS:
    void initTestCase() {
        QCOMPARE(test::loadProblems([&](QString& error) {
                     return m_catalogue.readConfig(LCD_SOURCE_DIR "/tests/data/connector/catalogue", error);
                 }),
                 QString());
    }

    // The record of tests/data/connector/description.xml:
    // tests/data/connector/descriptionlandsinitsfields.txt (a polarity's value list has no place in it,
    // porch, sync and total of a preset axis read neither "Max" nor "Value", colour channels read no
    // "Editable").
    void descriptionLandsInItsFields() {
        test::MessageRecorder log;
        const s_ConnectorCfg c = read(description());
        QVERIFY(log.clean());
        test::compareChanges("connector", s_ConnectorCfg{}, c);
    }

    void missingRequiredElement_data() {
        QTest::addColumn<QString>("removed");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<bool>("logged");
        const auto row = [](const char* name, const char* removed, const char* tag, bool logged) {
            QTest::newRow(name) << removed << tag << logged;
        };
        row("Name without en", "Name/en", "en", false);
        row("mode without BandWidth", "CapacityMode/Interface/Mode/BandWidth", "BandWidth", false);
        row("missing HDCP is logged", "HDCP", "HDCP", true);
        row("HDCP entry without Enable is logged", "HDCP/Interface/Enable", "Enable", true);
        row("preset axis without SyncPolarity is logged", "PresetTiming/Timing/Vertical/SyncPolarity",
            "SyncPolarity", true);
        row("colour range entry without ColorRange is logged", "ColorRanges/I/ColorRange", "ColorRange",
            true);
        row("image quality without Gamma is not logged", "ImageQuality/I/Gamma", "Gamma", false);
        row("missing EDID is not logged", "EDID", "EDID", false);
        row("first missing element ends the read", "EDID,General,HDCP", "HDCP", true);
    }
    void missingRequiredElement() {
        QFETCH(QString, removed);
        QFETCH(QString, tag);
        QFETCH(bool, logged);
        test::MessageRecorder log;
        QString error = "earlier";
        s_ConnectorCfg out;
        out.type = 99;
        QVERIFY(!ConnectorConfigManager::readConfigConnector(
            description(removed.split(',')).documentElement(), error, out));
        QCOMPARE(error, QString("Invalid [%1] node.").arg(tag));
        QCOMPARE(out.type, 99); // nothing read is stored
        QCOMPARE(log.warnings(), logged ? QStringList{"Log: " + error} : QStringList{});
        for (const test::Message& m : log.messages())
            QVERIFY(m.file.endsWith("connectorconfig.cpp") && m.function.contains("readConfigConnector"));
    }

    void optionalElementsKeepInitialValues() {
        const QString mode = "CapacityMode/Interface/Mode/";
        s_ConnectorCfg c =
            read(description({mode + "AdvResolutionRatio", mode + "Disables",
                              mode + "ResolutionRatios/ResolutionRatio", "HDCP/Interface/Type"}));
        const s_CapacityModeInInterface& m = c.interfaces.at(0).capacityModes.at(0);
        LCD_COMPARE_RECORDS(m.advResolutionRatio, s_ConnectorAdvResolutionRatio{});
        QVERIFY(m.disables.empty());
        LCD_COMPARE_RECORDS(m.resolutionRatios.resolutionRatio, s_ConnectorResolutionRatio{});
        LCD_COMPARE_RECORDS(c.hdcp.interfaces.at(0).typeSet, s_ConnectorEnumSet{});
        QVERIFY(read(description({"CapacityMode/Interface"})).interfaces.empty());

        // The strict range readers: all six attributes, absent ones 0, "step" untouched.
        const QDomDocument p = test::document(
            "<P><Full Support='1' Editable='0' Value='5' Min='-3' Max='abc' DataType='2'/></P>");
        QString error;
        s_RangeValue r;
        r.step = 0.5;
        QVERIFY(ConnectorConfigManager::getRGB(r, p.documentElement(), QLatin1String("Full"), error));
        LCD_COMPARE_RECORDS(r, (s_RangeValue{1, 0, 5, 2, -3, 0, 0.5}));
        QVERIFY(ConnectorConfigManager::getAttribute(r, p.documentElement(), QLatin1String("Full"), error));
        LCD_COMPARE_RECORDS(r, (s_RangeValue{1, 0, 5, 2, -3, 0, 0.5}));
        QVERIFY(!ConnectorConfigManager::getAttribute(r, p.documentElement(), QLatin1String("Gamma"), error));
        QCOMPARE(error, QString("Invalid [Gamma] node."));
    }

    void resolutionFile() {
        QTemporaryDir dir;
        test::writeFile(dir, "r1.xml", test::testData("connector/resolutions.xml"));
        ConnectorConfigManager manager;
        QString error;
        QVERIFY(manager.readConfig(dir.path(), error));

        const s_VrnResolution& catalogue = manager.resolution();
        QCOMPARE(catalogue.capacityModes.size(), size_t(2)); // "types" is an ordinary capacity mode
        QCOMPARE(catalogue.capacityModes[1].value, 7);
        // Every attribute is read: a missing "Interlaced" gives 0, not the initial 1.
        QCOMPARE(catalogue.capacityModes[0].resolutions,
                 (s_resolutionResolutionRatioArray{{1920, 1080, 6000, 0, 1, 0, 0.01f, {}}}));
        // A later group replaces an earlier one; a type without a group changes nothing.
        QCOMPARE(catalogue.typeValue, 2);
        QCOMPARE(describe(catalogue.typeResolutions), QString("720x576@5000i"));

        // The interface table: "Coefficient" is not read; an interface whose first child is no
        // "ResolutionRatios" has no capacity modes.
        const s_ConnectorInterface sdi{1, 0, 2, {{2, {{3840, 2160, 0, 0, 0, 1, 0.01f, {5, 6}}}}}};
        LCD_COMPARE_RECORDS(manager.connectors(), (std::vector<s_Connector>{{13, {sdi, {0, 0, 1, {}}}}}));

        // A second resolution file replaces the catalogue and the table.
        test::writeFile(dir, "r2.xml", R"(<Vrn><ResolutionRatios><M Value="1"/></ResolutionRatios></Vrn>)");
        QVERIFY(manager.readConfig(dir.path(), error));
        QVERIFY(manager.connectors().empty());
        QCOMPARE(manager.resolution().capacityModes.at(0).value, 1);
    }

    void directoryLoad() {
        QTemporaryDir dir;
        QByteArray second = kDescription, bad = kDescription;
        test::writeFile(dir, "B.xml", connectorFile(second.replace("HDMI<", "second<")));
        test::writeFile(dir, "a.xml", connectorFile(bad.replace("<EDID", "<Edid") + kDescription));
        test::writeFile(dir, "c.XML", connectorFile(""));
        test::writeFile(dir, "d.xml", "<Vrn><Something/></Vrn>");
        test::writeFile(dir, "e.xml", "<Vrn>text only</Vrn>");
        test::writeFile(dir, "f.txt", "not xml");

        ConnectorConfigManager manager;
        QString error;
        test::MessageRecorder log;
        QVERIFY(manager.readConfig(dir.path(), error));
        QCOMPARE(error,
                 QString("Invalid [EDID] node.")); // the rejected description is dropped, the load goes on
        QVERIFY(log.clean());
        const auto& files = manager.connectorFiles();
        QCOMPARE(files.size(), size_t(3)); // a, B, c; d and e are skipped
        QCOMPARE(files[0].connectors.size(), size_t(1));
        QCOMPARE(files[1].connectors.at(0).name.en, std::string("second"));
        QVERIFY(files[2].connectors.empty());
        QVERIFY(manager.readConfig(dir.path(), error)); // nothing is cleared: the files come again
        QCOMPARE(manager.connectorFiles().size(), size_t(6));
    }

    void brokenFileStopsTheLoad_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("message");
        QTest::newRow("not well-formed") << QByteArray("<Vrn><Connectors>") << "Parse error at line 1";
        QTest::newRow("wrong root") << QByteArray("<vrn/>")
                                    << "The file is not a valid configuration file for device.";
    }
    void brokenFileStopsTheLoad() {
        QFETCH(QByteArray, content);
        QFETCH(QString, message);
        QTemporaryDir dir;
        test::writeFile(dir, "1.xml", connectorFile(kDescription));
        test::writeFile(dir, "2.xml", content);
        test::writeFile(dir, "3.xml", connectorFile(kDescription));
        ConnectorConfigManager manager;
        QString error;
        QVERIFY(!manager.readConfig(dir.path(), error));
        QVERIFY2(error.startsWith(message), qPrintable(error));
        QCOMPARE(manager.connectorFiles().size(), size_t(1)); // what came before stays
    }

    // Before any load and for an unknown connector type alike.
    void missesGiveDefaults() {
        const ConnectorConfigManager empty;
        for (const auto& [c, type] : {std::pair{&empty, 6}, {&m_catalogue, 99}}) {
            QVERIFY(!c->findHDCPInfo(type) && !c->findEDIDInfo(type) && !c->findDynamicRangeInfo(type));
            QVERIFY(!c->findColorDepthsInfo(type) && !c->findHDRInfo(type) && !c->findColorSpacesInfo(type));
            QVERIFY(!c->findResoluCapacityMode(type) && !c->findConnectorResolutionRatios(0, type, 2));
            QVERIFY(!c->findConnectorDefaultResolution(0, type, 2) &&
                    !c->findConnectorDefaultAdvResolution(0, type, 2));
            QVERIFY(c->findConnectorResolutions(2, type, 2).empty());
            LCD_COMPARE_RECORDS(c->findConnectorRates(type, 0), s_ConnectorRefreshSet{});
            LCD_COMPARE_RECORDS(c->findConnectorTiming(type, 0), s_PreSetTimingInterface{});
            LCD_COMPARE_RECORDS(c->findConnectorHDCP(type), (s_ConnectorHDCP{-1, -1, {}}));
        }
    }

    void queries_data() {
        QTest::addColumn<Query>("query");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QStringList>("warnings");
        using M = const ConnectorConfigManager&;
        const auto row = [](const char* name, Query query, const QString& expected,
                            const QString& warning = {}) {
            QTest::newRow(name) << query << expected
                                << (warning.isEmpty() ? QStringList{} : QStringList{warning});
        };
        const auto standard = [](int mode) {
            return [mode](M m) { return describe(m.findConnectorStandardResolution(mode, 6, 2)); };
        };
        const auto resolutions = [](int mode, int interface) {
            return [=](M m) { return describe(m.findConnectorResolutions(mode, 6, interface)); };
        };
        const auto sdi = [](int height, int mode) {
            return [=](M m) {
                return describe({m.findSDIConnectorResolutions(1920, height, 1, mode, 13, 2, 0)});
            };
        };
        // The disabled entry (interlaced 0) removes the catalogue's entry all the same.
        row("standard: disabled entries removed", standard(0), "1280x720@6000 1920x1080@6000 720x576@5000");
        row("standard: the connector lacks the mode", standard(1), "");
        row("standard: the catalogue lacks the mode", standard(5), "", "not find capacityMode: 5");
        const QString input4k = "1280x720@6000 1920x1080@6000 720x576@5000i 3840x2160@6000";
        row("input in 4K mode takes the interlaced group", resolutions(2, 2), input4k);
        row("mode 7 collects modes 0 to 2 only", resolutions(7, 2), input4k);
        row("output keeps the catalogue's interlacing", resolutions(0, 1),
            "1280x720@6000 1920x1080@5000 1920x1080@6000 720x576@5000");
        row("mode -1 collects nothing", resolutions(-1, 2), "");
        row("SDI: auto-refresh entry is skipped", sdi(1080, 0), "1920x1080@5000i[2]");
        row("SDI: no matching entry gives the default", sdi(720, 0), "0x0@0i");
        row("SDI: no list warns and gives the default", sdi(1080, 2), "0x0@0i", "resolution config error");
    }
    void queries() {
        QFETCH(Query, query);
        test::MessageRecorder log;
        QTEST(query(m_catalogue), "expected");
        QTEST(log.warnings(), "warnings");
        for (const test::Message& m : log.messages())
            QVERIFY(m.file.endsWith("connectorconfig.cpp"));
    }

    void laterFilesOnlyWhenTheFirstLacks() {
        const ConnectorConfigManager& m = m_catalogue;
        QCOMPARE(m.findConnectorResolutionRatios(0, 6, 3)->support, 7); // the interface is only in b.xml
        QCOMPARE(m.findConnectorRates(6, 0).value, 6000);               // a.xml has timing type 0
        QCOMPARE(m.findConnectorTiming(6, 1).refresh.value, 7500);      // only b.xml has type 1
        QCOMPARE(m.findHDCPInfo(6)->support, 1); // attributes: the first connector only
        QCOMPARE(m.findConnectorHDCP(6).support, 1);
        QCOMPARE(m.findResoluCapacityMode(6)->size(), size_t(4));
        QCOMPARE(m.findResoluCapacityMode(8)->at(0).value, 1); // the first DP connector states support 0
        const s_CapacityModeInInterface& entry =
            m.connectorFiles()[0].connectors[0].interfaces[0].capacityModes[1];
        QCOMPARE(m.findConnectorDefaultResolution(2, 6, 2), &entry.resolutionRatios.resolutionRatio);
        QCOMPARE(m.findConnectorDefaultAdvResolution(2, 6, 2), &entry.advResolutionRatio);
        QCOMPARE(describe(m.findInterfaceInterlacedResolu(2)) + "|" +
                     describe(m.findInterfaceInterlacedResolu(1)),
                 QString("720x576@5000i|"));
    }
};

QTEST_GUILESS_MAIN(TestConnector)
#include "tst_connector.moc"
