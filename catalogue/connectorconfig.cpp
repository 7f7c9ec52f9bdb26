#include "catalogue/connectorconfig.h"

KVC_REGISTER_COMPONENT(LCD::ConfigModel::ConnectorConfigManager, "tavio.lcd.configmodel.connector")

namespace LCD {
namespace ConfigModel {


ConnectorConfigManager::ConnectorConfigManager() = default;
ConnectorConfigManager::~ConnectorConfigManager() = default;

bool ConnectorConfigManager::readConfig(const QString&, QString&)
{
    return true;
}

} // namespace ConfigModel
} // namespace LCD
