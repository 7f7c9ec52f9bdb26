// The card catalogue: which files are read, which failures end the load, the
// search rules of the queries, and the shipped catalogue.

#include "catalogue/subcardconfig.h"
#include "testutil.h"

#include <QtCore/QRegularExpression>

#include <functional>

using namespace LCD::ConfigModel;
using namespace LCD::ConfigModel::Subcard;

using Query = std::function<QString(SubcardConfigManager&)>;
Q_DECLARE_METATYPE(Query)

// Declared before the inline XML below, which moc cannot read past.
class TestSubcard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void directories();
    void fileFailures_data();
    void fileFailures();
    void cardElements_data();
    void cardElements();
    void wholeCard();
    void queries_data();
    void queries();
    void shippedCatalogue();

private:
    QTemporaryDir m_queryDir;
    SubcardConfigManager m_queries;
};

namespace {

QByteArray catalogue(const QByteArray& cards) {
    return "<Vrn version=\"1.0\"><Subcards>" + cards + "</Subcards></Vrn>";
}

QByteArray minimalCard(int modelId) {
    return "<Subcard ModelId=\"" + QByteArray::number(modelId) +
           "\"><Associations/><Name><zh_CN>z</zh_CN><en>e</en></Name><ConnectorGroups><Capacity/>"
           "</ConnectorGroups><CapacityGroups/><Sections/></Subcard>";
}

// Every section once, with Connectors children in mixed order. Children of
// lists are named freely where any name is read, so each tag occurs once.
QByteArray fullCard(int modelId) {
    return "<Subcard ModelId=\"" + QByteArray::number(modelId) + R"(" CardMode="1" InterlacedMaxCount="4">
  <Associations><Association ModelId="3" CardMode="2"/></Associations><Name><zh_CN>输入卡</zh_CN><en>Input</en></Name>
  <Connectors>
    <Connector Type="6" InterfaceType="5" Position="1" Enable="1" PrintKeyNo="7" Visible="1" CapacityMode="2" WorkMode="1" BackupPos="3"/>
    <DeviceMode Value="2"><Capacitys Value="1"><Cap Name="2x4K" Enable="1" Value="1">
      <Connector Position="1" GroupId="4"><DynamicRange Support="1" Editable="0" Value="2" DataType="3"/></Connector></Cap></Capacitys></DeviceMode>
    <Label/>
    <Types><Connector Type="6"><PresetThumbTiming Support="1" Editable="0"><Interface Type="5"><WorkModes><WorkMode><CapacityModes>
      <CapacityMode Value="2"><ResolutionRatios><ResolutionRatio Width="3840" Height="2160"/><ResolutionRatio Width="1"/></ResolutionRatios>
        <Refreshs><Refresh Value="59.94"/><R Value="50"/></Refreshs></CapacityMode>
    </CapacityModes></WorkMode></WorkModes></Interface></PresetThumbTiming></Connector><Other Type="9"/></Types>
    <Connector Position="2"/>
  </Connectors>
  <ConnectorGroups Value="1"><Capacity Name="4x2K"><Group Value="1" SelectNum="2"><Connector Position="1"/></Group></Capacity></ConnectorGroups>
  <CapacityGroups><CapGroup Name="2x4K" Enable="1" Value="1"><DeviceModes><Mode Value="2">
    <Connector Position="1" Enable="1" Visible="0" CapacityMode="2" WorkMode="1" BackupPos="3"/></Mode></DeviceModes></CapGroup></CapacityGroups>
  <Sections><Section Code="5"/></Sections>
  <ConnectorCopy Support="1" Editable="0" Value="1"><MainRelated Support="1" Editable="1"><Cap Name="2x4K" Enable="1" Value="1">
    <Mode Value="2"><Group Value="1"><C Position="1"/><C Position="2"/></Group></Mode></Cap></MainRelated></ConnectorCopy>
</Subcard>)";
}

