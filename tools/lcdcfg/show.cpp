// lcdcfg show: what a configuration offers, asked through the components'
// interfaces as a host asks, printed as aligned tables.

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <functional>

#include "common/facts.h"
#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/records.h"
#include "tools/lcdcfg/session.h"
#include "tools/lcdcfg/table.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

QString num(qint64 n) {
    return QString::number(n);
}

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

template <class List, class F>
QString joined(const List& list, F f, const QString& sep = QStringLiteral(" ")) {
    QStringList parts;
    for (const auto& e : list)
        parts << f(e);
    return parts.join(sep);
}

QString orDash(const QString& s) {
    return s.isEmpty() ? QStringLiteral("-") : s;
}

// "support/editable", "-" for a pair no file stated.
QString pair(qint64 support, qint64 editable) {
    return support == -1 && editable == -1 ? QStringLiteral("-")
                                           : QStringLiteral("%1/%2").arg(support).arg(editable);
}

// The values of an option list: "0 1 2".
QString optionValues(const QJsonValue& option) {
    return joined(option[QLatin1String("values")].toArray(),
                  [](const QJsonValue& v) { return num(v[QLatin1String("value")].toInt()); });
}

// ---- show device ------------------------------------------------------------

// Every setting of a feature record that states a support flag, by its field
// path (genlock.type), with what the record says of it.
void features(const QJsonObject& o, const QString& prefix, Table& table) {
    for (auto it = o.begin(); it != o.end(); ++it) {
        const QJsonObject f = it.value().toObject();
        const QString name = prefix + it.key();
        if (!it.value().isObject()) continue;
        if (f.contains(QLatin1String("support")) && f.contains(QLatin1String("editable"))) {
            const qint64 support = f[QLatin1String("support")].toInt();
            if (support == -1) continue; // not stated by the file
            table.add(
                {name, pair(support, f[QLatin1String("editable")].toInt()),
                 f.contains(QLatin1String("value")) ? num(f[QLatin1String("value")].toInt()) : QString(),
                 optionValues(f)});
        }
        features(f, name + QLatin1Char('.'), table);
    }
}

// The model's names, and what the host asks of the current device.
void deviceNames(const DeviceConfigInterface& registry, const Devicecfg::s_Device* device, bool isCurrent) {
    const Feature::s_DeviceFeature& f = device->feature;
    Table names({QStringLiteral("FIELD"), QStringLiteral("VALUE")});
    if (isCurrent) names.add({QStringLiteral("type name"), registry.findDeviceTypeName()});
    names.add({QStringLiteral("en"), text(f.enName)});
    names.add({QStringLiteral("zh_CN"), text(f.zhName)});
    names.add({QStringLiteral("name"), text(f.name)});
    names.add({QStringLiteral("series"), text(f.seriesShortName)});
    if (isCurrent) {
        names.add({QStringLiteral("interface groups"), num(registry.deviceSupportInterfaceGroup())});
        names.add({QStringLiteral("cross-card"), num(registry.deviceSupportCrossCard())});
        names.add({QStringLiteral("check blank"), num(registry.deviceCheckBlankValue())});
    }
    names.print(out(), QStringLiteral("model %1%2").arg(device->modelId).arg(isCurrent ? " (current)" : ""));
}

