// lcdcfg lsp: a language server for configuration trees over standard input
// and output. Every file of the tree is checked as `check` and `lint` check
// it, on open, on every change (the unsaved text counts) and on save; hover
// explains an element or attribute and the value the host loads from it;
// completion offers the names valid at the cursor and the ids of the tree;
// definitions and references follow the ids one file names in another. The
// tree is never written: the checks load a private copy of it.

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QSet>
#include <QtCore/QUrl>

#include <memory>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/lsp_checks.h"
#include "tools/lcdcfg/lsp_documents.h"
#include "tools/lcdcfg/lsp_features.h"
#include "tools/lcdcfg/lsp_protocol.h"

namespace lcdcfg {

namespace {

QString printed(const QVector<Problem>& list) {
    Problems problems;
    for (const Problem& p : list)
        problems.add(p);
    QString text;
    QTextStream stream(&text);
    problems.print(stream, true, false);
    stream.flush();
    return text;
}

class Server {
public:
    Server(const kvchost::PluginHost& host, const QString& root, bool verify)
        : m_host(host), m_root(root), m_verify(verify) {}

    // Serves until `exit`; the exit status.
    int serve() {
        QJsonObject message;
        while (m_connection.read(&message)) {
            handle(message);
            if (m_exit) return m_shutdown && !m_differed ? kClean : kProblems;
            if (m_dirty && !m_connection.pending()) check(); // a burst of changes is checked once
        }
        return m_shutdown ? kClean : kProblems;
    }

private:
    void handle(const QJsonObject& message) {
        const QString method = message[QStringLiteral("method")].toString();
        const QJsonValue id = message[QStringLiteral("id")];
        const QJsonObject params = message[QStringLiteral("params")].toObject();
        const QJsonObject document = params[QStringLiteral("textDocument")].toObject();
        const QString uri = document[QStringLiteral("uri")].toString();
        if (method == QLatin1String("initialize")) return initialize(id, params);
        if (method == QLatin1String("initialized")) {
            m_dirty = true; // the tree is checked once the client is ready
            return;
        }
        if (method == QLatin1String("shutdown")) {
            m_shutdown = true;
            return m_connection.reply(id, QJsonValue::Null);
        }
        if (method == QLatin1String("exit")) {
            m_exit = true;
            return;
        }
        if (!m_workspace) {
            if (!id.isUndefined()) m_connection.error(id, -32002, QStringLiteral("not initialized"));
            return;
        }
        if (method == QLatin1String("textDocument/didOpen")) {
            m_workspace->open(uri, document[QStringLiteral("text")].toString());
            m_dirty = true;
        } else if (method == QLatin1String("textDocument/didChange")) {
            const QJsonArray changes = params[QStringLiteral("contentChanges")].toArray();
            if (!changes.isEmpty())
                m_workspace->change(uri, changes.last().toObject()[QStringLiteral("text")].toString());
            m_dirty = true;
        } else if (method == QLatin1String("textDocument/didSave")) {
            if (params.contains(QStringLiteral("text")))
                m_workspace->change(uri, params[QStringLiteral("text")].toString());
            m_dirty = true;
        } else if (method == QLatin1String("textDocument/didClose")) {
            m_workspace->close(uri);
            m_dirty = true;
        } else if (method == QLatin1String("workspace/didChangeWatchedFiles")) {
            m_dirty = true;
        } else if (method.startsWith(QLatin1String("textDocument/")) && !id.isUndefined()) {
            answer(id, method, uri, params);
        } else if (!id.isUndefined()) {
            m_connection.error(id, -32601, QStringLiteral("%1 is not served").arg(method));
        }
    }

