// lcdcfg check: loads a configuration tree as the host does, then each card,
// connector and menu file on its own, and runs the cross-file rules; reports
// every problem as PATH:LINE:COLUMN with a stable code.

#include "tools/lcdcfg/check.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <algorithm>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/rules.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/undecodable.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

// The name a document's problems are reported under, relative to the root;
// empty: not reported.
using FileOf = std::function<QString(const QString& document)>;

// "Error: why" (the device registry's warning) and "why" are the same problem.
QString reason(const QString& text) {
    return text.startsWith(QLatin1String("Error: ")) ? text.mid(7) : text;
}

// "Invalid [X] node." names the missing X.
QString missingName(const QString& text) {
    const int open = text.indexOf(QLatin1String("Invalid ["));
    const int close = text.indexOf(QLatin1String("] node."), open);
    return open < 0 || close < 0 ? QString() : text.mid(open + 9, close - open - 9);
}

// What the library wrote while `load` ran: the documents that failed, every
// warning, and the loader's error text, each once, at its position.
void addLoadProblems(const PartLoad& load, const Trace& trace, const FileOf& fileOf, const QString& inputName,
                     Problems& problems) {
    if (!load.missing.isEmpty()) {
        problems.add({fileOf(load.missing), 0, 0, Severity::Error, QStringLiteral("directory-missing"),
                      QStringLiteral("no such directory: the host would create it empty and load nothing")});
        return;
    }
    QStringList seen; // "document\nreason" already reported
    auto add = [&](const QString& document, int line, int column, Severity severity, QString code,
                   QString text) {
        // before the first document: the input the text names, else the first
        QString file = document.isEmpty() ? inputName : fileOf(document);
        for (const QString& input : document.isEmpty() ? load.inputs : QStringList())
            if (text.contains(QFileInfo(input).fileName()) && !fileOf(input).isEmpty()) file = fileOf(input);
        const QString key = document + QLatin1Char('\n') + reason(text);
        if (file.isEmpty() || seen.contains(key)) return;
        seen << key;
        const QString name = missingName(text);
        if (!name.isEmpty()) {
            code = QStringLiteral("missing-element");
            if (const Missing* missing = trace.lastMissing(document, name)) {
                line = missing->line;
                column = missing->column;
                text += QStringLiteral(" (missing %1)").arg(missing->path);
            }
        }
        problems.add({file, line, column, severity, code, text});
    };
    for (const DocumentFailure& f : trace.failures()) {
        if (!load.documents.contains(f.document)) continue;
        const QString code = f.rejected
                                 ? (f.error.contains(QLatin1String("version")) ? QStringLiteral("version")
                                                                               : QStringLiteral("root"))
                             : f.line > 0 ? QStringLiteral("parse")
                                          : QStringLiteral("open");
        add(f.document, f.line, f.column, Severity::Error, code, f.error);
    }
    for (const Diagnostic& d : load.diagnostics) {
        if (d.type == QtDebugMsg || d.type == QtInfoMsg) continue;
        const bool error = d.type != QtWarningMsg || d.text.startsWith(QLatin1String("Error:"));
        add(d.document, d.line, d.column, error ? Severity::Error : Severity::Warning, QStringLiteral("load"),
            d.text);
    }
    // the loader's error repeats the last failure's text (not always of the last document)
    const bool repeated = std::any_of(seen.begin(), seen.end(), [&](const QString& key) {
        return key.section(QLatin1Char('\n'), 1) == reason(load.error);
    });
    if (!load.error.isEmpty() && !repeated) {
        // the loader's error is left by the file that failed: a missing
        // element's by the last file where that lookup failed, any other's by
        // the last file opened, at the last lookup that failed there
        const QString name = missingName(load.error);
        QString document = load.documents.isEmpty() ? QString() : load.documents.last();
        const Missing* cause = nullptr;
        for (const Missing& m : trace.missing())
            if (load.documents.contains(m.document) &&
                (name.isEmpty() ? m.document == document : m.name == name))
                cause = &m;
        if (cause) document = cause->document;
        if (!name.isEmpty() || load.ok) cause = nullptr; // placed by add(), or not the cause
        // a connector load that goes on has dropped a description: an error too
        const bool error = !load.ok || load.part == Part::Connectors;
        add(document, cause ? cause->line : 0, cause ? cause->column : 0,
            error ? Severity::Error : Severity::Warning, QStringLiteral("load"),
            cause ? QStringLiteral("%1 (missing %2)").arg(load.error, cause->path) : load.error);
    }
}

