#pragma once

// Small helpers shared by the tests: temporary description files, the shipped
// sample configuration, and a recorder for diagnostics.

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>
#include <QtXml/QDomDocument>

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace test {

// What the XML parser itself says, which Qt 6's parser words, places or
// decides differently (docs/api.md, "Qt 6"): Qt 5's result, then Qt 6's.
template <class T> T byQt(const T& qt5, const T& qt6) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    Q_UNUSED(qt5)
    return qt6;
#else
    Q_UNUSED(qt6)
    return qt5;
#endif
}
inline QString byQt(const QString& qt5, const QString& qt6) {
    return byQt<QString>(qt5, qt6);
}

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

// A copy of the shipped configuration at `dir`/`at`; returns its path.
inline QString shippedCopy(const QTemporaryDir& dir, const QString& at = QStringLiteral("config")) {
    const QString from = sharedConfig(QString()), to = dir.filePath(at);
    for (QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString target = to + "/" + QDir(from).relativeFilePath(it.next());
        QDir().mkpath(QFileInfo(target).absolutePath());
        QFile::copy(it.filePath(), target);
    }
    return to;
}

// A program run as a user runs it: exit code (-1 when it crashed), output and errors.
struct Run {
    int code;
    QString out;
    QString err;
};

inline Run run(const QString& program, const QStringList& args,
               const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, args);
    // A run that has not ended (slow under the sanitizers) fails as such,
    // not with the exit code 0 of a process still running.
    if (!process.waitForFinished(600000)) {
        process.kill();
        process.waitForFinished();
        return {-1, QString(), program + QStringLiteral(" did not end within 600 s")};
    }
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

// The command-line tool.
inline Run lcdcfg(const QStringList& args) {
    return run(QStringLiteral(LCD_TOOL_PATH), args);
}

// Compares `actual` with the golden file tests/data/`folder``name`; a
// mismatch fails with the unified diff (golden first). LCD_UPDATE_GOLDEN=1
// rewrites it. Under Qt 6, NAME.qt6.EXT beside it, where there is one, holds
// what Qt 6's parser words or places differently (docs/api.md, "Qt 6");
// rewriting under Qt 6 keeps that file only while the output differs from
// Qt 5's.
inline void compareGolden(const QString& name, const QByteArray& actual,
                          const QString& folder = QStringLiteral("lcdcfg/")) {
    QString path = QStringLiteral(LCD_SOURCE_DIR "/tests/data/") + folder + name;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    const int dot = path.lastIndexOf('.');
    const QString qt6 = path.left(dot) + QStringLiteral(".qt6") + path.mid(dot);
    if (qEnvironmentVariableIsSet("LCD_UPDATE_GOLDEN")) {
        QFile qt5(path);
        if (qt5.open(QIODevice::ReadOnly) && qt5.readAll() == actual) {
            QFile::remove(qt6);
            return;
        }
        path = qt6;
    } else if (QFile::exists(qt6)) {
        path = qt6;
    }
#endif
    QFile file(path);
    if (qEnvironmentVariableIsSet("LCD_UPDATE_GOLDEN")) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(actual);
        return;
    }
    if (file.open(QIODevice::ReadOnly) && file.readAll() == actual) return;
    QTemporaryDir dir;
    QProcess diff;
    diff.start(QStringLiteral("diff"), {"-u", path, writeFile(dir, "actual", actual)});
    diff.waitForFinished();
    QFAIL(qPrintable(path + " differs (LCD_UPDATE_GOLDEN=1 rewrites it):\n" +
                     QString::fromUtf8(diff.readAllStandardOutput())));
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

// ---- whole-record comparison ------------------------------------------------

template <class T, class = void> struct IsRecord : std::false_type {};
template <class T>
struct IsRecord<T, std::void_t<decltype(std::declval<const T&>().fields())>> : std::true_type {};
template <class T, class = void> struct IsList : std::false_type {};
template <class T>
struct IsList<
    T, std::void_t<decltype(std::declval<const T&>().size()), decltype(std::declval<const T&>().begin())>>
    : std::true_type {};

