// Rules on the values the readers stored: ranges and field widths, ids given
// twice where only one counts, and the names the host shows.

#include <QtCore/QHash>

#include "tools/lcdcfg/rulebook.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;
namespace facts = LCD::ConfigModel::facts;
using K = RecordKind;

const AttributeTrace* readOf(const Trace& trace, const Site* site, const QString& name) {
    return trace.readAt(site, name);
}

namespace {

// Calls `f(element, site)` for every element a reader read attributes of;
// `site()` gives its site (looked up only for a finding).
template <class F> void forEachRead(const RuleRun& run, F&& f) {
    for (const DocumentTrace& document : run.trace.documents())
        for (auto it = document.elements.cbegin();
             run.judges(document.path) && it != document.elements.cend(); ++it)
            if (!it->reads.isEmpty())
                f(*it, [&] { return run.trace.siteAt(document.path, it.key().first, it.key().second); });
}

// A bound or value the file states, as stored; null when the file leaves it to the default.
const AttributeTrace* stated(const ElementTrace& e, const char* name) {
    const AttributeTrace* a = e.read(QLatin1String(name));
    return a && a->present && a->validNumber ? a : nullptr;
}

} // namespace

// ---- ranges and field widths ------------------------------------------------

// One pass over every element read: bounds, values and sizes, each finding with its own code.
void ranges(RuleRun& run) {
    QSet<QString> cells; // a layout cell's area is judged with its layout (layout-empty-cell)
    auto isCell = [&](const Site* at) {
        if (cells.isEmpty()) // made when first asked: sizes without area are rare
            for (const Place& cell : run.trace.cells())
                cells.insert(QStringLiteral("%1:%2:%3").arg(cell.document).arg(cell.line).arg(cell.column));
        return cells.contains(QStringLiteral("%1:%2:%3").arg(at->document).arg(at->line).arg(at->column));
    };
    auto report = [&](const Site* at, const char* code, const QString& text) {
        run.report(at, QString(), text, QLatin1String(code), Severity::Error);
    };
    forEachRead(run, [&](const ElementTrace& e, const auto& site) {
        const AttributeTrace* value = stated(e, "Value");
        const AttributeTrace* min = e.read(QStringLiteral("Min"));
        const AttributeTrace* max = e.read(QStringLiteral("Max"));
        const bool bounded = min && max && (min->present || max->present);
        const double low = bounded ? min->stored.toDouble() : 0;
        const double high = bounded ? max->stored.toDouble() : 0;
        if (bounded && min->present && max->present && low > high)
            report(site(), "range-inverted",
                   QStringLiteral("Min %1 is above Max %2: no value fits").arg(min->stored, max->stored));
        const bool text = value && value->kind == ReadKind::Text; // its length is bounded
        const double v = !value ? 0 : text ? value->stored.size() : value->stored.toDouble();
        if (value && bounded && low <= high && (v < low || v > high))
            report(site(), "range-value-outside",
                   QStringLiteral("Value %1%2 is outside Min..Max (%3..%4)")
                       .arg(text ? QStringLiteral("\"%1\" of length ").arg(value->stored) : QString())
                       .arg(v)
                       .arg(min->stored, max->stored));
        const AttributeTrace* width = stated(e, "Width");
        const AttributeTrace* height = stated(e, "Height");
        if (!width || !height || width->kind != ReadKind::Int ||
            (width->stored.toInt() > 0 && height->stored.toInt() > 0))
            return;
        const Site* at = site();
        if (at && !isCell(at))
            report(at, "range-size-empty",
                   QStringLiteral("a size of %1 x %2 has no area").arg(width->stored, height->stored));
    });
}

// An enumerated setting holds one of its options: a Value (or the default
// stored without one) none of them offers is a setting the host cannot show.
void optionsUnlisted(RuleRun& run) {
    QVector<const Site*> settings;                    // in reading order
    QHash<const Site*, QVector<const Site*>> offered; // a document read twice offers them once
    for (const auto& option : run.trace.options()) {
        if (!run.judges(option.second->document)) continue;
        QVector<const Site*>& here = offered[option.second];
        if (here.isEmpty()) settings << option.second;
        if (!here.contains(option.first)) here << option.first;
    }
    for (const Site* at : settings) {
        QStringList values;
        for (const Site* option : offered.value(at))
            values << option->values.value(QStringLiteral("Value"));
        const AttributeTrace* value = readOf(run.trace, at, QStringLiteral("Value"));
        if (!value || values.contains(value->stored)) continue;
        run.report(at, QString(),
                   QStringLiteral("%1 is none of the options (%2): the host shows a value it cannot offer")
                       .arg(value->present
                                ? QStringLiteral("Value %1").arg(value->stored)
                                : QStringLiteral("without Value, %1 is stored and").arg(value->stored),
                            values.join(QStringLiteral(", "))));
    }
}

