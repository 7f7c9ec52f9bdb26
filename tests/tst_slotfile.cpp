// The slot file: required elements and the group quirks that decide which
// slots a host sees (the shipped chassis is pinned by tst_lcdcfg_show's
// device dump).

#include "device/slotconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;

static bool parse(const QString& device, QString& error, Slot::s_VrnSolt& slot) {
    return SlotConfigManager::instance()->parseDeviceSlotcfg(
        test::document(("<Vrn>" + device + "</Vrn>").toUtf8()), error, slot);
}

class SlotFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
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

    // What each set of groups changes from a fresh record: tests/data/slot/<row>.txt (a main control
    // group without "Subcards" is dropped).
    void groups_data() {
        QTest::addColumn<QString>("groups");
        const QString cards = "<Subcards><Subcard ModuleId=\"7\"/></Subcards>";
        QTest::newRow("input slot without Index is skipped, output slot reads 0")
            << "<InputCardSlots>" + cards + "<Slot Index=\"1\"/><Slot/></InputCardSlots><OutputCardSlots>" +
                   cards + "<Slot/></OutputCardSlots>";
        QTest::newRow("group without Subcards is dropped, mixed group kept")
            << "<OutputCardSlots><Slot Index=\"5\"/></OutputCardSlots><MixCardSlots SilkScreenName=\"MIX\" "
               "InterfaceType=\"3\"><Slot Index=\"9\"/></MixCardSlots>";
        QTest::newRow("every element after the first Slot is a slot")
            << "<OutputCardSlots PluginDirection=\"2\"><Slot Index=\"5\"/><Note/>" + cards +
                   "<Slot Index=\"6\"/></OutputCardSlots>";
        const QString inSlot =
            "<Subcards><Subcard ModuleId=\"7\"><ConnectorGroups><ConnectorGroup Value=\"2\" "
            "GroupName=\"DVI\"/><Extra/></ConnectorGroups></Subcard></Subcards>";
        QTest::newRow("cards in a slot are read only in the mixed group")
            << "<OutputCardSlots>" + cards + "<Slot Index=\"5\">" + inSlot +
                   "</Slot></OutputCardSlots><MixCardSlots>" + cards + "<Slot Index=\"9\">" + inSlot +
                   "</Slot></MixCardSlots>";
    }
    void groups() {
        QFETCH(QString, groups);
        Slot::s_VrnSolt slot;
        QString error;
        QVERIFY(parse("<Device><CrossCard/><Slots><MainControlCardSlots/>" + groups + "</Slots></Device>",
                      error, slot));
        test::compareChanges("slot", Slot::s_Slots{}, slot.slots);
    }
};

QTEST_GUILESS_MAIN(SlotFile)
#include "tst_slotfile.moc"
