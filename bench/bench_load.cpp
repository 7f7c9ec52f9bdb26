// Load times of the shipped configuration, component by component, and the
// cost of the nesting check that runs before every DOM parse.
//
//   bench_load <config directory> [runs]
//
// Each figure is the median over `runs` (default 7) runs of the time per load.
// Diagnostics are discarded while measuring, so debug logging is not counted.

#include "catalogue/connectorconfig.h"
#include "catalogue/subcardconfig.h"
#include "common/document.h"
#include "device/crosscardconfig.h"
#include "device/deviceconfig.h"
#include "device/devicefearureconfig.h"
#include "device/layerconfig.h"
#include "device/screenconfig.h"
#include "device/slotconfig.h"
#include "hdr/hdrconfig.h"
#include "ui/keycheckconfig.h"
#include "ui/menuconfig.h"
#include "ui/printkeynoconfig.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QTextCodec>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

using namespace LCD::ConfigModel;

namespace {

int g_runs = 7;
QString g_config;

void silence(QtMsgType, const QMessageLogContext&, const QString&) {}

QString path(const char* relative) {
    return g_config + QLatin1Char('/') + QLatin1String(relative);
}

QStringList files(const char* directory, const char* pattern) {
    QStringList out;
    for (const QString& name :
         QDir(path(directory)).entryList({QLatin1String(pattern)}, QDir::Files, QDir::Name))
        out << path(directory) + QLatin1Char('/') + name;
    return out;
}

// Median over the runs of the milliseconds one call of `load` takes, with
// `iterations` calls per run. A load that fails ends the program: a figure
// for a rejected file would measure the wrong thing.
double medianMs(int iterations, const std::function<bool()>& load) {
    std::vector<double> perLoad;
    for (int run = 0; run < g_runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < iterations; ++i) {
            if (!load()) {
                std::fprintf(stderr, "a load failed; is %s the shipped configuration?\n",
                             qPrintable(g_config));
                std::exit(1);
            }
        }
        perLoad.push_back(timer.nsecsElapsed() / 1e6 / iterations);
    }
    std::nth_element(perLoad.begin(), perLoad.begin() + perLoad.size() / 2, perLoad.end());
    return perLoad[perLoad.size() / 2];
}

// Every file in `list` through a per-device parser, each into a fresh record.
template <class Manager, class Record>
bool parseAll(const QStringList& list, bool (Manager::*parse)(const QString&, QString&, Record&)) {
    for (const QString& file : list) {
        Record record;
        QString error;
        if (!(Manager::instance()->*parse)(file, error, record)) return false;
    }
    return true;
}

void benchComponents() {
    const QStringList feature = files("device/29974", "*_feature.xml");
    const QStringList slot = files("device/29974", "*_slot.xml");
    const QStringList crossCard = files("device/29974", "*_crosscard.xml");
    const QStringList layer = files("device/29974", "*_layer_*.xml");
    const QStringList screen = files("device/29974", "*_screen_*.xml");

    struct Row {
        const char* name;
        int iterations;
        std::function<bool()> load;
    };
    const std::vector<Row> rows = {
        {"device registry", 20,
         [] {
             QString error;
             return DeviceTessanConfigManager().readConfig(path("device"), error);
         }},
        {"feature file", 50,
         [&] { return parseAll(feature, &DeviceFeatureConfigManager::parseDeviceFeaturecfg); }},
        {"slot file", 50, [&] { return parseAll(slot, &SlotConfigManager::parseDeviceSlotcfg); }},
        {"cross-card file", 50,
         [&] { return parseAll(crossCard, &CrosscardConfigManager::parseDeviceCrosscardcfg); }},
        {"layer files", 50, [&] { return parseAll(layer, &LayerConfigManager::parseDeviceLayercfg); }},
        {"screen files", 20, [&] { return parseAll(screen, &ScreenConfigManager::parseDeviceScreencfg); }},
        {"card catalogue", 20,
         [] {
             QString error;
             return SubcardConfigManager().readConfig(path("subcard"), error);
         }},
        {"connector catalogue", 20,
         [] {
             QString error;
             return ConnectorConfigManager().readConfig(path("connector"), error);
         }},
        {"HDR option files", 50,
         [] {
             HDRConfig config;
             HDROptionTable input, output;
             QString error;
             return config.readConfig(path("func/hdr/lcdhdrinputconfig.xml"), error, input) &&
                    config.readConfig(path("func/hdr/lcdhdroutputconfig.xml"), error, output);
         }},
        {"menu files", 50,
         [] {
             MenuConfigManager menu;
             QString error;
             return menu.readMenuFCItems(path("menu/menufcitems.xml"), error) &&
                    menu.readMenuItems(path("menu/menuitems.xml"), error);
         }},
        {"key-check list", 100,
         [] {
             QString error;
             return KeyCheckConfig().readConfig(path("ui/checklist.xml"), error);
         }},
        {"print key numbers", 100,
         [] {
             QString error;
             return PrintKeyNoConfig().readConfig(path("ui/printkeynoconfig.xml"), error);
         }},
    };

    std::printf("%-22s %10s\n", "component", "ms/load");
    double total = 0;
    for (const Row& row : rows) {
        const double ms = medianMs(row.iterations, row.load);
        total += ms;
        std::printf("%-22s %10.3f\n", row.name, ms);
    }
    std::printf("%-22s %10.3f\n\n", "all of the above", total);
}

