#pragma once

// The operator menu tree and its function items.

#include <QtCore/QString>

#include "lcdconfigmodel/export.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT MenuConfigInterface {
public:
    virtual ~MenuConfigInterface() = default;
    virtual bool readMenuItems(const QString& path, QString& error) = 0;
};

} // namespace ConfigModel
} // namespace LCD
