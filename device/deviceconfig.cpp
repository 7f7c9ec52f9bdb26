#include "device/deviceconfig.h"

KVC_REGISTER_COMPONENT(LCD::ConfigModel::DeviceTessanConfigManager, "tavio.lcd.configmodel.device")

namespace LCD {
namespace ConfigModel {


DeviceTessanConfigManager::DeviceTessanConfigManager() = default;
DeviceTessanConfigManager::~DeviceTessanConfigManager() = default;

bool DeviceTessanConfigManager::readConfig(const QString&, QString&)
{
    return true;
}

} // namespace ConfigModel
} // namespace LCD
