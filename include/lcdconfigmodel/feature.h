#pragma once

// Records of the device feature file: who the device model is and, section by
// section, which optional functions it offers and how the operator may set
// them. Plain values with their defaults in the member initialisers; a record
// no file has touched holds support -1 and editable -1 everywhere ("not stated").

#include <QtCore/qglobal.h>

#include <string>
#include <vector>

#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {
namespace Feature {

// ---- "Features" -----------------------------------------------------------

// "Genlock" and its phase.
struct s_Genlock {
    s_SupportInfo genlock;
    s_OptionList type;
    s_SupportInfo phase;
    s_OptionList phaseEnable;
    s_RangeValue phaseOffset;

    LCD_RECORD_FIELDS(s_Genlock, genlock, type, phase, phaseEnable, phaseOffset)
};

// "InterfaceMapping"/"TestPattern".
struct s_TestPattern {
    s_SupportInfo pattern;
    s_OptionList enable;
    s_OptionList type;
    s_RangeValue bright;
    s_RangeValue gridSpace;
    s_RangeValue gridLineWidth;
    s_RangeValue speed;

    LCD_RECORD_FIELDS(s_TestPattern, pattern, enable, type, bright, gridSpace, gridLineWidth, speed)
};

// "InterfaceMapping".
struct s_InterfaceMapping {
    s_SupportInfo mapping;
    s_OptionList type;
    s_TestPattern testPattern;

    LCD_RECORD_FIELDS(s_InterfaceMapping, mapping, type, testPattern)
};

// One child of "DynamicRangConversion"/"LayerModes".
struct s_LayerModesSupportInfo {
    qint32 hdrSupport = 0;
    qint32 value = 0;

    LCD_RECORD_FIELDS(s_LayerModesSupportInfo, hdrSupport, value)
};

// One child of "ThirdPlugins": support and editable repeat the section's own.
struct s_ThirdPlugin {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 type = 0;

    LCD_RECORD_FIELDS(s_ThirdPlugin, support, editable, type)
};

// The "Features" section.
struct s_Features {
    s_SupportInfo screen;
    s_RangeValue screenId;
    s_OptionList screenType;
    s_Genlock genlock;
    s_SupportInfo hdcp;
    s_SupportInfo dynamicRangConversion;
    s_OptionList drcEnable;
    s_OptionList drcType;
    s_SupportInfo layerModes;
    std::vector<s_LayerModesSupportInfo> layerModesList;
    s_ValueSetting dynamicRang;
    s_InterfaceMapping interfaceMapping;
    s_SupportInfo cutoutPos;
    s_OptionList cutoutEnable;
    s_OptionList cutoutType;
    s_SupportInfo group;
    s_TextRange groupName;
    s_OptionList swap;
    s_OptionList language;
    s_SupportInfo switchEffect;
    s_RangeValue switchTime;
    s_RangeValue switchDirection;
    s_SupportInfo thirdPlugins;
    std::vector<s_ThirdPlugin> thirdPluginList;
    s_SupportInfo antiStatic;
    // 0 until an "AntiStatic" section is read. A section with fewer than two
    // children gives the fields without a source their attribute default, 1.
    qint32 antiStaticEnable = 0;
    qint32 antiStaticValue = 0;
    qint32 antiStaticMin = 0;
    qint32 antiStaticMax = 0;
    s_OptionList checkBlank;

    LCD_RECORD_FIELDS(s_Features, screen, screenId, screenType, genlock, hdcp, dynamicRangConversion,
                      drcEnable, drcType, layerModes, layerModesList, dynamicRang, interfaceMapping,
                      cutoutPos, cutoutEnable, cutoutType, group, groupName, swap, language, switchEffect,
                      switchTime, switchDirection, thirdPlugins, thirdPluginList, antiStatic,
                      antiStaticEnable, antiStaticValue, antiStaticMin, antiStaticMax, checkBlank)
};

// ---- system sections ------------------------------------------------------

// "NetWorks"/"NetWork" (only the first one of the file).
struct s_Network {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 index = 0; // 0 until a "NetWorks" section is stored (a file's default is 1)
    s_OptionList dhcp;
    s_TextRange ip;
    s_TextRange subNetMask;
    s_TextRange gateway;

