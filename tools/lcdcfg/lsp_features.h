#pragma once

// What the language server answers about a place in a document: the element
// and attribute under the cursor (from the text as typed, well-formed or
// not), hover text, completions, and the ids one file names in another with
// where each is defined and referenced.

#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <cstddef>

namespace lcdcfg {

class TreeChecks;
class Workspace;

struct ScannedAttribute {
    QString name;
    QString value;
    int start = 0;      // offset of the name
    int valueStart = 0; // offset of the value (after the quote)
    int end = 0;        // offset after the closing quote
};

// A start tag as the text has it.
struct ScannedElement {
    QString tag;
    QString path;  // "Vrn/Device/Slots"
    int index = 0; // in document order, the root 0
    int start = 0; // offset of '<'
    int end = 0;   // offset after '>'
    QVector<ScannedAttribute> attributes;
};

// Every start tag of `text` up to the first error, and the line starts.
struct ScannedText {
    QVector<ScannedElement> elements;
    QVector<int> lines; // offset of each line's start
    explicit ScannedText(const QString& text);
    int offset(int line, int character) const;
    QJsonObject position(int offset) const;
    QJsonObject range(int from, int to) const;
    // The start tag holding `offset`, or null.
    const ScannedElement* at(int offset) const;
    // The first start tag on a 1-based line, or null.
    const ScannedElement* onLine(int line) const;
};

// A place where a file names an id another file defines, or defines one.
struct IdSite {
    QString file;           // relative
    int start = 0, end = 0; // the attribute, name to closing quote
    QJsonObject range;      // its value
    QString key;            // "card:2101", "slot:device/29974:5"
    bool defines = false;
};

// The ids of the tree: every definition and every reference, from the
// texts of its files (the open ones as typed).
class IdIndex {
public:
    // Scans again the files the workspace's last sync changed.
    void update(const Workspace& workspace);
    // The ids whose sites the last update moved, added or removed.
    const QSet<QString>& touched() const { return m_touched; }
    // The site at `offset` of `file`, or null.
    const IdSite* at(const QString& file, int offset) const;
    QVector<const IdSite*> sites(const QString& key) const;
    const IdSite* definition(const QString& key) const;
    // The ids a reference of (kind, tag, attribute) may name: (value, where defined).
    QVector<QPair<QString, QString>> candidates(const QString& kind, const QString& tag,
                                                const QString& attribute, const QString& file) const;

private:
    struct File {
        std::size_t hash = 0; // qHash of the text (uint under Qt 5)
        QVector<IdSite> sites;
    };
    QHash<QString, File> m_files;
    QSet<QString> m_touched;
};

QJsonValue hover(const TreeChecks& checks, const IdIndex& index, const QString& file, const QString& text,
                 int line, int character);
QJsonArray completion(const TreeChecks& checks, const IdIndex& index, const QString& file,
                      const QString& text, int line, int character);
// Locations: the definition of the id at the place, or every site of it.
QJsonArray definition(const Workspace& workspace, const IdIndex& index, const QString& file,
                      const QString& text, int line, int character);
QJsonArray references(const Workspace& workspace, const IdIndex& index, const QString& file,
                      const QString& text, int line, int character, bool withDefinition);
// Diagnostics of `file` from the checks, each problem with the definition of
// the id its element names in another file as related information. The ids
// whose sites were asked for are added to `ids` when given.
QJsonArray diagnostics(const TreeChecks& checks, const Workspace& workspace, const IdIndex& index,
                       const QString& file, const QString& text, QSet<QString>* ids = nullptr);

} // namespace lcdcfg
