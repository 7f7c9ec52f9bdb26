#include "tools/lcdcfg/rules.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <iterator>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/layout.h"
#include "tools/lcdcfg/rulebook.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

namespace facts = LCD::ConfigModel::facts;
using K = RecordKind;

// ---- slots, cards and connectors ------------------------------------------

void cardUnknown(RuleRun& run) {
    if (!run.tree.cards() || !run.tree.devices()) return;
    int m = 0;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
        const Step model{K::Model, m++};
        auto check = [&](int id, const Site* at) {
            if (!run.knownCard(id))
                run.report(at, run.modelFolder(model.index),
                           QStringLiteral("card model %1 is not in the card catalogue").arg(id));
        };
        for (int g = 0; g < int(facts::kSlotGroups.size()); ++g) {
            const Step group{K::SlotGroup, g};
            const Slot::s_SlotAttr& attr = device.slot.slots.*facts::kSlotGroups[size_t(g)].member;
            for (size_t c = 0; c < attr.subcards.size(); ++c)
                check(attr.subcards[c].moduleId, run.trace.record({model, group, {K::GroupCard, int(c)}}));
            for (size_t s = 0; s < attr.slots.size(); ++s)
                for (size_t c = 0; c < attr.slots[s].subcards.size(); ++c)
                    check(attr.slots[s].subcards[c].moduleId,
                          run.trace.record({model, group, {K::Slot, int(s)}, {K::SlotCard, int(c)}}));
        }
    }
}

// The document the card at `position` of the catalogue was read from.
QString cardDocument(const RuleRun& run, int position) {
    const Site* site = run.trace.record({{K::Card, position}});
    return site ? site->document : run.input(Part::Cards);
}

void connectorTypeUndescribed(RuleRun& run) {
    if (!run.tree.cards() || !run.tree.connectors()) return;
    int position = 0;
    for (const Subcard::s_Subcard& card : run.tree.cards()->subcardConfig()) {
        const Step at{K::Card, position++};
        const QString document = cardDocument(run, at.index);
        auto check = [&](int type, const Step& step) {
            if (run.tree.connectors()->findEDIDInfo(type) || run.lostConnectorTypes.contains(type)) return;
            run.report(run.trace.record({at, step}), document,
                       QStringLiteral("card %1 uses connector type %2, which no connector file describes")
                           .arg(card.modelId)
                           .arg(type));
        };
        for (size_t i = 0; i < card.connectors.connectors.size(); ++i)
            check(card.connectors.connectors[i].type, {K::Connector, int(i)});
        for (size_t i = 0; i < card.connectors.types.size(); ++i)
            check(card.connectors.types[i].type, {K::ConnectorType, int(i)});
    }
}

// Every layout of every model whose slot file was read, judged the one way
// the report draws it (tools/lcdcfg/layout.h): overlaps, cells outside the
// frame or the grid, gaps, and cells a model cannot feed. Each finding keeps
// its own code and severity (gaps only warn).
// The findings of one layout, each at the cell it names (the layout when none).
void layoutFindings(RuleRun& run, const layout::Feeds& feeds, const Screen::s_Layout& l,
                    const RecordPath& place, const QString& folder, const QString& where) {
    for (const layout::Finding& f : layout::analyse(l, feeds)) {
        RecordPath path = place;
        if (f.cell >= 0) path << Step{K::Cell, f.cell};
        const Site* site = nullptr;
        for (int n = path.size(); !site && n > 0; --n) // the cell, else the nearest record read
            site = run.trace.record(path.mid(0, n));
        run.report(site, folder, where.arg(l.screenId).arg(f.text), layout::code(f.fault),
                   f.fault == layout::Fault::Gap ? Severity::Warning : Severity::Error);
    }
}