// Every slot of every group, in the order the host's queries walk them.
void deviceSlots(const DeviceConfigInterface& registry, const Devicecfg::s_Device* device, bool isCurrent) {
    Table slots({QStringLiteral("GROUP"), QStringLiteral("LABEL"), QStringLiteral("DIRECTION"),
                 QStringLiteral("INTERFACE"), QStringLiteral("SLOT"), QStringLiteral("ACCEPTS"),
                 QStringLiteral("PLACED"), QStringLiteral("CARDS IN SLOT")});
    for (const LCD::ConfigModel::facts::SlotGroupFacts& group : LCD::ConfigModel::facts::kSlotGroups) {
        const Slot::s_SlotAttr& a = device->slot.slots.*group.member;
        const QString accepts = joined(a.subcards, [](const Slot::s_Subcard& s) { return num(s.moduleId); });
        for (const Slot::s_Slot& slot : a.slots) {
            const QString inSlot = joined(
                slot.subcards,
                [](const Slot::s_InlineSubcard& s) {
                    return num(s.moduleId) + QStringLiteral(" (groups ") +
                           joined(s.connectorGroups,
                                  [](const Slot::s_ConnectorGroup& c) { return num(c.value); }) +
                           QLatin1Char(')');
                },
                QStringLiteral(", "));
            const int placed = isCurrent ? registry.findSubcardModelId(slot.index) : 0;
            slots.add({QLatin1String(group.field), text(a.silkScreenName), num(a.pluginDirection),
                       num(a.interfaceType), num(slot.index), accepts,
                       placed ? num(placed) : QStringLiteral("-"), inSlot});
        }
    }
    slots.print(out(), QStringLiteral("\nslots"));
}

// The screen types with their device modes and templates (the current
// device's as the host asks for them).
void deviceScreens(const DeviceConfigInterface& registry, const Devicecfg::s_Device* device, bool isCurrent) {
    Table screens({QStringLiteral("SCREEN TYPE"), QStringLiteral("SPLICE MODE"),
                   QStringLiteral("DEVICE MODE"), QStringLiteral("TEMPLATE"), QStringLiteral("LAYOUTS"),
                   QStringLiteral("LAYER TYPES")});
    for (const Screen::s_VrnScreen& s : device->screens) {
        // The current device's screens as the host asks for them.
        const Screen::s_Screen* screen = isCurrent ? registry.screenConfigs(s.type) : &s;
        if (!screen) continue;
        for (const Screen::s_DeviceMode& mode : screen->deviceModes) {
            const QString layers = joined(mode.layerTypes, [](const Screen::s_LayerType& l) {
                return QStringLiteral("%1 (max %2)").arg(l.value).arg(l.layerCount.max);
            });
            QStringList templates;
            for (const Screen::s_Templete& t : mode.templetes) {
                QStringList sizes;
                for (const Screen::s_Layout& l : t.layouts)
                    sizes << QStringLiteral("%1x%2").arg(l.rows).arg(l.columns);
                sizes.removeDuplicates();
                templates
                    << text(t.name.en) + QLatin1Char('\t') +
                           QStringLiteral("%1 (%2)").arg(t.layouts.size()).arg(sizes.join(QLatin1Char(' ')));
            }
            if (templates.isEmpty()) templates << QStringLiteral("-\t-");
            for (const QString& t : templates)
                screens.add({num(screen->type), num(screen->spliceMode), num(mode.value),
                             t.section('\t', 0, 0), t.section('\t', 1), layers});
        }
    }
    screens.print(out(), QStringLiteral("\nscreen types"));
}

int showDevice(const Tree& tree, const QStringList& args) {
    const DeviceConfigInterface& registry = *tree.devices();
    const int current = registry.curDeviceConfigs().modelId;
    const int wanted = args.isEmpty() ? current : args.first().toInt();
    const Devicecfg::s_Device* device = nullptr;
    for (const Devicecfg::s_Device& d : registry.DeviceConfigs())
        if (!device && d.modelId == wanted) device = &d;
    if (!device) {
        err() << "lcdcfg show: no device model " << (args.isEmpty() ? QStringLiteral("loaded") : args.first())
              << "\n";
        return kProblems;
    }
    const bool isCurrent = device->modelId == current;
    deviceNames(registry, device, isCurrent);
    deviceSlots(registry, device, isCurrent);
    deviceScreens(registry, device, isCurrent);

    Table layers({QStringLiteral("LAYER TYPE"), QStringLiteral("INVERSE"), QStringLiteral("SHADOW"),
                  QStringLiteral("CUT-FILL")});
    for (const Layercfg::s_VrnLayer& l : device->layers)
        layers.add({num(l.type), pair(l.isInverse.support, l.isInverse.editable),
                    pair(l.shadow.shadow.support, l.shadow.shadow.editable),
                    pair(l.cutFill.cutFill.support, l.cutFill.cutFill.editable)});
    layers.print(out(), QStringLiteral("\nlayer types"));

    Table main({QStringLiteral("FEATURE"), QStringLiteral("SUPPORT/EDIT"), QStringLiteral("VALUE"),
                QStringLiteral("CHOICES")});
    features(toJson(device->feature).toObject(), QString(), main);
    main.print(out(), QStringLiteral("\nfeatures"));
    return kClean;
}

