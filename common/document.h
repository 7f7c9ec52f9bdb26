#pragma once

// The one way a description file is opened, checked and parsed. Every loader
// of the library goes through loadDocument (or, for directory scans,
// prepareDirectory followed by parseDocumentFile and checkDocumentRoot), so
// this is also the one place where hostile input is bounded.

#include <QtCore/QString>
#include <QtXml/QDomDocument>

#include <memory>

#include "lcdconfigmodel/export.h"

namespace LCD {
namespace ConfigModel {

// Where a diagnostic comes from: the loader's own file, line and function.
struct LogSite {
    const char* file;
    int line;
    const char* function;
};
#define LCD_LOG_SITE                                                                                         \
    ::LCD::ConfigModel::LogSite {                                                                            \
        QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC                                           \
    }

// One loader family: its root element and the texts it reports.
struct DocumentFamily {
    const char* root;
    const char* pathEmpty; // may hold %1 for the path
    const char* rootMismatch;
    const char* versionMismatch;
    bool translated;         // texts pass through the loader class's translation context
    bool debugOnOpenFailure; // "open file: <path> error code: <n>" before the error
};

LCD_CONFIGMODEL_EXPORT extern const DocumentFamily kDeviceFile; // root "Vrn"
LCD_CONFIGMODEL_EXPORT extern const DocumentFamily kMenuFile;   // root "LCD"
LCD_CONFIGMODEL_EXPORT extern const DocumentFamily kUiFile;     // root "LCD"
LCD_CONFIGMODEL_EXPORT extern const DocumentFamily kHdrFile;    // UI texts, root "Kalmir"

// Who loads: the translation context of the loader class (or none) and the
// site its diagnostics are reported from. Every reader makes its loader the
// same way, where it reports from: Loader{kDeviceFile, kTrContext, LCD_LOG_SITE},
// with its file's kTrContext (the class name, or "QObject" for a class that is
// no Qt object), or nullptr for a family whose texts are never translated.
struct DocumentParser;
struct LCD_CONFIGMODEL_EXPORT Loader {
    const DocumentFamily& family;
    const char* trContext;
    LogSite site;
    // The parser kept between the files this loader reads (made with the
    // first one that needs it).
    mutable std::shared_ptr<DocumentParser> parser = nullptr;

    // A family text, translated when the family says so.
    QString text(const char* source) const;
    // "Invalid [%1] node." with the element name.
    QString invalidNode(const QString& tag) const;
};

// The structural limits of a description file. A file past one is rejected
// before a DOM is built, in the parse-error form with the position of the
// offending start tag (the size: line 0, column 0, before a byte is read).
// They bound what a load costs in time and memory; each is a build option
// (CMake LCD_MAX_...), and the defaults are far above any real description
// file (the shipped ones are 2 to 40 KiB, with at most a dozen attributes on
// an element and no namespace declaration).
#ifndef LCD_MAX_FILE_BYTES
#define LCD_MAX_FILE_BYTES 4194304
#endif
#ifndef LCD_MAX_ELEMENTS
#define LCD_MAX_ELEMENTS 250000
#endif
#ifndef LCD_MAX_ATTRIBUTES
#define LCD_MAX_ATTRIBUTES 256
#endif
#ifndef LCD_MAX_NAMESPACE_DECLARATIONS
#define LCD_MAX_NAMESPACE_DECLARATIONS 16
#endif
#ifndef LCD_MAX_NESTING
#define LCD_MAX_NESTING 256
#endif

// Only regular files of at most this many bytes are read.
constexpr qint64 kMaxDocumentSize = LCD_MAX_FILE_BYTES;
// Start tags in one file.
constexpr int kMaxDocumentElements = LCD_MAX_ELEMENTS;
// Attributes on one element, namespace declarations included.
constexpr int kMaxElementAttributes = LCD_MAX_ATTRIBUTES;
// Namespace declarations ("xmlns", "xmlns:p") in one file: the parser's cost
// per end tag grows with the square of the prefixes in scope.
constexpr int kMaxNamespaceDeclarations = LCD_MAX_NAMESPACE_DECLARATIONS;
// Levels of element nesting.
constexpr int kMaxDocumentDepth = LCD_MAX_NESTING;

struct DocumentLimits {
    int depth = kMaxDocumentDepth;
    int elements = kMaxDocumentElements;
    int attributes = kMaxElementAttributes;
    int namespaceDeclarations = kMaxNamespaceDeclarations;
};

// Full single-file load: path check, open, limits, parse (namespace
// processing on; a document without a prefix or a namespace declaration
// gets the same tree without it), root name, optional "version" equal to
// "1.0". Returns false with `error` overwritten at the first failure; `error`
// is untouched on success. Running out of memory while reading or parsing is a failure too,
// in the parse-error form at line 0, column 0; nothing is thrown.
LCD_CONFIGMODEL_EXPORT bool loadDocument(const QString& path, const Loader& loader, QDomDocument& doc,
                                         QString& error);

// Open and parse only (no path or root check), as a directory scan does. A
// FIFO, device, socket or directory gives the open-failure text at once.
// A scan passes the same `doc` for every file: the document it held is let
// go once the next file is read (its memory then goes straight to the new
// one), and after a failure `doc` is empty.
LCD_CONFIGMODEL_EXPORT bool parseDocumentFile(const QString& path, const Loader& loader, QDomDocument& doc,
                                              QString& error);

// Root name and "version" of an already parsed document.
LCD_CONFIGMODEL_EXPORT bool checkDocumentRoot(const QDomDocument& doc, const Loader& loader, QString& error);

// Parses bytes that are already in memory (limits checked, the size included).
LCD_CONFIGMODEL_EXPORT bool parseDocumentData(const QByteArray& data, const Loader& loader, QDomDocument& doc,
                                              QString& error);

// Prologue of the directory-scanning loaders: an empty path fails, a missing
// directory is created with its parents, unless its name holds a character
// that stands for bytes the file-name encoding could not decode (U+FFFD):
// no folder is created under a mangled name. Error text "Invalid file path!\n%1".
LCD_CONFIGMODEL_EXPORT bool prepareDirectory(const QString& path, const Loader& loader, QString& error);

// What the scan before the parse counted, up to where it stopped.
struct DocumentShape {
    int depth = 0;                 // deepest nesting
    int elements = 0;              // start tags
    int attributes = 0;            // most attributes on one element
    int namespaceDeclarations = 0; // in the whole file
    int prefixedNames = 0;         // element, attribute and declaration names holding ':'
};

// Where and why a document breaks a limit (or cannot be read at all).
struct LimitViolation {
    int line = 0; // 1-based
    int column = 0;
    QString reason;
};

// The scan that runs before every parse, without building anything: false
// when the document goes past one of `limits`, with the 1-based line and
// column of the offending start tag. Documents are scanned byte by byte as
// UTF-8 (UTF-16, UTF-32 and encodings that do not write markup as ASCII
// bytes are decoded first); one with a DOCTYPE or another encoding is then
// also read by Qt's stream reader, which refuses entity declarations and
// unreadable input.
LCD_CONFIGMODEL_EXPORT bool checkLimits(const QByteArray& data, const DocumentLimits& limits,
                                        LimitViolation* where, DocumentShape* shape = nullptr);

} // namespace ConfigModel
} // namespace LCD
