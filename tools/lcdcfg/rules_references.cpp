// Rules on what records name and where they stand: ids a file names that the
// model or the tree lacks, and elements a repeated-element walk took for one
// more item because they follow its first.

#include "tools/lcdcfg/rulebook.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;
namespace facts = LCD::ConfigModel::facts;
using K = RecordKind;

namespace {

// The walks of repeated elements take the first child of a name and then
// every following sibling, whatever its name: each item of `count` read
// from an element named otherwise than the first is reported as what it became.
// `key`: the attribute that numbers an item, named with the value stored.
void readAs(RuleRun& run, const QVector<const Site*>& items, const QString& what, const QString& key) {
    const Site* first = items.value(0);
    for (int i = 1; first && i < items.size(); ++i) {
        const Site* site = items[i];
        if (site && site->tag != first->tag)
            run.report(
                site, QString(),
                QStringLiteral(
                    "<%1> follows the first <%2> and is read as %3 %4%5: nothing but <%2> may follow it")
                    .arg(site->tag, first->tag, what)
                    .arg(i + 1)
                    .arg(key.isEmpty() ? QString()
                                       : QStringLiteral(" (%1 %2)").arg(key, site->values.value(key))));
    }
}

void readAs(RuleRun& run, const RecordPath& list, K kind, int count, const QString& what,
            const QString& key = QString()) {
    QVector<const Site*> items;
    if (const Site* first = run.trace.record(list + RecordPath{{kind, 0}}))
        for (int i = 0; i < count; ++i)
            items << (i == 0 ? first : run.trace.record(list + RecordPath{{kind, i}}));
    readAs(run, items, what, key);
}

// A list a walk reads, and the lists below each of its items; `what` null
// for a list read by name (only its lists below are judged). `nested`: each
// item holds a list of the same kind (the menu tree).
struct List {
    K kind;
    const char* what;
    const char* key;
    std::vector<List> below;
    bool nested = false;
};

void readAsBelow(RuleRun& run, const RecordPath& above, const List& list) {
    const QVector<const Site*> items = recordsOf(run.trace, above, list.kind);
    if (list.what) readAs(run, items, QLatin1String(list.what), QLatin1String(list.key));
    for (int i = 0; i < items.size(); ++i) {
        const RecordPath at = above + RecordPath{{list.kind, i}};
        for (const List& below : list.below)
            readAsBelow(run, at, below);
        if (list.nested) readAsBelow(run, at, list);
    }
}

// The card file's lists, the interface files' and the menu tree.
const List kCardLists[] = {
    {K::CardAssociation, "card association", "ModelId", {}},
    {K::ConnectorMode,
     nullptr,
     "",
     {{K::ModeCapacity, "capacity", "Value", {{K::CapacityConnector, "connector", "Position", {}}}}}},
    {K::ConnectorGroup, "connector group", "Value", {{K::Connector, "connector", "Position", {}}}},
    {K::CapacityGroup,
     "capacity group",
     "Value",
     {{K::CapacityMode, "device mode", "Value", {{K::ModeConnector, "connector", "Position", {}}}}}},
    {K::CardSection, "section", "Code", {}},
    {K::CopyCapacity,
     "copy capacity",
     "Value",
     {{K::CopyMode,
       "device mode",
       "Value",
       {{K::CopyGroup, "group", "Value", {{K::CopyConnector, "connector", "Position", {}}}}}}}},
};
const List kInterfaceLists[] = {
    {K::PrintKeyDevice,
     "print-key device",
     "ModelId",
     {{K::PrintKeyCard, "print-key card", "ModelId", {{K::PrintKey, "print key", "Id", {}}}}}},
    {K::KeyCheck, "key-check entry", "Value", {}},
    {K::MenuFunction, "function item", "Key", {}},
    {K::MenuItem, nullptr, "", {{K::MenuItem, "menu entry", "Key", {}, true}}},
};

} // namespace

// Every (model position, device) pair whose folder is known.
template <class F> void forEachModel(RuleRun& run, F&& f) {
    if (!run.tree.devices()) return;
    int m = 0;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
        const Step model{K::Model, m++};
        const QString folder = run.modelFolder(model.index);
        if (!folder.isEmpty()) f(model, folder, device);
    }
}

