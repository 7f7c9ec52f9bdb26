#include "plugin/plugin.h"

#include "catalogue/connectorconfig.h"
#include "catalogue/subcardconfig.h"
#include "device/deviceconfig.h"
#include "hdr/hdrconfig.h"
#include "ui/keycheckconfig.h"
#include "ui/menuconfig.h"
#include "ui/printkeynoconfig.h"

using namespace LCD::ConfigModel;

const kvc::ComponentInfo* const lcdconfigmodelplugin_kvc_componentInfoTable[8] = {
    &kvc::ComponentTmpl<DeviceTessanConfigManager>::componentInfo,
    &kvc::ComponentTmpl<SubcardConfigManager>::componentInfo,
    &kvc::ComponentTmpl<ConnectorConfigManager>::componentInfo,
    &kvc::ComponentTmpl<MenuConfigManager>::componentInfo,
    &kvc::ComponentTmpl<HDRConfig>::componentInfo,
    &kvc::ComponentTmpl<KeyCheckConfig>::componentInfo,
    &kvc::ComponentTmpl<PrintKeyNoConfig>::componentInfo,
    nullptr,
};

kvc::api& kvc::api::get() {
    static api instance;
    return instance;
}

extern "C" void pluginit(void* host) {
    kvc::api::get().host = host;
}

extern "C" void* pluginfo() {
    static const kvc::PluginInfo pinfo{"0.1", lcdconfigmodelplugin_kvc_componentInfoTable, "configmodel",
                                       "0.1.0", "{\"desc\":\"configmodel plugin!\",\"end\":0 }"};
    return const_cast<kvc::PluginInfo*>(&pinfo);
}
