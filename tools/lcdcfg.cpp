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

// Diagnostics written while one component loads; everything else the
// library logs is dropped, so the report stays readable.
QStringList g_diagnostics;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg) g_diagnostics << text;
}

// One line per component: what was loaded from where, or why not; then the
// diagnostics the load wrote. A load with warnings does not count as clean.
struct Report {
    int failures = 0;
    int warnings = 0;

    void line(bool ok, const QString& what, const QString& detail) {
        const bool warned = ok && !g_diagnostics.isEmpty();
        out() << (!ok      ? "FAIL  "
                  : warned ? "warn  "
                           : "ok    ")
              << qSetFieldWidth(12) << Qt::left << what << qSetFieldWidth(0) << detail << "\n";
        for (const QString& d : qAsConst(g_diagnostics))
            out() << "        " << d << "\n";
        failures += ok ? 0 : 1;
        warnings += warned ? 1 : 0;
        g_diagnostics.clear();
    }
    void detail(const QString& text) { out() << "        " << text << "\n"; }
};

QString menuName(const s_MenuItem* item) {
    return item->fcItem ? item->fcItem->name.value(QStringLiteral("en"))
                        : QStringLiteral("key %1").arg(item->key);
}

int countItems(const s_MenuItem* root) {
    int count = 0;
    QList<const s_MenuItem*> queue{root};
    while (!queue.isEmpty()) {
        const s_MenuItem* item = queue.takeFirst();
        ++count;
        for (const s_MenuItem* c : item->children)
            queue << c;
    }
    return count;
}

void checkDevices(const kvchost::PluginHost& host, const QDir& config, Report& report) {
    QString error;
    auto devices = host.create<DeviceConfigInterface>(QStringLiteral("tavio.lcd.configmodel.device"), &error);
    const QString dir = config.filePath(QStringLiteral("device"));
    if (!devices || !devices->readConfig(dir, error) || !error.isEmpty())
        return report.line(false, QStringLiteral("devices"), error);
    const Devicecfg::s_Device current = devices->curDeviceConfigs();
    report.line(true, QStringLiteral("devices"),
                QStringLiteral("%1 device models from %2").arg(devices->DeviceConfigs().size()).arg(dir));
    for (const Devicecfg::s_Device& device : devices->DeviceConfigs()) {
        QStringList screens;
        QStringList layers;
        for (const Screen::s_VrnScreen& screen : device.screens)
            screens << QString::number(screen.type);
        for (const Layercfg::s_VrnLayer& layer : device.layers)
            layers << QString::number(layer.type);
        report.detail(QStringLiteral("%1  %2 / %3%4, screen types %5, layer types %6")
                          .arg(device.modelId)
                          .arg(QString::fromStdString(device.feature.enName),
                               QString::fromStdString(device.feature.zhName),
                               device.modelId == current.modelId ? QStringLiteral(" (current)") : QString(),
                               screens.join(QLatin1Char(' ')), layers.join(QLatin1Char(' '))));
    }
}

void checkCards(const kvchost::PluginHost& host, const QDir& config, Report& report) {
    QString error;
    auto cards = host.create<SubcardConfigInterface>(QStringLiteral("tavio.lcd.configmodel.subcard"), &error);
    const QString dir = config.filePath(QStringLiteral("subcard"));
    if (!cards || !cards->readConfig(dir, error)) return report.line(false, QStringLiteral("cards"), error);
    report.line(true, QStringLiteral("cards"),
                QStringLiteral("%1 card models from %2").arg(cards->subcardConfig().size()).arg(dir));
    for (const Subcard::s_Subcard& card : cards->subcardConfig())
        report.detail(QStringLiteral("%1  %2 (%3 connectors)")
                          .arg(card.modelId)
                          .arg(QString::fromStdString(card.name.en))
                          .arg(card.connectors.connectors.size()));
}

void checkConnectors(const kvchost::PluginHost& host, const QDir& config, Report& report) {
    QString error;
    auto connectors =
        host.create<ConnectorConfigInterface>(QStringLiteral("tavio.lcd.configmodel.connector"), &error);
    const QString dir = config.filePath(QStringLiteral("connector"));
    if (!connectors || !connectors->readConfig(dir, error))
        return report.line(false, QStringLiteral("connectors"), error);
    QStringList types;
    for (int type = 0; type < 64; ++type)
        if (connectors->findEDIDInfo(type)) types << QString::number(type);
    report.line(true, QStringLiteral("connectors"),
                QStringLiteral("connector types %1 from %2").arg(types.join(QLatin1Char(' ')), dir));
}