void layoutCells(RuleRun& run) {
    if (!run.tree.cards() || !run.tree.devices()) return;
    const std::vector<Subcard::s_Subcard> catalogue = run.tree.cards()->subcardConfig();
    int m = 0;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
        const Step model{K::Model, m++};
        if (device.slot == Slot::s_VrnSolt{}) continue; // no slot file read: reported as such
        const QString folder = run.modelFolder(model.index);
        layout::Feeds feeds = layout::feedsOf(device.slot.slots, catalogue);
        for (int lost : qAsConst(run.lostCards)) // a card the host loses is reported once, as lost
            for (auto it = feeds.cards.cbegin(); it != feeds.cards.cend(); ++it)
                if (it.value().contains(lost)) feeds.unknown.insert(it.key());
        for (int s = 0; s < device.screens.size(); ++s) {
            const Screen::s_VrnScreen& screen = device.screens[s];
            for (size_t d = 0; d < screen.deviceModes.size(); ++d) {
                const Screen::s_DeviceMode& mode = screen.deviceModes[d];
                const QString where =
                    QStringLiteral("model %1, screen type %2, device mode %3, screen %4: %5")
                        .arg(device.modelId)
                        .arg(screen.type)
                        .arg(mode.value);
                for (size_t t = 0; t < mode.templetes.size(); ++t)
                    for (size_t l = 0; l < mode.templetes[t].layouts.size(); ++l)
                        layoutFindings(run, feeds, mode.templetes[t].layouts[l],
                                       {model,
                                        {K::Screen, s},
                                        {K::DeviceMode, int(d)},
                                        {K::Templete, int(t)},
                                        {K::Layout, int(l)}},
                                       folder, where);
            }
        }
    }
}

void crosscardModuleUnknown(RuleRun& run) {
    if (!run.tree.cards() || !run.tree.devices()) return;
    int m = 0;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
        const Step model{K::Model, m++};
        const QString folder = run.modelFolder(model.index);
        auto check = [&](int id, const RecordPath& path) {
            if (run.knownCard(id)) return;
            run.report(
                run.trace.record(path), folder,
                QStringLiteral("cross-card groups name card model %1, which is not in the card catalogue")
                    .arg(id));
        };
        for (int c = 0; c < int(device.crossSubcards.size()); ++c) {
            const CrossCard::s_CrossSubcard& card = device.crossSubcards[c];
            const RecordPath entry{model, {K::CrossCard, c}};
            check(card.moduleId, entry);
            for (size_t d = 0; d < card.deviceModes.size(); ++d)
                for (size_t g = 0; g < card.deviceModes[d].groups.size(); ++g) {
                    const auto& members = card.deviceModes[d].groups[g].connectors;
                    for (size_t n = 0; n < members.size(); ++n)
                        check(members[n].moduleId, entry + RecordPath{{K::CrossMode, int(d)},
                                                                      {K::CrossGroup, int(g)},
                                                                      {K::CrossMember, int(n)}});
                }
        }
    }
}

// Every record of `kind` of the print-key table whose ModelId is not `known`.
void printkeyModels(RuleRun& run, RecordKind kind, const std::function<bool(int)>& known,
                    const QString& text) {
    for (const Site* site : run.trace.records(kind)) {
        const QString id = site->values.value(QStringLiteral("ModelId"));
        if (!id.isEmpty() && !known(id.toInt())) run.report(site, QString(), text.arg(id));
    }
}

void printkeyModelUnknown(RuleRun& run) {
    const PartLoad* load = run.tree.loadOf(Part::PrintKeys);
    if (!load || !load->ok || !run.tree.devices()) return;
    QSet<int> models;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs())
        models.insert(device.modelId);
    printkeyModels(
        run, K::PrintKeyDevice, [&](int id) { return models.contains(id); },
        QStringLiteral("print keys for device model %1, which no device folder describes"));
    if (run.tree.cards())
        printkeyModels(
            run, K::PrintKeyCard, [&](int id) { return run.knownCard(id); },
            QStringLiteral("print keys for card model %1, which is not in the card catalogue"));
}

// ---- menu -----------------------------------------------------------------

// Every node of the menu tree with the place of its record, the top node first.
QVector<QPair<const s_MenuItem*, RecordPath>> menuNodes(const s_MenuItem* root) {
    QVector<QPair<const s_MenuItem*, RecordPath>> nodes{{root, {{K::MenuItem, 0}}}};
    for (int i = 0; i < nodes.size(); ++i) {
        const auto node = nodes[i]; // a copy: the list grows
        for (int c = 0; c < node.first->children.size(); ++c)
            nodes.push_back({node.first->children[c], node.second + RecordPath{{K::MenuItem, c}}});
    }
    return nodes;
}

