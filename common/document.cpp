#include "common/document.h"
#include "common/loadobserver.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QXmlStreamReader>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LCD {
namespace ConfigModel {

namespace {

const char kOpenFailed[] = "Fail to open file [%1]!";
const char kParseError[] = "Parse error at line %1, column %2:\n%3";
const char kDeviceRootMismatch[] = "The file is not a valid configuration file for device.";
const char kDeviceVersionMismatch[] = "The file is not a valid configuration file of version 1.0 for device.";
const char kUiRootMismatch[] = "This file is not a valid configuration file.";
const char kUiVersionMismatch[] = "This file is not a valid configuration file of version 1.0 .";
const char kPathWithName[] = "Invalid file path!\n%1";
const char kPathPlain[] = "Invalid file path!";

QString tooLargeMessage() {
    return QStringLiteral("the file is larger than %1 MiB; description files are read up to that size")
        .arg(kMaxDocumentSize / (1024 * 1024));
}

QString nestingMessage() {
    return QStringLiteral("element nesting is deeper than %1 levels; the file is rejected")
        .arg(kMaxDocumentDepth);
}

// Start of a line and its 1-based number for a byte offset, counted only when
// a violation is reported.
NestingViolation positionOf(const char* begin, const char* at) {
    NestingViolation where;
    where.line = 1;
    const char* lineStart = begin;
    for (const char* p = begin; p < at; ++p) {
        if (*p == '\n') {
            ++where.line;
            lineStart = p + 1;
        }
    }
    int column = 1;
    for (const char* p = lineStart; p < at; ++p) {
        if ((static_cast<unsigned char>(*p) & 0xC0) != 0x80) // count characters, not UTF-8 bytes
            ++column;
    }
    where.column = column;
    where.reason = nestingMessage();
    return where;
}

const char* find(const char* from, const char* end, const char* what) {
    const size_t n = std::strlen(what);
    while (from < end) {
        const void* hit = std::memchr(from, what[0], static_cast<size_t>(end - from));
        if (!hit) return end;
        const char* p = static_cast<const char*>(hit);
        if (static_cast<size_t>(end - p) < n) return end;
        if (std::memcmp(p, what, n) == 0) return p + n;
        from = p + 1;
    }
    return end;
}

// The bytes a start or end tag may hold outside its quoted values for its
// markup to count as plain: ASCII name characters, blanks, '=' and '/'.
struct ByteSet {
    bool has[256] = {};
};
constexpr ByteSet plainTagBytes() {
    ByteSet set;
    for (int c = 0; c < 256; ++c)
        set.has[c] = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
                     c == '-' || c == '.' || c == ':' || c == ' ' || c == '\t' || c == '\n' || c == '\r' ||
                     c == '=' || c == '/';
    return set;
}
constexpr ByteSet kPlainTag = plainTagBytes();

bool plainByte(char c) {
    return kPlainTag.has[static_cast<unsigned char>(c)];
}

// Whether the processing instruction from `p` (just past "<?") to `close`
// (just past its "?>") is an XML declaration with plain bytes outside its
// quoted values: the stream reader accepts instruction targets the classic
// builder refuses.
bool plainDeclaration(const char* p, const char* close) {
    if (close - p < 6 || std::memcmp(close - 2, "?>", 2) != 0 || std::memcmp(p, "xml", 3) != 0 ||
        (p[3] != ' ' && p[3] != '\t' && p[3] != '\n'))
        return false;
    char quote = 0;
    for (p += 3; p < close - 2; ++p) {
        if (quote) {
            if (*p == quote) quote = 0;
        } else if (*p == '"' || *p == '\'') {
            quote = *p;
        } else if (!plainByte(*p)) {
            return false;
        }
    }
    return !quote;
}

// Past the '>' that closes a tag, skipping quoted attribute values; `plain`
// is cleared when the tag holds a byte outside kPlainTag, or a value a tab
// or a line feed.
const char* skipTag(const char* p, const char* end, bool* selfClosing, bool* plain) {
    char previous = 0;
    while (p < end) {
        const char c = *p;
        if (c == '"' || c == '\'') {
            const char* const close = static_cast<const char*>(std::memchr(p + 1, c, size_t(end - p - 1)));
            if (!close) return end;
            for (++p; p < close; ++p) // the builders normalise blanks in values differently
                *plain = *plain && *p != '\t' && *p != '\n';
            p = close + 1;
            previous = c;
            continue;
        }
        if (c == '>') {
            *selfClosing = previous == '/';
            return p + 1;
        }
        *plain = *plain && plainByte(c);
        previous = c;
        ++p;
    }
    return end;
}

// Encodings that are not ASCII-compatible (UTF-16, UTF-32) cannot be scanned
// byte by byte.
bool asciiCompatible(const QByteArray& data) {
    if (data.size() < 2) return true;
    const unsigned char a = static_cast<unsigned char>(data[0]);
    const unsigned char b = static_cast<unsigned char>(data[1]);
    return !((a == 0xFE && b == 0xFF) || (a == 0xFF && b == 0xFE) || a == 0 || b == 0);
}

// The encoding an XML declaration names, lower-case; empty when it names none.
// `ok` is false when the name is not quoted.
QByteArray declaredEncoding(const QByteArray& declaration, bool* ok) {
    *ok = true;
    const int at = declaration.indexOf("encoding");
    if (at < 0) return QByteArray();
    int from = at + 8;
    while (from < declaration.size() && (declaration[from] == ' ' || declaration[from] == '='))
        ++from;
    const char quote = from < declaration.size() ? declaration[from] : 0;
    const int close = declaration.indexOf(quote, from + 1);
    *ok = (quote == '"' || quote == '\'') && close >= 0;
    return *ok ? declaration.mid(from + 1, close - from - 1).toLower() : QByteArray();
}

// Whether the encoding named in an XML declaration writes '<', '>', '/' and
// quotes as their ASCII bytes and never uses those bytes inside another
// character. Anything else (UTF-7 spells markup as "+ADw-") is measured
// by the stream reader.
bool byteScannable(const QByteArray& declaration) {
    bool ok = false;
    const QByteArray name = declaredEncoding(declaration, &ok);
    if (!ok) return false;
    if (name.isEmpty()) return true;
    for (const char* safe : {"utf-8", "utf8", "us-ascii", "ascii", "iso-8859-", "latin", "windows-125",
                             "gb2312", "gbk", "gb18030", "big5"}) {
        if (name.startsWith(safe)) return true;
    }
    return false;
}

// The full reader, for documents the byte scanner does not handle: other
// encodings and documents with a DOCTYPE. Entity declarations are refused
// (an entity can carry markup that nests below the check), and so is
// anything the reader cannot read.
bool checkNestingStream(const QByteArray& data, int maxDepth, NestingViolation* where) {
    QXmlStreamReader reader(data);
    int depth = 0;
    auto reject = [&](const QString& reason) {
        if (where) *where = {int(reader.lineNumber()), int(reader.columnNumber()), reason};
        return false;
    };
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
            if (!reader.entityDeclarations().isEmpty())
                return reject(QStringLiteral("entity declarations are not accepted in description files"));
            break;
        case QXmlStreamReader::StartElement:
            if (++depth > maxDepth) return reject(nestingMessage());
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    return reader.hasError() ? reject(reader.errorString()) : true;
}

// The nesting check. `plain` tells whether the byte scanner read the whole
// document (no DOCTYPE, an ASCII-compatible encoding), every tag held only
// plain bytes, and neither a CDATA section nor a processing instruction other
// than the XML declaration was met.
bool nestingWithin(const QByteArray& data, int maxDepth, NestingViolation* where, bool* plain) {
    *plain = false;
    if (!asciiCompatible(data)) return checkNestingStream(data, maxDepth, where);

    const char* const begin = data.constData();
    const char* const end = begin + data.size();
    const char* const declaration = begin + (data.startsWith("\xEF\xBB\xBF") ? 3 : 0);
    const char* p = begin;
    int depth = 0;
    bool plainSoFar = true;
    while (p < end) {
        const void* hit = std::memchr(p, '<', static_cast<size_t>(end - p));
        if (!hit) break;
        const char* const tag = static_cast<const char*>(hit);
        p = tag + 1;
        if (p >= end) break;
        switch (*p) {
        case '?': { // processing instruction or XML declaration
            const char* const close = find(p, end, "?>");
            if (tag == begin && !byteScannable(QByteArray::fromRawData(p, int(close - p))))
                return checkNestingStream(data, maxDepth, where);
            plainSoFar = plainSoFar && tag == declaration && plainDeclaration(p + 1, close);
            p = close;
            break;
        }
        case '!':
            if (end - p >= 3 && p[1] == '-' && p[2] == '-') {
                p = find(p + 3, end, "-->");
            } else if (end - p >= 8 && std::memcmp(p, "![CDATA[", 8) == 0) {
                p = find(p + 8, end, "]]>");
                plainSoFar = false; // a blank CDATA section is kept by one builder only
            } else {
                // a DOCTYPE (or no markup at all): the full reader decides
                return checkNestingStream(data, maxDepth, where);
            }
            break;
        case '/': {
            --depth;
            const char* const close =
                static_cast<const char*>(std::memchr(p, '>', static_cast<size_t>(end - p)));
            for (p = p + 1; p < (close ? close : end); ++p)
                plainSoFar = plainSoFar && plainByte(*p);
            p = close ? close + 1 : end;
            break;
        }
        default: {
            if (++depth > maxDepth) {
                if (where) *where = positionOf(begin, tag);
                return false;
            }
            bool selfClosing = false;
            p = skipTag(p, end, &selfClosing, &plainSoFar);
            if (selfClosing) --depth;
            break;
        }
        }
    }
    *plain = plainSoFar;
    return true;
}

// Whether `data` holds a C0 control other than tab and line feed. Controls
// are not XML: the classic builder refuses them, the stream reader does not
// always; a carriage return is kept by the classic builder and turned into a
// line feed by the other. Eight bytes at a time: a word without a byte below
// 0x20 is passed over at once.
bool hasControl(const QByteArray& data) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(data.constData());
    const size_t size = size_t(data.size());
    const auto control = [](unsigned char c) { return c < 0x20 && c != '\t' && c != '\n'; };
    size_t i = 0;
    for (; i + 8 <= size; i += 8) {
        quint64 word;
        std::memcpy(&word, bytes + i, 8);
        constexpr quint64 kOnes = 0x0101010101010101ULL;
        if (((word - kOnes * 0x20) & ~word & (kOnes * 0x80)) == 0) continue; // every byte >= 0x20
        for (size_t k = i; k < i + 8; ++k)
            if (control(bytes[k])) return true;
    }
    for (; i < size; ++i)
        if (control(bytes[i])) return true;
    return false;
}

// Plain markup (see nestingWithin) in UTF-8 without control characters,
// carriage returns or character references, with an XML declaration, if
// any, naming UTF-8 or no encoding: documents the stream builder reads into
// the same tree as the classic builder. Outside them it accepts what the
// classic builder refuses (attribute names with '^' or '~', names with
// non-ASCII punctuation, control characters) or normalises blanks
// differently.
bool plainUtf8(const QByteArray& data, bool plainMarkup) {
    if (!plainMarkup) return false;
    if (hasControl(data)) return false;
    // Character references: the classic builder drops one to a character
    // beyond U+FFFF and keeps one to a control character or U+FFFF.
    const char* const end = data.constData() + data.size();
    for (const char* p = data.constData();
         (p = static_cast<const char*>(std::memchr(p, '&', size_t(end - p)))); ++p)
        if (p + 1 < end && p[1] == '#') return false;
    const int start = data.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    if (data.size() < start + 5 || std::memcmp(data.constData() + start, "<?xml", 5) != 0) return true;
    const int close = data.indexOf("?>", start);
    bool ok = false;
    const QByteArray name = declaredEncoding(data.mid(start, close < 0 ? -1 : close - start), &ok);
    return ok && (name.isEmpty() || name == "utf-8");
}

} // namespace

