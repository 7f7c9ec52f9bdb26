#pragma once

// Records of the device feature file: who the device model is and, section by
// section, which optional functions it offers and how the operator may set
// them. Plain values with their defaults in the member initialisers; a record
// no file has touched holds support -1 and editable -1 everywhere ("not stated").

#include <QtCore/qglobal.h>

#include <string>
#include <tuple>
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

    bool operator==(const s_Genlock& o) const {
        return std::tie(genlock, type, phase, phaseEnable, phaseOffset) ==
               std::tie(o.genlock, o.type, o.phase, o.phaseEnable, o.phaseOffset);
    }
    bool operator!=(const s_Genlock& o) const { return !(*this == o); }
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

    bool operator==(const s_TestPattern& o) const {
        return std::tie(pattern, enable, type, bright, gridSpace, gridLineWidth, speed) ==
               std::tie(o.pattern, o.enable, o.type, o.bright, o.gridSpace, o.gridLineWidth, o.speed);
    }
    bool operator!=(const s_TestPattern& o) const { return !(*this == o); }
};

// "InterfaceMapping".
struct s_InterfaceMapping {
    s_SupportInfo mapping;
    s_OptionList type;
    s_TestPattern testPattern;

    bool operator==(const s_InterfaceMapping& o) const {
        return std::tie(mapping, type, testPattern) == std::tie(o.mapping, o.type, o.testPattern);
    }
    bool operator!=(const s_InterfaceMapping& o) const { return !(*this == o); }
};

// One child of "DynamicRangConversion"/"LayerModes".
struct s_LayerModesSupportInfo {
    qint32 hdrSupport = 0;
    qint32 value = 0;

    bool operator==(const s_LayerModesSupportInfo& o) const {
        return hdrSupport == o.hdrSupport && value == o.value;
    }
    bool operator!=(const s_LayerModesSupportInfo& o) const { return !(*this == o); }
};

// One child of "ThirdPlugins": support and editable repeat the section's own.
struct s_ThirdPlugin {
    qint32 support = -1;
    qint32 editable = -1;
    qint32 type = 0;

    bool operator==(const s_ThirdPlugin& o) const {
        return support == o.support && editable == o.editable && type == o.type;
    }
    bool operator!=(const s_ThirdPlugin& o) const { return !(*this == o); }
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

private:
    auto tie() const {
        return std::tie(screen, screenId, screenType, genlock, hdcp, dynamicRangConversion, drcEnable,
                        drcType, layerModes, layerModesList, dynamicRang, interfaceMapping, cutoutPos,
                        cutoutEnable, cutoutType, group, groupName, swap, language, switchEffect, switchTime,
                        switchDirection, thirdPlugins, thirdPluginList, antiStatic, antiStaticEnable,
                        antiStaticValue, antiStaticMin, antiStaticMax, checkBlank);
    }

public:
    bool operator==(const s_Features& o) const { return tie() == o.tie(); }
    bool operator!=(const s_Features& o) const { return !(*this == o); }
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

    bool operator==(const s_Network& o) const {
        return std::tie(support, editable, index, dhcp, ip, subNetMask, gateway) ==
               std::tie(o.support, o.editable, o.index, o.dhcp, o.ip, o.subNetMask, o.gateway);
    }
    bool operator!=(const s_Network& o) const { return !(*this == o); }
};

// "ProjectFile"/"Contain": what a project file carries.
struct s_Contain {
    s_SupportInfo contain;
    s_OptionList other;
    s_OptionList bkg;
    s_OptionList logo;
    s_OptionList preset;

    bool operator==(const s_Contain& o) const {
        return std::tie(contain, other, bkg, logo, preset) ==
               std::tie(o.contain, o.other, o.bkg, o.logo, o.preset);
    }
    bool operator!=(const s_Contain& o) const { return !(*this == o); }
};

// "ProjectFile".
struct s_ProjectFile {
    s_SupportInfo projectFile;
    s_RangeValue fileId;
    s_OptionList fileType;
    s_SupportInfo fileGeneral;
    s_RangeValue fileGeneralName;
    s_Contain contain;

    bool operator==(const s_ProjectFile& o) const {
        return std::tie(projectFile, fileId, fileType, fileGeneral, fileGeneralName, contain) ==
               std::tie(o.projectFile, o.fileId, o.fileType, o.fileGeneral, o.fileGeneralName, o.contain);
    }
    bool operator!=(const s_ProjectFile& o) const { return !(*this == o); }
};

// "Subcard"/"Connector".
struct s_Connector {
    s_SupportInfo connector;
    s_OptionList type;
    s_OptionList workMode;
    s_OptionList capacityMode;

    bool operator==(const s_Connector& o) const {
        return std::tie(connector, type, workMode, capacityMode) ==
               std::tie(o.connector, o.type, o.workMode, o.capacityMode);
    }
    bool operator!=(const s_Connector& o) const { return !(*this == o); }
};

// "Subcard": card handling.
struct s_Subcard {
    s_SupportInfo subcard;
    s_OptionList cardType;
    s_Connector connector;

    bool operator==(const s_Subcard& o) const {
        return std::tie(subcard, cardType, connector) == std::tie(o.subcard, o.cardType, o.connector);
    }
    bool operator!=(const s_Subcard& o) const { return !(*this == o); }
};

// "Upgrade".
struct s_Upgrade {
    s_SupportInfo upgrade;
    s_OptionList type;
    s_OptionList reboot;
    s_OptionList deleteFile;
    s_SupportInfo cards;
    s_OptionList cardsType;

    bool operator==(const s_Upgrade& o) const {
        return std::tie(upgrade, type, reboot, deleteFile, cards, cardsType) ==
               std::tie(o.upgrade, o.type, o.reboot, o.deleteFile, o.cards, o.cardsType);
    }
    bool operator!=(const s_Upgrade& o) const { return !(*this == o); }
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

private:
    auto tie() const {
        return std::tie(moduleId, connectorPluginMode, seriesShortName, name, icon, enName, zhName, features,
                        general, generalName, generalStatus, networks, network, projectFile, file, fileItems,
                        deviceModes, powerCtrl, powerCtrlType, subcard, restoreFactory, restoreFactoryType,
                        upgrade, hdr, hdrMode, deviceSelfTest, layerAlphaFunction, layerAlphaValues,
                        interfaceGroup);
    }

public:
    bool operator==(const s_DeviceFeature& o) const { return tie() == o.tie(); }
    bool operator!=(const s_DeviceFeature& o) const { return !(*this == o); }
};

} // namespace Feature
} // namespace ConfigModel
} // namespace LCD
