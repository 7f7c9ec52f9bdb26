#include "device/deviceconfig.h"

#include "common/document.h"
#include "common/facts.h"
#include "common/loadobserver.h"
#include "device/crosscardconfig.h"
#include "device/devicefearureconfig.h"
#include "device/layerconfig.h"
#include "device/screenconfig.h"
#include "device/slotconfig.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QVariant>

#include <array>
#include <utility>

KVC_REGISTER_COMPONENT(LCD::ConfigModel::DeviceTessanConfigManager,
                       LCD::ConfigModel::facts::component(LCD::ConfigModel::facts::Component::Devices).id)

namespace LCD {
namespace ConfigModel {

using Devicecfg::s_Device;

namespace {

// The registry is no Qt object: its texts use the base object's context.
constexpr char kTrContext[] = "QObject";

// Runs one per-device parser on an already parsed file into `fresh`. A
// rejected file is reported as "Error:" with the parser's reason; a reason
// left by a successful parse (a missing optional section) is dropped.
template <class Parser, class Record>
bool readPart(bool (Parser::*parse)(const QDomDocument&, QString&, Record&), const QDomDocument& doc,
              Record& fresh) {
    QString reason;
    if ((Parser::instance()->*parse)(doc, reason, fresh)) return true;
    const QString line = QLatin1String("Error: ") + reason;
    qWarning().noquote() << line;
    observe::diagnose(DiagnosticKind::FileRejected, reason, {}, nullptr, true, line);
    return false;
}

// Reads the files of one model directory into `device`, each file parsed once
// and handed to the parsers its name asks for. A file that cannot be opened
// or parsed leaves its reason in `error` and is skipped. Every file is parsed
// into `doc`, which the registry passes for all its files.
void readModelFiles(const QDir& dir, s_Device& device, const Loader& loader, QDomDocument& doc,
                    QString& error) {
    // Every visible entry named "*.xml" in any case, in directory order (what
    // QDir's "*.xml" filter keeps, without its wildcard expression).
    // Names that cannot be decoded are read too, and fail with their path.
    QStringList files;
    for (QDirIterator entries(dir.path(), QDir::AllEntries | QDir::NoDotAndDotDot); entries.hasNext();)
        files << entries.next();
    for (const QString& name : facts::undecodableNames(dir.path()))
        files << dir.filePath(name);
    for (const QString& file : files) {
        const QString name = QFileInfo(file).fileName();
        if (!name.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive)) continue;
        if (!parseDocumentFile(file, loader, doc, error)) continue;

        const unsigned kind = facts::fileKind(name);
        if (kind & facts::FeatureFile) {
            Feature::s_DeviceFeature feature;
            if (readPart(&DeviceFeatureConfigManager::parseDeviceFeaturecfg, doc, feature))
                device.feature = std::move(feature);
        } else if (kind & facts::SlotFile) {
            Slot::s_VrnSolt slot;
            if (readPart(&SlotConfigManager::parseDeviceSlotcfg, doc, slot)) device.slot = std::move(slot);
        } else {
            // One file may describe a screen, a layer and the cross-card
            // groups at once; a rejected part ends the file.
            if (kind & facts::ScreenFile) {
                const observe::Record r(RecordKind::Screen, std::size_t(device.screens.size()),
                                        doc.documentElement());
                Screen::s_VrnScreen screen;
                if (!readPart(&ScreenConfigManager::parseDeviceScreencfg, doc, screen)) continue;
                device.screens.append(std::move(screen));
            }
            if (kind & facts::LayerFile) {
                const observe::Record r(RecordKind::Layer, std::size_t(device.layers.size()),
                                        doc.documentElement());
                Layercfg::s_VrnLayer layer;
                if (!readPart(&LayerConfigManager::parseDeviceLayercfg, doc, layer)) continue;
                device.layers.append(std::move(layer));
            }
            if (kind & facts::CrosscardFile) {
                CrossCard::s_CrossSubcards subcards;
                if (readPart(&CrosscardConfigManager::parseDeviceCrosscardcfg, doc, subcards))
                    device.crossSubcards = std::move(subcards);
            }
        }
    }
}

// The slot groups in the order the queries walk them.
std::array<const Slot::s_SlotAttr*, 7> slotGroups(const Slot::s_Slots& s) {
    std::array<const Slot::s_SlotAttr*, 7> groups{};
    for (std::size_t i = 0; i < groups.size(); ++i)
        groups[i] = &(s.*facts::kSlotGroups[i].member);
    return groups;
}

// The first element of `items` whose `field` equals `key`; null after the
// warning `missing` (with `key` for %1) when there is none.
template <class Item, class Container>
const Item* firstWithKey(const Container& items, qint32 Item::*field, int key, const char* missing) {
    for (const auto& item : items) {
        if (item.*field == key) return &item;
    }
    qWarning().noquote() << QString::fromLatin1(missing).arg(key);
    return nullptr;
}

} // namespace

DeviceTessanConfigManager::DeviceTessanConfigManager() = default;
DeviceTessanConfigManager::~DeviceTessanConfigManager() = default;

// ---- loading ----------------------------------------------------------------

bool DeviceTessanConfigManager::readConfig(const QString& path, QString& error) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    if (!prepareDirectory(path, loader, error)) return false;

