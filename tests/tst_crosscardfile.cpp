// The cross-card file: the shipped groups of 29974, required elements and the
// defaults of one card's record.

#include "device/crosscardconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using namespace LCD::ConfigModel::CrossCard;
Q_DECLARE_METATYPE(s_CrossSubcard)

namespace {

QDomElement root(const QString& content) {
    static QDomDocument doc; // keeps the element alive
    doc.setContent("<Vrn>" + content + "</Vrn>", true);
    return doc.documentElement();
}

} // namespace

class CrosscardFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shippedFileIsAppended() {
        s_CrossSubcards cards{s_CrossSubcard{}};
        QCOMPARE(test::loadProblems([&](QString& error) {
                     return CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(
                         test::sharedConfig("device/29974/29974_crosscard.xml"), error, cards);
                 }),
                 QString());
        QCOMPARE(cards.size(), size_t(4));
        QCOMPARE(cards[1].deviceModes.size(), size_t(2));
        LCD_COMPARE_RECORDS(cards[1].deviceModes[1].groups[1],
                            (s_CrossConnectorGroups{102, {{2101, 3, 1, 1, 1}, {2101, 4, 1, 0, 2}}}));
        LCD_COMPARE_RECORDS(cards[2].deviceInterfaceGroup, (s_SupportInfo{1, 0}));
        QCOMPARE(cards[2].offset, 200);
        LCD_COMPARE_RECORDS(cards[3], (s_CrossSubcard{2102, {1, 1}, {0, 0}, 100, {}}));
    }

    void missingSubcardsIsFatal() {
        s_CrossSubcards cards;
        QString error = "earlier";
        QVERIFY(!CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(
            root("<Device><Subcard/></Device>").ownerDocument(), error, cards));
        QCOMPARE(error, QString("Invalid [Subcards] node."));
        QVERIFY(cards.empty());
    }

    void subcardInfo_data() {
        QTest::addColumn<QString>("subcard");
        QTest::addColumn<s_CrossSubcard>("expected");
        QTest::newRow("missing grouping elements read as supported, offset 100")
            << "<Subcard Value=\"5\"/>" << s_CrossSubcard{5, {1, 1}, {1, 1}, 100, {}};
        QTest::newRow("absent attributes of a present element: pairs 1, offset 100 unless 0 is given")
            << "<Subcard><InterfaceGroup Support=\"0\"/><DeviceInterfaceGroup Offset=\"0\"/></Subcard>"
            << s_CrossSubcard{0, {0, 1}, {1, 1}, 0, {}};
        QTest::newRow("device mode without Groups has none, absent connector attributes read 0")
            << "<Subcard><DeviceMode "
               "Value=\"2\"><Capacity/></DeviceMode><DeviceMode><Capacity><Groups><Group>"
               "<Connector Slot=\"3\"/><Connector/></Group></Groups></Capacity></DeviceMode></Subcard>"
            << s_CrossSubcard{
                   0, {1, 1}, {1, 1}, 100, {{2, {}}, {0, {{0, {{0, 3, 0, 0, 0}, {0, 0, 0, 0, 0}}}}}}};
        QTest::newRow("elements after the first DeviceMode are device modes")
            << "<Subcard><DeviceMode Value=\"1\"/><InterfaceGroup Support=\"0\" Editable=\"0\"/></Subcard>"
            << s_CrossSubcard{0, {0, 0}, {1, 1}, 100, {{1, {}}, {0, {}}}};
    }
    void subcardInfo() {
        QFETCH(QString, subcard);
        s_CrossSubcard record;
        CrosscardConfigManager::instance()->subcardInfo(root(subcard).firstChildElement(), record);
        QFETCH(s_CrossSubcard, expected);
        LCD_COMPARE_RECORDS(record, expected);
    }
};

QTEST_GUILESS_MAIN(CrosscardFile)
#include "tst_crosscardfile.moc"
