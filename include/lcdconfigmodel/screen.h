#pragma once

// Records of the device screen file: one record per screen type with its
// splicing options, device modes (templates, layouts, layer types) and the
// feature tree. A record no file has touched holds -1 in every support and
// editable field ("not stated") and the defaults of the shared value records.

#include <string>
#include <vector>

#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace Screen {

// ---- device modes ---------------------------------------------------------

// A display name in both languages (UTF-8).
struct s_Name {
    std::string en;
    std::string zhCN;

    LCD_RECORD_FIELDS(s_Name, en, zhCN)
};

// One tile of a layout and the output connector that feeds it.
struct s_Cell {
    qint32 x = 0;
    qint32 y = 0;
    qint32 width = 0;
    qint32 height = 0;
    qint32 row = 0;
    qint32 column = 0;
    qint32 slotIndex = 0;
    qint32 connectorIndex = 0; // position on the output card, from 1

    LCD_RECORD_FIELDS(s_Cell, x, y, width, height, row, column, slotIndex, connectorIndex)
};

// One arrangement of a template.
struct s_Layout {
    qint32 rows = 0;
    qint32 columns = 0;
    qint32 screenId = 0;
    std::vector<s_Cell> cells; // file order

    LCD_RECORD_FIELDS(s_Layout, rows, columns, screenId, cells)
};

// The physical size of a template's panels.
struct s_PhysicalSize {
    s_RangeValue dotPitch;
    s_OptionList unit;
    s_RangeValue width;
    s_RangeValue height;

    LCD_RECORD_FIELDS(s_PhysicalSize, dotPitch, unit, width, height)
};

// One splicing template.
struct s_Templete {
    s_Name name;
    std::vector<s_Layout> layouts; // file order
    s_PhysicalSize physicalSize;

    LCD_RECORD_FIELDS(s_Templete, name, layouts, physicalSize)
};

// Preview support of a device mode.
struct s_Pvw {
    qint32 support = -1;
    qint32 softImp = -1;

    LCD_RECORD_FIELDS(s_Pvw, support, softImp)
};

// How many layers of a type a screen holds.
struct s_LayerCount {
    qint32 max = 0;
    qint32 valid = 0;

    LCD_RECORD_FIELDS(s_LayerCount, max, valid)
};

// One layer type a screen offers in a device mode.
struct s_LayerType {
    qint32 value = 0;
    s_LayerCount layerCount;
    s_OptionList unit;

    LCD_RECORD_FIELDS(s_LayerType, value, layerCount, unit)
};

// One device mode (1 standard, 2 4K in the shipped files).
struct s_DeviceMode {
    qint32 value = 0;
    s_Pvw pvw;
    qint32 templetesValue = 0;
    std::vector<s_Templete> templetes;   // file order
    std::vector<s_LayerType> layerTypes; // file order

    LCD_RECORD_FIELDS(s_DeviceMode, value, pvw, templetesValue, templetes, layerTypes)
};

// ---- feature tree ---------------------------------------------------------

// Naming rules of a screen. The texts of `name` and `nameGB2312` are never
// filled from a file.
struct s_General {
    qint32 support = -1;
    qint32 editable = -1;
    s_TextRange name;
    std::string prefix;
    s_TextRange nameGB2312;

    LCD_RECORD_FIELDS(s_General, support, editable, name, prefix, nameGB2312)
};

// The splicing window.
struct s_MosaicWindow {
    qint32 support = -1;
    qint32 editable = -1;
    s_RangeValue width;
    s_RangeValue height;
    s_RangeValue x;
    s_RangeValue y;

    LCD_RECORD_FIELDS(s_MosaicWindow, support, editable, width, height, x, y)
};

// A colour setting of the output: what the outputs deliver and what is preset.
struct s_ColorSetting {
    qint32 support = -1;
    qint32 editable = -1;
    s_OptionList actual;
    s_OptionList preset;

    LCD_RECORD_FIELDS(s_ColorSetting, support, editable, actual, preset)
};

// One axis of an output timing.
struct s_TimingAxis {
    qint32 support = -1;
    qint32 editable = -1;
    s_RangeValue addTime;
    s_RangeValue frontPorch;
    s_RangeValue sync;
    s_RangeValue polarity;
    s_RangeValue totalTime;

    LCD_RECORD_FIELDS(s_TimingAxis, support, editable, addTime, frontPorch, sync, polarity, totalTime)
};

struct s_Timing {
    qint32 support = -1;
    qint32 editable = -1;
    s_OptionList interlaced;
    s_RangeValue refresh;
    s_TimingAxis horizontal;
    s_TimingAxis vertical;