// ---- show card -----------------------------------------------------------------

// The card's names, mode, sections and associations.
void cardAbout(SubcardConfigInterface& cards, const Subcard::s_Subcard* card, int model) {
    Table about({QStringLiteral("FIELD"), QStringLiteral("VALUE")});
    about.add({QStringLiteral("en"), text(card->name.en)});
    about.add({QStringLiteral("zh_CN"), text(card->name.zhCN)});
    about.add({QStringLiteral("card mode"), num(cards.findCardMode(model))});
    about.add({QStringLiteral("interlaced max"), num(card->interlacedMaxCount)});
    about.add({QStringLiteral("sections"),
               joined(card->sections, [](const Subcard::s_Section& s) { return num(s.code); })});
    about.add({QStringLiteral("pairs with"), joined(card->associations, [](const Subcard::s_Association& a) {
                   return QStringLiteral("%1 (mode %2)").arg(a.modelId).arg(a.cardMode);
               })});
    about.print(out(), QStringLiteral("card %1").arg(model));
}

// The connectors and their groups, as the host finds them by position and group.
void cardConnectors(SubcardConfigInterface& cards, const Subcard::s_Subcard* card, int model) {
    Table connectors({QStringLiteral("POSITION"), QStringLiteral("TYPE"), QStringLiteral("INTERFACE"),
                      QStringLiteral("ENABLE"), QStringLiteral("VISIBLE"), QStringLiteral("CAPACITY"),
                      QStringLiteral("WORK MODE"), QStringLiteral("BACKUP"), QStringLiteral("PRINT KEY"),
                      QStringLiteral("GROUP")});
    for (const Subcard::s_Connector& listed : card->connectors.connectors) {
        const Subcard::s_Connector* c = cards.findConnector(model, listed.position);
        const Subcard::s_ConnectorGroup* group = cards.findConnectorLocatedGroup(model, listed.position);
        connectors.add({num(c->position), num(c->type), num(c->interfaceType), num(c->enable),
                        num(c->visible), num(c->capacityMode), num(c->workMode), num(c->backupPos),
                        num(c->printKeyNo), group ? num(group->value) : QStringLiteral("-")});
    }
    connectors.print(out(), QStringLiteral("\nconnectors"));

    Table groups({QStringLiteral("GROUP"), QStringLiteral("SELECT"), QStringLiteral("CONNECTORS")});
    for (const Subcard::s_ConnectorGroup& g : card->capacity.groups)
        groups.add({num(g.value), num(g.selectNum),
                    joined(cards.findConnectorByGroupId(model, g.value),
                           [](const Subcard::s_Connector& c) { return num(c.position); })});
    groups.print(out(), QStringLiteral("\nconnector groups (capacity %1 \"%2\")")
                            .arg(card->capacity.value)
                            .arg(text(card->capacity.name)));
}

