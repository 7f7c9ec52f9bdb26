#pragma once

// The reading vocabulary every description-file walk is written in. Each idiom
// exists once, here: child lookup, the repeated-element walk, attribute reads
// with a visible default, texts, the value shapes (one reader over a table of
// attributes and defaults) and the sections with their one missing-element
// policy. Element lookups, attribute reads and text reads report to the load
// observer (common/loadobserver.h; a null test when none is attached).

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtXml/QDomElement>

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "common/document.h"
#include "common/loadobserver.h"
#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace xml {

// ---- elements -------------------------------------------------------------

// The first child element named `name` (of any name without one); null when
// there is none or `parent` is null.
LCD_CONFIGMODEL_EXPORT QDomElement child(const QDomElement& parent, const char* name = nullptr);
// The next sibling element of any name.
LCD_CONFIGMODEL_EXPORT QDomElement next(const QDomElement& element);
// True when `e` is an element named exactly `name` (case-sensitive).
LCD_CONFIGMODEL_EXPORT bool isNamed(const QDomElement& e, const char* name);

// The children of one element indexed by tag name in one pass, for walks
// that look up many children of the same element: a lookup is a hash probe
// instead of a scan of the children. Lookups report to the observer exactly
// as child() does.
class LCD_CONFIGMODEL_EXPORT Children {
public:
    explicit Children(const QDomElement& parent);
    // The first child element named `name`; null when there is none.
    QDomElement operator()(const char* name) const;
    const QDomElement& element() const { return m_parent; }

private:
    QDomElement m_parent;
    QHash<QString, QDomElement> m_first;
};

// ---- walks ----------------------------------------------------------------
// Three forms: every child, every child of one name, and every child read
// into a list.

namespace detail {
LCD_CONFIGMODEL_EXPORT QDomElement nextNamed(const QDomElement& element, const char* name);
// Calls `f(e)`; a walk stops when `f` returns false (a void `f` never stops it).
template <class F> bool goOn(F& f, const QDomElement& e) {
    if constexpr (std::is_same_v<decltype(f(e)), bool>)
        return f(e);
    else
        return f(e), true;
}
} // namespace detail

// Every child element in document order, whatever its name; with `from`, the
// repeated-element walk: the first child named `from`, then every following
// sibling element whatever its name. A `f` that returns bool stops the walk
// with false; the walk returns false when it was stopped.
template <class F> bool forEachChild(const QDomElement& parent, const char* from, F&& f) {
    for (QDomElement e = child(parent, from); !e.isNull(); e = next(e))
        if (!detail::goOn(f, e)) return false;
    return true;
}
template <class F> bool forEachChild(const QDomElement& parent, F&& f) {
    return forEachChild(parent, nullptr, std::forward<F>(f));
}
// Every child element named `name`; others are skipped.
template <class F> void forEachNamed(const QDomElement& parent, const char* name, F&& f) {
    for (QDomElement e = child(parent, name); !e.isNull(); e = detail::nextNamed(e, name))
        f(e);
}
// The children (from the first named `from`, as forEachChild walks them) read
// by `read` into a list in document order:
// `card.sections = readEachChild(sections, readSection)`.
template <class Read>
auto readEachChild(const QDomElement& parent, const char* from, Read&& read)
    -> std::vector<decltype(read(parent))> {
    std::vector<decltype(read(parent))> list;
    forEachChild(parent, from, [&](const QDomElement& e) { list.push_back(read(e)); });
    return list;
}
template <class Read>
auto readEachChild(const QDomElement& parent, Read&& read) -> std::vector<decltype(read(parent))> {
    return readEachChild(parent, nullptr, std::forward<Read>(read));
}
// The same, each item told to the load observer as a record of `kind` at its
// place in the list, while it is read.
template <class Read>
auto readEachChild(const QDomElement& parent, const char* from, RecordKind kind, Read&& read)
    -> std::vector<decltype(read(parent))> {
    std::vector<decltype(read(parent))> list;
    forEachChild(parent, from, [&](const QDomElement& e) {
        const observe::Record r(kind, list.size(), e);
        list.push_back(read(e));
    });
    return list;
}
template <class Read>
auto readEachChild(const QDomElement& parent, RecordKind kind, Read&& read)
    -> std::vector<decltype(read(parent))> {
    return readEachChild(parent, nullptr, kind, std::forward<Read>(read));
}