template <class T> QString valueText(const T& v) {
    if constexpr (std::is_enum_v<T>)
        return QString::number(static_cast<qlonglong>(v));
    else if constexpr (std::is_arithmetic_v<T>)
        return QString::number(v);
    else if constexpr (std::is_same_v<T, std::string>)
        return '"' + QString::fromStdString(v) + '"';
    else if constexpr (std::is_same_v<T, QString>)
        return '"' + v + '"';
    else if constexpr (std::is_pointer_v<T>)
        return v ? QStringLiteral("(pointer)") : QStringLiteral("null");
    else
        return QStringLiteral("(value)");
}

template <class T> void differences(const T& a, const T& b, const QString& at, QStringList& out, bool every);

// A record's field names as its LCD_RECORD_FIELDS list writes them (a base
// record's part reads "static_cast<const Base&>(*this)": named "base").
inline QStringList fieldNames(const char* list) {
    QStringList names;
    for (const QString& name : QString::fromLatin1(list).split(QLatin1Char(',')))
        names << (name.contains(QLatin1Char('<')) ? QStringLiteral("base") : name.trimmed());
    return names;
}

// Every place where `a` and `b` differ, as "path: a-value vs b-value", in
// field order (every value, equal or not, when `every`). Records are walked
// through their field list (LCD_RECORD_FIELDS), lists element by element; an
// element only one list has is set against a fresh element, value by value.
template <class T> void differences(const T& a, const T& b, const QString& at, QStringList& out, bool every) {
    if constexpr (IsRecord<T>::value) {
        const QStringList names = fieldNames(T::fieldNames());
        int i = 0;
        std::apply(
            [&](const auto&... fa) {
                std::apply(
                    [&](const auto&... fb) {
                        (differences(fa, fb, at + '.' + names.value(i++), out, every), ...);
                    },
                    b.fields());
            },
            a.fields());
    } else if constexpr (IsList<T>::value && !std::is_same_v<T, std::string> && !std::is_same_v<T, QString>) {
        if (a.size() != b.size())
            out << at + QStringLiteral(": %1 elements vs %2")
                            .arg(qlonglong(a.size()))
                            .arg(qlonglong(b.size()));
        const typename T::value_type fresh{};
        auto ia = a.begin();
        auto ib = b.begin();
        for (int index = 0; ia != a.end() || ib != b.end(); ++index) {
            const bool both = ia != a.end() && ib != b.end();
            differences(ia != a.end() ? *ia : fresh, ib != b.end() ? *ib : fresh,
                        at + QStringLiteral("[%1]").arg(index), out, every || !both);
            if (ia != a.end()) ++ia;
            if (ib != b.end()) ++ib;
        }
    } else if (every || !(a == b)) {
        out << at + ": " + valueText(a) + " vs " + valueText(b);
    }
}

template <class T> QStringList differences(const T& a, const T& b, const QString& at = QString()) {
    QStringList out;
    differences(a, b, at, out, false);
    return out;
}

// Compares the differences of `actual` from `reference`, one line each, with
// the golden file tests/data/`folder`/<the data row's tag (or the test
// function's name), in words joined by '-'>.txt: what the row changed, field
// by field.
template <class T> void compareChanges(const QString& folder, const T& reference, const T& actual) {
    const char* tag = QTest::currentDataTag();
    const QString row = QString::fromUtf8(tag ? tag : QTest::currentTestFunction()).toLower();
    const QString name =
        row.split(QRegularExpression(QStringLiteral("[^a-z0-9]+")), Qt::SkipEmptyParts).join('-');
    compareGolden(name + ".txt", differences(reference, actual).join('\n').toUtf8() + '\n', folder + '/');
}

} // namespace test

// QCOMPARE for whole records: a failure names every differing field with
// both values ("r.max: 0 vs 255").
#define LCD_COMPARE_RECORDS(actual, expected)                                                                \
    do {                                                                                                     \
        const auto& lcdActual = (actual);                                                                    \
        const std::decay_t<decltype(lcdActual)>& lcdExpected = (expected);                                   \
        const QStringList lcdDifferences =                                                                   \
            test::differences(lcdActual, lcdExpected, QStringLiteral(#actual));                              \
        if (!lcdDifferences.isEmpty() || !(lcdActual == lcdExpected))                                        \
            QFAIL(qPrintable(QStringLiteral("records differ at ") +                                          \
                             lcdDifferences.join(QStringLiteral("; "))));                                    \
    } while (false)
