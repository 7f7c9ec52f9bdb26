#pragma once

// Records of the device layer file: what a layer (a window on a screen) of one
// layer type can do. One file, and one record, per layer type.

#include <vector>

#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace Layercfg {

// A range whose limits are 64-bit (cut-fill coordinates and sizes). The file
// states the limits as 32-bit decimals; they are widened.
struct s_WideRangeValue {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 value = 0;
    qint32 dataType = 0;
    qint64 min = 0;
    qint64 max = 255;

    LCD_RECORD_FIELDS(s_WideRangeValue, support, editable, value, dataType, min, max)
};

// The shadow of a layer: a general switch with its feather, the shadow window
// and its colour.
struct s_Shadow {
    s_SupportInfo shadow;
    s_SupportInfo general; // never read from a file: stays -1, -1
    s_OptionList generalEnable;
    s_RangeValue feather;
    s_SupportInfo window;
    s_RangeValue windowWidth;
    s_RangeValue windowHeight;
    s_RangeValue windowX;
    s_RangeValue windowY;
    s_SupportInfo color;
    s_RangeValue colorR;
    s_RangeValue colorG;
    s_RangeValue colorB;
    s_RangeValue colorOpacity;

    LCD_RECORD_FIELDS(s_Shadow, shadow, general, generalEnable, feather, window, windowWidth, windowHeight,
                      windowX, windowY, color, colorR, colorG, colorB, colorOpacity)
};

// Cut-and-fill (cropping): the switch, the curve from start to end point and
// the relative rectangle.
struct s_CutFill {
    s_SupportInfo cutFill;
    s_OptionList enable;
    s_SupportInfo curve;
    s_SupportInfo curveStart;
    s_WideRangeValue curveStartX;
    s_WideRangeValue curveStartY;
    s_SupportInfo curveEnd;
    s_WideRangeValue curveEndX;
    s_WideRangeValue curveEndY;
    s_SupportInfo relative;
    s_WideRangeValue relativeWidth;
    s_WideRangeValue relativeHeight;
    s_WideRangeValue relativeX;
    s_WideRangeValue relativeY;

    LCD_RECORD_FIELDS(s_CutFill, cutFill, enable, curve, curveStart, curveStartX, curveStartY, curveEnd,
                      curveEndX, curveEndY, relative, relativeWidth, relativeHeight, relativeX, relativeY)
};

// The reserved members of s_Layer: no layer file fills them; they keep their
// shape defaults and hold their place in the record. Each block is listed
// once and used both to declare them and to name them in the field list.
// clang-format off
#define LCD_LAYERCFG_RESERVED_BEFORE_INVERSE(X)                                                                   \
    X(s_OptionList, reserved01) X(s_RangeValue, reserved02) X(s_OptionList, reserved03)                            \
    X(s_SupportInfo, reserved04) X(s_TextRange, reserved05)                                                        \
    X(s_OptionList, reserved06) X(s_OptionList, reserved07) X(s_OptionList, reserved08)

#define LCD_LAYERCFG_RESERVED_BEFORE_SHADOW(X)                                                                    \
    X(s_OptionList, reserved09)                                                                                    \
    X(s_SupportInfo, reserved10) X(s_OptionList, reserved11)                                                       \
    X(s_SupportInfo, reserved12) X(s_OptionList, reserved13)                                                       \
    X(s_RangeValue, reserved14) X(s_RangeValue, reserved15) X(s_RangeValue, reserved16) X(s_RangeValue, reserved17) \
    X(s_SupportInfo, reserved18)                                                                                   \
    X(s_RangeValue, reserved19) X(s_RangeValue, reserved20) X(s_RangeValue, reserved21) X(s_RangeValue, reserved22) \
    X(s_SupportInfo, reserved23) X(s_OptionList, reserved24)                                                       \
    X(s_RangeValue, reserved25) X(s_RangeValue, reserved26) X(s_RangeValue, reserved27) X(s_RangeValue, reserved28) \
    X(s_SupportInfo, reserved29) X(s_OptionList, reserved30)                                                       \
    X(s_OptionList, reserved31)                                                                                    \
    X(s_SupportInfo, reserved32) X(s_RangeValue, reserved33) X(s_RangeValue, reserved34)                           \
    X(s_SupportInfo, reserved35) X(s_OptionList, reserved36)                                                       \
    X(s_RangeValue, reserved37) X(s_RangeValue, reserved38) X(s_RangeValue, reserved39)                            \
    X(s_SupportInfo, reserved40)                                                                                   \
    X(s_RangeValue, reserved41) X(s_RangeValue, reserved42) X(s_RangeValue, reserved43) X(s_RangeValue, reserved44) \
    X(s_RangeValue, reserved45)                                                                                    \
    X(s_SupportInfo, reserved46)                                                                                   \
    X(s_RangeValue, reserved47) X(s_RangeValue, reserved48) X(s_RangeValue, reserved49) X(s_RangeValue, reserved50) \
    X(s_RangeValue, reserved51)                                                                                    \
    X(s_SupportInfo, reserved52) X(s_OptionList, reserved53)                                                       \
    X(s_RangeValue, reserved54) X(s_RangeValue, reserved55) X(s_RangeValue, reserved56) X(s_RangeValue, reserved57) \
    X(s_SupportInfo, reserved58) X(s_SupportInfo, reserved59)                                                      \
    X(s_RangeValue, reserved60) X(s_RangeValue, reserved61) X(s_RangeValue, reserved62)                            \
    X(s_SupportInfo, reserved63)                                                                                   \
    X(s_RangeValue, reserved64) X(s_RangeValue, reserved65) X(s_RangeValue, reserved66) X(s_RangeValue, reserved67) \
    X(s_RangeValue, reserved68) X(s_RangeValue, reserved69)                                                        \
    X(qint64, reserved70)