    void initialize(const QJsonValue& id, const QJsonObject& params) {
        QString root = m_root;
        const QJsonArray folders = params[QStringLiteral("workspaceFolders")].toArray();
        if (root.isEmpty() && !folders.isEmpty())
            root = QUrl(folders.first().toObject()[QStringLiteral("uri")].toString()).toLocalFile();
        if (root.isEmpty()) root = QUrl(params[QStringLiteral("rootUri")].toString()).toLocalFile();
        if (root.isEmpty()) root = params[QStringLiteral("rootPath")].toString();
        if (root.isEmpty()) root = defaultRoot();
        m_workspace = std::make_unique<Workspace>(root);
        m_checks = std::make_unique<TreeChecks>(m_host);
        const QJsonObject capabilities{
            {QStringLiteral("textDocumentSync"),
             QJsonObject{{QStringLiteral("openClose"), true},
                         {QStringLiteral("change"), 1},
                         {QStringLiteral("save"), QJsonObject{{QStringLiteral("includeText"), true}}}}},
            {QStringLiteral("hoverProvider"), true},
            {QStringLiteral("completionProvider"),
             QJsonObject{{QStringLiteral("triggerCharacters"),
                          QJsonArray{QStringLiteral("<"), QStringLiteral(" "), QStringLiteral("\"")}}}},
            {QStringLiteral("definitionProvider"), true},
            {QStringLiteral("referencesProvider"), true}};
        m_connection.reply(
            id, QJsonObject{{QStringLiteral("capabilities"), capabilities},
                            {QStringLiteral("serverInfo"),
                             QJsonObject{{QStringLiteral("name"), QStringLiteral("lcdcfg")},
                                         {QStringLiteral("version"), QStringLiteral(LCD_VERSION)}}}});
    }

    void answer(const QJsonValue& id, const QString& method, const QString& uri, const QJsonObject& params) {
        if (m_dirty) check(); // answers are about the text as it is now
        const QJsonObject position = params[QStringLiteral("position")].toObject();
        const int line = position[QStringLiteral("line")].toInt();
        const int character = position[QStringLiteral("character")].toInt();
        const QString file = m_workspace->relative(uri);
        const QString text = m_workspace->text(uri);
        // a file outside the tree: its kind by its name alone, no ids
        const QString named = file.isEmpty() ? QFileInfo(QUrl(uri).toLocalFile()).fileName() : file;
        if (method == QLatin1String("textDocument/hover"))
            m_connection.reply(id, hover(*m_checks, m_index, named, text, line, character));
        else if (method == QLatin1String("textDocument/completion"))
            m_connection.reply(id, completion(*m_checks, m_index, named, text, line, character));
        else if (method == QLatin1String("textDocument/definition"))
            m_connection.reply(id, definition(*m_workspace, m_index, file, text, line, character));
        else if (method == QLatin1String("textDocument/references"))
            m_connection.reply(id, references(*m_workspace, m_index, file, text, line, character,
                                              params[QStringLiteral("context")]
                                                  .toObject()[QStringLiteral("includeDeclaration")]
                                                  .toBool()));
        else
            m_connection.error(id, -32601, QStringLiteral("%1 is not served").arg(method));
    }