// `xml` without its first element named `tag`.
QByteArray without(const QByteArray& xml, const QByteArray& tag) {
    const QRegularExpression element("<" + tag + "\\b[^>]*?/>|<" + tag + "\\b.*?</" + tag + ">",
                                     QRegularExpression::DotMatchesEverythingOption);
    const QString text = QString::fromUtf8(xml);
    return QString(text).remove(element.match(text).captured()).toUtf8();
}

QList<int> modelIds(const SubcardConfigManager& m) {
    QList<int> ids;
    for (const s_Subcard& card : m.subcardConfig())
        ids << card.modelId;
    return ids;
}

template <class T> QString positions(const std::vector<T>& list) {
    QStringList out;
    for (const T& x : list)
        out << QString::number(x.position);
    return out.join(',');
}

} // namespace

void TestSubcard::directories() {
    QTemporaryDir tmp;
    SubcardConfigManager m;
    QString error;
    QVERIFY(m.readConfig(tmp.filePath("missing/dir"), error)); // created, empty
    QVERIFY(QFileInfo(tmp.filePath("missing/dir")).isDir() && m.subcardConfig().empty());
    test::writeFile(tmp, "b.xml", catalogue(minimalCard(2)));
    test::writeFile(tmp, "A.xml", catalogue(minimalCard(1)));
    test::writeFile(tmp, "sub/c.xml", catalogue(minimalCard(3)));
    test::writeFile(tmp, "sub/deeper/d.xml", catalogue(minimalCard(4)));
    test::writeFile(tmp, "a2/e.xml", catalogue(minimalCard(5) + minimalCard(5)));
    QVERIFY(m.readConfig(tmp.path(), error));
    QVERIFY(m.readConfig(tmp.path(), error)); // appends
    QCOMPARE(modelIds(m), (QList<int>{1, 2, 5, 5, 3, 1, 2, 5, 5, 3}));
    QVERIFY(!m.readConfig(QString(), error));
    QCOMPARE(error, QStringLiteral("Invalid file path!\n"));
}

void TestSubcard::fileFailures_data() {
    QTest::addColumn<QByteArray>("middle");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QList<int>>("models");
    QTest::addColumn<QString>("error");

    QTest::newRow("broken file ends the load, earlier models stay")
        << QByteArray("<Vrn><Subcards>") << false << QList<int>{1}
        << "Parse error at line 1, column 16:\nunexpected end of file";
    QTest::newRow("missing Subcards skips only that file")
        << QByteArray("<Vrn><Cards/></Vrn>") << true << QList<int>{1, 3} << "Invalid [Subcards] node.";
    QTest::newRow("empty root is skipped silently")
        << QByteArray("<Vrn/>") << true << QList<int>{1, 3} << "before";
    QTest::newRow("a fatal card keeps the cards before it")
        << catalogue(minimalCard(21) + without(minimalCard(22), "Name") + minimalCard(23)) << false
        << QList<int>{1, 21} << "Invalid [Name] node.";
}

void TestSubcard::fileFailures() {
    QFETCH(QByteArray, middle);
    QFETCH(bool, result);
    QFETCH(QList<int>, models);
    QFETCH(QString, error);
    QTemporaryDir tmp;
    test::writeFile(tmp, "a.xml", catalogue(minimalCard(1)));
    test::writeFile(tmp, "b.xml", middle);
    test::writeFile(tmp, "c.xml", catalogue(minimalCard(3)));
    SubcardConfigManager m;
    QString text = "before";
    QCOMPARE(m.readConfig(tmp.path(), text), result);
    QCOMPARE(modelIds(m), models);
    QCOMPARE(text, error);
}

void TestSubcard::cardElements_data() {
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<bool>("fatal");

    for (const char* tag : {"Name", "zh_CN", "en", "Capacity", "DeviceModes"})
        QTest::addRow("missing %s is fatal", tag) << QByteArray(tag) << true;
    for (const char* tag : {"Associations", "ConnectorGroups", "CapacityGroups", "Sections"})
        QTest::addRow("missing %s is logged", tag) << QByteArray(tag) << false;
}

