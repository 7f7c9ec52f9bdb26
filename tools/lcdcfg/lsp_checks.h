#pragma once

// Everything the language server asks of check, lint, explain and the
// formats, behind one small interface: a tree is checked as `check` and
// `lint` check it, and the load stays at hand for hover's "loaded value and
// where it came from". The server's other files know nothing else of the tool.

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <memory>
#include <vector>

#include "host/kvchost.h"
#include "tools/lcdcfg/formats.h"
#include "tools/lcdcfg/problems.h"
#include "tools/lcdcfg/rules.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

class TreeChecks {
public:
    // `keep`: what only a reloaded part can change (the rules' findings on
    // it, lint's warnings on its documents) is kept from one run to the
    // next; without, every rule runs and every document is linted each time.
    explicit TreeChecks(const kvchost::PluginHost& host, bool keep = true);
    ~TreeChecks();

    // Loads the tree at `root` with the recording observer and lists what
    // check and lint report (files relative to `root`).
    void run(const QString& root);
    // The same after `changed` (files relative to the root) changed since the
    // last run: only the parts those files feed are loaded again and only
    // their documents linted again (all of them when what the readers look
    // for changed); the cross-file checks run over the loads kept. The
    // problems are those run() would list.
    void update(const QStringList& changed);
    // Frees what the last run replaced (once its results are out).
    void release();
    const QVector<Problem>& problems() const { return m_problems.list(); }

    // The formats of the file kinds: from the shipped tree once, and from
    // every tree run since.
    const Formats& formats() const { return m_formats; }
    // The kind of a file by its place in a tree (relative path), as the
    // schemas' file patterns say.
    static QString kindOf(const QString& relative) { return fileKind(relative); }

    // What the last run loaded from `attribute` of the element number
    // `index` (document order, the root is 0) of `relative`: "VALUE, from
    // FILE:LINE" or "VALUE, by default" or "not read"; empty when that file
    // was not loaded.
    QString loaded(const QString& relative, int index, const QString& attribute) const;

private:
    // One reading of a document: what its readers looked for, lint's
    // warnings on it (once linted).
    struct Reading {
        Vocabulary vocabulary;
        bool linted = false;
        QVector<Problem> lint;
    };
    // What one part's load left: its trace, what its readers looked for and
    // each document's reading ("PATH\nN": the N-th reading of PATH).
    struct PartRun {
        std::unique_ptr<Trace> trace;
        std::unique_ptr<Vocabulary> vocabulary;
        QHash<QString, Reading> readings;
    };

    void load(const QVector<Part>& parts, const QStringList& changed = {});
    bool read(PartRun& run, const Trace* previous, const QSet<QString>& changed);
    void dropEchoes();

    const kvchost::PluginHost& m_host;
    Formats m_formats;
    bool m_workspaceFormats = false;
    std::unique_ptr<Vocabulary> m_shipped;    // what the readers look for in the shipped tree
    std::unique_ptr<Vocabulary> m_vocabulary; // ... and in the tree
    std::unique_ptr<Trace> m_trace;           // the parts' traces joined
    std::unique_ptr<Tree> m_tree;
    PartRun m_parts[kPartCount];
    std::vector<std::unique_ptr<Trace>> m_retired; // replaced, not freed yet
    bool m_keep = true;
    QSet<QString> m_files; // the tree's files, relative
    QSet<QString> m_fresh; // the documents the last load read anew, absolute
    bool m_listingChanged = false;
    RuleResults m_rules;
    Problems m_problems;
};

} // namespace lcdcfg