// The capacities per device mode, and the connectors each mode enables and copies.
void cardModes(SubcardConfigInterface& cards, const Subcard::s_Subcard* card, int model) {
    Table capacities({QStringLiteral("DEVICE MODE"), QStringLiteral("CAPACITY"), QStringLiteral("NAME"),
                      QStringLiteral("ENABLE"), QStringLiteral("CONNECTORS (position:group)")});
    for (const Subcard::s_DeviceModeInConnectors& mode : card->connectors.deviceModes)
        for (const Subcard::s_CapacityInConnectorsDeviceModeCapacitys& listed : mode.capacitys) {
            const auto c = cards.findConnectorDeviceModeCapacity(model, listed.value, mode.value);
            capacities.add({num(mode.value), num(c.value), text(c.name), num(c.enable),
                            joined(c.connectors,
                                   [](const Subcard::s_ConnectorInConnectorsDeviceModeCapacitysCapacity& k) {
                                       return QStringLiteral("%1:%2").arg(k.position).arg(k.groupId);
                                   })});
        }
    capacities.print(out(), QStringLiteral("\ncapacities"));

    Table modes({QStringLiteral("CAPACITY"), QStringLiteral("DEVICE MODE"), QStringLiteral("NAME"),
                 QStringLiteral("ENABLED CONNECTORS"), QStringLiteral("COPIES")});
    for (const Subcard::s_CapacityInCapacityGroups& capacity : card->capacityGroups)
        for (const Subcard::s_DeviceMode& listed : capacity.deviceModes) {
            const Subcard::s_DeviceMode m = cards.findSubcardModeData(model, capacity.value, listed.value);
            QStringList enabled, copies;
            for (const Subcard::s_ConnectorInCapacityGroups& c : m.connectors) {
                if (c.enable) enabled << num(c.position);
                const auto copy =
                    cards.findConnectorCopyData(model, capacity.value, listed.value, c.position);
                if (copy.size() > 1)
                    copies << joined(
                        copy, [](const Subcard::s_ConnectorInfo& i) { return num(i.position); },
                        QStringLiteral("="));
            }
            copies.removeDuplicates();
            modes.add({num(capacity.value), num(m.value), text(capacity.name), enabled.join(QLatin1Char(' ')),
                       orDash(copies.join(QStringLiteral(", ")))});
        }
    modes.print(out(), QStringLiteral("\nmodes"));
}

int showCard(const Tree& tree, const QStringList& args) {
    if (args.size() != 1) {
        err() << "lcdcfg show card: one MODEL expected\n";
        return kUsage;
    }
    SubcardConfigInterface& cards = *tree.cards();
    const int model = args.first().toInt();
    const Subcard::s_Subcard* card = nullptr;
    for (const Subcard::s_Subcard& c : cards.subcardConfig())
        if (!card && c.modelId == model) card = &c;
    if (!card) {
        err() << "lcdcfg show: no card model " << args.first() << "\n";
        return kProblems;
    }
    cardAbout(cards, card, model);
    cardConnectors(cards, card, model);
    cardModes(cards, card, model);

    Table types(
        {QStringLiteral("CONNECTOR TYPE"), QStringLiteral("INTERFACE"), QStringLiteral("THUMBNAIL TIMINGS")});
    for (const Subcard::s_TypesConnector& t : cards.findConnectorTypesData(model))
        types.add(
            {num(t.type), num(t.presetThumbTiming.interfaceType),
             joined(t.presetThumbTiming.resolutionRatios, [](const Subcard::s_ResolutionRatio& r) {
                 return QStringLiteral("%1x%2%3@%4")
                     .arg(r.width)
                     .arg(r.height)
                     .arg(r.interlaced ? "i" : "")
                     .arg(QString::fromStdString(r.refreshs.empty() ? std::string() : r.refreshs.front()));
             })});
    types.print(out(), QStringLiteral("\nconnector types"));
    return kClean;
}

// ---- show connector --------------------------------------------------------------

QString hz(double rate, double coefficient) {
    return QString::number(rate * coefficient, 'g', 6);
}

// "0 1 2 (6)": the choices of an enumeration and the value it starts at.
QString enumSet(const Connector::s_ConnectorEnumSet& e) {
    if (e.support == -1 && e.values.empty()) return QStringLiteral("-");
    return joined(e.values, [](const Connector::ConnectorEnumValue& v) { return num(v.value); }) +
           QStringLiteral(" (%1)").arg(e.value);
}