// Numbers kept in 16-bit fields: the host keeps what fits.
void fieldOverflow(RuleRun& run) {
    auto check = [&](const Site* site, const char* name, qint64 kept) {
        const AttributeTrace* a = readOf(run.trace, site, QLatin1String(name));
        if (!a || !a->present || !a->validNumber) return; // number-invalid tells it
        bool ok = false;
        const qint64 written = a->raw.trimmed().toLongLong(&ok);
        if (ok && written == kept) return;
        run.report(site, QString(),
                   QStringLiteral("%1=\"%2\" is not a count from 0 to 65535: stored as %3")
                       .arg(QLatin1String(name), a->raw)
                       .arg(kept));
    };
    int position = 0;
    if (run.tree.cards())
        for (const Subcard::s_Subcard& card : run.tree.cards()->subcardConfig())
            check(run.trace.record({{K::Card, position++}}), "InterlacedMaxCount", card.interlacedMaxCount);
    int m = 0;
    if (run.tree.devices())
        for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
            const Site* site = run.trace.record({{K::Model, m++}, {K::Feature, 0}});
            check(site, "ModuleId", device.feature.moduleId);
            check(site, "ConnectorPluginMode", device.feature.connectorPluginMode);
        }
}

// ---- duplicates -------------------------------------------------------------

namespace {

// Reports `later` as a repetition of `first` (both sites of records).
void repeated(RuleRun& run, const Site* first, const Site* later, const QString& fallback,
              const QString& what, const QString& consequence) {
    const bool here = first && later && first->document == later->document;
    run.report(
        later, fallback,
        QStringLiteral("%1 is already given %2: %3")
            .arg(what,
                 here    ? QStringLiteral("at line %1").arg(first->line)
                 : first ? QStringLiteral("in %1:%2").arg(run.tree.relative(first->document)).arg(first->line)
                         : QStringLiteral("before"),
                 consequence),
        first);
}

} // namespace

void repeats(RuleRun& run, const QVector<Item>& items, const QString& fallback, const QString& what,
             const QString& consequence) {
    QHash<QString, const RecordPath*> first;
    for (const Item& item : items) {
        const RecordPath*& earlier = first[item.first];
        if (!earlier) {
            earlier = &item.second;
            continue;
        }
        repeated(run, run.trace.record(*earlier), run.trace.record(item.second), fallback,
                 what.arg(item.first), consequence);
    }
}

void keyDuplicate(RuleRun& run) {
    const PartLoad* load = run.tree.loadOf(Part::Keys);
    if (!run.tree.keys() || !load) return;
    QVector<Item> items;
    for (const auto& key : run.tree.keys()->getKeyCheckList())
        items.push_back({QString::number(key.first), {{K::KeyCheck, int(items.size())}}});
    repeats(run, items, load->inputs.first(), QStringLiteral("key code %1"),
            QStringLiteral("the host checks the key twice"));
}

QVector<const Site*> recordsOf(const Trace& trace, const RecordPath& above, RecordKind kind) {
    QVector<const Site*> sites;
    while (const Site* site = trace.record(above + RecordPath{{kind, int(sites.size())}}))
        sites << site;
    return sites;
}

// The print-key table has no list query: its records' stored ids are read from the observer.
void printkeyCardDuplicate(RuleRun& run) {
    const PartLoad* load = run.tree.loadOf(Part::PrintKeys);
    if (!load || !load->ok) return;
    const int devices = recordsOf(run.trace, {}, K::PrintKeyDevice).size();
    for (int d = 0; d < devices; ++d) {
        QVector<Item> items;
        for (const Site* card : recordsOf(run.trace, {{K::PrintKeyDevice, d}}, K::PrintKeyCard))
            items.push_back({card->values.value(QStringLiteral("ModelId")),
                             {{K::PrintKeyDevice, d}, {K::PrintKeyCard, int(items.size())}}});
        repeats(run, items, load->inputs.first(), QStringLiteral("card model %1"),
                QStringLiteral("the host takes the print keys of the first"));
    }
}

