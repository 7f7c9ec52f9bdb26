#include "host/kvchost.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace kvchost {

namespace {
using PluginInit = void (*)(void*);
using PluginInfoFn = void* (*)();
using SetObserverFn = void (*)(LCD::ConfigModel::LoadObserver*);

void setError(QString* error, const QString& text) {
    if (error) *error = text;
}
} // namespace

QString PluginHost::defaultPluginPath() {
    const QByteArray fromEnvironment = qgetenv("LCD_PLUGIN");
    if (!fromEnvironment.isEmpty()) return QString::fromLocal8Bit(fromEnvironment);
    if (QCoreApplication::instance()) {
        const QString installed =
            QCoreApplication::applicationDirPath() + QStringLiteral("/" LCD_INSTALLED_PLUGIN);
        if (QFileInfo::exists(installed)) return QDir::cleanPath(installed);
    }
    return QStringLiteral(LCD_DEFAULT_PLUGIN);
}

PluginHost::PluginHost(QString libraryPath) : m_library(libraryPath) {}

PluginHost::~PluginHost() {
    // The library stays mapped: components the caller still holds keep
    // pointing into it. The process unloads it at exit.
}

bool PluginHost::setLoadObserver(LCD::ConfigModel::LoadObserver* observer) const {
    if (!isLoaded()) return false;
    const auto set = reinterpret_cast<SetObserverFn>(m_library.resolve("lcdSetLoadObserver"));
    if (!set) return false;
    set(observer);
    return true;
}

bool PluginHost::load(QString* error) {
    const QString path = m_library.fileName();
    if (!QFileInfo::exists(path)) {
        setError(error, QStringLiteral("plug-in not found: %1").arg(path));
        return false;
    }
    if (!m_library.load()) {
        setError(error, QStringLiteral("cannot load plug-in %1: %2").arg(path, m_library.errorString()));
        return false;
    }
    const auto init = reinterpret_cast<PluginInit>(m_library.resolve("pluginit"));
    const auto info = reinterpret_cast<PluginInfoFn>(m_library.resolve("pluginfo"));
    if (!init || !info) {
        setError(error, QStringLiteral("plug-in %1 does not export %2")
                            .arg(path, init ? QStringLiteral("pluginfo") : QStringLiteral("pluginit")));
        return false;
    }
    init(this);
    m_info = static_cast<const kvc::PluginInfo*>(info());
    if (!m_info || !m_info->componentTable) {
        m_info = nullptr;
        setError(error, QStringLiteral("plug-in %1 has no component table").arg(path));
        return false;
    }
    return true;
}

QList<const kvc::ComponentInfo*> PluginHost::components() const {
    QList<const kvc::ComponentInfo*> list;
    if (!m_info) return list;
    for (const kvc::ComponentInfo* const* entry = m_info->componentTable; *entry; ++entry)
        list.append(*entry);
    return list;
}

const kvc::ComponentInfo* PluginHost::find(const QString& id) const {
    for (const kvc::ComponentInfo* info : components())
        if (QLatin1String(info->id) == id) return info;
    return nullptr;
}

const kvc::ComponentInfo* PluginHost::createRaw(const QString& id, void** object, QString* error) const {
    if (!m_info) {
        setError(error, QStringLiteral("plug-in not loaded"));
        return nullptr;
    }
    const kvc::ComponentInfo* info = find(id);
    if (!info) {
        setError(error, QStringLiteral("unknown component id: %1").arg(id));
        return nullptr;
    }
    *object = info->creatorFn();
    if (!*object) {
        setError(error, QStringLiteral("component %1 could not be created").arg(id));
        return nullptr;
    }
    return info;
}

} // namespace kvchost
