#include "lcdconfigmodel.h"

#include "tools/lcdcfg/records.h"

#include <QtCore/QStringList>

#include <tuple>
#include <type_traits>
#include <utility>

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

// Every record spells its field list out (LCD_RECORD_FIELDS); a record
// derived from another without fields of its own finds its base's list.
template <class T, class = void> struct Named : std::false_type {};
template <class T> struct Named<T, std::void_t<decltype(T::fieldNames())>> : std::true_type {
    static constexpr const char* names() { return T::fieldNames(); }
};

constexpr std::size_t countNames(const char* list) {
    std::size_t n = 1;
    for (; *list; ++list)
        n += *list == ',' ? 1 : 0;
    return n;
}

template <class T, class = void> struct Listed : std::false_type {};
template <class T>
struct Listed<T, std::void_t<typename T::value_type, decltype(std::declval<const T&>().begin())>>
    : std::true_type {};

template <class> constexpr bool kNoShape = false;

// "a, b, static_cast<const Base&>(*this)" -> its names; a base stays as written.
QStringList namesOf(const char* list) {
    QStringList names;
    for (const QString& name : QString::fromLatin1(list).split(QLatin1Char(',')))
        names << name.trimmed();
    return names;
}

template <class T> QJsonValue value(const T& v);

template <class R> QJsonObject object(const R& record) {
    static_assert(countNames(Named<R>::names()) == std::tuple_size_v<decltype(record.fields())>,
                  "one name per field");
    static const QStringList names = namesOf(Named<R>::names());
    QJsonObject o;
    int i = 0;
    auto add = [&](const auto& field) {
        const QString& name = names.at(i++);
        if (name.startsWith(QLatin1String("static_cast<"))) { // the base record's fields first
            const QJsonObject base = value(field).toObject();
            for (auto it = base.begin(); it != base.end(); ++it)
                o.insert(it.key(), it.value());
        } else {
            o.insert(name, value(field));
        }
    };
    std::apply([&](const auto&... fields) { (add(fields), ...); }, record.fields());
    return o;
}

template <class T> QJsonValue value(const T& v) {
    if constexpr (Named<T>::value) {
        return object(v);
    } else if constexpr (std::is_same_v<T, float>) {
        return QString::number(double(v), 'g', 7).toDouble(); // what the file said, not float noise
    } else if constexpr (std::is_floating_point_v<T>) {
        return double(v);
    } else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
        return qint64(v);
    } else if constexpr (std::is_same_v<T, std::string>) {
        return QString::fromStdString(v);
    } else if constexpr (std::is_same_v<T, QString>) {
        return v;
    } else if constexpr (std::is_same_v<T, QMap<QString, QString>>) {
        QJsonObject o;
        for (auto it = v.begin(); it != v.end(); ++it)
            o.insert(it.key(), it.value());
        return o;
    } else if constexpr (Listed<T>::value) {
        QJsonArray a;
        for (const auto& e : v)
            a.append(value(e));
        return a;
    } else {
        static_assert(kNoShape<T>, "no JSON shape for this field type");
        return {};
    }
}

// ---- parts the interfaces answer by key ----------------------------------

constexpr int kMaxConnectorType = 63;
constexpr int kMaxInterfaceType = 7;
constexpr int kMaxCapacityMode = 7;
constexpr int kMaxTimingType = 15;
constexpr int kMaxHdrValue = 255;

QJsonValue devices(const DeviceConfigInterface& registry) {
    QJsonArray models;
    for (const Devicecfg::s_Device& device : registry.DeviceConfigs())
        models.append(value(device));
    return QJsonObject{{QStringLiteral("currentModelId"), qint64(registry.findDeviceModelId())},
                       {QStringLiteral("models"), models}};
}

QJsonValue cards(const SubcardConfigInterface& catalogue) {
    return value(catalogue.subcardConfig());
}

// What one interface of a connector type offers in one capacity mode; Null
// when the connector has no such entry.
QJsonValue connectorMode(const ConnectorConfigInterface& c, int type, int interfaceType, int mode) {
    const Connector::s_ConnectorResolutionRatios* ratios =
        c.findConnectorResolutionRatios(mode, type, interfaceType);
    const auto listed = c.findSDIConnectorResolutionRatios(mode, type, interfaceType);
    if (!ratios && listed.empty()) return QJsonValue();
    QJsonObject o{{QStringLiteral("value"), mode}, {QStringLiteral("listedResolutions"), value(listed)}};
    if (ratios) {
        o.insert(QStringLiteral("resolutionRatios"), value(*ratios));
        if (const auto* adv = c.findConnectorDefaultAdvResolution(mode, type, interfaceType))
            o.insert(QStringLiteral("advResolutionRatio"), value(*adv));
        o.insert(QStringLiteral("standardResolutions"),
                 value(c.findConnectorStandardResolution(mode, type, interfaceType)));
    }
    return o;
}