const PartLoad* menuLoaded(const RuleRun& run) {
    const PartLoad* load = run.tree.loadOf(Part::Menu);
    return load && load->ok && run.tree.menu() ? load : nullptr;
}

// No entry was read: the tree file has no menu bar (or an empty one).
bool menuEmpty(const MenuConfigInterface* menu) {
    return menu->rootMenuItem()->key == 0 && menu->rootMenuItem()->children.isEmpty();
}

void menuEmptyRule(RuleRun& run) {
    const PartLoad* load = menuLoaded(run);
    if (!load || !menuEmpty(run.tree.menu())) return;
    run.report(run.missingSite(load->inputs.last(), QStringLiteral("MenuBar")), load->inputs.last(),
               QStringLiteral("the menu tree has no entry"));
}

void menuKeyWithoutItem(RuleRun& run) {
    const PartLoad* load = menuLoaded(run);
    if (!load) return;
    if (menuEmpty(run.tree.menu())) return;
    QVector<QPair<const s_MenuItem*, RecordPath>> without;
    for (const auto& node : menuNodes(run.tree.menu()->rootMenuItem()))
        if (!run.tree.menu()->findMenuFCItem(node.first->key)) without << node;
    if (without.size() > 1 && run.trace.records(K::MenuFunction).isEmpty()) {
        // one cause, one problem: the function-item file gave none
        run.report(nullptr, load->inputs.first(),
                   QStringLiteral("no function item was read: none of the %1 menu keys has one")
                       .arg(without.size()));
        return;
    }
    for (const auto& node : without)
        run.report(run.trace.record(node.second), load->inputs.last(),
                   QStringLiteral("menu key %1 has no function item in %2")
                       .arg(node.first->key)
                       .arg(run.tree.relative(load->inputs.first())));
}

void menuKeyDuplicate(RuleRun& run) {
    const PartLoad* load = menuLoaded(run);
    if (!load) return;
    const RecordKind kinds[] = {K::MenuFunction, K::MenuItem}; // the two inputs' records
    for (int i = 0; i < 2; ++i) {
        QHash<QString, int> seen;
        for (const Site* site : run.trace.records(kinds[i])) {
            const QString key = site->values.value(QStringLiteral("Key"));
            if (key.isEmpty() || seen[key]++ == 0) continue;
            run.report(site, load->inputs.value(i),
                       QStringLiteral("menu key %1 appears more than once in this file").arg(key));
        }
    }
}

// ---- HDR options ----------------------------------------------------------

QString hdrWithoutText(int setting, int value) {
    const char* names[] = {"bit depth", "dynamic range", "colour gamut"};
    return QStringLiteral("%1 value %2 (setting %3) has no display text")
        .arg(QLatin1String(setting >= 0 && setting < 3 ? names[setting] : "HDR"))
        .arg(value)
        .arg(setting);
}

void hdrValueWithoutText(RuleRun& run) {
    IHDRConfig* hdr = run.tree.hdr();
    const PartLoad* load = run.tree.loadOf(Part::Hdr);
    if (!hdr || !load) return;
    const int configTypes[2] = {HDRInputConfig, HDROutputConfig};
    auto hasText = [&](int type, int value) { return !hdr->getKeyValue(type, {value}).isEmpty(); };
    for (int i = 0; i < 2; ++i)
        for (int type = HDRBitDepth; type <= HDRColorGamut; ++type)
            for (int value = 0; value <= HDRAutoValue; ++value) {
                const auto table = hdr->getCanSelectedValues(HDRKey{type, value}, configTypes[i]);
                if (table.empty()) continue;
                const RecordPath key{{K::HdrTable, i}, {K::HdrKey, type, value}};
                if (!hasText(type, value))
                    run.report(run.trace.record(key), load->inputs[i], hdrWithoutText(type, value));
                for (const auto& dependent : table) {
                    int position = 0;
                    for (int v : dependent.second) {
                        const RecordPath at =
                            key + RecordPath{{K::HdrSetting, dependent.first}, {K::HdrValue, position++}};
                        if (!hasText(dependent.first, v))
                            run.report(run.trace.record(at), load->inputs[i],
                                       hdrWithoutText(dependent.first, v));
                    }
                }
            }
}

