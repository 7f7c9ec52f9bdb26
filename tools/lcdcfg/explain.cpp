// lcdcfg explain: answers the questions description-file authors ask, through
// the components' public interfaces, and shows for every value the file and
// line it was read from, or "default" when no file stated it.

#include "common/facts.h"
#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/session.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;
namespace facts = LCD::ConfigModel::facts;

namespace {

const char kForms[] =
    "Questions:\n"
    "  slot MODEL SLOT                  the card in a slot of a model\n"
    "  card MODEL                       the connectors of a card model\n"
    "  connector TYPE INTERFACE MODE    the resolutions of a connector type, interface type\n"
    "                                   and capacity mode\n"
    "  feature MODEL PATH               a feature of a model by its path, e.g.\n"
    "                                   features.genlock.type\n"
    "  template MODEL SCREENTYPE NAME   a screen template (English name or position from 1)\n"
    "                                   and its layout cells\n";

using K = RecordKind;

// The answer: rows of label, value and where the value came from, printed in
// aligned columns.
class Answer {
public:
    Answer(const Tree& tree, const Trace& trace) : m_tree(tree), m_trace(trace) {}

    void title(const QString& text) { m_rows.push_back({0, text, QString(), QString()}); }
    void group(int indent, const QString& text) { m_rows.push_back({indent, text, QString(), QString()}); }
    // A value read from `attribute` of the element of `site`.
    void value(int indent, const QString& label, const QString& value, const Site* site,
               const QString& attribute) {
        m_rows.push_back({indent, label, value, sourceOf(m_tree, m_trace, site, attribute)});
    }
    // Integer fields, each read from the attribute of its name on the element of `site`.
    void fields(int indent, const Site* site, std::initializer_list<std::pair<const char*, qint32>> list) {
        for (const auto& [name, v] : list)
            value(indent, QLatin1String(name), QString::number(v), site, QLatin1String(name));
    }
    // A value with a given origin.
    void row(int indent, const QString& label, const QString& value, const QString& source) {
        m_rows.push_back({indent, label, value, source});
    }
    void print() const {
        int labelWidth = 0;
        int valueWidth = 0;
        for (const Row& r : m_rows) {
            if (r.source.isEmpty()) continue;
            labelWidth = std::max(labelWidth, r.indent * 2 + int(r.label.size()));
            valueWidth = std::max(valueWidth, int(r.value.size()));
        }
        for (const Row& r : m_rows) {
            const QString label = QString(r.indent * 2, QLatin1Char(' ')) + r.label;
            if (r.source.isEmpty()) {
                out() << label << "\n";
                continue;
            }
            out() << label.leftJustified(labelWidth + 2) << r.value.leftJustified(valueWidth + 2) << r.source
                  << "\n";
        }
    }

private:
    struct Row {
        int indent;
        QString label;
        QString value;
        QString source;
    };
    const Tree& m_tree;
    const Trace& m_trace;
    QVector<Row> m_rows;
};

QString num(qint64 v) {
    return QString::number(v);
}

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

// The first model numbered `model` with its place among the models (the one
// the host's queries answer from), or null.
const Devicecfg::s_Device* deviceOf(const Tree& tree, int model, Step* at) {
    const auto& devices = tree.devices()->DeviceConfigs();
    for (int i = 0; i < int(devices.size()); ++i)
        if (devices[i].modelId == model) {
            *at = {K::Model, i};
            return &devices[i];
        }
    return nullptr;
}

// The element a record or value was read from, to read on below it.
QDomElement elementOf(const Trace& trace, const Site* site) {
    const DocumentTrace* d = site ? trace.document(site->document) : nullptr;
    QDomElement found;
    if (d)
        forEachElement(d->document, [&](const QDomElement& e) {
            if (found.isNull() && e.lineNumber() == site->line && e.columnNumber() == site->column) found = e;
        });
    return found;
}

// The element `steps` name below `from`, each the first child of that name
// (as a reader looks a child up), or null.
QDomElement below(QDomElement from, const QStringList& steps, Qt::CaseSensitivity cs = Qt::CaseSensitive) {
    for (const QString& step : steps) {
        QDomElement c = from.firstChildElement();
        while (!c.isNull() && c.tagName().compare(step, cs) != 0)
            c = c.nextSiblingElement();
        from = c;
    }
    return from;
}

// The site of an element of `site`'s document (null when no reader reached it).
const Site* siteOf(const Trace& trace, const Site* site, const QDomElement& e) {
    return site && !e.isNull() ? trace.siteAt(site->document, e.lineNumber(), e.columnNumber()) : nullptr;
}

// ---- slot MODEL SLOT --------------------------------------------------------

void explainPlacedCards(const Trace& trace, Answer& a, const Slot::s_Slot& slot, const RecordPath& at) {
    for (size_t i = 0; i < slot.subcards.size(); ++i) {
        const Slot::s_InlineSubcard& card = slot.subcards[i];
        const RecordPath c = at + RecordPath{{K::SlotCard, int(i)}};
        a.value(1, QStringLiteral("placed card"), num(card.moduleId), trace.record(c),
                QStringLiteral("ModuleId"));
        for (size_t j = 0; j < card.connectorGroups.size(); ++j) {
            const Slot::s_ConnectorGroup& cg = card.connectorGroups[j];
            const Site* g = trace.record(c + RecordPath{{K::SlotConnectorGroup, int(j)}});
            a.value(2, QStringLiteral("connector group"), num(cg.value), g, QStringLiteral("Value"));
            a.value(3, QStringLiteral("name"), text(cg.groupName), g, QStringLiteral("GroupName"));
        }
    }
    if (slot.subcards.empty())
        a.row(1, QStringLiteral("placed card"), QStringLiteral("none"), QStringLiteral("-"));
}

int explainSlot(const Tree& tree, const Trace& trace, Answer& a, int model, int index) {
    Step m;
    const Devicecfg::s_Device* device = deviceOf(tree, model, &m);
    if (!device) return -1;
    for (int g = 0; g < int(facts::kSlotGroups.size()); ++g) {
        const facts::SlotGroupFacts& facts = facts::kSlotGroups[size_t(g)];
        const Slot::s_SlotAttr& group = device->slot.slots.*facts.member;
        for (int s = 0; s < int(group.slots.size()); ++s) {
            const Slot::s_Slot& slot = group.slots[size_t(s)];
            if (slot.index != index) continue;
            const RecordPath at{m, {K::SlotGroup, g}};
            const Site* groupSite = trace.record(at);
            a.title(QStringLiteral("slot %1 of model %2").arg(index).arg(model));
            a.value(1, QStringLiteral("group"), QLatin1String(facts.element), groupSite,
                    QStringLiteral("SilkScreenName"));
            a.value(1, QStringLiteral("silk-screen name"), text(group.silkScreenName), groupSite,
                    QStringLiteral("SilkScreenName"));
            a.value(1, QStringLiteral("interface type"), num(group.interfaceType), groupSite,
                    QStringLiteral("InterfaceType"));
            a.value(1, QStringLiteral("index"), num(slot.index), trace.record(at + RecordPath{{K::Slot, s}}),
                    QStringLiteral("Index"));
            for (size_t i = 0; i < group.subcards.size(); ++i)
                a.value(1, QStringLiteral("accepted card"), num(group.subcards[i].moduleId),
                        trace.record(at + RecordPath{{K::GroupCard, int(i)}}), QStringLiteral("ModuleId"));
            explainPlacedCards(trace, a, slot, at + RecordPath{{K::Slot, s}});
            return 0;
        }
    }
    return -1;
}

// ---- card MODEL -------------------------------------------------------------

int explainCard(const Tree& tree, const Trace& trace, Answer& a, int model) {
    int position = 0;
    for (const Subcard::s_Subcard& card : tree.cards()->subcardConfig()) {
        const Step at{K::Card, position++};
        if (card.modelId != model) continue;
        a.title(QStringLiteral("card %1: %2").arg(model).arg(text(card.name.en)));
        a.value(1, QStringLiteral("card mode"), num(card.cardMode), trace.record({at}),
                QStringLiteral("CardMode"));
        if (card.connectors.connectors.empty())
            a.row(1, QStringLiteral("connectors"), QStringLiteral("none"), QStringLiteral("-"));
        for (size_t i = 0; i < card.connectors.connectors.size(); ++i) {
            const Subcard::s_Connector& c = card.connectors.connectors[i];
            const Site* site = trace.record({at, {K::Connector, int(i)}});
            a.value(1, QStringLiteral("connector"), num(c.position), site, QStringLiteral("Position"));
            a.fields(2, site,
                     {
                         {"Type", c.type},
                         {"InterfaceType", c.interfaceType},
                         {"Enable", c.enable},
                         {"Visible", c.visible},
                         {"PrintKeyNo", c.printKeyNo},
                         {"CapacityMode", c.capacityMode},
                         {"WorkMode", c.workMode},
                         {"BackupPos", c.backupPos},
                     });
        }
        return 0;
    }
    return -1;
}

// ---- connector TYPE INTERFACE MODE ------------------------------------------

// Whether the record at `path` stored `value` for `attribute`.
bool stores(const Trace& trace, const RecordPath& path, const char* attribute, int value) {
    const Site* site = trace.record(path);
    const QString stored = site ? site->values.value(QLatin1String(attribute)) : QString();
    return !stored.isEmpty() && stored.toInt() == value;
}

// The records in the order the connector queries look: the capacity mode
// `mode` of interface `interface` of the first description of connector
// `type` that has one, in reading order. Empty when none.
RecordPath capacityModeRecord(const Trace& trace, int type, int interface, int mode) {
    for (int f = 0; trace.record({{K::ConnectorFile, f}}); ++f)
        for (int d = 0; trace.record({{K::ConnectorFile, f}, {K::ConnectorDescription, d}}); ++d) {
            const RecordPath description{{K::ConnectorFile, f}, {K::ConnectorDescription, d}};
            if (!stores(trace, description, "Type", type)) continue;
            for (int i = 0; trace.record(description + RecordPath{{K::DescriptionInterface, i}}); ++i) {
                const RecordPath in = description + RecordPath{{K::DescriptionInterface, i}};
                if (!stores(trace, in, "Type", interface)) continue;
                for (int m = 0; trace.record(in + RecordPath{{K::InterfaceMode, m}}); ++m)
                    if (stores(trace, in + RecordPath{{K::InterfaceMode, m}}, "Value", mode))
                        return in + RecordPath{{K::InterfaceMode, m}};
            }
        }
    return {};
}

// The first capacity mode of the resolution catalogue of value `mode` (the
// one the queries take), or -1.
int resolutionMode(const Trace& trace, int mode) {
    for (int k = 0; trace.record({{K::ResolutionMode, k}}); ++k)
        if (stores(trace, {{K::ResolutionMode, k}}, "Value", mode)) return k;
    return -1;
}

// The catalogue records of the resolutions the queries list for capacity
// mode `mode`: the standard lists of modes 0, 1, ... joined (`count` in all),
// each less what the connector disables, so each is the next record of its
// mode that holds it.
QVector<const Site*> resolutionRecords(const Trace& trace, const ConnectorConfigInterface& connectors,
                                       int type, int interface, int mode, size_t count) {
    const QuietLibrary quiet; // a mode the catalogue lacks was told once already
    QVector<const Site*> sites;
    for (int m = 0; m <= mode && size_t(sites.size()) < count; ++m) {
        const int k = resolutionMode(trace, m);
        int i = 0;
        for (const auto& r : connectors.findConnectorStandardResolution(m, type, interface)) {
            const Site* found = nullptr;
            while (!found && k >= 0 && trace.record({{K::ResolutionMode, k}, {K::Resolution, i}})) {
                const RecordPath at{{K::ResolutionMode, k}, {K::Resolution, i++}};
                if (stores(trace, at, "Width", r.width) && stores(trace, at, "Height", r.height) &&
                    stores(trace, at, "RefreshRate", r.refreshRate))
                    found = trace.record(at);
            }
            sites << found;
        }
    }
    return sites;
}

int explainConnector(const Tree& tree, const Trace& trace, Answer& a, int type, int interface, int mode) {
    ConnectorConfigInterface* connectors = tree.connectors();
    const Connector::s_ConnectorResolutionRatio* def =
        connectors->findConnectorDefaultResolution(mode, type, interface);
    if (!def) return -1;
    a.title(QStringLiteral("connector type %1, interface type %2, capacity mode %3")
                .arg(type)
                .arg(interface)
                .arg(mode));
    a.group(1, QStringLiteral("default resolution"));
    const Site* capacity = trace.record(capacityModeRecord(trace, type, interface, mode));
    const QDomElement ratio = below(elementOf(trace, capacity),
                                    {QStringLiteral("ResolutionRatios"), QStringLiteral("ResolutionRatio")});
    const std::pair<const char*, const s_RangeValue*> axes[] = {{"Width", &def->width.range},
                                                                {"Height", &def->height.range},
                                                                {"RefreshRate", &def->refreshRate.range}};
    for (const auto& [name, range] : axes) {
        const Site* site = siteOf(trace, capacity, below(ratio, {QLatin1String(name)}));
        a.value(2, QLatin1String(name), num(range->value), site, QStringLiteral("Value"));
        a.value(3, QStringLiteral("min"), num(range->min), site, QStringLiteral("Min"));
        a.value(3, QStringLiteral("max"), num(range->max), site, QStringLiteral("Max"));
    }
    a.group(1, QStringLiteral("resolutions"));
    const auto list = connectors->findConnectorResolutions(mode, type, interface);
    const QVector<const Site*> sites =
        resolutionRecords(trace, *connectors, type, interface, mode, list.size());
    for (size_t i = 0; i < list.size(); ++i) {
        const Connector::s_resolutionResolutionRatio& r = list[i];
        a.value(2, QStringLiteral("%1x%2@%3").arg(r.width).arg(r.height).arg(r.refreshRate),
                QStringLiteral("interlaced %1").arg(r.interlaced), sites.value(int(i)),
                QStringLiteral("Width"));
    }
    return 0;
}

// ---- feature MODEL PATH -----------------------------------------------------

int explainFeature(const Tree& tree, const Trace& trace, Answer& a, int model, const QString& path) {
    Step m;
    const Devicecfg::s_Device* device = deviceOf(tree, model, &m);
    if (!device || device->feature == Feature::s_DeviceFeature{}) return -1; // no feature file kept
    // the element PATH names below the feature file's <Device>, ignoring case
    const Site* feature = trace.record({m, {K::Feature, 0}});
    const QDomElement hit =
        below(elementOf(trace, feature), path.split(QLatin1Char('.')), Qt::CaseInsensitive);
    if (hit.isNull()) return -1;
    a.title(QStringLiteral("%1 of model %2 (<%3>)").arg(path).arg(model).arg(elementPath(hit)));
    const Site* site = siteOf(trace, feature, hit);
    const DocumentTrace* d = trace.document(feature->document);
    if (const ElementTrace* t = d ? d->at(hit) : nullptr) {
        QStringList seen;
        for (const AttributeTrace& r : t->reads) {
            if (seen.contains(r.name)) continue;
            seen << r.name;
            a.value(1, r.name, r.stored, site, r.name);
        }
    }
    // the values listed below it
    for (QDomElement c = hit.firstChildElement(); !c.isNull(); c = c.nextSiblingElement()) {
        const Site* value = siteOf(trace, feature, c);
        const AttributeTrace* read = trace.readAt(value, QStringLiteral("Value"));
        if (!read || !c.firstChildElement().isNull()) continue;
        a.value(1, QStringLiteral("value"), read->stored, value, QStringLiteral("Value"));
    }
    return 0;
}

// ---- template MODEL SCREENTYPE NAME -----------------------------------------

void explainLayout(const Trace& trace, Answer& a, const Screen::s_Layout& layout, const RecordPath& at) {
    const Site* site = trace.record(at);
    a.value(2, QStringLiteral("rows"), num(layout.rows), site, QStringLiteral("Rows"));
    a.value(2, QStringLiteral("columns"), num(layout.columns), site, QStringLiteral("Columns"));
    a.value(2, QStringLiteral("screen id"), num(layout.screenId), site, QStringLiteral("ScreenId"));
    for (size_t k = 0; k < layout.cells.size(); ++k) {
        const Screen::s_Cell& c = layout.cells[k];
        a.group(2, QStringLiteral("cell %1").arg(k + 1));
        a.fields(3, trace.record(at + RecordPath{{K::Cell, int(k)}}),
                 {
                     {"X", c.x},
                     {"Y", c.y},
                     {"Width", c.width},
                     {"Height", c.height},
                     {"Row", c.row},
                     {"Column", c.column},
                     {"SlotIndex", c.slotIndex},
                     {"ConnectorIndex", c.connectorIndex},
                 });
    }
}

int explainTemplate(const Tree& tree, const Trace& trace, Answer& a, int model, int screenType,
                    const QString& name) {
    Step m;
    const Devicecfg::s_Device* device = deviceOf(tree, model, &m);
    if (!device) return -1;
    for (int s = 0; s < device->screens.size(); ++s) {
        const Screen::s_VrnScreen& screen = device->screens[s];
        if (screen.type != screenType) continue;
        for (size_t d = 0; d < screen.deviceModes.size(); ++d) {
            const Screen::s_DeviceMode& mode = screen.deviceModes[d];
            for (size_t i = 0; i < mode.templetes.size(); ++i) {
                const Screen::s_Templete& t = mode.templetes[i];
                if (text(t.name.en) != name && QString::number(i + 1) != name) continue;
                const RecordPath at{m, {K::Screen, s}, {K::DeviceMode, int(d)}, {K::Templete, int(i)}};
                const Site* templete = trace.record(at);
                const Site* names =
                    siteOf(trace, templete, below(elementOf(trace, templete), {QStringLiteral("Name")}));
                a.title(QStringLiteral("template %1 of screen type %2, model %3, device mode %4")
                            .arg(name)
                            .arg(screenType)
                            .arg(model)
                            .arg(mode.value));
                a.value(1, QStringLiteral("name"), text(t.name.en), names, QStringLiteral("en"));
                a.value(1, QStringLiteral("name (zh_CN)"), text(t.name.zhCN), names, QStringLiteral("zh_CN"));
                for (size_t j = 0; j < t.layouts.size(); ++j) {
                    a.group(1, QStringLiteral("layout %1").arg(j + 1));
                    explainLayout(trace, a, t.layouts[j], at + RecordPath{{K::Layout, int(j)}});
                }
                return 0;
            }
        }
    }
    return -1;
}

bool toInt(const QString& s, int* v) {
    bool ok = false;
    *v = s.toInt(&ok);
    return ok;
}

} // namespace

