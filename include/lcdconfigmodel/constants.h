#pragma once

// Constant texts and lookup tables shared with the host's operator interface.
// Built when the library is loaded, destroyed when it is unloaded.

#include <QtCore/QMap>
#include <QtCore/QString>

#include <string>

#include "lcdconfigmodel/enums.h"
#include "lcdconfigmodel/export.h"

namespace LCD {
namespace Constants {

// Key-event group names.
LCD_CONFIGMODEL_EXPORT extern const QString GroupKeyPress;   // "PRESS"
LCD_CONFIGMODEL_EXPORT extern const QString GroupKeyRelease; // "RELEASE"
LCD_CONFIGMODEL_EXPORT extern const QString GroupKeyTimeout; // "TIMEOUT"

// Icon of each test pattern, relative to the installation's base directory.
LCD_CONFIGMODEL_EXPORT extern const QMap<Enum::TestPatternType, QString> g_mapIconPath;
// Display name of each connector type (no entry for 0, 1, 12, 15 and 16).
LCD_CONFIGMODEL_EXPORT extern const QMap<Enum::Interface::ConnectorType, QString> g_mapConnectorTypeName;
// Display order of the colour spaces: 0 and 3 trade places, 255 is "AUTO".
LCD_CONFIGMODEL_EXPORT extern const QMap<int, Enum::Interface::InterfaceColorSpace> g_mapOrderColorSpace;
// Identity tables of the timing tag names.
LCD_CONFIGMODEL_EXPORT extern const QMap<Enum::Interface::ThumbTagName, int> g_mapThumbTagName;
LCD_CONFIGMODEL_EXPORT extern const QMap<Enum::Interface::DetailTagName, int> g_mapDetailTimingTagName;

// Names of the view models that show colour and dynamic-range settings.
LCD_CONFIGMODEL_EXPORT extern const std::string ScreenColorSpaceViewModel;
LCD_CONFIGMODEL_EXPORT extern const std::string ScreenColorDepthViewModel;
LCD_CONFIGMODEL_EXPORT extern const std::string OutputColorSpaceViewModel;
LCD_CONFIGMODEL_EXPORT extern const std::string OutputColorDepthViewModel;
LCD_CONFIGMODEL_EXPORT extern const std::string InputColorSpaceViewModel;
LCD_CONFIGMODEL_EXPORT extern const std::string InputColorDepthViewModel;
LCD_CONFIGMODEL_EXPORT extern const std::string OutputDynamicViewModel;
LCD_CONFIGMODEL_EXPORT extern const std::string ScreenDynamichViewModel;

} // namespace Constants
} // namespace LCD