QJsonValue connectorType(const ConnectorConfigInterface& c, int type) {
    QJsonObject o{{QStringLiteral("type"), type}};
    auto put = [&](const char* name, const auto* record) {
        if (record) o.insert(QLatin1String(name), value(*record));
    };
    put("hdcp", c.findHDCPInfo(type));
    put("edid", c.findEDIDInfo(type));
    put("dynamicRange", c.findDynamicRangeInfo(type));
    put("colorDepths", c.findColorDepthsInfo(type));
    put("colorSpaces", c.findColorSpacesInfo(type));
    put("hdr", c.findHDRInfo(type));
    put("capacityModes", c.findResoluCapacityMode(type));
    QJsonArray interfaces;
    for (int i = 0; i <= kMaxInterfaceType; ++i) {
        QJsonArray modes;
        for (int m = 0; m <= kMaxCapacityMode; ++m) {
            const QJsonValue mode = connectorMode(c, type, i, m);
            if (!mode.isNull()) modes.append(mode);
        }
        if (!modes.isEmpty())
            interfaces.append(QJsonObject{{QStringLiteral("type"), i}, {QStringLiteral("modes"), modes}});
    }
    o.insert(QStringLiteral("interfaces"), interfaces);
    QJsonArray timings;
    for (int t = 0; t <= kMaxTimingType; ++t)
        if (c.findConnectorRates(type, t).support != -1)
            timings.append(value(c.findConnectorTiming(type, t)));
    o.insert(QStringLiteral("presetTimings"), timings);
    return o;
}

QJsonValue connectors(const ConnectorConfigInterface& c) {
    QJsonArray types;
    for (int type : connectorTypes(c))
        types.append(connectorType(c, type));
    return types;
}

QJsonValue menuNode(const MenuConfigInterface& menu, const s_MenuItem& item) {
    QJsonObject o{{QStringLiteral("key"), item.key}, {QStringLiteral("order"), item.order}};
    if (item.fcItem) o.insert(QStringLiteral("item"), value(*item.fcItem));
    QJsonArray children;
    for (const s_MenuItem* child : item.children)
        children.append(menuNode(menu, *child));
    o.insert(QStringLiteral("children"), children);
    return o;
}

QJsonObject texts(const QHash<int, QString>& table) {
    QJsonObject o;
    for (auto it = table.begin(); it != table.end(); ++it)
        o.insert(QString::number(it.key()), it.value());
    return o;
}

QJsonValue hdr(IHDRConfig& h) {
    std::list<int> every;
    for (int v = 0; v <= kMaxHdrValue; ++v)
        every.push_back(v);
    QJsonObject textTables;
    for (int type = HDRBitDepth; type <= HDRColorGamut; ++type)
        textTables.insert(QLatin1String(hdrSettingName(type)), texts(h.getKeyValue(type, every)));
    QHash<int, QString> colorSpaces;
    const auto spaces = h.getColorSpaceString();
    for (auto it = spaces.begin(); it != spaces.end(); ++it)
        colorSpaces.insert(it.key(), QString::fromUtf8(it.value()));
    textTables.insert(QStringLiteral("colorSpace"), texts(colorSpaces));

    QJsonObject o{
        {QStringLiteral("texts"), textTables},
        {QStringLiteral("auto"),
         QJsonObject{{QStringLiteral("bitDepth"), h.autoToActualForBitDepth(HDRAutoValue, -1)},
                     {QStringLiteral("dynamicRange"), h.autoToActualForDynamicRange(HDRAutoValue, -1)},
                     {QStringLiteral("colorGamut"), h.autoToActualForColorGamut(HDRAutoValue, -1)}}}};
    for (const auto& [name, configType] : {std::pair<const char*, int>{"input", HDRInputConfig},
                                           std::pair<const char*, int>{"output", HDROutputConfig}}) {
        QJsonArray keys;
        for (int type = HDRBitDepth; type <= HDRColorGamut; ++type)
            for (int v = 0; v <= kMaxHdrValue; ++v) {
                const auto options = h.getCanSelectedValues(HDRKey{type, v}, configType);
                if (options.empty()) continue;
                QJsonArray dependents;
                for (const auto& [dependent, values] : options)
                    dependents.append(QJsonObject{{QStringLiteral("type"), dependent},
                                                  {QStringLiteral("values"), value(values)}});
                keys.append(QJsonObject{{QStringLiteral("key"), value(HDRKey{type, v})},
                                        {QStringLiteral("options"), dependents}});
            }
        o.insert(QLatin1String(name), keys);
    }
    return o;
}