    const QFileInfoList modelDirs =
        QDir(path).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    QDomDocument doc; // one for every file: it is let go as the next file is parsed
    for (const QFileInfo& modelDir : modelDirs) {
        bool isNumber = false;
        const int modelId = facts::modelOfFolder(modelDir, &isNumber);
        if (!isNumber) {
            qDebug().noquote() << "invalid dir name : " << modelDir.baseName();
            continue;
        }
        // The record is kept even when none of its files can be used.
        const observe::Record r(RecordKind::Model, std::size_t(m_devices.size()));
        m_devices.append(s_Device{});
        s_Device& device = m_devices.last();
        device.modelId = modelId;
        readModelFiles(QDir(modelDir.filePath()), device, loader, doc, error);
    }
    return true;
}

// ---- the current device -----------------------------------------------------

quint16 DeviceTessanConfigManager::findDeviceModelId() const {
    constexpr quint16 kCurrentModelId = facts::kCurrentModel;
    if (m_devices.isEmpty()) {
        qWarning().noquote() << "could not find device's cfg.";
        return 0;
    }
    if (!findDevice(kCurrentModelId))
        qWarning().noquote() << QStringLiteral("could not find device(%1)'s cfg.").arg(kCurrentModelId);
    return kCurrentModelId;
}

const s_Device* DeviceTessanConfigManager::findDevice(int modelId) const {
    for (const s_Device& device : m_devices) {
        if (device.modelId == modelId) return &device;
    }
    return nullptr;
}

const s_Device* DeviceTessanConfigManager::currentDevice() const {
    const quint16 modelId = findDeviceModelId();
    if (const s_Device* device = findDevice(modelId)) return device;
    qWarning().noquote() << QStringLiteral("could not find device(%1)'s cfg.").arg(modelId);
    return nullptr;
}

const QList<s_Device>& DeviceTessanConfigManager::DeviceConfigs() const {
    return m_devices;
}

s_Device DeviceTessanConfigManager::curDeviceConfigs() const {
    const s_Device* device = findDevice(findDeviceModelId());
    return device ? *device : s_Device{};
}

// ---- queries of the current device ------------------------------------------

QString DeviceTessanConfigManager::findDeviceTypeName() const {
    const s_Device* device = currentDevice();
    if (!device) return QString();
    // Without an application object the property reads as unset.
    const QCoreApplication* app = QCoreApplication::instance();
    const bool english = app && app->property("lcd_locale").toString() == QLatin1String("en");
    return QString::fromStdString(english ? device->feature.enName : device->feature.zhName);
}

const Screen::s_Screen* DeviceTessanConfigManager::screenConfigs(int screenType) const {
    const s_Device* device = currentDevice();
    return device ? firstWithKey(device->screens, &Screen::s_Screen::type, screenType,
                                 "could not find screen type(%1)'s cfg.")
                  : nullptr;
}

