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

#include <functional>
#include <initializer_list>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "common/loadobserver.h"

namespace lcdcfg {

class Tree;

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

// What the readers did with one element.
struct ElementTrace {
    bool found = false;      // a walk reached it
    bool textRead = false;   // its text was read
    bool textNumber = false; // ... and converted as a decimal
    bool lookedInto = false; // a lookup below it was made (found or not)
    QVector<AttributeTrace> reads;
    QStringList missing; // names looked up below it that were not there

    const AttributeTrace* read(const QString& name) const;
    const AttributeTrace* read(QLatin1String name) const;
};

using Position = QPair<int, int>; // line, column of an element

struct DocumentTrace {
    QString path; // absolute (the tree names every document so)
    bool ok = false;
    QString error;
    int line = 0;
    int column = 0;
    QDomDocument document;
    QString rejected; // the root check's text when the root was refused
    QHash<Position, ElementTrace> elements;

    const ElementTrace* at(const QDomElement& e) const;
};

// ---- sites: where the records' values were read ---------------------------
// Records carry no positions; a rule finds the element an id came from here.
// The loads of one document share its sites.

// One element a reader took values from.
struct Site {
    QString document; // absolute, as the tree reports it
    QString tag;
    int line = 0;
    int column = 0;
    QHash<QString, QString> values; // attributes read, as stored (defaults too); "#text" for the text
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
    explicit Trace(Documents documents = KeepDocuments) : m_keepDocuments(documents == KeepDocuments) {}

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
    ElementTrace* record(const QDomElement& e);
    Site& siteOf(const QDomElement& element);
    void reportText(const QDomElement& element);
    const QString& textOf(const char* literal);
    // The first record of `kind` per document, with the value `id` it read.
    QHash<QString, int> firstIds(LCD::ConfigModel::RecordKind kind, const QString& id) const;

    // An element of a document: the document's number, the element's line and column.
    struct ElementKey {
        int document, line, column;
        bool operator==(const ElementKey& o) const {
            return document == o.document && line == o.line && column == o.column;
        }
    };
    struct KeyHash {
        std::size_t operator()(const ElementKey& k) const {
            return std::hash<quint64>()(quint64(quint32(k.line)) << 32 | quint32(k.column)) ^
                   std::size_t(k.document) * 0x9E3779B97F4A7C15ull;
        }
    };
    ElementKey keyOf(const QDomElement& e) const {
        return {m_documentNumber, e.lineNumber(), e.columnNumber()};
    }

    bool m_keepDocuments = true;
    QVector<DocumentTrace> m_documents;
    QString m_path; // the current document
    int m_documentNumber = -1;
    QHash<QString, int> m_documentNumbers; // path -> number
    QSet<QString> m_documentsRead;
    QHash<const char*, QString> m_literals; // textOf()
    QVector<Site> m_sites;
    std::unordered_map<ElementKey, int, KeyHash> m_index; // element to its site
    QHash<QString, QVector<int>> m_tags;                  // tag to its sites, in reading order
    QVector<Missing> m_missing;
    QVector<DocumentFailure> m_failures;
    QVector<BadNumber> m_badNumbers;
    QVector<NearAttribute> m_nearAttributes;
    QVector<Place> m_cells;
    std::unordered_set<ElementKey, KeyHash> m_seenCells;
    QHash<int, ConnectorNames> m_names;
    QVector<int> m_place;               // the records being read: kind, index, key each
    QVector<int> m_open;                // their sites (-1 for a model)
    QHash<QVector<int>, int> m_records; // a record's place to its site
    QVector<QPair<LCD::ConfigModel::RecordKind, int>> m_started; // every record read: its kind and site
    QVector<QPair<int, int>> m_options;                          // every option's site and its setting's
    int m_folderSite = -1;                                       // a model whose folder is not known yet
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