// Per model, the ids of one of its lists of records (`kind` below the model) repeated.
void modelRepeats(RuleRun& run, K kind, const std::function<QVector<int>(const Devicecfg::s_Device&)>& ids,
                  const QString& what, const QString& consequence) {
    if (!run.tree.devices()) return;
    int m = 0;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
        const Step model{K::Model, m++};
        QVector<Item> items;
        for (int id : ids(device))
            items.push_back({QString::number(id), {model, {kind, int(items.size())}}});
        repeats(run, items, run.modelFolder(model.index), what, consequence);
    }
}

void crosscardCardDuplicate(RuleRun& run) {
    modelRepeats(
        run, K::CrossCard,
        [](const Devicecfg::s_Device& device) {
            QVector<int> ids;
            for (const CrossCard::s_CrossSubcard& card : device.crossSubcards)
                ids << card.moduleId;
            return ids;
        },
        QStringLiteral("card model %1"), QStringLiteral("the host takes the cross-card groups of the first"));
}

void layerTypeDuplicate(RuleRun& run) {
    modelRepeats(
        run, K::Layer,
        [](const Devicecfg::s_Device& device) {
            QVector<int> ids;
            for (const Layercfg::s_VrnLayer& layer : device.layers)
                ids << layer.type;
            return ids;
        },
        QStringLiteral("layer type %1"), QStringLiteral("the host uses the first layer file of the type"));
}

void connectorPositionDuplicate(RuleRun& run) {
    if (!run.tree.cards()) return;
    int n = 0;
    for (const Subcard::s_Subcard& card : run.tree.cards()->subcardConfig()) {
        const Step at{K::Card, n++};
        QVector<Item> items;
        for (const Subcard::s_Connector& c : card.connectors.connectors)
            items.push_back({QString::number(c.position), {at, {K::Connector, int(items.size())}}});
        repeats(run, items, QStringLiteral("subcard"), QStringLiteral("connector position %1"),
                QStringLiteral("the host finds the first connector only"));
    }
}

// Connector descriptions and the resolution catalogue have their records'
// stored values read from the observer: the queries answer by type and mode.
void connectorTypeDuplicate(RuleRun& run) {
    QVector<Item> items;
    const int files = recordsOf(run.trace, {}, K::ConnectorFile).size();
    for (int f = 0; f < files; ++f) {
        int d = 0;
        for (const Site* c : recordsOf(run.trace, {{K::ConnectorFile, f}}, K::ConnectorDescription))
            items.push_back({c->values.value(QStringLiteral("Type")),
                             {{K::ConnectorFile, f}, {K::ConnectorDescription, d++}}});
    }
    repeats(run, items, QStringLiteral("connector"), QStringLiteral("connector type %1"),
            QStringLiteral("the host uses the first description"));
}

void resolutionDuplicate(RuleRun& run) {
    const int modes = recordsOf(run.trace, {}, K::ResolutionMode).size();
    for (int m = 0; m < modes; ++m) {
        QVector<Item> items;
        for (const Site* site : recordsOf(run.trace, {{K::ResolutionMode, m}}, K::Resolution)) {
            QStringList key;
            for (const char* name : {"Width", "Height", "RefreshRate", "Interlaced"})
                key << site->values.value(QLatin1String(name));
            items.push_back(
                {key.join(QLatin1Char(' ')), {{K::ResolutionMode, m}, {K::Resolution, int(items.size())}}});
        }
        repeats(run, items, QStringLiteral("connector"),
                QStringLiteral("resolution %1 (width, height, rate, interlaced)"),
                QStringLiteral("the host lists it twice"));
    }
}

void slotDuplicate(RuleRun& run) {
    if (!run.tree.devices()) return;
    int m = 0;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
        const Step model{K::Model, m++};
        QHash<int, RecordPath> first;
        for (int g = 0; g < int(facts::kSlotGroups.size()); ++g) {
            const Slot::s_SlotAttr& attr = device.slot.slots.*facts::kSlotGroups[size_t(g)].member;
            for (int s = 0; s < int(attr.slots.size()); ++s) {
                const RecordPath at{model, {K::SlotGroup, g}, {K::Slot, s}};
                const int index = attr.slots[size_t(s)].index;
                const AttributeTrace* read = readOf(run.trace, run.trace.record(at), QStringLiteral("Index"));
                if (read && !read->validNumber) continue; // number-invalid tells it
                if (!first.contains(index)) {
                    first.insert(index, at);
                    continue;
                }
                const int earlier = first.value(index)[1].index;
                repeated(run, run.trace.record(first.value(index)), run.trace.record(at),
                         run.modelFolder(model.index), QStringLiteral("slot %1").arg(index),
                         QStringLiteral("the host finds the slot in %1 only")
                             .arg(QLatin1String(facts::kSlotGroups[size_t(earlier)].element)));
            }
        }
    }
}

