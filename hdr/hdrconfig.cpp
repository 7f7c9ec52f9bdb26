#include "hdr/hdrconfig.h"

KVC_REGISTER_COMPONENT(LCD::ConfigModel::HDRConfig, "tavio.lcd.configmodel.hdrconfig")

namespace LCD {
namespace ConfigModel {


HDRConfig::HDRConfig() = default;
HDRConfig::~HDRConfig() = default;

void HDRConfig::initInputConfig() {}
void HDRConfig::initOutputConfig() {}

} // namespace ConfigModel
} // namespace LCD
