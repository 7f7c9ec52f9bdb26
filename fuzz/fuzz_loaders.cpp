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

// Depth, elements, most attributes on one element and names that a parse
// without namespace processing leaves with a prefix (or as a declaration) of
// a DOM tree, walked without recursion.
DocumentShape shapeOf(const QDomDocument& doc) {
    DocumentShape shape;
    int depth = 1;
    QDomElement e = doc.documentElement();
    while (!e.isNull()) {
        shape.depth = std::max(shape.depth, depth);
        ++shape.elements;
        const QDomNamedNodeMap attributes = e.attributes();
        shape.attributes = std::max(shape.attributes, attributes.count());
        shape.prefixedNames += e.tagName().contains(QLatin1Char(':'));
        for (int i = 0; i < attributes.count(); ++i) {
            const QString name = attributes.item(i).nodeName();
            shape.prefixedNames += name.contains(QLatin1Char(':')) || name == QLatin1String("xmlns");
        }
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
    return shape;
}

// The scan before the parse must see every level, element and attribute the
// parser builds: if it passes the document with any limit one below what the
// parsed tree has, it can be bypassed, and a huge enough document overflows
// the stack or takes the parser's quadratic paths. Checking that on every
// parsed input lets small inputs expose what only a huge one would show.
void checkScanSeesTree(const QByteArray& bytes, const QDomDocument& doc) {
    const DocumentShape tree = shapeOf(doc);
    const DocumentLimits limits;
    const struct {
        const char* what;
        int count;
        DocumentLimits below;
    } cases[] = {
        {"levels",
         tree.depth,
         {tree.depth - 1, limits.elements, limits.attributes, limits.namespaceDeclarations}},
        {"elements",
         tree.elements,
         {limits.depth, tree.elements - 1, limits.attributes, limits.namespaceDeclarations}},
        {"attributes",
         tree.attributes,
         {limits.depth, limits.elements, tree.attributes - 1, limits.namespaceDeclarations}},
    };
    for (const auto& c : cases) {
        if (c.count > 0 && checkLimits(bytes, c.below, nullptr)) {
            std::fprintf(stderr, "limit check bypassed: it passes %d %s, the parsed tree has %d\n",
                         c.count - 1, c.what, c.count);
            std::abort();
        }
    }
    // A document the scan finds no prefix and no declaration in is parsed
    // without namespace processing: a name it missed would show in the tree.
    DocumentShape scanned;
    if (tree.prefixedNames > 0 && checkLimits(bytes, limits, nullptr, &scanned) &&
        scanned.prefixedNames == 0 && scanned.namespaceDeclarations == 0) {
        std::fprintf(stderr, "prefix missed: the parsed tree has %d names with one\n", tree.prefixedNames);
        std::abort();
    }
}

// Parses as the device registry does, then walks the document with `parse`.
template <class Manager, class Record>
void parseDevice(const QByteArray& bytes, const char* trContext,
                 bool (Manager::*parse)(const QDomDocument&, QString&, Record&)) {
    QDomDocument doc;
    QString error;
    Record record;
    if (!parseDocumentData(bytes, Loader{kDeviceFile, trContext, LCD_LOG_SITE}, doc, error)) return;
    error.clear();
    checkScanSeesTree(bytes, doc);
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
