// The slot file: the shipped chassis of 29974, required elements and the
// group quirks that decide which slots a host sees.

#include "device/slotconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using Slot::s_SlotAttr;

Q_DECLARE_METATYPE(s_SlotAttr)

namespace {

QDomDocument document(const QByteArray& device) {
    QDomDocument doc;
    if (!doc.setContent("<Vrn version=\"1.0\">" + device + "</Vrn>", true)) qFatal("bad test document");
    return doc;
}

// A file with a main-control group and `groups` under "Slots".
QDomDocument withGroups(const QByteArray& groups) {
    return document("<Device><CrossCard/><Slots><MainControlCardSlots><Subcards/></MainControlCardSlots>" +
                    groups + "</Slots></Device>");
}

std::vector<Slot::s_Slot> slotsAt(std::initializer_list<int> indexes) {
    std::vector<Slot::s_Slot> out;
    for (int i : indexes)
        out.push_back({i, {}});
    return out;
}

} // namespace

class SlotFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shippedFile() {
        test::MessageRecorder recorder;
        Slot::s_VrnSolt slot;
        QString error;
        QVERIFY(SlotConfigManager::instance()->parseDeviceSlotcfg(
            test::sharedConfig("device/29974/29974_slot.xml"), error, slot));
        QVERIFY(error.isEmpty());
        QVERIFY(recorder.clean());
        const Slot::s_Slots& g = slot.slots;
        QCOMPARE(slot.crossCard, (s_SupportInfo{1, 1}));
        QCOMPARE(g.mainControlCardSlots.slots, slotsAt({0}));
        QCOMPARE(g.mainControlCardSlots.subcards, (std::vector<Slot::s_Subcard>{{1001}}));
        QCOMPARE(g.inputCardSlots.slots, slotsAt({1, 2, 3, 4}));
        QCOMPARE(g.inputCardSlots.subcards, (std::vector<Slot::s_Subcard>{{2101}, {2102}, {2103}, {2104}}));
        QCOMPARE(g.outputCardSlots.slots, slotsAt({5, 6, 7, 8}));
        QCOMPARE(g.outputCardSlots.subcards, (std::vector<Slot::s_Subcard>{{3101}}));
        QCOMPARE(g.mixCardSlots.silkScreenName, std::string("MIXED"));
        QCOMPARE(g.mixCardSlots.slots.size(), size_t(2));
        const Slot::s_InlineSubcard mixed{2201, {{1, "HDMI 1-2"}, {2, "DVI 3-4"}}};
        QCOMPARE(g.mixCardSlots.slots[0], (Slot::s_Slot{9, {mixed}}));
        QCOMPARE(g.mixCardSlots.slots[1], (Slot::s_Slot{10, {}}));
        QCOMPARE(g.mvrCardSlots, s_SlotAttr{});
    }

    void requiredElements_data() {
        QTest::addColumn<QByteArray>("device");
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("crossCardSupport");
        QTest::newRow("missing Device is fatal") << QByteArray("<Other/>") << "Invalid [Device] node." << -1;
        QTest::newRow("missing Slots is fatal")
            << QByteArray("<Device><CrossCard/></Device>") << "Invalid [Slots] node." << -1;
        QTest::newRow("CrossCard under Slots does not count")
            << QByteArray("<Device><Slots><CrossCard/></Slots></Device>") << "Invalid [CrossCard] node."
            << -1;
        QTest::newRow("missing main control group is fatal after CrossCard is kept")
            << QByteArray(
                   "<Device><CrossCard Support=\"0\"/><Slots><InputCardSlots><Subcards/></InputCardSlots>"
                   "</Slots></Device>")
            << "Invalid [MainControlCardSlots] node." << 0;
    }
    void requiredElements() {
        QFETCH(QByteArray, device);
        QFETCH(QString, error);
        QFETCH(int, crossCardSupport);
        Slot::s_VrnSolt slot;
        QString message = "earlier";
        QVERIFY(!SlotConfigManager::instance()->parseDeviceSlotcfg(document(device), message, slot));
        QCOMPARE(message, error);
        QCOMPARE(slot.crossCard.support, crossCardSupport);
        QCOMPARE(slot.slots, Slot::s_Slots{});
    }

    void wrongRootIsRejected() {
        QDomDocument doc;
        doc.setContent(
            QByteArray("<vrn><Device><CrossCard/><Slots><MainControlCardSlots/></Slots></Device></vrn>"));
        Slot::s_VrnSolt slot;
        QString error;
        QVERIFY(!SlotConfigManager::instance()->parseDeviceSlotcfg(doc, error, slot));
        QCOMPARE(error, QString("The file is not a valid configuration file for device."));
    }

    void crossCardDefaults() {
        Slot::s_VrnSolt slot;
        QString error;
        const QDomDocument doc = document("<Device><CrossCard Support=\"0\"/><Slots><MainControlCardSlots/>"
                                          "</Slots></Device>");
        QVERIFY(SlotConfigManager::instance()->parseDeviceSlotcfg(doc, error, slot));
        QCOMPARE(slot.crossCard, (s_SupportInfo{0, 1}));
        QCOMPARE(slot.slots.mainControlCardSlots, s_SlotAttr{}); // no "Subcards": dropped
    }

    void groups_data() {
        QTest::addColumn<QByteArray>("groups");
        QTest::addColumn<s_SlotAttr>("input");
        QTest::addColumn<s_SlotAttr>("output");
        QTest::addColumn<s_SlotAttr>("mixed");
        const QByteArray accepts = "<Subcards><Subcard ModuleId=\"7\"/></Subcards>";
        QTest::newRow("input slot without Index is skipped, output slot reads 0")
            << "<InputCardSlots>" + accepts + "<Slot Index=\"1\"/><Slot/></InputCardSlots><OutputCardSlots>" +
                   accepts + "<Slot/></OutputCardSlots>"
            << s_SlotAttr{"", 0, 0, slotsAt({1}), {{7}}} << s_SlotAttr{"", 0, 0, slotsAt({0}), {{7}}}
            << s_SlotAttr{};
        QTest::newRow("group without Subcards is dropped, mixed group kept")
            << QByteArray("<OutputCardSlots SilkScreenName=\"OUT\"><Slot Index=\"5\"/></OutputCardSlots>"
                          "<MixCardSlots SilkScreenName=\"MIX\" InterfaceType=\"3\"><Slot Index=\"9\"/>"
                          "</MixCardSlots>")
            << s_SlotAttr{} << s_SlotAttr{} << s_SlotAttr{"MIX", 0, 3, slotsAt({9}), {}};
        QTest::newRow("every element after the first Slot is a slot")
            << "<OutputCardSlots PluginDirection=\"2\"><Slot Index=\"5\"/><Note/>" + accepts +
                   "<Slot Index=\"6\"/></OutputCardSlots>"
            << s_SlotAttr{} << s_SlotAttr{"", 2, 0, slotsAt({5, 0, 0, 6}), {{7}}} << s_SlotAttr{};
        QTest::newRow("cards in a slot are read only in the mixed group")
            << "<OutputCardSlots>" + accepts +
                   "<Slot Index=\"5\"><Subcards><Subcard ModuleId=\"7\"/></Subcards></Slot></OutputCardSlots>"
                   "<MixCardSlots>" +
                   accepts +
                   "<Slot Index=\"9\"><Subcards><Subcard ModuleId=\"7\"><ConnectorGroups><ConnectorGroup "
                   "Value=\"2\" GroupName=\"DVI\"/><Extra/></ConnectorGroups></Subcard></Subcards></Slot>"
                   "</MixCardSlots>"
            << s_SlotAttr{} << s_SlotAttr{"", 0, 0, slotsAt({5}), {{7}}}
            << s_SlotAttr{"", 0, 0, {{9, {{7, {{2, "DVI"}, {0, ""}}}}}}, {{7}}};
    }
    void groups() {
        QFETCH(QByteArray, groups);
        Slot::s_VrnSolt slot;
        QString error;
        QVERIFY(SlotConfigManager::instance()->parseDeviceSlotcfg(withGroups(groups), error, slot));
        QVERIFY(error.isEmpty());
        QTEST(slot.slots.inputCardSlots, "input");
        QTEST(slot.slots.outputCardSlots, "output");
        QTEST(slot.slots.mixCardSlots, "mixed");
    }
};

QTEST_GUILESS_MAIN(SlotFile)
#include "tst_slotfile.moc"
