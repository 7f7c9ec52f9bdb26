// The recording observer: what the library tells as it reads, kept per
// document and per element.

#include "tools/lcdcfg/trace.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstring>

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

// ---- the views onto the trace ------------------------------------------------

ElementTraces::const_iterator ElementTraces::cbegin() const {
    if (!m_trace) return cend();
    const int end = m_document + 1 < m_trace->m_documentBegins.size()
                        ? m_trace->m_documentBegins[m_document + 1]
                        : m_trace->m_entryCount;
    const_iterator it(m_trace, m_trace->m_documentBegins[m_document], end);
    it.skip();
    return it;
}

ElementTraces::const_iterator ElementTraces::cend() const {
    const int end = !m_trace ? 0
                    : m_document + 1 < m_trace->m_documentBegins.size()
                        ? m_trace->m_documentBegins[m_document + 1]
                        : m_trace->m_entryCount;
    return const_iterator(m_trace, end, end);
}

void ElementTraces::const_iterator::skip() {
    while (m_entry < m_end && !m_trace->entry(m_entry).isTrace) // a model's entry, a site only
        ++m_entry;
}

ElementTraces::const_iterator& ElementTraces::const_iterator::operator++() {
    ++m_entry;
    skip();
    return *this;
}

Position ElementTraces::const_iterator::key() const {
    const Site& site = m_trace->entry(m_entry).site;
    return {site.line, site.column};
}

const ElementTrace& ElementTraces::const_iterator::operator*() const {
    return m_trace->entry(m_entry).trace;
}

const ElementTrace* ElementTraces::find(const Position& at) const {
    const int i = m_trace ? m_trace->m_index.find({m_document, at.first, at.second}) : -1;
    return i >= 0 && m_trace->entry(i).isTrace ? &m_trace->entry(i).trace : nullptr;
}

const ElementTrace* DocumentTrace::at(const QDomElement& e) const {
    return elements.find(positionOf(e));
}

const AttributeReads& SiteValues::reads() const {
    static const AttributeReads none;
    return m_trace ? m_trace->entry(m_entry).trace.reads : none;
}

const QString* SiteValues::text() const {
    return m_trace && m_trace->entry(m_entry).hasText ? &m_trace->entry(m_entry).text : nullptr;
}

// The latest value of `name`, or null.
template <class Name> const QString* SiteValues::find(const Name& name) const {
    if (name == QLatin1String("#text")) return text();
    const AttributeReads& all = reads();
    for (const AttributeTrace* a = all.end(); a != all.begin();)
        if ((--a)->name == name) return &a->stored;
    return nullptr;
}

QString SiteValues::value(const QString& name) const {
    const QString* v = find(name);
    return v ? *v : QString();
}

QString SiteValues::value(QLatin1String name) const {
    const QString* v = find(name);
    return v ? *v : QString();
}

bool SiteValues::contains(const QString& name) const {
    return find(name);
}

bool SiteValues::contains(QLatin1String name) const {
    return find(name);
}

SiteValues::const_iterator SiteValues::cbegin() const {
    const_iterator it(this, 0);
    it.skip();
    return it;
}

SiteValues::const_iterator SiteValues::cend() const {
    return const_iterator(this, reads().size() + 1);
}

void SiteValues::const_iterator::skip() {
    const AttributeReads& reads = m_values->reads();
    for (; m_at < reads.size(); ++m_at) {
        const QString& name = reads.begin()[m_at].name;
        if (std::none_of(reads.begin() + m_at + 1, reads.end(),
                         [&](const AttributeTrace& later) { return later.name == name; }))
            return;
    }
    if (m_at == reads.size() && !m_values->text()) ++m_at;
}

SiteValues::const_iterator& SiteValues::const_iterator::operator++() {
    ++m_at;
    skip();
    return *this;
}

QString SiteValues::const_iterator::key() const {
    const AttributeReads& reads = m_values->reads();
    return m_at < reads.size() ? reads.begin()[m_at].name : QStringLiteral("#text");
}

