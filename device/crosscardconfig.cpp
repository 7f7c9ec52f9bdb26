#include "device/crosscardconfig.h"

#include "common/xmlread.h"

namespace LCD {
namespace ConfigModel {

using namespace xml;

LCD_DEFINE_SINGLETON(CrosscardConfigManager, CrossCard)

namespace {

// Not a Qt object: its texts use the base object's translation context.
constexpr char kTrContext[] = "QObject";

const Attrs kConnector{
    {"ModuleId", ""}, {"Slot", ""}, {"Position", ""}, {"IsMain", ""}, {"ConvertTimingPriority", ""}};

CrossCard::s_CrossConnectorGroup readConnector(const QDomElement& e) {
    return readAs<CrossCard::s_CrossConnectorGroup>(e, kConnector);
}

CrossCard::s_CrossConnectorGroups readGroup(const QDomElement& e) {
    CrossCard::s_CrossConnectorGroups group;
    group.groupId = intAttr(e, "GroupId");
    group.connectors = readEachChild(e, "Connector", RecordKind::CrossMember, readConnector);
    return group;
}

// A device mode without "Capacity" or "Groups" has no groups.
CrossCard::s_CrossDeviceMode readDeviceMode(const QDomElement& e) {
    CrossCard::s_CrossDeviceMode mode;
    mode.value = intAttr(e, "Value");
    mode.groups =
        readEachChild(child(child(e, "Capacity"), "Groups"), "Group", RecordKind::CrossGroup, readGroup);
    return mode;
}

} // namespace

CrosscardConfigManager::CrosscardConfigManager() = default;
CrosscardConfigManager::~CrosscardConfigManager() = default;

bool CrosscardConfigManager::parseDeviceCrosscardcfg(const QString& path, QString& error,
                                                     CrossCard::s_CrossSubcards& subcards) {
    QDomDocument doc;
    return loadDocument(path, Loader{kDeviceFile, kTrContext, LCD_LOG_SITE}, doc, error) &&
           parseDeviceCrosscardcfg(doc, error, subcards);
}

bool CrosscardConfigManager::parseDeviceCrosscardcfg(const QDomDocument& doc, QString& error,
                                                     CrossCard::s_CrossSubcards& subcards) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    if (!checkDocumentRoot(doc, loader, error)) return false;
    Section s(error, loader);
    const QDomElement list = s.need(s.need(doc.documentElement(), "Device"), "Subcards");
    if (!s.complete()) return false;
    forEachChild(list, "Subcard", [&](const QDomElement& e) {
        const observe::Record r(RecordKind::CrossCard, subcards.size(), e);
        CrossCard::s_CrossSubcard subcard;
        subcardInfo(e, subcard);
        subcards.push_back(std::move(subcard));
    });
    return true;
}

void CrosscardConfigManager::subcardInfo(const QDomElement& element, CrossCard::s_CrossSubcard& subcard) {
    subcard.moduleId = intAttr(element, "Value");
    // A missing grouping element reads as its defaults: 1, 1 and offset 100.
    subcard.interfaceGroup = readAs<s_SupportInfo>(child(element, "InterfaceGroup"), kLenientPair);
    const QDomElement deviceGroup = child(element, "DeviceInterfaceGroup");
    subcard.deviceInterfaceGroup = readAs<s_SupportInfo>(deviceGroup, kLenientPair);
    subcard.offset = intAttr(deviceGroup, "Offset", "100");
    // Every sibling after the first "DeviceMode" is a device mode, whatever its name.
    forEachChild(element, "DeviceMode", [&](const QDomElement& e) {
        const observe::Record r(RecordKind::CrossMode, subcard.deviceModes.size(), e);
        subcard.deviceModes.push_back(readDeviceMode(e));
    });
}

} // namespace ConfigModel
} // namespace LCD
