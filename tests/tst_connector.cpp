// The connector catalogue: its files, the description element, the queries,
// and the shipped catalogue.

#include "catalogue/connectorconfig.h"
#include "host/kvchost.h"
#include "testutil.h"

#include <QtCore/QRegularExpression>

using namespace LCD::ConfigModel;
using namespace LCD::ConfigModel::Connector;

namespace {

// A connector description with every required and every optional element.
const char kDescription[] = R"(<Connector Type="6" Icon="hdmi.png">
  <Name><zh_CN>HDMI 接口</zh_CN><en>HDMI</en></Name><ShortName><zh_CN>H</zh_CN><en>H</en></ShortName><SignalType/>
  <CapacityMode Support="1" Editable="1"><Interface Type="2"><Mode Support="1" Editable="1" Value="0">
    <BandWidth Support="1" Editable="0" Max="165000" Min="25000"/>
    <ResolutionRatios Support="1" Editable="1"><ResolutionRatio Support="1" Editable="1">
      <Width Support="1" Editable="1" Value="1920" Min="640" Max="3840" Step="8" DataType="0"/>
      <Height Value="1080"/><RefreshRate Value="6000" Coefficient="0.01"/>
    </ResolutionRatio></ResolutionRatios>
    <AdvResolutionRatio Support="1" Editable="1">
      <Horizontal Support="1" Editable="1"><AddTime/><FrontPorch/><Sync/><TotalTime Value="2200"/>
        <SyncPolarity Support="1" Editable="1" Value="1" DataType="1"><V Value="0"/></SyncPolarity></Horizontal>
      <Vertical><AddTime Value="1080"/></Vertical></AdvResolutionRatio>
    <Disables><R Width="720" Height="576" RefreshRate="5000" Coefficient="0.01"/></Disables>
  </Mode></Interface></CapacityMode>
  <HDCP Support="1" Editable="1"><Interface Type="2"><Enable Value="1"><V Value="0"/><V Value="1"/></Enable>
    <Type Value="22"><V Value="14"/><V Value="22"/></Type></Interface></HDCP>
  <General><Type DataType="1"><V Value="6"/></Type><Name Max="32"/><NameGB2312 Max="32"/></General>
  <PresetTiming Support="1" Editable="1"><Timing Type="0"><Interlaced Value="0"/><BandWidth Max="600000"/>
    <Refresh Value="6000" Coefficient="0.01"><V Value="5000"/><V Value="6000"/></Refresh>
    <Horizontal><AddTime/><FrontPorch Min="8" Max="99" Value="88"/><Sync/><TotalTime/><SyncPolarity/></Horizontal>
    <Vertical><AddTime/><FrontPorch/><Sync/><TotalTime/><SyncPolarity/></Vertical>
  </Timing></PresetTiming>
  <ColorDepths><I Type="2"><ColorDepth Value="8"/></I></ColorDepths><ColorSpaces><I><ColorSpace/></I></ColorSpaces>
  <ColorRanges><I Type="2"><ColorRange Value="255"/></I></ColorRanges>
  <FormatMapping Support="1" Value="0"/><DynamicRange Support="1"/>
  <ImageQuality><I Type="2"><Contrast Support="1"><R Support="1" Editable="1" Max="100"/><G/><B/></Contrast><Brightness><R/><G/><B/></Brightness>
    <Hue/><Saturation/><Gamma Value="22" Coefficient="0.1"/></I></ImageQuality>
  <Crop><Enable/><XRatio/><YRatio/><WidthRatio/><HeightRatio/><MaxCount/></Crop><TimingSelect><Select/></TimingSelect>
  <EDID Support="1" Editable="1"/></Connector>)";

QByteArray connectorFile(const QByteArray& descriptions) {
    return "<Vrn version=\"1.0\"><Connectors>" + descriptions + "</Connectors></Vrn>";
}

