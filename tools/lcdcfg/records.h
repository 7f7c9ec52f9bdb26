#pragma once

// Loaded records as JSON, for `dump --json`, `diff` and any verb that hands
// records to other tools. Every value is taken through the components' public
// interfaces: whole records where an interface hands them out (device models,
// cards, function items), the answers of the type-keyed queries where it does
// not (connector types, HDR options, print keys).
//
// A record becomes an object whose keys are its field names (the names its
// LCD_RECORD_FIELDS list gives); a record derived from another carries the
// base's fields too. Lists become arrays in their order, texts strings (UTF-8),
// numbers numbers (float fields at their float precision: 0.01, not
// 0.009999999776).

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QVector>

#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

// Whole records, as the interfaces give them.
QJsonValue toJson(const LCD::ConfigModel::Devicecfg::s_Device& device);
QJsonValue toJson(const LCD::ConfigModel::Subcard::s_Subcard& card);
QJsonValue toJson(const LCD::ConfigModel::Feature::s_DeviceFeature& feature);
QJsonValue toJson(const LCD::ConfigModel::Screen::s_VrnScreen& screen);
QJsonValue toJson(const LCD::ConfigModel::Layercfg::s_Layer& layer);
QJsonValue toJson(const LCD::ConfigModel::s_MenuFCItem& item);
QJsonValue toJson(const LCD::ConfigModel::Connector::s_resolutionResolutionRatio& resolution);

// The connector type numbers the connector catalogue answers for (0-63).
QVector<int> connectorTypes(const LCD::ConfigModel::ConnectorConfigInterface& connectors);

// The HDR settings by number, as the dump names them: "bitDepth" (0),
// "dynamicRange" (1), "colorGamut" (2).
const char* hdrSettingName(int type);

// One part as the interfaces show it (see docs/lcdcfg.md for the shape);
// Null when the part was not loaded. Print keys need the device models and
// the cards loaded too: they are asked per device model and card model.
QJsonValue dumpPart(const Tree& tree, Part part);
// Every loaded part, keyed by partName(), plus "format".
QJsonObject dumpTree(const Tree& tree);

} // namespace lcdcfg
