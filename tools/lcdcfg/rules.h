#pragma once

// The cross-file rules of `lcdcfg check`: one table, each rule with its
// stable code, its severity and a function over the loaded tree. Rules read
// the components' records; positions come from the sites the recording observer
// kept (line 0 of the file when none is found).

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QVector>

#include <list>
#include <memory>

#include "tools/lcdcfg/problems.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

struct Rule;

// What the rules on encodings and entities take from a file's bytes.
struct FileBytes {
    QString declared; // the encoding the XML declaration names, lower case ("" when none)
    bool ascii = false;
    bool utf8 = false; // well-formed UTF-8
    // Every entity reference the parser does not know: where, and the text
    // the parser keeps before it.
    struct Entity {
        int line = 0;
        int column = 0;
        QString reference; // "&nbsp;"
        QString stored;
    };
    QVector<Entity> unknownEntities;
};
using FileBytesByPath = QHash<QString, FileBytes>;

// What a rule works on, and where it reports.
class RuleRun {
public:
    RuleRun(const Tree& tree, const Trace& trace, Problems& problems)
        : tree(tree), trace(trace), m_problems(problems) {}

    const Tree& tree;
    const Trace& trace;
    // The parts whose loads `trace` recorded (one bit per part): the rules
    // that go through the loads look at those alone.
    unsigned parts = ~0u;
    bool covers(Part part) const { return parts & (1u << int(part)); }
    // The documents (absolute) a rule of kEachDocument judges; every one when null.
    const QSet<QString>* judged = nullptr;
    bool judges(const QString& document) const { return !judged || judged->contains(document); }
    // Ids the host loses to a bad file (reported once as records-lost): a
    // reference to one of them is not reported again.
    QSet<int> lostCards;
    QSet<int> lostConnectorTypes;

    // Reports at `site`, else at line 0 of `file` (absolute, or relative to the root).
    // `related`, when given, is another place the problem concerns.
    void report(const Site* site, const QString& file, const QString& text, const Site* related = nullptr);
    // The same for a rule whose findings carry their own code and severity.
    void report(const Site* site, const QString& file, const QString& text, const QString& code,
                Severity severity, const Site* related = nullptr);
    // Documents under a folder of the root ("subcard", "device/29974"), or one file.
    std::function<bool(const QString&)> under(const QString& folder) const;
    std::function<bool(const QString&)> is(const QString& document) const;
    // Whether the catalogue has the card model, or the host loses it to a bad file.
    bool knownCard(int modelId) const;
    // The (first) path a part loads, absolute: "ROOT/subcard".
    QString input(Part part) const;
    // The folder of the device model at `position` among the models
    // ("device/29974"), relative to the root; empty when none of its files was read.
    QString modelFolder(int position) const;

    // The parent where a lookup of `name` in `document` found nothing, or null.
    const Site* missingSite(const QString& document, const QString& name);

    const Rule* rule = nullptr;
    // What was taken from files' bytes, by path: the run's own unless the
    // caller keeps it between runs.
    FileBytesByPath* bytes = &m_bytes;

private:
    friend class RuleResults;
    Problems& m_problems;
    FileBytesByPath m_bytes;
    std::list<Site> m_made; // sites made for positions that have no site
};

struct Rule {
    const char* code;
    Severity severity;
    void (*run)(RuleRun& run);
    // The parts whose loads its findings depend on (one bit per part), or
    // kEachPart: its findings on a part's files depend on that part's load
    // alone (a rule over documents, records of one part).
    unsigned reads;
};
constexpr unsigned kEachPart = 0;
// The tree's file names and the files the loads opened (for `reads`).
constexpr unsigned kListing = 1u << kPartCount;
// Like kEachPart, and its findings on a document depend on that document's
// reading alone: it may judge only the documents read anew (RuleRun::judged).
constexpr unsigned kEachDocument = 1u << (kPartCount + 1);

// Runs every rule in table order (the library's messages are muted meanwhile).
void runRules(RuleRun& run);

// The rules' findings kept from one run to the next over a tree whose parts
// are loaded again one at a time (the language server): a rule runs again
// only when a part it reads was loaded again, a rule of kEachPart only over
// the parts loaded again. Sorted by place, the findings are those runRules()
// adds over the joined trace (no two parts read one file).
class RuleResults {
public:
    RuleResults();
    ~RuleResults();
    // `run` is over the parts' traces joined; `parts` holds each part's own
    // trace (table order); `reloaded` the parts loaded again since the last
    // call (one bit each), with kListing when a file was added or removed or
    // a load opened other files.
    // `changed`: the files (absolute) whose bytes changed since; `fresh`: the
    // documents (absolute) of the parts loaded again that were not read as
    // in the previous load, or whose text changed.
    void run(RuleRun& run, const Trace* const (&parts)[kPartCount], unsigned reloaded,
             const QSet<QString>& changed, const QSet<QString>& fresh);
    void clear();

private:
    struct Kept;
    std::unique_ptr<Kept> m_kept;
};

} // namespace lcdcfg
