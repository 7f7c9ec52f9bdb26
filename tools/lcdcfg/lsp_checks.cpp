// The language server's adapter onto check, lint, explain and the formats.

#include "tools/lcdcfg/lsp_checks.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>

#include <algorithm>

#include "tools/lcdcfg/check.h"
#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

namespace {

// Messages the library writes outside a tree load go to standard error,
// never to standard output (the protocol's).
void toStandardError(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    err() << "lcdcfg: library: " << text << "\n";
    err().flush();
}

} // namespace

TreeChecks::TreeChecks(const kvchost::PluginHost& host, bool keep)
    : m_host(host), m_shipped(new Vocabulary), m_keep(keep) {
    qInstallMessageHandler(&toStandardError);
    Trace trace;
    Tree shipped(host, defaultRoot());
    if (shipped.load(&trace)) {
        m_shipped->add(trace);
        addFormats(m_formats, shipped, trace);
    }
}

TreeChecks::~TreeChecks() = default;

void TreeChecks::run(const QString& root) {
    m_tree = std::make_unique<Tree>(m_host, root);
    m_vocabulary.reset();
    m_rules.clear();
    for (PartRun& run : m_parts) {
        run.vocabulary.reset();
        run.readings.clear();
    }
    m_files.clear();
    for (QDirIterator it(m_tree->root(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         it.hasNext();)
        m_files.insert(m_tree->relative(it.next()));
    QVector<Part> all;
    for (int i = 0; i < kPartCount; ++i)
        all << static_cast<Part>(i);
    load(all);
}

void TreeChecks::update(const QStringList& changed) {
    if (!m_tree || !m_trace) return run(m_tree ? m_tree->root() : QString());
    m_listingChanged = false;
    for (const QString& relative : changed) { // a file added or removed
        const bool there = QFileInfo::exists(m_tree->root() + QLatin1Char('/') + relative);
        m_listingChanged = m_listingChanged || there != m_files.contains(relative);
        if (there)
            m_files.insert(relative);
        else
            m_files.remove(relative);
    }
    QVector<Part> parts;
    for (const QString& relative : changed) {
        const QString path = m_tree->root() + QLatin1Char('/') + relative;
        bool fed = false;
        for (const PartLoad& load : m_tree->loads())
            if (load.documents.contains(path) ||
                std::any_of(load.inputs.begin(), load.inputs.end(), [&](const QString& input) {
                    return path == input || path.startsWith(input + QLatin1Char('/'));
                })) {
                fed = true;
                if (!parts.contains(load.part)) parts << load.part;
            }
        if (!fed) m_rules.clear(); // a file no part reads (misplaced?): every rule runs again
    }
    std::sort(parts.begin(), parts.end());
    load(parts, changed);
}

namespace {

bool sameRead(const AttributeTrace& a, const AttributeTrace& b) {
    return a.name == b.name && a.present == b.present && a.raw == b.raw && a.def == b.def &&
           a.kind == b.kind && a.stored == b.stored && a.validNumber == b.validNumber;
}

bool sameReads(const ElementTrace& a, const ElementTrace& b) {
    return a.found == b.found && a.textRead == b.textRead && a.textNumber == b.textNumber &&
           a.lookedInto == b.lookedInto && a.missing == b.missing &&
           std::equal(a.reads.begin(), a.reads.end(), b.reads.begin(), b.reads.end(), sameRead);
}

// Whether the readers did the same with a document in two loads.
bool sameReads(const DocumentTrace& a, const DocumentTrace& b) {
    if (a.ok != b.ok || a.error != b.error || a.line != b.line || a.column != b.column ||
        a.rejected != b.rejected)
        return false;
    int count = 0;
    for (auto it = a.elements.cbegin(); it != a.elements.cend(); ++it, ++count) {
        const ElementTrace* other = b.elements.find(it.key());
        if (!other || !sameReads(*it, *other)) return false;
    }
    for (auto it = b.elements.cbegin(); it != b.elements.cend(); ++it)
        --count;
    return count == 0;
}

// Each document of `trace` by "PATH\nN", its N-th reading.
template <class F> void forEachReading(const Trace& trace, F&& f) {
    QHash<QString, int> readings;
    for (const DocumentTrace& d : trace.documents())
        f(d, d.path + QLatin1Char('\n') + QString::number(readings[d.path]++));
}

} // namespace

// The readings of a part loaded again: a document whose text did not
// change and that its readers read as in the `previous` load keeps its
// reading; what the part's readers looked for is made again from the
// readings unless each is as before. Whether it is what it was.
bool TreeChecks::read(PartRun& run, const Trace* previous, const QSet<QString>& changed) {
    QHash<QString, const DocumentTrace*> before;
    QStringList keys, keysBefore; // the readings in order
    if (previous)
        forEachReading(*previous, [&](const DocumentTrace& d, const QString& key) {
            before.insert(key, &d);
            keysBefore << key;
        });
    bool same = previous && run.vocabulary;
    QHash<QString, Reading> readings;
    forEachReading(*run.trace, [&](const DocumentTrace& d, const QString& key) {
        keys << key;
        const DocumentTrace* was = before.value(key);
        const auto kept = run.readings.constFind(key);
        Reading& reading = readings[key];
        if (was && kept != run.readings.cend() && !changed.contains(d.path) && sameReads(d, *was)) {
            reading = *kept;
            return;
        }
        m_fresh.insert(d.path);
        addDocument(reading.vocabulary, d);
        same = same && kept != run.readings.cend() && kept->vocabulary == reading.vocabulary;
    });
    run.readings = std::move(readings);
    if (same && keys == keysBefore) return true;
    auto vocabulary = std::make_unique<Vocabulary>();
    for (const QString& key : qAsConst(keys))
        vocabulary->add(run.readings[key].vocabulary);
    same = run.vocabulary && *run.vocabulary == *vocabulary;
    run.vocabulary = std::move(vocabulary);
    return same;
}

// Loads `parts` again (table order), keeps the other parts' loads, and lists
// the problems of the whole tree. `changed`: the files (relative) whose text
// changed since the last load.
void TreeChecks::load(const QVector<Part>& parts, const QStringList& changed) {
    m_problems = Problems();
    m_retired.push_back(std::move(m_trace));
    bool relintAll = !m_vocabulary || !m_keep;
    m_fresh.clear();
    unsigned reloaded = 0;
    QSet<QString> texts; // the files whose text changed, absolute
    for (const QString& relative : changed)
        texts.insert(m_tree->root() + QLatin1Char('/') + relative);
    if (m_listingChanged) reloaded |= kListing;
    for (Part part : parts) {
        PartRun& run = m_parts[int(part)];
        reloaded |= 1u << int(part);
        const PartLoad* before = m_tree->loadOf(part);
        const QStringList opened = before ? before->documents : QStringList();
        m_retired.push_back(std::move(run.trace));
        run.trace = std::make_unique<Trace>();
        if (!m_tree->load({part}, run.trace.get())) {
            m_problems.add({QString(), 0, 0, Severity::Error, QStringLiteral("plugin"), m_tree->error()});
            return;
        }
        if (m_tree->loadOf(part)->documents != opened) reloaded |= kListing;
        if (!read(run, m_keep ? m_retired.back().get() : nullptr, texts)) relintAll = true;
    }
    m_trace = std::make_unique<Trace>();
    for (const PartRun& run : m_parts)
        m_trace->append(*run.trace);
    if (relintAll) { // what the readers look for changed: every document is linted again
        m_vocabulary = std::make_unique<Vocabulary>(*m_shipped);
        for (const PartRun& run : m_parts)
            m_vocabulary->add(*run.vocabulary);
    }
    RuleRun rules(*m_tree, *m_trace, m_problems);
    checkLoads(*m_tree, rules, m_problems);
    if (m_keep) {
        const Trace* traces[kPartCount];
        for (int i = 0; i < kPartCount; ++i)
            traces[i] = m_parts[i].trace.get();
        m_rules.run(rules, traces, reloaded, texts, m_fresh);
    } else {
        runRules(rules);
    }
    m_problems.sort();
    for (PartRun& run : m_parts) // every document, when what the readers look for changed
        forEachReading(*run.trace, [&](const DocumentTrace& d, const QString& key) {
            Reading& reading = run.readings[key];
            if (relintAll || !reading.linted) {
                Problems problems;
                lintDocument(*m_tree, d, *m_vocabulary, problems);
                reading.lint = problems.list();
                reading.linted = true;
            }
            for (const Problem& p : reading.lint)
                m_problems.add(p);
        });
    m_problems.sort();
    dropEchoes();
    if (!m_workspaceFormats) addFormats(m_formats, *m_tree, *m_trace); // what the workspace adds
    m_workspaceFormats = true;
}

void TreeChecks::release() {
    m_retired.clear();
}

// check and lint name one fault with one code (a number that does not
// convert): where both report it at one place, the editor shows the error.
void TreeChecks::dropEchoes() {
    const QVector<Problem>& all = m_problems.list();
    Problems kept;
    for (const Problem& p : all) {
        const bool echo =
            p.severity == Severity::Warning && std::any_of(all.begin(), all.end(), [&](const Problem& e) {
                return e.severity == Severity::Error && e.code == p.code && e.file == p.file &&
                       e.line == p.line && e.column == p.column;
            });
        if (!echo) kept.add(p);
    }
    m_problems = std::move(kept);
}

QString TreeChecks::loaded(const QString& relative, int index, const QString& attribute) const {
    if (!m_tree || !m_trace) return QString();
    const DocumentTrace* d = m_trace->document(m_tree->root() + QLatin1Char('/') + relative);
    if (!d || !d->ok) return QString();
    QDomElement element;
    int i = 0;
    forEachElement(d->document, [&](const QDomElement& e) {
        if (i++ == index) element = e;
    });
    const ElementTrace* t = element.isNull() ? nullptr : d->at(element);
    const AttributeTrace* read = t ? t->read(attribute) : nullptr;
    if (!read) return QStringLiteral("not read");
    const QString source = sourceOf(*m_tree, *m_trace, element, attribute);
    return source == QLatin1String("default") ? QStringLiteral("%1, by default").arg(read->stored)
                                              : QStringLiteral("%1, from %2").arg(read->stored, source);
}

} // namespace lcdcfg