// kDescription with the elements at `removed` ("Name/en") taken out.
QDomDocument description(const QStringList& removed = {}) {
    QDomDocument doc;
    doc.setContent(QByteArray(kDescription));
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

// kDescription of another type, with other capacity modes, timings and HDCP support.
QByteArray variant(int type, int capacitySupport, const QString& interfaces, const QString& timings,
                   int hdcp) {
    const auto all = QRegularExpression::DotMatchesEverythingOption;
    return QString::fromUtf8(kDescription)
        .replace("Type=\"6\"", QString("Type=\"%1\"").arg(type))
        .replace(
            QRegularExpression("<CapacityMode.*</CapacityMode>", all),
            QString("<CapacityMode Support=\"%1\">%2</CapacityMode>").arg(capacitySupport).arg(interfaces))
        .replace(QRegularExpression("<PresetTiming.*</PresetTiming>", all),
                 "<PresetTiming>" + timings + "</PresetTiming>")
        .replace("<HDCP Support=\"1\"", QString("<HDCP Support=\"%1\"").arg(hdcp))
        .toUtf8();
}

QString mode(int value, int support, const char* disables = "") {
    return QString::asprintf(
        "<M Value='%d'><BandWidth/><ResolutionRatios Support='%d'/><Disables>%s</Disables></M>", value,
        support, disables);
}

QString timing(int type, int rate) {
    const char axis[] = "<AddTime/><FrontPorch/><Sync/><TotalTime/><SyncPolarity/>";
    return QString::asprintf(
        "<T Type='%d'><Interlaced/><BandWidth/><Refresh Value='%d'/><Horizontal>%s</Horizontal>"
        "<Vertical>%s</Vertical></T>",
        type, rate, axis, axis);
}

const char kResolutions[] = R"(<Vrn><ResolutionRatios>
  <M Value="0"><R Width="1280" Height="720" RefreshRate="6000"/><R Width="1920" Height="1080" RefreshRate="5000"/>
    <R Width="1920" Height="1080" RefreshRate="6000"/><R Width="720" Height="576" RefreshRate="5000"/></M>
  <M Value="1"><R Width="2560" Height="1440" RefreshRate="6000"/></M>
  <M Value="2"><R Width="3840" Height="2160" RefreshRate="6000"/></M>
  <M Value="3"><R Width="7680" Height="1080" RefreshRate="6000"/></M>
  <Types><T Value="2"><G><R Width="720" Height="576" RefreshRate="5000" Interlaced="1"/></G></T></Types>
</ResolutionRatios><Table><C Type="13"><I Type="2"><ResolutionRatios><M Value="0">
  <R AutoRefresh="1" Width="1920" Height="1080" Interlaced="1"/>
  <R Width="1920" Height="1080" RefreshRate="5000" Interlaced="1"><V Value="2"/></R>
  <R Width="1920" Height="1080" RefreshRate="5994" Interlaced="1"/>
</M></ResolutionRatios></I></C></Table></Vrn>)";

// "WxH@R" (with "i" when interlaced) per entry.
QString describe(const s_resolutionResolutionRatioArray& list) {
    QStringList out;
    for (const s_resolutionResolutionRatio& r : list)
        out << QString::asprintf("%dx%d@%d%s", r.width, r.height, r.refreshRate, r.interlaced ? "i" : "");
    return out.join(' ');
}

// a.xml: HDMI with input modes 0 (one resolution disabled), 2, 3, 5 and an
// output; DP twice. b.xml: HDMI again, with what the first one lacks.
struct Catalogue {
    Catalogue() {
        const char disabled[] = "<R Width='1920' Height='1080' RefreshRate='5000' Interlaced='0'/>";
        const QString hdmi = "<I Type='2'>" + mode(0, 1, disabled) + mode(2, 1) + mode(3, 1) + mode(5, 1) +
                             "</I><I Type='1'>" + mode(0, 1) + "</I>";
        test::writeFile(dir, "a.xml",
                        connectorFile(variant(6, 1, hdmi, timing(0, 6000), 1) +
                                      variant(8, 0, "<I Type='2'>" + mode(0, 1) + "</I>", {}, 1) +
                                      variant(8, 1, "<I Type='2'>" + mode(1, 1) + "</I>", {}, 1)));
        test::writeFile(dir, "b.xml",
                        connectorFile(variant(6, 1, "<I Type='3'>" + mode(0, 7) + "</I>",
                                              timing(0, 5000) + timing(1, 7500), 0)));
        test::writeFile(dir, "r.xml", kResolutions);
        QString error;
        if (!manager.readConfig(dir.path(), error) || !error.isEmpty())
            qFatal("catalogue: %s", qPrintable(error));
    }
    QTemporaryDir dir;
    ConnectorConfigManager manager;
};

} // namespace