// ---- attributes -----------------------------------------------------------

// The attribute's text, or `def` when absent. The one attribute read.
LCD_CONFIGMODEL_EXPORT QString attr(const QDomElement& e, const char* name, const char* def = "");
LCD_CONFIGMODEL_EXPORT bool hasAttr(const QDomElement& e, const char* name);
namespace detail {
// Decimal text converted exactly as QString::toInt converts it (0 and `ok`
// false for anything that is not a 32-bit decimal), straight from the
// characters for the common shape ("-" and up to nine digits).
LCD_CONFIGMODEL_EXPORT qint32 decimal(const QString& text, bool* ok = nullptr);
LCD_CONFIGMODEL_EXPORT qint32 decimal(const char* text, bool* ok = nullptr);
} // namespace detail
// Number conversions without a success check: absent or non-numeric gives 0.
LCD_CONFIGMODEL_EXPORT qint32 intAttr(const QDomElement& e, const char* name, const char* def = "");
LCD_CONFIGMODEL_EXPORT quint32 uintAttr(const QDomElement& e, const char* name, const char* def = "");
LCD_CONFIGMODEL_EXPORT float floatAttr(const QDomElement& e, const char* name, const char* def = "");
LCD_CONFIGMODEL_EXPORT double doubleAttr(const QDomElement& e, const char* name, const char* def = "");
// The attribute as UTF-8.
LCD_CONFIGMODEL_EXPORT std::string textAttr(const QDomElement& e, const char* name, const char* def = "");

// ---- texts ----------------------------------------------------------------

// The element's whole text (every text node below it); empty for a null
// element. elementText(e).toStdString() for the records that keep UTF-8.
LCD_CONFIGMODEL_EXPORT QString elementText(const QDomElement& e);
// Only the value of the first child node, as UTF-8: a name cut by a comment or
// a child element keeps its first part (the card and connector names).
LCD_CONFIGMODEL_EXPORT std::string firstNodeText(const QDomElement& e);
// The element's whole text as a decimal integer; empty or non-numeric gives 0
// (surrounding blanks are allowed).
LCD_CONFIGMODEL_EXPORT qint32 intText(const QDomElement& e);

// ---- value shapes ---------------------------------------------------------

// The record fields a table can fill: an attribute fills the field of the
// same name with a lower-case initial ("RefreshRate" fills refreshRate).
// clang-format off
#define LCD_XML_FIELDS(FIELD) \
    FIELD(Support, support) FIELD(Editable, editable) FIELD(Value, value) FIELD(DataType, dataType) FIELD(Min, min) FIELD(Max, max) \
    FIELD(RangeType, rangeType) FIELD(Coefficient, coefficient) FIELD(Step, step) FIELD(AutoRefresh, autoRefresh) \
    FIELD(BackupPos, backupPos) FIELD(CapacityMode, capacityMode) FIELD(CardMode, cardMode) FIELD(Column, column) \
    FIELD(Columns, columns) FIELD(ConnectorIndex, connectorIndex) FIELD(ConvertTimingPriority, convertTimingPriority) \
    FIELD(CustomBuild, customBuild) FIELD(CustomDelete, customDelete) FIELD(Enable, enable) FIELD(Height, height) \
    FIELD(IncompleteSplicing, incompleteSplicing) FIELD(Index, index) FIELD(InterfaceType, interfaceType) \
    FIELD(Interlaced, interlaced) FIELD(InterlacedMaxCount, interlacedMaxCount) FIELD(IsMain, isMain) FIELD(LimitNum, limitNum) FIELD(ModelId, modelId) \
    FIELD(ModuleId, moduleId) FIELD(Position, position) FIELD(PrintKeyNo, printKeyNo) FIELD(RefreshRate, refreshRate) \
    FIELD(Row, row) FIELD(Rows, rows) FIELD(ScreenId, screenId) FIELD(SelectNum, selectNum) FIELD(Slot, slot) \
    FIELD(SlotIndex, slotIndex) FIELD(SoftImp, softImp) FIELD(SpliceMode, spliceMode) FIELD(StandardType, standardType) \
    FIELD(Type, type) FIELD(Valid, valid) FIELD(Visible, visible) FIELD(Width, width) FIELD(WorkMode, workMode) FIELD(X, x) FIELD(Y, y)
// clang-format on

