#include "tools/lcdcfg/trace.h"

#include <QtCore/QFileInfo>

#include <algorithm>

#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

const AttributeTrace* ElementTrace::read(const QString& name) const {
    for (const AttributeTrace& a : reads)
        if (a.name == name) return &a;
    return nullptr;
}

const ElementTrace* DocumentTrace::at(const QDomElement& e) const {
    const auto it = elements.constFind(positionOf(e));
    return it == elements.constEnd() ? nullptr : &*it;
}

const DocumentTrace* Trace::document(const QString& path) const {
    for (const DocumentTrace& d : m_documents)
        if (d.path == path) return &d;
    return nullptr;
}

void Trace::documentStarted(const QString& path) {
    DocumentTrace d;
    d.path = path;
    m_documents.push_back(d);
}

void Trace::documentParsed(const DocumentRead& read) {
    if (m_documents.isEmpty()) return;
    DocumentTrace& d = m_documents.last();
    d.ok = read.ok;
    d.error = read.error;
    d.line = read.line;
    d.column = read.column;
    d.document = read.document;
}

void Trace::documentRejected(const QDomElement&, const QString& error) {
    if (!m_documents.isEmpty()) m_documents.last().rejected = error;
}

ElementTrace* Trace::record(const QDomElement& e) {
    if (e.isNull()) return nullptr;
    const QDomDocument owner = e.ownerDocument();
    for (int i = m_documents.size() - 1; i >= 0; --i) // the current document first
        if (m_documents[i].document == owner) return &m_documents[i].elements[positionOf(e)];
    return nullptr;
}

void Trace::elementFound(const QDomElement& element) {
    if (ElementTrace* t = record(element)) t->found = true;
    if (ElementTrace* parent = record(element.parentNode().toElement())) parent->lookedInto = true;
}

void Trace::elementMissing(const QDomElement& parent, const char* name) {
    if (ElementTrace* t = record(parent)) {
        t->lookedInto = true;
        const QString n = QLatin1String(name);
        if (!t->missing.contains(n)) t->missing << n;
    }
}

void Trace::attributeRead(const AttributeRead& read) {
    ElementTrace* t = record(read.element);
    if (!t) return;
    t->reads.push_back({QLatin1String(read.name), read.present, read.raw, QString::fromUtf8(read.def),
                        read.kind, read.stored, read.validNumber});
}

void Trace::textRead(const QDomElement& element) {
    if (ElementTrace* t = record(element)) t->textRead = true;
}

QString elementPath(const QDomElement& e) {
    QStringList tags;
    for (QDomNode n = e; n.isElement(); n = n.parentNode())
        tags.prepend(n.toElement().tagName());
    return tags.join(QLatin1Char('/'));
}

namespace {
void addOnce(QStringList& list, const QString& name) {
    if (!list.contains(name)) list << name;
}
} // namespace

void Vocabulary::add(const Trace& trace) {
    for (const DocumentTrace& d : trace.documents()) {
        forEachElement(d.document, [&](const QDomElement& e) {
            const ElementTrace* t = d.at(e);
            if (!t) return;
            const QString path = elementPath(e);
            if (t->found && e.parentNode().isElement())
                addOnce(children[elementPath(e.parentNode().toElement())], e.tagName());
            for (const QString& name : t->missing)
                addOnce(children[path], name);
            for (const AttributeTrace& a : t->reads)
                addOnce(attributes[path], a.name);
            if (t->textRead) {
                bool decimal = false;
                e.text().toInt(&decimal);
                ++(decimal ? texts[path].first : texts[path].second);
            }
        });
    }
}

bool Vocabulary::textIsNumber(const QString& path) const {
    const QPair<int, int> counts = texts.value(path);
    return counts.first > counts.second;
}

namespace {
int editDistance(const QString& a, const QString& b) {
    const QString x = a.toLower();
    const QString y = b.toLower();
    QVector<int> row(y.size() + 1);
    for (int j = 0; j <= y.size(); ++j)
        row[j] = j;
    for (int i = 1; i <= x.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= y.size(); ++j) {
            const int up = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (x[i - 1] == y[j - 1] ? 0 : 1)});
            diagonal = up;
        }
    }
    return row[y.size()];
}

} // namespace

QString closest(const QString& name, const QStringList& names) {
    QString best;
    int bestDistance = std::max(2, int(name.size()) / 3) + 1;
    for (const QString& candidate : names) {
        if (candidate == name) continue;
        const int d = editDistance(name, candidate);
        if (d < bestDistance) {
            best = candidate;
            bestDistance = d;
        }
    }
    return best;
}

namespace {

struct Step {
    QString name; // "*" for any
    QVector<QPair<QString, QString>> conditions;
};

QVector<Step> parsePattern(QString pattern, bool* anchored) {
    *anchored = pattern.startsWith(QLatin1Char('/'));
    if (*anchored) pattern.remove(0, 1);
    QVector<Step> steps;
    for (const QString& text : pattern.split(QLatin1Char('/'))) {
        Step step;
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

bool matches(QDomElement e, const QVector<Step>& steps, bool anchored) {
    for (int i = steps.size() - 1; i >= 0; --i, e = e.parentNode().toElement()) {
        if (e.isNull()) return false;
        const Step& step = steps[i];
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
    const QVector<Step> steps = parsePattern(pattern, &anchored);
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
        case Part::Devices:
            for (const char* word : {"feature", "slot", "screen", "layer", "crosscard"})
                if (name.contains(QLatin1String(word)))
                    return QStringLiteral("device-") + QLatin1String(word);
            return QString();
        case Part::Cards:
            return QStringLiteral("subcard");
        case Part::Connectors: {
            const QString first = document.document.documentElement().firstChildElement().tagName();
            return first == QLatin1String("ResolutionRatios") ? QStringLiteral("resolutions")
                   : first == QLatin1String("Connectors")     ? QStringLiteral("connector")
                                                              : QString();
        }
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
