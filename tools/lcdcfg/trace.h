#pragma once

// The recording observer of every verb that asks where things were read
// (check, report, lint, explain, reference): per document, every element a
// walk reached, every lookup that found nothing, every attribute read (with
// its text, default and stored value) and every text read. Elements are keyed
// by their position in the document, which is unique per element. On top of
// that, the views check's rules and report's page ask for: the sites values
// were taken from, failed lookups with the element probably meant, numbers
// that did not convert, the layout cells and the connector names.

#include <QtCore/QHash>
#include <QtCore/QPair>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtXml/QDomDocument>

#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "common/loadobserver.h"
#include "tools/lcdcfg/flatindex.h"

namespace lcdcfg {

class Tree;
class Trace;

// One attribute read as the reader saw it.
struct AttributeTrace {
    QString name;
    bool present = false;
    QString raw;
    QString def;
    LCD::ConfigModel::ReadKind kind = LCD::ConfigModel::ReadKind::Text;
    QString stored;
    bool validNumber = true;
};

// The attributes read on one element, in reading order.
class AttributeReads {
public:
    const AttributeTrace* begin() const { return m_data; }
    const AttributeTrace* end() const { return m_data + m_size; }
    bool isEmpty() const { return m_size == 0; }
    int size() const { return m_size; }

private:
    friend class Trace;
    AttributeTrace* m_data = nullptr; // in the trace's store of reads
    int m_size = 0;
};

// What the readers did with one element.
struct ElementTrace {
    bool found = false;      // a walk reached it
    bool textRead = false;   // its text was read
    bool textNumber = false; // ... and converted as a decimal
    bool lookedInto = false; // a lookup below it was made (found or not)
    AttributeReads reads;
    QStringList missing; // names looked up below it that were not there

    // The first read of `name`, or null.
    const AttributeTrace* read(const QString& name) const;
    const AttributeTrace* read(QLatin1String name) const;
};

using Position = QPair<int, int>; // line, column of an element

// The element traces of one document by position, in the order the readers
// first touched them.
class ElementTraces {
public:
    class const_iterator {
    public:
        Position key() const;
        const ElementTrace& operator*() const;
        const ElementTrace* operator->() const { return &**this; }
        const_iterator& operator++();
        bool operator==(const const_iterator& o) const { return m_entry == o.m_entry; }
        bool operator!=(const const_iterator& o) const { return m_entry != o.m_entry; }

    private:
        friend class ElementTraces;
        const_iterator(const Trace* trace, int entry, int end) : m_trace(trace), m_entry(entry), m_end(end) {}
        void skip(); // to the next element trace of the document, or the end
        const Trace* m_trace;
        int m_entry;
        int m_end;
    };
    const_iterator cbegin() const;
    const_iterator cend() const;
    const_iterator begin() const { return cbegin(); }
    const_iterator end() const { return cend(); }
    const ElementTrace* find(const Position& at) const;

private:
    friend class Trace;
    const Trace* m_trace = nullptr;
    int m_document = -1; // the document's number in the trace
};

struct DocumentTrace {
    QString path; // absolute (the tree names every document so)
    bool ok = false;
    QString error;
    int line = 0;
    int column = 0;
    QDomDocument document;
    QString rejected; // the root check's text when the root was refused
    ElementTraces elements;

    const ElementTrace* at(const QDomElement& e) const;
};

// ---- sites: where the records' values were read ---------------------------
// Records carry no positions; a rule finds the element an id came from here.
// The loads of one document share its sites.

// The values a reader took from one element: each attribute read, as
// stored (defaults too; an attribute read again holds its latest value),
// and "#text" for the text.
class SiteValues {
public:
    QString value(const QString& name) const;
    QString value(QLatin1String name) const;
    bool contains(const QString& name) const;
    bool contains(QLatin1String name) const;

    // Each name once with its value, in reading order, the text last.
    class const_iterator {
    public:
        QString key() const;
        const QString& value() const;
        const_iterator& operator++();
        bool operator==(const const_iterator& o) const { return m_at == o.m_at; }
        bool operator!=(const const_iterator& o) const { return m_at != o.m_at; }

    private:
        friend class SiteValues;
        const_iterator(const SiteValues* values, int at) : m_values(values), m_at(at) {}
        void skip(); // past the reads of a name read again later
        const SiteValues* m_values;
        int m_at; // a read, the text (at the number of reads), or the end (one past)
    };
    const_iterator cbegin() const;
    const_iterator cend() const;

private:
    friend class Trace;
    const AttributeReads& reads() const;
    const QString* text() const; // null when not read
    template <class Name> const QString* find(const Name& name) const;

