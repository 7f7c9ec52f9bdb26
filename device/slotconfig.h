#pragma once

#include "lcdconfigmodel.h"

#include "common/singleton.h"

#include <QtCore/QObject>
#include <QtXml/QDomDocument>

namespace LCD {
namespace ConfigModel {

// Reads a device model's slot file (root "Vrn"): its slot groups with their
// labels, codes, slots and accepted card models, the cards placed in mixed-card
// slots, and the model's cross-card support. Keeps nothing between calls.
class LCD_CONFIGMODEL_EXPORT SlotConfigManager : public QObject {
    Q_OBJECT
    LCD_DECLARE_SINGLETON(SlotConfigManager, Slot)

public:
    // Reads the file at `path` into `slot`. false: `error` holds the reason
    // (path, open, parse, root, version, or "Invalid [%1] node." for a missing
    // "Device", "Slots", "CrossCard" or "MainControlCardSlots"); `slot.slots`
    // is then untouched, while `slot.crossCard` has been written once
    // "CrossCard" was found. true leaves `error` as it was.
    bool parseDeviceSlotcfg(const QString& path, QString& error, Slot::s_VrnSolt& slot);
    // The same for a document already parsed: root and version check, then the walk.
    bool parseDeviceSlotcfg(const QDomDocument& doc, QString& error, Slot::s_VrnSolt& slot);

private:
    SlotConfigManager();
    ~SlotConfigManager() override;

    template <class T> friend T* singletonInstance(std::atomic<T*>&, QMutex&);
    template <class T> friend void singletonDestroy(std::atomic<T*>&, QMutex&);
};

} // namespace ConfigModel
} // namespace LCD
