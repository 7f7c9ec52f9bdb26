#pragma once

// Small helpers shared by the tests: temporary description files, the shipped
// sample configuration, and a recorder for diagnostics.

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>
#include <QtXml/QDomDocument>

namespace test {

// A path under the shipped sample configuration (share/config/...).
inline QString sharedConfig(const QString& relative) {
    return QStringLiteral(LCD_SOURCE_DIR "/share/config/") + relative;
}

// A file under tests/data/ (fixtures too large to read well inline).
inline QByteArray testData(const QString& relative) {
    QFile file(QStringLiteral(LCD_SOURCE_DIR "/tests/data/") + relative);
    if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read test data %s", qPrintable(relative));
    return file.readAll();
}

// `xml` parsed with namespace processing, as the loader does; a fixture that
// is not well-formed stops the run.
inline QDomDocument document(const QByteArray& xml) {
    QDomDocument doc;
    QString error;
    if (!doc.setContent(xml, true, &error)) qFatal("test XML is not well-formed: %s", qPrintable(error));
    return doc;
}

// Writes `content` to `dir/relative` (parents created) and returns the path.
inline QString writeFile(const QTemporaryDir& dir, const QString& relative, const QByteArray& content) {
    const QString path = dir.filePath(relative);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) qFatal("cannot write %s", qPrintable(path));
    file.write(content);
    return path;
}

// A document nested `depth` elements deep: <root><e><e>...</e></e></root>.
inline QByteArray nestedDocument(const QByteArray& root, int depth, const QByteArray& attributes = {}) {
    QByteArray doc = "<" + root + attributes + ">";
    doc.reserve(depth * 8 + 64);
    for (int i = 1; i < depth; ++i)
        doc += "<e>";
    for (int i = 1; i < depth; ++i)
        doc += "</e>";
    doc += "</" + root + ">";
    return doc;
}

// Copies every file below `from` to `to` (parents created); returns `to`.
inline QString copyTree(const QString& from, const QString& to) {
    QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = to + "/" + QDir(from).relativeFilePath(source);
        QDir().mkpath(QFileInfo(target).absolutePath());
        QFile::copy(source, target);
    }
    return to;
}

// The command-line tool run as a user runs it: exit code, output and errors.
struct Run {
    int code;
    QString out;
    QString err;
};

inline Run lcdcfg(const QStringList& args) {
    QProcess process;
    process.start(QStringLiteral(LCD_TOOL_PATH), args);
    process.waitForFinished(120000);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

// One diagnostic as the message logger saw it.
struct Message {
    QtMsgType type;
    QString category;
    QString file;
    QString function;
    QString text;
};

// Records every diagnostic while it lives (and lets nothing through to the
// default handler). Not reentrant: one recorder at a time.
class MessageRecorder {
public:
    MessageRecorder() {
        s_current = this;
        m_previous = qInstallMessageHandler(&MessageRecorder::handle);
    }
    ~MessageRecorder() {
        qInstallMessageHandler(m_previous);
        s_current = nullptr;
    }
    const QList<Message>& messages() const { return m_messages; }
    QStringList texts(QtMsgType type) const {
        QStringList out;
        for (const Message& m : m_messages)
            if (m.type == type) out << m.text;
        return out;
    }
    QStringList warnings() const { return texts(QtWarningMsg); }
    QStringList debugs() const { return texts(QtDebugMsg); }
    // Warnings and errors only: a clean load has none.
    bool clean() const {
        for (const Message& m : m_messages)
            if (m.type != QtDebugMsg && m.type != QtInfoMsg) return false;
        return true;
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        s_current->m_messages.append({type, QString::fromUtf8(context.category ? context.category : ""),
                                      QString::fromUtf8(context.file ? context.file : ""),
                                      QString::fromUtf8(context.function ? context.function : ""), text});
    }

    static inline MessageRecorder* s_current = nullptr;
    QtMessageHandler m_previous = nullptr;
    QList<Message> m_messages;
};

// Runs `load(error)` and names what keeps it from being a clean load: empty
// when it returned true, left `error` empty and wrote no warning.
template <class Load> QString loadProblems(Load load) {
    MessageRecorder recorder;
    QString error;
    QStringList problems;
    if (!load(error)) problems << "load failed";
    if (!error.isEmpty()) problems << error;
    for (const Message& m : recorder.messages())
        if (m.type != QtDebugMsg && m.type != QtInfoMsg) problems << m.text;
    return problems.join("; ");
}

} // namespace test
