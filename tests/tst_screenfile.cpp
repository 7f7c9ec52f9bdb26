#include "device/screenconfig.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using Screen::s_VrnScreen;

namespace {

// A screen file whose "Screen" element holds `body`.
QByteArray screenFile(const QByteArray& body, const QByteArray& rootAttributes = " version=\"1.0\"") {
    return "<Vrn" + rootAttributes + "><Device><Screens><Screen Type=\"3\">" + body +
           "</Screen></Screens></Device></Vrn>";
}
QByteArray modes(const QByteArray& content) {
    return "<DeviceModes>" + content + "</DeviceModes>";
}
QByteArray features(const QByteArray& content) {
    return "<Features>" + content + "</Features>";
}

// A device mode that is kept, and the groups a feature tree is only checked for.
const QByteArray kMode = "<DeviceMode Value=\"1\"><PVW/><Templetes/></DeviceMode>";
const QByteArray kChecked = "<ImageQuality/><FTB/><TestPattern/><SwitchEffect/><Tbar/><HDR/><Genlock/>";

bool parse(const QByteArray& xml, QString& error, s_VrnScreen& out) {
    return ScreenConfigManager::instance()->parseDeviceScreencfg(test::document(xml), error, out);
}

s_VrnScreen parseOk(const QByteArray& xml) {
    s_VrnScreen out;
    QString error;
    if (!parse(xml, error, out)) qWarning() << "unexpected failure:" << error;
    return out;
}

// One number of a parsed record, for data rows.
using Field = double (*)(const s_VrnScreen&);
#define FIELD(expr) [](const s_VrnScreen& s) { return double(expr); }

} // namespace

Q_DECLARE_METATYPE(Field)