QJsonValue keys(IKeyCheckConfig& k) {
    QJsonArray list;
    for (const auto& key : k.getKeyCheckList())
        list.append(QJsonObject{{QStringLiteral("key"), key.first}, {QStringLiteral("name"), key.second}});
    return list;
}

QJsonValue printKeys(IPrintKeyNoConfig& p, const DeviceConfigInterface& devices,
                     const SubcardConfigInterface& catalogue) {
    QJsonArray models;
    QVector<int> seen;
    for (const Devicecfg::s_Device& device : devices.DeviceConfigs()) {
        if (seen.contains(device.modelId)) continue;
        seen << device.modelId;
        QJsonArray cardKeys;
        QVector<int> cardsSeen;
        for (const Subcard::s_Subcard& card : catalogue.subcardConfig()) {
            if (cardsSeen.contains(card.modelId)) continue;
            cardsSeen << card.modelId;
            const SubcardPrintKeyNoInfo info = p.getPrintKeyNoCfg(device.modelId, card.modelId);
            if (info.modelId != -1) cardKeys.append(value(info));
        }
        models.append(QJsonObject{{QStringLiteral("deviceModelId"), device.modelId},
                                  {QStringLiteral("subcards"), cardKeys}});
    }
    return models;
}

} // namespace

QJsonValue toJson(const Devicecfg::s_Device& device) {
    return value(device);
}
QJsonValue toJson(const Subcard::s_Subcard& card) {
    return value(card);
}
QJsonValue toJson(const Feature::s_DeviceFeature& feature) {
    return value(feature);
}
QJsonValue toJson(const Screen::s_VrnScreen& screen) {
    return value(screen);
}
QJsonValue toJson(const Layercfg::s_Layer& layer) {
    return value(layer);
}
QJsonValue toJson(const s_MenuFCItem& item) {
    return value(item);
}
QJsonValue toJson(const Connector::s_resolutionResolutionRatio& resolution) {
    return value(resolution);
}

const char* hdrSettingName(int type) {
    static const char* const names[] = {"bitDepth", "dynamicRange", "colorGamut"};
    return type >= HDRBitDepth && type <= HDRColorGamut ? names[type] : "";
}

QVector<int> connectorTypes(const ConnectorConfigInterface& connectors) {
    QVector<int> types;
    for (int type = 0; type <= kMaxConnectorType; ++type)
        if (connectors.findEDIDInfo(type)) types << type;
    return types;
}

QJsonValue dumpPart(const Tree& tree, Part part) {
    switch (part) {
    case Part::Devices:
        return tree.devices() ? devices(*tree.devices()) : QJsonValue();
    case Part::Cards:
        return tree.cards() ? cards(*tree.cards()) : QJsonValue();
    case Part::Connectors:
        return tree.connectors() ? connectors(*tree.connectors()) : QJsonValue();
    case Part::Menu:
        return tree.menu() ? menuNode(*tree.menu(), *tree.menu()->rootMenuItem()) : QJsonValue();
    case Part::Hdr:
        return tree.hdr() ? hdr(*tree.hdr()) : QJsonValue();
    case Part::Keys:
        return tree.keys() ? keys(*tree.keys()) : QJsonValue();
    case Part::PrintKeys:
        return tree.printKeys() && tree.devices() && tree.cards()
                   ? printKeys(*tree.printKeys(), *tree.devices(), *tree.cards())
                   : QJsonValue();
    }
    return QJsonValue();
}

QJsonObject dumpTree(const Tree& tree) {
    QJsonObject o{{QStringLiteral("format"), QStringLiteral("lcdcfg-dump-1")}};
    for (const PartLoad& load : tree.loads())
        o.insert(QLatin1String(partName(load.part)), dumpPart(tree, load.part));
    return o;
}

} // namespace lcdcfg
