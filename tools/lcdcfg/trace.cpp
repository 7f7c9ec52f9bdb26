#include "tools/lcdcfg/trace.h"

#include <QtCore/QFileInfo>

#include <algorithm>

#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;
namespace facts = LCD::ConfigModel::facts;

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

QString keyOf(const QString& document, int line, int column) {
    return QStringLiteral("%1:%2:%3").arg(document).arg(line).arg(column);
}

// A name a letter or two (for longer names) away from `wanted`, case aside.
bool near(const QString& name, const QString& wanted) {
    const int limit = wanted.size() < 5 ? 1 : 2;
    return name != wanted && editDistance(name, wanted) <= limit;
}

} // namespace

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

void Trace::append(const Trace& other) {
    const int offset = m_sites.size();
    m_documents += other.m_documents;
    m_sites += other.m_sites;
    for (auto it = other.m_index.constBegin(); it != other.m_index.constEnd(); ++it)
        if (!m_index.contains(it.key())) m_index.insert(it.key(), *it + offset);
    for (auto it = other.m_tags.constBegin(); it != other.m_tags.constEnd(); ++it) {
        QVector<int>& tagged = m_tags[it.key()];
        for (int i : *it)
            tagged << i + offset;
    }
    m_missing += other.m_missing;
    m_failures += other.m_failures;
    m_badNumbers += other.m_badNumbers;
    m_nearAttributes += other.m_nearAttributes;
    m_cells += other.m_cells;
    m_seenCells += other.m_seenCells;
    for (auto it = other.m_names.constBegin(); it != other.m_names.constEnd(); ++it)
        if (!m_names.contains(it.key())) m_names.insert(it.key(), *it);
    for (auto it = other.m_connectorDocs.constBegin(); it != other.m_connectorDocs.constEnd(); ++it)
        if (!m_connectorDocs.contains(it.key())) m_connectorDocs.insert(it.key(), *it);
    for (auto it = other.m_cardDocs.constBegin(); it != other.m_cardDocs.constEnd(); ++it)
        if (!m_cardDocs.contains(it.key())) m_cardDocs.insert(it.key(), *it);
    for (auto it = other.m_records.constBegin(); it != other.m_records.constEnd(); ++it)
        m_records.insert(it.key(), *it + offset);
}

void Trace::documentStarted(const QString& path) {
    m_path = path;
    if (m_folderSite >= 0) m_sites[m_folderSite].document = QFileInfo(path).absolutePath();
    m_folderSite = -1;
    DocumentTrace d;
    d.path = path;
    m_documents.push_back(d);
}

void Trace::documentParsed(const DocumentRead& read) {
    if (!read.ok) m_failures.push_back({m_path, read.line, read.column, read.error, false});
    if (m_documents.isEmpty()) return;
    DocumentTrace& d = m_documents.last();
    d.ok = read.ok;
    d.error = read.error;
    d.line = read.line;
    d.column = read.column;
    d.document = read.document;
}

void Trace::documentRejected(const QDomElement& root, const QString& error) {
    m_failures.push_back({m_path, root.lineNumber(), root.columnNumber(), error, true});
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
    const QString n = QLatin1String(name);
    if (ElementTrace* t = record(parent)) {
        t->lookedInto = true;
        if (!t->missing.contains(n)) t->missing << n;
    }
    Missing missing;
    missing.document = m_path;
    missing.line = parent.lineNumber();
    missing.column = parent.columnNumber();
    missing.name = n;
    missing.path = elementPath(parent) + QLatin1Char('/') + n;
    for (QDomElement e = parent.firstChildElement(); !e.isNull() && missing.near.isEmpty();
         e = e.nextSiblingElement())
        if (near(e.tagName(), n)) {
            missing.near = e.tagName();
            missing.nearLine = e.lineNumber();
            missing.nearColumn = e.columnNumber();
        }
    m_missing.push_back(missing);
}

void Trace::attributeRead(const AttributeRead& read) {
    const QString name = QLatin1String(read.name);
    if (ElementTrace* t = record(read.element))
        t->reads.push_back({name, read.present, read.raw, QString::fromUtf8(read.def), read.kind, read.stored,
                            read.validNumber});
    Site& site = siteOf(read.element);
    site.values.insert(name, read.stored);
    if (read.present && !read.validNumber)
        m_badNumbers.push_back({m_path, site.line, site.column, name, read.raw, read.stored});
    if (!read.present) {
        const QDomNamedNodeMap attributes = read.element.attributes();
        for (int i = 0; i < attributes.count(); ++i)
            if (near(attributes.item(i).nodeName(), name))
                m_nearAttributes.push_back(
                    {m_path, site.line, site.column, name, attributes.item(i).nodeName()});
    }
    reportRead(read);
}

void Trace::textRead(const QDomElement& element, ReadKind kind) {
    if (ElementTrace* t = record(element)) {
        t->textRead = true;
        t->textNumber = t->textNumber || kind == ReadKind::Int;
    }
    siteOf(element).values.insert(QStringLiteral("#text"), element.text().trimmed());
    reportText(element);
}

