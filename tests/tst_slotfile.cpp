// The slot file: the shipped chassis of 29974 (beyond what lcdcfg shows), required elements and the
// group quirks that decide which slots a host sees.

#include "device/slotconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using Slot::s_SlotAttr;
Q_DECLARE_METATYPE(s_SlotAttr)

static bool parse(const QString& device, QString& error, Slot::s_VrnSolt& slot) {
    return SlotConfigManager::instance()->parseDeviceSlotcfg(
        test::document(("<Vrn>" + device + "</Vrn>").toUtf8()), error, slot);
}

// Slots without cards, numbered `indexes`.
static std::vector<Slot::s_Slot> at(std::initializer_list<int> indexes) {
    std::vector<Slot::s_Slot> out;
    for (int i : indexes)
        out.push_back({i, {}});
    return out;
}

class SlotFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shippedFile() {
        Slot::s_VrnSolt slot;
        QCOMPARE(test::loadProblems([&](QString& error) {
                     return SlotConfigManager::instance()->parseDeviceSlotcfg(
                         test::sharedConfig("device/29974/29974_slot.xml"), error, slot);
                 }),
                 QString());
        // The slot table is in tst_lcdcfg_show's golden; not the group names and cross-card editing.
        LCD_COMPARE_RECORDS(slot.crossCard, (s_SupportInfo{1, 1}));
        const Slot::s_InlineSubcard mixed{2201, {{1, "HDMI 1-2"}, {2, "DVI 3-4"}}};
        LCD_COMPARE_RECORDS(slot.slots.mixCardSlots,
                            (s_SlotAttr{"MIXED", 1, 3, {{9, {mixed}}, {10, {}}}, {{2201}}}));
    }

    void missingMainControlGroupIsFatal() {
        Slot::s_VrnSolt slot;
        QString error = "earlier";
        QVERIFY(!parse("<Device><CrossCard Support=\"0\"/><Slots><InputCardSlots><Subcards/></InputCardSlots>"
                       "</Slots></Device>",
                       error, slot));
        QCOMPARE(error, QString("Invalid [MainControlCardSlots] node."));
        LCD_COMPARE_RECORDS(slot.crossCard, (s_SupportInfo{0, 1})); // read before the groups
        LCD_COMPARE_RECORDS(slot.slots, Slot::s_Slots{});
    }

    void groups_data() {
        QTest::addColumn<QString>("groups");
        QTest::addColumn<s_SlotAttr>("input");
        QTest::addColumn<s_SlotAttr>("output");
        QTest::addColumn<s_SlotAttr>("mixed");
        const QString cards = "<Subcards><Subcard ModuleId=\"7\"/></Subcards>";
        QTest::newRow("input slot without Index is skipped, output slot reads 0")
            << "<InputCardSlots>" + cards + "<Slot Index=\"1\"/><Slot/></InputCardSlots><OutputCardSlots>" +
                   cards + "<Slot/></OutputCardSlots>"
            << s_SlotAttr{"", 0, 0, at({1}), {{7}}} << s_SlotAttr{"", 0, 0, at({0}), {{7}}} << s_SlotAttr{};
        QTest::newRow("group without Subcards is dropped, mixed group kept")
            << "<OutputCardSlots><Slot Index=\"5\"/></OutputCardSlots><MixCardSlots SilkScreenName=\"MIX\" "
               "InterfaceType=\"3\"><Slot Index=\"9\"/></MixCardSlots>"
            << s_SlotAttr{} << s_SlotAttr{} << s_SlotAttr{"MIX", 0, 3, at({9}), {}};
        QTest::newRow("every element after the first Slot is a slot")
            << "<OutputCardSlots PluginDirection=\"2\"><Slot Index=\"5\"/><Note/>" + cards +
                   "<Slot Index=\"6\"/></OutputCardSlots>"
            << s_SlotAttr{} << s_SlotAttr{"", 2, 0, at({5, 0, 0, 6}), {{7}}} << s_SlotAttr{};
        const QString inSlot =
            "<Subcards><Subcard ModuleId=\"7\"><ConnectorGroups><ConnectorGroup Value=\"2\" "
            "GroupName=\"DVI\"/><Extra/></ConnectorGroups></Subcard></Subcards>";
        QTest::newRow("cards in a slot are read only in the mixed group")
            << "<OutputCardSlots>" + cards + "<Slot Index=\"5\">" + inSlot +
                   "</Slot></OutputCardSlots><MixCardSlots>" + cards + "<Slot Index=\"9\">" + inSlot +
                   "</Slot></MixCardSlots>"
            << s_SlotAttr{} << s_SlotAttr{"", 0, 0, at({5}), {{7}}}
            << s_SlotAttr{"", 0, 0, {{9, {{7, {{2, "DVI"}, {0, ""}}}}}}, {{7}}};
    }
    void groups() {
        QFETCH(QString, groups);
        Slot::s_VrnSolt slot;
        QString error;
        QVERIFY(parse("<Device><CrossCard/><Slots><MainControlCardSlots/>" + groups + "</Slots></Device>",
                      error, slot));
        LCD_COMPARE_RECORDS(slot.slots.mainControlCardSlots, s_SlotAttr{}); // no "Subcards": dropped
        QFETCH(s_SlotAttr, input);
        QFETCH(s_SlotAttr, output);
        QFETCH(s_SlotAttr, mixed);
        LCD_COMPARE_RECORDS(slot.slots.inputCardSlots, input);
        LCD_COMPARE_RECORDS(slot.slots.outputCardSlots, output);
        LCD_COMPARE_RECORDS(slot.slots.mixCardSlots, mixed);
    }
};

QTEST_GUILESS_MAIN(SlotFile)
#include "tst_slotfile.moc"
