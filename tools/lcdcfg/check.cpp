// lcdcfg check: loads every component of a configuration tree as the host
// does and reports, per component, what was read and what the load wrote.

#include <QtCore/QDir>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

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

// What a loaded component holds, in a line or two.
QStringList summary(const Tree& tree, Part part) {
    switch (part) {
    case Part::Devices: {
        const Devicecfg::s_Device current = tree.devices()->curDeviceConfigs();
        QStringList lines{QStringLiteral("%1 device models").arg(tree.devices()->DeviceConfigs().size())};
        for (const Devicecfg::s_Device& device : tree.devices()->DeviceConfigs()) {
            QStringList screens;
            QStringList layers;
            for (const Screen::s_VrnScreen& screen : device.screens)
                screens << QString::number(screen.type);
            for (const Layercfg::s_VrnLayer& layer : device.layers)
                layers << QString::number(layer.type);
            lines << QStringLiteral("%1  %2 / %3%4, screen types %5, layer types %6")
                         .arg(device.modelId)
                         .arg(QString::fromStdString(device.feature.enName),
                              QString::fromStdString(device.feature.zhName),
                              device.modelId == current.modelId ? QStringLiteral(" (current)") : QString(),
                              screens.join(QLatin1Char(' ')), layers.join(QLatin1Char(' ')));
        }
        return lines;
    }
    case Part::Cards: {
        QStringList lines{QStringLiteral("%1 card models").arg(tree.cards()->subcardConfig().size())};
        for (const Subcard::s_Subcard& card : tree.cards()->subcardConfig())
            lines << QStringLiteral("%1  %2 (%3 connectors)")
                         .arg(card.modelId)
                         .arg(QString::fromStdString(card.name.en))
                         .arg(card.connectors.connectors.size());
        return lines;
    }
    case Part::Connectors: {
        QStringList types;
        for (int type = 0; type < 64; ++type)
            if (tree.connectors()->findEDIDInfo(type)) types << QString::number(type);
        return {QStringLiteral("connector types %1").arg(types.join(QLatin1Char(' ')))};
    }
    case Part::Menu: {
        const s_MenuItem* root = tree.menu()->rootMenuItem();
        QStringList top;
        for (const s_MenuItem* item : root->children)
            top << menuName(item);
        return {QStringLiteral("%1 entries").arg(countItems(root) - 1), top.join(QStringLiteral(", "))};
    }
    case Part::Hdr:
        return {QStringLiteral("input and output options")};
    case Part::Keys: {
        const auto list = tree.keys()->getKeyCheckList();
        QStringList names;
        for (const auto& key : list)
            names << QStringLiteral("%1=%2").arg(key.second).arg(key.first);
        return {QStringLiteral("%1 keys").arg(list.size()), names.join(QLatin1Char(' '))};
    }
    case Part::PrintKeys:
        return {QStringLiteral("print-key table")};
    }
    return {};
}

} // namespace

int runCheck(const QStringList& args) {
    CommandLine cl(QStringLiteral("check"),
                   QStringLiteral("Loads every component of a configuration tree as the host does."),
                   QStringLiteral("[ROOT]"));
    const QCommandLineOption configOption(QStringLiteral("config"),
                                          QStringLiteral("Configuration root (same as ROOT)."),
                                          QStringLiteral("dir"));
    cl.addOption(configOption);
    int code = kClean;
    if (!cl.parse(args, &code)) return code;
    const QStringList positional = cl.positional();
    if (positional.size() > 1) return cl.usage(QStringLiteral("one ROOT at most"));
    const QString root = cl.isSet(configOption) ? cl.value(configOption)
                         : positional.isEmpty() ? defaultRoot()
                                                : positional.first();
    kvchost::PluginHost* host = cl.host();
    if (!host) return kUsage;

    Tree tree(*host, root);
    if (!tree.load()) {
        err() << "lcdcfg: " << tree.error() << "\n";
        return kUsage;
    }
    int failures = 0;
    int warnings = 0;
    for (const PartLoad& load : tree.loads()) {
        QStringList messages;
        for (const Diagnostic& d : load.diagnostics)
            if (d.type != QtDebugMsg && d.type != QtInfoMsg) messages << d.text;
        const bool ok = load.attempted && (load.ok || load.part == Part::Hdr) && load.error.isEmpty();
        const bool warned = ok && !messages.isEmpty();
        const QString what = QLatin1String(partName(load.part));
        const QString from = tree.relative(load.inputs.last());
        QStringList detail =
            ok ? summary(tree, load.part)
               : QStringList{load.attempted ? load.error : QStringLiteral("missing directory %1").arg(from)};
        if (ok) detail.first() += QStringLiteral(" from %1").arg(from);
        out() << (!ok      ? "FAIL  "
                  : warned ? "warn  "
                           : "ok    ")
              << qSetFieldWidth(12) << Qt::left << what << qSetFieldWidth(0) << detail.takeFirst() << "\n";
        for (const QString& line : detail + messages)
            out() << "        " << line << "\n";
        failures += ok ? 0 : 1;
        warnings += warned ? 1 : 0;
    }
    if (failures)
        out() << "configuration has errors\n";
    else if (warnings)
        out() << "configuration loads, with warnings\n";
    else
        out() << "configuration loads cleanly\n";
    return failures ? 1 : warnings ? 3 : 0;
}

} // namespace lcdcfg
