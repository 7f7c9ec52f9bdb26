#pragma once

#include <QtCore/QObject>
#include <QtXml/QDomDocument>

#include "common/singleton.h"
#include "lcdconfigmodel.h"

namespace LCD {
namespace ConfigModel {

// Reads a device's screen files. One process-wide instance; it keeps no state
// between calls, every call works only on its arguments.
class LCD_CONFIGMODEL_EXPORT ScreenConfigManager : public QObject {
    Q_OBJECT
    LCD_DECLARE_SINGLETON(ScreenConfigManager, Screen)

public:
    // Reads the screen file at `path` into `screen`, in place: fields whose
    // elements are missing keep what `screen` held. Returns false for an
    // unusable file (empty path, open or parse failure, root other than "Vrn",
    // "version" other than "1.0") and for a missing "Device", "Screens" or
    // "Screen"; `error` then holds the reason. Returns true otherwise, and
    // `error` may still hold the last non-fatal problem (a missing
    // "DeviceModes" or "Features", a device mode dropped for a missing "PVW"
    // or "Templetes", a missing "ImageQuality", "FTB", "TestPattern",
    // "SwitchEffect", "Tbar", "HDR" or "Genlock"): callers check both.
    // `error` is overwritten, never appended to, and never cleared.
    bool parseDeviceScreencfg(const QString& path, QString& error, Screen::s_VrnScreen& screen);
    // The same for a document that is already parsed: root check and walk.
    bool parseDeviceScreencfg(const QDomDocument& doc, QString& error, Screen::s_VrnScreen& screen);

private:
    ScreenConfigManager() = default;
    template <class T> friend T* singletonInstance(std::atomic<T*>&, QMutex&);
};

} // namespace ConfigModel
} // namespace LCD
