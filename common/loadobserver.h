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
#include <QtCore/QtGlobal>
#include <QtXml/QDomDocument>

#include <QtXml/QDomElement>
#include <cstddef>

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

// A record a walk makes, told to the observer as the walk starts reading it
// (and ended when the walk leaves it), with the element it comes from. The
// records started and not yet ended are the record's place in the component:
// a cell is at model m, screen s, device mode d, template t, layout l, cell c,
// each `index` the position the record takes in its list (the list of the
// record above it) when it is kept. A record that is not kept (a rejected
// file, an incomplete device mode) leaves its place to the next record read
// there: the last record started at a place is the one the component holds.
// `key` is 0 unless a kind says otherwise. New kinds are appended, so a kind
// keeps its number.
enum class RecordKind : quint8 {
    Model,      // a device model folder (no element); index among the models
    Screen,     // a screen file's screen; index among the model's screens
    DeviceMode, // index among the screen's device modes
    Templete,   // index among the device mode's templates
    Layout,     // index among the template's layouts
    Cell,       // index among the layout's cells
    SlotGroup,  // index: the group's position in the slot-group order (common/facts.h)
    Slot,       // index among the group's slots
    GroupCard,  // a card a group accepts; index among the group's cards
    SlotCard,   // a card placed in a mixed-card slot; index among the slot's cards
    Card,       // a catalogue card; index among the catalogue's cards
    HdrTable,   // index 0 the input options, 1 the output options
    HdrKey,     // a key of the options: index its type, `key` its value
    HdrSetting, // a dependent setting of a key: index its type
    HdrValue,   // index among the setting's selectable values

    // A model's other files and lists (below Model).
    LayerType,          // a device mode's layer type; index among the mode's layer types
    Layer,              // a layer file's layer (its root element); index among the model's layers
    CrossCard,          // a cross-card entry; index among the model's entries
    CrossMode,          // a device mode of a cross-card entry; index among the entry's modes
    CrossGroup,         // a group of a cross-card device mode; index among the mode's groups
    CrossMember,        // a connector of a cross-card group; index among the group's members
    SlotConnectorGroup, // a connector group of a SlotCard; index among the card's groups
    FeatureLayerMode,   // a layer mode of the feature file; index among them
    FeatureFileItem,    // an entry of the feature file's "File"; index among them
    ThirdPlugin,        // a third-party plug-in of the feature file; index among them

    // A catalogue card's lists (below Card), each index among the list of the
    // record above it.
    CardAssociation,   // an associated card model
    ConnectorType,     // a connector type the card presets timings for ("Types")
    TypeResolution,    // the preset resolution of a connector type for one capacity mode
    Connector,         // a connector of the card's "Connectors", or of a ConnectorGroup
    ConnectorMode,     // a device mode of the card's "Connectors"
    ModeCapacity,      // a capacity of a ConnectorMode
    CapacityConnector, // a connector of a ModeCapacity
    ConnectorGroup,    // a group of the card's connector-group capacity
    CapacityGroup,     // a capacity of the card's "CapacityGroups"
    CapacityMode,      // a device mode of a CapacityGroup
    ModeConnector,     // a connector of a CapacityMode
    CardSection,       // a section code of the card
    CopyCapacity,      // a capacity of the card's connector copy
    CopyMode,          // a device mode of a CopyCapacity
    CopyGroup,         // a group of a CopyMode
    CopyConnector,     // a connector position of a CopyGroup

    // The connector files: descriptions, and the resolution file's lists.
    ConnectorFile,        // a description file (its "Connectors"); index among the files kept
    ConnectorDescription, // a connector description; index among the file's descriptions
    DescriptionInterface, // an interface of a description's "CapacityMode"
    InterfaceMode,        // a capacity mode of a DescriptionInterface
    ModeDisable,          // a disabled resolution of an InterfaceMode
    HdcpInterface,        // an interface of a description's "HDCP"
    TimingInterface,      // an interface of a description's "PresetTiming"
    ColorInterface,       // an interface of "ColorDepths", "ColorSpaces" or "ColorRanges" (its parent)
    QualityInterface,     // an interface of a description's "ImageQuality"
    ResolutionMode,       // a capacity mode of the resolution catalogue
    Resolution,           // a resolution of a ResolutionMode, or of the "Types" group (no record above)
    TableConnector,       // a connector of the interface table after the catalogue
    TableInterface,       // an interface of a TableConnector
    TableMode,            // a capacity mode of a TableInterface
    TableResolution,      // a resolution of a TableMode

