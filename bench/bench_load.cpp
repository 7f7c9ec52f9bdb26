// Load times of the shipped configuration, component by component, and the
// cost of the scan for the structural limits that runs before every DOM parse.
//
//   bench_load <config directory> [runs]
//   bench_load --tree <config directory> <S> <output directory>
//   bench_load --once <device|card|connector> <tree>
//
// --tree writes the tree at scale S that the first table generates; --once
// loads one component of such a tree once, in `loadOnce`, for instruction
// counts: valgrind --tool=callgrind --toggle-collect='*loadOnce*'.
//
// First, the scaled comparison: a tree S times the shipped one (S device
// models, S copies of every card file and of every connector file, ids and
// values varied) is generated for S = 1, 10 and 100; each component's load is
// measured against its floor (opening and parsing with QDom, namespace
// processing on, exactly the files that load reads), interleaved, and the
// median of the ratios of each load to the floor that follows it is printed,
// then the growth of the load from 10 to 100 (median over pairs of loads
// taken one after the other). "parse" is the loader's own
// reading and parsing of the same files and "walk" what the load costs
// beyond it, both as fractions of the floor.
//
// Each figure is the median over `runs` (default 7) runs of the time per load,
// in processor time of the measuring thread: the wall clock would also count
// the time the thread waited while other work had the processors. "ran" is
// the median share of the wall time the thread did run; well below 1, the
// machine was busy and the figures are less sure (caches, frequency).
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
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <time.h>
#include <vector>

using namespace LCD::ConfigModel;

namespace {

int g_runs = 7;
QString g_config;

// Milliseconds of the time this thread ran, and of the wall clock, since
// start(): on a machine shared with other work, the wall clock also counts
// the time the thread waited for a processor, which says nothing about the
// code measured.
class Stopwatch {
public:
    Stopwatch() { start(); }
    void start() {
        m_cpu = cpuNs();
        m_wall.start();
    }
    double cpuMs() const { return (cpuNs() - m_cpu) / 1e6; }
    double wallMs() const { return m_wall.nsecsElapsed() / 1e6; }

private:
    static qint64 cpuNs() {
        timespec t;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return qint64(t.tv_sec) * 1000000000 + t.tv_nsec;
    }
    qint64 m_cpu = 0;
    QElapsedTimer m_wall;
};

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
        const Stopwatch watch;
        for (int i = 0; i < iterations; ++i) {
            if (!load()) {
                std::fprintf(stderr, "a load failed; is %s the shipped configuration?\n",
                             qPrintable(g_config));
                std::exit(1);
            }
        }
        perLoad.push_back(watch.cpuMs() / iterations);
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

// ---- the scaled tree ---------------------------------------------------------

QByteArray readAll(const QString& file) {
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(file));
        std::exit(1);
    }
    return f.readAll();
}

void writeAll(const QString& file, const QByteArray& data) {
    QDir().mkpath(QFileInfo(file).absolutePath());
    QFile f(file);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(data) != data.size()) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
        std::exit(1);
    }
}

// Copy `copy` of a shipped file: the attribute `idAttr` offset by `idStep`
// times the copy, and every "Value" attribute of one digit varied within its
// digit range, so that no two copies are alike.
QByteArray varied(QByteArray data, int copy, const char* idAttr, int idStep) {
    if (copy == 0) return data;
    const QByteArray key = QByteArray(idAttr) + "=\"";
    for (int at = data.indexOf(key); at >= 0; at = data.indexOf(key, at + 1)) {
        const int start = at + key.size(), end = data.indexOf('"', start);
        bool ok = false;
        const int id = data.mid(start, end - start).toInt(&ok);
        if (ok) data.replace(start, end - start, QByteArray::number(id + copy * idStep));
    }
    const QByteArray value = "Value=\"";
    for (int at = data.indexOf(value); at >= 0; at = data.indexOf(value, at + 1)) {
        const int start = at + value.size();
        if (data.size() > start + 1 && data[start + 1] == '"' && data[start] >= '0' && data[start] <= '9')
            data[start] = char('0' + (data[start] - '0' + copy) % 10);
    }
    return data;
}

