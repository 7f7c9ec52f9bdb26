// The card catalogue: which files are read, which failures end the load and
// the search rules of the queries (the shipped catalogue is pinned by
// tst_lcdcfg_show's card dump).

#include "catalogue/subcardconfig.h"
#include "testutil.h"

#include <QtCore/QRegularExpression>

using namespace LCD::ConfigModel;
using namespace LCD::ConfigModel::Subcard;

namespace {

QByteArray catalogue(const QByteArray& cards) {
    return "<Vrn version=\"1.0\"><Subcards>" + cards + "</Subcards></Vrn>";
}

QByteArray minimalCard(int modelId) {
    return "<Subcard ModelId=\"" + QByteArray::number(modelId) +
           "\"><Associations/><Name><zh_CN>z</zh_CN><en>e</en></Name><ConnectorGroups><Capacity/>"
           "</ConnectorGroups><CapacityGroups/><Sections/></Subcard>";
}

// Every section of card model 2 once (see the file).
QByteArray fullCard() {
    const QByteArray file = test::testData("subcard/full.xml");
    return file.mid(file.indexOf("<Subcard"));
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

class TestSubcard : public QObject {
    Q_OBJECT

    SubcardConfigManager m_queries; // tests/data/subcard/queries

private Q_SLOTS:
    void directories() {
        QTemporaryDir tmp;
        SubcardConfigManager m;
        QString error;
        test::writeFile(tmp, "b.xml", catalogue(minimalCard(2)));
        test::writeFile(tmp, "A.xml", catalogue(minimalCard(1)));
        test::writeFile(tmp, "sub/c.xml", catalogue(minimalCard(3)));
        test::writeFile(tmp, "sub/deeper/d.xml", catalogue(minimalCard(4)));
        test::writeFile(tmp, "a2/e.xml", catalogue(minimalCard(5) + minimalCard(5)));
        QVERIFY(m.readConfig(tmp.path(), error));
        QVERIFY(m.readConfig(tmp.path(), error)); // appends
        QCOMPARE(modelIds(m), (QList<int>{1, 2, 5, 5, 3, 1, 2, 5, 5, 3}));
    }

    void fileFailures_data() {
        QTest::addColumn<QByteArray>("middle");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QList<int>>("models");
        QTest::addColumn<QString>("error");

        QTest::newRow("broken file ends the load, earlier models stay")
            << QByteArray("<Vrn><Subcards>") << false << QList<int>{1}
            << test::byQt("Parse error at line 1, column 16:\nunexpected end of file",
                          "Parse error at line 1, column 15:\nPremature end of document.");
        QTest::newRow("missing Subcards skips only that file")
            << QByteArray("<Vrn><Cards/></Vrn>") << true << QList<int>{1, 3} << "Invalid [Subcards] node.";
        QTest::newRow("empty root is skipped silently")
            << QByteArray("<Vrn/>") << true << QList<int>{1, 3} << "before";
        QTest::newRow("a fatal card keeps the cards before it")
            << catalogue(minimalCard(21) + without(minimalCard(22), "Name") + minimalCard(23)) << false
            << QList<int>{1, 21} << "Invalid [Name] node.";
    }

    void fileFailures() {
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

    void cardElements_data() {
        QTest::addColumn<QByteArray>("tag");
        QTest::addColumn<bool>("fatal");

        for (const char* tag : {"Name", "zh_CN", "en", "Capacity", "DeviceModes"})
            QTest::addRow("missing %s is fatal", tag) << QByteArray(tag) << true;
        for (const char* tag : {"Associations", "ConnectorGroups", "CapacityGroups", "Sections"})
            QTest::addRow("missing %s is logged", tag) << QByteArray(tag) << false;
    }

    void cardElements() {
        QFETCH(QByteArray, tag);
        QFETCH(bool, fatal);
        QTemporaryDir tmp;
        test::writeFile(tmp, "cards.xml", catalogue(minimalCard(1) + without(fullCard(), tag)));
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

    void wholeCard() {
        QTemporaryDir tmp;
        test::writeFile(tmp, "card.xml", catalogue(fullCard()));
        SubcardConfigManager m;
        QString error;
        test::MessageRecorder log;
        QVERIFY(m.readConfig(tmp.path(), error));
        QCOMPARE(log.debugs(), QStringList{"CapacityMode Value: 2"});
        // Connectors in document order, the first ratio of a preset only: tests/data/subcard/wholecard.txt.
        QCOMPARE(m.subcardConfig().size(), size_t(1));
        test::compareChanges("subcard", s_Subcard{}, m.subcardConfig().front());
    }

    // tests/data/subcard/queries: two cards of model 7 around a card of model 9.
    void initTestCase() {
        QString error;
        QVERIFY(m_queries.readConfig(LCD_SOURCE_DIR "/tests/data/subcard/queries", error));
        QCOMPARE(modelIds(m_queries), (QList<int>{7, 9, 7}));
    }

    // Which card of a model answers: the rule of each query.
    void queries() {
        SubcardConfigManager& m = m_queries;
        // The first card first, then the second; null on a miss.
        QCOMPARE(m.findConnector(7, 2)->printKeyNo, 102);
        QCOMPARE(m.findConnector(7, 3)->printKeyNo, 203);
        QVERIFY(!m.findConnector(7, 4));
        QCOMPARE(m.findConnectorLocatedGroup(7, 3)->value, 3); // falls through to the second card
        // By group id: the last group, the last interface type per position; the catalogue stays untouched.
        QStringList byGroup;
        for (const s_Connector& c : m.findConnectorByGroupId(7, 1))
            byGroup << QString("%1:%2").arg(c.position).arg(c.interfaceType);
        QCOMPARE(byGroup.join(','), QString("2:22,5:25"));
        QCOMPARE(m.findConnectorLocatedGroup(7, 2)->connectors.front().interfaceType, 99);
        // Mode data: the last hit wins, a miss has value -1.
        QCOMPARE(m.findSubcardModeData(7, 0, 1).value, 1);
        QCOMPARE(positions(m.findSubcardModeData(7, 0, 1).connectors), QString("3,4"));
        QCOMPARE(m.findSubcardModeData(7, 0, 2).value, -1);
        QVERIFY(m.findSubcardModeData(7, 0, 2).connectors.empty());
        // Copy data: the first group holding the position, whatever the capacity asked for.
        for (int capacity : {0, 5, 42})
            QCOMPARE(positions(m.findConnectorCopyData(7, capacity, 1, 3)), QString("3,4"));
        QCOMPARE(positions(m.findConnectorCopyData(7, 0, 1, 2)), QString("1,2"));
        // Card mode, types and associations of the first card only; -1 on a miss.
        QCOMPARE(m.findCardMode(7), 1);
        QCOMPARE(m.findCardMode(42), -1);
        QCOMPARE(m.findConnectorTypesData(7).size(), size_t(1));
        QVERIFY(m.isAssociationSubcard(7, 8) && !m.isAssociationSubcard(7, 9));
        // Device mode capacity: the first hit, a default record on a miss.
        QCOMPARE(m.findConnectorDeviceModeCapacity(7, 0, 1).name, std::string("a0"));
        LCD_COMPARE_RECORDS(m.findConnectorDeviceModeCapacity(7, 1, 1),
                            s_CapacityInConnectorsDeviceModeCapacitys{});
        // Dynamic range skips a capacity without the position; 0 on a miss.
        QCOMPARE(m.findConnectorDeviceModeCapacityDynamicRangeSupport(7, 0, 1, 3), 4);
        QCOMPARE(m.findConnectorDeviceModeCapacityDynamicRangeSupport(7, 0, 1, 4), 0);
    }
};

QTEST_GUILESS_MAIN(TestSubcard)
#include "tst_subcard.moc"
