#pragma once

// The reading vocabulary every description-file walk is written in. Each idiom
// exists once, here: child lookup, the repeated-element walk, attribute reads
// with a visible default, UTF-8 text, and the value shapes. Element lookups,
// attribute reads and text reads report to the load observer
// (common/loadobserver.h; a null test when none is attached).

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtXml/QDomElement>

#include <functional>
#include <initializer_list>
#include <string>
#include <tuple>
#include <vector>

#include "common/document.h"
#include "common/loadobserver.h"
#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace xml {

// ---- elements -------------------------------------------------------------

// The first child element named `name`; null when there is none or `parent` is null.
LCD_CONFIGMODEL_EXPORT QDomElement child(const QDomElement& parent, const char* name);
// The first child element of any name.
LCD_CONFIGMODEL_EXPORT QDomElement firstChild(const QDomElement& parent);
// The next sibling element of any name.
LCD_CONFIGMODEL_EXPORT QDomElement next(const QDomElement& element);

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

// The repeated-element walk: the first child named `firstName`, then every
// following sibling element whatever its name.
template <class F> void forEachRepeated(const QDomElement& parent, const char* firstName, F&& f) {
    for (QDomElement e = child(parent, firstName); !e.isNull(); e = next(e))
        f(e);
}
// Every child element, whatever its name, in document order.
template <class F> void forEachChild(const QDomElement& parent, F&& f) {
    for (QDomElement e = firstChild(parent); !e.isNull(); e = next(e))
        f(e);
}
// Every child element named `name` (others are skipped).
LCD_CONFIGMODEL_EXPORT QDomElement nextNamed(const QDomElement& element, const char* name);
template <class F> void forEachNamed(const QDomElement& parent, const char* name, F&& f) {
    for (QDomElement e = child(parent, name); !e.isNull(); e = nextNamed(e, name))
        f(e);
}

// ---- attributes -----------------------------------------------------------

// The attribute's text, or `def` when absent. The one attribute read.
LCD_CONFIGMODEL_EXPORT QString attr(const QDomElement& e, const char* name, const char* def = "");
LCD_CONFIGMODEL_EXPORT bool hasAttr(const QDomElement& e, const char* name);
// Decimal text converted exactly as QString::toInt converts it (0 and `ok`
// false for anything that is not a 32-bit decimal), straight from the
// characters for the common shape ("-" and up to nine digits).
LCD_CONFIGMODEL_EXPORT qint32 decimal(const QString& text, bool* ok = nullptr);
LCD_CONFIGMODEL_EXPORT qint32 decimal(const char* text, bool* ok = nullptr);
// Decimal conversions without a success check: absent or non-numeric gives 0.
LCD_CONFIGMODEL_EXPORT qint32 intAttr(const QDomElement& e, const char* name, const char* def = "");
LCD_CONFIGMODEL_EXPORT quint32 uintAttr(const QDomElement& e, const char* name, const char* def = "");
LCD_CONFIGMODEL_EXPORT float floatAttr(const QDomElement& e, const char* name, const char* def = "");
// The attribute as UTF-8.
LCD_CONFIGMODEL_EXPORT std::string textAttr(const QDomElement& e, const char* name, const char* def = "");

// ---- texts ----------------------------------------------------------------

LCD_CONFIGMODEL_EXPORT std::string utf8(const QString& text);
// The element's whole text content, as UTF-8.
LCD_CONFIGMODEL_EXPORT std::string text(const QDomElement& e);
// The value of the element's first child node (its text when it has one), as UTF-8.
LCD_CONFIGMODEL_EXPORT std::string firstNodeText(const QDomElement& e);

// ---- integer fields of any record -----------------------------------------

// One attribute bound to an integer field, with its default.
struct IntField {
    const char* name;
    qint32* field;
    const char* def = "";
};
// Reads the listed attributes in order into their fields.
LCD_CONFIGMODEL_EXPORT void readInts(const QDomElement& e, std::initializer_list<IntField> fields);

// ---- value shapes ---------------------------------------------------------

// An attribute with its default, as the tables write it: {"Max", "255"}.
// Attribute names are those of the shape's fields ("Support", "Editable",
// "Value", "DataType", "Min", "Max"); attributes not listed are not read.
struct Attr {
    const char* name;
    const char* def;
};
using Attrs = std::initializer_list<Attr>;

// Default tables shared by the walks.
// Lenient: "Support" and "Editable" 1, the numbers 0.
inline const Attrs kLenient = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"},
                               {"Value", "0"},   {"Min", "0"},      {"Max", "0"}};