// ---- models and cards -----------------------------------------------------

void modelDuplicate(RuleRun& run) {
    QHash<int, QString> first;
    for (const QFileInfo& dir : modelFolders(run)) {
        bool ok = false;
        const int id = facts::modelOfFolder(dir, &ok);
        const QString folder = run.tree.relative(dir.absoluteFilePath());
        if (!ok) continue;
        if (!first.contains(id))
            first.insert(id, folder);
        else
            run.report(
                nullptr, folder,
                QStringLiteral("device model %1 is already described by %2").arg(id).arg(first.value(id)));
    }
}

void cardDuplicate(RuleRun& run) {
    if (!run.tree.cards()) return;
    QHash<int, int> first; // card model to its first position
    int position = 0;
    for (const Subcard::s_Subcard& card : run.tree.cards()->subcardConfig()) {
        const int n = position++;
        if (!first.contains(card.modelId)) {
            first.insert(card.modelId, n);
            continue;
        }
        const Site* earlier = run.trace.record({{K::Card, first.value(card.modelId)}});
        run.report(run.trace.record({{K::Card, n}}), run.input(Part::Cards),
                   QStringLiteral("card model %1 is already described in %2")
                       .arg(card.modelId)
                       .arg(earlier ? run.tree.relative(earlier->document) : QString()),
                   earlier);
    }
}

void currentDeviceMissing(RuleRun& run) {
    const PartLoad* load = run.tree.loadOf(Part::Devices);
    if (!load || !load->attempted || !run.tree.devices()) return;
    for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs())
        if (device.modelId == facts::kCurrentModel) return;
    run.report(nullptr, run.input(Part::Devices),
               QStringLiteral("the current device, model %1, is not described").arg(facts::kCurrentModel));
}

// Where a model's type name is missing: where its feature file's reader
// looked for the name and found nothing (a missing English name ends the
// reading, so the Chinese is not looked for), else the file's "Device".
const Site* typeNameSite(RuleRun& run, int model, bool english) {
    const Site* file = run.trace.record({{K::Model, model}, {K::Feature, 0}});
    if (!file) return nullptr;
    for (const char* name : {english ? "en" : "zh_CN", "en", "TypeName"})
        if (const Site* at = run.missingSite(file->document, QLatin1String(name))) return at;
    return file;
}

void names(RuleRun& run, bool english) {
    const QString language = english ? QStringLiteral("English") : QStringLiteral("Chinese");
    int m = 0;
    if (run.tree.devices())
        for (const Devicecfg::s_Device& device : run.tree.devices()->DeviceConfigs()) {
            const int model = m++;
            // a feature file that failed is reported as such
            if (!(english ? device.feature.enName : device.feature.zhName).empty() ||
                device.feature == Feature::s_DeviceFeature{})
                continue;
            run.report(
                typeNameSite(run, model, english), run.modelFolder(model),
                QStringLiteral("device model %1 has no %2 type name").arg(device.modelId).arg(language));
        }
    int position = 0;
    if (run.tree.cards())
        for (const Subcard::s_Subcard& card : run.tree.cards()->subcardConfig()) {
            const Site* at = run.trace.record({{K::Card, position++}});
            if (!(english ? card.name.en : card.name.zhCN).empty()) continue;
            run.report(at, run.input(Part::Cards),
                       QStringLiteral("card model %1 has no %2 name").arg(card.modelId).arg(language));
        }
}

void nameMissingEn(RuleRun& run) {
    names(run, true);
}

void nameMissingZh(RuleRun& run) {
    names(run, false);
}

void elementMisspelt(RuleRun& run) {
    for (const Missing& m : run.trace.missing()) {
        if (m.near.isEmpty() || run.trace.found(m.document, m.nearLine, m.nearColumn)) continue;
        Site site{m.document, QString(), m.nearLine, m.nearColumn, {}};
        run.report(
            &site, QString(),
            QStringLiteral("[%1] is not read here: a misspelt [%2] (%3)?").arg(m.near, m.name, m.path));
    }
}