    // The interface files.
    PrintKeyDevice, // a device of the print-key table; index among them
    PrintKeyCard,   // a card of a PrintKeyDevice; index among the device's cards
    PrintKey,       // a print key of a PrintKeyCard; index among the card's keys
    KeyCheck,       // a key-check entry; index among them
    MenuFunction,   // a function item; index among them
    MenuItem, // a node of the menu tree: the top node index 0, below it index among its parent's children

    Feature, // a feature file's "Device", below Model, and its lists below it; index 0 (the model keeps one)
    // An option of an enumerated setting (its element's parent holds the
    // setting); index among the setting's options.
    Option,
};

struct RecordRead {
    RecordKind kind = RecordKind::Model;
    int index = 0;
    int key = 0;
    QDomElement element; // null for a model
};

// What a diagnostic of a load is about. Every text a load leaves in its error
// or writes to the message log is also told to the observer as one of these,
// with the text unchanged.
enum class DiagnosticKind : quint8 {
    PathEmpty,       // the loader was given no path
    OpenFailed,      // the file could not be opened (or is no regular file)
    TooLarge,        // the file is larger than the loader reads
    ParseFailed,     // not well-formed XML (or nested too deep)
    RootMismatch,    // the root element is not the one the loader expects
    VersionMismatch, // the root's "version" is not "1.0"
    ElementMissing,  // a required child `name` of `element` is absent
    FileRejected,    // a file's reader rejected it; the text is its reason
    FileMissing,     // an option file the component reads is not there; `name` the path looked for
    // Told after a ParseFailed, when the parse stopped at an element left
    // open: `name` the element, `line` and `column` where it was opened; the
    // text is the parse error's.
    ElementUnclosed,
};

struct LoadDiagnostic {
    DiagnosticKind kind = DiagnosticKind::ParseFailed;
    QDomElement element; // where: a missing element's parent, a rejected root
    // The element looked for (ElementMissing) or left open (ElementUnclosed),
    // the file looked for (FileMissing, UTF-8); valid during the call.
    const char* name = nullptr;
    QString text;        // the library's text, as left in the error or logged
    bool logged = false; // the text was also written to the message log
    int line = 0;        // ParseFailed: where the parser stopped; ElementUnclosed: where it opened
    int column = 0;
    QString logLine; // when logged: the line as written to the log, when it is not `text`
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
    // A walk started reading a record, and left it (see RecordKind).
    virtual void recordStarted(const RecordRead& /*record*/) {}
    virtual void recordEnded(RecordKind /*kind*/) {}
    // A diagnostic of the load, structured (see DiagnosticKind).
    virtual void diagnostic(const LoadDiagnostic& /*diagnostic*/) {}
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

// The walks' one line per record: `const observe::Record r(RecordKind::Cell,
// layout.cells.size(), e);` tells the observer where the record starts and,
// when it goes out of scope, that it ends. One pointer test when none is attached.
class Record {
public:
    Record(RecordKind kind, std::size_t index, const QDomElement& element = QDomElement(), int key = 0)
        : m_kind(kind) {
        if (LoadObserver* o = current(); Q_UNLIKELY(o)) {
            m_observer = o;
            o->recordStarted({kind, int(index), key, element});
        }
    }
    // No record (a walk that keeps its records in a list of its own).
    Record() = default;
    Record(Record&& other) noexcept : m_observer(other.m_observer), m_kind(other.m_kind) {
        other.m_observer = nullptr;
    }
    ~Record() {
        if (Q_UNLIKELY(m_observer)) m_observer->recordEnded(m_kind);
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    Record& operator=(Record&&) = delete;

private:
    LoadObserver* m_observer = nullptr;
    RecordKind m_kind = RecordKind::Model;
};

// Tells the observer of a diagnostic (nothing when none is attached).
inline void diagnose(DiagnosticKind kind, const QString& text, const QDomElement& element = QDomElement(),
                     const char* name = nullptr, bool logged = false, const QString& logLine = QString()) {
    if (LoadObserver* o = current(); Q_UNLIKELY(o))
        o->diagnostic({kind, element, name, text, logged, 0, 0, logLine});
}
} // namespace observe

} // namespace ConfigModel
} // namespace LCD

// The same attachment with a plain C name, for a program that loads the
// plug-in at run time: resolve "lcdSetLoadObserver" in the loaded library.
extern "C" LCD_CONFIGMODEL_EXPORT void lcdSetLoadObserver(LCD::ConfigModel::LoadObserver* observer);