// The capacity modes of each interface (those chosen), with their default
// timing and ranges; returns the (interface, mode) pairs printed.
QVector<QPair<int, int>> connectorModes(const ConnectorConfigInterface& c, int type,
                                        const QJsonObject& dumped, int onlyInterface, int onlyMode) {
    Table modes({QStringLiteral("INTERFACE"), QStringLiteral("MODE"), QStringLiteral("BANDWIDTH kHz"),
                 QStringLiteral("DEFAULT"), QStringLiteral("WIDTH"), QStringLiteral("HEIGHT"),
                 QStringLiteral("REFRESH Hz"), QStringLiteral("RESOLUTIONS")});
    QVector<QPair<int, int>> selected;
    for (const QJsonValue& i : dumped[QLatin1String("interfaces")].toArray())
        for (const QJsonValue& m : i[QLatin1String("modes")].toArray()) {
            const int interfaceType = i[QLatin1String("type")].toInt();
            const int mode = m[QLatin1String("value")].toInt();
            if ((onlyInterface >= 0 && interfaceType != onlyInterface) || (onlyMode >= 0 && mode != onlyMode))
                continue;
            selected << qMakePair(interfaceType, mode);
            const auto* d = c.findConnectorDefaultResolution(mode, type, interfaceType);
            const auto resolutions = c.findConnectorResolutions(mode, type, interfaceType);
            const auto listed = c.findSDIConnectorResolutionRatios(mode, type, interfaceType);
            const auto range = [](const Connector::s_ConnectorStepRange& r) {
                return QStringLiteral("%1-%2/%3").arg(r.range.min).arg(r.range.max).arg(r.step);
            };
            QString bandwidth = QStringLiteral("-");
            for (const QJsonValue& cm : dumped[QLatin1String("capacityModes")].toArray())
                if (interfaceType == 2 && cm[QLatin1String("value")].toInt() == mode)
                    bandwidth = QStringLiteral("%1-%2")
                                    .arg(cm[QLatin1String("bandWidth")][QLatin1String("min")].toInt())
                                    .arg(cm[QLatin1String("bandWidth")][QLatin1String("max")].toInt());
            modes.add(
                {num(interfaceType), num(mode), bandwidth,
                 d ? QStringLiteral("%1x%2@%3")
                         .arg(d->width.range.value)
                         .arg(d->height.range.value)
                         .arg(hz(d->refreshRate.range.value, d->refreshRate.coefficient))
                   : QStringLiteral("-"),
                 d ? range(d->width) : QStringLiteral("-"), d ? range(d->height) : QStringLiteral("-"),
                 d ? QStringLiteral("%1-%2").arg(hz(d->refreshRate.range.min, d->refreshRate.coefficient),
                                                 hz(d->refreshRate.range.max, d->refreshRate.coefficient))
                   : QStringLiteral("-"),
                 num(resolutions.empty() ? listed.size() : resolutions.size())});
        }
    modes.print(out(), QStringLiteral("connector type %1: capacity modes").arg(type));
    return selected;
}

// The resolutions of each chosen interface and mode.
void connectorResolutions(const ConnectorConfigInterface& c, int type,
                          const QVector<QPair<int, int>>& selected) {
    for (const auto& [interfaceType, mode] : selected) {
        auto list = c.findConnectorResolutions(mode, type, interfaceType);
        const bool sdi = list.empty();
        if (sdi) list = c.findSDIConnectorResolutionRatios(mode, type, interfaceType);
        Table resolutions({QStringLiteral("WIDTH"), QStringLiteral("HEIGHT"), QStringLiteral("REFRESH Hz"),
                           QStringLiteral("SCAN"), QStringLiteral("STANDARD"),
                           QStringLiteral("AUTO REFRESH")});
        for (const Connector::s_resolutionResolutionRatio& r : list)
            resolutions.add({num(r.width), num(r.height), hz(r.refreshRate, r.coefficient),
                             r.interlaced ? QStringLiteral("i") : QStringLiteral("p"), num(r.standardType),
                             num(r.autoRefresh)});
        resolutions.print(out(), QStringLiteral("\ninterface %1, mode %2: %3resolutions")
                                     .arg(interfaceType)
                                     .arg(mode)
                                     .arg(sdi ? "listed " : ""));
    }
}

