// lcdcfg plugin: the plug-in record and its seven components, as the host sees them.

#include <QtCore/QHash>

#include "tools/lcdcfg/cli.h"

namespace lcdcfg {

namespace {

// The interface each component is used through, in table order.
const char* interfaceOf(const QString& id) {
    static const QHash<QString, const char*> interfaces = {
        {QStringLiteral("tavio.lcd.configmodel.device"), "DeviceConfigInterface"},
        {QStringLiteral("tavio.lcd.configmodel.subcard"), "SubcardConfigInterface"},
        {QStringLiteral("tavio.lcd.configmodel.connector"), "ConnectorConfigInterface"},
        {QStringLiteral("tavio.lcd.configmodel.menuconfigmanager"), "MenuConfigInterface"},
        {QStringLiteral("tavio.lcd.configmodel.hdrconfig"), "IHDRConfig"},
        {QStringLiteral("tavio.lcd.configmodel.keycheck"), "IKeyCheckConfig"},
        {QStringLiteral("tavio.lcd.configmodel.printkeyno"), "IPrintKeyNoConfig"},
    };
    return interfaces.value(id, "?");
}

const char* classOf(const QString& id) {
    static const QHash<QString, const char*> classes = {
        {QStringLiteral("tavio.lcd.configmodel.device"), "DeviceTessanConfigManager"},
        {QStringLiteral("tavio.lcd.configmodel.subcard"), "SubcardConfigManager"},
        {QStringLiteral("tavio.lcd.configmodel.connector"), "ConnectorConfigManager"},
        {QStringLiteral("tavio.lcd.configmodel.menuconfigmanager"), "MenuConfigManager"},
        {QStringLiteral("tavio.lcd.configmodel.hdrconfig"), "HDRConfig"},
        {QStringLiteral("tavio.lcd.configmodel.keycheck"), "KeyCheckConfig"},
        {QStringLiteral("tavio.lcd.configmodel.printkeyno"), "PrintKeyNoConfig"},
    };
    return classes.value(id, "?");
}

} // namespace

int runPlugin(const QStringList& args) {
    CommandLine cl(QStringLiteral("plugin"), QStringLiteral("Prints the plug-in record and its components."),
                   QString());
    int code = kClean;
    if (!cl.parse(args, &code)) return code;
    if (!cl.positional().isEmpty()) return cl.usage(QStringLiteral("no arguments expected"));
    const kvchost::PluginHost* loaded = cl.host();
    if (!loaded) return kUsage;
    const kvchost::PluginHost& host = *loaded;
    const kvc::PluginInfo* info = host.info();
    out() << "plug-in     " << host.libraryPath() << "\n"
          << "infoVersion " << info->infoVersion << "\n"
          << "name        " << info->name << "\n"
          << "version     " << info->version << "\n"
          << "description " << info->description << "\n"
          << "components\n";
    int position = 1;
    for (const kvc::ComponentInfo* c : host.components()) {
        const QString id = QLatin1String(c->id);
        out() << "  " << position++ << "  " << qSetFieldWidth(42) << Qt::left << id << qSetFieldWidth(27)
              << classOf(id) << qSetFieldWidth(0) << interfaceOf(id) << "\n";
    }
    return 0;
}

} // namespace lcdcfg