class tst_ScreenFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fatal_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("expected");
        QTest::newRow("version 1.00 is rejected")
            << screenFile(kMode, " version=\"1.00\"")
            << "The file is not a valid configuration file of version 1.0 for device.";
        QTest::newRow("missing Device") << QByteArray("<Vrn><Screens/></Vrn>") << "Invalid [Device] node.";
        QTest::newRow("missing Screens")
            << QByteArray("<Vrn><Device><Screen/></Device></Vrn>") << "Invalid [Screens] node.";
        QTest::newRow("missing Screen")
            << QByteArray("<Vrn><Device><Screens><screen/></Screens></Device></Vrn>")
            << "Invalid [Screen] node.";
    }

    // Through the file overload; nothing is read into the record.
    void fatal() {
        QFETCH(QByteArray, xml);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        s_VrnScreen screen;
        QString error = "earlier";
        QVERIFY(!ScreenConfigManager::instance()->parseDeviceScreencfg(
            test::writeFile(dir, "29974_screen.xml", xml), error, screen));
        QCOMPARE(error, expected);
        LCD_COMPARE_RECORDS(screen, s_VrnScreen{});
    }

    void nonFatal_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QVector<int>>("modes");
        const QByteArray complete = features(kChecked);
        QTest::newRow("complete file leaves error alone")
            << modes(kMode) + complete << "earlier" << QVector<int>{1};
        QTest::newRow("missing DeviceModes goes on")
            << complete << "Invalid [DeviceModes] node." << QVector<int>{};
        QTest::newRow("mode without PVW dropped, others stay")
            << modes(kMode + "<DeviceMode Value=\"2\"><Templetes/></DeviceMode>" +
                     "<DeviceMode Value=\"3\"><PVW/><Templetes/></DeviceMode>") +
                   complete
            << "Invalid [PVW] node." << QVector<int>{1, 3};
        QTest::newRow("mode without Templetes dropped")
            << modes(kMode + "<DeviceMode Value=\"2\"><PVW/></DeviceMode>") + complete
            << "Invalid [Templetes] node." << QVector<int>{1};
        QTest::newRow("missing Features is noted last")
            << modes("<M/>") << "Invalid [Features] node." << QVector<int>{};
        QTest::newRow("Features with only Mosaic ends on Genlock")
            << features("<Mosaic/>") << "Invalid [Genlock] node." << QVector<int>{};
    }

    void nonFatal() {
        QFETCH(QByteArray, body);
        QFETCH(QString, error);
        QFETCH(QVector<int>, modes);
        s_VrnScreen screen;
        QString actual = "earlier";
        QVERIFY(parse(screenFile(body, ""), actual, screen));
        QCOMPARE(actual, error);
        QVector<int> values;
        for (const Screen::s_DeviceMode& m : screen.deviceModes)
            values << m.value;
        QCOMPARE(values, modes);
    }

    void fields_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<Field>("field");
        QTest::addColumn<double>("expected");
        auto row = [](const char* name, const QByteArray& body, Field field, double expected) {
            QTest::newRow(name) << body << field << expected;
        };
        auto mode = [](const QByteArray& in) {
            return modes("<M><PVW/><Templetes>" + in + "</Templetes></M>");
        };
        auto layer = [](const QByteArray& in) {
            return modes("<M><PVW/><Templetes/><LayerTypes><T>" + in + "</T></LayerTypes></M>");
        };
        auto output = [](const QByteArray& in) {
            return features("<Mosaic><RefOutputPara>" + in + "</RefOutputPara></Mosaic>");
        };
        row("PVW without attributes: softImp 1", mode(""), FIELD(s.deviceModes[0].pvw.softImp), 1);
        row("Templetes without Value: 1", mode(""), FIELD(s.deviceModes[0].templetesValue), 1);
        row("LayerCount without attributes: valid 1", layer("<LayerCount/>"),
            FIELD(s.deviceModes[0].layerTypes[0].layerCount.valid), 1);
        row("absent Support on Screen stores 0", "", FIELD(s.support), 0);
        row("Refresh without Max stores 0", output("<Timing><Refresh/></Timing>"),
            FIELD(s.features.mosaic.refOutputPara.timing.refresh.max), 0);
        row("Feather Enable keeps no values", output("<Feather><Enable><E Value=\"1\"/></Enable></Feather>"),
            FIELD(s.features.mosaic.refOutputPara.feather.enable.values.size()), 0);
        row("NameGB2312 without General is not read", features("<NameGB2312 Max=\"16\"/>"),
            FIELD(s.features.general.nameGB2312.max), 255);
    }

    void fields() {
        QFETCH(QByteArray, body);
        QFETCH(Field, field);
        QFETCH(double, expected);
        QCOMPARE(field(parseOk(screenFile(body))), expected);
    }

    // Children are taken whatever their tag; comments and text between them are skipped:
    // tests/data/screen/anytagchildren.txt.
    void anyTagChildren() {
        const s_VrnScreen s = parseOk(screenFile(
            modes(
                "<A><PVW/><Templetes><X/><!-- c --><Y><Layouts>text<P/><Q><C/><D X=\"8\"/></Q></Layouts></Y>"
                "</Templetes><LayerTypes><L/>text<M><Unit><U Value=\"5\"/><!-- c --><V/></Unit></M>"
                "</LayerTypes></A>") +
            features("<Mosaic><Type><Enum Value=\"3\"/><Option/><X Value=\"9\"/></Type></Mosaic>")));
        test::compareChanges("screen", s_VrnScreen{}, s);
    }

    // What a file leaves out keeps the caller's content, except the mosaic
    // group and the device-mode list, which are stored whole.
    void fillsInPlace() {
        s_VrnScreen screen;
        screen.deviceModes.resize(2);
        screen.features.freeze.value = 5;
        screen.features.mosaic.type.value = 5;
        screen.features.testPattern.gridLineWidth.step = 4.0;
        QString error;
        QVERIFY(parse(screenFile(features("<Mosaic/><TestPattern><GridLineWidth/></TestPattern>")), error,
                      screen));
        QCOMPARE(screen.deviceModes.size(), size_t(2));
        QCOMPARE(screen.features.freeze.value, 5);
        QCOMPARE(screen.features.mosaic.type.value, 0);
        QCOMPARE(screen.features.testPattern.gridLineWidth.step, 4.0);
        QVERIFY(parse(screenFile(modes("")), error, screen));
        QVERIFY(screen.deviceModes.empty());
    }
};

QTEST_GUILESS_MAIN(tst_ScreenFile)
#include "tst_screenfile.moc"
