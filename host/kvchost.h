#pragma once

// A stand-in for the host framework: loads the plug-in the way the host does
// (dlopen, pluginit, pluginfo, walk the descriptor table to its null entry)
// and creates and destroys components by id through their descriptors.

#include <QtCore/QLibrary>
#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>

#include "common/loadobserver.h"
#include "lcdconfigmodel/kvc.h"

namespace kvchost {

// Destroys a component through the descriptor that created it.
struct ComponentDeleter {
    const kvc::ComponentInfo* info = nullptr;
    void* object = nullptr;
    template <class I> void operator()(I*) const {
        if (info) info->deletorFn(object);
    }
};

template <class I> using Component = std::unique_ptr<I, ComponentDeleter>;

class PluginHost {
public:
    // LCD_PLUGIN from the environment; else, for an installed tool, the
    // plug-in installed with it (../lib/ from the executable's directory);
    // else the plug-in built beside this host.
    static QString defaultPluginPath();

    explicit PluginHost(QString libraryPath = defaultPluginPath());
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    // Loads the library, calls pluginit(this) and reads the plug-in record.
    // false: `error` says what is missing (file, symbol, record).
    bool load(QString* error);
    bool isLoaded() const { return m_info != nullptr; }
    QString libraryPath() const { return m_library.fileName(); }

    const kvc::PluginInfo* info() const { return m_info; }
    // Attaches a load observer inside the loaded plug-in (null detaches).
    // false when the library does not offer one.
    bool setLoadObserver(LCD::ConfigModel::LoadObserver* observer) const;

    // The descriptors in table order, up to the null entry.
    QList<const kvc::ComponentInfo*> components() const;
    // The descriptor with that id, or null.
    const kvc::ComponentInfo* find(const QString& id) const;

    // A new component used through interface I; null with `error` set for an
    // unknown id or a failed creation.
    template <class I> Component<I> create(const QString& id, QString* error = nullptr) const {
        void* object = nullptr;
        const kvc::ComponentInfo* info = createRaw(id, &object, error);
        if (!info) return Component<I>(nullptr, ComponentDeleter{});
        // Each component class derives singly and non-virtually from its
        // interface, so the object's address is the interface's address.
        return Component<I>(static_cast<I*>(object), ComponentDeleter{info, object});
    }

private:
    const kvc::ComponentInfo* createRaw(const QString& id, void** object, QString* error) const;

    mutable QLibrary m_library; // resolve() is not const
    const kvc::PluginInfo* m_info = nullptr;
};

} // namespace kvchost
