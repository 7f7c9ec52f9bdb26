// lcdcfg plugin: the plug-in record and its seven components, as the host sees them.

#include "common/facts.h"
#include "tools/lcdcfg/cli.h"

namespace lcdcfg {

namespace {

// The facts of the component `id` (the library's table), or null.
const LCD::ConfigModel::facts::ComponentFacts* factsOf(const QString& id) {
    for (const LCD::ConfigModel::facts::ComponentFacts& c : LCD::ConfigModel::facts::kComponents)
        if (id == QLatin1String(c.id)) return &c;
    return nullptr;
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
        const LCD::ConfigModel::facts::ComponentFacts* known = factsOf(id);
        out() << "  " << position++ << "  " << qSetFieldWidth(42) << Qt::left << id << qSetFieldWidth(27)
              << (known ? known->className : "?") << qSetFieldWidth(0) << (known ? known->interface : "?")
              << "\n";
    }
    return 0;
}

} // namespace lcdcfg
