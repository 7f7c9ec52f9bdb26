#pragma once

// The key-check list: the device keys the host checks, as (key code, name).
// A new component holds an empty list; readConfig fills it.

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QString>

#include "lcdconfigmodel/export.h"

namespace LCD {
namespace ConfigModel {

class LCD_CONFIGMODEL_EXPORT IKeyCheckConfig {
public:
    virtual ~IKeyCheckConfig() = default;
    // Appends the entries of the file at `path` (it does not clear the list).
    // false: `error` holds the reason and the list is as it was.
    virtual bool readConfig(const QString& path, QString& error) = 0;
    // A copy of the list, in file order; it outlives the component. Empty
    // before a successful readConfig.
    virtual QList<QPair<int, QString>> getKeyCheckList() = 0;
};

} // namespace ConfigModel
} // namespace LCD
