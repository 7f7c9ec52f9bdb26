// The constant texts and lookup tables of lcdconfigmodel/constants.h: icons of
// the test patterns, connector type names, the order of colour spaces and the
// names of the view models the host asks for.

#include "lcdconfigmodel/constants.h"

namespace LCD {
namespace Constants {

using namespace Enum;
using namespace Enum::Interface;

const QString GroupKeyPress = QStringLiteral("PRESS");
const QString GroupKeyRelease = QStringLiteral("RELEASE");
const QString GroupKeyTimeout = QStringLiteral("TIMEOUT");

#define ICON(file) QStringLiteral("/share/themes/dark/images/" file)
const QMap<TestPatternType, QString> g_mapIconPath = {
    {TestPatternSolidBlack, ICON("icon_test_solid_black.png")},
    {TestPatternSolidRed, ICON("icon_test_solid_red.png")},
    {TestPatternSolidGreen, ICON("icon_test_solid_green.png")},
    {TestPatternSolidBlue, ICON("icon_test_solid_blue.png")},
    {TestPatternSolidWhite, ICON("icon_test_solid_white.png")},
    {TestPatternStripeVertical, ICON("icon_test_stripe_v.png")},
    {TestPatternStripeHorizontal, ICON("icon_test_stripe_h.png")},
    {TestPatternGrid, ICON("icon_test_gird.png")},
    {TestPatternGradientRed, ICON("icon_test_change_red.png")},
    {TestPatternGradientGreen, ICON("icon_test_change_green.png")},
    {TestPatternGradientBlue, ICON("icon_test_change_blue.png")},
    {TestPatternGradientGrey, ICON("icon_test_change_grey_01.png")},
    {TestPatternGradientRedVertical, ICON("icon_test_change_red_v.png")},
    {TestPatternGradientGreenVertical, ICON("icon_test_change_green_v.png")},
    {TestPatternGradientBlueVertical, ICON("icon_test_change_blue_v.png")},
    {TestPatternGradientGreyVertical, ICON("icon_test_change_grey_v.png")},
    {TestPatternLineHorizontal, ICON("icon_test_line_h.png")},
    {TestPatternLineVertical, ICON("icon_test_line_v.png")},
    {TestPatternLineOverlappingLeft, ICON("icon_test_line_overlapping_left.png")},
    {TestPatternLineOverlappingRight, ICON("icon_test_line_overlapping_right.png")},
    {TestPatternLineGrid, ICON("icon_test_line_gird.png")},
    {TestPatternLineOverlapping, ICON("icon_test_line_overlapping.png")},
};
#undef ICON

const QMap<ConnectorType, QString> g_mapConnectorTypeName = {
    {ConnectorDVI, QStringLiteral("DVI")},        {ConnectorDDVI, QStringLiteral("DDVI")},
    {ConnectorHDMI13, QStringLiteral("HDMI1.3")}, {ConnectorHDMI14, QStringLiteral("HDMI1.4")},
    {ConnectorHDMI20, QStringLiteral("HDMI2.0")}, {ConnectorDP11, QStringLiteral("DP1.1")},
    {ConnectorDP12, QStringLiteral("DP1.2")},     {ConnectorSDI, QStringLiteral("SDI")},
    {ConnectorVGA, QStringLiteral("VGA")},        {ConnectorCVBS, QStringLiteral("CVBS")},
    {Connector12GSDI, QStringLiteral("12G-SDI")}, {Connector6GSDI, QStringLiteral("6G-SDI")},
    {ConnectorDDP11, QStringLiteral("DDP1.1")},
};

const QMap<int, InterfaceColorSpace> g_mapOrderColorSpace = {
    {0, ColorSpaceYCbCr420}, {1, ColorSpaceYCbCr444}, {2, ColorSpaceYCbCr422},
    {3, ColorSpaceRGB},      {255, ColorSpaceAuto},
};

const QMap<ThumbTagName, int> g_mapThumbTagName = {
    {ThumbWidth, 0},      {ThumbHeight, 1},     {ThumbRefreshRate, 2},
    {ThumbInterlaced, 3}, {ThumbPixelClock, 4}, {ThumbName, 5},
};

const QMap<DetailTagName, int> g_mapDetailTimingTagName = {
    {DetailHActive, 0},     {DetailVActive, 1},      {DetailRefreshRate, 2},    {DetailInterlaced, 3},
    {DetailHTotal, 4},      {DetailVTotal, 5},       {DetailHFrontPorch, 6},    {DetailVFrontPorch, 7},
    {DetailHSync, 8},       {DetailVSync, 9},        {DetailHSyncPolarity, 10}, {DetailVSyncPolarity, 11},
    {DetailPixelClock, 12}, {DetailCoefficient, 13},
};

const std::string ScreenColorSpaceViewModel = "screencolorspaceviewmodel";
const std::string ScreenColorDepthViewModel = "screencolordepthviewmodel";
const std::string OutputColorSpaceViewModel = "outputcolorspaceviewmodel";
const std::string OutputColorDepthViewModel = "outputcolordepthviewmodel";
const std::string InputColorSpaceViewModel = "inputcolorspaceviewmodel";
const std::string InputColorDepthViewModel = "inputcolordepthviewmodel";
const std::string OutputDynamicViewModel = "outputinterfacedynamicviewmodelmessagehander";
const std::string ScreenDynamichViewModel = "screendynamicviewmodelmessagehander";

} // namespace Constants
} // namespace LCD
