#pragma once

// The reading vocabulary every description-file walk is written in. Each idiom
// exists once, here: child lookup, the repeated-element walk, attribute reads
// with a visible default, UTF-8 text, and the value shapes. Element lookups and
// attribute reads report to an optional observer (a null check when absent).

#include <QtCore/QString>
#include <QtXml/QDomElement>

#include <initializer_list>
#include <string>
#include <vector>

#include "common/document.h"
#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace xml {

// ---- observer -------------------------------------------------------------

// Told about every element looked up and every attribute read, so a tool can
// report attributes no reader consumed and where each value came from.
class LCD_CONFIGMODEL_EXPORT ReadObserver {
public:
    virtual ~ReadObserver();
    virtual void elementVisited(const QDomElement& element) = 0;
    virtual void attributeRead(const QDomElement& element, const QString& name, bool present) = 0;
};
// Installs an observer for the calling process (null removes it).
LCD_CONFIGMODEL_EXPORT void setReadObserver(ReadObserver* observer);

// ---- elements -------------------------------------------------------------

// The first child element named `name`; null when there is none or `parent` is null.
LCD_CONFIGMODEL_EXPORT QDomElement child(const QDomElement& parent, const char* name);
// The first child element of any name.
LCD_CONFIGMODEL_EXPORT QDomElement firstChild(const QDomElement& parent);
// The next sibling element of any name.
LCD_CONFIGMODEL_EXPORT QDomElement next(const QDomElement& element);

// The repeated-element walk: the first child named `firstName`, then every
// following sibling element whatever its name.
template <class F>
void forEachRepeated(const QDomElement& parent, const char* firstName, F&& f)
{
    for (QDomElement e = child(parent, firstName); !e.isNull(); e = next(e))
        f(e);
}
// Every child element, whatever its name, in document order.
template <class F>
void forEachChild(const QDomElement& parent, F&& f)
{
    for (QDomElement e = firstChild(parent); !e.isNull(); e = next(e))
        f(e);
}
// Every child element named `name` (others are skipped).
LCD_CONFIGMODEL_EXPORT QDomElement nextNamed(const QDomElement& element, const char* name);
template <class F>
void forEachNamed(const QDomElement& parent, const char* name, F&& f)
{
    for (QDomElement e = child(parent, name); !e.isNull(); e = nextNamed(e, name))
        f(e);
}

// ---- attributes -----------------------------------------------------------

// The attribute's text, or `def` when absent. The one attribute read.
LCD_CONFIGMODEL_EXPORT QString attr(const QDomElement& e, const char* name, const char* def = "");
LCD_CONFIGMODEL_EXPORT bool hasAttr(const QDomElement& e, const char* name);
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
template <class V>
std::vector<V> readValues(const QDomElement& e, ListFrom list)
{
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
    // A required child whose absence is also written as a "Log:" warning.
    QDomElement needLogged(const QDomElement& parent, const char* name);
    // Marks the section incomplete for `name` without a lookup.
    void fail(const QString& name);

    bool complete() const { return m_complete; }

private:
    QDomElement lookup(const QDomElement& parent, const char* name, bool logged);

    QString& m_error;
    const Loader& m_loader;
    bool m_complete = true;
};

// Section transaction: reads into a fresh record and commits it to `target`
// only when the section is complete. `read(Section&, T&)`.
template <class T, class Read>
bool transact(T& target, QString& error, const Loader& loader, Read&& read)
{
    T local{};
    Section section(error, loader);
    read(section, local);
    if (!section.complete())
        return false;
    target = std::move(local);
    return true;
}

// ---- connector descriptions -------------------------------------------------

// True when `e` is an element named exactly `name` (case-sensitive): for
// readers that decide by an element's name ("Types" is not "types").
LCD_CONFIGMODEL_EXPORT bool isNamed(const QDomElement& e, const char* name);

// The range attributes named in `names`, read in that order with an empty
// default (absent or not a number gives 0) into the fields of the same names.
// A null element leaves `out` untouched, so an optional element that is
// missing keeps the record's initial values. `step` is not touched.
LCD_CONFIGMODEL_EXPORT void readRangeAttrs(const QDomElement& e, s_RangeValue& out,
                                           std::initializer_list<const char*> names);

} // namespace xml
} // namespace ConfigModel
} // namespace LCD