    LCD_RECORD_FIELDS(s_Network, support, editable, index, dhcp, ip, subNetMask, gateway)
};

// "ProjectFile"/"Contain": what a project file carries.
struct s_Contain {
    s_SupportInfo contain;
    s_OptionList other;
    s_OptionList bkg;
    s_OptionList logo;
    s_OptionList preset;

    LCD_RECORD_FIELDS(s_Contain, contain, other, bkg, logo, preset)
};

// "ProjectFile".
struct s_ProjectFile {
    s_SupportInfo projectFile;
    s_RangeValue fileId;
    s_OptionList fileType;
    s_SupportInfo fileGeneral;
    s_RangeValue fileGeneralName;
    s_Contain contain;

    LCD_RECORD_FIELDS(s_ProjectFile, projectFile, fileId, fileType, fileGeneral, fileGeneralName, contain)
};

// "Subcard"/"Connector".
struct s_Connector {
    s_SupportInfo connector;
    s_OptionList type;
    s_OptionList workMode;
    s_OptionList capacityMode;

    LCD_RECORD_FIELDS(s_Connector, connector, type, workMode, capacityMode)
};

// "Subcard": card handling.
struct s_Subcard {
    s_SupportInfo subcard;
    s_OptionList cardType;
    s_Connector connector;

    LCD_RECORD_FIELDS(s_Subcard, subcard, cardType, connector)
};

// "Upgrade".
struct s_Upgrade {
    s_SupportInfo upgrade;
    s_OptionList type;
    s_OptionList reboot;
    s_OptionList deleteFile;
    s_SupportInfo cards;
    s_OptionList cardsType;

    LCD_RECORD_FIELDS(s_Upgrade, upgrade, type, reboot, deleteFile, cards, cardsType)
};

// ---- the file -------------------------------------------------------------

// One device feature file. Texts are UTF-8.
struct s_DeviceFeature {
    quint16 moduleId = 0xFFFF;
    quint16 connectorPluginMode = 1;
    std::string seriesShortName;
    std::string name = "system1"; // a parse stores "Name", empty when absent
    std::string icon;
    std::string enName; // type name shown in English
    std::string zhName; // type name shown in Chinese
    s_Features features;
    s_SupportInfo general;
    s_RangeValue generalName;
    s_OptionList generalStatus;
    s_SupportInfo networks;
    s_Network network;
    s_ProjectFile projectFile;
    s_SupportInfo file;
    std::vector<s_RangeValue> fileItems;
    s_OptionList deviceModes;
    s_SupportInfo powerCtrl;
    s_OptionList powerCtrlType;
    s_Subcard subcard;
    s_SupportInfo restoreFactory;
    s_OptionList restoreFactoryType;
    s_Upgrade upgrade;
    s_SupportInfo hdr;
    s_OptionList hdrMode; // never read from the file
    s_SupportInfo deviceSelfTest;
    s_SupportInfo layerAlphaFunction;
    std::vector<s_EnumStringValue> layerAlphaValues; // never read from the file
    s_SupportInfo interfaceGroup;

    LCD_RECORD_FIELDS(s_DeviceFeature, moduleId, connectorPluginMode, seriesShortName, name, icon, enName,
                      zhName, features, general, generalName, generalStatus, networks, network, projectFile,
                      file, fileItems, deviceModes, powerCtrl, powerCtrlType, subcard, restoreFactory,
                      restoreFactoryType, upgrade, hdr, hdrMode, deviceSelfTest, layerAlphaFunction,
                      layerAlphaValues, interfaceGroup)
};

} // namespace Feature
} // namespace ConfigModel
} // namespace LCD
