// The process-wide instances of the per-device parsers: one per class, fresh
// after destroyInstance, created once however many threads ask first, and each
// translating its texts in its own context.

#include "device/crosscardconfig.h"
#include "device/layerconfig.h"
#include "device/slotconfig.h"
#include "testutil.h"

#include <QtCore/QThread>
#include <QtCore/QTranslator>

#include <atomic>
#include <memory>

using namespace LCD::ConfigModel;

namespace {

// One parser class, seen through plain function pointers.
struct Parser {
    void* (*instance)();
    void (*destroy)();
    QObject* (*object)(); // null for a class that is no Qt object
    bool (*parseWithoutDevice)(QString& error);
};

template <class T> Parser parser(bool (*parse)(QString&)) {
    return Parser{[]() -> void* { return T::instance(); }, &T::destroyInstance,
                  []() -> QObject* {
                      if constexpr (std::is_base_of_v<QObject, T>) return T::instance();
                      return nullptr;
                  },
                  parse};
}

QDomDocument withoutDevice() {
    QDomDocument doc;
    doc.setContent(QByteArray("<Vrn/>"));
    return doc;
}

// Marks every translated text with its context.
class ContextTranslator : public QTranslator {
public:
    QString translate(const char* context, const char* source, const char*, int) const override {
        return QString::fromLatin1(context) + QLatin1String(": ") + QString::fromUtf8(source);
    }
    bool isEmpty() const override { return false; }
};

} // namespace

Q_DECLARE_METATYPE(Parser)

class Singleton : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parsers_data() {
        QTest::addColumn<Parser>("p");
        QTest::addColumn<QString>("context");
        QTest::newRow("slot") << parser<SlotConfigManager>([](QString& e) {
            Slot::s_VrnSolt r;
            return SlotConfigManager::instance()->parseDeviceSlotcfg(withoutDevice(), e, r);
        }) << "LCD::ConfigModel::SlotConfigManager";
        QTest::newRow("cross-card") << parser<CrosscardConfigManager>([](QString& e) {
            CrossCard::s_CrossSubcards r;
            return CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(withoutDevice(), e, r);
        }) << "QObject";
        QTest::newRow("layer") << parser<LayerConfigManager>([](QString& e) {
            Layercfg::s_VrnLayer r;
            return LayerConfigManager::instance()->parseDeviceLayercfg(withoutDevice(), e, r);
        }) << "LCD::ConfigModel::LayerConfigManager";
    }

    void oneInstanceAcrossCalls_data() { parsers_data(); }
    void oneInstanceAcrossCalls() {
        QFETCH(Parser, p);
        void* first = p.instance();
        QVERIFY(first);
        QCOMPARE(p.instance(), first);
        if (QObject* o = p.object()) QVERIFY(!o->parent());
    }

    void destroyGivesAFreshInstance_data() { parsers_data(); }
    void destroyGivesAFreshInstance() {
        QFETCH(Parser, p);
        p.instance();
        QObject* old = p.object();
        std::unique_ptr<QSignalSpy> destroyed;
        if (old) {
            old->setObjectName(QStringLiteral("used"));
            destroyed = std::make_unique<QSignalSpy>(old, &QObject::destroyed);
        }
        p.destroy();
        p.destroy(); // a second call finds nothing to delete
        if (destroyed) QCOMPARE(destroyed->count(), 1);
        QVERIFY(p.instance());
        if (QObject* fresh = p.object()) QVERIFY(fresh->objectName().isEmpty());
    }

    void concurrentFirstCallsCreateOne_data() { parsers_data(); }
    void concurrentFirstCallsCreateOne() {
        QFETCH(Parser, p);
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
                    while (!go.load(std::memory_order_acquire))
                        QThread::yieldCurrentThread();
                    seen[i] = p.instance();
                }));
                threads.back()->start();
            }
            while (ready.load() < kThreads)
                QThread::yieldCurrentThread();
            go.store(true, std::memory_order_release);
            for (auto& t : threads)
                QVERIFY(t->wait(10000));
            for (void* s : seen)
                QCOMPARE(s, seen[0]);
            QCOMPARE(p.instance(), seen[0]);
        }
        p.destroy(); // the survivor belongs to a finished thread
    }

    void textsInTheClassContext_data() { parsers_data(); }
    void textsInTheClassContext() {
        QFETCH(Parser, p);
        QFETCH(QString, context);
        ContextTranslator translator;
        QCoreApplication::installTranslator(&translator);
        QString error;
        const bool ok = p.parseWithoutDevice(error);
        QCoreApplication::removeTranslator(&translator);
        QVERIFY(!ok);
        QCOMPARE(error, context + ": Invalid [Device] node.");
    }
};

QTEST_GUILESS_MAIN(Singleton)
#include "tst_singleton.moc"