namespace detail {
#define LCD_XML_NAME(Name, member) #Name,
constexpr const char* kFieldNames[] = {LCD_XML_FIELDS(LCD_XML_NAME)};
#undef LCD_XML_NAME
constexpr bool sameName(const char* a, const char* b) {
    while (*a && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}
// The position of an attribute name in kFieldNames; -1 when no field has it.
constexpr int field(const char* name) {
    for (int i = 0; i < int(std::size(kFieldNames)); ++i)
        if (sameName(name, kFieldNames[i])) return i;
    return -1;
}
// One row of a table: an attribute with its default.
struct Attr {
    const char* name;
    const char* def;
    int field; // where the name goes, found when the table is written
    constexpr Attr(const char* name, const char* def) : name(name), def(def), field(detail::field(name)) {}
};
} // namespace detail

// A table of attributes with their defaults, as the walks write it:
// {{"Min", "0"}, {"Max", "255"}}. The attributes are read in the order listed;
// attributes not listed are not read. Each name fills the record field of the
// same name (LCD_XML_FIELDS; "Value" of a text record is its text), read as
// the field's type: integers as 32-bit decimals (64-bit fields widened),
// float, double, UTF-8 text; a 16-bit count is a text that QString::toUShort
// converts (out of range or not a number gives 0).
using Attrs = std::initializer_list<detail::Attr>;

// Default tables shared by the walks.
// Lenient: "Support" and "Editable" 1, the numbers 0.
inline const Attrs kLenient = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"},
                               {"Value", "0"},   {"Min", "0"},      {"Max", "0"}};
// Lenient without limits (enumerated settings, values).
inline const Attrs kLenientOptions = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}};
inline const Attrs kLenientPair = {{"Support", "1"}, {"Editable", "1"}};
// Every range attribute with an empty default: absent gives 0.
inline const Attrs kEmpty = {{"Support", ""}, {"Editable", ""}, {"Value", ""},
                             {"Min", ""},     {"Max", ""},      {"DataType", ""}};
// kEmpty without limits.
inline const Attrs kEmptyOptions = {{"Support", ""}, {"Editable", ""}, {"Value", ""}, {"DataType", ""}};
inline const Attrs kEmptyPair = {{"Support", ""}, {"Editable", ""}};

// Where the selectable values of an enumerated setting come from.
enum class ListFrom {
    AnyChild,  // every child element
    EnumFirst, // the first "Enum" child, then every following sibling element
    None,      // no list
};

namespace detail {
LCD_CONFIGMODEL_EXPORT void store(const QDomElement& e, const Attr& a, qint32* out);
LCD_CONFIGMODEL_EXPORT void store(const QDomElement& e, const Attr& a, qint64* out);
LCD_CONFIGMODEL_EXPORT void store(const QDomElement& e, const Attr& a, float* out);
LCD_CONFIGMODEL_EXPORT void store(const QDomElement& e, const Attr& a, double* out);
LCD_CONFIGMODEL_EXPORT void store(const QDomElement& e, const Attr& a, std::string* out);
LCD_CONFIGMODEL_EXPORT void store(const QDomElement& e, const Attr& a, quint16* out);
// No such field, or one a table cannot fill (a list, a nested record).
inline void store(const QDomElement&, const Attr& a, std::nullptr_t) {
    Q_ASSERT_X(false, "xml::readAs", a.name);
    Q_UNUSED(a);
}
template <class T> void store(const QDomElement& e, const Attr& a, T*) {
    store(e, a, nullptr);
}
// The member of a record named in LCD_XML_FIELDS, or a null pointer when the
// record has none ("Value" of a text record is its text).
#define LCD_XML_MEMBER(Name, member)                                                                         \
    template <class R> auto member(R& r, int)->decltype(&r.member) {                                         \
        return &r.member;                                                                                    \
    }                                                                                                        \
    template <class R> std::nullptr_t member(R&, ...) {                                                      \
        return nullptr;                                                                                      \
    }
LCD_XML_FIELDS(LCD_XML_MEMBER)
#undef LCD_XML_MEMBER
template <class R> auto value(R& r, long) -> decltype(&r.text) {
    return &r.text;
}

#define LCD_XML_ENUM(Name, member) k##Name,
enum FieldIndex { LCD_XML_FIELDS(LCD_XML_ENUM) };
#undef LCD_XML_ENUM

template <class R> void readFields(const QDomElement& e, Attrs attrs, R& r) {
    for (const Attr& a : attrs) {
        switch (a.field) {
#define LCD_XML_CASE(Name, member)                                                                           \
    case k##Name:                                                                                            \
        store(e, a, member(r, 0));                                                                           \
        break;
            LCD_XML_FIELDS(LCD_XML_CASE)
#undef LCD_XML_CASE
        default:
            Q_ASSERT_X(false, "xml::readAs", a.name); // no record has a field of that name
        }
    }
}

// Appends the "Value" attribute of each listed child (absent gives 0) to
// `values`, in file order, each child an Option record while it is read.
template <class Values> void appendValues(const QDomElement& e, ListFrom list, Values& values) {
    if (list == ListFrom::None) return;
    forEachChild(e, list == ListFrom::EnumFirst ? "Enum" : nullptr, [&](const QDomElement& item) {
        const observe::Record r(RecordKind::Option, values.size(), item);
        values.push_back({intAttr(item, "Value")});
    });
}
} // namespace detail