void checkMenu(const kvchost::PluginHost& host, const QDir& config, Report& report) {
    QString error;
    auto menu =
        host.create<MenuConfigInterface>(QStringLiteral("tavio.lcd.configmodel.menuconfigmanager"), &error);
    const QString items = config.filePath(QStringLiteral("menu/menufcitems.xml"));
    const QString tree = config.filePath(QStringLiteral("menu/menuitems.xml"));
    if (!menu || !menu->readMenuFCItems(items, error) || !menu->readMenuItems(tree, error))
        return report.line(false, QStringLiteral("menu"), error);
    const s_MenuItem* root = menu->rootMenuItem();
    report.line(true, QStringLiteral("menu"),
                QStringLiteral("%1 entries from %2").arg(countItems(root) - 1).arg(tree));
    QStringList top;
    for (const s_MenuItem* item : root->children)
        top << menuName(item);
    report.detail(top.join(QStringLiteral(", ")));
}

// The HDR component finds its files from the working directory
// (<cwd>/../share/config/func/hdr), so the check runs from <config>/.. when
// the configuration directory sits in a folder named "share".
void checkHdr(const kvchost::PluginHost& host, const QDir& config, Report& report) {
    QDir share(config.absolutePath());
    const QString previous = QDir::currentPath();
    if (!share.cdUp() || share.dirName() != QLatin1String("share") ||
        config.dirName() != QLatin1String("config"))
        return report.line(false, QStringLiteral("hdr"),
                           QStringLiteral("HDR options are found only under .../share/config; skipped"));
    QString error;
    auto hdr = host.create<IHDRConfig>(QStringLiteral("tavio.lcd.configmodel.hdrconfig"), &error);
    if (!hdr) return report.line(false, QStringLiteral("hdr"), error);
    QDir::setCurrent(share.absolutePath());
    hdr->initInputConfig();
    hdr->initOutputConfig();
    QDir::setCurrent(previous);
    report.line(true, QStringLiteral("hdr"),
                QStringLiteral("options from %1").arg(config.filePath(QStringLiteral("func/hdr"))));
}

void checkKeys(const kvchost::PluginHost& host, const QDir& config, Report& report) {
    QString error;
    auto keys = host.create<IKeyCheckConfig>(QStringLiteral("tavio.lcd.configmodel.keycheck"), &error);
    const QString checklist = config.filePath(QStringLiteral("ui/checklist.xml"));
    if (!keys || !keys->readConfig(checklist, error))
        return report.line(false, QStringLiteral("key-check"), error);
    const auto list = keys->getKeyCheckList();
    report.line(true, QStringLiteral("key-check"),
                QStringLiteral("%1 keys from %2").arg(list.size()).arg(checklist));
    QStringList names;
    for (const auto& key : list)
        names << QStringLiteral("%1=%2").arg(key.second).arg(key.first);
    report.detail(names.join(QLatin1Char(' ')));
}

void checkPrintKeys(const kvchost::PluginHost& host, const QDir& config, Report& report) {
    QString error;
    auto printKeys =
        host.create<IPrintKeyNoConfig>(QStringLiteral("tavio.lcd.configmodel.printkeyno"), &error);
    const QString file = config.filePath(QStringLiteral("ui/printkeynoconfig.xml"));
    if (!printKeys || !printKeys->readConfig(file, error))
        return report.line(false, QStringLiteral("print-keys"), error);
    report.line(true, QStringLiteral("print-keys"), QStringLiteral("from %1").arg(file));
}

int runCheck(const kvchost::PluginHost& host, const QString& configDir) {
    const QDir config(configDir);
    if (!config.exists()) {
        err() << "lcdcfg: no configuration directory " << configDir << "\n";
        return 2;
    }
    Report report;
    const QtMessageHandler previous = qInstallMessageHandler(&collect);
    checkDevices(host, config, report);
    checkCards(host, config, report);
    checkConnectors(host, config, report);
    checkMenu(host, config, report);
    checkHdr(host, config, report);
    checkKeys(host, config, report);
    checkPrintKeys(host, config, report);
    qInstallMessageHandler(previous);

    if (report.failures)
        out() << "configuration has errors\n";
    else if (report.warnings)
        out() << "configuration loads, with warnings\n";
    else
        out() << "configuration loads cleanly\n";
    return report.failures ? 1 : report.warnings ? 3 : 0;
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
