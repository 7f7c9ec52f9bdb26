#pragma once

// Enumerations that key the shared constant tables. Only the numbers are part
// of the contract with the host; the names are ours.

namespace LCD {
namespace Enum {

enum TestPatternType {
    // Solid colours and simple patterns.
    TestPatternSolidBlack = 0,
    TestPatternSolidRed = 1,
    TestPatternSolidGreen = 2,
    TestPatternSolidBlue = 3,
    TestPatternSolidWhite = 4,
    TestPatternStripeVertical = 5,
    TestPatternStripeHorizontal = 6,
    TestPatternGrid = 7,
    // Gradients.
    TestPatternGradientRed = 256,
    TestPatternGradientGreen = 257,
    TestPatternGradientBlue = 258,
    TestPatternGradientGrey = 259,
    TestPatternGradientRedVertical = 260,
    TestPatternGradientGreenVertical = 261,
    TestPatternGradientBlueVertical = 262,
    TestPatternGradientGreyVertical = 263,
    // Lines.
    TestPatternLineHorizontal = 512,
    TestPatternLineVertical = 513,
    TestPatternLineOverlappingLeft = 514,
    TestPatternLineOverlappingRight = 515,
    TestPatternLineGrid = 516,
    TestPatternLineOverlapping = 517,
};

namespace Interface {

// Connector type numbers, shared by the card catalogue, the connector
// catalogue and the connector type names.
enum ConnectorType {
    ConnectorNone = 0,
    ConnectorDVI = 2,
    ConnectorDDVI = 3,
    ConnectorHDMI13 = 4,
    ConnectorHDMI14 = 5,
    ConnectorHDMI20 = 6,
    ConnectorDP11 = 7,
    ConnectorDP12 = 8,
    ConnectorSDI = 9,
    ConnectorVGA = 10,
    ConnectorCVBS = 11,
    Connector12GSDI = 13,
    Connector6GSDI = 14,
    ConnectorDDP11 = 17,
};

enum InterfaceColorSpace {
    ColorSpaceRGB = 0,
    ColorSpaceYCbCr444 = 1,
    ColorSpaceYCbCr422 = 2,
    ColorSpaceYCbCr420 = 3,
    ColorSpaceAuto = 255,
};

// Tags of a preset thumbnail timing.
enum ThumbTagName {
    ThumbWidth = 0,
    ThumbHeight = 1,
    ThumbRefreshRate = 2,
    ThumbInterlaced = 3,
    ThumbPixelClock = 4,
    ThumbName = 5,
};

// Tags of a detailed timing.
enum DetailTagName {
    DetailHActive = 0,
    DetailVActive = 1,
    DetailRefreshRate = 2,
    DetailInterlaced = 3,
    DetailHTotal = 4,
    DetailVTotal = 5,
    DetailHFrontPorch = 6,
    DetailVFrontPorch = 7,
    DetailHSync = 8,
    DetailVSync = 9,
    DetailHSyncPolarity = 10,
    DetailVSyncPolarity = 11,
    DetailPixelClock = 12,
    DetailCoefficient = 13,
};

} // namespace Interface
} // namespace Enum
} // namespace LCD