// The shipped tree `from` at scale `scale` under `to`: model directories
// 29974, 29975, ... (the first is the shipped model), card files with model
// ids offset by 10000 per copy, connector files with their type offset by
// 100 per copy; the other files once.
void generateTree(const QString& from, const QString& to, int scale) {
    QDirIterator it(from, {QStringLiteral("*.xml")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString relative = QDir(from).relativeFilePath(file);
        const QByteArray data = readAll(file);
        for (int copy = 0; copy < scale; ++copy) {
            if (relative.startsWith(QLatin1String("device/29974/"))) {
                const QString name = relative.mid(int(strlen("device/29974/")));
                writeAll(to + QStringLiteral("/device/%1/").arg(29974 + copy) + name,
                         varied(data, copy, "ModuleId", 1));
            } else if (relative.startsWith(QLatin1String("subcard/"))) {
                const QFileInfo info(relative);
                writeAll(to + QLatin1Char('/') + info.path() + QStringLiteral("/c%1_").arg(copy) +
                             info.fileName(),
                         varied(data, copy, "ModelId", 10000));
            } else if (relative.startsWith(QLatin1String("connector/connector_"))) {
                writeAll(to + QStringLiteral("/connector/c%1_").arg(copy) + QFileInfo(relative).fileName(),
                         varied(data, copy, "Type", 100));
            } else if (copy == 0) {
                writeAll(to + QLatin1Char('/') + relative, data);
            }
        }
    }
}

// The files a component reads: every "*.xml" of `directory` (and of its
// direct sub-directories when `subdirs`).
QStringList xmlFiles(const QString& directory, bool subdirs) {
    QStringList out;
    QDirIterator it(directory, {QStringLiteral("*.xml")}, QDir::Files,
                    subdirs ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
    while (it.hasNext())
        out << it.next();
    return out;
}

// The floor: open, read and parse every file of `list` once, as the loader
// does before its walk.
bool parseFloor(const QStringList& list) {
    for (const QString& file : list) {
        QFile f(file);
        if (!f.open(QIODevice::ReadOnly)) return false;
        QDomDocument doc;
        if (!doc.setContent(f.readAll(), true)) return false;
    }
    return true;
}

// The loader's own document path on the same files (read, limits scan,
// parse, no walk): what the load costs before its walk.
bool parseOwn(const QStringList& list) {
    const Loader loader{kDeviceFile, nullptr, LCD_LOG_SITE};
    QDomDocument doc; // one for every file, as the directory scans pass it
    for (const QString& file : list) {
        QString error;
        if (!parseDocumentFile(file, loader, doc, error)) return false;
    }
    return true;
}

double median(std::vector<double> v) {
    std::nth_element(v.begin(), v.begin() + v.size() / 2, v.end());
    return v[v.size() / 2];
}

template <class Manager> std::shared_ptr<void> loaded(const QString& path) {
    auto manager = std::make_shared<Manager>();
    QString error;
    return manager->readConfig(path, error) ? manager : nullptr;
}

void benchScaled() {
    struct Component {
        const char* name;
        // Loads into a fresh component and hands it back (null when the load
        // failed), so that its records are freed after the time is taken.
        std::function<std::shared_ptr<void>(const QString& root)> load;
        std::function<QStringList(const QString& root)> files;
    };
    const std::vector<Component> components = {
        {"device registry",
         [](const QString& root) { return loaded<DeviceTessanConfigManager>(root + "/device"); },
         [](const QString& root) { return xmlFiles(root + "/device", true); }},
        {"card catalogue",
         [](const QString& root) { return loaded<SubcardConfigManager>(root + "/subcard"); },
         [](const QString& root) { return xmlFiles(root + "/subcard", true); }},
        {"connector catalogue",
         [](const QString& root) { return loaded<ConnectorConfigManager>(root + "/connector"); },
         [](const QString& root) { return xmlFiles(root + "/connector", false); }},
    };
    const int scales[] = {1, 10, 100};
    QTemporaryDir trees[std::size(scales)]; // kept for the growth below

    std::printf("%-20s %5s %7s %11s %11s %7s %7s %7s %5s\n", "component", "S", "files", "load ms", "floor ms",
                "ratio", "parse", "walk", "ran");
    for (size_t i = 0; i < std::size(scales); ++i) {
        const int scale = scales[i];
        const QTemporaryDir& dir = trees[i];
        generateTree(g_config, dir.path(), scale);
        const int runs = scale == 100 ? std::max(3, g_runs / 2) : g_runs;
        for (size_t c = 0; c < components.size(); ++c) {
            const Component& component = components[c];
            const QStringList list = component.files(dir.path());
            std::vector<double> load, floor, ratio, parse, walk, ran;
            component.load(dir.path());            // warm the file cache
            for (int run = 0; run < runs; ++run) { // interleaved: load, floor, load, floor, ...
                Stopwatch watch;
                std::shared_ptr<void> records = component.load(dir.path());
                load.push_back(watch.cpuMs());
                ran.push_back(load.back() / watch.wallMs());
                if (!records) std::exit(1);
                records.reset();
                watch.start();
                if (!parseFloor(list)) std::exit(1);
                floor.push_back(watch.cpuMs());
                ran.push_back(floor.back() / watch.wallMs());
                ratio.push_back(load.back() / floor.back());
                watch.start();
                if (!parseOwn(list)) std::exit(1);
                parse.push_back(watch.cpuMs() / floor.back());
                walk.push_back(ratio.back() - parse.back());
            }
            std::printf("%-20s %5d %7d %11.2f %11.2f %7.3f %7.3f %7.3f %5.2f\n", component.name, scale,
                        int(list.size()), median(load), median(floor), median(ratio), median(parse),
                        median(walk), median(ran));
        }
    }
    // The growth from pairs of loads taken one right after the other, so that
    // a machine that gets faster or slower between the tables above does not
    // show as growth.
    std::printf("\ngrowth of the load from S = 10 to S = 100:");
    for (const Component& component : components) {
        std::vector<double> growth;
        for (int run = 0; run < std::max(3, g_runs / 2); ++run) {
            Stopwatch watch;
            std::shared_ptr<void> small = component.load(trees[1].path());
            const double ten = watch.cpuMs();
            watch.start();
            std::shared_ptr<void> large = component.load(trees[2].path());
            growth.push_back(watch.cpuMs() / ten);
        }
        std::printf("  %s %.2fx", component.name, median(growth));
    }
    std::printf("\n\n");
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

void benchLimits() {
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
    const QByteArray synthetic = syntheticDocument(3 << 19); // in UTF-16 too, below the size limit
    QByteArray attributes = "<e";
    for (int i = 0; i < kMaxElementAttributes; ++i)
        attributes += " a" + QByteArray::number(i) + "=\"\"";
    attributes += "/>\n";
    const QByteArray open = "<LCD version=\"1.0\"><LcdKeys>", close = "</LcdKeys></LCD>";
    // UTF-16 in the machine's byte order after a byte-order mark (Qt 6 has no
    // QTextCodec in Core).
    const QString text16 = QChar(QChar::ByteOrderMark) + QString::fromUtf8(synthetic).replace(
                                                             QLatin1String("UTF-8"), QLatin1String("UTF-16"));
    const QByteArray synthetic16(reinterpret_cast<const char*>(text16.utf16()), int(text16.size()) * 2);

    struct Row {
        QString name;
        QByteArray data;
        int iterations;
    };
    const std::vector<Row> rows = {
        {QDir(g_config).relativeFilePath(largest), file.readAll(), 50},
        {QStringLiteral("synthetic, UTF-8"), synthetic, 1},
        {QStringLiteral("synthetic, UTF-16"), synthetic16, 1},
        {QStringLiteral("most attributes on every element"),
         open + attributes.repeated(int((kMaxDocumentSize - 64) / attributes.size())) + close, 1},
        {QStringLiteral("most elements"),
         open + QByteArray("<e/>").repeated(kMaxDocumentElements - 2) + close, 1},
    };

    std::printf("%-36s %9s %11s %11s %7s\n", "document", "KiB", "check ms", "DOM ms", "check");
    for (const Row& row : rows) {
        const double check =
            medianMs(row.iterations, [&] { return checkLimits(row.data, DocumentLimits(), nullptr); });
        const double parse = medianMs(row.iterations, [&] {
            QDomDocument doc;
            return doc.setContent(row.data, true);
        });
        std::printf("%-36s %9d %11.3f %11.3f %6.1f%%\n", qPrintable(row.name), int(row.data.size() / 1024),
                    check, parse, 100 * check / parse);
    }
}

// One load of a component, its records freed inside (--once).
Q_NEVER_INLINE bool loadOnce(const QString& component, const QString& root) {
    if (component == QLatin1String("device"))
        return loaded<DeviceTessanConfigManager>(root + "/device") != nullptr;
    if (component == QLatin1String("card")) return loaded<SubcardConfigManager>(root + "/subcard") != nullptr;
    return loaded<ConnectorConfigManager>(root + "/connector") != nullptr;
}

} // namespace

int main(int argc, char** argv) {
    const QByteArray mode = argc > 1 ? QByteArray(argv[1]) : QByteArray();
    if (mode == "--tree" && argc == 5) {
        generateTree(QDir(QString::fromLocal8Bit(argv[2])).absolutePath(), QString::fromLocal8Bit(argv[4]),
                     std::atoi(argv[3]));
        return 0;
    }
    if (mode == "--once" && argc == 4) {
        qInstallMessageHandler(silence);
        return loadOnce(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3])) ? 0 : 1;
    }
    if (argc < 2 || !QDir(QString::fromLocal8Bit(argv[1])).exists()) {
        std::fprintf(stderr, "usage: %s <config directory> [runs]\n", argv[0]);
        return 2;
    }
    g_config = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    if (argc > 2) g_runs = std::max(1, std::atoi(argv[2]));
    qInstallMessageHandler(silence);

    std::printf("median of %d runs, configuration %s\n\n", g_runs, qPrintable(g_config));
    benchScaled();
    if (qEnvironmentVariableIsSet("LCD_BENCH_SCALED_ONLY")) return 0;
    benchComponents();
    benchLimits();
    return 0;
}
