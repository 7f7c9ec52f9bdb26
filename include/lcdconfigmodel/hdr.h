#pragma once

// HDR option tables: which bit depths, colour gamuts and dynamic ranges may be
// chosen for inputs and outputs given the current value of another setting,
// what "AUTO" resolves to, and the display texts of the values.

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/qglobal.h>

#include <list>
#include <map>

#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {

// The settings by number, as getKeyValue chooses its text table; the shipped
// option files use the same numbers for their key and dependent types.
enum HDRSettingType : int {
    HDRBitDepth = 0,
    HDRDynamicRange = 1,
    HDRColorGamut = 2,
};

// The configType of getCanSelectedValues.
enum HDRConfigType : int {
    HDRInputConfig = 2,
    HDROutputConfig = 4,
};

// "AUTO" in every HDR table.
constexpr int HDRAutoValue = 255;

// The key of one dependency: a setting (`type`) at one of its values. Keys
// order by type, then by value.
struct HDRKey {
    qint32 type = 0;
    qint32 value = 0;

    LCD_RECORD_FIELDS(HDRKey, type, value)
    bool operator<(const HDRKey& o) const { return fields() < o.fields(); }
};

// One direction's option table: for each key, the dependent settings (by
// type) with their selectable values in file order.
using HDROptionTable = std::map<HDRKey, std::map<int, std::list<int>>>;

// A new component holds two empty tables: call initInputConfig and
// initOutputConfig (from the right working directory) before asking
// getCanSelectedValues, which otherwise answers with empty maps. The other
// operations read no file and work at any time. Results are copies.
class LCD_CONFIGMODEL_EXPORT IHDRConfig {
public:
    virtual ~IHDRConfig() = default;

    // The dependent settings of `key` with their selectable values, from the
    // input table (configType 2) or the output table (4). An empty map for any
    // other configType and for a key the table lacks.
    virtual std::map<int, std::list<int>> getCanSelectedValues(const HDRKey& key, int configType) = 0;

    // Read "lcdhdrinputconfig.xml" / "lcdhdroutputconfig.xml" from
    // <working directory>/../share/config/func/hdr/. A missing or rejected file
    // is a warning and leaves the table as it was. Reading again merges into
    // the table; nothing is cleared.
    virtual void initInputConfig() = 0;
    virtual void initOutputConfig() = 0;

    // `value`, unless it is 255 ("AUTO"): then `actual`, or the fallback when
    // `actual` is -1 (unknown): 8 bit, Rec.709 (1), SDR (0).
    virtual int autoToActualForBitDepth(int value, int actual) = 0;
    virtual int autoToActualForColorGamut(int value, int actual) = 0;
    virtual int autoToActualForDynamicRange(int value, int actual) = 0;

    // Display text of each value (255 "AUTO"). The texts are static: they stay
    // valid while the library is loaded, after the component is destroyed.
    virtual QHash<int, const char*> getColorSpaceString() = 0;
    virtual QHash<int, const char*> getColorGamutString() = 0;
    virtual QHash<int, const char*> getDynamicRangeString() = 0;

    // The texts of `values` from the table of setting `type` (0 bit depth,
    // 1 dynamic range, 2 colour gamut): numbers the table lacks are skipped,
    // repeats count once. An empty map for any other type.
    virtual QHash<int, QString> getKeyValue(int type, const std::list<int>& values) = 0;
};

} // namespace ConfigModel
} // namespace LCD
