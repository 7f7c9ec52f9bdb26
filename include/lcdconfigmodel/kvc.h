#pragma once

// The host framework's side of the plug-in contract: the component descriptor,
// the component template that fills it, and the record that keeps the host's
// pointer. Header-only; compiled into the plug-in and into hosts alike.
//
// Sequence: load the library, call pluginit(), call pluginfo() and walk its
// componentTable up to the null entry; for each component needed, call the
// descriptor's creatorFn, use the object through its interface (one thread at
// a time), run its loader before its queries, and hand the object back to the
// same descriptor's deletorFn. The descriptors, the plug-in record and every
// text in them are static: they stay valid until the library is unloaded.
// Unloading the library does not destroy objects the host still holds, and
// they must not be used afterwards.

#include <functional>
#include <new>

#include "lcdconfigmodel/export.h"

namespace kvc {

// Declared by the host framework; no component of this plug-in offers one.
class IMessageHandler;

// One component: three type-erased callables, then constant texts.
struct ComponentInfo {
    std::function<void*()> creatorFn;
    std::function<void(void*)> deletorFn;
    std::function<IMessageHandler*(void*)> messageHandlerFn;
    const char* id;
    const char* description;
};

// The JSON description every component carries (12 characters, CR LF included).
inline constexpr const char kComponentDescription[] = "{\"end\":0 }\r\n";

// Static operations shared by all components; T must derive from its interface
// with a virtual destructor.
template <class T> class ComponentTmpl {
public:
    static ComponentInfo componentInfo;

    // A new T, or null when memory is exhausted. A throwing constructor lets
    // the exception pass after the storage is released.
    static void* creator() { return new (std::nothrow) T(); }
    // Destroys an object made by creator(); null is ignored.
    static void deletor(void* p) { delete static_cast<T*>(p); }
    // No component offers a message handler.
    static IMessageHandler* getMessageHandler(void*) { return nullptr; }

    // The descriptor of T, filled by the static initialiser of T's source file.
    static ComponentInfo describe(const char* id) {
        return ComponentInfo{&ComponentTmpl::creator, &ComponentTmpl::deletor,
                             &ComponentTmpl::getMessageHandler, id, kComponentDescription};
    }
};

// The process-wide record that holds the host framework's pointer.
struct LCD_CONFIGMODEL_EXPORT api {
    void* host = nullptr;
    void* reserved1 = nullptr;
    void* reserved2 = nullptr;

    static api& get();
};

// The plug-in record returned by pluginfo(): five pointer-sized fields.
struct PluginInfo {
    const char* infoVersion;
    const ComponentInfo* const* componentTable;
    const char* name;
    const char* version;
    const char* description;
};

} // namespace kvc

// Declares, in a component's header, the descriptor its source file defines.
#define KVC_DECLARE_COMPONENT(Class) template <> kvc::ComponentInfo kvc::ComponentTmpl<Class>::componentInfo;

// Defines and fills, in a component's source file, the descriptor of Class.
#define KVC_REGISTER_COMPONENT(Class, Id)                                                                    \
    template <>                                                                                              \
    kvc::ComponentInfo kvc::ComponentTmpl<Class>::componentInfo = kvc::ComponentTmpl<Class>::describe(Id);

extern "C" {
// Stores the host framework's pointer; a second call replaces it. The library
// never reads it back, so components work whether or not it was called.
LCD_CONFIGMODEL_EXPORT void pluginit(void* host);
// The plug-in record (a kvc::PluginInfo), the same constant record on every
// call, before or after pluginit(); valid while the library is loaded.
LCD_CONFIGMODEL_EXPORT void* pluginfo();
}
