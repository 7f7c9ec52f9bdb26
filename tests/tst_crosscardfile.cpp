// The cross-card file: the shipped groups of 29974, required elements and the
// defaults of one card's record.

#include "device/crosscardconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using namespace LCD::ConfigModel::CrossCard;

Q_DECLARE_METATYPE(s_CrossSubcard)

namespace {

QDomDocument document(const QByteArray& device) {
    QDomDocument doc;
    if (!doc.setContent("<Vrn>" + device + "</Vrn>", true)) qFatal("bad test document");
    return doc;
}

s_CrossSubcard card(qint32 moduleId, s_SupportInfo group, s_SupportInfo deviceGroup, qint32 offset,
                    std::vector<s_CrossDeviceMode> modes = {}) {
    return s_CrossSubcard{moduleId, group, deviceGroup, offset, std::move(modes)};
}

} // namespace

class CrosscardFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shippedFile() {
        test::MessageRecorder recorder;
        s_CrossSubcards cards;
        QString error;
        QVERIFY(CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(
            test::sharedConfig("device/29974/29974_crosscard.xml"), error, cards));
        QVERIFY(error.isEmpty());
        QVERIFY(recorder.clean());
        QCOMPARE(cards.size(), size_t(3));
        QCOMPARE(cards[0].moduleId, 2101);
        QCOMPARE(cards[0].deviceModes.size(), size_t(2));
        QCOMPARE(cards[0].deviceModes[0], (s_CrossDeviceMode{1, {}}));
        QCOMPARE(cards[0].deviceModes[1].groups[1],
                 (s_CrossConnectorGroups{102, {{2101, 3, 1, 1, 1}, {2101, 4, 1, 0, 2}}}));
        QCOMPARE(cards[1].deviceInterfaceGroup, (s_SupportInfo{1, 0}));
        QCOMPARE(cards[1].offset, 200);
        QCOMPARE(cards[1].deviceModes[0].groups[0].connectors.size(), size_t(4));
        QCOMPARE(cards[2], card(2102, {1, 1}, {0, 0}, 100));
    }

    void requiredElements_data() {
        QTest::addColumn<QByteArray>("device");
        QTest::addColumn<QString>("error");
        QTest::newRow("missing Device is fatal") << QByteArray("<Subcards/>") << "Invalid [Device] node.";
        QTest::newRow("missing Subcards is fatal")
            << QByteArray("<Device><Subcard Value=\"1\"/></Device>") << "Invalid [Subcards] node.";
    }
    void requiredElements() {
        QFETCH(QByteArray, device);
        s_CrossSubcards cards;
        QString error = "earlier";
        QVERIFY(!CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(document(device), error, cards));
        QTEST(error, "error");
        QVERIFY(cards.empty());
    }

    void appendsInFileOrder() {
        s_CrossSubcards cards{card(9, {}, {}, 0)};
        QString error;
        const QDomDocument doc =
            document("<Device><Subcards><Subcard Value=\"1\"/><Subcard Value=\"1\"/></Subcards></Device>");
        QVERIFY(CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(doc, error, cards));
        QCOMPARE(cards.size(), size_t(3));
        QCOMPARE(cards[2].moduleId, 1);
        QVERIFY(CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(
            document("<Device><Subcards/></Device>"), error, cards));
        QCOMPARE(cards.size(), size_t(3));
    }

    void subcardInfo_data() {
        QTest::addColumn<QByteArray>("subcard");
        QTest::addColumn<s_CrossSubcard>("expected");
        QTest::newRow("missing grouping elements read as supported, offset 100")
            << QByteArray("<Subcard Value=\"5\"/>") << card(5, {1, 1}, {1, 1}, 100);
        QTest::newRow("offset 0 is kept, absent Editable is 1")
            << QByteArray(
                   "<Subcard><InterfaceGroup Support=\"0\"/><DeviceInterfaceGroup Offset=\"0\"/></Subcard>")
            << card(0, {0, 1}, {1, 1}, 0);
        QTest::newRow("device mode without Groups has no groups")
            << QByteArray("<Subcard><DeviceMode Value=\"2\"><Capacity/></DeviceMode><DeviceMode/></Subcard>")
            << card(0, {1, 1}, {1, 1}, 100, {{2, {}}, {0, {}}});
        QTest::newRow("absent connector attributes read 0")
            << QByteArray("<Subcard><DeviceMode Value=\"1\"><Capacity><Groups><Group><Connector Slot=\"3\"/>"
                          "<Connector/></Group></Groups></Capacity></DeviceMode></Subcard>")
            << card(0, {1, 1}, {1, 1}, 100, {{1, {{0, {{0, 3, 0, 0, 0}, {0, 0, 0, 0, 0}}}}}});
        QTest::newRow("elements after the first DeviceMode are device modes")
            << QByteArray("<Subcard><DeviceMode Value=\"1\"/><InterfaceGroup Support=\"0\" Editable=\"0\"/>"
                          "</Subcard>")
            << card(0, {0, 0}, {1, 1}, 100, {{1, {}}, {0, {}}});
    }
    void subcardInfo() {
        QFETCH(QByteArray, subcard);
        s_CrossSubcard record;
        CrosscardConfigManager::instance()->subcardInfo(
            document(subcard).documentElement().firstChildElement(), record);
        QTEST(record, "expected");
    }
};

QTEST_GUILESS_MAIN(CrosscardFile)
#include "tst_crosscardfile.moc"
