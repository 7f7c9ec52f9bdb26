// The cross-card file: the list it appends to, required elements and the
// defaults of one card's record.

#include "device/crosscardconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using namespace LCD::ConfigModel::CrossCard;

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
    // The cards are appended to the list; a file without "Subcards" adds none.
    void appendsCards() {
        s_CrossSubcards cards{s_CrossSubcard{}};
        QString error = "earlier";
        const auto parse = [&](const QString& device) {
            return CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(root(device).ownerDocument(),
                                                                               error, cards);
        };
        QVERIFY(parse("<Device><Subcards><Subcard Value=\"5\"/></Subcards></Device>"));
        QCOMPARE(error, QString("earlier"));
        QVERIFY(!parse("<Device><Subcard/></Device>"));
        QCOMPARE(error, QString("Invalid [Subcards] node."));
        QCOMPARE(cards.size(), size_t(2));
        QCOMPARE(cards[1].moduleId, 5);
    }

    // The record of one card: tests/data/crosscard/<row>.txt.
    void subcardInfo_data() {
        QTest::addColumn<QString>("subcard");
        QTest::newRow("missing grouping elements read as supported, offset 100") << "<Subcard Value=\"5\"/>";
        QTest::newRow("absent attributes of a present element: pairs 1, offset 100 unless 0 is given")
            << "<Subcard><InterfaceGroup Support=\"0\"/><DeviceInterfaceGroup Offset=\"0\"/></Subcard>";
        QTest::newRow("device mode without Groups has none, absent connector attributes read 0")
            << "<Subcard><DeviceMode "
               "Value=\"2\"><Capacity/></DeviceMode><DeviceMode><Capacity><Groups><Group>"
               "<Connector Slot=\"3\"/><Connector/></Group></Groups></Capacity></DeviceMode></Subcard>";
        QTest::newRow("elements after the first DeviceMode are device modes")
            << "<Subcard><DeviceMode Value=\"1\"/><InterfaceGroup Support=\"0\" Editable=\"0\"/></Subcard>";
    }
    void subcardInfo() {
        QFETCH(QString, subcard);
        s_CrossSubcard record;
        CrosscardConfigManager::instance()->subcardInfo(root(subcard).firstChildElement(), record);
        test::compareChanges("crosscard", s_CrossSubcard{}, record);
    }
};

QTEST_GUILESS_MAIN(CrosscardFile)
#include "tst_crosscardfile.moc"