    LCD_RECORD_FIELDS(s_Timing, support, editable, interlaced, refresh, horizontal, vertical)
};

// Edge blending between neighbouring tiles.
struct s_Feather {
    qint32 support = -1;
    qint32 editable = -1;
    s_OptionList enable; // values are never filled
    s_OptionList type;
    s_RangeValue gamma;
    s_RangeValue width;

    LCD_RECORD_FIELDS(s_Feather, support, editable, enable, type, gamma, width)
};

// The output parameters every connector of a spliced screen shares.
struct s_RefOutputPara {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 customBuild = 0;
    qint32 customDelete = 0;
    s_ColorSetting colorDepths;
    s_ColorSetting colorSpaces;
    s_ColorSetting colorRanges;
    s_OptionList formatMapping;
    s_Timing timing;
    s_Feather feather;

    LCD_RECORD_FIELDS(s_RefOutputPara, support, editable, customBuild, customDelete, colorDepths, colorSpaces,
                      colorRanges, formatMapping, timing, feather)
};

// Splicing geometry and output timing.
struct s_Mosaic {
    qint32 support = -1;
    qint32 editable = -1;
    s_OptionList type;
    s_MosaicWindow window;
    s_RefOutputPara refOutputPara;

    LCD_RECORD_FIELDS(s_Mosaic, support, editable, type, window, refOutputPara)
};

struct s_BackgroundColor {
    qint32 support = -1;
    qint32 editable = -1;
    s_RangeValue r;
    s_RangeValue g;
    s_RangeValue b;

    LCD_RECORD_FIELDS(s_BackgroundColor, support, editable, r, g, b)
};

// Position of the layer layout on the screen.
struct s_LayoutPosition {
    qint32 support = -1;
    qint32 editable = -1;
    s_RangeValue x;
    s_RangeValue y;

    LCD_RECORD_FIELDS(s_LayoutPosition, support, editable, x, y)
};

// Test patterns; gridPixel.step holds the grid's "Coefficient".
struct s_TestPattern {
    qint32 support = -1;
    qint32 editable = -1;
    s_OptionList enable;
    s_OptionList type;
    s_OptionList bright;
    s_OptionList gridGear;
    s_RangeValue gridPixel;
    s_OptionList gridType;
    s_RangeValue gridLineWidth;
    s_OptionList speed;

    LCD_RECORD_FIELDS(s_TestPattern, support, editable, enable, type, bright, gridGear, gridPixel, gridType,
                      gridLineWidth, speed)
};

// Functions whose elements the loader only checks for: their contents are not
// read, so these keep support and editable at -1.
struct s_ImageQuality : s_SupportInfo {};
struct s_Ftb : s_SupportInfo {};
struct s_SwitchEffect : s_SupportInfo {};
struct s_Tbar : s_SupportInfo {};
struct s_HDR : s_SupportInfo {};
struct s_Genlock : s_SupportInfo {};

// What a screen of one type can do.
struct s_Features {
    s_General general;
    s_Mosaic mosaic;
    s_BackgroundColor backgroundColor;
    s_LayoutPosition layout;
    s_OptionList pgmEdit;
    s_OptionList selected;
    s_ImageQuality imageQuality;
    s_OptionList freeze;
    s_Ftb ftb;
    s_TestPattern testPattern;
    s_SwitchEffect switchEffect;
    s_Tbar tbar;
    s_HDR hdr;
    s_Genlock genlock;

    LCD_RECORD_FIELDS(s_Features, general, mosaic, backgroundColor, layout, pgmEdit, selected, imageQuality,
                      freeze, ftb, testPattern, switchEffect, tbar, hdr, genlock)
};

// ---- the screen -----------------------------------------------------------

// One screen type of a device model, read from one screen file.
struct s_VrnScreen {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 type = 0; // the screen type number screens are looked up by
    qint32 spliceMode = 0;
    qint32 incompleteSplicing = 0;
    qint32 customBuild = 0;
    qint32 customDelete = 0;
    qint32 limitNum = 0;
    s_SupportInfo deviceModesInfo;
    std::vector<s_DeviceMode> deviceModes; // file order
    s_Features features;

    LCD_RECORD_FIELDS(s_VrnScreen, support, editable, type, spliceMode, incompleteSplicing, customBuild,
                      customDelete, limitNum, deviceModesInfo, deviceModes, features)
};

// The name under which the device interface hands out a screen record.
using s_Screen = s_VrnScreen;

} // namespace Screen
} // namespace ConfigModel
} // namespace LCD
