#pragma once

#include "lcdconfigmodel.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT MenuConfigManager : public MenuConfigInterface {
public:
    MenuConfigManager();
    ~MenuConfigManager() override;
    bool readMenuItems(const QString& path, QString& error) override;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::MenuConfigManager)
