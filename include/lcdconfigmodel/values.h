#pragma once

// Capability value records shared by the description files. Defaults are those
// of a record no file has touched: -1 in support/editable means "not stated".
//
// Every record names its fields once, in declaration order, inside its body:
//     LCD_RECORD_FIELDS(s_Pair, first, second)
// gives `fields()` (a tuple of references to them), `fieldNames()` (the same
// list as written, "first, second") and == / != over all of them, as hidden
// friends: found for the record and records derived from it,
// never for other types of the namespace. A list that misses a field fails to
// build (the record is larger than its listed fields), unless the field is
// small enough to sit in padding. A record that adds fields to a base record
// compares the base first: LCD_DERIVED_RECORD_FIELDS(s_Derived, s_Base, extra).

#include <QtCore/qglobal.h>

#include <cstddef>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#define LCD_RECORD_FIELDS(Type, ...)                                                                         \
    auto fields() const {                                                                                    \
        auto all = std::tie(__VA_ARGS__);                                                                    \
        static_assert(::LCD::ConfigModel::detail::namesEveryField<Type, decltype(all)>(),                    \
                      "LCD_RECORD_FIELDS(" #Type ", ...) must name every field of the record");              \
        return all;                                                                                          \
    }                                                                                                        \
    friend bool operator==(const Type& lhs, const Type& rhs) {                                               \
        return lhs.fields() == rhs.fields();                                                                 \
    }                                                                                                        \
    friend bool operator!=(const Type& lhs, const Type& rhs) {                                               \
        return !(lhs.fields() == rhs.fields());                                                              \
    }                                                                                                        \
    static constexpr const char* fieldNames() {                                                              \
        return LCD_RECORD_FIELD_TEXT(__VA_ARGS__);                                                           \
    }
#define LCD_RECORD_FIELD_TEXT(...) #__VA_ARGS__

#define LCD_DERIVED_RECORD_FIELDS(Type, Base, ...)                                                           \
    LCD_RECORD_FIELDS(Type, static_cast<const Base&>(*this), __VA_ARGS__)

namespace LCD {
namespace ConfigModel {
namespace detail {

// Whether `Record` is exactly as large as a struct with one member of each
// type of the tuple `Fields`, in that order (members aligned, the end padded
// to the largest alignment). A field left out of the list makes that smaller.
template <class Fields> struct FieldLayout;
template <class... Fs> struct FieldLayout<std::tuple<Fs...>> {
    static constexpr std::size_t size() {
        std::size_t end = 0;
        std::size_t align = 1;
        ((end = roundUp(end, alignOf<Fs>()) + sizeof(std::remove_reference_t<Fs>),
          align = alignOf<Fs>() > align ? alignOf<Fs>() : align),
         ...);
        return roundUp(end, align);
    }

private:
    template <class F> static constexpr std::size_t alignOf() { return alignof(std::remove_reference_t<F>); }
    static constexpr std::size_t roundUp(std::size_t n, std::size_t to) { return (n + to - 1) / to * to; }
};

template <class Record, class Fields> constexpr bool namesEveryField() {
    return sizeof(Record) == FieldLayout<Fields>::size();
}

} // namespace detail

// One numeric capability with its limits.
struct s_RangeValue {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;
    qint32 min = 0;
    qint32 max = 255;
    double step = 1.0; // filled only where a file says so (the screen grid)

    LCD_RECORD_FIELDS(s_RangeValue, support, editable, value, dataType, min, max, step)
};

// A support flag without a value.
struct s_SupportInfo {
    qint32 support = -1;
    qint32 editable = -1;

    LCD_RECORD_FIELDS(s_SupportInfo, support, editable)
};

// One enumeration value.
struct EnumValue {
    qint32 value = 0;

    LCD_RECORD_FIELDS(EnumValue, value)
};

// An enumeration value with its display text (UTF-8).
struct s_EnumStringValue {
    qint32 value = 0;
    std::string name;

    LCD_RECORD_FIELDS(s_EnumStringValue, value, name)
};

// An enumerated setting with its selectable values, in file order.
struct s_OptionList {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;
    std::vector<EnumValue> values;

    LCD_RECORD_FIELDS(s_OptionList, support, editable, value, dataType, values)
};

// A setting without limits.
struct s_ValueSetting {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;

    LCD_RECORD_FIELDS(s_ValueSetting, support, editable, value, dataType)
};

// A setting whose value is text (UTF-8, from the "Value" attribute).
struct s_TextRange {
    qint32 support = -1;
    qint32 editable = -1;
    std::string text;
    qint32 dataType = 0;
    qint32 min = 0;
    qint32 max = 255;

    LCD_RECORD_FIELDS(s_TextRange, support, editable, text, dataType, min, max)
};

} // namespace ConfigModel
} // namespace LCD