void connectorGroupUnknown(RuleRun& run) {
    if (!run.tree.cards()) return;
    forEachModel(run, [&](const Step& model, const QString& folder, const Devicecfg::s_Device& device) {
        for (int g = 0; g < int(facts::kSlotGroups.size()); ++g) {
            const Slot::s_SlotAttr& attr = device.slot.slots.*facts::kSlotGroups[size_t(g)].member;
            for (int s = 0; s < int(attr.slots.size()); ++s)
                for (int c = 0; c < int(attr.slots[size_t(s)].subcards.size()); ++c) {
                    const Slot::s_InlineSubcard& card = attr.slots[size_t(s)].subcards[size_t(c)];
                    if (run.lostCards.contains(card.moduleId) || !run.knownCard(card.moduleId)) continue;
                    for (int k = 0; k < int(card.connectorGroups.size()); ++k)
                        if (run.tree.cards()
                                ->findConnectorByGroupId(card.moduleId, card.connectorGroups[size_t(k)].value)
                                .empty())
                            run.report(run.trace.record({model,
                                                         {K::SlotGroup, g},
                                                         {K::Slot, s},
                                                         {K::SlotCard, c},
                                                         {K::SlotConnectorGroup, k}}),
                                       folder,
                                       QStringLiteral("card model %1 has no connector group %2")
                                           .arg(card.moduleId)
                                           .arg(card.connectorGroups[size_t(k)].value));
                }
        }
    });
}

namespace {

// Every member of the cross-card groups with its record.
template <class F> void forEachMember(RuleRun& run, F&& f) {
    forEachModel(run, [&](const Step& model, const QString& folder, const Devicecfg::s_Device& device) {
        for (int i = 0; i < int(device.crossSubcards.size()); ++i) {
            const auto& modes = device.crossSubcards[size_t(i)].deviceModes;
            for (int d = 0; d < int(modes.size()); ++d)
                for (int g = 0; g < int(modes[size_t(d)].groups.size()); ++g) {
                    const auto& members = modes[size_t(d)].groups[size_t(g)].connectors;
                    for (int c = 0; c < int(members.size()); ++c)
                        f(device, folder, members[size_t(c)],
                          run.trace.record({model,
                                            {K::CrossCard, i},
                                            {K::CrossMode, d},
                                            {K::CrossGroup, g},
                                            {K::CrossMember, c}}));
                }
        }
    });
}

} // namespace

void crosscardSlotUnknown(RuleRun& run) {
    forEachMember(run, [&](const Devicecfg::s_Device& device, const QString& folder,
                           const CrossCard::s_CrossConnectorGroup& member, const Site* at) {
        if (device.slot == Slot::s_VrnSolt{}) return; // no slot file read: reported as such
        for (const facts::SlotGroupFacts& group : facts::kSlotGroups)
            for (const Slot::s_Slot& slot : (device.slot.slots.*group.member).slots)
                if (slot.index == member.slot) return;
        run.report(at, folder,
                   QStringLiteral("slot %1 is not a slot of model %2").arg(member.slot).arg(device.modelId));
    });
}

void crosscardConnectorUnknown(RuleRun& run) {
    if (!run.tree.cards()) return;
    forEachMember(run, [&](const Devicecfg::s_Device&, const QString& folder,
                           const CrossCard::s_CrossConnectorGroup& member, const Site* at) {
        if (run.lostCards.contains(member.moduleId) || !run.knownCard(member.moduleId) ||
            run.tree.cards()->findConnector(member.moduleId, member.position))
            return;
        run.report(at, folder,
                   QStringLiteral("card model %1 has no connector at position %2")
                       .arg(member.moduleId)
                       .arg(member.position));
    });
}

void printkeyPositionUnknown(RuleRun& run) {
    const PartLoad* load = run.tree.loadOf(Part::PrintKeys);
    if (!load || !load->ok || !run.tree.cards()) return;
    const auto devices = recordsOf(run.trace, {}, K::PrintKeyDevice);
    for (int d = 0; d < devices.size(); ++d) {
        const auto cards = recordsOf(run.trace, {{K::PrintKeyDevice, d}}, K::PrintKeyCard);
        for (int c = 0; c < cards.size(); ++c) {
            const int model = cards[c]->values.value(QStringLiteral("ModelId")).toInt();
            if (run.lostCards.contains(model) || !run.knownCard(model)) continue; // printkey-model-unknown
            for (const Site* key :
                 recordsOf(run.trace, {{K::PrintKeyDevice, d}, {K::PrintKeyCard, c}}, K::PrintKey)) {
                const int position = key->values.value(QStringLiteral("Id")).toInt();
                if (!run.tree.cards()->findConnector(model, position))
                    run.report(key, load->inputs.first(),
                               QStringLiteral("card model %1 has no connector at position %2")
                                   .arg(model)
                                   .arg(position));
            }
        }
    }
}

