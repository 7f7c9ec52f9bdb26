// A host: loads the plug-in, walks its descriptors and asks each component
// one question about a configuration directory. Run it from <prefix>/bin,
// where the HDR component finds ../share/config/func/hdr/.
//
//     host <prefix>/lib/liblcdconfigmodelplugin.so <prefix>/share/config
#include <lcdconfigmodel.h>

#include <QtCore/QDebug>
#include <QtCore/QTextStream>
#include <dlfcn.h>

using namespace LCD::ConfigModel;

// The host framework's object that pluginit() keeps; this host has none.
static int myFramework;

// One question per component, asked after its loader ran.
static QString ask(const QByteArray& id, void* c, const QString& dir) {
    QString e; // a loader that fails returns false with the reason here; none throws
    if (id.endsWith(".device")) {
        auto* i = static_cast<DeviceConfigInterface*>(c);
        if (!i->readConfig(dir + "/device", e)) return e;
        return QString::number(i->findSubcardModelId(9)); // 0 for an empty slot
    }
    if (id.endsWith(".subcard")) {
        auto* i = static_cast<SubcardConfigInterface*>(c);
        if (!i->readConfig(dir + "/subcard", e)) return e;
        return QString::number(i->findCardMode(2201)); // -1 for an unknown card
    }
    if (id.endsWith(".connector")) {
        auto* i = static_cast<ConnectorConfigInterface*>(c);
        if (!i->readConfig(dir + "/connector", e)) return e;
        const Connector::s_ConnectorHDCP* hdcp = i->findHDCPInfo(6); // null for an unknown type
        return hdcp ? QString::number(hdcp->support) : QString();
    }
    if (id.endsWith(".menuconfigmanager")) { // function items first, then the tree
        auto* i = static_cast<MenuConfigInterface*>(c);
        if (!i->readMenuFCItems(dir + "/menu/menufcitems.xml", e)) return e;
        if (!i->readMenuItems(dir + "/menu/menuitems.xml", e)) return e;
        return QString::number(i->findChidItemSizeByKey(100));
    }
    if (id.endsWith(".hdrconfig")) { // reads ../share/config/func/hdr/ from the working directory
        auto* i = static_cast<IHDRConfig*>(c);
        i->initInputConfig();
        auto options = i->getCanSelectedValues({HDRDynamicRange, HDRAutoValue}, HDRInputConfig);
        return QString::number(options[HDRBitDepth].size());
    }
    if (id.endsWith(".keycheck")) {
        auto* i = static_cast<IKeyCheckConfig*>(c);
        if (!i->readConfig(dir + "/ui/checklist.xml", e)) return e;
        return i->getKeyCheckList().value(0).second;
    }
    if (id.endsWith(".printkeyno")) {
        auto* i = static_cast<IPrintKeyNoConfig*>(c);
        if (!i->readConfig(dir + "/ui/printkeynoconfig.xml", e)) return e;
        const auto keys = i->getPrintKeyNoCfg(29974, 2101).printKeyNos; // empty when missing
        return keys.empty() ? QString() : QString::fromStdString(keys.front().printKeyNo);
    }
    return QString();
}

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    void* lib = dlopen(argv[1], RTLD_NOW);
    if (!lib) {
        qCritical() << dlerror();
        return 1;
    }
    auto init = reinterpret_cast<void (*)(void*)>(dlsym(lib, "pluginit"));
    auto info = reinterpret_cast<void* (*)()>(dlsym(lib, "pluginfo"));
    init(&myFramework);

    QTextStream out(stdout); // the loaders' diagnostics go to stderr
    auto* plugin = static_cast<const kvc::PluginInfo*>(info());
    for (const kvc::ComponentInfo* const* c = plugin->componentTable; *c; ++c) {
        void* object = (*c)->creatorFn(); // null when out of memory
        if (!object) return 1;
        out << (*c)->id << ' ' << ask((*c)->id, object, QString::fromLocal8Bit(argv[2])) << '\n';
        (*c)->deletorFn(object); // through the same descriptor
    }
    return 0;
}