const DocumentFamily kDeviceFile{"Vrn", kPathWithName, kDeviceRootMismatch, kDeviceVersionMismatch,
                                 true,  false};
const DocumentFamily kMenuFile{"LCD", kPathWithName, kDeviceRootMismatch, kDeviceVersionMismatch,
                               false, false};
const DocumentFamily kUiFile{"LCD", kPathPlain, kUiRootMismatch, kUiVersionMismatch, false, true};
const DocumentFamily kHdrFile{"Kalmir", kPathPlain, kUiRootMismatch, kUiVersionMismatch, false, true};

QString Loader::text(const char* source) const {
    if (family.translated && trContext) return QCoreApplication::translate(trContext, source);
    return QString::fromUtf8(source);
}

QString Loader::invalidNode(const QString& tag) const {
    return text("Invalid [%1] node.").arg(tag);
}

bool checkNesting(const QByteArray& data, int maxDepth, NestingViolation* where) {
    bool plain = false;
    return nestingWithin(data, maxDepth, where, &plain);
}

namespace {

// Parses `data`; on failure `error` holds the family's parse text and
// `line`/`column` where the parser (or the nesting check) stopped.
bool parse(const QByteArray& data, const Loader& loader, QDomDocument& doc, QString& error, int& line,
           int& column) {
    NestingViolation where;
    bool plain = false;
    if (!nestingWithin(data, kMaxDocumentDepth, &where, &plain)) {
        line = where.line;
        column = where.column;
        error = loader.text(kParseError)
                    .arg(QString::number(where.line), QString::number(where.column), where.reason);
        return false;
    }
    // Plain UTF-8 goes through QDom's builder over the stream reader, which
    // builds the same tree faster. Anything else, and any document that
    // builder refuses, goes through the classic builder, whose verdict, error
    // text and position are the ones reported.
    if (plainUtf8(data, plain)) {
        QXmlStreamReader reader(data);
        if (doc.setContent(&reader, true)) return true;
    }
    QString message;
    if (!doc.setContent(data, true, &message, &line, &column)) {
        error = loader.text(kParseError).arg(QString::number(line), QString::number(column), message);
        return false;
    }
    return true;
}

void reportParsed(const QString& path, bool ok, const QString& error, int line, int column,
                  const QDomDocument& doc, DiagnosticKind failure) {
    LoadObserver* o = observe::current();
    if (Q_LIKELY(!o)) return;
    if (!ok) o->diagnostic({failure, QDomElement(), nullptr, error, false, line, column, QString()});
    DocumentRead read;
    read.path = path;
    read.ok = ok;
    if (!ok) {
        read.error = error;
        read.line = line;
        read.column = column;
    } else {
        read.document = doc;
    }
    o->documentParsed(read);
}

} // namespace

