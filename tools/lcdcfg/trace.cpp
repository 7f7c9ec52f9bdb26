// The recording observer: what the library tells as it reads, kept per
// document and per element.

#include "tools/lcdcfg/trace.h"

#include <QtCore/QFileInfo>

#include <algorithm>

namespace lcdcfg {

using namespace LCD::ConfigModel;

const AttributeTrace* ElementTrace::read(const QString& name) const {
    for (const AttributeTrace& a : reads)
        if (a.name == name) return &a;
    return nullptr;
}

const AttributeTrace* ElementTrace::read(QLatin1String name) const {
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
    QHash<int, int> number; // other's document numbers to this one's
    for (auto it = other.m_documentNumbers.constBegin(); it != other.m_documentNumbers.constEnd(); ++it) {
        const int mine = m_documentNumbers.value(it.key(), m_documentNumbers.size());
        m_documentNumbers.insert(it.key(), mine);
        number.insert(*it, mine);
    }
    const auto keyIn = [&](const ElementKey& k) {
        return ElementKey{number.value(k.document), k.line, k.column};
    };
    m_documents += other.m_documents;
    m_documentsRead += other.m_documentsRead;
    m_sites += other.m_sites;
    for (const auto& entry : other.m_index)
        m_index.emplace(keyIn(entry.first), entry.second + offset);
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
    for (const ElementKey& k : other.m_seenCells)
        m_seenCells.insert(keyIn(k));
    for (auto it = other.m_names.constBegin(); it != other.m_names.constEnd(); ++it)
        if (!m_names.contains(it.key())) m_names.insert(it.key(), *it);
    for (auto it = other.m_records.constBegin(); it != other.m_records.constEnd(); ++it)
        m_records.insert(it.key(), *it + offset);
    for (const auto& started : other.m_started)
        m_started.push_back({started.first, started.second + offset});
    for (const auto& option : other.m_options)
        m_options.push_back({option.first + offset, option.second + offset});
}

void Trace::documentStarted(const QString& path) {
    m_path = path;
    m_documentNumber = m_documentNumbers.value(path, m_documentNumbers.size());
    m_documentNumbers.insert(path, m_documentNumber);
    if (m_folderSite >= 0) m_sites[m_folderSite].document = QFileInfo(path).absolutePath();
    m_folderSite = -1;
    if (!m_keepDocuments && !m_documents.isEmpty()) m_documents.last().document = QDomDocument();
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
        if (nearName(e.tagName(), n)) {
            missing.near = e.tagName();
            missing.nearLine = e.lineNumber();
            missing.nearColumn = e.columnNumber();
        }
    m_missing.push_back(missing);
}

// The library names attributes and defaults with literals: one text each.
const QString& Trace::textOf(const char* literal) {
    auto it = m_literals.find(literal);
    if (it == m_literals.end() || *it != QLatin1String(literal)) // a reused buffer is read again
        it = m_literals.insert(literal, QString::fromUtf8(literal));
    return *it;
}

void Trace::attributeRead(const AttributeRead& read) {
    const QString& name = textOf(read.name);
    if (ElementTrace* t = record(read.element))
        t->reads.push_back(
            {name, read.present, read.raw, textOf(read.def), read.kind, read.stored, read.validNumber});
    Site& site = siteOf(read.element);
    site.values.insert(name, read.stored);
    if (read.present && !read.validNumber)
        m_badNumbers.push_back({m_path, site.line, site.column, name, read.raw, read.stored});
    if (!read.present) {
        const QDomNamedNodeMap attributes = read.element.attributes();
        for (int i = 0; i < attributes.count(); ++i)
            if (nearName(attributes.item(i).nodeName(), name))
                m_nearAttributes.push_back(
                    {m_path, site.line, site.column, name, attributes.item(i).nodeName()});
    }
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
        m_open << -1;
        return;
    }
    const Site& site = siteOf(record.element);
    const int at = int(&site - m_sites.constData());
    m_records.insert(m_place, at);
    m_started.push_back({record.kind, at});
    m_open << at;
    if (record.kind == RecordKind::Cell) { // every layout cell once, in reading order
        if (m_seenCells.insert(keyOf(record.element)).second)
            m_cells.push_back({m_path, site.line, site.column});
    }
    if (record.kind == RecordKind::Option) // the setting it is offered for is its parent
        m_options.push_back(
            {at, int(&siteOf(record.element.parentNode().toElement()) - m_sites.constData())});
}

void Trace::recordEnded(RecordKind) {
    m_place.resize(std::max(0, int(m_place.size()) - 3));
    if (!m_open.isEmpty()) m_open.removeLast();
}

// The names of a connector description.
void Trace::reportText(const QDomElement& element) {
    if (m_place.size() < 3 || RecordKind(m_place[m_place.size() - 3]) != RecordKind::ConnectorDescription)
        return;
    const Site& connector = m_sites[m_open.last()];
    const QDomElement names = element.parentNode().toElement();
    if (positionOf(names.parentNode().toElement()) != Position{connector.line, connector.column})
        return; // not the description's own names
    const bool shortName = names.tagName() == QLatin1String("ShortName");
    if (!shortName && names.tagName() != QLatin1String("Name")) return;
    ConnectorNames& n = m_names[connector.values.value(QStringLiteral("Type")).toInt()];
    const bool english = element.tagName() == QLatin1String("en");
    if (!english && element.tagName() != QLatin1String("zh_CN")) return;
    QString& slot = shortName ? (english ? n.shortEn : n.shortZhCN) : (english ? n.en : n.zhCN);
    if (slot.isEmpty()) slot = element.text().trimmed();
}

} // namespace lcdcfg
