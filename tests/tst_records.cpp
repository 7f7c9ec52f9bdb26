// Whole-record equality: every listed field takes part, derived records compare
// their base too, and a field list that misses a field does not build.

#include <lcdconfigmodel.h>

#include "testutil.h"

using namespace LCD::ConfigModel;

namespace {

// The field-list check: a list without `c` is too small for the record.
struct ThreeFields {
    qint32 a = 0;
    qint64 b = 0;
    qint32 c = 0;
};
static_assert(detail::namesEveryField<ThreeFields, std::tuple<const qint32&, const qint64&, const qint32&>>(),
              "a full list passes");
static_assert(!detail::namesEveryField<ThreeFields, std::tuple<const qint32&, const qint64&>>(),
              "a list without the last field fails");
static_assert(!detail::namesEveryField<ThreeFields, std::tuple<const qint64&, const qint32&>>(),
              "a list without the first field fails");

// A fresh record after `change`.
template <class R, class F> R changed(F change) {
    R r{};
    change(r);
    return r;
}

} // namespace

class Records : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void equality_data() {
        using Layer = Layercfg::s_VrnLayer;
        using CardConnector = Subcard::s_ConnectorInConnectorsDeviceModeCapacitysCapacity;
        QTest::addColumn<bool>("equal");
        QTest::addColumn<bool>("notEqual");
        QTest::addColumn<bool>("expected");
        const auto row = [](const char* name, const auto& a, const auto& b, bool expected) {
            QTest::newRow(name) << (a == b) << !(a != b) << expected;
        };
        row("fresh layer records are equal", Layer{}, Layer{}, true);
        row("a reserved layer member in the middle takes part",
            changed<Layer>([](Layer& l) { l.reserved50.max = 1; }), Layer{}, false);
        row("the last layer member takes part", changed<Layer>([](Layer& l) { l.cutFill.relativeY.max = 1; }),
            Layer{}, false);
        row("a card connector's base fields take part",
            changed<CardConnector>([](CardConnector& c) { c.reserved2 = 1; }), CardConnector{}, false);
        row("a card connector's own fields take part",
            changed<CardConnector>([](CardConnector& c) { c.dynamicRange.dataType = 1; }), CardConnector{},
            false);
        row("records nested in lists take part",
            changed<Connector::s_VrnConnector>([](Connector::s_VrnConnector& v) {
                v.connectors.resize(1);
                v.connectors[0].hdr.maxLuminance.step = 0.5;
            }),
            changed<Connector::s_VrnConnector>([](Connector::s_VrnConnector& v) { v.connectors.resize(1); }),
            false);
        row("screen functions compare as support flags", Screen::s_Tbar{}, Screen::s_Tbar{{1, -1}}, false);
        row("menu items compare their names",
            changed<s_MenuFCItem>([](s_MenuFCItem& i) { i.name.insert("en", "Screen"); }), s_MenuFCItem{},
            false);
    }

    void equality() {
        QFETCH(bool, equal);
        QFETCH(bool, notEqual);
        QFETCH(bool, expected);
        QCOMPARE(equal, expected);
        QCOMPARE(notEqual, expected);
    }

    void hdrKeysOrderByTypeThenValue() {
        QVERIFY((HDRKey{0, 9} < HDRKey{1, 0}));
        QVERIFY((HDRKey{1, 0} < HDRKey{1, 1}));
        QVERIFY(!(HDRKey{1, 1} < HDRKey{1, 1}));
    }
};

QTEST_GUILESS_MAIN(Records)
#include "tst_records.moc"
