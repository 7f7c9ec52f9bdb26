#pragma once

#include "lcdconfigmodel.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT HDRConfig : public IHDRConfig {
public:
    HDRConfig();
    ~HDRConfig() override;
    void initInputConfig() override;
    void initOutputConfig() override;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::HDRConfig)
