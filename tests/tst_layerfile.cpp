// The layer file: the two shipped layer types of 29974, required elements and
// the lenient, optional parts of one layer.

#include "device/layerconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using Layercfg::s_VrnLayer;
using Layercfg::s_WideRangeValue;
Q_DECLARE_METATYPE(s_VrnLayer)

namespace {

bool parse(const QString& device, QString& error, s_VrnLayer& layer) {
    return LayerConfigManager::instance()->parseDeviceLayercfg(
        test::document(("<Vrn>" + device + "</Vrn>").toUtf8()), error, layer);
}

// A fresh record after `change`: the expected result of a row.
template <class F> s_VrnLayer fresh(F change) {
    s_VrnLayer l;
    change(l);
    return l;
}

} // namespace

class LayerFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shippedFiles() {
        s_VrnLayer normal, pip;
        for (auto [name, layer] : {std::pair{"normal", &normal}, {"pip", &pip}})
            QCOMPARE(test::loadProblems([&](QString& error) {
                         return LayerConfigManager::instance()->parseDeviceLayercfg(
                             test::sharedConfig("device/29974/29974_layer_%1.xml").arg(name), error, *layer);
                     }),
                     QString());
        LCD_COMPARE_RECORDS(normal.cutFill.curveStartX, (s_WideRangeValue{1, 1, 0, 0, -7680, 7680}));
        LCD_COMPARE_RECORDS(normal.shadow.feather, (s_RangeValue{1, 1, 8, 0, 0, 32, 1.0}));
        LCD_COMPARE_RECORDS(pip.cutFill.curve, s_SupportInfo{});
        LCD_COMPARE_RECORDS(pip.cutFill.relativeHeight, (s_WideRangeValue{1, 1, 540, 0, 64, 2160}));
    }

    void missingLayerIsFatal() {
        s_VrnLayer record;
        QString error = "earlier";
        QVERIFY(!parse("<Device><Layers><Other/></Layers></Device>", error, record));
        QCOMPARE(error, QString("Invalid [Layer] node."));
    }

    void layer_data() {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<s_VrnLayer>("expected");
        QTest::newRow("cut-fill limits are 64-bit, missing parts keep defaults")
            << "<Layer Type=\"1\"><CutFill><Relative Support=\"0\"><X Min=\"-5\" "
               "Max=\"4000\"/></Relative></CutFill>"
               "</Layer>"
            << fresh([](s_VrnLayer& l) {
                   l.type = 1;
                   l.cutFill.cutFill = {1, 1};
                   l.cutFill.relative = {0, 1};
                   l.cutFill.relativeX = {1, 1, 0, 0, -5, 4000};
               });
        QTest::newRow("only the first Layer counts; Enable and IsInverse take children of any name")
            << "<Layer><CutFill><Enable Value=\"1\"><A Value=\"0\"/><B Value=\"1\"/></Enable></CutFill>"
               "<IsInverse DataType=\"2\"><Enum Value=\"0\"/><Other Value=\"1\"/></IsInverse></Layer>"
               "<Layer Type=\"3\"/>"
            << fresh([](s_VrnLayer& l) {
                   l.cutFill.cutFill = {1, 1};
                   l.cutFill.enable = {1, 1, 1, 0, {{0}, {1}}};
                   l.isInverse = {1, 1, 0, 2, {{0}, {1}}};
               });
        QTest::newRow("Feather only under General, General Enable has no list, bare Opacity reads zeros")
            << "<Layer><Shadow Editable=\"0\"><Feather/><General><Enable><Enum "
               "Value=\"1\"/></Enable></General>"
               "<Window><X Max=\"64\"/></Window><Color><Opacity/></Color></Shadow></Layer>"
            << fresh([](s_VrnLayer& l) {
                   l.shadow.shadow = {1, 0};
                   l.shadow.generalEnable = {1, 1, 0, 0, {}};
                   l.shadow.window = {1, 1};
                   l.shadow.windowX = {1, 1, 0, 0, 0, 64, 1.0};
                   l.shadow.color = {1, 1};
                   l.shadow.colorOpacity = {1, 1, 0, 0, 0, 0, 1.0};
               });
    }
    void layer() {
        QFETCH(QString, layer);
        s_VrnLayer record;
        QString error;
        QVERIFY(parse("<Device><Layers>" + layer + "</Layers></Device>", error, record));
        QFETCH(s_VrnLayer, expected);
        LCD_COMPARE_RECORDS(record, expected);
    }
};

QTEST_GUILESS_MAIN(LayerFile)
#include "tst_layerfile.moc"
