// The language server's adapter onto check, lint, explain and the formats.

#include "tools/lcdcfg/lsp_checks.h"

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

TreeChecks::TreeChecks(const kvchost::PluginHost& host) : m_host(host), m_shipped(new Vocabulary) {
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
    for (PartRun& run : m_parts)
        run.vocabulary.reset();
    QVector<Part> all;
    for (int i = 0; i < kPartCount; ++i)
        all << static_cast<Part>(i);
    load(all);
}

void TreeChecks::update(const QStringList& changed) {
    if (!m_tree || !m_trace) return run(m_tree ? m_tree->root() : QString());
    QVector<Part> parts;
    for (const PartLoad& load : m_tree->loads())
        for (const QString& relative : changed) {
            const QString path = m_tree->root() + QLatin1Char('/') + relative;
            const bool fed = load.documents.contains(path) ||
                             std::any_of(load.inputs.begin(), load.inputs.end(), [&](const QString& input) {
                                 return path == input || path.startsWith(input + QLatin1Char('/'));
                             });
            if (fed && !parts.contains(load.part)) parts << load.part;
        }
    load(parts);
}

// Loads `parts` again (table order), keeps the other parts' loads, and lists
// the problems of the whole tree.
void TreeChecks::load(const QVector<Part>& parts) {
    m_problems = Problems();
    m_retired.push_back(std::move(m_trace));
    bool relintAll = !m_vocabulary;
    for (Part part : parts) {
        PartRun& run = m_parts[int(part)];
        m_retired.push_back(std::move(run.trace));
        run.trace = std::make_unique<Trace>();
        if (!m_tree->load({part}, run.trace.get())) {
            m_problems.add({QString(), 0, 0, Severity::Error, QStringLiteral("plugin"), m_tree->error()});
            return;
        }
        auto vocabulary = std::make_unique<Vocabulary>();
        vocabulary->add(*run.trace);
        relintAll = relintAll || !run.vocabulary || !(*run.vocabulary == *vocabulary);
        run.vocabulary = std::move(vocabulary);
        run.lint.reset();
    }
    m_trace = std::make_unique<Trace>();
    for (const PartRun& run : m_parts)
        m_trace->append(*run.trace);
    if (relintAll) { // what the readers look for changed: every document is linted again
        m_vocabulary = std::make_unique<Vocabulary>(*m_shipped);
        for (const PartRun& run : m_parts)
            m_vocabulary->add(*run.vocabulary);
    }
    checkTree(*m_tree, *m_trace, m_problems);
    for (PartRun& run : m_parts) {
        if (!run.lint || relintAll) {
            run.lint = std::make_unique<Problems>();
            lintTree(*m_tree, *run.trace, *m_vocabulary, *run.lint);
        }
        for (const Problem& p : run.lint->list())
            m_problems.add(p);
    }
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