void layerTypeUnknown(RuleRun& run) {
    forEachModel(run, [&](const Step& model, const QString& folder, const Devicecfg::s_Device& device) {
        QSet<int> layers;
        for (const Layercfg::s_VrnLayer& layer : device.layers)
            layers.insert(layer.type);
        for (int s = 0; s < device.screens.size(); ++s)
            for (int d = 0; d < int(device.screens[s].deviceModes.size()); ++d) {
                const auto& types = device.screens[s].deviceModes[size_t(d)].layerTypes;
                for (int l = 0; l < int(types.size()); ++l)
                    if (!layers.contains(types[size_t(l)].value))
                        run.report(
                            run.trace.record({model, {K::Screen, s}, {K::DeviceMode, d}, {K::LayerType, l}}),
                            folder,
                            QStringLiteral("layer type %1 is described by no layer file of the model")
                                .arg(types[size_t(l)].value));
            }
    });
}

void associationUnknown(RuleRun& run) {
    if (!run.tree.cards()) return;
    int n = 0;
    for (const Subcard::s_Subcard& card : run.tree.cards()->subcardConfig()) {
        const Step at{K::Card, n++};
        for (int a = 0; a < int(card.associations.size()); ++a)
            if (!run.knownCard(card.associations[size_t(a)].modelId))
                run.report(run.trace.record({at, {K::CardAssociation, a}}), QStringLiteral("subcard"),
                           QStringLiteral(
                               "card model %1 pairs with card model %2, which is not in the card catalogue")
                               .arg(card.modelId)
                               .arg(card.associations[size_t(a)].modelId));
    }
}

namespace {

// The device modes of a screen are every element of its list; one without
// what a mode needs is dropped and leaves no place in the list, so readAs
// does not see it: it is found among every device mode the walk started.
void incompleteModes(RuleRun& run, const RecordPath& screen, int count) {
    const Site* first = run.trace.record(screen + RecordPath{{K::DeviceMode, 0}});
    QSet<const Site*> kept;
    for (int d = 0; d < count; ++d)
        kept.insert(run.trace.record(screen + RecordPath{{K::DeviceMode, d}}));
    for (const Site* mode : first ? run.trace.records(K::DeviceMode) : QVector<const Site*>())
        if (mode->document == first->document && mode->tag != first->tag && !kept.contains(mode))
            run.report(mode, QString(),
                       QStringLiteral("<%1> follows the first <%2> and is read as a device mode, which the "
                                      "host drops as incomplete: nothing but <%2> may follow it")
                           .arg(mode->tag, first->tag));
}

} // namespace

void elementReadAs(RuleRun& run) {
    const int cards = recordsOf(run.trace, {}, K::Card).size();
    for (int c = 0; c < cards; ++c)
        for (const List& list : kCardLists)
            readAsBelow(run, {{K::Card, c}}, list);
    for (const List& list : kInterfaceLists)
        readAsBelow(run, {}, list);
    if (!run.tree.devices()) return;
    int m = 0;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
        const Step model{K::Model, m++};
        for (int g = 0; g < int(facts::kSlotGroups.size()); ++g) {
            const Slot::s_SlotAttr& attr = device.slot.slots.*facts::kSlotGroups[size_t(g)].member;
            readAs(run, {model, {K::SlotGroup, g}}, K::Slot, int(attr.slots.size()),
                   QStringLiteral("%1 slot").arg(QLatin1String(facts::kSlotGroups[size_t(g)].element)),
                   QStringLiteral("Index"));
        }
        for (int i = 0; i < int(device.crossSubcards.size()); ++i)
            readAs(run, {model, {K::CrossCard, i}}, K::CrossMode,
                   int(device.crossSubcards[size_t(i)].deviceModes.size()),
                   QStringLiteral("cross-card device mode"), QStringLiteral("Value"));
        for (int s = 0; s < device.screens.size(); ++s) {
            const RecordPath screen{model, {K::Screen, s}};
            const auto& modes = device.screens[s].deviceModes;
            readAs(run, screen, K::DeviceMode, int(modes.size()), QStringLiteral("device mode"),
                   QStringLiteral("Value"));
            incompleteModes(run, screen, int(modes.size()));
            for (int d = 0; d < int(modes.size()); ++d) {
                const RecordPath mode = screen + RecordPath{{K::DeviceMode, d}};
                const auto& templates = modes[size_t(d)].templetes;
                readAs(run, mode, K::Templete, int(templates.size()), QStringLiteral("template"));
                for (int t = 0; t < int(templates.size()); ++t) {
                    const RecordPath at = mode + RecordPath{{K::Templete, t}};
                    const auto& layouts = templates[size_t(t)].layouts;
                    readAs(run, at, K::Layout, int(layouts.size()), QStringLiteral("layout"));
                    for (int l = 0; l < int(layouts.size()); ++l)
                        readAs(run, at + RecordPath{{K::Layout, l}}, K::Cell,
                               int(layouts[size_t(l)].cells.size()), QStringLiteral("cell"));
                }
            }
        }
    }
}

} // namespace lcdcfg
