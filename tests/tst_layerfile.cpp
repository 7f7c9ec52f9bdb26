// The layer file: the two shipped layer types of 29974, required elements and
// the lenient, optional parts of one layer.

#include "device/layerconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using Layercfg::s_VrnLayer;
using Layercfg::s_WideRangeValue;

Q_DECLARE_METATYPE(s_VrnLayer)

namespace {

QDomDocument document(const QByteArray& device) {
    QDomDocument doc;
    if (!doc.setContent("<Vrn>" + device + "</Vrn>", true)) qFatal("bad test document");
    return doc;
}

// A fresh record after `change`, as the expected result of a row.
template <class F> s_VrnLayer changed(F change) {
    s_VrnLayer l;
    change(l);
    return l;
}

} // namespace

class LayerFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shippedFiles() {
        test::MessageRecorder recorder;
        s_VrnLayer normal;
        s_VrnLayer pip;
        QString error;
        QVERIFY(LayerConfigManager::instance()->parseDeviceLayercfg(
            test::sharedConfig("device/29974/29974_layer_normal.xml"), error, normal));
        QVERIFY(LayerConfigManager::instance()->parseDeviceLayercfg(
            test::sharedConfig("device/29974/29974_layer_pip.xml"), error, pip));
        QVERIFY(error.isEmpty());
        QVERIFY(recorder.clean());
        QCOMPARE(normal.type, 1);
        QCOMPARE(normal.cutFill.enable.values, (std::vector<EnumValue>{{0}, {1}}));
        QCOMPARE(normal.cutFill.curveStartX, (s_WideRangeValue{1, 1, 0, 0, -7680, 7680}));
        QCOMPARE(normal.cutFill.relativeHeight, (s_WideRangeValue{1, 1, 1080, 0, 64, 4320}));
        QCOMPARE(normal.shadow.feather, (s_RangeValue{1, 1, 8, 0, 0, 32, 1.0}));
        QCOMPARE(normal.shadow.colorOpacity.value, 50);
        QCOMPARE(pip.type, 2);
        QCOMPARE(pip.cutFill.curve, s_SupportInfo{});
        QCOMPARE(pip.cutFill.relativeWidth.max, qint64(3840));
        QCOMPARE(pip.shadow.shadow, (s_SupportInfo{1, 0}));
        QCOMPARE(pip.shadow.feather, s_RangeValue{});
        QCOMPARE(pip.isInverse.support, 0);
    }

    void requiredElements_data() {
        QTest::addColumn<QByteArray>("device");
        QTest::addColumn<QString>("error");
        QTest::newRow("missing Device is fatal") << QByteArray("<Layers/>") << "Invalid [Device] node.";
        QTest::newRow("missing Layers is fatal")
            << QByteArray("<Device><Layer/></Device>") << "Invalid [Layers] node.";
        QTest::newRow("missing Layer is fatal")
            << QByteArray("<Device><Layers><Other/></Layers></Device>") << "Invalid [Layer] node.";
    }
    void requiredElements() {
        QFETCH(QByteArray, device);
        s_VrnLayer record;
        record.type = 7;
        QString error = "earlier";
        QVERIFY(!LayerConfigManager::instance()->parseDeviceLayercfg(document(device), error, record));
        QTEST(error, "error");
        QCOMPARE(record.type, 7);
    }

    void layer_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<s_VrnLayer>("expected");
        QTest::newRow("only the first Layer counts, no Type gives 0")
            << QByteArray("<Layer><IsInverse/></Layer><Layer Type=\"3\"/>") << changed([](s_VrnLayer& l) {
                   l.isInverse = {1, 1, 0, 0, {}};
               });
        QTest::newRow("cut-fill limits are 64-bit, missing parts keep defaults")
            << QByteArray("<Layer Type=\"1\"><CutFill><Relative Support=\"0\"><X Min=\"-5\" "
                          "Max=\"4000\"/></Relative>"
                          "</CutFill></Layer>")
            << changed([](s_VrnLayer& l) {
                   l.type = 1;
                   l.cutFill.cutFill = {1, 1};
                   l.cutFill.relative = {0, 1};
                   l.cutFill.relativeX = {1, 1, 0, 0, -5, 4000};
               });
        QTest::newRow("Enable and IsInverse take children of any name")
            << QByteArray(
                   "<Layer><CutFill><Enable Value=\"1\"><A Value=\"0\"/><B Value=\"1\"/></Enable></CutFill>"
                   "<IsInverse DataType=\"2\"><Enum Value=\"0\"/><Other Value=\"1\"/></IsInverse></Layer>")
            << changed([](s_VrnLayer& l) {
                   l.cutFill.cutFill = {1, 1};
                   l.cutFill.enable = {1, 1, 1, 0, {{0}, {1}}};
                   l.isInverse = {1, 1, 0, 2, {{0}, {1}}};
               });
        QTest::newRow("shadow without General reads its window; bare Opacity reads 1, 1 and zeros")
            << QByteArray(
                   "<Layer><Shadow Editable=\"0\"><Feather Value=\"9\"/><Window><X Max=\"64\"/></Window>"
                   "<Color><Opacity/></Color></Shadow></Layer>")
            << changed([](s_VrnLayer& l) {
                   l.shadow.shadow = {1, 0};
                   l.shadow.window = {1, 1};
                   l.shadow.windowX = {1, 1, 0, 0, 0, 64, 1.0};
                   l.shadow.color = {1, 1};
                   l.shadow.colorOpacity = {1, 1, 0, 0, 0, 0, 1.0};
               });
        QTest::newRow("General Enable has no value list")
            << QByteArray("<Layer><Shadow><General Support=\"0\"><Enable><Enum Value=\"1\"/></Enable>"
                          "<Feather Max=\"32\"/></General></Shadow></Layer>")
            << changed([](s_VrnLayer& l) {
                   l.shadow.shadow = {1, 1};
                   l.shadow.generalEnable = {1, 1, 0, 0, {}};
                   l.shadow.feather = {1, 1, 0, 0, 0, 32, 1.0};
               });
    }
    void layer() {
        QFETCH(QByteArray, xml);
        s_VrnLayer record;
        QString error;
        QVERIFY(LayerConfigManager::instance()->parseDeviceLayercfg(
            document("<Device><Layers>" + xml + "</Layers></Device>"), error, record));
        QVERIFY(error.isEmpty());
        QTEST(record, "expected");
    }

    void missingPartsLeaveTheRecordAlone() {
        s_VrnLayer record;
        record.cutFill.curve = {0, 0};
        record.shadow.general = {0, 0};
        const s_VrnLayer before = record;
        QString error;
        QVERIFY(LayerConfigManager::instance()->parseDeviceLayercfg(
            document("<Device><Layers><Layer/></Layers></Device>"), error, record));
        QCOMPARE(record, before);
    }
};

QTEST_GUILESS_MAIN(LayerFile)
#include "tst_layerfile.moc"
