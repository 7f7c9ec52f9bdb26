#include "common/document.h"
#include "common/loadobserver.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLoggingCategory>
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QtCore/QStringDecoder>
#else
#include <QtCore/QTextCodec>
#endif
#include <QtCore/QXmlStreamReader>
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QtXml/QXmlInputSource>
#include <QtXml/QXmlSimpleReader>
#endif

#include <cerrno>
#include <cstring>
#include <new>
#include <vector>

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
    constexpr qint64 kMiB = 1024 * 1024;
    return kMaxDocumentSize % kMiB == 0
               ? QStringLiteral("the file is larger than %1 MiB; description files are read up to that size")
                     .arg(kMaxDocumentSize / kMiB)
               : QStringLiteral(
                     "the file is larger than %1 bytes; description files are read up to that size")
                     .arg(kMaxDocumentSize);
}

QString nestingMessage(int limit) {
    return QStringLiteral("element nesting is deeper than %1 levels; the file is rejected").arg(limit);
}

const char kOutOfMemory[] = "not enough memory to read the file; the file is rejected";

// Line and column (1-based, in characters) of a byte offset, counted only
// when a violation is reported.
LimitViolation positionOf(const char* begin, const char* at, const QString& reason) {
    LimitViolation where;
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
    where.reason = reason;
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

// The characters that end a name inside a start tag.
struct NameEnds {
    bool at[256] = {};
    constexpr NameEnds() {
        for (const char* c = "\"'>=/ \t\n\r"; *c; ++c)
            at[static_cast<unsigned char>(*c)] = true;
    }
    bool operator()(char c) const { return at[static_cast<unsigned char>(c)]; }
};
constexpr NameEnds kNameEnds;

// What one start tag holds.
struct Tag {
    int attributes = 0;
    int declarations = 0; // "xmlns" and "xmlns:p"
    int prefixed = 0;     // names holding ':'
    bool selfClosing = false;
};

// Past the '>' that closes a start tag (from just after its '<'), counting
// its attributes (one per quoted value), namespace declarations and names
// holding ':'. Stops early, at the end, once the attributes exceed `most`.
const char* scanTag(const char* p, const char* end, int most, Tag* tag) {
    const char* token = nullptr; // the name being read
    const char* name = nullptr;  // the last complete name
    size_t nameLength = 0;
    while (p < end) {
        const char c = *p;
        if (c == '"' || c == '\'') {
            if (++tag->attributes > most) return end;
            if ((nameLength == 5 || (nameLength > 5 && name[5] == ':')) && std::memcmp(name, "xmlns", 5) == 0)
                ++tag->declarations;
            nameLength = 0;
            const char* const close = static_cast<const char*>(std::memchr(p + 1, c, size_t(end - p - 1)));
            if (!close) return end;
            p = close + 1;
            continue;
        }
        if (c == '>') {
            tag->selfClosing = p[-1] == '/';
            return p + 1;
        }
        if (kNameEnds(c)) {
            if (token) {
                name = token;
                nameLength = size_t(p - token);
                token = nullptr;
            }
            ++p;
            continue;
        }
        // A name's characters are passed in one run.
        if (!token) token = p;
        while (++p < end && !kNameEnds(*p)) {
        }
        if (std::memchr(token, ':', size_t(p - token))) ++tag->prefixed;
    }
    return end;
}

// Past the '>' that ends a DOCTYPE (from its '!'): quoted literals are
// skipped, and inside the internal subset comments and processing
// instructions too, so that a quote in a comment ends nothing. `attlist` is
// set to the first attribute-list declaration of the internal subset.
const char* skipDoctype(const char* p, const char* end, const char** attlist) {
    int subset = 0;
    while (p < end) {
        const char c = *p;
        if (c == '"' || c == '\'') {
            const char* const close = static_cast<const char*>(std::memchr(p + 1, c, size_t(end - p - 1)));
            if (!close) return end;
            p = close + 1;
            continue;
        }
        if (subset > 0 && c == '<' && end - p >= 4 && std::memcmp(p, "<!--", 4) == 0) {
            p = find(p + 4, end, "-->");
            continue;
        }
        if (subset > 0 && c == '<' && end - p >= 2 && p[1] == '?') {
            p = find(p + 2, end, "?>");
            continue;
        }
        if (subset > 0 && c == '<' && end - p >= 9 && std::memcmp(p, "<!ATTLIST", 9) == 0 && !*attlist)
            *attlist = p;
        if (c == '[') ++subset;
        if (c == ']') --subset;
        if (c == '>' && subset <= 0) return p + 1;
        ++p;
    }
    return end;
}

// The byte scan of a document whose markup is ASCII bytes: counts start
// tags, attributes, namespace declarations and nesting, and skips comments,
// CDATA sections, processing instructions, quoted values and the DOCTYPE.
// `doctype` tells whether there was one.
bool scanBytes(const QByteArray& data, const DocumentLimits& limits, LimitViolation* where,
               DocumentShape* shape, bool* doctype) {
    const char* const begin = data.constData();
    const char* const end = begin + data.size();
    const char* p = begin;
    int depth = 0;
    auto reject = [&](const char* at, const QString& reason) {
        if (where) *where = positionOf(begin, at, reason);
        return false;
    };
    while (p < end) {
        const void* hit = std::memchr(p, '<', static_cast<size_t>(end - p));
        if (!hit) break;
        const char* const tag = static_cast<const char*>(hit);
        p = tag + 1;
        if (p >= end) break;
        switch (*p) {
        case '?':
            p = find(p, end, "?>");
            break;
        case '!':
            if (end - p >= 3 && p[1] == '-' && p[2] == '-') {
                p = find(p + 3, end, "-->");
            } else if (end - p >= 8 && std::memcmp(p, "![CDATA[", 8) == 0) {
                p = find(p + 8, end, "]]>");
            } else {
                // Default values declared for attributes would add attributes
                // the scan cannot count, compared pairwise by the parser.
                const char* attlist = nullptr;
                *doctype = true;
                p = skipDoctype(p, end, &attlist);
                if (attlist)
                    return reject(attlist, QStringLiteral("attribute-list declarations are not accepted in "
                                                          "description files"));
            }
            break;
        case '/': {
            --depth;
            const char* const close =
                static_cast<const char*>(std::memchr(p, '>', static_cast<size_t>(end - p)));
            p = close ? close + 1 : end;
            break;
        }
        default: {
            shape->depth = qMax(shape->depth, ++depth);
            if (depth > limits.depth) return reject(tag, nestingMessage(limits.depth));
            if (++shape->elements > limits.elements)
                return reject(tag, QStringLiteral("the file has more than %1 elements; the file is rejected")
                                       .arg(limits.elements));
            Tag counts;
            p = scanTag(p, end, limits.attributes, &counts);
            shape->attributes = qMax(shape->attributes, counts.attributes);
            if (counts.attributes > limits.attributes)
                return reject(tag, QStringLiteral("element has more than %1 attributes; the file is rejected")
                                       .arg(limits.attributes));
            shape->namespaceDeclarations += counts.declarations;
            shape->prefixedNames += counts.prefixed;
            if (shape->namespaceDeclarations > limits.namespaceDeclarations)
                return reject(tag,
                              QStringLiteral("the file has more than %1 namespace declarations; the file "
                                             "is rejected")
                                  .arg(limits.namespaceDeclarations));
            if (counts.selfClosing) --depth;
            break;
        }
        }
    }
    return true;
}

// The encoding an XML declaration names, lower-case; empty when it names none.
// `ok` is false when the name is not quoted.
QByteArray declaredEncoding(const QByteArray& data, bool* ok) {
    *ok = true;
    const int start = data.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    if (data.size() < start + 5 || std::memcmp(data.constData() + start, "<?xml", 5) != 0)
        return QByteArray();
    const QByteArray declaration = data.mid(start, data.indexOf("?>", start) - start);
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

// The encoding to decode `data` from before the byte scan can read it, or
// empty when its markup already is ASCII bytes: UTF-16 and UTF-32 (by their byte-order
// mark or the zero bytes of the first character), and a declared encoding
// that may spell markup otherwise (UTF-7 writes '<' as "+ADw-"). An encoding
// that no codec knows is scanned as it is; the parser refuses it.
QByteArray encodingToDecode(const QByteArray& data) {
    if (data.size() >= 4) {
        const auto* b = reinterpret_cast<const unsigned char*>(data.constData());
        const char* name = nullptr;
        if ((b[0] == 0 && b[1] == 0 && b[2] == 0xFE && b[3] == 0xFF) || (b[0] == 0 && b[1] == 0 && b[2] == 0))
            name = "UTF-32BE";
        else if ((b[0] == 0xFF && b[1] == 0xFE && b[2] == 0 && b[3] == 0) ||
                 (b[1] == 0 && b[2] == 0 && b[3] == 0))
            name = "UTF-32LE";
        else if ((b[0] == 0xFE && b[1] == 0xFF) || b[0] == 0)
            name = "UTF-16BE";
        else if ((b[0] == 0xFF && b[1] == 0xFE) || b[1] == 0)
            name = "UTF-16LE";
        if (name) return name;
    }
    bool ok = false;
    const QByteArray name = declaredEncoding(data, &ok);
    if (!ok || name.isEmpty()) return QByteArray();
    for (const char* safe : {"utf-8", "utf8", "us-ascii", "ascii", "iso-8859-", "latin", "windows-125",
                             "gb2312", "gbk", "gb18030", "big5"}) {
        if (name.startsWith(safe)) return QByteArray();
    }
    return name;
}

// `data` decoded from `encoding` as UTF-8; false when no codec knows the
// encoding (Qt 6 knows the UTF encodings and Latin-1 only, as its parser does).
bool decodeToUtf8(const QByteArray& encoding, const QByteArray& data, QByteArray* utf8) {
    if (encoding.isEmpty()) return false;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QStringDecoder decoder(encoding.constData());
    if (!decoder.isValid()) return false;
    *utf8 = QString(decoder(data)).toUtf8();
#else
    QTextCodec* const codec = QTextCodec::codecForName(encoding);
    if (!codec) return false;
    *utf8 = codec->toUnicode(data).toUtf8();
#endif
    return true;
}

// Qt's stream reader over a document the byte scan cannot vouch for alone (a
// DOCTYPE, another encoding): entity declarations are refused (an entity can
// carry markup that nests below any check made before the parse), and so is
// anything the reader cannot read. The byte scan has bounded the attributes
// on each element, which the reader compares pairwise.
bool readWithStreamReader(const QByteArray& data, const DocumentLimits& limits, LimitViolation* where) {
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
            if (++depth > limits.depth) return reject(nestingMessage(limits.depth));
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

namespace {

// checkLimits, telling also whether the document has a DOCTYPE.
bool withinLimits(const QByteArray& data, const DocumentLimits& limits, LimitViolation* where,
                  DocumentShape* shape, bool* doctype) {
    DocumentShape counted;
    if (!shape) shape = &counted;
    *shape = DocumentShape();
    *doctype = false;
    if (data.size() > kMaxDocumentSize) {
        if (where) *where = {0, 0, tooLargeMessage()};
        return false;
    }
    QByteArray utf8;
    const bool decoded = decodeToUtf8(encodingToDecode(data), data, &utf8);
    if (!scanBytes(decoded ? utf8 : data, limits, where, shape, doctype)) return false;
    return (*doctype || decoded) ? readWithStreamReader(data, limits, where) : true;
}

} // namespace

bool checkLimits(const QByteArray& data, const DocumentLimits& limits, LimitViolation* where,
                 DocumentShape* shape) {
    bool doctype = false;
    return withinLimits(data, limits, where, shape, &doctype);
}

namespace {

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
// The text of `data` as Qt 5's parser reads it, decoded here in one pass
// rather than by the parser a kilobyte at a time; null where the two could
// differ, and the parser is handed the bytes: a byte-order mark or the zero
// bytes of UTF-16 and UTF-32, an encoding other than UTF-8 named before the
// first '>' (where the parser looks for one), an invalid or cut UTF-8
// sequence (the parser replaces it piece by piece) and U+FEFF anywhere (the
// parser drops one that begins a piece).
QString utf8Text(const QByteArray& data) {
    const auto* b = reinterpret_cast<const unsigned char*>(data.constData());
    const char* const end = data.constData() + data.size();
    const char bom[] = "\xEF\xBB\xBF";
    if (data.size() < 2 || b[0] == 0 || b[1] == 0 || (b[0] == 0xFE && b[1] == 0xFF) ||
        (b[0] == 0xFF && b[1] == 0xFE) || find(data.constData(), end, bom) != end || data.endsWith(bom))
        return QString();
    if (data.startsWith("<?xml")) {
        const int close = data.indexOf('>');
        if (close >= 0 && QByteArray::fromRawData(data.constData(), close).contains("encoding")) {
            bool quoted = false;
            const QByteArray name = declaredEncoding(data, &quoted);
            if (name != "utf-8" && name != "utf8") return QString();
        }
    }
    static QTextCodec* const utf8 = QTextCodec::codecForMib(106);
    QTextCodec::ConverterState state;
    const QString text = utf8->toUnicode(data.constData(), data.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 ? text : QString();
}

// Whether every reference in `data` is a character reference or one of the
// five predefined entities: in a document without a DOCTYPE nothing else is
// declared, and the parser would skip the others.
bool onlyPredefinedReferences(const QByteArray& data) {
    const char* p = data.constData();
    const char* const end = p + data.size();
    while ((p = static_cast<const char*>(std::memchr(p, '&', size_t(end - p))))) {
        ++p;
        if (p < end && *p == '#') continue;
        bool known = false;
        for (const char* name : {"amp;", "lt;", "gt;", "apos;", "quot;"}) {
            const size_t n = std::strlen(name);
            if (size_t(end - p) >= n && std::memcmp(p, name, n) == 0) known = true;
        }
        if (!known) return false;
    }
    return true;
}
#endif

} // namespace

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
// Qt 5's parser set up as QDomDocument sets up its own, and the input it
// reads from.
struct DocumentParser {
    QXmlSimpleReader reader;
    QXmlInputSource source;
    bool namespaces = false;
    DocumentParser() {
        reader.setFeature(QStringLiteral("http://trolltech.com/xml/features/report-whitespace-only-CharData"),
                          false);
        setNamespaces(true);
    }
    // With namespace processing, or without it (as for setContent(data, false)).
    void setNamespaces(bool on) {
        if (on == namespaces) return;
        namespaces = on;
        reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"), on);
        reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespace-prefixes"), !on);
    }
};
QT_WARNING_POP
#endif

namespace {

// The DOM of `data`, namespace processing on. `doc` is let go only here,
// after the file's buffers were allocated: the new document's nodes then
// take the blocks the previous one freed as they are, where a large
// allocation in between would first have the allocator merge them all.
// That is also why the loader keeps its parser between files: making one
// is such an allocation. A skipped entity would be treated differently by
// the kept parser (it is not told the parser's context), so a document with a
// DOCTYPE or a reference to anything but a predefined entity gets a fresh one.
// A document the scan found no prefix and no namespace declaration in is
// parsed without namespace processing: its tree is the same (every name is
// local, every namespace null; only localName() and a repeated attribute
// differ, docs/hardening.md), QDom then looks an attribute up by its name
// instead of comparing it with each one before it, the parser resolves no
// names, and a parse costs a seventh less.
bool build(const QByteArray& data, bool doctype, const DocumentShape& shape, const Loader& loader,
           QDomDocument& doc, QString* message, int* line, int* column) {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const QString text = utf8Text(data);
    if (!text.isNull() && !doctype && onlyPredefinedReferences(data)) {
        if (!loader.parser) loader.parser = std::make_shared<DocumentParser>();
        DocumentParser& parser = *loader.parser;
        parser.setNamespaces(shape.prefixedNames > 0 || shape.namespaceDeclarations > 0);
        parser.source.setData(text);
        doc = QDomDocument();
        QT_WARNING_PUSH
        QT_WARNING_DISABLE_DEPRECATED
        const bool ok = doc.setContent(&parser.source, &parser.reader, message, line, column);
        QT_WARNING_POP
        parser.source.setData(QString());
        if (!ok) loader.parser.reset(); // a failed parse may leave state behind
        return ok;
    }
    doc = QDomDocument();
    if (!text.isNull()) return doc.setContent(text, true, message, line, column);
#else
    Q_UNUSED(doctype)
    Q_UNUSED(shape)
    Q_UNUSED(loader)
    doc = QDomDocument();
#endif
    return doc.setContent(data, true, message, line, column);
}

// Parses `data`; on failure `error` holds the family's parse text and
// `line`/`column` where the parser (or the scan before it) stopped.
bool parse(const QByteArray& data, const Loader& loader, QDomDocument& doc, QString& error, int& line,
           int& column) {
    LimitViolation where;
    DocumentShape shape;
    QString message;
    bool doctype = false;
    try {
        if (!withinLimits(data, DocumentLimits(), &where, &shape, &doctype)) {
            line = where.line;
            column = where.column;
            message = where.reason;
        } else if (build(data, doctype, shape, loader, doc, &message, &line, &column)) {
            return true;
        }
    } catch (const std::bad_alloc&) {
        // The parser's partial tree is freed as far as it can be; the next
        // load starts afresh.
        doc.clear();
        loader.parser.reset();
        line = 0;
        column = 0;
        message = QString::fromLatin1(kOutOfMemory);
    }
    error = loader.text(kParseError).arg(QString::number(line), QString::number(column), message);
    return false;
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

// After a failed parse, the element left open, when that is why the parse
// failed: the parse stopped at an end tag that closes an element further out
// (the element opened inside that one is left open), or at the end of the
// file (the innermost element is). Costs a second read, with an observer only.
void reportUnclosed(const QByteArray& data, const QString& error) {
    LoadObserver* o = observe::current();
    if (Q_LIKELY(!o)) return;
    struct Open {
        QByteArray name;
        int line, column;
    };
    std::vector<Open> open;
    QXmlStreamReader reader(data);
    qint64 before = 0; // where the token the reader stopped at begins, in characters
    while (!reader.atEnd()) {
        before = reader.characterOffset();
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement)
            open.push_back(
                {reader.qualifiedName().toUtf8(), int(reader.lineNumber()), int(reader.columnNumber())});
        else if (token == QXmlStreamReader::EndElement && !open.empty())
            open.pop_back();
    }
    if (!reader.hasError() || open.empty()) return;
    std::size_t left = open.size() - 1; // at the end of the file: the innermost
    if (reader.error() != QXmlStreamReader::PrematureEndOfDocumentError) {
        // the reader may have taken the '<' of the end tag it stopped at
        QString rest = QString::fromUtf8(data).mid(int(before), 256).trimmed();
        if (rest.startsWith(QLatin1Char('<'))) rest.remove(0, 1);
        if (!rest.startsWith(QLatin1Char('/'))) return; // not an end tag: another fault
        const QByteArray closing = rest.mid(1).section(QLatin1Char('>'), 0, 0).trimmed().toUtf8();
        std::size_t outer = open.size();
        while (outer > 0 && open[outer - 1].name != closing)
            --outer;
        if (outer == 0 || outer == open.size()) return; // an end tag of nothing open
        left = outer;
    }
    o->diagnostic({DiagnosticKind::ElementUnclosed, QDomElement(), open[left].name.constData(), error, false,
                   open[left].line, open[left].column, QString()});
}

} // namespace

bool parseDocumentData(const QByteArray& data, const Loader& loader, QDomDocument& doc, QString& error) {
    int line = 0;
    int column = 0;
    return parse(data, loader, doc, error, line, column);
}

namespace {

enum class ReadResult { Ok, OpenFailed, TooLarge, OutOfMemory };

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
    ReadResult read = ReadResult::OutOfMemory;
    try {
        read = readBounded(path, data);
    } catch (const std::bad_alloc&) {
        data.clear();
    }
    switch (read) {
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
    case ReadResult::OutOfMemory:
        error = loader.text(kParseError)
                    .arg(QStringLiteral("0"), QStringLiteral("0"), QString::fromLatin1(kOutOfMemory));
        break;
    case ReadResult::Ok:
        ok = parse(data, loader, doc, error, line, column);
        break;
    }
    if (!ok) doc = QDomDocument(); // a failed file leaves no document, not even the previous one
    reportParsed(path, ok, error, line, column, doc, failure);
    if (!ok && read == ReadResult::Ok) reportUnclosed(data, error);
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
    // U+FFFD stands for bytes a listing could not decode: creating the folder
    // would make a new one under another name.
    const bool mangled = path.contains(QChar(QChar::ReplacementCharacter));
    if (path.isEmpty() || (!QDir(path).exists() && (mangled || !QDir().mkpath(path))) ||
        !QFileInfo(path).isDir()) {
        error = loader.text(kPathWithName).arg(path);
        observe::diagnose(DiagnosticKind::PathEmpty, error);
        return false;
    }
    return true;
}

} // namespace ConfigModel
} // namespace LCD
