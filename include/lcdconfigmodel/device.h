#pragma once

// The device registry: one record per device model and the current device.
//
// The registry serves one model, the current device (model 29974). Every query
// of the current device first asks findDeviceModelId(), which writes its own
// warnings, and then takes the first record with that id in load order; when
// there is none it also warns "could not find device(%1)'s cfg." with the id
// and gives its empty result. Pointers and references handed out (screens,
// DeviceConfigs()) point into the loaded records: they stay valid until the
// next readConfig() or the component's destruction. Before any readConfig()
// every query answers as for a device that is not loaded.

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <vector>

#include "lcdconfigmodel/crosscard.h"
#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/feature.h"
#include "lcdconfigmodel/layer.h"
#include "lcdconfigmodel/screen.h"
#include "lcdconfigmodel/slot.h"

namespace LCD {
namespace ConfigModel {
namespace Devicecfg {

// One device model, built from the files of its sub-directory.
struct s_Device {
    qint32 modelId = 0; // the sub-directory's name up to its first "."
    Feature::s_DeviceFeature feature;
    Slot::s_VrnSolt slot;
    QVector<Layercfg::s_VrnLayer> layers;                 // one per layer file, in reading order
    QVector<Screen::s_VrnScreen> screens;                 // one per screen file, in reading order
    std::vector<CrossCard::s_CrossSubcard> crossSubcards; // the cross-card file

    LCD_RECORD_FIELDS(s_Device, modelId, feature, slot, layers, screens, crossSubcards)
};

} // namespace Devicecfg

class LCD_CONFIGMODEL_EXPORT DeviceConfigInterface {
public:
    virtual ~DeviceConfigInterface() = default;

    // Appends one record per model sub-directory of the directory `path` (a
    // missing directory is created). Sub-directories are named by their
    // decimal model id; their "*.xml" files go to the feature, slot, screen,
    // layer or cross-card parser by the words in their names. false only for
    // an empty path or a directory that cannot be made: `error` says why.
    // true may leave the last file that could not be opened or parsed in
    // `error`; a file a parser rejects is reported as the warning "Error:"
    // with the reason and leaves that part of its model as it was.
    virtual bool readConfig(const QString& path, QString& error) = 0;
    // Appends to `slots` (not cleared) a copy of every slot numbered
    // `slotIndex` of every model `deviceModelId`, once per card of model
    // `subcardModelId` placed in it. false only when nothing is loaded.
    virtual bool findSlotConnectors(int deviceModelId, int slotIndex, int subcardModelId,
                                    std::vector<Slot::s_Slot>& slots) = 0;
    // Every model as loaded, in load order.
    virtual const QList<Devicecfg::s_Device>& DeviceConfigs() const = 0;
    // A copy of the current device's record; a default record when it is not
    // loaded.
    virtual Devicecfg::s_Device curDeviceConfigs() const = 0;
    // The first card placed in the first slot numbered `slotIndex` that holds
    // one (groups walked main control, mixed, input, output, MVR, AUX, EXP);
    // 0 when there is none or the current device is not loaded.
    virtual int findSubcardModelId(int slotIndex) const = 0;
    // The current device's type name: English when the application property
    // "lcd_locale" is exactly "en", otherwise Chinese (also without an
    // application object). Empty when the current device is not loaded.
    virtual QString findDeviceTypeName() const = 0;
    // 29974, the current device. 0 with the warning "could not find device's
    // cfg." when nothing is loaded; still 29974, after the warning "could not
    // find device(29974)'s cfg.", when that model is not among the loaded ones.
    virtual quint16 findDeviceModelId() const = 0;
    // The current device's first screen of type `screenType`; null after the
    // warning "could not find screen type(%1)'s cfg." when there is none, and
    // null when the current device is not loaded.
    virtual const Screen::s_Screen* screenConfigs(int screenType) const = 0;
    // The current device's interface-group support (feature file); 0 when the
    // current device is not loaded.
    virtual int deviceSupportInterfaceGroup() const = 0;
    // The current device's cross-card support (slot file); 0 when the current
    // device is not loaded.
    virtual int deviceSupportCrossCard() const = 0;
    // The current device's check-blank value (feature file); 0 when the
    // current device is not loaded.
    virtual int deviceCheckBlankValue() const = 0;
};

} // namespace ConfigModel
} // namespace LCD