// The refresh rates of each preset timing.
void connectorRates(const ConnectorConfigInterface& c, int type, const QJsonObject& dumped) {
    Table rates({QStringLiteral("TIMING"), QStringLiteral("REFRESH Hz"), QStringLiteral("DEFAULT"),
                 QStringLiteral("INTERLACED"), QStringLiteral("BANDWIDTH")});
    for (const QJsonValue& t : dumped[QLatin1String("presetTimings")].toArray()) {
        const int timing = t[QLatin1String("type")].toInt();
        const Connector::s_ConnectorRefreshSet r = c.findConnectorRates(type, timing);
        const Connector::s_PreSetTimingInterface p = c.findConnectorTiming(type, timing);
        rates.add({num(timing),
                   joined(r.values,
                          [&](const Connector::ConnectorEnumValue& v) { return hz(v.value, r.coefficient); }),
                   hz(r.value, r.coefficient), enumSet(p.interlaced),
                   QStringLiteral("%1-%2").arg(p.bandWidth.min).arg(p.bandWidth.max)});
    }
    rates.print(out(), QStringLiteral("\nrefresh rates"));
}

// HDCP, EDID, colour and range options, per interface where they have one.
void connectorOptions(const ConnectorConfigInterface& c, int type) {
    Table options({QStringLiteral("OPTION"), QStringLiteral("INTERFACE"), QStringLiteral("SUPPORT/EDIT"),
                   QStringLiteral("CHOICES (default)")});
    const Connector::s_ConnectorHDCP hdcp = c.findConnectorHDCP(type);
    options.add({QStringLiteral("HDCP"), QStringLiteral("-"), pair(hdcp.support, hdcp.editable), QString()});
    for (const auto& i : hdcp.interfaces) {
        options.add({QStringLiteral("HDCP enable"), num(i.type), pair(i.enable.support, i.enable.editable),
                     enumSet(i.enable)});
        options.add({QStringLiteral("HDCP version"), num(i.type), pair(i.typeSet.support, i.typeSet.editable),
                     enumSet(i.typeSet)});
    }
    const Connector::s_ConnectorEDID* edid = c.findEDIDInfo(type);
    options.add(
        {QStringLiteral("EDID"), QStringLiteral("-"), pair(edid->support, edid->editable), QString()});
    if (const auto* depths = c.findColorDepthsInfo(type)) {
        options.add({QStringLiteral("colour depth"), QStringLiteral("-"),
                     pair(depths->support, depths->editable), QString()});
        for (const auto& i : depths->interfaces)
            options.add({QStringLiteral("colour depth"), num(i.type),
                         pair(i.colorDepth.support, i.colorDepth.editable), enumSet(i.colorDepth)});
    }
    if (const auto* spaces = c.findColorSpacesInfo(type)) {
        options.add({QStringLiteral("colour space"), QStringLiteral("-"),
                     pair(spaces->support, spaces->editable), QString()});
        for (const auto& i : spaces->interfaces)
            options.add({QStringLiteral("colour space"), num(i.type),
                         pair(i.colorSpace.support, i.colorSpace.editable), enumSet(i.colorSpace)});
    }
    if (const auto* range = c.findDynamicRangeInfo(type)) {
        options.add({QStringLiteral("dynamic range"), QStringLiteral("-"),
                     pair(range->support, range->editable), QString()});
        options.add({QStringLiteral("format mapping"), QStringLiteral("-"),
                     pair(range->formatMapping.support, range->formatMapping.editable),
                     enumSet(range->formatMapping)});
    }
    if (const auto* hdr = c.findHDRInfo(type))
        options.add(
            {QStringLiteral("HDR"), QStringLiteral("-"), pair(hdr->support, hdr->editable), QString()});
    options.print(out(), QStringLiteral("\noptions"));
}

