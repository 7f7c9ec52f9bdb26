#include "ui/printkeynoconfig.h"

#include "common/facts.h"

#include "common/xmlread.h"

#include <algorithm>

KVC_REGISTER_COMPONENT(LCD::ConfigModel::PrintKeyNoConfig,
                       LCD::ConfigModel::facts::component(LCD::ConfigModel::facts::Component::PrintKeys).id)

namespace LCD {
namespace ConfigModel {

using namespace xml;

PrintKeyNoConfig::PrintKeyNoConfig() = default;
PrintKeyNoConfig::~PrintKeyNoConfig() = default;

bool PrintKeyNoConfig::readConfig(const QString& path, QString& error) {
    QDomDocument doc;
    if (!loadDocument(path, Loader{kUiFile, nullptr, LCD_LOG_SITE}, doc, error)) return false;

    forEachChild(doc.documentElement(), [&](const QDomElement& element) {
        const observe::Record r(RecordKind::PrintKeyDevice, m_devicePrintKeyNos.size(), element);
        DevicePrintKeyNoInfo device;
        readConfigDevice(element, error, device);
        m_devicePrintKeyNos.push_back(std::move(device));
    });
    return true;
}

bool PrintKeyNoConfig::readConfigDevice(const QDomElement& element, QString& error,
                                        DevicePrintKeyNoInfo& device) {
    forEachChild(element, "Subcard", [&](const QDomElement& card) {
        const observe::Record r(RecordKind::PrintKeyCard, device.subcards.size(), card);
        SubcardPrintKeyNoInfo subcard;
        readConfigSubcard(card, error, subcard);
        device.subcards.push_back(std::move(subcard));
    });
    device.modelId = intAttr(element, "ModelId");
    return true;
}

bool PrintKeyNoConfig::readConfigSubcard(const QDomElement& element, QString&,
                                         SubcardPrintKeyNoInfo& subcard) {
    subcard.modelId = intAttr(element, "ModelId");
    forEachChild(element, [&](const QDomElement& key) {
        const observe::Record r(RecordKind::PrintKey, subcard.printKeyNos.size(), key);
        subcard.printKeyNos.push_back(PrintKeyNoInfo{intAttr(key, "Id"), textAttr(key, "PrintKeyNo"), 0});
    });
    return true;
}

SubcardPrintKeyNoInfo PrintKeyNoConfig::getPrintKeyNoCfg(int deviceModelId, int subcardModelId) {
    const auto device =
        std::find_if(m_devicePrintKeyNos.cbegin(), m_devicePrintKeyNos.cend(),
                     [&](const DevicePrintKeyNoInfo& d) { return d.modelId == deviceModelId; });
    if (device == m_devicePrintKeyNos.cend()) return {};
    const auto card =
        std::find_if(device->subcards.cbegin(), device->subcards.cend(),
                     [&](const SubcardPrintKeyNoInfo& s) { return s.modelId == subcardModelId; });
    if (card == device->subcards.cend()) return {};
    return SubcardPrintKeyNoInfo{subcardModelId, card->printKeyNos};
}

SubcardPrintKeyNoInfo PrintKeyNoConfig::getAuxPrintkeyNoCfg(int deviceModelId, int subcardModelId) {
    return getPrintKeyNoCfg(deviceModelId, subcardModelId);
}

} // namespace ConfigModel
} // namespace LCD