class TestConnector : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void descriptionLandsInItsFields();
    void missingRequiredElement_data();
    void missingRequiredElement();
    void optionalElementsKeepInitialValues();
    void resolutionFile();
    void directoryLoad();
    void brokenFileStopsTheLoad_data();
    void brokenFileStopsTheLoad();
    void missesGiveDefaults_data();
    void missesGiveDefaults();
    void standardResolutions();
    void connectorResolutions_data();
    void connectorResolutions();
    void sdiResolution_data();
    void sdiResolution();
    void laterFilesOnlyWhenTheFirstLacks();
    void shippedCatalogue();
};

void TestConnector::descriptionLandsInItsFields() {
    test::MessageRecorder log;
    const s_ConnectorCfg c = read(description());
    QVERIFY(log.clean());
    QCOMPARE(c.name.zh_CN, std::string("HDMI 接口"));
    const s_CapacityModeInInterface& mode = c.interfaces.at(0).capacityModes.at(0);
    QCOMPARE(mode.bandWidth, (s_ConnectorBandWidth{1, 0, 25000, 165000}));
    QCOMPARE(mode.resolutionRatios.resolutionRatio.width,
             (s_ConnectorStepRange{{1, 1, 1920, 0, 640, 3840}, 8}));
    QCOMPARE(mode.advResolutionRatio.horizontal.totalTime, (s_RangeValue{0, 0, 2200, 0, 0, 0}));
    // The polarity's value list has no place in the record; min and max keep their defaults.
    QCOMPARE(mode.advResolutionRatio.horizontal.polarity, (s_RangeValue{1, 1, 1, 1, 0, 255}));
    QCOMPARE(mode.disables.at(0), (s_resolutionResolutionRatio{720, 576, 5000, 1, 0, 0, 0.01f, {}}));
    QCOMPARE(c.hdcp.interfaces.at(0).typeSet, (s_ConnectorEnumSet{0, 0, 22, 0, {{14}, {22}}}));
    QCOMPARE(c.presetTiming.interfaces.at(0).refresh,
             (s_ConnectorRefreshSet{0, 0, 6000, 0, 0.01f, {{5000}, {6000}}}));
    // Porch, sync and total of a preset axis read neither "Max" nor "Value".
    QCOMPARE(c.presetTiming.interfaces.at(0).horizontal.frontPorch, (s_RangeValue{0, 0, 0, 0, 8, 255}));
    // Colour channels read no "Editable".
    QCOMPARE(c.imageQuality.interfaces.at(0).contrast.r, (s_RangeValue{1, -1, 0, 0, 0, 100}));
    QCOMPARE(c.imageQuality.interfaces.at(0).gammaCoefficient, 0.1f);
    QCOMPARE(c.hdr, s_ConnectorHDR{}); // no element fills it
}

void TestConnector::missingRequiredElement_data() {
    QTest::addColumn<QString>("removed");
    QTest::addColumn<QString>("tag");
    QTest::addColumn<bool>("logged");

    QTest::newRow("Name without en") << "Name/en"
                                     << "en" << false;
    QTest::newRow("mode without BandWidth") << "CapacityMode/Interface/Mode/BandWidth"
                                            << "BandWidth" << false;
    QTest::newRow("missing HDCP is logged") << "HDCP"
                                            << "HDCP" << true;
    QTest::newRow("HDCP entry without Enable is logged") << "HDCP/Interface/Enable"
                                                         << "Enable" << true;
    QTest::newRow("preset axis without SyncPolarity is logged") << "PresetTiming/Timing/Vertical/SyncPolarity"
                                                                << "SyncPolarity" << true;
    QTest::newRow("colour range entry without ColorRange is logged") << "ColorRanges/I/ColorRange"
                                                                     << "ColorRange" << true;
    QTest::newRow("image quality without Gamma is not logged") << "ImageQuality/I/Gamma"
                                                               << "Gamma" << false;
    QTest::newRow("missing EDID is not logged") << "EDID"
                                                << "EDID" << false;
    QTest::newRow("first missing element ends the read") << "EDID,General,HDCP"
                                                         << "HDCP" << true;
}