// Lenient without limits (enumerated settings, values).
inline const Attrs kLenientOptions = {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}};
// Every range attribute with an empty default: absent gives 0.
inline const Attrs kEmpty = {{"Support", ""}, {"Editable", ""}, {"Value", ""},
                             {"Min", ""},     {"Max", ""},      {"DataType", ""}};
// kEmpty without limits.
inline const Attrs kEmptyOptions = {{"Support", ""}, {"Editable", ""}, {"Value", ""}, {"DataType", ""}};

// Where the selectable values of an enumerated setting come from.
enum class ListFrom {
    AnyChild,  // every child element
    EnumFirst, // the first "Enum" child, then every following sibling element
    None,      // no list
};

// "Support" and "Editable" on one element.
LCD_CONFIGMODEL_EXPORT s_SupportInfo readPair(const QDomElement& e, const char* supportDef = "1",
                                              const char* editableDef = "1");
LCD_CONFIGMODEL_EXPORT s_RangeValue readRange(const QDomElement& e, Attrs attrs);
LCD_CONFIGMODEL_EXPORT s_ValueSetting readValueSetting(const QDomElement& e, Attrs attrs);
// "Value" is read as text.
LCD_CONFIGMODEL_EXPORT s_TextRange readTextRange(const QDomElement& e, Attrs attrs);
LCD_CONFIGMODEL_EXPORT s_OptionList readOptions(const QDomElement& e, Attrs attrs, ListFrom list);
// The "Value" attribute of each listed child (absent gives 0), in file order.
LCD_CONFIGMODEL_EXPORT std::vector<qint32> readValueList(const QDomElement& e, ListFrom list);
template <class V> std::vector<V> readValues(const QDomElement& e, ListFrom list) {
    std::vector<V> out;
    for (qint32 v : readValueList(e, list))
        out.push_back(V{v});
    return out;
}
// Every child element of any name read as a range with `attrs`.
LCD_CONFIGMODEL_EXPORT std::vector<s_RangeValue> readRangeList(const QDomElement& e, Attrs attrs);

// Lenient range reader: a null element leaves `out` alone; otherwise "Support"
// and "Editable" default to "1", "DataType", "Value", "Min", "Max" to "0".
LCD_CONFIGMODEL_EXPORT void readRangeLenient(const QDomElement& e, s_RangeValue& out);
LCD_CONFIGMODEL_EXPORT void readPairLenient(const QDomElement& e, s_SupportInfo& out);

// Strict range reader: the child `tag` of `parent` must exist ("Invalid [%1]
// node." otherwise); the attributes named in `order` are read with an empty
// default, in that order. `step` is not touched.
LCD_CONFIGMODEL_EXPORT bool readRangeStrict(const QDomElement& parent, const char* tag, s_RangeValue& out,
                                            QString& error, std::initializer_list<const char*> order);

// ---- sections -------------------------------------------------------------

// Required-element lookups of one section. The first missing element is
// remembered and its "Invalid [%1] node." written to `error`; later lookups
// return null elements, so the rest of the section reads nothing.
class LCD_CONFIGMODEL_EXPORT Section {
public:
    Section(QString& error, const Loader& loader);

    // A required child: missing ends the section.
    QDomElement need(const QDomElement& parent, const char* name);
    QDomElement need(const Children& parent, const char* name);
    // A required child whose absence is also written as a "Log:" warning.
    QDomElement needLogged(const QDomElement& parent, const char* name);
    // Marks the section incomplete for `name` without a lookup.
    void fail(const QString& name);