// The card or connector files of a folder in the order the directory loaders
// take them (the card folder's direct sub-directories too).
QStringList filesOf(const QString& folder, bool subdirectories) {
    QStringList folders{folder};
    if (subdirectories)
        for (const QFileInfo& sub : QDir(folder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
            folders << sub.filePath();
    QStringList files;
    for (const QString& dir : folders)
        for (const QFileInfo& file : QDir(dir).entryInfoList({QStringLiteral("*.xml")}, QDir::Files))
            files << file.absoluteFilePath();
    return files;
}

// The ids a component holds: card models, or the connector types its files name.
QSet<int> idsOf(const Tree& tree, Part part, const Trace& trace) {
    QSet<int> ids;
    if (part == Part::Cards && tree.cards())
        for (const Subcard::s_Subcard& card : tree.cards()->subcardConfig())
            ids.insert(card.modelId);
    if (part == Part::Connectors && tree.connectors())
        for (const Site* site :
             trace.find([](const QString&) { return true; }, QStringLiteral("Connector"), {}))
            if (site->values.contains(QStringLiteral("Type")) &&
                tree.connectors()->findEDIDInfo(site->values.value(QStringLiteral("Type")).toInt()))
                ids.insert(site->values.value(QStringLiteral("Type")).toInt());
    return ids;
}

// Loads `file` alone into a fresh component: a temporary root whose folder
// for `part` holds only a link to it (the menu tree beside an empty function
// item file). Adds its problems under the tree's name of the file; returns
// the ids it loaded.
QSet<int> loadAlone(const Tree& tree, Part part, const QString& file, Problems& problems) {
    QTemporaryDir scratch;
    const QStringList inputs = Tree::inputsOf(part, scratch.path());
    const bool menu = part == Part::Menu;
    const QString folder = menu ? QFileInfo(inputs.first()).absolutePath() : inputs.first();
    const QString link = menu ? inputs.last() : QDir(folder).filePath(QFileInfo(file).fileName());
    QFile stub(inputs.first());
    if (!scratch.isValid() || !QDir().mkpath(folder) || (menu && !stub.open(QIODevice::WriteOnly)) ||
        (menu && stub.write("<LCD version=\"1.0\"/>\n") < 0) || !QFile::link(file, link))
        return {};
    stub.close();
    Tree alone(tree.host(), scratch.path());
    Trace trace;
    alone.load({part}, &trace);
    const QString name = tree.relative(file);
    const QString linked = QFileInfo(link).absoluteFilePath();
    addLoadProblems(
        *alone.loadOf(part), trace,
        [&](const QString& document) { return document == linked ? name : QString(); }, name, problems);
    QSet<int> ids = idsOf(alone, part, trace);
    // a card file that fails after naming its models loses those to the host too
    if (part == Part::Cards && !alone.loadOf(part)->ok)
        for (const Site* site :
             trace.find([](const QString&) { return true; }, QStringLiteral("Subcard"), {}))
            if (site->values.contains(QStringLiteral("ModelId")))
                ids.insert(site->values.value(QStringLiteral("ModelId")).toInt());
    return ids;
}

QString joined(QSet<int> ids) {
    QList<int> list = ids.values();
    std::sort(list.begin(), list.end());
    QStringList texts;
    for (int id : list)
        texts << QString::number(id);
    return texts.join(QStringLiteral(", "));
}

// Cards and connectors: every file on its own, so that each bad one is named;
// the ids only those loads have are what the host loses. Returns them.
QSet<int> checkEachFile(Tree& tree, Part part, const Trace& trace, Problems& problems) {
    const PartLoad* load = tree.loadOf(part);
    if (!load || !load->attempted) return {};
    QSet<int> alone;
    for (const QString& file : filesOf(load->inputs.first(), part == Part::Cards))
        alone += loadAlone(tree, part, file, problems);
    const QSet<int> lost = alone - idsOf(tree, part, trace);
    if (!lost.isEmpty() && !load->documents.isEmpty())
        problems.add(
            {tree.relative(load->documents.last()), 0, 0, Severity::Error, QStringLiteral("records-lost"),
             QStringLiteral("the host's load stops at this file and loses %1 %2")
                 .arg(part == Part::Cards ? QStringLiteral("card models") : QStringLiteral("connector types"),
                      joined(lost))});
    return lost;
}

// The menu: the host reads the tree only when the function items loaded.
void checkMenuTree(const Tree& tree, Problems& problems) {
    const PartLoad* load = tree.loadOf(Part::Menu);
    if (!load || !load->attempted || load->documents.contains(load->inputs.last())) return;
    problems.add({tree.relative(load->inputs.first()), 0, 0, Severity::Error, QStringLiteral("records-lost"),
                  QStringLiteral("the host's load stops at this file and reads no menu tree from %1")
                      .arg(tree.relative(load->inputs.last()))});
    if (QFileInfo::exists(load->inputs.last())) loadAlone(tree, Part::Menu, load->inputs.last(), problems);
}

} // namespace

void checkTree(Tree& tree, const Trace& trace, Problems& problems) {
    for (const PartLoad& load : tree.loads())
        addLoadProblems(
            load, trace, [&](const QString& document) { return tree.relative(document); },
            tree.relative(load.inputs.first()), problems);
    RuleRun run(tree, trace, problems);
    run.lostCards = checkEachFile(tree, Part::Cards, trace, problems);
    run.lostConnectorTypes = checkEachFile(tree, Part::Connectors, trace, problems);
    checkMenuTree(tree, problems);
    addUndecodableNames(tree.root(), problems);
    runRules(run);
    problems.sort();
}

bool checkTree(Tree& tree, Problems& problems) {
    Trace trace;
    if (!tree.load(&trace)) return false;
    checkTree(tree, trace, problems);
    return true;
}

int runCheck(const QStringList& args) {
    CommandLine cl(
        QStringLiteral("check"),
        QStringLiteral("Checks a configuration tree: every problem as PATH:LINE:COLUMN, exit 0 when "
                       "clean, 1 with errors (or warnings with --strict), 2 on bad usage."),
        QStringLiteral("[ROOT]"));
    const QCommandLineOption configOption(QStringLiteral("config"),
                                          QStringLiteral("Configuration root (same as ROOT)."),
                                          QStringLiteral("dir"));
    const QCommandLineOption jsonOption(QStringLiteral("json"),
                                        QStringLiteral("One JSON object for machines."));
    const QCommandLineOption strictOption(QStringLiteral("strict"), QStringLiteral("Warnings fail too."));
    cl.addOption(configOption);
    cl.addOption(jsonOption);
    cl.addOption(strictOption);
    int code = kClean;
    if (!cl.parse(args, &code)) return code;
    const QStringList positional = cl.positional();
    if (positional.size() > 1 || (!positional.isEmpty() && cl.isSet(configOption)))
        return cl.usage(QStringLiteral("one ROOT at most"));
    const QString root = cl.isSet(configOption) ? cl.value(configOption)
                         : positional.isEmpty() ? defaultRoot()
                                                : positional.first();
    kvchost::PluginHost* host = cl.host();
    if (!host) return kUsage;

    Tree tree(*host, root);
    Problems problems;
    if (!checkTree(tree, problems)) {
        err() << "lcdcfg: " << tree.error() << "\n";
        return kUsage;
    }
    problems.print(out(), cl.isSet(jsonOption), !cl.isSet(jsonOption) && outIsTerminal());
    const bool fails = problems.count(Severity::Error) > 0 ||
                       (cl.isSet(strictOption) && problems.count(Severity::Warning) > 0);
    return fails ? kProblems : kClean;
}

} // namespace lcdcfg