int showConnector(const Tree& tree, const QStringList& args, int onlyInterface, int onlyMode) {
    if (args.size() != 1) {
        err() << "lcdcfg show connector: one TYPE expected\n";
        return kUsage;
    }
    const ConnectorConfigInterface& c = *tree.connectors();
    const int type = args.first().toInt();
    if (!c.findEDIDInfo(type)) {
        err() << "lcdcfg show: no connector type " << args.first() << "\n";
        return kProblems;
    }
    const QJsonObject dumped =
        dumpPart(tree, Part::Connectors).toArray().at(connectorTypes(c).indexOf(type)).toObject();
    connectorResolutions(c, type, connectorModes(c, type, dumped, onlyInterface, onlyMode));
    connectorRates(c, type, dumped);
    connectorOptions(c, type);
    return kClean;
}

// ---- show menu, hdr, keys ------------------------------------------------------------

void menuRows(const s_MenuItem& item, int depth, Table& table) {
    const s_MenuFCItem* fc = item.fcItem;
    table.add({QString(depth * 2, QLatin1Char(' ')) + num(item.key), num(item.order),
               fc ? fc->name.value(QStringLiteral("en")) : QStringLiteral("-"),
               fc ? fc->name.value(QStringLiteral("zh_CN")) : QStringLiteral("-"),
               fc ? num(fc->type) : QString(), fc ? fc->unit : QString(), fc ? fc->icon : QString()});
    for (const s_MenuItem* child : item.children)
        menuRows(*child, depth + 1, table);
}

int showMenu(const Tree& tree) {
    Table table({QStringLiteral("KEY"), QStringLiteral("ORDER"), QStringLiteral("EN"),
                 QStringLiteral("ZH_CN"), QStringLiteral("TYPE"), QStringLiteral("UNIT"),
                 QStringLiteral("ICON")});
    menuRows(*tree.menu()->rootMenuItem(), 0, table);
    table.print(out(), QStringLiteral("menu"));
    return kClean;
}

int showHdr(const Tree& tree) {
    const QJsonObject hdr = dumpPart(tree, Part::Hdr).toObject();
    const QJsonObject texts = hdr[QLatin1String("texts")].toObject();
    auto textOf = [&](int setting, int value) {
        return texts[QLatin1String(hdrSettingName(setting))][num(value)].toString();
    };
    Table values({QStringLiteral("SETTING"), QStringLiteral("VALUE"), QStringLiteral("TEXT")});
    for (auto it = texts.begin(); it != texts.end(); ++it) {
        QList<int> numbers;
        const QJsonObject table = it.value().toObject();
        for (const QString& k : table.keys())
            numbers << k.toInt();
        std::sort(numbers.begin(), numbers.end());
        for (int n : numbers)
            values.add({it.key(), num(n), table[num(n)].toString()});
    }
    values.print(out(), QStringLiteral("values"));

    Table autos({QStringLiteral("SETTING"), QStringLiteral("AUTO"), QStringLiteral("TEXT")});
    for (int s = 0; s < 3; ++s) {
        const int v = hdr[QLatin1String("auto")][QLatin1String(hdrSettingName(s))].toInt();
        autos.add({QLatin1String(hdrSettingName(s)), num(v), textOf(s, v)});
    }
    autos.print(out(), QStringLiteral("\nAUTO without a detected value resolves to"));

    for (const char* direction : {"input", "output"}) {
        Table options({QStringLiteral("WHEN"), QStringLiteral("IS"), QStringLiteral("SETTING"),
                       QStringLiteral("SELECTABLE")});
        for (const QJsonValue& key : hdr[QLatin1String(direction)].toArray()) {
            const int type = key[QLatin1String("key")][QLatin1String("type")].toInt();
            const int value = key[QLatin1String("key")][QLatin1String("value")].toInt();
            for (const QJsonValue& o : key[QLatin1String("options")].toArray()) {
                const int dependent = o[QLatin1String("type")].toInt();
                options.add({QLatin1String(hdrSettingName(type)), textOf(type, value),
                             QLatin1String(hdrSettingName(dependent)),
                             joined(
                                 o[QLatin1String("values")].toArray(),
                                 [&](const QJsonValue& v) { return textOf(dependent, v.toInt()); },
                                 QStringLiteral(", "))});
            }
        }
        options.print(out(), QStringLiteral("\n%1 options").arg(QLatin1String(direction)));
    }
    return kClean;
}