// A fresh record with the listed attributes read (a null element gives the
// converted defaults): readAs<s_RangeValue>(e, kLenient).
template <class R> R readAs(const QDomElement& e, Attrs attrs) {
    R r{};
    detail::readFields(e, attrs, r);
    return r;
}
// The same, with the values of an enumerated setting taken from `list`.
template <class R> R readAs(const QDomElement& e, Attrs attrs, ListFrom list) {
    R r = readAs<R>(e, attrs);
    detail::appendValues(e, list, r.values);
    return r;
}

// In place, for walks where a missing element keeps what the record held: a
// null element leaves `out` alone; otherwise only the listed attributes are
// written (a range's step and a text range's text, unless listed, are kept).
template <class R> void update(const QDomElement& e, Attrs attrs, R& out) {
    if (!e.isNull()) detail::readFields(e, attrs, out);
}
// As above; the values are rebuilt from `list` (ListFrom::None keeps them).
template <class R> void update(const QDomElement& e, Attrs attrs, ListFrom list, R& out) {
    if (e.isNull()) return;
    detail::readFields(e, attrs, out);
    if (list == ListFrom::None) return;
    out.values.clear();
    detail::appendValues(e, list, out.values);
}

// ---- sections -------------------------------------------------------------

// What the absence of a required child does. Its "Invalid [%1] node." goes
// to the section's `error` in every case.
enum class Missing {
    Ends,        // ends the section: later Ends lookups return null elements
    EndsLogged,  // the same, and the text is also written as a "Log:" warning
    Noted,       // the walk goes on; each such absence overwrites `error`
    NotedLogged, // the same, with the "Log:" warning
};

// Required-element lookups of one section. The first absence that ends the
// section is remembered in `error`; later lookups that would end it return
// null elements, so the rest of the section reads nothing. The warning is
// written from the loader's site.
class LCD_CONFIGMODEL_EXPORT Section {
public:
    Section(QString& error, const Loader& loader);

    QDomElement need(const QDomElement& parent, const char* name, Missing missing = Missing::Ends);
    QDomElement need(const Children& parent, const char* name, Missing missing = Missing::Ends);
    // Marks the section incomplete for `name` without a lookup.
    void fail(const QString& name);

    bool complete() const { return m_complete; }

private:
    QDomElement found(const QDomElement& e, const QDomElement& parent, const char* name, Missing missing);

    QString& m_error;
    const Loader& m_loader;
    bool m_complete = true;
};

// Section transaction: reads into a fresh record and commits it to `target`
// only when the section is complete. `read(Section&, T&)`.
template <class T, class Read> bool transact(T& target, QString& error, const Loader& loader, Read&& read) {
    T local{};
    Section section(error, loader);
    read(section, local);
    if (!section.complete()) return false;
    target = std::move(local);
    return true;
}

// Section transaction over several fields of one record, named with
// std::tie(a, b, c): `read(Section&, std::tuple<A, B, C>&)` fills fresh
// copies, which are assigned to the fields only when the section is complete.
template <class... Ts, class Read>
bool transact(std::tuple<Ts&...>&& targets, QString& error, const Loader& loader, Read&& read) {
    std::tuple<Ts...> local{};
    Section section(error, loader);
    read(section, local);
    if (!section.complete()) return false;
    targets = std::move(local);
    return true;
}

} // namespace xml
} // namespace ConfigModel
} // namespace LCD