void TestConnector::missingRequiredElement() {
    QFETCH(QString, removed);
    QFETCH(QString, tag);
    QFETCH(bool, logged);

    test::MessageRecorder log;
    QString error = "earlier";
    s_ConnectorCfg out;
    out.type = 99;
    const QDomDocument doc = description(removed.split(','));
    QVERIFY(!ConnectorConfigManager::readConfigConnector(doc.documentElement(), error, out));
    QCOMPARE(error, QString("Invalid [%1] node.").arg(tag));
    QCOMPARE(out.type, 99); // nothing read is stored
    QCOMPARE(log.warnings(), logged ? QStringList{"Log: " + error} : QStringList{});
    if (logged) {
        QVERIFY(log.messages().at(0).file.endsWith("connectorconfig.cpp"));
        QVERIFY(log.messages().at(0).function.contains("readConfigConnector"));
    }
}

void TestConnector::optionalElementsKeepInitialValues() {
    const QString mode = "CapacityMode/Interface/Mode/";
    s_ConnectorCfg c = read(description({mode + "AdvResolutionRatio", mode + "Disables",
                                         mode + "ResolutionRatios/ResolutionRatio", "HDCP/Interface/Type"}));
    const s_CapacityModeInInterface& m = c.interfaces.at(0).capacityModes.at(0);
    QCOMPARE(m.advResolutionRatio.vertical.sync, (s_RangeValue{-1, -1, 0, 0, 0, 255, 1.0}));
    QCOMPARE(m.advResolutionRatio, s_ConnectorAdvResolutionRatio{});
    QVERIFY(m.disables.empty());
    QCOMPARE(m.resolutionRatios.resolutionRatio, s_ConnectorResolutionRatio{});
    QCOMPARE(c.hdcp.interfaces.at(0).typeSet, s_ConnectorEnumSet{});

    // A present axis without children keeps the range defaults too.
    QCOMPARE(read(description()).interfaces[0].capacityModes[0].advResolutionRatio.vertical.sync,
             s_RangeValue{});
    QVERIFY(read(description({"CapacityMode/Interface"})).interfaces.empty());

    // The strict range readers: all six attributes, absent ones 0, "step" untouched.
    QDomDocument p;
    p.setContent(
        QByteArray("<P><Full Support='1' Editable='0' Value='5' Min='-3' Max='abc' DataType='2'/></P>"));
    QString error;
    s_RangeValue r;
    r.step = 0.5;
    QVERIFY(ConnectorConfigManager::getRGB(r, p.documentElement(), QLatin1String("Full"), error));
    QCOMPARE(r, (s_RangeValue{1, 0, 5, 2, -3, 0, 0.5}));
    QVERIFY(!ConnectorConfigManager::getAttribute(r, p.documentElement(), QLatin1String("Gamma"), error));
    QCOMPARE(error, QString("Invalid [Gamma] node."));
}

