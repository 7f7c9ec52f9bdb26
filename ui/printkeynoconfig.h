#pragma once

#include "lcdconfigmodel.h"

#include <QtXml/QDomElement>

namespace LCD {
namespace ConfigModel {

// Reads "printkeynoconfig.xml": each child of the root is a device model,
// holding "Subcard" elements, each holding one element per key.
class LCD_CONFIGMODEL_EXPORT PrintKeyNoConfig : public IPrintKeyNoConfig {
public:
    PrintKeyNoConfig();
    ~PrintKeyNoConfig() override;

    bool readConfig(const QString& path, QString& error) override;
    SubcardPrintKeyNoInfo getPrintKeyNoCfg(int deviceModelId, int subcardModelId) override;
    // Same lookup as getPrintKeyNoCfg.
    SubcardPrintKeyNoInfo getAuxPrintkeyNoCfg(int deviceModelId, int subcardModelId);

    // Read one element each; they always succeed and never write `error`.
    bool readConfigDevice(const QDomElement& element, QString& error, DevicePrintKeyNoInfo& device);
    bool readConfigSubcard(const QDomElement& element, QString& error, SubcardPrintKeyNoInfo& subcard);

private:
    std::vector<DevicePrintKeyNoInfo> m_devicePrintKeyNos;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::PrintKeyNoConfig)
