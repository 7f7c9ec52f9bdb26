#pragma once

// Print key numbers: the number printed on each key of a card, per device
// model and card model.

#include <QtCore/QString>
#include <QtCore/qglobal.h>

#include <list>
#include <string>
#include <vector>

#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {

// One key of a card.
struct PrintKeyNoInfo {
    qint32 id = 0;
    std::string printKeyNo; // UTF-8
    qint32 reserved = 0;    // not read from the file

    LCD_RECORD_FIELDS(PrintKeyNoInfo, id, printKeyNo, reserved)
};

// One card model; modelId -1 means "not found".
struct SubcardPrintKeyNoInfo {
    qint32 modelId = -1;
    std::list<PrintKeyNoInfo> printKeyNos;

    LCD_RECORD_FIELDS(SubcardPrintKeyNoInfo, modelId, printKeyNos)
};

// One device model.
struct DevicePrintKeyNoInfo {
    qint32 modelId = 0;
    std::list<SubcardPrintKeyNoInfo> subcards;
};

class LCD_CONFIGMODEL_EXPORT IPrintKeyNoConfig {
public:
    virtual ~IPrintKeyNoConfig() = default;
    // Appends one record per device element (it does not clear the table).
    // false: `error` holds the reason and the table is as it was.
    virtual bool readConfig(const QString& path, QString& error) = 0;
    // The keys of card `subcardModelId` in device `deviceModelId` (first
    // matches win), as a copy that outlives the component; modelId -1 and no
    // keys when either is missing, as before any readConfig. Logs nothing.
    virtual SubcardPrintKeyNoInfo getPrintKeyNoCfg(int deviceModelId, int subcardModelId) = 0;
};

} // namespace ConfigModel
} // namespace LCD