void TestConnector::resolutionFile() {
    QTemporaryDir dir;
    test::writeFile(dir, "r1.xml", R"(<Vrn><ResolutionRatios>
        <Mode Value="0"><R Width="1920" Height="1080" RefreshRate="6000" StandardType="1"/></Mode>
        <types Value="7"/>
        <Types><T Value="9"><G><R Width="1" Interlaced="1"/></G></T></Types>
        <Types><T Value="2"><G><R Width="720" Height="576" RefreshRate="5000" Interlaced="1"/></G></T></Types>
        <Types><T Value="5"/></Types>
      </ResolutionRatios><Table><C Type="13">
        <I Support="1" Editable="0" Type="2"><ResolutionRatios><M Value="2">
          <R AutoRefresh="1" Width="3840" Height="2160" Interlaced="0" Coefficient="5"><L Value="5"/><L Value="6"/></R>
        </M></ResolutionRatios></I>
        <I Type="1"><Other/><ResolutionRatios><M Value="0"/></ResolutionRatios></I>
      </C></Table></Vrn>)");
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
    QCOMPARE(catalogue.typeResolutions,
             (s_resolutionResolutionRatioArray{{720, 576, 5000, 1, 0, 0, 0.01f, {}}}));

    // The interface table: "Coefficient" is not read; an interface whose first child is no
    // "ResolutionRatios" has no capacity modes.
    const s_ConnectorInterface sdi{1, 0, 2, {{2, {{3840, 2160, 0, 0, 0, 1, 0.01f, {5, 6}}}}}};
    QCOMPARE(manager.connectors(), (std::vector<s_Connector>{{13, {sdi, {0, 0, 1, {}}}}}));

    // A second resolution file replaces the catalogue and the table.
    test::writeFile(dir, "r2.xml", R"(<Vrn><ResolutionRatios><M Value="1"/></ResolutionRatios></Vrn>)");
    QVERIFY(manager.readConfig(dir.path(), error));
    QVERIFY(manager.connectors().empty());
    QCOMPARE(manager.resolution().capacityModes.at(0).value, 1);
}

void TestConnector::directoryLoad() {
    QTemporaryDir dir;
    ConnectorConfigManager manager;
    QString error;
    QVERIFY(manager.readConfig(dir.filePath("new/connector"), error)); // created, nothing in it
    QVERIFY(QDir(dir.filePath("new/connector")).exists());
    QVERIFY(!manager.readConfig(QString(), error));
    QCOMPARE(error, QString("Invalid file path!\n"));

    QByteArray second = kDescription;
    QByteArray bad = kDescription;
    test::writeFile(dir, "B.xml", connectorFile(second.replace("HDMI<", "second<")));
    test::writeFile(dir, "a.xml", connectorFile(bad.replace("<EDID", "<Edid") + kDescription));
    test::writeFile(dir, "c.XML", connectorFile(""));
    test::writeFile(dir, "d.xml", "<Vrn><Something/></Vrn>");
    test::writeFile(dir, "e.xml", "<Vrn>text only</Vrn>");
    test::writeFile(dir, "f.txt", "not xml");

    error.clear();
    test::MessageRecorder log;
    QVERIFY(manager.readConfig(dir.path(), error));
    QCOMPARE(error, QString("Invalid [EDID] node.")); // the rejected description is dropped, the load goes on
    QVERIFY(log.clean());
    const auto& files = manager.connectorFiles();
    QCOMPARE(files.size(), size_t(3)); // a, B, c; d and e are skipped
    QCOMPARE(files[0].connectors.size(), size_t(1));
    QCOMPARE(files[1].connectors.at(0).name.en, std::string("second"));
    QVERIFY(files[2].connectors.empty());

    QVERIFY(manager.readConfig(dir.path(), error)); // nothing is cleared: the files come again
    QCOMPARE(manager.connectorFiles().size(), size_t(6));
}

void TestConnector::brokenFileStopsTheLoad_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    QTest::newRow("not well-formed") << QByteArray("<Vrn><Connectors>") << "Parse error at line 1";
    QTest::newRow("wrong root") << QByteArray("<vrn/>")
                                << "The file is not a valid configuration file for device.";
    QTest::newRow("version with a blank") << QByteArray("<Vrn version=\"1.0 \"/>")
                                          << "The file is not a valid configuration file of version 1.0";
}

