#include "tools/lcdcfg/sites.h"

#include <QtCore/QFileInfo>

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

// "Vrn/Device/Slots": the element's ancestors and itself.
QString pathOf(const QDomElement& element) {
    QStringList tags;
    for (QDomNode n = element; n.isElement(); n = n.parentNode())
        tags.prepend(n.toElement().tagName());
    return tags.join(QLatin1Char('/'));
}

QString keyOf(const QString& document, int line, int column) {
    return QStringLiteral("%1:%2:%3").arg(document).arg(line).arg(column);
}

// Edit distance, case ignored, up to `limit` (anything larger is limit + 1).
int distance(const QString& a, const QString& b, int limit) {
    if (qAbs(a.size() - b.size()) > limit) return limit + 1;
    QVector<int> row(b.size() + 1);
    for (int j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int above = row[j];
            row[j] = qMin(qMin(row[j] + 1, row[j - 1] + 1),
                          diagonal + (a[i - 1].toLower() == b[j - 1].toLower() ? 0 : 1));
            diagonal = above;
        }
    }
    return row[b.size()];
}

// A name a letter or two (for longer names) away from `wanted`, case aside.
bool near(const QString& name, const QString& wanted) {
    const int limit = wanted.size() < 5 ? 1 : 2;
    return name != wanted && distance(name, wanted, limit) <= limit;
}

} // namespace

const Site* Sites::siteAt(const QString& document, int line, int column) const {
    auto it = m_index.constFind(keyOf(document, line, column));
    return it == m_index.constEnd() ? nullptr : &m_sites[*it];
}

QVector<const Site*> Sites::find(const std::function<bool(const QString&)>& document, const QString& tag,
                                 Match values) const {
    QVector<const Site*> hits;
    for (const Site& site : m_sites) {
        if ((!tag.isEmpty() && site.tag != tag) || !document(site.document)) continue;
        bool all = true;
        for (const auto& value : values)
            all = all && site.values.value(QLatin1String(value.first)) == value.second &&
                  site.values.contains(QLatin1String(value.first));
        if (all) hits << &site;
    }
    return hits;
}

const Missing* Sites::lastMissing(const QString& document, const QString& name) const {
    for (auto it = m_missing.rbegin(); it != m_missing.rend(); ++it)
        if (it->document == document && it->name == name) return &*it;
    return nullptr;
}

void Sites::documentStarted(const QString& path) {
    m_document = QFileInfo(path).absoluteFilePath();
}

void Sites::documentParsed(const DocumentRead& read) {
    if (!read.ok) m_failures.push_back({m_document, read.line, read.column, read.error, false});
}

void Sites::documentRejected(const QDomElement& root, const QString& error) {
    m_failures.push_back({m_document, root.lineNumber(), root.columnNumber(), error, true});
}

bool Sites::found(const QString& document, int line, int column) const {
    return m_found.contains(keyOf(document, line, column));
}

void Sites::elementFound(const QDomElement& element) {
    m_found.insert(keyOf(m_document, element.lineNumber(), element.columnNumber()));
}

void Sites::elementMissing(const QDomElement& parent, const char* name) {
    const QString child = QString::fromUtf8(name);
    Missing missing;
    missing.document = m_document;
    missing.line = parent.lineNumber();
    missing.column = parent.columnNumber();
    missing.name = child;
    missing.path = pathOf(parent) + '/' + child;
    for (QDomElement e = parent.firstChildElement(); !e.isNull() && missing.near.isEmpty();
         e = e.nextSiblingElement())
        if (near(e.tagName(), child)) {
            missing.near = e.tagName();
            missing.nearLine = e.lineNumber();
            missing.nearColumn = e.columnNumber();
        }
    m_missing.push_back(missing);
}

void Sites::attributeRead(const AttributeRead& read) {
    Site& site = siteOf(read.element);
    const QString name = QString::fromUtf8(read.name);
    site.values.insert(name, read.stored);
    if (read.present && !read.validNumber)
        m_badNumbers.push_back({m_document, site.line, site.column, name, read.raw, read.stored});
    if (read.present) return;
    const QDomNamedNodeMap attributes = read.element.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        if (near(attributes.item(i).nodeName(), name))
            m_nearAttributes.push_back(
                {m_document, site.line, site.column, name, attributes.item(i).nodeName()});
}

void Sites::textRead(const QDomElement& element) {
    siteOf(element).values.insert(QStringLiteral("#text"), element.text().trimmed());
}

Site& Sites::siteOf(const QDomElement& element) {
    const QString key = keyOf(m_document, element.lineNumber(), element.columnNumber());
    auto it = m_index.constFind(key);
    if (it != m_index.constEnd()) return m_sites[*it];
    m_index.insert(key, m_sites.size());
    m_sites.push_back({m_document, element.tagName(), element.lineNumber(), element.columnNumber(), {}});
    return m_sites.last();
}

} // namespace lcdcfg
