#pragma once

// The card (subcard) catalogue.

#include <QtCore/QString>

#include "lcdconfigmodel/export.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT SubcardConfigInterface {
public:
    virtual ~SubcardConfigInterface() = default;
    virtual bool readConfig(const QString& path, QString& error) = 0;
};

} // namespace ConfigModel
} // namespace LCD
