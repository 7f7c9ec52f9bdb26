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

// The answer: rows of label, value and where the value came from, printed in
// aligned columns.
class Answer {
public:
    Answer(const Tree& tree, const Trace& trace) : m_tree(tree), m_trace(trace) {}

    void title(const QString& text) { m_rows.push_back({0, text, QString(), QString()}); }
    void group(int indent, const QString& text) { m_rows.push_back({indent, text, QString(), QString()}); }
    // A value read from `attribute` of `e`.
    void value(int indent, const QString& label, const QString& value, const QDomElement& e,
               const QString& attribute) {
        m_rows.push_back({indent, label, value, sourceOf(m_tree, m_trace, e, attribute)});
    }
    // Integer fields, each read from the attribute of its name on `e`.
    void fields(int indent, const QDomElement& e,
                std::initializer_list<std::pair<const char*, qint32>> list) {
        for (const auto& [name, v] : list)
            value(indent, QLatin1String(name), QString::number(v), e, QLatin1String(name));
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

const Devicecfg::s_Device* deviceOf(const Tree& tree, int model) {
    for (const Devicecfg::s_Device& d : tree.devices()->DeviceConfigs())
        if (d.modelId == model) return &d;
    return nullptr;
}

// The folder the model was read from, as the load told it.
QString modelDir(const Tree& tree, const Trace& trace, int model) {
    const auto& devices = tree.devices()->DeviceConfigs();
    for (int i = 0; i < int(devices.size()); ++i)
        if (devices[i].modelId == model)
            if (const Site* folder = trace.record({{RecordKind::Model, i}}))
                return tree.relative(folder->document);
    return QString();
}

// ---- slot MODEL SLOT --------------------------------------------------------

int explainSlot(const Tree& tree, const Trace& trace, Answer& a, int model, int index) {
    const Devicecfg::s_Device* device = deviceOf(tree, model);
    if (!device) return -1;
    const QString dir = modelDir(tree, trace, model);
    for (const LCD::ConfigModel::facts::SlotGroupFacts& facts : LCD::ConfigModel::facts::kSlotGroups) {
        const char* tag = facts.element;
        const Slot::s_SlotAttr* group = &(device->slot.slots.*facts.member);
        for (const Slot::s_Slot& slot : group->slots) {
            if (slot.index != index) continue;
            const QString g = QStringLiteral("Slots/") + QLatin1String(tag);
            const QDomElement groupElement = findElement(tree, trace, dir, g);
            a.title(QStringLiteral("slot %1 of model %2").arg(index).arg(model));
            a.value(1, QStringLiteral("group"), QLatin1String(tag), groupElement,
                    QStringLiteral("SilkScreenName"));
            a.value(1, QStringLiteral("silk-screen name"), text(group->silkScreenName), groupElement,
                    QStringLiteral("SilkScreenName"));
            a.value(1, QStringLiteral("interface type"), num(group->interfaceType), groupElement,
                    QStringLiteral("InterfaceType"));
            const QDomElement slotElement =
                findElement(tree, trace, dir, g + QStringLiteral("/*[Index=%1]").arg(index));
            a.value(1, QStringLiteral("index"), num(slot.index), slotElement, QStringLiteral("Index"));
            const QVector<QDomElement> accepted =
                findElements(tree, trace, dir, g + QStringLiteral("/Subcards/*"));
            for (size_t i = 0; i < group->subcards.size(); ++i)
                a.value(1, QStringLiteral("accepted card"), num(group->subcards[i].moduleId),
                        accepted.value(int(i)), QStringLiteral("ModuleId"));
            const QVector<QDomElement> placed =
                findElements(tree, trace, dir, g + QStringLiteral("/*[Index=%1]/Subcards/*").arg(index));
            for (size_t i = 0; i < slot.subcards.size(); ++i) {
                const Slot::s_InlineSubcard& card = slot.subcards[i];
                const QDomElement c = placed.value(int(i));
                a.value(1, QStringLiteral("placed card"), num(card.moduleId), c, QStringLiteral("ModuleId"));
                const QVector<QDomElement> gs =
                    findElements(tree, trace, dir,
                                 g + QStringLiteral("/*[Index=%1]/Subcards/*[ModuleId=%2]/ConnectorGroups/*")
                                         .arg(index)
                                         .arg(card.moduleId));
                for (size_t j = 0; j < card.connectorGroups.size(); ++j) {
                    const Slot::s_ConnectorGroup& cg = card.connectorGroups[j];
                    a.value(2, QStringLiteral("connector group"), num(cg.value), gs.value(int(j)),
                            QStringLiteral("Value"));
                    a.value(3, QStringLiteral("name"), text(cg.groupName), gs.value(int(j)),
                            QStringLiteral("GroupName"));
                }
            }
            if (slot.subcards.empty())
                a.row(1, QStringLiteral("placed card"), QStringLiteral("none"), QStringLiteral("-"));
            return 0;
        }
    }
    return -1;
}

// ---- card MODEL -------------------------------------------------------------

int explainCard(const Tree& tree, const Trace& trace, Answer& a, int model) {
    for (const Subcard::s_Subcard& card : tree.cards()->subcardConfig()) {
        if (card.modelId != model) continue;
        const QDomElement e = findElement(tree, trace, QStringLiteral("subcard"),
                                          QStringLiteral("Subcards/*[ModelId=%1]").arg(model));
        a.title(QStringLiteral("card %1: %2").arg(model).arg(text(card.name.en)));
        a.value(1, QStringLiteral("card mode"), num(card.cardMode), e, QStringLiteral("CardMode"));
        const QVector<QDomElement> list =
            findElements(tree, trace, QStringLiteral("subcard"),
                         QStringLiteral("Subcards/*[ModelId=%1]/Connectors/Connector").arg(model));
        if (card.connectors.connectors.empty())
            a.row(1, QStringLiteral("connectors"), QStringLiteral("none"), QStringLiteral("-"));
        for (size_t i = 0; i < card.connectors.connectors.size(); ++i) {
            const Subcard::s_Connector& c = card.connectors.connectors[i];
            const QDomElement ce = list.value(int(i));
            a.value(1, QStringLiteral("connector"), num(c.position), ce, QStringLiteral("Position"));
            a.fields(2, ce,
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

int explainConnector(const Tree& tree, const Trace& trace, Answer& a, int type, int interface, int mode) {
    ConnectorConfigInterface* connectors = tree.connectors();
    const Connector::s_ConnectorResolutionRatio* def =
        connectors->findConnectorDefaultResolution(mode, type, interface);
    if (!def) return -1;
    const QString under = QStringLiteral("connector");
    const QString base = QStringLiteral("Connectors/*[Type=%1]/CapacityMode/*[Type=%2]/*[Value=%3]")
                             .arg(type)
                             .arg(interface)
                             .arg(mode);
    a.title(QStringLiteral("connector type %1, interface type %2, capacity mode %3")
                .arg(type)
                .arg(interface)
                .arg(mode));
    a.group(1, QStringLiteral("default resolution"));
    const std::pair<const char*, const s_RangeValue*> axes[] = {{"Width", &def->width.range},
                                                                {"Height", &def->height.range},
                                                                {"RefreshRate", &def->refreshRate.range}};
    for (const auto& [name, range] : axes) {
        const QDomElement e =
            findElement(tree, trace, under,
                        base + QStringLiteral("/ResolutionRatios/ResolutionRatio/") + QLatin1String(name));
        a.value(2, QLatin1String(name), num(range->value), e, QStringLiteral("Value"));
        a.value(3, QStringLiteral("min"), num(range->min), e, QStringLiteral("Min"));
        a.value(3, QStringLiteral("max"), num(range->max), e, QStringLiteral("Max"));
    }
    a.group(1, QStringLiteral("resolutions"));
    for (const Connector::s_resolutionResolutionRatio& r :
         connectors->findConnectorResolutions(mode, type, interface)) {
        const QDomElement e =
            findElement(tree, trace, under,
                        QStringLiteral("/*/ResolutionRatios/*/*[Width=%1][Height=%2][RefreshRate=%3]")
                            .arg(r.width)
                            .arg(r.height)
                            .arg(r.refreshRate));
        a.value(2, QStringLiteral("%1x%2@%3").arg(r.width).arg(r.height).arg(r.refreshRate),
                QStringLiteral("interlaced %1").arg(r.interlaced), e, QStringLiteral("Width"));
    }
    return 0;
}

// ---- feature MODEL PATH -----------------------------------------------------

int explainFeature(const Tree& tree, const Trace& trace, Answer& a, int model, const QString& path) {
    if (!deviceOf(tree, model)) return -1;
    // the element whose tag path below <Device> spells PATH, ignoring case
    const QStringList wanted = path.split(QLatin1Char('.'));
    QDomElement hit;
    const QString dir = modelDir(tree, trace, model) + QLatin1Char('/');
    for (const DocumentTrace& d : trace.documents()) {
        if (!tree.relative(d.path).startsWith(dir) ||
            documentKind(tree, d) != QLatin1String("device-feature") || !d.ok)
            continue;
        forEachElement(d.document, [&](const QDomElement& e) {
            if (!hit.isNull()) return;
            QStringList tags = elementPath(e).split(QLatin1Char('/')).mid(2); // below <Device>
            if (tags.size() != wanted.size()) return;
            for (int i = 0; i < tags.size(); ++i)
                if (tags[i].compare(wanted[i], Qt::CaseInsensitive) != 0) return;
            hit = e;
        });
    }
    if (hit.isNull()) return -1;
    const DocumentTrace* d = nullptr;
    for (const DocumentTrace& doc : trace.documents())
        if (doc.document == hit.ownerDocument()) d = &doc;
    a.title(QStringLiteral("%1 of model %2 (<%3>)").arg(path).arg(model).arg(elementPath(hit)));
    const ElementTrace* t = d ? d->at(hit) : nullptr;
    if (t) {
        QStringList seen;
        for (const AttributeTrace& r : t->reads) {
            if (seen.contains(r.name)) continue;
            seen << r.name;
            a.value(1, r.name, r.stored, hit, r.name);
        }
    }
    // the values listed below it
    for (QDomElement c = hit.firstChildElement(); !c.isNull(); c = c.nextSiblingElement()) {
        const ElementTrace* ct = d ? d->at(c) : nullptr;
        if (!ct || !ct->read(QStringLiteral("Value")) || !c.firstChildElement().isNull()) continue;
        a.value(1, QStringLiteral("value"), ct->read(QStringLiteral("Value"))->stored, c,
                QStringLiteral("Value"));
    }
    return 0;
}

// ---- template MODEL SCREENTYPE NAME -----------------------------------------

int explainTemplate(const Tree& tree, const Trace& trace, Answer& a, int model, int screenType,
                    const QString& name) {
    const Devicecfg::s_Device* device = deviceOf(tree, model);
    if (!device) return -1;
    for (const Screen::s_VrnScreen& screen : device->screens) {
        if (screen.type != screenType) continue;
        for (const Screen::s_DeviceMode& mode : screen.deviceModes) {
            const QVector<QDomElement> elements =
                findElements(tree, trace, modelDir(tree, trace, model),
                             QStringLiteral("Screen[Type=%1]/DeviceModes/*[Value=%2]/Templetes/*")
                                 .arg(screenType)
                                 .arg(mode.value));
            for (size_t i = 0; i < mode.templetes.size(); ++i) {
                const Screen::s_Templete& t = mode.templetes[i];
                if (text(t.name.en) != name && QString::number(i + 1) != name) continue;
                const QDomElement te = elements.value(int(i));
                const QDomElement ne = te.firstChildElement(QStringLiteral("Name"));
                a.title(QStringLiteral("template %1 of screen type %2, model %3, device mode %4")
                            .arg(name)
                            .arg(screenType)
                            .arg(model)
                            .arg(mode.value));
                a.value(1, QStringLiteral("name"), text(t.name.en), ne, QStringLiteral("en"));
                a.value(1, QStringLiteral("name (zh_CN)"), text(t.name.zhCN), ne, QStringLiteral("zh_CN"));
                QVector<QDomElement> layouts;
                for (QDomElement l = te.firstChildElement(QStringLiteral("Layouts")).firstChildElement();
                     !l.isNull(); l = l.nextSiblingElement())
                    layouts << l;
                for (size_t j = 0; j < t.layouts.size(); ++j) {
                    const Screen::s_Layout& layout = t.layouts[j];
                    const QDomElement le = layouts.value(int(j));
                    a.group(1, QStringLiteral("layout %1").arg(j + 1));
                    a.value(2, QStringLiteral("rows"), num(layout.rows), le, QStringLiteral("Rows"));
                    a.value(2, QStringLiteral("columns"), num(layout.columns), le, QStringLiteral("Columns"));
                    a.value(2, QStringLiteral("screen id"), num(layout.screenId), le,
                            QStringLiteral("ScreenId"));
                    QDomElement ce = le.firstChildElement();
                    for (size_t k = 0; k < layout.cells.size(); ++k, ce = ce.nextSiblingElement()) {
                        const Screen::s_Cell& c = layout.cells[k];
                        a.group(2, QStringLiteral("cell %1").arg(k + 1));
                        a.fields(3, ce,
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
