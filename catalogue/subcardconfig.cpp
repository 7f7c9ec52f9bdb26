#include "catalogue/subcardconfig.h"

#include "common/document.h"
#include "common/facts.h"
#include "common/xmlread.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>

#include <algorithm>
#include <utility>

KVC_REGISTER_COMPONENT(LCD::ConfigModel::SubcardConfigManager,
                       LCD::ConfigModel::facts::component(LCD::ConfigModel::facts::Component::Cards).id)

namespace LCD {
namespace ConfigModel {

using namespace Subcard;
using namespace xml;

namespace {

// The catalogue is no Qt object: its texts use the base object's context.
constexpr char kTrContext[] = "QObject";

// ---- one reader per record, in walk order ---------------------------------
// Every integer is read with an empty default: absent or non-numeric gives 0.

// The nine connector attributes, the same in every connector list of a card.
const Attrs kConnector{{"Type", ""},         {"InterfaceType", ""}, {"Position", ""},
                       {"Enable", ""},       {"PrintKeyNo", ""},    {"Visible", ""},
                       {"CapacityMode", ""}, {"WorkMode", ""},      {"BackupPos", ""}};
// A capacity of any of the lists.
const Attrs kCapacity{{"Enable", ""}, {"Value", ""}};

s_Association readAssociation(const QDomElement& e) {
    return readAs<s_Association>(e, {{"ModelId", ""}, {"CardMode", ""}});
}

s_Connector readConnector(const QDomElement& e) {
    return readAs<s_Connector>(e, kConnector);
}

// "Types": the preset thumbnail timings of each connector type.

s_ResolutionRatio readResolutionRatio(const QDomElement& capacityMode) {
    const QDomElement first =
        child(child(capacityMode, "ResolutionRatios"), "ResolutionRatio"); // only the first
    auto ratio = readAs<s_ResolutionRatio>(first, {{"Width", ""}, {"Height", ""}, {"Interlaced", ""}});
    ratio.refreshs = readEachChild(child(capacityMode, "Refreshs"),
                                   [](const QDomElement& refresh) { return textAttr(refresh, "Value"); });
    return ratio;
}

s_TypesConnector readTypesConnector(const QDomElement& e) {
    s_TypesConnector type;
    s_PresetThumbTiming& timing = type.presetThumbTiming;
    type.type = intAttr(e, "Type");
    const QDomElement preset = child(e, "PresetThumbTiming");
    timing = readAs<s_PresetThumbTiming>(preset, kEmptyPair);
    const QDomElement interfaceElement = child(preset, "Interface");
    timing.interfaceType = intAttr(interfaceElement, "Type");
    forEachNamed(child(interfaceElement, "WorkModes"), "WorkMode", [&](const QDomElement& workMode) {
        forEachNamed(child(workMode, "CapacityModes"), "CapacityMode", [&](const QDomElement& capacityMode) {
            const observe::Record r(RecordKind::TypeResolution, timing.resolutionRatios.size(), capacityMode);
            qDebug().noquote() << "CapacityMode Value:" << intAttr(capacityMode, "Value"); // logged, not kept
            timing.resolutionRatios.push_back(readResolutionRatio(capacityMode));
        });
    });
    return type;
}

s_TypesGroups readConnectorTypes(const QDomElement& types) {
    s_TypesGroups list;
    forEachNamed(types, "Connector", [&](const QDomElement& e) {
        const observe::Record r(RecordKind::ConnectorType, list.size(), e);
        list.push_back(readTypesConnector(e));
    });
    return list;
}

// "DeviceMode" under "Connectors": its capacities and their connectors.

s_ConnectorInConnectorsDeviceModeCapacitysCapacity readCapacityConnector(const QDomElement& e) {
    s_ConnectorInConnectorsDeviceModeCapacitysCapacity c;
    update(e, kConnector, c);
    c.groupId = intAttr(e, "GroupId");
    c.dynamicRange = readAs<s_ValueSetting>(child(e, "DynamicRange"), kEmptyOptions);
    return c;
}

s_CapacityInConnectorsDeviceModeCapacitys readConnectorsCapacity(const QDomElement& e) {
    s_CapacityInConnectorsDeviceModeCapacitys capacity;
    capacity.name = textAttr(e, "Name");
    update(e, kCapacity, capacity);
    capacity.connectors = readEachChild(e, RecordKind::CapacityConnector, readCapacityConnector);
    return capacity;
}

s_DeviceModeInConnectors readConnectorsDeviceMode(const QDomElement& e) {
    s_DeviceModeInConnectors mode;
    mode.value = intAttr(e, "Value");
    const QDomElement capacitys = child(e, "Capacitys");
    mode.capacitysValue = intAttr(capacitys, "Value");
    mode.capacitys = readEachChild(capacitys, RecordKind::ModeCapacity, readConnectorsCapacity);
    return mode;
}

// "Connectors": each child goes to the list of its tag name, others are skipped.
s_Connectors readConnectors(const QDomElement& e) {
    s_Connectors out;
    forEachChild(e, [&](const QDomElement& c) {
        if (isNamed(c, "Types")) {
            out.types = readConnectorTypes(c);
        } else if (isNamed(c, "Connector")) {
            const observe::Record r(RecordKind::Connector, out.connectors.size(), c);
            out.connectors.push_back(readConnector(c));
        } else if (isNamed(c, "DeviceMode")) {
            const observe::Record r(RecordKind::ConnectorMode, out.deviceModes.size(), c);
            out.deviceModes.push_back(readConnectorsDeviceMode(c));
        }
    });
    return out;
}

// "ConnectorGroups": its one "Capacity" is required.

s_ConnectorGroup readConnectorGroup(const QDomElement& e) {
    s_ConnectorGroup group;
    update(e, {{"Value", ""}, {"SelectNum", ""}}, group);
    group.connectors = readEachChild(e, RecordKind::Connector, readConnector);
    return group;
}

bool readConnectorGroups(const QDomElement& groups, s_Capacity& out, QString& error, const Loader& loader) {
    return transact(out, error, loader, [&](Section& s, s_Capacity& capacity) {
        capacity.groupsValue = intAttr(groups, "Value");
        const QDomElement c = s.need(groups, "Capacity");
        capacity.name = textAttr(c, "Name");
        capacity.value = intAttr(c, "Value");
        capacity.groups = readEachChild(c, RecordKind::ConnectorGroup, readConnectorGroup);
    });
}

// "CapacityGroups": each capacity requires its "DeviceModes".

s_ConnectorInCapacityGroups readCapacityGroupConnector(const QDomElement& e) {
    return readAs<s_ConnectorInCapacityGroups>(e, {{"Position", ""},
                                                   {"Enable", ""},
                                                   {"Visible", ""},
                                                   {"CapacityMode", ""},
                                                   {"WorkMode", ""},
                                                   {"BackupPos", ""}});
}

s_DeviceMode readDeviceMode(const QDomElement& e) {
    s_DeviceMode mode;
    mode.value = intAttr(e, "Value");
    mode.connectors = readEachChild(e, RecordKind::ModeConnector, readCapacityGroupConnector);
    return mode;
}

bool readCapacityGroup(const QDomElement& e, s_CapacityInCapacityGroups& out, QString& error,
                       const Loader& loader) {
    return transact(out, error, loader, [&](Section& s, s_CapacityInCapacityGroups& capacity) {
        capacity.name = textAttr(e, "Name");
        update(e, kCapacity, capacity);
        capacity.deviceModes =
            readEachChild(s.need(e, "DeviceModes"), RecordKind::CapacityMode, readDeviceMode);
    });
}

s_Section readSection(const QDomElement& e) {
    return s_Section{intAttr(e, "Code")};
}

// "ConnectorCopy": capacity -> device mode -> group -> connector positions.

s_ConnectorInfo readConnectorInfo(const QDomElement& e) {
    return s_ConnectorInfo{intAttr(e, "Position")};
}

s_ConnectorGroupInfo readCopyGroup(const QDomElement& e) {
    return s_ConnectorGroupInfo{intAttr(e, "Value"),
                                readEachChild(e, RecordKind::CopyConnector, readConnectorInfo)};
}

s_DeviceModeInfo readCopyDeviceMode(const QDomElement& e) {
    return s_DeviceModeInfo{intAttr(e, "Value"), readEachChild(e, RecordKind::CopyGroup, readCopyGroup)};
}

s_CapacityInfo readCopyCapacity(const QDomElement& e) {
    s_CapacityInfo capacity;
    capacity.name = textAttr(e, "Name");
    update(e, kCapacity, capacity);
    capacity.deviceModes = readEachChild(e, RecordKind::CopyMode, readCopyDeviceMode);
    return capacity;
}

s_ConnectorCopy readConnectorCopy(const QDomElement& e) {
    auto copy = readAs<s_ConnectorCopy>(e, {{"Support", ""}, {"Editable", ""}, {"Value", ""}});
    const QDomElement related = child(e, "MainRelated");
    copy.mainRelated = readAs<s_SupportInfo>(related, kEmptyPair);
    copy.capacityInfos = readEachChild(related, RecordKind::CopyCapacity, readCopyCapacity);
    return copy;
}

// One card. A missing "Name", "zh_CN", "en", connector-group "Capacity" or
// capacity-group "DeviceModes" is fatal (false); a missing "Associations",
// "ConnectorGroups", "CapacityGroups" or "Sections" is reported and skipped.
bool readCard(const QDomElement& e, s_Subcard& card, QString& error, const Loader& loader) {
    update(e, {{"ModelId", ""}, {"CardMode", ""}, {"InterlacedMaxCount", ""}}, card);
    Section reported(error, loader); // the four lists below: absent is reported and skipped
    constexpr Missing kReported = Missing::NotedLogged;
    card.associations = readEachChild(reported.need(e, "Associations", kReported),
                                      RecordKind::CardAssociation, readAssociation);

    const bool named = transact(card.name, error, loader, [&](Section& s, s_Name& name) {
        const QDomElement n = s.need(e, "Name");
        name.zhCN = firstNodeText(s.need(n, "zh_CN"));
        name.en = firstNodeText(s.need(n, "en"));
    });
    if (!named) return false;

    card.connectors = readConnectors(child(e, "Connectors"));

    const QDomElement groups = reported.need(e, "ConnectorGroups", kReported);
    if (!groups.isNull() && !readConnectorGroups(groups, card.capacity, error, loader)) return false;

    const bool capacitiesRead =
        forEachChild(reported.need(e, "CapacityGroups", kReported), [&](const QDomElement& c) {
            const observe::Record r(RecordKind::CapacityGroup, card.capacityGroups.size(), c);
            s_CapacityInCapacityGroups capacity;
            if (!readCapacityGroup(c, capacity, error, loader)) return false;
            card.capacityGroups.push_back(std::move(capacity));
            return true;
        });
    if (!capacitiesRead) return false;

    card.sections =
        readEachChild(reported.need(e, "Sections", kReported), RecordKind::CardSection, readSection);
    card.connectorCopy = readConnectorCopy(child(e, "ConnectorCopy"));
    return true;
}

// One catalogue file. Cards are appended one by one, so a fatal card ends the
// load and keeps the cards before it. A file without "Subcards" is skipped.
bool readCatalogueFile(const QDomElement& root, std::vector<s_Subcard>& catalogue, QString& error,
                       const Loader& loader) {
    if (!root.hasChildNodes()) return true; // an empty root is skipped without a message
    const QDomElement cards = child(root, "Subcards");
    if (cards.isNull()) {
        error = loader.invalidNode(QStringLiteral("Subcards"));
        observe::diagnose(DiagnosticKind::ElementMissing, error, root, "Subcards");
        return true;
    }
    return forEachChild(cards, [&](const QDomElement& e) {
        const observe::Record r(RecordKind::Card, catalogue.size(), e);
        s_Subcard card;
        if (!readCard(e, card, error, loader)) return false;
        catalogue.push_back(std::move(card));
        return true;
    });
}

// ---- searches ------------------------------------------------------------

// The first element of `list` at `position`; null when none.
template <class T> const T* atPosition(const std::vector<T>& list, int position) {
    const auto it =
        std::find_if(list.begin(), list.end(), [&](const T& x) { return x.position == position; });
    return it == list.end() ? nullptr : &*it;
}

// The first non-null answer of `find` over the cards of `modelId`.
template <class Find>
auto firstHit(const std::vector<s_Subcard>& cards, int modelId, Find&& find)
    -> decltype(find(cards.front())) {
    for (const s_Subcard& card : cards) {
        if (card.modelId != modelId) continue;
        if (const auto hit = find(card)) return hit;
    }
    return nullptr;
}

// `visit` on every card of `modelId`, in catalogue order.
template <class Visit> void forEachCard(const std::vector<s_Subcard>& cards, int modelId, Visit&& visit) {
    for (const s_Subcard& card : cards) {
        if (card.modelId == modelId) visit(card);
    }
}

// The first non-null answer of `find` over the capacities `capacity` of device
// mode `deviceMode` under the cards' "Connectors".
template <class Hit, class Find>
const Hit* firstCapacityHit(const std::vector<s_Subcard>& cards, int modelId, int capacity, int deviceMode,
                            Find&& find) {
    return firstHit(cards, modelId, [&](const s_Subcard& card) -> const Hit* {
        for (const s_DeviceModeInConnectors& mode : card.connectors.deviceModes) {
            if (mode.value != deviceMode) continue;
            for (const s_CapacityInConnectorsDeviceModeCapacitys& c : mode.capacitys) {
                if (c.value != capacity) continue;
                if (const Hit* hit = find(c)) return hit;
            }
        }
        return nullptr;
    });
}

} // namespace

SubcardConfigManager::SubcardConfigManager() = default;
SubcardConfigManager::~SubcardConfigManager() = default;

bool SubcardConfigManager::readConfig(const QString& path, QString& error) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    if (!prepareDirectory(path, loader, error)) return false;
    QDomDocument doc; // one for every file: it is let go as the next file is parsed
    for (const QString& file : facts::catalogueFiles(path)) {
        if (!parseDocumentFile(file, loader, doc, error) || !checkDocumentRoot(doc, loader, error))
            return false;
        if (!readCatalogueFile(doc.documentElement(), m_subcards, error, loader)) return false;
    }
    return true;
}

const std::vector<s_Subcard>& SubcardConfigManager::subcardConfig() const {
    return m_subcards;
}

s_TypesGroups SubcardConfigManager::analyzeConnectTyps(const QDomElement& types) {
    return readConnectorTypes(types);
}

const s_Subcard* SubcardConfigManager::firstCard(int modelId) const {
    return firstHit(m_subcards, modelId, [](const s_Subcard& card) { return &card; });
}

const s_Connector* SubcardConfigManager::findConnector(int modelId, int position) {
    return firstHit(m_subcards, modelId,
                    [&](const s_Subcard& card) { return atPosition(card.connectors.connectors, position); });
}

const s_ConnectorGroup* SubcardConfigManager::findConnectorLocatedGroup(int modelId, int position) {
    return firstHit(m_subcards, modelId, [&](const s_Subcard& card) -> const s_ConnectorGroup* {
        for (const s_ConnectorGroup& group : card.capacity.groups) {
            if (atPosition(group.connectors, position)) return &group;
        }
        return nullptr;
    });
}

std::vector<s_Connector> SubcardConfigManager::findConnectorByGroupId(int modelId, int groupId) {
    std::vector<s_Connector> result;
    forEachCard(m_subcards, modelId, [&](const s_Subcard& card) {
        for (const s_ConnectorGroup& group : card.capacity.groups) {
            if (group.value == groupId) result = group.connectors; // the last group wins
        }
    });
    // The card's own connector list knows the interface type best; the last
    // entry at a position wins. Only the copy is changed.
    for (s_Connector& r : result) {
        forEachCard(m_subcards, modelId, [&](const s_Subcard& card) {
            for (const s_Connector& c : card.connectors.connectors) {
                if (c.position == r.position) r.interfaceType = c.interfaceType;
            }
        });
    }
    return result;
}

s_DeviceMode SubcardConfigManager::findSubcardModeData(int modelId, int capacity, int deviceMode) {
    s_DeviceMode result;
    result.value = kNoSubcardDeviceMode;
    forEachCard(m_subcards, modelId, [&](const s_Subcard& card) {
        for (const s_CapacityInCapacityGroups& c : card.capacityGroups) {
            if (c.value != capacity) continue;
            for (const s_DeviceMode& mode : c.deviceModes) {
                if (mode.value == deviceMode) result = mode; // the last hit wins
            }
        }
    });
    return result;
}

std::vector<s_ConnectorInfo> SubcardConfigManager::findConnectorCopyData(int modelId, int /*capacity*/,
                                                                         int deviceMode, int position) {
    // Every capacity is searched: the copy groups do not depend on it.
    const s_ConnectorGroupInfo* group =
        firstHit(m_subcards, modelId, [&](const s_Subcard& card) -> const s_ConnectorGroupInfo* {
            for (const s_CapacityInfo& c : card.connectorCopy.capacityInfos) {
                for (const s_DeviceModeInfo& mode : c.deviceModes) {
                    if (mode.value != deviceMode) continue;
                    for (const s_ConnectorGroupInfo& g : mode.groups) {
                        if (atPosition(g.connectors, position)) return &g;
                    }
                }
            }
            return nullptr;
        });
    return group ? group->connectors : std::vector<s_ConnectorInfo>{};
}

int SubcardConfigManager::findCardMode(int modelId) {
    const s_Subcard* card = firstCard(modelId);
    return card ? card->cardMode : -1;
}

s_CapacityInConnectorsDeviceModeCapacitys
SubcardConfigManager::findConnectorDeviceModeCapacity(int modelId, int capacity, int deviceMode) {
    const s_CapacityInConnectorsDeviceModeCapacitys* hit =
        firstCapacityHit<s_CapacityInConnectorsDeviceModeCapacitys>(
            m_subcards, modelId, capacity, deviceMode,
            [](const s_CapacityInConnectorsDeviceModeCapacitys& c) { return &c; });
    return hit ? *hit : s_CapacityInConnectorsDeviceModeCapacitys{};
}

int SubcardConfigManager::findConnectorDeviceModeCapacityDynamicRangeSupport(int modelId, int capacity,
                                                                             int deviceMode, int position) {
    const s_ConnectorInConnectorsDeviceModeCapacitysCapacity* hit =
        firstCapacityHit<s_ConnectorInConnectorsDeviceModeCapacitysCapacity>(
            m_subcards, modelId, capacity, deviceMode,
            [&](const s_CapacityInConnectorsDeviceModeCapacitys& c) {
                return atPosition(c.connectors, position);
            });
    return hit ? hit->dynamicRange.support : 0;
}

std::vector<s_TypesConnector> SubcardConfigManager::findConnectorTypesData(int modelId) {
    const s_Subcard* card = firstCard(modelId);
    return card ? card->connectors.types : s_TypesGroups{};
}

bool SubcardConfigManager::isAssociationSubcard(int modelId, int otherModelId) {
    const s_Subcard* card = firstCard(modelId);
    return card && std::any_of(card->associations.begin(), card->associations.end(),
                               [&](const s_Association& a) { return a.modelId == otherModelId; });
}

} // namespace ConfigModel
} // namespace LCD