void attributeMisspelt(RuleRun& run) {
    for (const NearAttribute& a : run.trace.nearAttributes()) {
        const Site* site = run.trace.siteAt(a.document, a.line, a.column);
        if (!site || site->values.contains(a.near)) continue; // the written one is read too
        run.report(site, QString(),
                   QStringLiteral("%1 is not read here: a misspelt %2? (the host takes its default)")
                       .arg(a.near, a.name));
    }
}

void fileUnread(RuleRun& run) {
    for (const PartLoad& load : run.tree.loads())
        for (const QString& document : load.ok&& run.covers(load.part) ? load.documents : QStringList()) {
            const auto here = run.is(document);
            const bool failed = std::any_of(run.trace.failures().begin(), run.trace.failures().end(),
                                            [&](const DocumentFailure& f) { return here(f.document); });
            if (!failed && !run.trace.readFrom(document))
                run.report(nullptr, document,
                           QStringLiteral(
                               "the %1 loader read nothing from this file: is its first element misspelt?")
                               .arg(QLatin1String(partName(load.part))));
        }
}

void numberInvalid(RuleRun& run) {
    for (const BadNumber& bad : run.trace.badNumbers()) {
        Site site{bad.document, QString(), bad.line, bad.column, {}};
        run.report(&site, QString(),
                   QStringLiteral("%1=\"%2\" is not a number: the host reads %3")
                       .arg(bad.name, bad.raw, bad.stored));
    }
}

void modelDirEmpty(RuleRun& run) {
    for (const QFileInfo& dir : modelFolders(run))
        if (QDir(dir.absoluteFilePath()).entryList({QStringLiteral("*.xml")}, QDir::Files).isEmpty())
            run.report(
                nullptr, run.tree.relative(dir.absoluteFilePath()),
                QStringLiteral("model folder without description files: the host loads an empty model"));
}

// The parts a rule reads, one bit each.
constexpr unsigned bit(Part part) {
    return 1u << int(part);
}
constexpr unsigned kDevices = bit(Part::Devices), kCards = bit(Part::Cards),
                   kConnectors = bit(Part::Connectors), kMenu = bit(Part::Menu), kHdr = bit(Part::Hdr),
                   kKeys = bit(Part::Keys), kPrintKeys = bit(Part::PrintKeys);

