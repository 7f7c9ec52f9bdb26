#pragma once

// The process-wide instance of a per-device parser: created once under the
// class's own mutex on first use, published with release/acquire ordering so a
// thread that sees the pointer sees a constructed object.

#include <QtCore/QMutex>

#include <atomic>

namespace LCD {
namespace ConfigModel {

template <class T> T* singletonInstance(std::atomic<T*>& instance, QMutex& mutex) {
    if (T* existing = instance.load(std::memory_order_acquire)) return existing;
    QMutexLocker lock(&mutex);
    T* current = instance.load(std::memory_order_relaxed);
    if (!current) {
        current = new T(); // an exception leaves the pointer null and unlocks
        instance.store(current, std::memory_order_release);
    }
    return current;
}

template <class T> void singletonDestroy(std::atomic<T*>& instance, QMutex& mutex) {
    if (!instance.load(std::memory_order_acquire)) return;
    QMutexLocker lock(&mutex);
    delete instance.exchange(nullptr, std::memory_order_acq_rel);
}

} // namespace ConfigModel
} // namespace LCD

// Declares instance()/destroyInstance() with the pointer `m_p<Name>CfgMgr`
// and the mutex `m_mu<Name>CfgMgr`.
#define LCD_DECLARE_SINGLETON(Class, Name)                                                                   \
public:                                                                                                      \
    static Class* instance() {                                                                               \
        return ::LCD::ConfigModel::singletonInstance(m_p##Name##CfgMgr, m_mu##Name##CfgMgr);                 \
    }                                                                                                        \
    static void destroyInstance() {                                                                          \
        ::LCD::ConfigModel::singletonDestroy(m_p##Name##CfgMgr, m_mu##Name##CfgMgr);                         \
    }                                                                                                        \
                                                                                                             \
private:                                                                                                     \
    static std::atomic<Class*> m_p##Name##CfgMgr;                                                            \
    static QMutex m_mu##Name##CfgMgr;

// Defines them in the class's source file.
#define LCD_DEFINE_SINGLETON(Class, Name)                                                                    \
    std::atomic<Class*> Class::m_p##Name##CfgMgr{nullptr};                                                   \
    QMutex Class::m_mu##Name##CfgMgr;