const Layercfg::s_Layer* DeviceTessanConfigManager::layerConfigs(int layerType) const {
    const s_Device* device = currentDevice();
    return device ? firstWithKey(device->layers, &Layercfg::s_Layer::type, layerType,
                                 "could not find layer type(%1)'s cfg.")
                  : nullptr;
}

const CrossCard::s_CrossSubcard* DeviceTessanConfigManager::crosscardInterfaceGroup(int moduleId) const {
    const s_Device* device = currentDevice();
    return device ? firstWithKey(device->crossSubcards, &CrossCard::s_CrossSubcard::moduleId, moduleId,
                                 "could not find cross card moduleID(%1)'s cfg.")
                  : nullptr;
}

int DeviceTessanConfigManager::deviceSupportInterfaceGroup() const {
    const s_Device* device = currentDevice();
    return device ? device->feature.interfaceGroup.support : 0;
}

int DeviceTessanConfigManager::deviceSupportCrossCard() const {
    const s_Device* device = currentDevice();
    return device ? device->slot.crossCard.support : 0;
}

int DeviceTessanConfigManager::deviceCheckBlankValue() const {
    const s_Device* device = currentDevice();
    return device ? device->feature.features.checkBlank.value : 0;
}

int DeviceTessanConfigManager::findSubcardModelId(int slotIndex) const {
    const s_Device* device = currentDevice();
    if (!device) return 0;
    for (const Slot::s_SlotAttr* group : slotGroups(device->slot.slots)) {
        for (const Slot::s_Slot& slot : group->slots) {
            // A matching slot without a card does not end the search.
            if (slot.index == slotIndex && !slot.subcards.empty()) return slot.subcards.front().moduleId;
        }
    }
    return 0;
}

// ---- any loaded model -------------------------------------------------------

bool DeviceTessanConfigManager::findSlotConnectors(int deviceModelId, int slotIndex, int subcardModelId,
                                                   std::vector<Slot::s_Slot>& slots) {
    if (m_devices.isEmpty()) return false;
    for (const s_Device& device : qAsConst(m_devices)) {
        if (device.modelId != deviceModelId) continue;
        for (const Slot::s_SlotAttr* group : slotGroups(device.slot.slots)) {
            for (const Slot::s_Slot& slot : group->slots) {
                if (slot.index != slotIndex) continue;
                for (const Slot::s_InlineSubcard& card : slot.subcards) {
                    if (card.moduleId == subcardModelId) slots.push_back(slot); // once per matching card
                }
            }
        }
    }
    return true;
}

// ---- the per-device parsers ---------------------------------------------------

bool DeviceTessanConfigManager::parseDeviceFeaturecfg(const QString& path, QString& error,
                                                      Feature::s_DeviceFeature& feature) {
    return DeviceFeatureConfigManager::instance()->parseDeviceFeaturecfg(path, error, feature);
}

bool DeviceTessanConfigManager::parseDeviceSlotcfg(const QString& path, QString& error,
                                                   Slot::s_VrnSolt& slot) {
    return SlotConfigManager::instance()->parseDeviceSlotcfg(path, error, slot);
}

bool DeviceTessanConfigManager::parseDeviceScreencfg(const QString& path, QString& error,
                                                     Screen::s_VrnScreen& screen) {
    return ScreenConfigManager::instance()->parseDeviceScreencfg(path, error, screen);
}

bool DeviceTessanConfigManager::parseDeviceLayercfg(const QString& path, QString& error,
                                                    Layercfg::s_VrnLayer& layer) {
    return LayerConfigManager::instance()->parseDeviceLayercfg(path, error, layer);
}

bool DeviceTessanConfigManager::parseDeviceCrossCardcfg(const QString& path, QString& error,
                                                        CrossCard::s_CrossSubcards& subcards) {
    return CrosscardConfigManager::instance()->parseDeviceCrosscardcfg(path, error, subcards);
}

} // namespace ConfigModel
} // namespace LCD
