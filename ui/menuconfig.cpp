#include "ui/menuconfig.h"

KVC_REGISTER_COMPONENT(LCD::ConfigModel::MenuConfigManager, "tavio.lcd.configmodel.menuconfigmanager")

namespace LCD {
namespace ConfigModel {

MenuConfigManager::MenuConfigManager() = default;
MenuConfigManager::~MenuConfigManager() = default;

bool MenuConfigManager::readMenuItems(const QString&, QString&) {
    return true;
}

} // namespace ConfigModel
} // namespace LCD
