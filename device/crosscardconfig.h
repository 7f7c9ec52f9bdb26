#pragma once

#include "lcdconfigmodel.h"

#include "common/singleton.h"

#include <QtXml/QDomDocument>
#include <QtXml/QDomElement>

namespace LCD {
namespace ConfigModel {

// Reads a device model's cross-card file (root "Vrn"): per card model, its
// interface grouping and the connector groups of each device mode. A plain
// class without data; its texts are translated in the "QObject" context.
class LCD_CONFIGMODEL_EXPORT CrosscardConfigManager {
    LCD_DECLARE_SINGLETON(CrosscardConfigManager, CrossCard)

public:
    // Reads the file at `path` and appends one record per "Subcard" to
    // `subcards` (which is not cleared). false: `error` holds the reason (path,
    // open, parse, root, version, or "Invalid [%1] node." for a missing
    // "Device" or "Subcards") and nothing was appended. true leaves `error` as it was.
    bool parseDeviceCrosscardcfg(const QString& path, QString& error, CrossCard::s_CrossSubcards& subcards);
    // The same for a document already parsed: root and version check, then the walk.
    bool parseDeviceCrosscardcfg(const QDomDocument& doc, QString& error,
                                 CrossCard::s_CrossSubcards& subcards);

    // One "Subcard" element into `subcard`; never fails, reports nothing.
    void subcardInfo(const QDomElement& element, CrossCard::s_CrossSubcard& subcard);

private:
    CrosscardConfigManager();
    ~CrosscardConfigManager();

    template <class T> friend T* singletonInstance(std::atomic<T*>&, QMutex&);
    template <class T> friend void singletonDestroy(std::atomic<T*>&, QMutex&);
};

} // namespace ConfigModel
} // namespace LCD
