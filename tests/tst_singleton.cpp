// The process-wide instances of the per-device parsers: one per class, fresh
// after destroyInstance, and created once however many threads ask first.

#include "device/crosscardconfig.h"
#include "device/layerconfig.h"
#include "device/slotconfig.h"
#include "testutil.h"

#include <QtCore/QThread>

#include <atomic>
#include <memory>

using namespace LCD::ConfigModel;

// One parser class; `object` is null for a class that is no Qt object.
struct Parser {
    void* (*instance)();
    void (*destroy)();
    QObject* (*object)();
};
Q_DECLARE_METATYPE(Parser)

template <class T> static QObject* asObject() {
    if constexpr (std::is_base_of_v<QObject, T>) return T::instance();
    return nullptr;
}

template <class T> static Parser parser() {
    return {[]() -> void* { return T::instance(); }, &T::destroyInstance, &asObject<T>};
}

class Singleton : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() {
        QTest::addColumn<Parser>("p");
        QTest::newRow("slot") << parser<SlotConfigManager>();
        QTest::newRow("cross-card") << parser<CrosscardConfigManager>();
        QTest::newRow("layer") << parser<LayerConfigManager>();
    }

    void destroyGivesAFreshInstance() {
        QFETCH_GLOBAL(Parser, p);
        QVERIFY(p.instance() && p.instance() == p.instance());
        if (QObject* old = p.object()) {
            QVERIFY(!old->parent());
            old->setObjectName("used");
        }
        p.destroy();
        p.destroy(); // finds nothing to delete
        QVERIFY(p.instance());
        if (QObject* fresh = p.object()) QVERIFY(fresh->objectName().isEmpty());
    }

    void concurrentFirstCallsCreateOne() {
        QFETCH_GLOBAL(Parser, p);
        constexpr int kThreads = 8;
        for (int round = 0; round < 20; ++round) {
            p.destroy();
            std::atomic<int> ready{0};
            std::atomic<bool> go{false};
            void* seen[kThreads] = {};
            std::vector<std::unique_ptr<QThread>> threads;
            for (int i = 0; i < kThreads; ++i) {
                threads.emplace_back(QThread::create([&, i] {
                    ++ready;
                    while (!go)
                        QThread::yieldCurrentThread();
                    seen[i] = p.instance();
                }));
                threads.back()->start();
            }
            while (ready < kThreads)
                QThread::yieldCurrentThread();
            go = true;
            for (auto& t : threads)
                QVERIFY(t->wait(10000));
            QVERIFY(std::all_of(seen, seen + kThreads, [&](void* s) { return s == p.instance(); }));
        }
        p.destroy(); // the survivor belongs to a finished thread
    }
};

QTEST_GUILESS_MAIN(Singleton)
#include "tst_singleton.moc"
