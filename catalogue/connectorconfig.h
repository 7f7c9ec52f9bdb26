#pragma once

#include "lcdconfigmodel.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT ConnectorConfigManager : public ConnectorConfigInterface {
public:
    ConnectorConfigManager();
    ~ConnectorConfigManager() override;
    bool readConfig(const QString& path, QString& error) override;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::ConnectorConfigManager)