const QString& SiteValues::const_iterator::value() const {
    const AttributeReads& reads = m_values->reads();
    return m_at < reads.size() ? reads.begin()[m_at].stored : *m_values->text();
}

// ---- the trace ---------------------------------------------------------------

Trace::Trace(Documents documents) : m_keepDocuments(documents == KeepDocuments) {}

Trace::~Trace() = default;

const DocumentTrace* Trace::document(const QString& path) const {
    const int number = m_documentNumbers.value(path, -1);
    return number < 0 ? nullptr : &m_documents[number];
}

void Trace::append(const Trace& other) {
    const int entries = m_entryCount;
    const int documents = m_documents.size();
    for (int d = 0; d < other.m_documents.size(); ++d) {
        DocumentTrace document = other.m_documents[d];
        document.elements.m_trace = this;
        document.elements.m_document = documents + d;
        if (!m_documentNumbers.contains(document.path))
            m_documentNumbers.insert(document.path, documents + d);
        m_documents.push_back(document);
        m_documentBegins.push_back(other.m_documentBegins[d] + entries);
    }
    m_documentsRead += other.m_documentsRead;
    for (int i = 0; i < other.m_entryCount; ++i) {
        const Entry& from = other.entry(i);
        const int at = newEntry();
        Entry& to = entry(at);
        to = from;
        to.trace.reads = AttributeReads();
        to.readRoom = 0;
        for (const AttributeTrace& read : from.trace.reads)
            addRead(to, read);
        to.site.values.m_trace = this;
        to.site.values.m_entry = at;
        if (from.document < 0) continue; // a model's folder
        to.document += documents;
        m_index.findOrInsert({to.document, to.site.line, to.site.column}, at);
    }
    for (int i : other.m_sites)
        m_sites.push_back(i + entries);
    for (int n = 0; n < other.m_tags.size(); ++n) {
        const int mine = m_tagNumbers.value(other.m_tags[n], m_tags.size());
        if (mine == m_tags.size()) {
            m_tagNumbers.insert(other.m_tags[n], mine);
            m_tags.push_back(other.m_tags[n]);
            m_tagged.push_back({});
        }
        for (int i : other.m_tagged[n])
            m_tagged[mine].push_back(i + entries);
    }
    QVector<int> places; // other's place numbers to this one's
    for (int p = 0; p < other.m_placeKeys.size(); ++p) {
        PlaceKey key = other.m_placeKeys[p];
        if (key.parent >= 0) key.parent = places[key.parent]; // a record's place comes after its parent's
        const int mine = m_places.findOrInsert(key, m_placeKeys.size());
        if (mine == m_placeKeys.size()) {
            m_placeKeys.push_back(key);
            m_placeSites.push_back(-1);
        }
        places.push_back(mine);
        if (other.m_placeSites[p] >= 0) m_placeSites[mine] = other.m_placeSites[p] + entries;
    }
    for (const auto& started : other.m_started)
        m_started.push_back({started.first, started.second + entries});
    for (const auto& option : other.m_options)
        m_options.push_back({option.first + entries, option.second + entries});
    m_missing += other.m_missing;
    m_failures += other.m_failures;
    m_badNumbers += other.m_badNumbers;
    m_nearAttributes += other.m_nearAttributes;
    m_cells += other.m_cells;
    for (auto it = other.m_names.constBegin(); it != other.m_names.constEnd(); ++it)
        if (!m_names.contains(it.key())) m_names.insert(it.key(), *it);
}