void TestConnector::brokenFileStopsTheLoad() {
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

void TestConnector::missesGiveDefaults_data() {
    QTest::addColumn<bool>("loaded");
    QTest::newRow("before any load") << false;
    QTest::newRow("unknown connector type") << true;
}

void TestConnector::missesGiveDefaults() {
    QFETCH(bool, loaded);
    Catalogue catalogue;
    ConnectorConfigManager empty;
    const ConnectorConfigInterface& c = loaded ? catalogue.manager : empty;
    const int type = loaded ? 99 : 6;

    QVERIFY(!c.findHDCPInfo(type) && !c.findEDIDInfo(type) && !c.findDynamicRangeInfo(type));
    QVERIFY(!c.findColorDepthsInfo(type) && !c.findHDRInfo(type) && !c.findColorSpacesInfo(type));
    QVERIFY(!c.findResoluCapacityMode(type) && !c.findConnectorResolutionRatios(0, type, 2));
    QVERIFY(!c.findConnectorDefaultResolution(0, type, 2) &&
            !c.findConnectorDefaultAdvResolution(0, type, 2));
    QVERIFY(c.findConnectorResolutions(2, type, 2).empty());
    QCOMPARE(c.findConnectorRates(type, 0), s_ConnectorRefreshSet{});
    QCOMPARE(c.findConnectorTiming(type, 0), s_PreSetTimingInterface{});
    QCOMPARE(c.findConnectorHDCP(type), (s_ConnectorHDCP{-1, -1, {}}));
}

void TestConnector::standardResolutions() {
    Catalogue c;
    test::MessageRecorder log;
    // The disabled entry (interlaced 1) removes the catalogue's entry (interlaced 0) all the same.
    QCOMPARE(describe(c.manager.findConnectorStandardResolution(0, 6, 2)),
             QString("1280x720@6000 1920x1080@6000 720x576@5000"));
    QVERIFY(c.manager.findConnectorStandardResolution(1, 6, 2).empty()); // the connector lacks mode 1
    QVERIFY(log.warnings().isEmpty());
    QVERIFY(c.manager.findConnectorStandardResolution(5, 6, 2).empty()); // the catalogue lacks mode 5
    QCOMPARE(log.warnings(), QStringList{"not find capacityMode: 5"});
    QVERIFY(log.messages().at(0).file.endsWith("connectorconfig.cpp"));
}

void TestConnector::connectorResolutions_data() {
    QTest::addColumn<int>("capacityMode");
    QTest::addColumn<int>("interfaceType");
    QTest::addColumn<QString>("expected");

    const QString input4k = "1280x720@6000 1920x1080@6000 720x576@5000i 3840x2160@6000";
    QTest::newRow("input in 4K mode takes the interlaced group") << 2 << 2 << input4k;
    QTest::newRow("mode 7 collects modes 0 to 2 only") << 7 << 2 << input4k;
    QTest::newRow("output keeps the catalogue's interlacing")
        << 0 << 1 << "1280x720@6000 1920x1080@5000 1920x1080@6000 720x576@5000";
    QTest::newRow("mode -1 collects nothing") << -1 << 2 << "";
}

void TestConnector::connectorResolutions() {
    QFETCH(int, capacityMode);
    QFETCH(int, interfaceType);
    QFETCH(QString, expected);
    Catalogue c;
    QCOMPARE(describe(c.manager.findConnectorResolutions(capacityMode, 6, interfaceType)), expected);
}

void TestConnector::sdiResolution_data() {
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("capacityMode");
    QTest::addColumn<int>("refreshRate");
    QTest::addColumn<QStringList>("warnings");

    QTest::newRow("auto-refresh entry is skipped") << 1080 << 0 << 5000 << QStringList{};
    QTest::newRow("no matching entry gives the default") << 720 << 0 << 0 << QStringList{};
    QTest::newRow("no list warns and gives the default")
        << 1080 << 2 << 0 << QStringList{"resolution config error"};
}

void TestConnector::sdiResolution() {
    QFETCH(int, height);
    QFETCH(int, capacityMode);
    QFETCH(int, refreshRate);
    QFETCH(QStringList, warnings);
    Catalogue c;
    test::MessageRecorder log;
    const s_resolutionResolutionRatio r =
        c.manager.findSDIConnectorResolutions(1920, height, 1, capacityMode, 13, 2, 0);
    QCOMPARE(r.refreshRate, refreshRate);
    QCOMPARE(r.values, refreshRate ? std::vector<qint32>{2} : std::vector<qint32>{});
    QCOMPARE(r.interlaced, 1);
    QCOMPARE(log.warnings(), warnings);
}

void TestConnector::laterFilesOnlyWhenTheFirstLacks() {
    Catalogue c;
    const ConnectorConfigManager& m = c.manager;
    QCOMPARE(m.findConnectorResolutionRatios(0, 6, 3)->support, 7); // the interface is only in b.xml
    QCOMPARE(m.findConnectorRates(6, 0).value, 6000);               // a.xml has timing type 0
    QCOMPARE(m.findConnectorTiming(6, 1).refresh.value, 7500);      // only b.xml has type 1
    QCOMPARE(m.findHDCPInfo(6)->support, 1);                        // attributes: the first connector only
    QCOMPARE(m.findConnectorHDCP(6), *m.findHDCPInfo(6));
    QCOMPARE(m.findResoluCapacityMode(6)->size(), size_t(4));
    QCOMPARE(m.findResoluCapacityMode(8)->at(0).value, 1); // the first DP connector states support 0

    const s_CapacityModeInInterface& entry =
        m.connectorFiles()[0].connectors[0].interfaces[0].capacityModes[1];
    QCOMPARE(m.findConnectorDefaultResolution(2, 6, 2), &entry.resolutionRatios.resolutionRatio);
    QCOMPARE(m.findConnectorDefaultAdvResolution(2, 6, 2), &entry.advResolutionRatio);
    QCOMPARE(describe(m.findInterfaceInterlacedResolu(2)), QString("720x576@5000i"));
    QVERIFY(m.findInterfaceInterlacedResolu(1).empty());
}

void TestConnector::shippedCatalogue() {
    kvchost::PluginHost host;
    QString error;
    QVERIFY2(host.load(&error), qPrintable(error));
    const auto catalogue = host.create<ConnectorConfigInterface>("tavio.lcd.configmodel.connector", &error);
    QVERIFY(catalogue);
    {
        test::MessageRecorder log;
        QVERIFY(catalogue->readConfig(test::sharedConfig("connector"), error));
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(log.clean());
    }
    const ConnectorConfigInterface& m = *catalogue;
    for (int type : {2, 6, 8, 13}) // the connector types of the shipped card catalogue
        QVERIFY2(m.findEDIDInfo(type), qPrintable(QString::number(type)));

    // An HDMI 2.0 input: 1x offers full HD but no UHD; 4K adds UHD up to 60 Hz.
    const QString hd = describe(m.findConnectorResolutions(0, 6, 2));
    QVERIFY(hd.contains("1920x1080@6000 ") && hd.contains("720x576@5000i") && !hd.contains("3840x2160"));
    const QString uhd = describe(m.findConnectorResolutions(2, 6, 2));
    QVERIFY(uhd.contains("3840x2160@3000 ") && uhd.contains("3840x2160@6000 ") &&
            uhd.contains("2560x1440@6000"));

    // Its default timing in 1x: CEA-861 1080p60.
    const s_ConnectorTimingAxis& h = m.findConnectorDefaultAdvResolution(0, 6, 2)->horizontal;
    QCOMPARE(QVector<int>({h.addTime.value, h.frontPorch.value, h.sync.value, h.totalTime.value}),
             QVector<int>({1920, 88, 44, 2200}));

    // 12G-SDI takes no computer formats; 1080i arrives at 50 Hz first, over HD-SDI.
    QVERIFY(!describe(m.findConnectorResolutions(0, 13, 2)).contains("1024x768"));
    const s_resolutionResolutionRatio sdi = m.findSDIConnectorResolutions(1920, 1080, 1, 0, 13, 2, 0);
    QCOMPARE(sdi.refreshRate, 5000);
    QCOMPARE(sdi.values, std::vector<qint32>{2});

    // HDCP: HDMI 2.0 inputs choose between 1.4 and 2.2; SDI has none.
    QCOMPARE(m.findConnectorHDCP(6).interfaces.at(0).typeSet.values,
             (std::vector<ConnectorEnumValue>{{14}, {22}}));
    QCOMPARE(m.findConnectorHDCP(13), (s_ConnectorHDCP{0, 0, {}}));
}

QTEST_GUILESS_MAIN(TestConnector)
#include "tst_connector.moc"
