#pragma once

// The connector catalogue with its resolution file.

#include <QtCore/QString>

#include "lcdconfigmodel/export.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT ConnectorConfigInterface {
public:
    virtual ~ConnectorConfigInterface() = default;
    virtual bool readConfig(const QString& path, QString& error) = 0;
};

} // namespace ConfigModel
} // namespace LCD
