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
#include "tools/lcdcfg/session.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/undecodable.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;
namespace facts = LCD::ConfigModel::facts;

namespace {

// The name a document's problems are reported under, relative to the root;
// empty: not reported.
using FileOf = std::function<QString(const QString& document)>;

// The code of a diagnostic's kind.
QString codeOf(DiagnosticKind kind) {
    switch (kind) {
    case DiagnosticKind::OpenFailed:
    case DiagnosticKind::TooLarge:
        return QStringLiteral("open");
    case DiagnosticKind::ParseFailed:
        return QStringLiteral("parse");
    case DiagnosticKind::RootMismatch:
        return QStringLiteral("root");
    case DiagnosticKind::VersionMismatch:
        return QStringLiteral("version");
    case DiagnosticKind::ElementMissing:
        return QStringLiteral("missing-element");
    default:
        return QStringLiteral("load");
    }
}

bool isFailure(DiagnosticKind kind) {
    return kind != DiagnosticKind::ElementMissing && kind != DiagnosticKind::FileRejected &&
           kind != DiagnosticKind::FileMissing && kind != DiagnosticKind::ElementUnclosed;
}

// What the library told while `load` ran: the documents that failed, every
// logged diagnostic and the loader's error text, each once, placed where
// its cause is (the event of the same text that names an element).
void addLoadProblems(const PartLoad& load, const FileOf& fileOf, const QString& inputName,
                     Problems& problems) {
    if (!load.missing.isEmpty()) {
        problems.add({fileOf(load.missing), 0, 0, Severity::Error, QStringLiteral("directory-missing"),
                      QStringLiteral("no such directory: the host would create it empty and load nothing")});
        return;
    }
    const QVector<Diagnostic>& events = load.diagnostics;
    QSet<QString> seen; // "document\ntext" already reported
    auto add = [&](int i, Severity severity) {
        const Diagnostic& d = events[i];
        const QString file = d.document.isEmpty() ? inputName : fileOf(d.document);
        const QString key = d.document + QLatin1Char('\n') + d.text;
        if (file.isEmpty() || seen.contains(key)) return;
        seen.insert(key);
        const Diagnostic* cause = &d;
        for (int j = i; j >= 0 && cause->kind == DiagnosticKind::FileRejected; --j)
            if (events[j].document == d.document && events[j].text == d.text) cause = &events[j];
        const QString text = cause->missing.isEmpty()
                                 ? shownText(d, fileOf)
                                 : QStringLiteral("%1 (missing %2)").arg(d.text, cause->missing);
        problems.add({file, cause->line, cause->column, severity, codeOf(cause->kind), text});
    };
    for (int i = 0; i < events.size(); ++i)
        if (isFailure(events[i].kind) || events[i].logged)
            add(i, isFailure(events[i].kind) || events[i].kind == DiagnosticKind::FileRejected
                       ? Severity::Error
                       : Severity::Warning);
    if (load.error.isEmpty()) return;
    // the loader's error repeats the text of the event that left it; a
    // connector load that goes on has dropped a description: an error too
    const Severity severity = !load.ok || load.part == Part::Connectors ? Severity::Error : Severity::Warning;
    for (int i = events.size() - 1; i >= 0; --i)
        if (events[i].text == load.error) return add(i, severity);
    const QString document = load.documents.isEmpty() ? QString() : load.documents.last();
    const QString file = document.isEmpty() ? inputName : fileOf(document);
    if (!file.isEmpty()) problems.add({file, 0, 0, severity, QStringLiteral("load"), load.error});
}

// The ids the records of `part` read from `document` (any when empty) give,
// kept or not: card models, or connector types.
QSet<int> idsRead(const Trace& trace, Part part, const QString& document = QString()) {
    const bool cards = part == Part::Cards;
    const QString id = cards ? QStringLiteral("ModelId") : QStringLiteral("Type");
    QSet<int> ids;
    for (const Site* site : trace.records(cards ? RecordKind::Card : RecordKind::ConnectorDescription))
        if ((document.isEmpty() || site->document == document) && site->values.contains(id))
            ids.insert(site->values.value(id).toInt());
    return ids;
}

// The ids a component holds: card models, or connector types.
QSet<int> idsHeld(const Tree& tree, Part part, const Trace& trace) {
    QSet<int> ids;
    if (part == Part::Cards && tree.cards())
        for (const Subcard::s_Subcard& card : tree.cards()->subcardConfig())
            ids.insert(card.modelId);
    if (part == Part::Connectors && tree.connectors())
        for (int type : idsRead(trace, part))
            if (tree.connectors()->findEDIDInfo(type)) ids.insert(type);
    return ids;
}

// Loads `files` into a fresh component, in this order, through one scratch
// folder of links (the menu tree: beside an empty function item file). Adds
// their problems under the tree's names of the files; returns the ids the
// load holds, with the models the file it stopped at names, and that file
// in `stop` (empty when it read them all).
QSet<int> loadFiles(const Tree& tree, Part part, const QStringList& files, Problems& problems,
                    QString* stop) {
    stop->clear();
    QTemporaryDir scratch;
    const QStringList inputs = Tree::inputsOf(part, scratch.path());
    const bool menu = part == Part::Menu;
    const QString folder = menu ? QFileInfo(inputs.first()).absolutePath() : inputs.first();
    QFile stub(inputs.first());
    if (!scratch.isValid() || !QDir().mkpath(folder) || (menu && !stub.open(QIODevice::WriteOnly)) ||
        (menu && stub.write("<LCD version=\"1.0\"/>\n") < 0))
        return {};
    stub.close();
    QHash<QString, QString> names; // link to the file
    for (int i = 0; i < files.size(); ++i) {
        const QString link = menu ? inputs.last()
                                  : QDir(folder).filePath(QStringLiteral("%1-%2")
                                                              .arg(i, 6, 10, QLatin1Char('0'))
                                                              .arg(QFileInfo(files[i]).fileName()));
        if (!QFile::link(files[i], link)) return {};
        names.insert(QFileInfo(link).absoluteFilePath(), files[i]);
    }
    Tree alone(tree.host(), scratch.path());
    Trace trace(Trace::DropDocuments);
    alone.load({part}, &trace);
    const PartLoad& load = *alone.loadOf(part);
    addLoadProblems(
        load, [&](const QString& document) { return tree.relative(names.value(document)); },
        tree.relative(files.value(0)), problems);
    const QString last = load.documents.isEmpty() ? QString() : load.documents.last();
    *stop = load.ok ? QString() : names.value(last);
    return idsHeld(alone, part, trace) + (load.ok ? QSet<int>() : idsRead(trace, part, last));
}

QString joined(QSet<int> ids) {
    QList<int> list = ids.values();
    std::sort(list.begin(), list.end());
    QStringList texts;
    for (int id : list)
        texts << QString::number(id);
    return texts.join(QStringLiteral(", "));
}

// Cards and connectors: where the host's load stops at a bad file, the files
// after it are loaded too (again after each file that stops a load), so
// that each bad one is named; the ids only those loads have are what the
// host loses. Returns them.
QSet<int> checkEachFile(Tree& tree, Part part, const Trace& trace, Problems& problems) {
    const PartLoad* load = tree.loadOf(part);
    if (!load || !load->attempted || load->ok || load->documents.isEmpty()) return {};
    const QString folder = load->inputs.first();
    const QStringList files =
        part == Part::Cards ? facts::catalogueFiles(folder) : facts::connectorFiles(folder);
    QString stop = load->documents.last();
    QSet<int> named = idsRead(trace, part, stop);
    for (int at = files.indexOf(stop); at >= 0 && at + 1 < files.size(); at = files.indexOf(stop))
        named += loadFiles(tree, part, files.mid(at + 1), problems, &stop);
    const QSet<int> lost = named - idsHeld(tree, part, trace);
    if (!lost.isEmpty())
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
    QString stop;
    if (QFileInfo::exists(load->inputs.last()))
        loadFiles(tree, Part::Menu, {load->inputs.last()}, problems, &stop);
}

} // namespace

