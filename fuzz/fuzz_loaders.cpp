// One fuzz target for every description-file reader of the library. The first
// input byte picks the reader (modulo the number of readers), the rest is the
// document; with LCD_FUZZ_READER=N in the environment every input goes to
// reader N (its first byte still skipped), so that one run covers one kind.
// The per-device parsers get the document through parseDocumentData and
// their by-document overload, as the device registry feeds them; the
// path-based components read it from a temporary file. After a successful
// load a few cheap queries walk what was loaded.
//
// Built with libFuzzer as fuzz_loaders (cmake -DLCD_FUZZ=ON, clang) and, in
// every build, as fuzz_replay, which runs the corpus and the regressions.

#include "catalogue/connectorconfig.h"
#include "catalogue/subcardconfig.h"
#include "common/document.h"
#include "device/crosscardconfig.h"
#include "device/devicefearureconfig.h"
#include "device/layerconfig.h"
#include "device/screenconfig.h"
#include "device/slotconfig.h"
#include "hdr/hdrconfig.h"
#include "ui/keycheckconfig.h"
#include "ui/menuconfig.h"
#include "ui/printkeynoconfig.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace LCD::ConfigModel;

namespace {

// The selector byte of each reader; fuzz/make_seeds.sh uses the same numbers.
enum class Reader : uint8_t {
    Feature,
    Slot,
    CrossCard,
    Layer,
    Screen,
    Subcard,   // directory reader: the input is the only file of the directory
    Connector, // directory reader: the input after the shipped resolution file
    Menu,      // function items, then the menu tree, from the same file
    Hdr,
    KeyCheck,
    PrintKeyNo,
    Count
};

// Queries walk at most this many loaded records, so a huge input stays linear.
constexpr size_t kQueried = 8;

volatile size_t g_sink; // keeps query results alive

void keep(size_t value) {
    g_sink = g_sink + value;
}

void silence(QtMsgType, const QMessageLogContext&, const QString&) {}

// The reader fixed by LCD_FUZZ_READER, or -1 when the first byte chooses.
int fixedReader() {
    bool ok = false;
    const int n = qEnvironmentVariableIntValue("LCD_FUZZ_READER", &ok);
    return ok && n >= 0 && n < static_cast<int>(Reader::Count) ? n : -1;
}

// Where the path-based readers find the input: one file, a card directory
// that holds nothing but a copy of it, and a connector directory where it
// follows the shipped resolution file (loaded first, "0-" sorts before
// "input"), so that the queries combining the two have something to combine.
struct Workspace {
    QTemporaryDir root;
    QString file = root.filePath(QStringLiteral("input.xml"));
    QString cards = root.filePath(QStringLiteral("cards"));
    QString connectors = root.filePath(QStringLiteral("connectors"));

    Workspace() {
        QDir().mkpath(cards);
        QDir().mkpath(connectors);
        QFile::copy(QStringLiteral(LCD_SHIPPED_RESOLUTIONS),
                    connectors + QStringLiteral("/0-resolutions.xml"));
    }