const Rule kRules[] = {
    {"card-unknown", Severity::Error, cardUnknown, kDevices | kCards},
    {"connector-type-undescribed", Severity::Error, connectorTypeUndescribed, kCards | kConnectors},
    {"layout-*", Severity::Error, layoutCells, kDevices | kCards},
    {"crosscard-module-unknown", Severity::Error, crosscardModuleUnknown, kDevices | kCards},
    {"printkey-model-unknown", Severity::Error, printkeyModelUnknown, kPrintKeys | kDevices | kCards},
    {"menu-empty", Severity::Error, menuEmptyRule, kMenu},
    {"menu-key-without-item", Severity::Error, menuKeyWithoutItem, kMenu},
    {"menu-key-duplicate", Severity::Error, menuKeyDuplicate, kMenu},
    {"hdr-value-without-text", Severity::Error, hdrValueWithoutText, kHdr},
    {"model-duplicate", Severity::Error, modelDuplicate, kListing},
    {"card-duplicate", Severity::Error, cardDuplicate, kCards},
    {"current-device-missing", Severity::Error, currentDeviceMissing, kDevices},
    {"name-missing-en", Severity::Error, nameMissingEn, kDevices | kCards},
    {"name-missing-zh", Severity::Error, nameMissingZh, kDevices | kCards},
    {"element-misspelt", Severity::Error, elementMisspelt, kEachPart},
    {"attribute-misspelt", Severity::Error, attributeMisspelt, kEachPart},
    {"file-unread", Severity::Error, fileUnread, kEachPart},
    {"number-invalid", Severity::Error, numberInvalid, kEachPart},
    {"model-dir-empty", Severity::Warning, modelDirEmpty, kListing},
    {"range-*", Severity::Error, ranges, kEachDocument},
    {"field-overflow", Severity::Error, fieldOverflow, kDevices | kCards},
    {"slot-duplicate", Severity::Error, slotDuplicate, kDevices},
    {"screen-type-duplicate", Severity::Error, screenTypeDuplicate, kDevices},
    {"hdr-value-duplicate", Severity::Error, hdrValueDuplicate, kHdr},
    {"name-missing-*", Severity::Error, shownNameMissing, kDevices | kMenu},
    {"model-dir-unnamed", Severity::Error, modelDirUnnamed, kListing},
    {"model-file-missing", Severity::Error, modelFileMissing, kListing},
    {"file-misplaced", Severity::Error, fileMisplaced, kListing},
    {"file-kind-ambiguous", Severity::Error, fileKindAmbiguous, kListing},
    {"encoding-mismatch", Severity::Error, encodingMismatch, kEachPart},
    {"text-undecodable", Severity::Error, textUndecodable, kEachPart},
    {"entity-unknown", Severity::Error, entityUnknown, kEachPart},
    {"element-unclosed", Severity::Error, elementUnclosed, kEachPart},
    {"element-read-as", Severity::Error, elementReadAs, kEachPart},
    {"key-duplicate", Severity::Error, keyDuplicate, kKeys},
    {"printkey-card-duplicate", Severity::Error, printkeyCardDuplicate, kPrintKeys},
    {"crosscard-card-duplicate", Severity::Error, crosscardCardDuplicate, kDevices},
    {"layer-type-duplicate", Severity::Error, layerTypeDuplicate, kDevices},
    {"connector-position-duplicate", Severity::Error, connectorPositionDuplicate, kCards},
    {"connector-type-duplicate", Severity::Error, connectorTypeDuplicate, kConnectors},
    {"resolution-duplicate", Severity::Error, resolutionDuplicate, kConnectors},
    {"connector-group-unknown", Severity::Error, connectorGroupUnknown, kDevices | kCards},
    {"crosscard-slot-unknown", Severity::Error, crosscardSlotUnknown, kDevices},
    {"crosscard-connector-unknown", Severity::Error, crosscardConnectorUnknown, kDevices | kCards},
    {"printkey-position-unknown", Severity::Error, printkeyPositionUnknown, kPrintKeys | kCards},
    {"layer-type-unknown", Severity::Error, layerTypeUnknown, kDevices},
    {"association-unknown", Severity::Error, associationUnknown, kCards},
    {"range-value-unlisted", Severity::Error, optionsUnlisted, kEachDocument},
};

} // namespace

const Site* RuleRun::missingSite(const QString& document, const QString& name) {
    const Missing* m = trace.lastMissing(QDir(tree.root()).absoluteFilePath(document), name);
    if (!m) return nullptr;
    m_made.push_back(Site{m->document, QString(), m->line, m->column, {}});
    return &m_made.back();
}

void RuleRun::report(const Site* site, const QString& file, const QString& text, const Site* related) {
    report(site, file, text, QLatin1String(rule->code), rule->severity, related);
}

void RuleRun::report(const Site* site, const QString& file, const QString& text, const QString& code,
                     Severity severity, const Site* related) {
    Problem problem;
    problem.file = tree.relative(site ? site->document : QDir(tree.root()).absoluteFilePath(file));
    if (site) {
        problem.line = site->line;
        problem.column = site->column;
    }
    problem.severity = severity;
    problem.code = code;
    problem.text = text;
    if (related)
        problem.related.push_back({tree.relative(related->document), related->line, related->column,
                                   QStringLiteral("first described here")});
    m_problems.add(problem);
}

std::function<bool(const QString&)> RuleRun::under(const QString& folder) const {
    const QString prefix = QDir(tree.root()).absoluteFilePath(folder) + QLatin1Char('/');
    return [prefix](const QString& document) { return document.startsWith(prefix); };
}

std::function<bool(const QString&)> RuleRun::is(const QString& document) const {
    const QString path = QDir(tree.root()).absoluteFilePath(document);
    return [path](const QString& d) { return d == path; };
}

