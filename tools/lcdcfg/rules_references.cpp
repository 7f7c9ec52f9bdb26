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
void readAs(RuleRun& run, const RecordPath& list, K kind, int count, const QString& what,
            const QString& key = QString()) {
    const Site* first = run.trace.record(list + RecordPath{{kind, 0}});
    for (int i = 1; first && i < count; ++i) {
        const Site* site = run.trace.record(list + RecordPath{{kind, i}});
        if (site && site->tag != first->tag)
            run.report(
                site, QString(),
                QStringLiteral("<%1> follows the first <%2> and is read as %3 %4%5: move it before the first")
                    .arg(site->tag, first->tag, what)
                    .arg(i + 1)
                    .arg(key.isEmpty() ? QString()
                                       : QStringLiteral(" (%1 %2)").arg(key, site->values.value(key))));
    }
}

} // namespace

void elementReadAs(RuleRun& run) {
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
        for (int s = 0; s < device.screens.size(); ++s) {
            const RecordPath screen{model, {K::Screen, s}};
            const auto& modes = device.screens[s].deviceModes;
            readAs(run, screen, K::DeviceMode, int(modes.size()), QStringLiteral("device mode"),
                   QStringLiteral("Value"));
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