void Trace::recordStarted(const RecordRead& record) {
    m_place << int(record.kind) << record.index << record.key;
    if (record.element.isNull()) { // a model: its folder is that of its first file
        m_folderSite = m_sites.size();
        m_sites.push_back({QString(), QString(), 0, 0, {}});
        m_records.insert(m_place, m_folderSite);
        return;
    }
    const Site& site = siteOf(record.element);
    m_records.insert(m_place, int(&site - m_sites.constData()));
}

void Trace::recordEnded(RecordKind) {
    m_place.resize(std::max(0, int(m_place.size()) - 3));
}

const Site* Trace::record(const RecordPath& path) const {
    QVector<int> place;
    for (const Step& step : path)
        place << int(step.kind) << step.index << step.key;
    const auto it = m_records.constFind(place);
    return it == m_records.constEnd() || m_sites[*it].document.isEmpty() ? nullptr : &m_sites[*it];
}

Site& Trace::siteOf(const QDomElement& element) {
    const QString key = keyOf(m_path, element.lineNumber(), element.columnNumber());
    auto it = m_index.constFind(key);
    if (it != m_index.constEnd()) return m_sites[*it];
    m_index.insert(key, m_sites.size());
    m_tags[element.tagName()] << m_sites.size();
    m_sites.push_back({m_path, element.tagName(), element.lineNumber(), element.columnNumber(), {}});
    return m_sites.last();
}

// A layout cell (its connector index read) and the first card model of a card file.
void Trace::reportRead(const AttributeRead& read) {
    const QDomElement& e = read.element;
    if (qstrcmp(read.name, "ConnectorIndex") == 0 && e.parentNode().parentNode().nodeName() == "Layouts") {
        const QString key = keyOf(m_path, e.lineNumber(), e.columnNumber());
        if (m_seenCells.contains(key)) return;
        m_seenCells.insert(key);
        m_cells.push_back({m_path, e.lineNumber(), e.columnNumber()});
    } else if (qstrcmp(read.name, "ModelId") == 0 && e.tagName() == QLatin1String("Subcard") &&
               !m_cardDocs.contains(m_path)) {
        m_cardDocs.insert(m_path, read.stored.toInt());
    }
}

// The names of a connector description.
void Trace::reportText(const QDomElement& element) {
    const QDomElement names = element.parentNode().toElement();
    const QDomElement connector = names.parentNode().toElement();
    if (connector.tagName() != QLatin1String("Connector") ||
        connector.parentNode().nodeName() != QLatin1String("Connectors"))
        return;
    const bool shortName = names.tagName() == QLatin1String("ShortName");
    if (!shortName && names.tagName() != QLatin1String("Name")) return;
    const int type = connector.attribute(QStringLiteral("Type")).toInt();
    if (!m_connectorDocs.contains(m_path)) m_connectorDocs.insert(m_path, type);
    ConnectorNames& n = m_names[type];
    const bool english = element.tagName() == QLatin1String("en");
    if (!english && element.tagName() != QLatin1String("zh_CN")) return;
    QString& slot = shortName ? (english ? n.shortEn : n.shortZhCN) : (english ? n.en : n.zhCN);
    if (slot.isEmpty()) slot = element.text().trimmed();
}

const Site* Trace::siteAt(const QString& document, int line, int column) const {
    auto it = m_index.constFind(keyOf(document, line, column));
    return it == m_index.constEnd() ? nullptr : &m_sites[*it];
}

QVector<const Site*> Trace::find(const std::function<bool(const QString&)>& document, const QString& tag,
                                 Match values) const {
    QVector<const Site*> hits;
    static const QVector<int> none;
    const auto of = m_tags.constFind(tag); // the sites of that tag
    const QVector<int>* tagged = tag.isEmpty() ? nullptr : of == m_tags.constEnd() ? &none : &*of;
    for (int i = 0, n = tagged ? int(tagged->size()) : int(m_sites.size()); i < n; ++i) {
        const Site& site = m_sites[tagged ? tagged->at(i) : i];
        if (!document(site.document)) continue;
        bool all = true;
        for (const auto& value : values)
            all = all && site.values.value(QLatin1String(value.first)) == value.second &&
                  site.values.contains(QLatin1String(value.first));
        if (all) hits << &site;
    }
    return hits;
}

const Missing* Trace::lastMissing(const QString& document, const QString& name) const {
    for (auto it = m_missing.rbegin(); it != m_missing.rend(); ++it)
        if (it->document == document && it->name == name) return &*it;
    return nullptr;
}

bool Trace::found(const QString& document, int line, int column) const {
    for (const DocumentTrace& d : m_documents) {
        if (d.path != document) continue;
        const auto it = d.elements.constFind({line, column});
        if (it != d.elements.constEnd() && it->found) return true;
    }
    return false;
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
        });
    }
}

void Vocabulary::add(const Vocabulary& other) {
    for (auto it = other.children.constBegin(); it != other.children.constEnd(); ++it)
        for (const QString& name : *it)
            addOnce(children[it.key()], name);
    for (auto it = other.attributes.constBegin(); it != other.attributes.constEnd(); ++it)
        for (const QString& name : *it)
            addOnce(attributes[it.key()], name);
}

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