    void write(const QString& path, const QByteArray& bytes) const {
        QFile out(path);
        if (out.open(QIODevice::WriteOnly | QIODevice::Truncate)) out.write(bytes);
    }
};

// Element depth of a DOM tree, walked without recursion.
int depthOf(const QDomDocument& doc) {
    int deepest = 0;
    int depth = 1;
    QDomElement e = doc.documentElement();
    while (!e.isNull()) {
        deepest = std::max(deepest, depth);
        if (!e.firstChildElement().isNull()) {
            e = e.firstChildElement();
            ++depth;
            continue;
        }
        while (depth > 0 && e.nextSiblingElement().isNull()) {
            e = e.parentNode().toElement();
            --depth;
        }
        if (depth == 0) break;
        e = e.nextSiblingElement();
    }
    return deepest;
}

// The attributes of an element as sorted "namespace name=value" texts: the
// classic builder keeps a repeated attribute twice.
QStringList attributesOf(const QDomNode& e) {
    QStringList out;
    const QDomNamedNodeMap map = e.attributes();
    for (int i = 0; i < map.count(); ++i) {
        const QDomNode a = map.item(i);
        out << a.namespaceURI() + QLatin1Char(' ') + a.nodeName() + QLatin1Char('=') + a.nodeValue();
    }
    out.sort();
    return out;
}

// Whether two documents hold the same tree: node kinds, names, namespaces,
// values, attributes and element lines. Columns may differ: the classic
// builder puts an empty element's column on its '/', the other on the '>'.
bool sameTree(const QDomNode& a, const QDomNode& b) {
    if (a.nodeType() != b.nodeType() || a.nodeName() != b.nodeName() || a.nodeValue() != b.nodeValue() ||
        a.namespaceURI() != b.namespaceURI() || a.prefix() != b.prefix() || a.localName() != b.localName())
        return false;
    if (a.isElement() && (a.lineNumber() != b.lineNumber() || attributesOf(a) != attributesOf(b)))
        return false;
    QDomNode c = a.firstChild();
    QDomNode d = b.firstChild();
    for (; !c.isNull() && !d.isNull(); c = c.nextSibling(), d = d.nextSibling())
        if (!sameTree(c, d)) return false;
    return c.isNull() && d.isNull();
}

// The loader's parse must give the classic QDom builder's verdict, the same
// error text and, on success, the same tree, whichever builder it used.
void compareWithClassic(const QByteArray& bytes, bool ok, const QDomDocument& doc, const QString& error) {
    if (!checkNesting(bytes, kMaxDocumentDepth, nullptr)) return;
    QDomDocument classic;
    QString message;
    int line = 0;
    int column = 0;
    const bool classicOk = classic.setContent(bytes, true, &message, &line, &column);
    const QString expected = QStringLiteral("Parse error at line %1, column %2:\n%3")
                                 .arg(QString::number(line), QString::number(column), message);
    if (ok != classicOk || (!ok && error != expected) || (ok && !sameTree(doc, classic))) {
        std::fprintf(stderr, "the loader's parse differs from the classic builder: %d/%d [%s] [%s]\n", ok,
                     classicOk, qPrintable(error), qPrintable(expected));
        std::abort();
    }
}

// Parses as the device registry does, then walks the document with `parse`.
// The nesting check must see every level the parser builds: if it passes the
// document at one level less than the parsed tree has, it can be bypassed,
// and a deep enough document overflows the stack. Checking that at every
// depth lets small inputs expose what only a huge one would crash on.
template <class Manager, class Record>
void parseDevice(const QByteArray& bytes, const char* trContext,
                 bool (Manager::*parse)(const QDomDocument&, QString&, Record&)) {
    QDomDocument doc;
    QString error;
    Record record;
    const bool ok = parseDocumentData(bytes, Loader{kDeviceFile, trContext, LCD_LOG_SITE}, doc, error);
    compareWithClassic(bytes, ok, doc, error);
    if (!ok) return;
    error.clear();
    const int depth = depthOf(doc);
    if (checkNesting(bytes, depth - 1, nullptr)) {
        std::fprintf(stderr, "nesting check bypassed: it passes %d levels, the parsed tree has %d\n",
                     depth - 1, depth);
        std::abort();
    }
    if ((Manager::instance()->*parse)(doc, error, record)) keep(record == record);
}

void querySubcards(const QString& directory) {
    SubcardConfigManager m;
    QString error;
    if (!m.readConfig(directory, error)) return;
    const std::vector<Subcard::s_Subcard>& cards = m.subcardConfig();
    for (size_t i = 0; i < std::min(cards.size(), kQueried); ++i) {
        const Subcard::s_Subcard& card = cards[i];
        const int id = card.modelId;
        const int position = card.connectors.connectors.empty() ? 1 : card.connectors.connectors[0].position;
        const int group = card.capacity.groups.empty() ? 0 : card.capacity.groups[0].value;
        int capacity = 0;
        int deviceMode = 1;
        if (!card.capacityGroups.empty()) {
            capacity = card.capacityGroups[0].value;
            if (!card.capacityGroups[0].deviceModes.empty())
                deviceMode = card.capacityGroups[0].deviceModes[0].value;
        }
        keep(m.findConnector(id, position) != nullptr);
        keep(m.findConnectorLocatedGroup(id, position) != nullptr);
        keep(m.findConnectorByGroupId(id, group).size());
        keep(m.findSubcardModeData(id, capacity, deviceMode).connectors.size());
        keep(m.findConnectorCopyData(id, capacity, deviceMode, position).size());
        keep(static_cast<size_t>(m.findCardMode(id)));
        keep(m.findConnectorDeviceModeCapacity(id, capacity, deviceMode).connectors.size());
        keep(static_cast<size_t>(
            m.findConnectorDeviceModeCapacityDynamicRangeSupport(id, capacity, deviceMode, position)));
        keep(m.findConnectorTypesData(id).size());
        keep(m.isAssociationSubcard(id, id));
    }
}

void queryConnectors(const QString& directory) {
    ConnectorConfigManager m;
    QString error;
    if (!m.readConfig(directory, error)) return;
    for (const Connector::s_VrnConnector& file : m.connectorFiles()) {
        for (size_t i = 0; i < std::min(file.connectors.size(), kQueried); ++i) {
            const Connector::s_ConnectorCfg& c = file.connectors[i];
            keep(m.findHDCPInfo(c.type) != nullptr);
            keep(m.findEDIDInfo(c.type) != nullptr);
            keep(m.findDynamicRangeInfo(c.type) != nullptr);
            keep(m.findColorDepthsInfo(c.type) != nullptr);
            keep(m.findHDRInfo(c.type) != nullptr);
            keep(m.findResoluCapacityMode(c.type) != nullptr);
            keep(m.findColorSpacesInfo(c.type) != nullptr);
            keep(m.findConnectorHDCP(c.type).interfaces.size());
            for (const Connector::s_PreSetTimingInterface& t : c.presetTiming.interfaces) {
                keep(m.findConnectorRates(c.type, t.type).values.size());
                keep(static_cast<size_t>(m.findConnectorTiming(c.type, t.type).type));
            }
            for (const Connector::s_Interface& in : c.interfaces) {
                for (const Connector::s_CapacityModeInInterface& mode : in.capacityModes) {
                    keep(m.findConnectorResolutionRatios(mode.value, c.type, in.type) != nullptr);
                    keep(m.findConnectorDefaultResolution(mode.value, c.type, in.type) != nullptr);
                    keep(m.findConnectorDefaultAdvResolution(mode.value, c.type, in.type) != nullptr);
                    keep(m.findConnectorStandardResolution(mode.value, c.type, in.type).size());
                    keep(m.findConnectorResolutions(mode.value, c.type, in.type).size());
                    keep(m.findSDIConnectorResolutionRatios(mode.value, c.type, in.type).size());
                    keep(m.findSDIConnectorResolutions(1920, 1080, 0, mode.value, c.type, in.type, 0).width);
                }
            }
        }
    }
    keep(m.findInterfaceInterlacedResolu(m.resolution().typeValue).size());
}

void queryMenu(const QString& file) {
    MenuConfigManager m;
    QString error;
    const bool items = m.readMenuFCItems(file, error);
    if (!m.readMenuItems(file, error) && !items) return;
    QList<int> keys;
    for (const s_MenuItem* child : m.rootMenuItem()->children)
        keys << child->key;
    for (const s_MenuFCItem* item : m.menuFCItems())
        keys << item->key;
    for (int i = 0; i < std::min(int(keys.size()), int(kQueried)); ++i) {
        const int key = keys[i];
        keep(m.findMenuItem(key) != nullptr);
        keep(static_cast<size_t>(m.findChidItemsByKey(key).size()));
        keep(m.isSiblingItem(key, keys.front()));
        keep(static_cast<size_t>(m.findChidItemSizeByKey(key)));
        keep(m.findMenuFCItem(key) != nullptr);
    }
}

void queryHdr(const QString& file) {
    HDRConfig config;
    HDROptionTable table;
    QString error;
    if (!config.readConfig(file, error, table)) return;
    for (const auto& entry : table) {
        for (const auto& dependent : entry.second)
            keep(static_cast<size_t>(config.getKeyValue(dependent.first, dependent.second).size()));
    }
}

void queryKeyCheck(const QString& file) {
    KeyCheckConfig config;
    QString error;
    if (config.readConfig(file, error)) keep(static_cast<size_t>(config.getKeyCheckList().size()));
}

void queryPrintKeyNo(const QString& file) {
    PrintKeyNoConfig config;
    QString error;
    if (!config.readConfig(file, error)) return;
    keep(config.getPrintKeyNoCfg(29974, 2101).printKeyNos.size());
    keep(config.getAuxPrintkeyNoCfg(29974, 3101).printKeyNos.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Workspace workspace;
    static const bool quiet = (qInstallMessageHandler(silence), true);
    static const int fixed = fixedReader();
    (void)quiet;
    if (size == 0) return 0;

    const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, static_cast<int>(size - 1));
    const int reader = fixed >= 0 ? fixed : data[0] % static_cast<uint8_t>(Reader::Count);
    switch (static_cast<Reader>(reader)) {
    case Reader::Feature:
        parseDevice(bytes, "LCD::ConfigModel::DeviceFeatureConfigManager",
                    &DeviceFeatureConfigManager::parseDeviceFeaturecfg);
        break;
    case Reader::Slot:
        parseDevice(bytes, "LCD::ConfigModel::SlotConfigManager", &SlotConfigManager::parseDeviceSlotcfg);
        break;
    case Reader::CrossCard:
        parseDevice(bytes, "QObject", &CrosscardConfigManager::parseDeviceCrosscardcfg);
        break;
    case Reader::Layer:
        parseDevice(bytes, "LCD::ConfigModel::LayerConfigManager", &LayerConfigManager::parseDeviceLayercfg);
        break;
    case Reader::Screen:
        parseDevice(bytes, "LCD::ConfigModel::ScreenConfigManager",
                    &ScreenConfigManager::parseDeviceScreencfg);
        break;
    case Reader::Subcard:
        workspace.write(workspace.cards + QStringLiteral("/input.xml"), bytes);
        querySubcards(workspace.cards);
        break;
    case Reader::Connector:
        workspace.write(workspace.connectors + QStringLiteral("/input.xml"), bytes);
        queryConnectors(workspace.connectors);
        break;
    case Reader::Menu:
        workspace.write(workspace.file, bytes);
        queryMenu(workspace.file);
        break;
    case Reader::Hdr:
        workspace.write(workspace.file, bytes);
        queryHdr(workspace.file);
        break;
    case Reader::KeyCheck:
        workspace.write(workspace.file, bytes);
        queryKeyCheck(workspace.file);
        break;
    case Reader::PrintKeyNo:
        workspace.write(workspace.file, bytes);
        queryPrintKeyNo(workspace.file);
        break;
    case Reader::Count:
        break;
    }
    return 0;
}