    // Checks the tree as it is now and publishes the diagnostics of every
    // file whose text or list changed (an empty list for a file whose
    // problems are gone).
    void check() {
        m_dirty = false;
        if (!m_workspace->sync() && m_checked) return;
        if (m_checked)
            m_checks->update(m_workspace->changed());
        else
            m_checks->run(m_workspace->shadow());
        m_checked = true;
        if (m_verify) verify();
        m_index.update(*m_workspace);
        QHash<QString, QString> problems; // file -> what its diagnostics are made of
        for (const Problem& p : m_checks->problems())
            if (!p.file.isEmpty())
                problems[p.file] +=
                    QStringLiteral("%1 %2 %3 %4\n").arg(p.line).arg(int(p.severity)).arg(p.code, p.text);
        QSet<QString> files = m_published;
        for (auto it = problems.constBegin(); it != problems.constEnd(); ++it)
            files.insert(it.key());
        QStringList sorted = files.values();
        sorted.sort();
        QHash<QString, Published> kept;
        for (const QString& file : sorted) {
            const QString uri = m_workspace->uriOf(file);
            Published& now = kept[file];
            now.problems = problems.value(file);
            const auto before = m_diagnostics.constFind(file);
            if (before != m_diagnostics.constEnd() && before->problems == now.problems &&
                !m_workspace->changed().contains(file) && !before->ids.intersects(m_index.touched()))
                now = *before; // its text, its problems and the ids they name are as they were
            else
                now.list =
                    diagnostics(*m_checks, *m_workspace, m_index, file, m_workspace->text(uri), &now.ids);
            if (before != m_diagnostics.constEnd() && before->list == now.list &&
                !m_workspace->changed().contains(file))
                continue; // the editor has them
            m_connection.notify(QStringLiteral("textDocument/publishDiagnostics"),
                                {{QStringLiteral("uri"), uri}, {QStringLiteral("diagnostics"), now.list}});
        }
        m_diagnostics = kept;
        QSet<QString> published;
        for (auto it = problems.constBegin(); it != problems.constEnd(); ++it)
            published.insert(it.key());
        m_published = published;
        m_checks->release();
    }

    // --verify: every check is made in full too; a difference is reported
    // on standard error and makes the exit status 1.
    void verify() {
        if (!m_full) m_full = std::make_unique<TreeChecks>(m_host, false);
        m_full->run(m_workspace->shadow());
        const QString kept = printed(m_checks->problems()), full = printed(m_full->problems());
        if (kept == full) return;
        m_differed = true;
        err() << "lcdcfg: the problems kept after " << m_workspace->changed().join(QStringLiteral(", "))
              << " changed differ from a full check's:\n"
              << kept << "\n-- full:\n"
              << full << "\n";
        err().flush();
    }

    const kvchost::PluginHost& m_host;
    QString m_root;
    bool m_verify = false;
    bool m_differed = false;
    std::unique_ptr<TreeChecks> m_full;
    Connection m_connection;
    std::unique_ptr<Workspace> m_workspace;
    std::unique_ptr<TreeChecks> m_checks;
    IdIndex m_index;
    QSet<QString> m_published;
    // What was last published for a file: from which problems, naming which ids.
    struct Published {
        QString problems;
        QSet<QString> ids;
        QJsonArray list;
    };
    QHash<QString, Published> m_diagnostics;
    bool m_dirty = false;
    bool m_checked = false;
    bool m_shutdown = false;
    bool m_exit = false;
};

} // namespace

int runLsp(const QStringList& args) {
    CommandLine cl(QStringLiteral("lsp"),
                   QStringLiteral("Serves an editor over standard input and output (the Language Server\n"
                                  "Protocol): check and lint diagnostics of every file of the tree as you\n"
                                  "type, hover, completion, definitions and references. The tree is the\n"
                                  "workspace folder the editor sends, unless --root names one."),
                   QString());
    const QCommandLineOption rootOption(QStringLiteral("root"), QStringLiteral("Configuration root."),
                                        QStringLiteral("dir"));
    const QCommandLineOption stdio(QStringLiteral("stdio"),
                                   QStringLiteral("Talk over standard input and output "
                                                  "(the default and only way)."));
    QCommandLineOption verify(
        QStringLiteral("verify"),
        QStringLiteral("Check every change in full too; exit 1 when the results differ."));
    verify.setFlags(QCommandLineOption::HiddenFromHelp);
    cl.addOption(rootOption);
    cl.addOption(stdio);
    cl.addOption(verify);
    int code = kClean;
    if (!cl.parse(args, &code)) return code;
    if (!cl.positional().isEmpty()) return cl.usage(QStringLiteral("lsp takes no arguments"));
    kvchost::PluginHost* host = cl.host();
    if (!host) return kUsage;
    return Server(*host, cl.value(rootOption), cl.isSet(verify)).serve();
}

} // namespace lcdcfg
