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

} // namespace

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

void Sites::elementMissing(const QDomElement& parent, const char* name) {
    const QString child = QString::fromUtf8(name);
    m_missing.push_back(
        {m_document, parent.lineNumber(), parent.columnNumber(), child, pathOf(parent) + '/' + child});
}

void Sites::attributeRead(const AttributeRead& read) {
    Site& site = siteOf(read.element);
    if (read.present) site.values.insert(QString::fromUtf8(read.name), read.raw);
}

void Sites::textRead(const QDomElement& element) {
    siteOf(element).values.insert(QStringLiteral("#text"), element.text().trimmed());
}

Site& Sites::siteOf(const QDomElement& element) {
    const QString key =
        QStringLiteral("%1:%2:%3").arg(m_document).arg(element.lineNumber()).arg(element.columnNumber());
    auto it = m_index.constFind(key);
    if (it != m_index.constEnd()) return m_sites[*it];
    m_index.insert(key, m_sites.size());
    m_sites.push_back({m_document, element.tagName(), element.lineNumber(), element.columnNumber(), {}});
    return m_sites.last();
}

} // namespace lcdcfg
