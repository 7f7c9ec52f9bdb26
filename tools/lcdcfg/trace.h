#pragma once

// The recording observer shared by lint, explain and reference: per document,
// every element a walk reached, every lookup that found nothing, every
// attribute read (with its text, default and stored value) and every text
// read. Elements are keyed by their position in the document, which is
// unique per element.

#include <QtCore/QHash>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtXml/QDomDocument>

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
    bool lookedInto = false; // a lookup below it was made (found or not)
    QVector<AttributeTrace> reads;
    QStringList missing; // names looked up below it that were not there

    const AttributeTrace* read(const QString& name) const;
};

using Position = QPair<int, int>; // line, column of an element

struct DocumentTrace {
    QString path; // absolute
    bool ok = false;
    QString error;
    int line = 0;
    int column = 0;
    QDomDocument document;
    QString rejected; // the root check's text when the root was refused
    QHash<Position, ElementTrace> elements;

    const ElementTrace* at(const QDomElement& e) const;
};

class Trace : public LCD::ConfigModel::LoadObserver {
public:
    const QVector<DocumentTrace>& documents() const { return m_documents; }
    const DocumentTrace* document(const QString& path) const;

    void documentStarted(const QString& path) override;
    void documentParsed(const LCD::ConfigModel::DocumentRead& read) override;
    void documentRejected(const QDomElement& root, const QString& error) override;
    void elementFound(const QDomElement& element) override;
    void elementMissing(const QDomElement& parent, const char* name) override;
    void attributeRead(const LCD::ConfigModel::AttributeRead& read) override;
    void textRead(const QDomElement& element) override;

private:
    ElementTrace* record(const QDomElement& e);

    QVector<DocumentTrace> m_documents;
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
// the children they looked for or reached and the attributes they read, and
// how the texts read there look.
struct Vocabulary {
    QHash<QString, QStringList> children;   // parent path -> child names
    QHash<QString, QStringList> attributes; // element path -> attribute names
    // element path -> texts read there that are decimal integers, and others
    QHash<QString, QPair<int, int>> texts;
    void add(const Trace& trace);
    // Whether the readers take the text of elements at `path` as a number:
    // the observer says only that a text was read, so a path counts as a
    // number when most texts read there are decimal integers (names are
    // read as texts, the HDR option values as numbers).
    bool textIsNumber(const QString& path) const;
};

// The closest of `names` to `name` (case-insensitive edit distance), when it
// is near enough to be a misspelling of it; empty otherwise.
QString closest(const QString& name, const QStringList& names);

// ---- where a value came from ----------------------------------------------

// The elements of the traced documents below `under` (a path relative to the
// tree's root, "" for all) that match `pattern`, in load and document order.
// A pattern is a tag path matched against the end of the element's path,
// each step a name or "*" with conditions on its attributes:
// "Slot[Index=9]/Subcards/Subcard"; a leading "/" anchors it at the root.
// Conditions compare numbers as numbers ("09" is 9).
QVector<QDomElement> findElements(const Tree& tree, const Trace& trace, const QString& under,
                                  const QString& pattern);
QDomElement findElement(const Tree& tree, const Trace& trace, const QString& under, const QString& pattern);

// Where the value a reader took from `attribute` of `e` came from:
// "FILE:LINE" when the file states it, "default" when a reader read it
// absent, "not read" when no reader asked, "-" for a null element.
QString sourceOf(const Tree& tree, const Trace& trace, const QDomElement& e, const QString& attribute);

// The kind of description file a document of the tree is ("device-slot",
// "subcard", "connector", ...), from the part that opened it and its name or
// first element. Empty when unknown.
QString documentKind(const Tree& tree, const DocumentTrace& document);

} // namespace lcdcfg
