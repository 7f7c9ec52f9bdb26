// Explain's patterns: elements of the traced documents found by tag path,
// where a value came from, and the kind of a document.

#include "tools/lcdcfg/trace.h"

#include <QtCore/QFileInfo>

#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;
namespace facts = LCD::ConfigModel::facts;

namespace {

struct PatternStep {
    QString name; // "*" for any
    QVector<QPair<QString, QString>> conditions;
};

QVector<PatternStep> parsePattern(QString pattern, bool* anchored) {
    *anchored = pattern.startsWith(QLatin1Char('/'));
    if (*anchored) pattern.remove(0, 1);
    QVector<PatternStep> steps;
    for (const QString& text : pattern.split(QLatin1Char('/'))) {
        PatternStep step;
        const int bracket = text.indexOf(QLatin1Char('['));
        step.name = bracket < 0 ? text : text.left(bracket);
        if (bracket >= 0) {
            for (QString c : text.mid(bracket + 1).split(QLatin1Char('['))) {
                c.chop(1); // "]"
                const int eq = c.indexOf(QLatin1Char('='));
                step.conditions.push_back({c.left(eq), c.mid(eq + 1)});
            }
        }
        steps.push_back(step);
    }
    return steps;
}

bool sameValue(const QString& a, const QString& b) {
    bool okA = false;
    bool okB = false;
    const qlonglong x = a.trimmed().toLongLong(&okA);
    const qlonglong y = b.trimmed().toLongLong(&okB);
    return okA && okB ? x == y : a == b;
}

bool matches(QDomElement e, const QVector<PatternStep>& steps, bool anchored) {
    for (int i = steps.size() - 1; i >= 0; --i, e = e.parentNode().toElement()) {
        if (e.isNull()) return false;
        const PatternStep& step = steps[i];
        if (step.name != QLatin1String("*") && step.name != e.tagName()) return false;
        for (const auto& c : step.conditions)
            if (!e.hasAttribute(c.first) || !sameValue(e.attribute(c.first), c.second)) return false;
    }
    return !anchored || e.isNull();
}

const DocumentTrace* documentOf(const Trace& trace, const QDomElement& e) {
    const QDomDocument owner = e.ownerDocument();
    for (const DocumentTrace& d : trace.documents())
        if (d.document == owner) return &d;
    return nullptr;
}

} // namespace

QVector<QDomElement> findElements(const Tree& tree, const Trace& trace, const QString& under,
                                  const QString& pattern) {
    bool anchored = false;
    const QVector<PatternStep> steps = parsePattern(pattern, &anchored);
    QVector<QDomElement> found;
    for (const DocumentTrace& d : trace.documents()) {
        if (!d.ok || !d.rejected.isEmpty() || !tree.relative(d.path).startsWith(under)) continue;
        forEachElement(d.document, [&](const QDomElement& e) {
            if (matches(e, steps, anchored)) found << e;
        });
    }
    return found;
}

QDomElement findElement(const Tree& tree, const Trace& trace, const QString& under, const QString& pattern) {
    return findElements(tree, trace, under, pattern).value(0);
}

QString sourceOf(const Tree& tree, const Trace& trace, const QDomElement& e, const QString& attribute) {
    if (e.isNull()) return QStringLiteral("-");
    const DocumentTrace* d = documentOf(trace, e);
    const ElementTrace* t = d ? d->at(e) : nullptr;
    const AttributeTrace* read = t ? t->read(attribute) : nullptr;
    if (!read) return QStringLiteral("not read");
    if (!read->present) return QStringLiteral("default");
    return QStringLiteral("%1:%2").arg(tree.relative(d->path)).arg(e.lineNumber());
}

QString documentKind(const Tree& tree, const DocumentTrace& document) {
    for (const PartLoad& load : tree.loads()) {
        if (!load.documents.contains(document.path)) continue;
        const QString name = QFileInfo(document.path).fileName();
        switch (load.part) {
        case Part::Devices: {
            const char* kind = facts::fileKindName(facts::fileKind(name));
            return *kind ? QStringLiteral("device-") + QLatin1String(kind) : QString();
        }
        case Part::Cards:
            return QStringLiteral("subcard");
        case Part::Connectors:
            return QLatin1String(
                facts::connectorFileKind(document.document.documentElement().firstChildElement().tagName()));
        case Part::Menu:
            return document.path == load.inputs.value(0) ? QStringLiteral("menu-items")
                                                         : QStringLiteral("menu-tree");
        case Part::Hdr:
            return QStringLiteral("hdr-options");
        case Part::Keys:
            return QStringLiteral("key-check");
        case Part::PrintKeys:
            return QStringLiteral("print-keys");
        }
    }
    return QString();
}
} // namespace lcdcfg