bool RuleRun::knownCard(int modelId) const {
    if (lostCards.contains(modelId)) return true;
    if (!tree.cards()) return false;
    for (const Subcard::s_Subcard& card : tree.cards()->subcardConfig())
        if (card.modelId == modelId) return true;
    return false;
}

QString RuleRun::input(Part part) const {
    const PartLoad* load = tree.loadOf(part);
    return load ? load->inputs.value(0) : QString();
}

QString RuleRun::modelFolder(int position) const {
    const Site* folder = trace.record({{RecordKind::Model, position}});
    return folder ? tree.relative(folder->document) : QString();
}

void runRules(RuleRun& run) {
    const QuietLibrary quiet;
    for (const Rule& rule : kRules) {
        run.rule = &rule;
        rule.run(run);
    }
}

// Per rule, its findings over the joined trace, or (a rule on documents)
// over each part's trace.
struct RuleResults::Kept {
    bool any = false;
    FileBytesByPath bytes;
    QVector<Problem> found[std::size(kRules)][kPartCount];
};

RuleResults::RuleResults() : m_kept(std::make_unique<Kept>()) {}

RuleResults::~RuleResults() = default;

void RuleResults::clear() {
    m_kept = std::make_unique<Kept>();
}

namespace {

// The findings of `now` on the documents it judged, those of `before` on
// the others, document by document in `trace`'s order; false when a finding
// is not on a document of `trace`.
bool merged(const RuleRun& run, const Trace& trace, const QVector<Problem>& before,
            const QVector<Problem>& now, QVector<Problem>& found) {
    QHash<QString, QVector<Problem>> was, is; // by file
    for (const Problem& p : before)
        was[p.file] << p;
    for (const Problem& p : now)
        is[p.file] << p;
    QVector<Problem> all;
    QSet<QString> files;
    for (const DocumentTrace& d : trace.documents()) {
        const QString file = run.tree.relative(d.path);
        if (files.contains(file)) continue;
        files.insert(file);
        all += run.judges(d.path) ? is.value(file) : was.value(file);
    }
    for (const QString& file : was.keys() + is.keys())
        if (!files.contains(file)) return false;
    found = all;
    return true;
}

} // namespace

void RuleResults::run(RuleRun& run, const Trace* const (&parts)[kPartCount], unsigned reloaded,
                      const QSet<QString>& changed, const QSet<QString>& fresh) {
    const QuietLibrary quiet;
    const bool first = !m_kept->any;
    if (first) reloaded = ~0u;
    m_kept->any = true;
    for (const QString& path : changed)
        m_kept->bytes.remove(path);
    auto again = [&](const Rule& rule, const Trace& trace, unsigned covered, QVector<Problem>& found,
                     const QSet<QString>* judged = nullptr) {
        for (;;) {
            Problems problems;
            RuleRun one(run.tree, trace, problems);
            one.parts = covered;
            one.lostCards = run.lostCards;
            one.lostConnectorTypes = run.lostConnectorTypes;
            one.rule = &rule;
            one.bytes = &m_kept->bytes;
            one.judged = judged;
            rule.run(one);
            if (judged && merged(one, trace, found, problems.list(), found)) return;
            if (!judged) {
                found = problems.list();
                return;
            }
            judged = nullptr; // a finding off the part's documents: every document is judged
        }
    };
    for (size_t r = 0; r < std::size(kRules); ++r) {
        const Rule& rule = kRules[r];
        const bool eachPart = rule.reads == kEachPart || rule.reads == kEachDocument;
        for (int p = 0; p < kPartCount; ++p) {
            QVector<Problem>& found = m_kept->found[r][p];
            if (eachPart && (reloaded & bit(Part(p))))
                again(rule, *parts[p], bit(Part(p)), found,
                      rule.reads == kEachDocument && !first ? &fresh : nullptr);
            else if (!eachPart && p == 0 && (reloaded & rule.reads))
                again(rule, run.trace, run.parts, found);
            for (const Problem& problem : found)
                run.m_problems.add(problem);
        }
    }
}

} // namespace lcdcfg
