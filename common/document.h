#pragma once

// The one way a description file is opened, checked and parsed. Every loader
// of the library goes through loadDocument (or, for directory scans,
// prepareDirectory followed by parseDocumentFile and checkDocumentRoot), so
// this is also the one place where hostile input is bounded.

#include <QtCore/QString>
#include <QtXml/QDomDocument>

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
struct LCD_CONFIGMODEL_EXPORT Loader {
    const DocumentFamily& family;
    const char* trContext;
    LogSite site;

    // A family text, translated when the family says so.
    QString text(const char* source) const;
    // "Invalid [%1] node." with the element name.
    QString invalidNode(const QString& tag) const;
};

// Documents nested deeper than this are rejected before a DOM is built.
constexpr int kMaxDocumentDepth = 256;

// Only regular files of at most this many bytes are read; a larger one is
// rejected before it is read, with the parse-error text at line 0, column 0.
constexpr qint64 kMaxDocumentSize = qint64(64) * 1024 * 1024;

// Full single-file load: path check, open, nesting check, parse (namespace
// processing on), root name, optional "version" equal to "1.0". Returns false
// with `error` overwritten at the first failure; `error` is untouched on success.
LCD_CONFIGMODEL_EXPORT bool loadDocument(const QString& path, const Loader& loader, QDomDocument& doc,
                                         QString& error);

// Open and parse only (no path or root check), as a directory scan does. A
// FIFO, device, socket or directory gives the open-failure text at once.
LCD_CONFIGMODEL_EXPORT bool parseDocumentFile(const QString& path, const Loader& loader, QDomDocument& doc,
                                              QString& error);

// Root name and "version" of an already parsed document.
LCD_CONFIGMODEL_EXPORT bool checkDocumentRoot(const QDomDocument& doc, const Loader& loader, QString& error);

// Parses bytes that are already in memory (nesting check included).
LCD_CONFIGMODEL_EXPORT bool parseDocumentData(const QByteArray& data, const Loader& loader, QDomDocument& doc,
                                              QString& error);

// Prologue of the directory-scanning loaders: an empty path fails, a missing
// directory is created with its parents. Error text "Invalid file path!\n%1".
LCD_CONFIGMODEL_EXPORT bool prepareDirectory(const QString& path, const Loader& loader, QString& error);

// Depth of element nesting in raw XML, without building anything. Returns
// false when an element lies deeper than maxDepth, with the 1-based line and
// column of its start tag. Plain UTF-8 (or Latin) documents are scanned byte
// by byte; documents with a DOCTYPE or another encoding go through Qt's
// stream reader, which also refuses entity declarations and unreadable input.
struct NestingViolation {
    int line = 0;
    int column = 0;
    QString reason;
};
LCD_CONFIGMODEL_EXPORT bool checkNesting(const QByteArray& data, int maxDepth, NestingViolation* where);

} // namespace ConfigModel
} // namespace LCD