int showKeys(const Tree& tree) {
    Table keys({QStringLiteral("KEY"), QStringLiteral("NAME")});
    for (const auto& key : tree.keys()->getKeyCheckList())
        keys.add({num(key.first), key.second});
    keys.print(out(), QStringLiteral("checked keys"));
    if (!tree.devices() || !tree.cards() || !tree.printKeys()) return kClean;
    const int model = tree.devices()->curDeviceConfigs().modelId;
    Table printed({QStringLiteral("CARD"), QStringLiteral("KEY"), QStringLiteral("PRINTED")});
    QVector<int> seen;
    for (const Subcard::s_Subcard& card : tree.cards()->subcardConfig()) {
        if (seen.contains(card.modelId)) continue;
        seen << card.modelId;
        for (const PrintKeyNoInfo& k : tree.printKeys()->getPrintKeyNoCfg(model, card.modelId).printKeyNos)
            printed.add({num(card.modelId), num(k.id), text(k.printKeyNo)});
    }
    printed.print(out(), QStringLiteral("\nprinted key numbers (model %1)").arg(model));
    return kClean;
}

struct What {
    const char* name;
    QVector<Part> parts;
};

const What kWhat[] = {
    {"device", {Part::Devices}}, {"card", {Part::Cards}}, {"connector", {Part::Connectors}},
    {"menu", {Part::Menu}},      {"hdr", {Part::Hdr}},    {"keys", {Part::Keys, Part::PrintKeys}},
};

} // namespace

int runShow(const QStringList& args) {
    CommandLine cl(QStringLiteral("show"),
                   QStringLiteral("Shows what a configuration offers, as the host asks the components: "
                                  "device [MODEL], card MODEL, connector TYPE, menu, hdr, keys."),
                   QStringLiteral("WHAT [ID]"));
    const QCommandLineOption interfaceOption(QStringLiteral("interface"),
                                             QStringLiteral("show connector: only this interface type."),
                                             QStringLiteral("type"));
    const QCommandLineOption modeOption(QStringLiteral("mode"),
                                        QStringLiteral("show connector: only this capacity mode."),
                                        QStringLiteral("mode"));
    cl.addOption(interfaceOption);
    cl.addOption(modeOption);
    Session session(cl, Session::OtherPositional, Session::NoJson);
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    QStringList positional = session.positional();
    if (positional.isEmpty())
        return cl.usage(QStringLiteral("what to show: device, card, connector, menu, hdr, keys"));
    const QString what = positional.takeFirst();
    const What* chosen = nullptr;
    for (const What& w : kWhat)
        if (what == QLatin1String(w.name)) chosen = &w;
    if (!chosen) return cl.usage(QStringLiteral("cannot show %1").arg(what));
    bool numbers = true;
    for (const QString& p : positional) {
        bool ok = false;
        p.toInt(&ok);
        numbers = numbers && ok;
    }
    if (!numbers) return cl.usage(QStringLiteral("%1 takes a number").arg(what));

    const std::unique_ptr<Tree> tree = session.load(chosen->parts);
    if (!tree) return kUsage;
    const PartLoad* load = tree->loadOf(chosen->parts.first());
    if (!load || !load->ok) {
        err() << "lcdcfg show: the " << partName(chosen->parts.first())
              << " did not load: " << tree->failure(chosen->parts.first()) << " (lcdcfg check tells more)\n";
        return kProblems;
    }
    const auto option = [&](const QCommandLineOption& o) { return cl.isSet(o) ? cl.value(o).toInt() : -1; };
    switch (chosen->parts.first()) {
    case Part::Devices:
        return showDevice(*tree, positional);
    case Part::Cards:
        return showCard(*tree, positional);
    case Part::Connectors:
        return showConnector(*tree, positional, option(interfaceOption), option(modeOption));
    case Part::Menu:
        return showMenu(*tree);
    case Part::Hdr:
        return showHdr(*tree);
    default:
        return showKeys(*tree);
    }
}

} // namespace lcdcfg
