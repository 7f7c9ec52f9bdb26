// lcdcfg: loads the configuration-model plug-in the way the host does and
// reports on a configuration directory.

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTextStream>

#include "host/kvchost.h"
#include "lcdconfigmodel.h"

using namespace LCD::ConfigModel;

namespace {

QTextStream& out() {
    static QTextStream stream(stdout);
    return stream;
}

QTextStream& err() {
    static QTextStream stream(stderr);
    return stream;
}

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

int runPlugin(const kvchost::PluginHost& host) {
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

// One line per component: what was loaded from where, or why not.
struct Report {
    int failures = 0;
    void line(bool ok, const QString& what, const QString& detail) {
        out() << (ok ? "ok    " : "FAIL  ") << qSetFieldWidth(14) << Qt::left << what << qSetFieldWidth(0)
              << detail << "\n";
        if (!ok) ++failures;
    }
};

int runCheck(const kvchost::PluginHost& host, const QString& configDir) {
    const QDir config(configDir);
    if (!config.exists()) {
        err() << "lcdcfg: no configuration directory " << configDir << "\n";
        return 2;
    }
    Report report;
    QString error;

    auto keys = host.create<IKeyCheckConfig>(QStringLiteral("tavio.lcd.configmodel.keycheck"), &error);
    const QString checklist = config.filePath(QStringLiteral("ui/checklist.xml"));
    if (keys && keys->readConfig(checklist, error)) {
        const auto list = keys->getKeyCheckList();
        report.line(true, QStringLiteral("key-check"),
                    QStringLiteral("%1 keys from %2").arg(list.size()).arg(checklist));
        for (const auto& key : list)
            out() << "        " << key.first << "  " << key.second << "\n";
    } else {
        report.line(false, QStringLiteral("key-check"), error);
    }

    auto printKeys =
        host.create<IPrintKeyNoConfig>(QStringLiteral("tavio.lcd.configmodel.printkeyno"), &error);
    const QString printKeyFile = config.filePath(QStringLiteral("ui/printkeynoconfig.xml"));
    if (printKeys && printKeys->readConfig(printKeyFile, error)) {
        report.line(true, QStringLiteral("print-keys"), QStringLiteral("loaded %1").arg(printKeyFile));
    } else {
        report.line(false, QStringLiteral("print-keys"), error);
    }

    out() << (report.failures ? "configuration has errors\n" : "configuration loads cleanly\n");
    return report.failures ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lcdcfg"));
    QCoreApplication::setApplicationVersion(QStringLiteral("0.1.0"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Loads the LCD configuration-model plug-in like the host does and checks description files.\n\n"
        "Commands:\n"
        "  plugin   print the plug-in record and its components\n"
        "  check    load every component from a configuration directory"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("plugin | check"));
    const QCommandLineOption pluginOption(QStringLiteral("plugin"),
                                          QStringLiteral("Plug-in library to load."), QStringLiteral("path"),
                                          kvchost::PluginHost::defaultPluginPath());
    const QCommandLineOption configOption(QStringLiteral("config"),
                                          QStringLiteral("Configuration directory (share/config)."),
                                          QStringLiteral("dir"), QStringLiteral("share/config"));
    parser.addOption(pluginOption);
    parser.addOption(configOption);
    parser.process(app);

    const QStringList args = parser.positionalArguments();
    if (args.size() != 1) {
        err() << parser.helpText();
        return 2;
    }
    kvchost::PluginHost host(parser.value(pluginOption));
    QString error;
    if (!host.load(&error)) {
        err() << "lcdcfg: " << error << "\n";
        return 2;
    }
    const QString command = args.first();
    if (command == QLatin1String("plugin")) return runPlugin(host);
    if (command == QLatin1String("check")) return runCheck(host, parser.value(configOption));
    err() << "lcdcfg: unknown command " << command << "\n";
    return 2;
}
