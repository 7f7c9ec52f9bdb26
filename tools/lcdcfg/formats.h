#pragma once

// What the readers read, per file kind, gathered from the recording
// observer's account of loads: the elements a walk reached or looked up, the
// attributes read with their conversion and default, the texts read, the
// elements read one after another, and (when probed) what a load reports
// when an element is left out. One body of knowledge behind `reference`
// (Markdown), `schema` (XSD) and the language server's hover and completion.

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>

#include "host/kvchost.h"
#include "tools/lcdcfg/trace.h"

namespace lcdcfg {

struct FormatAttribute {
    QStringList kinds;    // "int", "unsigned", "float", "double", "text", "presence"
    QStringList defaults; // the defaults read with (empty: none)
};

struct FormatNode {
    QString kind; // of the file
    QString path; // "Vrn/Device/Slots"
    QString tag;
    int depth = 0;
    bool read = false;       // reached in a sample (else only looked up)
    int order = 0;           // when it was first reached
    bool text = false;       // its text is read
    bool textNumber = false; // ... as a decimal integer
    bool list = false;       // several children of one name are read
    bool repeats = false;    // several of it are read one after another
    QStringList attributeOrder;
    QHash<QString, FormatAttribute> attributes;
    QStringList children; // paths, first seen first
    // the first element seen at this path, for the probe that leaves it out
    int root = -1;
    QString document;
    QVector<int> chain;      // child positions from the root element
    QStringList whenMissing; // what the load reports when it is left out
    bool required() const { return !whenMissing.isEmpty(); }
};

// One file kind ("device-slot", "subcard", ...).
struct Format {
    QString kind;
    QStringList files; // relative to their root
    QStringList rootOrder;
    int reached = 0;
    QHash<QString, FormatNode> nodes; // by element path ("Vrn/Device/Slots")

    FormatNode& node(const QString& path, const QString& parent);
    // The children of `path` in the order first reached, then those only looked up.
    QStringList orderedChildren(const QString& path) const;
};

using Formats = QMap<QString, Format>;

// Adds what the readers did with the documents of `tree` (loaded with `trace`
// attached) to `formats`; `root` numbers the tree for the probes.
void addFormats(Formats& formats, const Tree& tree, const Trace& trace, int root = -1);

// Loads every root in `roots` and gathers the formats of their documents;
// with `probe`, each element is then left out of a scratch copy of its tree
// to learn what the load reports without it. false with `error` set when a
// tree cannot be loaded at all.
bool gatherFormats(const kvchost::PluginHost& host, const QStringList& roots, bool probe, Formats* formats,
                   QString* error);

// A verb that writes files made from the formats of the trees on its
// command line (`reference`, `schema`): `lcdcfg VERB [--output DIR] [ROOT...]`,
// the shipped tree by default; `files` names and makes them. The exit status.
int runFormatWriter(const QStringList& args, const QString& verb, const QString& description,
                    const QString& defaultOutput,
                    const std::function<QMap<QString, QByteArray>(const Formats&)>& files);

// What an editor shows for an element or an attribute of it: how it is read,
// its default, and whether it is required.
QString describeElement(const FormatNode& node);
// The kind of a file by its path relative to the root of its tree, as the
// file patterns that associate the files with their schemas say; empty when
// none does (schema.cpp).
QString fileKind(const QString& relative);
QString describeAttribute(const FormatNode& node, const QString& name);
// What an element (`attribute` empty) or an attribute means for the device
// and the host, from the table in meanings.cpp; empty when it has none.
QString meaningOf(const QString& kind, const QString& path, const QString& attribute = QString());

} // namespace lcdcfg