    const Trace* m_trace = nullptr; // none: a place that no reader took values from
    int m_entry = -1;
};

// One element a reader took values from.
struct Site {
    QString document; // absolute, as the tree reports it
    QString tag;
    int line = 0;
    int column = 0;
    SiteValues values;
};

// One step of a record's place in its component: its kind, the position it
// takes in its list (or its key), and the second half of a two-part key.
struct Step {
    LCD::ConfigModel::RecordKind kind;
    int index = 0;
    int key = 0;
};
using RecordPath = QVector<Step>;

// A child lookup that found nothing: at the parent, with the missing path.
struct Missing {
    QString document;
    int line = 0;
    int column = 0;
    QString name; // the missing child
    QString path; // e.g. "Vrn/Device"
    // A child of the parent whose name is one or two letters off, when
    // there is one: the element the author probably meant.
    QString near;
    int nearLine = 0;
    int nearColumn = 0;
};

// An attribute read as absent where the element has one a letter or two away.
struct NearAttribute {
    QString document;
    int line = 0;
    int column = 0;
    QString name; // looked for
    QString near; // written
};

// A document that could not be opened, parsed, or whose root was refused.
struct DocumentFailure {
    QString document;
    int line = 0;
    int column = 0;
    QString error;
    bool rejected = false; // parsed, but the root check failed
};

// A number attribute whose text does not convert: the reader stored `stored`.
struct BadNumber {
    QString document;
    int line = 0;
    int column = 0;
    QString name;
    QString raw;
    QString stored;
};

// A place in a document as the loader named it (report's layout cells).
struct Place {
    QString document;
    int line = 0;
    int column = 0;
};

// The names of a connector type, from its description's text reads.
struct ConnectorNames {
    QString en, zhCN, shortEn, shortZhCN;
};

class Trace : public LCD::ConfigModel::LoadObserver {
public:
    // A trace for checks only lets each document go once it is read (its
    // DocumentTrace::document is null): what the rules ask for stays, the
    // setting of each option included (options()).
    enum Documents { KeepDocuments, DropDocuments };
    explicit Trace(Documents documents = KeepDocuments);
    ~Trace() override;
    Trace(const Trace&) = delete; // its views point into it
    Trace& operator=(const Trace&) = delete;

    const QVector<DocumentTrace>& documents() const { return m_documents; }
    const DocumentTrace* document(const QString& path) const;

    // -- sites
    const QVector<Missing>& missing() const { return m_missing; }
    const QVector<DocumentFailure>& failures() const { return m_failures; }
    const QVector<BadNumber>& badNumbers() const { return m_badNumbers; }
    const QVector<NearAttribute>& nearAttributes() const { return m_nearAttributes; }
    // The site of the element at this place, or null.
    const Site* siteAt(const QString& document, int line, int column) const;
    // Every site whose document satisfies `document`, whose tag is `tag` (any
    // when empty) and that holds every (name, value) pair, in reading order.
    using Match = std::initializer_list<std::pair<const char*, QString>>;
    QVector<const Site*> find(const std::function<bool(const QString&)>& document, const QString& tag,
                              Match values) const;
    // The latest lookup of `name` that failed in `document`, or null.
    const Missing* lastMissing(const QString& document, const QString& name) const;
    // Whether a reader reached the element at this place.
    bool found(const QString& document, int line, int column) const;
    // Whether a reader took anything from `document` (a record, a value).
    bool readFrom(const QString& document) const { return m_documentsRead.contains(document); }
    // The element the record at `path` was read from, as the library told it
    // (a model's is its folder, at line 0); null when no record was read there.
    const Site* record(const RecordPath& path) const;
    // The element of every record of `kind` the library started, in reading
    // order, kept or not (a rejected card too).
    QVector<const Site*> records(LCD::ConfigModel::RecordKind kind) const;
    // Every option record's element with the element that holds it (the
    // setting), in reading order.
    QVector<QPair<const Site*, const Site*>> options() const;
    // The attribute `name` as read on the element of `site`, or null.
    const AttributeTrace* readAt(const Site* site, const QString& name) const;