// A realistic document of at least `bytes`: card descriptions with connectors,
// nine levels deep.
QByteArray syntheticDocument(int bytes) {
    QByteArray doc = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Vrn version=\"1.0\"><Device><Subcards>\n";
    for (int card = 0; doc.size() < bytes; ++card) {
        doc +=
            "<Subcard ModelId=\"" + QByteArray::number(2100 + card % 100) +
            "\" CardMode=\"1\">"
            "<Connectors><DeviceMode Value=\"1\"><Capacitys Value=\"0\"><Capacity Name=\"4K\" Value=\"0\">";
        for (int position = 1; position <= 8; ++position)
            doc += "<Connector Enable=\"1\" Position=\"" + QByteArray::number(position) +
                   "\" Visible=\"1\" Type=\"6\"><DynamicRange Support=\"1\" Editable=\"1\" Value=\"0\"/>"
                   "</Connector>\n";
        doc += "</Capacity></Capacitys></DeviceMode></Connectors></Subcard>\n";
    }
    return doc + "</Subcards></Device></Vrn>\n";
}

void benchNesting() {
    QString largest;
    qint64 largestSize = -1;
    for (QDirIterator it(g_config, {QStringLiteral("*.xml")}, QDir::Files, QDirIterator::Subdirectories);
         it.hasNext();) {
        it.next();
        if (it.fileInfo().size() > largestSize) {
            largestSize = it.fileInfo().size();
            largest = it.filePath();
        }
    }
    QFile file(largest);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(largest));
        std::exit(1);
    }
    const QByteArray synthetic = syntheticDocument(5 << 20);
    const QByteArray synthetic16 = QTextCodec::codecForName("UTF-16")->fromUnicode(
        QString::fromUtf8(synthetic).replace(QLatin1String("UTF-8"), QLatin1String("UTF-16")));

    struct Row {
        QString name;
        QByteArray data;
        int iterations;
    };
    const std::vector<Row> rows = {
        {QDir(g_config).relativeFilePath(largest), file.readAll(), 50},
        {QStringLiteral("synthetic, UTF-8"), synthetic, 1},
        {QStringLiteral("synthetic, UTF-16"), synthetic16, 1},
    };

    std::printf("%-36s %9s %11s %11s %7s\n", "document", "KiB", "check ms", "DOM ms", "check");
    for (const Row& row : rows) {
        const double check =
            medianMs(row.iterations, [&] { return checkNesting(row.data, kMaxDocumentDepth, nullptr); });
        const double parse = medianMs(row.iterations, [&] {
            QDomDocument doc;
            return doc.setContent(row.data, true);
        });
        std::printf("%-36s %9d %11.3f %11.3f %6.1f%%\n", qPrintable(row.name), int(row.data.size() / 1024),
                    check, parse, 100 * check / parse);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || !QDir(QString::fromLocal8Bit(argv[1])).exists()) {
        std::fprintf(stderr, "usage: %s <config directory> [runs]\n", argv[0]);
        return 2;
    }
    g_config = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    if (argc > 2) g_runs = std::max(1, std::atoi(argv[2]));
    qInstallMessageHandler(silence);

    std::printf("median of %d runs, configuration %s\n\n", g_runs, qPrintable(g_config));
    benchComponents();
    benchNesting();
    return 0;
}