    bool complete() const { return m_complete; }

private:
    QDomElement found(const QDomElement& e, const char* name, bool logged);

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

// The transaction for one element of a repeated list: reads into a fresh
// record and appends it to `list` only when the section is complete.
template <class T, class Read>
bool appendComplete(std::vector<T>& list, QString& error, const Loader& loader, Read&& read) {
    T item{};
    if (!transact(item, error, loader, std::forward<Read>(read))) return false;
    list.push_back(std::move(item));
    return true;
}

// An expected child whose absence does not end the walk: when it is missing,
// `error` becomes "Invalid [%1] node." and the null element is returned.
LCD_CONFIGMODEL_EXPORT QDomElement expect(const QDomElement& parent, const char* name, QString& error,
                                          const Loader& loader);
// The same, and the text is also written as a "Log:" warning from the
// loader's site.
LCD_CONFIGMODEL_EXPORT QDomElement childReported(const QDomElement& parent, const char* name, QString& error,
                                                 const Loader& loader);

// ---- more walks -----------------------------------------------------------

// The child element at `position` (0 = first) whatever its name; null when
// `parent` has fewer children.
LCD_CONFIGMODEL_EXPORT QDomElement childAt(const QDomElement& parent, int position);
// True when `e` is an element named exactly `name` (case-sensitive).
LCD_CONFIGMODEL_EXPORT bool isNamed(const QDomElement& e, const char* name);

// forEachChild that stops at the first child for which `f` returns false.
// Returns false when it stopped.
template <class F> bool forEachChildWhile(const QDomElement& parent, F&& f) {
    for (QDomElement e = firstChild(parent); !e.isNull(); e = next(e))
        if (!f(e)) return false;
    return true;
}

// Every child element, whatever its name, read by `read` into a list in
// document order: `card.sections = readEachChild(sections, readSection)`.
template <class Read>
auto readEachChild(const QDomElement& parent, Read&& read) -> std::vector<decltype(read(parent))> {
    std::vector<decltype(read(parent))> list;
    forEachChild(parent, [&](const QDomElement& e) { list.push_back(read(e)); });
    return list;
}

// Dispatch by tag name: every child element of `parent`, in document order,
// goes to the handler of its tag name; children with other names are skipped.
struct TagHandler {
    const char* tag;
    std::function<void(const QDomElement&)> read;
};
LCD_CONFIGMODEL_EXPORT void forEachChildByTag(const QDomElement& parent,
                                              std::initializer_list<TagHandler> handlers);

// ---- more attributes and texts --------------------------------------------

// Decimal number without a success check: absent or non-numeric gives 0.0.
LCD_CONFIGMODEL_EXPORT double doubleAttr(const QDomElement& e, const char* name, const char* def = "");
// The element's whole text content as QString; empty for a null element.
LCD_CONFIGMODEL_EXPORT QString elementText(const QDomElement& e);
// The element's whole text as a decimal integer; empty or non-numeric gives 0
// (surrounding blanks are allowed).
LCD_CONFIGMODEL_EXPORT qint32 intText(const QDomElement& e);

// ---- reading into a record in place ---------------------------------------
// For walks that fill a caller's record in place, where a missing element
// keeps what the record held: a null element leaves `out` alone; otherwise
// only the listed attributes are written, so a range's step and a text
// range's text (unless "Value" is listed) are kept.

LCD_CONFIGMODEL_EXPORT void update(const QDomElement& e, Attrs attrs, s_RangeValue& out);
LCD_CONFIGMODEL_EXPORT void update(const QDomElement& e, Attrs attrs, s_TextRange& out);
// As above; the values are rebuilt from `list` (ListFrom::None keeps them).
LCD_CONFIGMODEL_EXPORT void update(const QDomElement& e, Attrs attrs, ListFrom list, s_OptionList& out);
// readInts on a present element; a null element leaves the fields alone.
LCD_CONFIGMODEL_EXPORT void updateInts(const QDomElement& e, std::initializer_list<IntField> fields);
// "Support" and "Editable" with an empty default into any record that has
// them; a null element leaves it alone.
template <class R> void updatePair(const QDomElement& e, R& r) {
    updateInts(e, {{"Support", &r.support}, {"Editable", &r.editable}});
}
// The range attributes named in `names`, in that order, with an empty default;
// a null element leaves `out` untouched. `step` is not touched.
LCD_CONFIGMODEL_EXPORT void readRangeAttrs(const QDomElement& e, s_RangeValue& out,
                                           std::initializer_list<const char*> names);

// Lenient enumerated setting: a null element leaves `out` alone; otherwise the
// whole record is replaced, "Support" and "Editable" defaulting to "1",
// "DataType" and "Value" to "0", the values taken from `list`.
LCD_CONFIGMODEL_EXPORT void readOptionsLenient(const QDomElement& e, s_OptionList& out, ListFrom list);

// Lenient range whose limits are 64-bit: as readRangeLenient ("Support" and
// "Editable" default "1", the rest "0"); "Min" and "Max" are converted as
// 32-bit decimals and widened. `W` has support, editable, value, dataType and
// 64-bit min and max.
template <class W> void readWideRangeLenient(const QDomElement& e, W& out) {
    if (e.isNull()) return;
    readInts(e, {{"Support", &out.support, "1"},
                 {"Editable", &out.editable, "1"},
                 {"DataType", &out.dataType, "0"},
                 {"Value", &out.value, "0"}});
    out.min = qint64{intAttr(e, "Min", "0")};
    out.max = qint64{intAttr(e, "Max", "0")};
}

} // namespace xml
} // namespace ConfigModel
} // namespace LCD
