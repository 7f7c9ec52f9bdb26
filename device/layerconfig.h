#pragma once

#include "lcdconfigmodel.h"

#include "common/singleton.h"

#include <QtCore/QObject>
#include <QtXml/QDomDocument>

namespace LCD {
namespace ConfigModel {

// Reads one layer file of a device model (root "Vrn"): the layer type with its
// cut-and-fill, shadow and inversion capabilities. Keeps nothing between calls.
class LCD_CONFIGMODEL_EXPORT LayerConfigManager : public QObject {
    Q_OBJECT
    LCD_DECLARE_SINGLETON(LayerConfigManager, Layer)

public:
    // Reads the first "Layer" of the file at `path` into `layer`, which the
    // caller has default-constructed. Parts the file leaves out keep what
    // `layer` held. false: `error` holds the reason (path, open, parse, root,
    // version, or "Invalid [%1] node." for a missing "Device", "Layers" or
    // "Layer") and `layer` is untouched. true leaves `error` as it was.
    bool parseDeviceLayercfg(const QString& path, QString& error, Layercfg::s_VrnLayer& layer);
    // The same for a document already parsed: root and version check, then the walk.
    bool parseDeviceLayercfg(const QDomDocument& doc, QString& error, Layercfg::s_VrnLayer& layer);

private:
    LayerConfigManager();
    ~LayerConfigManager() override;

    template <class T> friend T* singletonInstance(std::atomic<T*>&, QMutex&);
    template <class T> friend void singletonDestroy(std::atomic<T*>&, QMutex&);
};

} // namespace ConfigModel
} // namespace LCD
