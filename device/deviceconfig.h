#pragma once

#include "lcdconfigmodel.h"

namespace LCD {
namespace ConfigModel {

// The device registry component: the models of a device directory and the
// questions about the current device (see DeviceConfigInterface). Loading
// appends; queries are linear searches in load order and never change the
// list. A query of the current device that finds it not loaded warns "could
// not find device(%1)'s cfg." with the model id, besides the warnings of
// findDeviceModelId().
class LCD_CONFIGMODEL_EXPORT DeviceTessanConfigManager : public DeviceConfigInterface {
public:
    DeviceTessanConfigManager();
    ~DeviceTessanConfigManager() override;

    bool readConfig(const QString& path, QString& error) override;
    bool findSlotConnectors(int deviceModelId, int slotIndex, int subcardModelId,
                            std::vector<Slot::s_Slot>& slots) override;
    const QList<Devicecfg::s_Device>& DeviceConfigs() const override;
    Devicecfg::s_Device curDeviceConfigs() const override;
    int findSubcardModelId(int slotIndex) const override;
    QString findDeviceTypeName() const override;
    quint16 findDeviceModelId() const override;
    const Screen::s_Screen* screenConfigs(int screenType) const override;
    int deviceSupportInterfaceGroup() const override;
    int deviceSupportCrossCard() const override;
    int deviceCheckBlankValue() const override;

    // The current device's first layer of type `layerType`; null after the
    // warning "could not find layer type(%1)'s cfg." when there is none, and
    // null when the current device is not loaded.
    const Layercfg::s_Layer* layerConfigs(int layerType) const;
    // The current device's first cross-card record of card model `moduleId`;
    // null after the warning "could not find cross card moduleID(%1)'s cfg."
    // when there is none, and null when the current device is not loaded.
    const CrossCard::s_CrossSubcard* crosscardInterfaceGroup(int moduleId) const;

    // The per-device parsers, by path: each reads one file into the record
    // given, exactly as the parser's own operation of the same name does.
    bool parseDeviceFeaturecfg(const QString& path, QString& error, Feature::s_DeviceFeature& feature);
    bool parseDeviceSlotcfg(const QString& path, QString& error, Slot::s_VrnSolt& slot);
    bool parseDeviceScreencfg(const QString& path, QString& error, Screen::s_VrnScreen& screen);
    bool parseDeviceLayercfg(const QString& path, QString& error, Layercfg::s_VrnLayer& layer);
    bool parseDeviceCrossCardcfg(const QString& path, QString& error, CrossCard::s_CrossSubcards& subcards);

private:
    // The first record of model `modelId`, or null. Reports nothing.
    const Devicecfg::s_Device* findDevice(int modelId) const;
    // The current device's record, or null after the warning "could not find
    // device(%1)'s cfg." (besides those of findDeviceModelId()).
    const Devicecfg::s_Device* currentDevice() const;

    QList<Devicecfg::s_Device> m_devices;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::DeviceTessanConfigManager)