    // -- what report draws that the records do not carry
    const QVector<Place>& cells() const { return m_cells; } // every layout cell, in reading order
    const QHash<int, ConnectorNames>& connectorNames() const { return m_names; } // by connector type
    QHash<QString, int> connectorDocuments() const; // document -> type of its first description
    QHash<QString, int> cardDocuments() const;      // document -> model of its first card

    // Adds what `other` recorded after what this one did, as if one trace
    // had seen both loads (the language server keeps one trace per part and
    // joins them).
    void append(const Trace& other);

    void documentStarted(const QString& path) override;
    void documentParsed(const LCD::ConfigModel::DocumentRead& read) override;
    void documentRejected(const QDomElement& root, const QString& error) override;
    void elementFound(const QDomElement& element) override;
    void elementMissing(const QDomElement& parent, const char* name) override;
    void attributeRead(const LCD::ConfigModel::AttributeRead& read) override;
    void textRead(const QDomElement& element, LCD::ConfigModel::ReadKind kind) override;
    void recordStarted(const LCD::ConfigModel::RecordRead& record) override;
    void recordEnded(LCD::ConfigModel::RecordKind kind) override;

private:
    friend class ElementTraces;
    friend class SiteValues;

    // Everything the readers did with one element, or a model's folder: its
    // site and its element trace in one. An element is one entry per
    // document, found by its position; a trace sees each document once.
    struct Entry {
        Site site;          // what a site needs is set when it becomes one
        ElementTrace trace; // its reads are the site's values too
        QString text;       // the text read, trimmed ("#text")
        int document = -1;  // its document's number (-1: a model)
        int readRoom = 0;   // the reads its run has room for where it is
        bool isSite = false;
        bool isTrace = false;
        bool hasText = false;
        bool cellSeen = false;
    };
    // An element of a document: the document's number, the element's line and column.
    struct ElementKey {
        int document, line, column;
        bool operator==(const ElementKey& o) const {
            return document == o.document && line == o.line && column == o.column;
        }
        quint64 hash() const {
            return mixBits((quint64(quint32(line)) << 32 | quint32(column)) ^
                           quint64(quint32(document)) * 0x9E3779B97F4A7C15ull);
        }
    };
    // A record's place: the place of the record above it (-1: none), its kind, index and key.
    struct PlaceKey {
        int parent, kind, index, key;
        bool operator==(const PlaceKey& o) const {
            return parent == o.parent && kind == o.kind && index == o.index && key == o.key;
        }
        quint64 hash() const {
            return mixBits((quint64(quint32(parent)) << 32 | quint32(index)) ^
                           (quint64(quint32(kind)) << 32 | quint32(key)) * 0x9E3779B97F4A7C15ull);
        }
    };
    // A literal the library named something with, by its address.
    struct LiteralKey {
        const char* literal;
        bool operator==(const LiteralKey& o) const { return literal == o.literal; }
        quint64 hash() const { return mixBits(quint64(quintptr(literal))); }
    };
    struct Literal {
        QByteArray bytes;
        QString text;
    };
    // A record being read: its place, its kind and its site (-1 for a model).
    struct Open {
        int place;
        LCD::ConfigModel::RecordKind kind;
        int site;
    };

    Entry& entry(int i) { return m_entries[std::size_t(i) >> kEntryBits][std::size_t(i) & kEntryMask]; }
    const Entry& entry(int i) const {
        return m_entries[std::size_t(i) >> kEntryBits][std::size_t(i) & kEntryMask];
    }
    int newEntry();
    // The entry of `e` in the current document, made when there is none (-1: no document).
    int entryOf(const QDomElement& e);
    ElementTrace* record(const QDomElement& e);
    int siteOf(const QDomElement& element);
    void addRead(Entry& at, const AttributeTrace& read);
    void reportText(const QDomElement& element);
    const QString& textOf(const char* literal);
    const QString& interned(const QString& text);
    // The entry of the element at this place of the first document read from `document`, or -1.
    int entryAt(const QString& document, int line, int column) const;
    // The first record of `kind` per document, with the value `id` it read.
    QHash<QString, int> firstIds(LCD::ConfigModel::RecordKind kind, const QString& id) const;

    static constexpr std::size_t kEntryBits = 10; // entries per block: 1024
    static constexpr std::size_t kEntryMask = (std::size_t(1) << kEntryBits) - 1;
    static constexpr int kReadBlock = 4096; // reads per block of the store

