#include "ui/keycheckconfig.h"

#include "common/facts.h"

#include "common/xmlread.h"

KVC_REGISTER_COMPONENT(LCD::ConfigModel::KeyCheckConfig,
                       LCD::ConfigModel::facts::component(LCD::ConfigModel::facts::Component::Keys).id)

namespace LCD {
namespace ConfigModel {

using namespace xml;

KeyCheckConfig::KeyCheckConfig() = default;
KeyCheckConfig::~KeyCheckConfig() = default;

bool KeyCheckConfig::readConfig(const QString& path, QString& error) {
    QDomDocument doc;
    if (!loadDocument(path, Loader{kUiFile, nullptr, LCD_LOG_SITE}, doc, error)) return false;

    const QDomElement keys = child(doc.documentElement(), "LcdKeys");
    if (keys.isNull()) {
        error = QStringLiteral("node not matches.");
        observe::diagnose(DiagnosticKind::ElementMissing, error, doc.documentElement(), "LcdKeys");
        return false;
    }
    forEachChild(keys, [this](const QDomElement& key) {
        const observe::Record r(RecordKind::KeyCheck, std::size_t(m_keyCheckList.size()), key);
        m_keyCheckList.append({intAttr(key, "Value", "0"), attr(key, "Name")});
    });
    return true;
}

QList<QPair<int, QString>> KeyCheckConfig::getKeyCheckList() {
    return m_keyCheckList;
}

} // namespace ConfigModel
} // namespace LCD