void TestSubcard::cardElements() {
    QFETCH(QByteArray, tag);
    QFETCH(bool, fatal);
    QTemporaryDir tmp;
    test::writeFile(tmp, "cards.xml", catalogue(fullCard(1) + without(fullCard(2), tag)));
    SubcardConfigManager m;
    QString error;
    test::MessageRecorder log;
    QCOMPARE(m.readConfig(tmp.path(), error), !fatal);
    const QString text = "Invalid [" + tag + "] node.";
    QCOMPARE(error, text);
    QCOMPARE(modelIds(m), (fatal ? QList<int>{1} : QList<int>{1, 2}));
    QCOMPARE(log.warnings(), fatal ? QStringList() : QStringList{"Log: " + text});
    for (const test::Message& message : log.messages())
        QCOMPARE(message.category, QStringLiteral("default"));
}

void TestSubcard::wholeCard() {
    QTemporaryDir tmp;
    test::writeFile(tmp, "card.xml", catalogue(fullCard(2)));
    SubcardConfigManager m;
    QString error;
    test::MessageRecorder log;
    QVERIFY(m.readConfig(tmp.path(), error));
    QCOMPARE(log.debugs(), QStringList{"CapacityMode Value: 2"});

    const s_Connector full{1, 1, 1, 2, 1, 3, 6, 7, 5, 0, 0}, onlyAt1{0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0},
        onlyAt2{0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    s_Subcard card;
    card.modelId = 2;
    card.cardMode = 1;
    card.interlacedMaxCount = 4;
    card.name = {"输入卡", "Input"};
    card.connectors = {{full, onlyAt2}, // in document order
                       {{2, 0, 1, {{"2x4K", 1, 1, {{onlyAt1, 4, {1, 0, 2, 3}}}}}}},
                       {{6, {1, 0, 5, {{3840, 2160, 0, 0, {"59.94", "50"}}}}}}}; // the first ratio only
    card.capacity = {1, "4x2K", 0, {{1, 2, {onlyAt1}}}};
    card.capacityGroups = {{"2x4K", 1, 1, {{2, {{1, 1, 0, 2, 1, 3}}}}}};
    card.sections = {{5}};
    card.connectorCopy = {1, 0, 1, {1, 1}, {{"2x4K", 1, 1, {{2, {{1, {{1}, {2}}}}}}}}};
    card.associations = {{3, 2}};
    QCOMPARE(m.subcardConfig().size(), size_t(1));
    QVERIFY(m.subcardConfig().front() == card);
}

// Two cards of model 7 around a card of model 9; the second card of model 7
// holds what the first lacks and repeats what it has.
void TestSubcard::initTestCase() {
    test::writeFile(m_queryDir, "cards.xml", catalogue(R"(
<Subcard ModelId="7" CardMode="1"><Associations><A ModelId="8" CardMode="2"/></Associations><Name><zh_CN/><en/></Name>
  <Connectors><Connector Position="1" InterfaceType="11"/><Connector Position="2" InterfaceType="12" PrintKeyNo="102"/>
    <Types><Connector Type="6"/></Types>
    <DeviceMode Value="1"><Capacitys><Cap Value="0" Name="a0"><Connector Position="1"/></Cap></Capacitys></DeviceMode>
  </Connectors>
  <ConnectorGroups><Capacity><Group Value="1"><Connector Position="1"/></Group>
    <Group Value="1" SelectNum="2"><Connector Position="2" InterfaceType="99"/><Connector Position="5"/></Group>
  </Capacity></ConnectorGroups>
  <CapacityGroups><C Value="0"><DeviceModes><M Value="1"><Connector Position="1"/></M></DeviceModes></C></CapacityGroups>
  <Sections/><ConnectorCopy><MainRelated><C Value="0"><M Value="1"><G><C Position="1"/><C Position="2"/></G></M></C></MainRelated></ConnectorCopy>
</Subcard>)" + minimalCard(9) + R"(
<Subcard ModelId="7" CardMode="2"><Associations><A ModelId="9"/></Associations><Name><zh_CN/><en/></Name>
  <Connectors><Connector Position="3" PrintKeyNo="203"/><Connector Position="5" InterfaceType="15"/>
    <Connector Position="5" InterfaceType="25"/><Connector Position="2" InterfaceType="22"/>
    <Types><Connector Type="2"/></Types>
    <DeviceMode Value="1"><Capacitys><Cap Value="0" Name="b0"><Connector Position="3"><DynamicRange Support="4"/></Connector></Cap></Capacitys></DeviceMode>
  </Connectors>
  <ConnectorGroups><Capacity><Group Value="3"><Connector Position="3"/></Group></Capacity></ConnectorGroups>
  <CapacityGroups><C Value="0"><DeviceModes><M Value="1"><Connector Position="3"/><Connector Position="4"/></M></DeviceModes></C></CapacityGroups>
  <Sections/><ConnectorCopy><MainRelated><C Value="5"><M Value="1"><G><C Position="3"/><C Position="4"/></G></M></C></MainRelated></ConnectorCopy>
</Subcard>)"));
    QString error;
    QVERIFY(m_queries.readConfig(m_queryDir.path(), error));
    QCOMPARE(modelIds(m_queries), (QList<int>{7, 9, 7}));
}

void TestSubcard::queries_data() {
    QTest::addColumn<Query>("query");
    QTest::addColumn<QString>("expected");

    QTest::newRow("findConnector: first card first, then the second, null on a miss") << Query([](auto& m) {
        return QString("%1 %2 %3")
            .arg(m.findConnector(7, 2)->printKeyNo)
            .arg(m.findConnector(7, 3)->printKeyNo)
            .arg(m.findConnector(7, 4) == nullptr);
    }) << "102 203 1";
    QTest::newRow("located group falls through to the second card")
        << Query([](auto& m) { return QString::number(m.findConnectorLocatedGroup(7, 3)->value); }) << "3";
    QTest::newRow("by group id: last group, last interface type per position") << Query([](auto& m) {
        QStringList out;
        for (const s_Connector& c : m.findConnectorByGroupId(7, 1))
            out << QString("%1:%2").arg(c.position).arg(c.interfaceType);
        return out.join(',');
    }) << "2:22,5:25";
    QTest::newRow("by group id leaves the catalogue untouched") << Query([](auto& m) {
        m.findConnectorByGroupId(7, 1);
        return QString::number(m.findConnectorLocatedGroup(7, 2)->connectors.front().interfaceType);
    }) << "99";
    QTest::newRow("mode data: the last hit wins, a miss has value -1") << Query([](auto& m) {
        const s_DeviceMode hit = m.findSubcardModeData(7, 0, 1), miss = m.findSubcardModeData(7, 0, 2);
        return QString("%1:%2 %3:%4")
            .arg(hit.value)
            .arg(positions(hit.connectors), QString::number(miss.value), positions(miss.connectors));
    }) << "1:3,4 -1:";
    for (int capacity : {0, 5, 42})
        QTest::addRow("copy data ignores capacity %d", capacity)
            << Query([capacity](auto& m) { return positions(m.findConnectorCopyData(7, capacity, 1, 3)); })
            << "3,4";
    QTest::newRow("copy data: the first group holding the position")
        << Query([](auto& m) { return positions(m.findConnectorCopyData(7, 0, 1, 2)); }) << "1,2";
    QTest::newRow("card mode of the first card, -1 on a miss")
        << Query([](auto& m) { return QString("%1 %2").arg(m.findCardMode(7)).arg(m.findCardMode(42)); })
        << "1 -1";
    QTest::newRow("device mode capacity: the first hit, a default record on a miss") << Query([](auto& m) {
        const bool missIsDefault =
            m.findConnectorDeviceModeCapacity(7, 1, 1) == s_CapacityInConnectorsDeviceModeCapacitys{};
        return QString::fromStdString(m.findConnectorDeviceModeCapacity(7, 0, 1).name) + " " +
               QString::number(missIsDefault);
    }) << "a0 1";
    QTest::newRow("dynamic range skips a capacity without the position, 0 on a miss") << Query([](auto& m) {
        return QString("%1 %2")
            .arg(m.findConnectorDeviceModeCapacityDynamicRangeSupport(7, 0, 1, 3))
            .arg(m.findConnectorDeviceModeCapacityDynamicRangeSupport(7, 0, 1, 4));
    }) << "4 0";
    QTest::newRow("types of the first card only")
        << Query([](auto& m) { return QString::number(m.findConnectorTypesData(7).size()); }) << "1";
    QTest::newRow("associations of the first card only") << Query([](auto& m) {
        return QString("%1 %2").arg(m.isAssociationSubcard(7, 8)).arg(m.isAssociationSubcard(7, 9));
    }) << "1 0";
}

void TestSubcard::queries() {
    QFETCH(Query, query);
    QFETCH(QString, expected);
    QCOMPARE(query(m_queries), expected);
}

void TestSubcard::shippedCatalogue() {
    SubcardConfigManager m;
    QString error;
    test::MessageRecorder log;
    QVERIFY(m.readConfig(test::sharedConfig("subcard"), error));
    QVERIFY2(error.isEmpty() && log.clean(), qPrintable(error));
    QCOMPARE(modelIds(m),
             (QList<int>{1001, 2101, 2102, 2103, 2104, 3101, 2201})); // the mixed card from mixed/
    // Connector types by position as the sample configuration documents them.
    const QMap<int, QList<int>> types{{2101, {6, 6, 6, 6}}, {2102, {2, 2, 2, 2}}, {2103, {8, 8}},
                                      {2104, {13, 13}},     {3101, {6, 6, 6, 6}}, {2201, {6, 6, 2, 2}}};
    for (const s_Subcard& card : m.subcardConfig()) {
        QList<int> byPosition;
        for (const s_Connector& c : card.connectors.connectors)
            byPosition << (c.position == byPosition.size() + 1 ? c.type : -1);
        QCOMPARE(byPosition, types.value(card.modelId));
    }
    QCOMPARE(m.findConnector(2101, 3)->printKeyNo, 3);
    QCOMPARE(m.findConnectorLocatedGroup(2101, 3)->value, 2); // ports 3 and 4
    const s_CapacityInConnectorsDeviceModeCapacitys fourK = m.findConnectorDeviceModeCapacity(2101, 1, 2);
    QCOMPARE(fourK.name, std::string("2x4K"));
    QCOMPARE(fourK.connectors[0].capacityMode, 2);
    QCOMPARE(m.findSubcardModeData(2201, 1, 2).connectors.front().capacityMode, 2);
    QCOMPARE(m.findConnectorDeviceModeCapacityDynamicRangeSupport(2201, 0, 1, 3), 0); // DVI: no HDR
    QCOMPARE(m.findConnectorCopyData(3101, 1, 2, 4), (std::vector<s_ConnectorInfo>{{3}, {4}}));
    const std::vector<s_ResolutionRatio> sdi =
        m.findConnectorTypesData(2104).front().presetThumbTiming.resolutionRatios;
    QCOMPARE(sdi.size(), size_t(3)); // 1080p, 2160p, 1080i
    QCOMPARE(sdi[2].interlaced, 1);
}

QTEST_GUILESS_MAIN(TestSubcard)
#include "tst_subcard.moc"