bool parseDocumentData(const QByteArray& data, const Loader& loader, QDomDocument& doc, QString& error) {
    int line = 0;
    int column = 0;
    return parse(data, loader, doc, error, line, column);
}

namespace {

enum class ReadResult { Ok, OpenFailed, TooLarge };

// Closes the descriptor whatever way the read ends.
struct Descriptor {
    int fd;
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
};

// Reads a regular file of at most kMaxDocumentSize bytes. The file is opened
// without blocking (a FIFO opens at once) and the type of what was opened is
// checked, not the type of the name: FIFOs, devices, sockets and directories
// are refused, and so is a file whose size is over the limit, before and
// while it is read (it may grow in between).
ReadResult readBounded(const QString& path, QByteArray& data) {
    const Descriptor file{::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)};
    if (file.fd < 0) return ReadResult::OpenFailed;
    struct stat status;
    if (::fstat(file.fd, &status) != 0 || !S_ISREG(status.st_mode)) return ReadResult::OpenFailed;
    if (status.st_size > kMaxDocumentSize) return ReadResult::TooLarge;

    // One byte more than the size says, so that growth shows without a
    // second allocation for the common case.
    qint64 capacity = qMax<qint64>(status.st_size + 1, 4096);
    data.resize(int(capacity));
    qint64 filled = 0;
    for (;;) {
        if (filled == capacity) {
            if (capacity > kMaxDocumentSize) return ReadResult::TooLarge;
            capacity = qMin<qint64>(capacity * 2, kMaxDocumentSize + 1);
            data.resize(int(capacity));
        }
        const ssize_t n = ::read(file.fd, data.data() + filled, size_t(capacity - filled));
        if (n < 0) {
            if (errno == EINTR) continue;
            return ReadResult::OpenFailed;
        }
        if (n == 0) break;
        filled += n;
    }
    if (filled > kMaxDocumentSize) return ReadResult::TooLarge;
    data.resize(int(filled));
    return ReadResult::Ok;
}

} // namespace

