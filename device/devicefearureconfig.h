#pragma once

#include "common/singleton.h"
#include "lcdconfigmodel.h"

#include <QtCore/QObject>
#include <QtXml/QDomDocument>

namespace LCD {
namespace ConfigModel {

// Reads a device feature file ("Vrn"/"Device") into a Feature::s_DeviceFeature.
// A process-wide singleton; it keeps nothing between calls.
//
// Result: false only when the file cannot be read as a feature file at all:
// the frame fails (path, open, parse, root, version) or "Device", "Features" or
// "HDR" is missing. `error` then holds the reason, and the record may already
// hold the identity read before ("Device" attributes, "TypeName").
// Every other missing section or required element leaves that section as the
// record held it, writes "Invalid [%1] node." into `error` and the parse goes
// on; the call returns true with the message of the last such element.
// `error` is left alone when nothing is missing.
class LCD_CONFIGMODEL_EXPORT DeviceFeatureConfigManager : public QObject {
    Q_OBJECT
    LCD_DECLARE_SINGLETON(DeviceFeatureConfigManager, DeviceFeature)

public:
    // Loads the file at `path`, then reads it as below.
    bool parseDeviceFeaturecfg(const QString& path, QString& error, Feature::s_DeviceFeature& feature);
    // Checks the root and version of an already parsed document and reads it.
    bool parseDeviceFeaturecfg(const QDomDocument& doc, QString& error, Feature::s_DeviceFeature& feature);

private:
    DeviceFeatureConfigManager();
    ~DeviceFeatureConfigManager() override;

    friend DeviceFeatureConfigManager* singletonInstance<>(std::atomic<DeviceFeatureConfigManager*>&,
                                                           QMutex&);
    friend void singletonDestroy<>(std::atomic<DeviceFeatureConfigManager*>&, QMutex&);
};

} // namespace ConfigModel
} // namespace LCD
