#pragma once

// The device registry: one record per device model and the current device.

#include <QtCore/QString>

#include "lcdconfigmodel/export.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT DeviceConfigInterface {
public:
    virtual ~DeviceConfigInterface() = default;
    virtual bool readConfig(const QString& path, QString& error) = 0;
};

} // namespace ConfigModel
} // namespace LCD