void screenTypeDuplicate(RuleRun& run) {
    if (!run.tree.devices()) return;
    int m = 0;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
        const Step model{K::Model, m++};
        QHash<int, int> first;
        for (int s = 0; s < device.screens.size(); ++s) {
            const int type = device.screens[s].type;
            if (!first.contains(type)) {
                first.insert(type, s);
                continue;
            }
            const Site* earlier = run.trace.record({model, {K::Screen, first.value(type)}});
            run.report(run.trace.record({model, {K::Screen, s}}), run.modelFolder(model.index),
                       QStringLiteral("screen type %1 is already described in %2: the host uses that one")
                           .arg(type)
                           .arg(earlier ? run.tree.relative(earlier->document) : QString()),
                       earlier);
        }
    }
}

void hdrValueDuplicate(RuleRun& run) {
    IHDRConfig* hdr = run.tree.hdr();
    const PartLoad* load = run.tree.loadOf(Part::Hdr);
    if (!hdr || !load) return;
    const int configTypes[2] = {HDRInputConfig, HDROutputConfig};
    for (int i = 0; i < 2; ++i)
        for (int type = HDRBitDepth; type <= HDRColorGamut; ++type)
            for (int value = 0; value <= HDRAutoValue; ++value)
                for (const auto& dependent : hdr->getCanSelectedValues(HDRKey{type, value}, configTypes[i])) {
                    const RecordPath key{
                        {K::HdrTable, i}, {K::HdrKey, type, value}, {K::HdrSetting, dependent.first}};
                    QHash<int, int> first;
                    int position = 0;
                    for (int v : dependent.second) {
                        const int n = position++;
                        if (!first.contains(v)) {
                            first.insert(v, n);
                            continue;
                        }
                        repeated(run, run.trace.record(key + RecordPath{{K::HdrValue, first.value(v)}}),
                                 run.trace.record(key + RecordPath{{K::HdrValue, n}}), load->inputs[i],
                                 QStringLiteral("value %1").arg(v),
                                 QStringLiteral("the host offers it twice"));
                    }
                }
}

// ---- names the host shows ---------------------------------------------------

// Screen templates and function items; models and cards: nameMissingEn/Zh (rules.cpp).
void shownNameMissing(RuleRun& run) {
    auto check = [&](const Site* at, const QString& fallback, const QString& what, bool english,
                     bool missing) {
        if (missing)
            run.report(at, fallback,
                       QStringLiteral("%1 has no %2 name: the host shows a blank")
                           .arg(what, english ? QStringLiteral("English") : QStringLiteral("Chinese")),
                       english ? QStringLiteral("name-missing-en") : QStringLiteral("name-missing-zh"),
                       Severity::Error);
    };
    int m = 0;
    if (run.tree.devices())
        for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
            const Step model{K::Model, m++};
            for (int s = 0; s < device.screens.size(); ++s)
                for (size_t d = 0; d < device.screens[s].deviceModes.size(); ++d) {
                    const Screen::s_DeviceMode& mode = device.screens[s].deviceModes[d];
                    for (size_t t = 0; t < mode.templetes.size(); ++t) {
                        const Site* at = run.trace.record(
                            {model, {K::Screen, s}, {K::DeviceMode, int(d)}, {K::Templete, int(t)}});
                        const QString what =
                            QStringLiteral("template %1 of device mode %2").arg(t + 1).arg(mode.value);
                        for (const bool english : {true, false})
                            check(
                                at, run.modelFolder(model.index), what, english,
                                (english ? mode.templetes[t].name.en : mode.templetes[t].name.zhCN).empty());
                    }
                }
        }
    const PartLoad* menu = run.tree.loadOf(Part::Menu);
    if (!run.tree.menu() || !menu) return;
    for (const Site* item : recordsOf(run.trace, {}, K::MenuFunction)) {
        const int key = item->values.value(QStringLiteral("Key")).toInt();
        if (const s_MenuFCItem* f = run.tree.menu()->findMenuFCItem(key))
            for (const bool english : {true, false})
                check(item, menu->inputs.first(), QStringLiteral("function item %1").arg(key), english,
                      f->name.value(english ? QStringLiteral("en") : QStringLiteral("zh_CN")).isEmpty());
    }
}

} // namespace lcdcfg