int runExplain(const QStringList& args) {
    CommandLine cl(
        QStringLiteral("explain"),
        QStringLiteral("Answers a question about a configuration tree and shows, for every value,\n"
                       "the file and line it was read from, or \"default\".\n\n") +
            QLatin1String(kForms),
        QStringLiteral("QUESTION..."));
    Session session(cl, Session::OtherPositional, Session::NoJson);
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    const QStringList p = session.positional();
    if (p.isEmpty()) return cl.usage(QStringLiteral("a question expected"));
    const QString question = p[0];
    const QStringList q = p.mid(1);
    int n[3] = {0, 0, 0};
    auto ints = [&](int count) {
        if (q.size() < count) return false;
        for (int i = 0; i < count; ++i)
            if (!toInt(q[i], &n[i])) return false;
        return true;
    };
    enum { Slot, Card, Connector, Feature, Template } form;
    if (question == QLatin1String("slot") && q.size() == 2 && ints(2))
        form = Slot;
    else if (question == QLatin1String("card") && q.size() == 1 && ints(1))
        form = Card;
    else if (question == QLatin1String("connector") && q.size() == 3 && ints(3))
        form = Connector;
    else if (question == QLatin1String("feature") && q.size() == 2 && ints(1))
        form = Feature;
    else if (question == QLatin1String("template") && q.size() == 3 && ints(2))
        form = Template;
    else
        return cl.usage(
            QStringLiteral("unknown question: %1\n%2").arg(p.join(QLatin1Char(' ')), QLatin1String(kForms)));

    Trace trace;
    const std::unique_ptr<Tree> loaded = session.load(&trace);
    if (!loaded) return kUsage;
    const Tree& tree = *loaded;
    Answer answer(tree, trace);
    int found = -1;
    switch (form) {
    case Slot:
        found = tree.devices() ? explainSlot(tree, trace, answer, n[0], n[1]) : -1;
        break;
    case Card:
        found = tree.cards() ? explainCard(tree, trace, answer, n[0]) : -1;
        break;
    case Connector:
        found = tree.connectors() ? explainConnector(tree, trace, answer, n[0], n[1], n[2]) : -1;
        break;
    case Feature:
        found = tree.devices() ? explainFeature(tree, trace, answer, n[0], q[1]) : -1;
        break;
    case Template:
        found = tree.devices() ? explainTemplate(tree, trace, answer, n[0], n[1], q[2]) : -1;
        break;
    }
    if (found != 0) {
        out() << "no answer: " << p.join(QLatin1Char(' ')) << " is not in " << tree.root() << "\n";
        if (const QString why = tree.failures(); !why.isEmpty())
            out() << "(the load did not read everything: "
                  << QString(why).replace(QLatin1Char('\n'), QLatin1String("; ")) << ")\n";
        return kProblems;
    }
    answer.print();
    return kClean;
}

} // namespace lcdcfg
