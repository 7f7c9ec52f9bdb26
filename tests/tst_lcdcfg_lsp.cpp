// lcdcfg lsp, driven as editors drive it: a recorded JSON-RPC transcript
// replayed and its replies compared with a golden file, and Debian's neovim
// with its built-in LSP client. Both work on a copy of the shipped tree and
// check that the server never wrote into it.

#include <QtCore/QCryptographicHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

#include "testutil.h"

namespace {

// Every file of a tree with a digest of its bytes.
QMap<QString, QByteArray> snapshot(const QString& root) {
    QMap<QString, QByteArray> files;
    QDirIterator it(root, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (file.open(QIODevice::ReadOnly))
            files.insert(QDir(root).relativeFilePath(file.fileName()),
                         QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1));
    }
    return files;
}

// The transcript's shorthand for a whole text: {"file": F} is F of the
// shipped tree, {"file": F, "replace": [A, B]} the same with A replaced by B.
void expandTexts(QJsonValueRef value) {
    if (value.isArray()) {
        QJsonArray array = value.toArray();
        for (QJsonValueRef v : array)
            expandTexts(v);
        value = array;
        return;
    }
    if (!value.isObject()) return;
    QJsonObject object = value.toObject();
    if (object.contains("file")) {
        QByteArray text;
        QFile file(test::sharedConfig(object["file"].toString()));
        if (file.open(QIODevice::ReadOnly)) text = file.readAll();
        const QJsonArray replace = object["replace"].toArray();
        if (replace.size() == 2) text.replace(replace[0].toString().toUtf8(), replace[1].toString().toUtf8());
        value = QString::fromUtf8(text);
        return;
    }
    for (auto it = object.begin(); it != object.end(); ++it)
        expandTexts(it.value());
    value = object;
}

class Client {
public:
    explicit Client(QProcess& server) : m_server(server) {}
    void send(const QByteArray& body) {
        m_server.write("Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
    }
    // The next message; an empty object when none comes within 60 s.
    QJsonObject next() {
        for (;;) {
            const int end = m_buffer.indexOf("\r\n\r\n");
            if (end >= 0) {
                const int length = m_buffer.mid(16, end - 16).trimmed().toInt();
                if (m_buffer.size() >= end + 4 + length) {
                    const QByteArray body = m_buffer.mid(end + 4, length);
                    m_buffer.remove(0, end + 4 + length);
                    return QJsonDocument::fromJson(body).object();
                }
            }
            if (!m_server.waitForReadyRead(60000)) return {};
            m_buffer += m_server.readAllStandardOutput();
        }
    }

private:
    QProcess& m_server;
    QByteArray m_buffer;
};

} // namespace

class LcdcfgLspTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // tests/data/lcdcfg/lsp-transcript.json, sent message by message (after
    // a request, its reply is awaited; {"delete": F} removes F from the
    // tree, {"write": F, "text": T} saves T as F), against a copy of the shipped tree; every message the
    // server sends, one per line, must be tests/data/lcdcfg/lsp-replies.jsonl.
    void transcriptMatchesGolden() {
        QTemporaryDir dir;
        const QString root = test::shippedCopy(dir);
        const QString rootUri = QUrl::fromLocalFile(root).toString();
        QMap<QString, QByteArray> before = snapshot(root);
        QJsonArray transcript = QJsonDocument::fromJson(test::testData("lcdcfg/lsp-transcript.json")).array();

        QProcess server;
        server.start(QStringLiteral(LCD_TOOL_PATH), {"lsp", "--verify"}); // each change checked in full too
        QVERIFY(server.waitForStarted());
        Client client(server);
        QByteArray replies;
        for (QJsonValueRef step : transcript) {
            QJsonObject message = step.toObject();
            if (message.contains("delete")) {
                QVERIFY(QFile::remove(root + "/" + message["delete"].toString()));
                before.remove(message["delete"].toString());
                continue;
            }
            expandTexts(step);
            message = step.toObject();
            if (message.contains("write")) { // the text saved by another program, in Latin-1 if asked
                const QString text = message["text"].toString();
                const QByteArray bytes = message["latin1"].toBool() ? text.toLatin1() : text.toUtf8();
                QFile file(root + "/" + message["write"].toString());
                QDir().mkpath(QFileInfo(file).absolutePath());
                QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                        file.write(bytes) == bytes.size());
                before.insert(message["write"].toString(),
                              QCryptographicHash::hash(bytes, QCryptographicHash::Sha1));
                continue;
            }
            message.insert("jsonrpc", "2.0");
            client.send(
                QJsonDocument(message).toJson(QJsonDocument::Compact).replace("ROOT", rootUri.toUtf8()));
            if (!message.contains("id")) continue;
            for (QJsonObject reply = client.next();; reply = client.next()) {
                QVERIFY2(!reply.isEmpty(), "no reply");
                replies +=
                    QJsonDocument(reply).toJson(QJsonDocument::Compact).replace(rootUri.toUtf8(), "ROOT") +
                    "\n";
                if (reply["id"] == message["id"]) break;
            }
        }
        QVERIFY(server.waitForFinished(60000));
        QCOMPARE(server.exitStatus(), QProcess::NormalExit);
        QVERIFY2(server.exitCode() == 0, server.readAllStandardError().constData());
        test::compareGolden("lsp-replies.jsonl", replies);
        QCOMPARE(snapshot(root), before);
    }

    // Debian's neovim, headless, with its built-in client: the diagnostic of
    // an unsaved fault at its line, a hover and a definition.
    void neovimSeesDiagnosticsHoverAndDefinition() {
        const QString nvim = QStandardPaths::findExecutable("nvim");
        if (nvim.isEmpty()) QSKIP("neovim is not installed (make test installs it)");
        QTemporaryDir dir;
        const QString root = test::shippedCopy(dir);
        const QMap<QString, QByteArray> before = snapshot(root);
        QProcess editor;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("LCD_NVIM_ROOT", root);
        env.insert("LCD_NVIM_OUT", dir.filePath("answers"));
        env.insert("LCD_TOOL", LCD_TOOL_PATH);
        env.insert("XDG_CONFIG_HOME", dir.filePath("xdg")); // no user configuration
        env.insert("XDG_DATA_HOME", dir.filePath("xdg"));
        env.insert("XDG_STATE_HOME", dir.filePath("xdg"));
        editor.setProcessEnvironment(env);
        editor.start(nvim, {"--headless", "--clean", "-n", "-c",
                            "luafile " LCD_SOURCE_DIR "/tests/data/lcdcfg/nvim-check.lua"});
        QVERIFY(editor.waitForFinished(120000));
        QFile file(dir.filePath("answers"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList answers = QString::fromUtf8(file.readAll()).split('\n');
        QVERIFY2(editor.exitCode() == 0, qPrintable(answers.join('\n') + editor.readAllStandardError()));
        QCOMPARE(answers.value(0), QStringLiteral("diagnostic 33 number-invalid"));
        QVERIFY2(answers.value(1).contains("a decimal integer") && answers.value(1).contains("Loaded: 0"),
                 qPrintable(answers.value(1)));
        QVERIFY2(answers.value(2).endsWith("/subcard/2101_hdmi20_4in.xml"), qPrintable(answers.value(2)));
        QCOMPARE(snapshot(root), before);
    }
};

QTEST_GUILESS_MAIN(LcdcfgLspTest)
#include "tst_lcdcfg_lsp.moc"
