#include "device/slotconfig.h"

#include "common/facts.h"
#include "common/xmlread.h"

namespace LCD {
namespace ConfigModel {

using namespace xml;

LCD_DEFINE_SINGLETON(SlotConfigManager, Slot)

namespace {

// The groups whose reading differs from the rest.
enum class Group { Input, Mixed, Other };

// The cards placed in a mixed-card slot, each with its connector groups.
std::vector<Slot::s_InlineSubcard> readInlineSubcards(const QDomElement& subcards) {
    return readEachChild(subcards, "Subcard", RecordKind::SlotCard, [](const QDomElement& e) {
        Slot::s_InlineSubcard card;
        card.moduleId = intAttr(e, "ModuleId", "0");
        card.connectorGroups = readEachChild(
            child(e, "ConnectorGroups"), "ConnectorGroup", RecordKind::SlotConnectorGroup,
            [](const QDomElement& g) {
                return Slot::s_ConnectorGroup{intAttr(g, "Value", "0"), textAttr(g, "GroupName")};
            });
        return card;
    });
}

// One group element into `out`. A missing element leaves `out` alone; so does
// a group other than the mixed-card group that lists no accepted cards
// ("Subcards"): its label, codes and slots are dropped.
void readGroup(const QDomElement& group, Group kind, Slot::s_SlotAttr& out) {
    if (group.isNull()) return;
    const observe::Record r(RecordKind::SlotGroup,
                            observe::current() ? facts::slotGroupOf(group.tagName()) : 0, group);
    Slot::s_SlotAttr local;
    local.silkScreenName = textAttr(group, "SilkScreenName");
    local.pluginDirection = intAttr(group, "PluginDirection");
    local.interfaceType = intAttr(group, "InterfaceType");
    // Every sibling after the first "Slot" is a slot, whatever its name.
    forEachChild(group, "Slot", [&](const QDomElement& e) {
        if (kind == Group::Input && !hasAttr(e, "Index")) return; // an input slot without a number is skipped
        const observe::Record r(RecordKind::Slot, local.slots.size(), e);
        Slot::s_Slot slot;
        slot.index = intAttr(e, "Index");
        if (kind == Group::Mixed) slot.subcards = readInlineSubcards(child(e, "Subcards"));
        local.slots.push_back(std::move(slot));
    });
    const QDomElement subcards = child(group, "Subcards");
    if (subcards.isNull() && kind != Group::Mixed) return;
    local.subcards = readEachChild(subcards, "Subcard", RecordKind::GroupCard, [](const QDomElement& e) {
        return Slot::s_Subcard{intAttr(e, "ModuleId")};
    });
    out = std::move(local);
}

// Texts are translated in the class's own context.
constexpr char kTrContext[] = "LCD::ConfigModel::SlotConfigManager";

} // namespace

SlotConfigManager::SlotConfigManager() = default;
SlotConfigManager::~SlotConfigManager() = default;

bool SlotConfigManager::parseDeviceSlotcfg(const QString& path, QString& error, Slot::s_VrnSolt& slot) {
    QDomDocument doc;
    return loadDocument(path, Loader{kDeviceFile, kTrContext, LCD_LOG_SITE}, doc, error) &&
           parseDeviceSlotcfg(doc, error, slot);
}

bool SlotConfigManager::parseDeviceSlotcfg(const QDomDocument& doc, QString& error, Slot::s_VrnSolt& slot) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    if (!checkDocumentRoot(doc, loader, error)) return false;
    return transact(slot.slots, error, loader, [&](Section& s, Slot::s_Slots& groups) {
        const QDomElement device = s.need(doc.documentElement(), "Device");
        const QDomElement slotGroups = s.need(device, "Slots");
        const QDomElement crossCard = s.need(device, "CrossCard");
        if (!crossCard.isNull())
            slot.crossCard = readAs<s_SupportInfo>(crossCard, kLenientPair); // kept even when the groups fail
        readGroup(s.need(slotGroups, "MainControlCardSlots"), Group::Other, groups.mainControlCardSlots);
        if (!s.complete()) return;
        readGroup(child(slotGroups, "InputCardSlots"), Group::Input, groups.inputCardSlots);
        readGroup(child(slotGroups, "OutputCardSlots"), Group::Other, groups.outputCardSlots);
        readGroup(child(slotGroups, "MixCardSlots"), Group::Mixed, groups.mixCardSlots);
        readGroup(child(slotGroups, "MVRCardSlots"), Group::Other, groups.mvrCardSlots);
        readGroup(child(slotGroups, "AUXCardSlots"), Group::Other, groups.auxCardSlots);
        readGroup(child(slotGroups, "EXPCardSlots"), Group::Other, groups.expCardSlots);
    });
}

} // namespace ConfigModel
} // namespace LCD