#define LCD_LAYERCFG_RESERVED_BEFORE_CUTFILL(X)                                                                   \
    X(s_SupportInfo, reserved71) X(s_OptionList, reserved72)                                                       \
    X(s_OptionList, reserved73)                                                                                    \
    X(s_SupportInfo, reserved74) X(s_RangeValue, reserved75) X(s_RangeValue, reserved76)                           \
    X(s_SupportInfo, reserved77)                                                                                   \
    X(s_RangeValue, reserved78) X(s_RangeValue, reserved79) X(s_RangeValue, reserved80) X(s_RangeValue, reserved81) \
    X(s_SupportInfo, reserved82) X(s_OptionList, reserved83)                                                       \
    X(s_OptionList, reserved84)                                                                                    \
    X(s_SupportInfo, reserved85) X(s_ValueSetting, reserved86) X(s_SupportInfo, reserved87)                        \
    X(std::vector<s_EnumStringValue>, reserved88)                                                                  \
    X(s_SupportInfo, reserved89)                                                                                   \
    X(s_RangeValue, reserved90) X(s_RangeValue, reserved91) X(s_RangeValue, reserved92) X(s_RangeValue, reserved93) \
    X(s_SupportInfo, reserved94)                                                                                   \
    X(s_RangeValue, reserved95) X(s_RangeValue, reserved96) X(s_RangeValue, reserved97) X(s_RangeValue, reserved98)

#define LCD_LAYERCFG_DECLARE(Type, name) Type name{};
#define LCD_LAYERCFG_NAME(Type, name) , name
// clang-format on

// One layer type. The parser fills type, isInverse, shadow and cutFill; the
// reserved members always hold their defaults.
struct s_Layer {
    qint32 type = 0; // set by every successful parse
    LCD_LAYERCFG_RESERVED_BEFORE_INVERSE(LCD_LAYERCFG_DECLARE)
    s_OptionList isInverse;
    LCD_LAYERCFG_RESERVED_BEFORE_SHADOW(LCD_LAYERCFG_DECLARE)
    s_Shadow shadow;
    LCD_LAYERCFG_RESERVED_BEFORE_CUTFILL(LCD_LAYERCFG_DECLARE)
    s_CutFill cutFill;

    // clang-format off
    LCD_RECORD_FIELDS(s_Layer, type LCD_LAYERCFG_RESERVED_BEFORE_INVERSE(LCD_LAYERCFG_NAME),
                      isInverse LCD_LAYERCFG_RESERVED_BEFORE_SHADOW(LCD_LAYERCFG_NAME),
                      shadow LCD_LAYERCFG_RESERVED_BEFORE_CUTFILL(LCD_LAYERCFG_NAME),
                      cutFill)
    // clang-format on
};

#undef LCD_LAYERCFG_NAME
#undef LCD_LAYERCFG_DECLARE
#undef LCD_LAYERCFG_RESERVED_BEFORE_CUTFILL
#undef LCD_LAYERCFG_RESERVED_BEFORE_SHADOW
#undef LCD_LAYERCFG_RESERVED_BEFORE_INVERSE

// The record of one layer file, as the device record keeps it: an s_Layer
// without members of its own.
struct s_VrnLayer : s_Layer {};

} // namespace Layercfg
} // namespace ConfigModel
} // namespace LCD