    bool m_keepDocuments = true;
    QVector<DocumentTrace> m_documents;
    QVector<int> m_documentBegins;         // each document's first entry
    QString m_path;                        // the current document
    int m_document = -1;                   // its number
    bool m_documentRead = false;           // a site of it was made
    QHash<QString, int> m_documentNumbers; // path -> its first number
    QSet<QString> m_documentsRead;

    // Entries in blocks that never move, so that sites and element traces keep their places.
    std::vector<std::unique_ptr<Entry[]>> m_entries;
    int m_entryCount = 0;
    FlatIndex<ElementKey> m_index; // element -> its entry
    ElementKey m_last{-1, 0, 0};   // the element of the latest event, and its entry
    int m_lastEntry = -1;
    // Reads in blocks that never move; an element's reads are one run in one
    // block (moved to the end when a read of it follows another element's).
    std::vector<std::vector<AttributeTrace>> m_reads;

    QVector<int> m_sites;                 // entries that are sites, in reading order
    QHash<QString, int> m_tagNumbers;     // tag -> its number
    QVector<QVector<int>> m_tagged;       // per tag number, its sites in reading order
    QVector<QString> m_tags;              // per tag number, the tag
    FlatIndex<LiteralKey> m_literalIndex; // textOf()
    std::deque<Literal> m_literals;       // (its texts do not move)
    QSet<QString> m_texts;                // interned()

    FlatIndex<PlaceKey> m_places;  // a record's place -> its number
    QVector<PlaceKey> m_placeKeys; // per place number
    QVector<int> m_placeSites;     // per place number, the site of the latest record read there
    QVector<Open> m_open;          // the records being read
    QVector<QPair<LCD::ConfigModel::RecordKind, int>> m_started; // every record read: its kind and site
    QVector<QPair<int, int>> m_options;                          // every option's site and its setting's
    int m_folderSite = -1;                                       // a model whose folder is not known yet

    QVector<Missing> m_missing;
    QVector<DocumentFailure> m_failures;
    QVector<BadNumber> m_badNumbers;
    QVector<NearAttribute> m_nearAttributes;
    QVector<Place> m_cells;
    QHash<int, ConnectorNames> m_names;
};

// The key of an element in a document trace.
inline Position positionOf(const QDomElement& e) {
    return {e.lineNumber(), e.columnNumber()};
}

// Every element of `document`, root first, in document order.
template <class F> void forEachElement(const QDomDocument& document, F&& f) {
    QVector<QDomElement> pending{document.documentElement()};
    while (!pending.isEmpty()) {
        const QDomElement e = pending.takeLast();
        if (e.isNull()) continue;
        f(e);
        for (QDomElement c = e.lastChildElement(); !c.isNull(); c = c.previousSiblingElement())
            pending << c;
    }
}

// The tag path of an element from the root: "Vrn/Device/Slots".
QString elementPath(const QDomElement& e);

// What the readers know, gathered from traces: per element path the names of
// the children they looked for or reached and the attributes they read.
struct Vocabulary {
    QHash<QString, QStringList> children;   // parent path -> child names
    QHash<QString, QStringList> attributes; // element path -> attribute names
    void add(const Trace& trace);
    void add(const Vocabulary& other); // the same as adding the traces `other` was made of
    bool operator==(const Vocabulary& o) const {
        return children == o.children && attributes == o.attributes;
    }
};

// The closest of `names` to `name` (case-insensitive edit distance), when it
// is near enough to be a misspelling of it; empty otherwise.
QString closest(const QString& name, const QStringList& names);
// The case-insensitive edit distance of two names.
int editDistance(const QString& a, const QString& b);
// A name a letter or two (for longer names) away from `wanted`, case aside.
bool nearName(const QString& name, const QString& wanted);

// ---- where a value came from ----------------------------------------------

// Where the value a reader took from `attribute` of the element of `site`
// (or of `e`) came from: "FILE:LINE" when the file states it, "default" when
// a reader read it absent, "not read" when no reader asked, "-" for no element.
QString sourceOf(const Tree& tree, const Trace& trace, const Site* site, const QString& attribute);
QString sourceOf(const Tree& tree, const Trace& trace, const QDomElement& e, const QString& attribute);

// The kind of description file a document of the tree is ("device-slot",
// "subcard", "connector", ...), from the part that opened it and its name or
// first element. Empty when unknown.
QString documentKind(const Tree& tree, const DocumentTrace& document);

} // namespace lcdcfg