void Trace::documentStarted(const QString& path) {
    m_path = path;
    if (m_folderSite >= 0) entry(m_folderSite).site.document = QFileInfo(path).absolutePath();
    m_folderSite = -1;
    if (!m_keepDocuments && !m_documents.isEmpty()) m_documents.last().document = QDomDocument();
    m_document = m_documents.size();
    if (!m_documentNumbers.contains(path)) m_documentNumbers.insert(path, m_document);
    m_documentRead = false;
    DocumentTrace d;
    d.path = path;
    d.elements.m_trace = this;
    d.elements.m_document = m_document;
    m_documents.push_back(d);
    m_documentBegins.push_back(m_entryCount);
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

int Trace::newEntry() {
    if (std::size_t(m_entryCount) >> kEntryBits == m_entries.size())
        m_entries.push_back(std::make_unique<Entry[]>(kEntryMask + 1));
    return m_entryCount++;
}

// Readers take an element's values one after the other: the latest element
// is looked up once.
int Trace::entryOf(const QDomElement& e) {
    if (m_document < 0 || e.isNull()) return -1;
    const ElementKey key{m_document, e.lineNumber(), e.columnNumber()};
    if (key == m_last) return m_lastEntry;
    const int i = m_index.findOrInsert(key, m_entryCount);
    if (i == m_entryCount) {
        Entry& made = entry(newEntry());
        made.document = m_document;
        made.site.document = m_path;
        made.site.line = key.line;
        made.site.column = key.column;
        made.site.values.m_trace = this;
        made.site.values.m_entry = i;
    }
    m_last = key;
    m_lastEntry = i;
    return i;
}

ElementTrace* Trace::record(const QDomElement& e) {
    const int i = entryOf(e);
    if (i < 0) return nullptr;
    Entry& at = entry(i);
    at.isTrace = true;
    return &at.trace;
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

// The library names attributes and defaults with literals: one text each,
// found by the literal's address (its bytes checked, in case a buffer is
// reused for another name).
const QString& Trace::textOf(const char* literal) {
    static const QString none;
    if (!literal) return none;
    const int i = m_literalIndex.findOrInsert({literal}, int(m_literals.size()));
    if (i == int(m_literals.size())) m_literals.push_back({QByteArray(literal), QString::fromUtf8(literal)});
    Literal& known = m_literals[std::size_t(i)];
    if (std::strcmp(known.bytes.constData(), literal) != 0) // a reused buffer is read again
        known = {QByteArray(literal), QString::fromUtf8(literal)};
    return known.text;
}

// Texts read are kept once each, as copies of their own: a text shared with
// a parsed document would keep its memory after the document is let go.
const QString& Trace::interned(const QString& text) {
    static const QString null;
    static const QString empty = QLatin1String("");
    if (text.isEmpty()) return text.isNull() ? null : empty;
    auto it = m_texts.constFind(text);
    if (it == m_texts.constEnd()) it = m_texts.insert(QString(text.constData(), text.size()));
    return *it;
}

// A read joins its element's run of reads: in the run's room, else at the
// end of the last block. A run that is not at the end any more (a read of
// its element after another element's) moves there with room for as many
// reads again, so that a walk that comes back to an element costs no more
// per read.
void Trace::addRead(Entry& at, const AttributeTrace& read) {
    AttributeReads& run = at.trace.reads;
    if (run.m_size < at.readRoom) {
        run.m_data[run.m_size++] = read;
        return;
    }
    std::vector<AttributeTrace>* block = m_reads.empty() ? nullptr : &m_reads.back();
    const bool room = block && block->size() < block->capacity();
    if (room && (run.m_size == 0 || run.m_data + run.m_size == block->data() + block->size())) {
        if (run.m_size == 0) run.m_data = block->data() + block->size();
        block->push_back(read);
        at.readRoom = ++run.m_size;
        return;
    }
    const int size = run.m_size + 1;
    const int reserved = run.m_size == 0 ? 1 : 2 * size;
    if (!block || int(block->capacity() - block->size()) < reserved) {
        m_reads.emplace_back();
        m_reads.back().reserve(std::size_t(std::max(kReadBlock, reserved)));
        block = &m_reads.back();
    }
    const AttributeTrace* from = run.m_data; // within the capacity, no block moves
    run.m_data = block->data() + block->size();
    for (int i = 0; i < run.m_size; ++i)
        block->push_back(from[i]);
    block->push_back(read);
    block->resize(block->size() + std::size_t(reserved - size));
    run.m_size = size;
    at.readRoom = reserved;
}

int Trace::siteOf(const QDomElement& element) {
    const int i = entryOf(element);
    if (i < 0) return -1;
    Entry& at = entry(i);
    if (at.isSite) return i;
    at.isSite = true;
    const QString tag = element.tagName();
    int number = m_tagNumbers.value(tag, -1);
    if (number < 0) {
        number = m_tags.size();
        m_tags.push_back(QString(tag.constData(), tag.size()));
        m_tagNumbers.insert(m_tags.last(), number);
        m_tagged.push_back({});
    }
    at.site.tag = m_tags[number];
    m_tagged[number].push_back(i);
    m_sites.push_back(i);
    if (!m_documentRead) m_documentsRead.insert(m_path);
    m_documentRead = true;
    return i;
}

void Trace::attributeRead(const AttributeRead& read) {
    const int i = siteOf(read.element);
    if (i < 0) return;
    Entry& at = entry(i);
    at.isTrace = true;
    const QString& name = textOf(read.name);
    const QString& raw = interned(read.raw);
    addRead(at, {name, read.present, raw, textOf(read.def), read.kind,
                 read.stored.isNull() == read.raw.isNull() && read.stored == read.raw ? raw
                                                                                      : interned(read.stored),
                 read.validNumber});
    const Site& site = at.site;
    if (read.present && !read.validNumber)
        m_badNumbers.push_back({m_path, site.line, site.column, name, read.raw, read.stored});
    if (!read.present) {
        const QDomNamedNodeMap attributes = read.element.attributes();
        for (int a = 0; a < attributes.count(); ++a)
            if (nearName(attributes.item(a).nodeName(), name))
                m_nearAttributes.push_back(
                    {m_path, site.line, site.column, name, attributes.item(a).nodeName()});
    }
}

void Trace::textRead(const QDomElement& element, ReadKind kind) {
    const int i = siteOf(element);
    if (i < 0) return;
    Entry& at = entry(i);
    at.isTrace = true;
    at.trace.textRead = true;
    at.trace.textNumber = at.trace.textNumber || kind == ReadKind::Int;
    at.text = interned(element.text().trimmed());
    at.hasText = true;
    reportText(element);
}

void Trace::recordStarted(const RecordRead& record) {
    const int parent = m_open.isEmpty() ? -1 : m_open.last().place;
    const int place =
        m_places.findOrInsert({parent, int(record.kind), record.index, record.key}, m_placeKeys.size());
    if (place == m_placeKeys.size()) {
        m_placeKeys.push_back({parent, int(record.kind), record.index, record.key});
        m_placeSites.push_back(-1);
    }
    if (record.element.isNull()) { // a model: its folder is that of its first file
        m_folderSite = newEntry();
        entry(m_folderSite).isSite = true;
        m_sites.push_back(m_folderSite);
        m_placeSites[place] = m_folderSite;
        m_open.push_back({place, record.kind, -1});
        return;
    }
    const int at = siteOf(record.element);
    m_placeSites[place] = at;
    m_open.push_back({place, record.kind, at});
    if (at < 0) return;
    m_started.push_back({record.kind, at});
    Entry& site = entry(at);
    if (record.kind == RecordKind::Cell && !site.cellSeen) { // every layout cell once, in reading order
        site.cellSeen = true;
        m_cells.push_back({m_path, site.site.line, site.site.column});
    }
    if (record.kind != RecordKind::Option) return;
    // the setting it is offered for is its parent
    if (const int setting = siteOf(record.element.parentNode().toElement()); setting >= 0)
        m_options.push_back({at, setting});
}

void Trace::recordEnded(RecordKind) {
    if (!m_open.isEmpty()) m_open.removeLast();
}

// The names of a connector description.
void Trace::reportText(const QDomElement& element) {
    if (m_open.isEmpty() || m_open.last().kind != RecordKind::ConnectorDescription || m_open.last().site < 0)
        return;
    const Site& connector = entry(m_open.last().site).site;
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
