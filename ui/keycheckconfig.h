#pragma once

#include "lcdconfigmodel.h"

#include <QtXml/QDomElement>

namespace LCD {
namespace ConfigModel {

// Reads "checklist.xml": every child of "LcdKeys", whatever its name, is one
// key (code from "Value", name from "Name").
class LCD_CONFIGMODEL_EXPORT KeyCheckConfig : public IKeyCheckConfig {
public:
    KeyCheckConfig();
    ~KeyCheckConfig() override;

    bool readConfig(const QString& path, QString& error) override;
    QList<QPair<int, QString>> getKeyCheckList() override;

private:
    QList<QPair<int, QString>> m_keyCheckList;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::KeyCheckConfig)
