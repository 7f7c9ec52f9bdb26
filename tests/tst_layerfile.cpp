// The layer file: required elements and the lenient, optional parts of one
// layer (the shipped layers are pinned by tst_lcdcfg_show's device dump).

#include "device/layerconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using Layercfg::s_VrnLayer;

namespace {

bool parse(const QString& device, QString& error, s_VrnLayer& layer) {
    return LayerConfigManager::instance()->parseDeviceLayercfg(
        test::document(("<Vrn>" + device + "</Vrn>").toUtf8()), error, layer);
}

} // namespace

class LayerFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void missingLayerIsFatal() {
        s_VrnLayer record;
        QString error = "earlier";
        QVERIFY(!parse("<Device><Layers><Other/></Layers></Device>", error, record));
        QCOMPARE(error, QString("Invalid [Layer] node."));
    }

    // What each layer changes from a fresh record: tests/data/layer/<row>.txt.
    void layer_data() {
        QTest::addColumn<QString>("layer");
        QTest::newRow("cut-fill limits are 64-bit, missing parts keep defaults")
            << "<Layer Type=\"1\"><CutFill><Relative Support=\"0\"><X Min=\"-5\" Max=\"4000\"/></Relative>"
               "</CutFill></Layer>";
        QTest::newRow("only the first Layer counts; Enable and IsInverse take children of any name")
            << "<Layer><CutFill><Enable Value=\"1\"><A Value=\"0\"/><B Value=\"1\"/></Enable></CutFill>"
               "<IsInverse DataType=\"2\"><Enum Value=\"0\"/><Other Value=\"1\"/></IsInverse></Layer>"
               "<Layer Type=\"3\"/>";
        QTest::newRow("Feather only under General, General Enable has no list, bare Opacity reads zeros")
            << "<Layer><Shadow Editable=\"0\"><Feather/><General><Enable><Enum "
               "Value=\"1\"/></Enable></General>"
               "<Window><X Max=\"64\"/></Window><Color><Opacity/></Color></Shadow></Layer>";
    }
    void layer() {
        QFETCH(QString, layer);
        s_VrnLayer record;
        QString error;
        QVERIFY(parse("<Device><Layers>" + layer + "</Layers></Device>", error, record));
        test::compareChanges("layer", s_VrnLayer{}, record);
    }
};

QTEST_GUILESS_MAIN(LayerFile)
#include "tst_layerfile.moc"
