#pragma once

// Capability value records shared by the description files. Defaults are those
// of a record no file has touched: -1 in support/editable means "not stated".

#include <QtCore/qglobal.h>

#include <string>
#include <tuple>
#include <vector>

namespace LCD {
namespace ConfigModel {

// One numeric capability with its limits.
struct s_RangeValue {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;
    qint32 min = 0;
    qint32 max = 255;
    double step = 1.0; // filled only where a file says so (the screen grid)

    bool operator==(const s_RangeValue& o) const {
        return std::tie(support, editable, value, dataType, min, max, step) ==
               std::tie(o.support, o.editable, o.value, o.dataType, o.min, o.max, o.step);
    }
    bool operator!=(const s_RangeValue& o) const { return !(*this == o); }
};

// A support flag without a value.
struct s_SupportInfo {
    qint32 support = -1;
    qint32 editable = -1;

    bool operator==(const s_SupportInfo& o) const { return support == o.support && editable == o.editable; }
    bool operator!=(const s_SupportInfo& o) const { return !(*this == o); }
};

// One enumeration value.
struct EnumValue {
    qint32 value = 0;

    bool operator==(const EnumValue& o) const { return value == o.value; }
    bool operator!=(const EnumValue& o) const { return !(*this == o); }
};

// An enumeration value with its display text (UTF-8).
struct s_EnumStringValue {
    qint32 value = 0;
    std::string name;

    bool operator==(const s_EnumStringValue& o) const { return value == o.value && name == o.name; }
    bool operator!=(const s_EnumStringValue& o) const { return !(*this == o); }
};

// An enumerated setting with its selectable values, in file order.
struct s_OptionList {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;
    std::vector<EnumValue> values;

    bool operator==(const s_OptionList& o) const {
        return std::tie(support, editable, value, dataType, values) ==
               std::tie(o.support, o.editable, o.value, o.dataType, o.values);
    }
    bool operator!=(const s_OptionList& o) const { return !(*this == o); }
};

// A setting without limits.
struct s_ValueSetting {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;

    bool operator==(const s_ValueSetting& o) const {
        return std::tie(support, editable, value, dataType) ==
               std::tie(o.support, o.editable, o.value, o.dataType);
    }
    bool operator!=(const s_ValueSetting& o) const { return !(*this == o); }
};

// A setting whose value is text (UTF-8, from the "Value" attribute).
struct s_TextRange {
    qint32 support = -1;
    qint32 editable = -1;
    std::string text;
    qint32 dataType = 0;
    qint32 min = 0;
    qint32 max = 255;

    bool operator==(const s_TextRange& o) const {
        return std::tie(support, editable, text, dataType, min, max) ==
               std::tie(o.support, o.editable, o.text, o.dataType, o.min, o.max);
    }
    bool operator!=(const s_TextRange& o) const { return !(*this == o); }
};

} // namespace ConfigModel
} // namespace LCD
