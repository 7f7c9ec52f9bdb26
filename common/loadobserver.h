#pragma once

// The load observer: an optional listener told everything a load reads, so a
// tool can say where every value came from, which attributes and elements no
// reader consumed, and tie the library's diagnostics to the document and the
// element being read. When none is attached each hook costs one pointer test.
//
// One observer for the process; attach it around the loads it should see and
// detach it (null) afterwards. Loads are not reentrant with respect to the
// observer: the host serialises loading, and so must a tool.

#include <QtCore/QString>
#include <QtXml/QDomDocument>
#include <QtXml/QDomElement>

#include "lcdconfigmodel/export.h"

namespace LCD {
namespace ConfigModel {

// How an attribute's text was turned into the stored value.
enum class ReadKind {
    Text,     // stored as text (UTF-8 or QString)
    Int,      // 32-bit signed decimal
    UInt,     // 32-bit unsigned decimal
    Float,    // single-precision decimal
    Double,   // double-precision decimal
    Presence, // only whether the attribute is there
};

// One attribute read, as the reader saw it.
struct AttributeRead {
    QDomElement element;
    const char* name = nullptr;
    bool present = false; // the element carries the attribute
    QString raw;          // its text when present, else empty
    const char* def = ""; // the default used when absent
    ReadKind kind = ReadKind::Text;
    QString stored;          // the value stored, as text ("0" for a failed number)
    bool validNumber = true; // numbers: the text read (raw or default) converted cleanly
};

// The outcome of opening and parsing one file.
struct DocumentRead {
    QString path;    // as the loader was given it
    bool ok = false; // opened and parsed (the root check comes after)
    QString error;   // the loader's text on failure
    int line = 0;    // parse failures: where the parser stopped (1-based)
    int column = 0;
    QDomDocument document; // the parsed document when ok (implicitly shared)
};

// Header-only, so a program that loads the plug-in at run time (dlopen) can
// derive from it without linking the library.
class LoadObserver {
public:
    virtual ~LoadObserver() = default;

    // A file is about to be opened; everything until the next call belongs to it.
    virtual void documentStarted(const QString& /*path*/) {}
    // The file was opened and parsed, or why not.
    virtual void documentParsed(const DocumentRead& /*read*/) {}
    // The root check of the current document failed with `error`.
    virtual void documentRejected(const QDomElement& /*root*/, const QString& /*error*/) {}
    // A walk reached `element` (a lookup by name, a first child, a sibling).
    virtual void elementFound(const QDomElement& /*element*/) {}
    // A lookup of the child `name` of `parent` found nothing.
    virtual void elementMissing(const QDomElement& /*parent*/, const char* /*name*/) {}
    virtual void attributeRead(const AttributeRead& /*read*/) {}
    // The text content of `element` was read: as text, or converted as a
    // 32-bit decimal (ReadKind::Int, 0 when it does not convert).
    virtual void textRead(const QDomElement& /*element*/, ReadKind /*kind*/) {}
};

// Attaches `observer` to every load of the process (null detaches).
LCD_CONFIGMODEL_EXPORT void setLoadObserver(LoadObserver* observer);
LCD_CONFIGMODEL_EXPORT LoadObserver* loadObserver();

namespace observe {
// The attached observer, for the library's own hooks: test it for null first.
extern LCD_CONFIGMODEL_EXPORT LoadObserver* g_current;
inline LoadObserver* current() {
    return g_current;
}
} // namespace observe

} // namespace ConfigModel
} // namespace LCD

// The same attachment with a plain C name, for a program that loads the
// plug-in at run time: resolve "lcdSetLoadObserver" in the loaded library.
extern "C" LCD_CONFIGMODEL_EXPORT void lcdSetLoadObserver(LCD::ConfigModel::LoadObserver* observer);
