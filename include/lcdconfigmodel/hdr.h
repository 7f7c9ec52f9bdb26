#pragma once

// HDR option tables: which values may be chosen and what "AUTO" resolves to.

#include <QtCore/QString>

#include "lcdconfigmodel/export.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT IHDRConfig {
public:
    virtual ~IHDRConfig() = default;
    virtual void initInputConfig() = 0;
    virtual void initOutputConfig() = 0;
};

} // namespace ConfigModel
} // namespace LCD