void checkLoads(Tree& tree, RuleRun& run, Problems& problems) {
    for (const PartLoad& load : tree.loads())
        addLoadProblems(
            load, [&](const QString& document) { return tree.relative(document); },
            tree.relative(load.inputs.first()), problems);
    run.lostCards = checkEachFile(tree, Part::Cards, run.trace, problems);
    run.lostConnectorTypes = checkEachFile(tree, Part::Connectors, run.trace, problems);
    checkMenuTree(tree, problems);
    addUndecodableNames(tree.root(), problems);
}

void checkTree(Tree& tree, const Trace& trace, Problems& problems) {
    RuleRun run(tree, trace, problems);
    checkLoads(tree, run, problems);
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
    const QCommandLineOption strictOption(QStringLiteral("strict"), QStringLiteral("Warnings fail too."));
    cl.addOption(strictOption);
    Session session(cl, Session::RootPositional, Session::Json);
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    Trace trace(Trace::DropDocuments);
    const std::unique_ptr<Tree> tree = session.load(&trace);
    if (!tree) return kUsage;
    Problems problems;
    checkTree(*tree, trace, problems);
    problems.print(out(), session.json(), !session.json() && outIsTerminal());
    const bool fails = problems.count(Severity::Error) > 0 ||
                       (cl.isSet(strictOption) && problems.count(Severity::Warning) > 0);
    return fails ? kProblems : kClean;
}

} // namespace lcdcfg
