#include "catalogue/subcardconfig.h"

KVC_REGISTER_COMPONENT(LCD::ConfigModel::SubcardConfigManager, "tavio.lcd.configmodel.subcard")

namespace LCD {
namespace ConfigModel {


SubcardConfigManager::SubcardConfigManager() = default;
SubcardConfigManager::~SubcardConfigManager() = default;

bool SubcardConfigManager::readConfig(const QString&, QString&)
{
    return true;
}

} // namespace ConfigModel
} // namespace LCD
