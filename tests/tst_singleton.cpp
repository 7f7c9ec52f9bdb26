// The process-wide instances of the per-device parsers: one per class, fresh
// after destroyInstance, created once however many threads ask first and
// parsing into separate records from several threads at once. Also run under
// ThreadSanitizer (make test-tsan).

#include "device/crosscardconfig.h"
#include "device/devicefearureconfig.h"
#include "device/layerconfig.h"
#include "device/screenconfig.h"
#include "device/slotconfig.h"
#include "testutil.h"

#include <QtCore/QThread>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

using namespace LCD::ConfigModel;

// One parser class; `object` is null for a class that is no Qt object.
struct Parser {
    void* (*instance)();
    void (*destroy)();
    QObject* (*object)();
    // Reads the class's shipped file through the instance into a fresh
    // record; true when it equals the first reading.
    std::function<bool()> parsesShipped;
};
Q_DECLARE_METATYPE(Parser)

template <class T> static QObject* asObject() {
    if constexpr (std::is_base_of_v<QObject, T>) return T::instance();
    return nullptr;
}

template <class T, class Record>
static Parser parser(bool (T::*parse)(const QString&, QString&, Record&), const char* file) {
    const QString path = test::sharedConfig(file);
    const auto read = [=] {
        Record record;
        QString error;
        if (!(T::instance()->*parse)(path, error, record)) qFatal("%s: %s", file, qPrintable(error));
        return record;
    };
    const auto first = std::make_shared<Record>();
    return {[]() -> void* { return T::instance(); }, &T::destroyInstance, &asObject<T>,
            [=] {
                static std::once_flag once;
                std::call_once(once, [&] { *first = read(); });
                return read() == *first;
            }};
}

// All threads spin until the last one arrives, so that they leave together.
class Barrier {
public:
    explicit Barrier(int count) : m_count(count) {}
    void arriveAndWait() {
        const int round = m_round;
        if (++m_arrived == m_count) {
            m_arrived = 0;
            ++m_round;
            return;
        }
        while (m_round == round)
            QThread::yieldCurrentThread();
    }

private:
    const int m_count;
    std::atomic<int> m_arrived{0};
    std::atomic<int> m_round{0};
};

class Singleton : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() {
        QTest::addColumn<Parser>("p");
        QTest::newRow("feature") << parser(&DeviceFeatureConfigManager::parseDeviceFeaturecfg,
                                           "device/29974/29974_feature.xml");
        QTest::newRow("slot") << parser(&SlotConfigManager::parseDeviceSlotcfg,
                                        "device/29974/29974_slot.xml");
        QTest::newRow("cross-card") << parser(&CrosscardConfigManager::parseDeviceCrosscardcfg,
                                              "device/29974/29974_crosscard.xml");
        QTest::newRow("layer") << parser(&LayerConfigManager::parseDeviceLayercfg,
                                         "device/29974/29974_layer_normal.xml");
        QTest::newRow("screen") << parser(&ScreenConfigManager::parseDeviceScreencfg,
                                          "device/29974/29974_screen_splice.xml");
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

    // Eight threads ask for the instance at once and parse into records of
    // their own; all of them see the same instance. Between rounds one of
    // them destroys it, while no thread holds it, and the next round creates
    // it again.
    void concurrentCallsShareOneInstance() {
        QFETCH_GLOBAL(Parser, p);
        constexpr int kThreads = 8;
        constexpr int kRounds = 20;
        QVERIFY(p.parsesShipped()); // the first reading, the reference
        Barrier barrier(kThreads);
        std::atomic<int> mismatches{0};
        void* seen[kThreads] = {};
        // std::thread, not QThread: ThreadSanitizer sees a join, not
        // QThread::wait inside the uninstrumented Qt library.
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back([&, i] {
                for (int round = 0; round < kRounds; ++round) {
                    barrier.arriveAndWait();
                    seen[i] = p.instance();
                    if (!p.parsesShipped()) ++mismatches;
                    barrier.arriveAndWait();
                    if (std::count(seen, seen + kThreads, seen[i]) != kThreads) ++mismatches;
                    if (i == round % kThreads) p.destroy();
                }
            });
        }
        for (std::thread& t : threads)
            t.join();
        QCOMPARE(mismatches.load(), 0);
        p.destroy(); // the survivor belongs to a finished thread
    }
};

QTEST_GUILESS_MAIN(Singleton)
#include "tst_singleton.moc"