bool parseDocumentFile(const QString& path, const Loader& loader, QDomDocument& doc, QString& error) {
    if (LoadObserver* o = observe::current(); Q_UNLIKELY(o)) o->documentStarted(path);
    QByteArray data;
    int line = 0;
    int column = 0;
    bool ok = false;
    DiagnosticKind failure = DiagnosticKind::ParseFailed;
    switch (readBounded(path, data)) {
    case ReadResult::OpenFailed:
        failure = DiagnosticKind::OpenFailed;
        if (loader.family.debugOnOpenFailure)
            QMessageLogger(loader.site.file, loader.site.line, loader.site.function).debug().noquote()
                << "open file:" << path << " error code:" << int(QFileDevice::OpenError);
        error = loader.text(kOpenFailed).arg(path);
        break;
    case ReadResult::TooLarge:
        failure = DiagnosticKind::TooLarge;
        error = loader.text(kParseError).arg(QStringLiteral("0"), QStringLiteral("0"), tooLargeMessage());
        break;
    case ReadResult::Ok:
        ok = parse(data, loader, doc, error, line, column);
        break;
    }
    reportParsed(path, ok, error, line, column, doc, failure);
    return ok;
}

bool checkDocumentRoot(const QDomDocument& doc, const Loader& loader, QString& error) {
    const QDomElement root = doc.documentElement();
    auto reject = [&](const char* text, DiagnosticKind kind) {
        error = loader.text(text);
        if (LoadObserver* o = observe::current(); Q_UNLIKELY(o)) {
            o->documentRejected(root, error);
            o->diagnostic({kind, root, nullptr, error, false, 0, 0, QString()});
        }
        return false;
    };
    if (root.tagName() != QLatin1String(loader.family.root))
        return reject(loader.family.rootMismatch, DiagnosticKind::RootMismatch);
    const QString version = QStringLiteral("version");
    if (root.hasAttribute(version) && root.attribute(version) != QLatin1String("1.0"))
        return reject(loader.family.versionMismatch, DiagnosticKind::VersionMismatch);
    return true;
}

bool loadDocument(const QString& path, const Loader& loader, QDomDocument& doc, QString& error) {
    if (path.isEmpty()) {
        const QString text = loader.text(loader.family.pathEmpty);
        error = text.contains(QLatin1String("%1")) ? text.arg(path) : text;
        observe::diagnose(DiagnosticKind::PathEmpty, error);
        return false;
    }
    return parseDocumentFile(path, loader, doc, error) && checkDocumentRoot(doc, loader, error);
}

bool prepareDirectory(const QString& path, const Loader& loader, QString& error) {
    if (path.isEmpty() || (!QDir(path).exists() && !QDir().mkpath(path)) || !QFileInfo(path).isDir()) {
        error = loader.text(kPathWithName).arg(path);
        observe::diagnose(DiagnosticKind::PathEmpty, error);
        return false;
    }
    return true;
}

} // namespace ConfigModel
} // namespace LCD
