#pragma once

// What the library knows about a configuration tree, written once: the
// components with what each loads, the current device model, the slot groups
// in their order, the kind of a device model file by its name, the catalogue
// file order and the model-folder naming rule. Header-only, so the library
// and a program that only loads it at run time (lcdcfg) read the same table.

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <dirent.h>

#include <array>
#include <cstddef>

#include "lcdconfigmodel/slot.h"

namespace LCD {
namespace ConfigModel {
namespace facts {

// ---- components -----------------------------------------------------------

// The components in the host's table order.
enum class Component { Devices, Cards, Connectors, Menu, Hdr, Keys, PrintKeys };
constexpr int kComponentCount = 7;

struct ComponentFacts {
    Component component;
    const char* name;      // as lcdcfg names it: "devices", "cards", ...
    const char* id;        // the id the host creates it by
    const char* interface; // the interface the host asks it for
    const char* className; // the class behind it
    const char* inputs[2]; // what it loads, under the root; a trailing '/' names a directory
};

// The HDR options are read from <working directory>/../share/config + inputs.
constexpr ComponentFacts kComponents[kComponentCount] = {
    {Component::Devices,
     "devices",
     "tavio.lcd.configmodel.device",
     "DeviceConfigInterface",
     "DeviceTessanConfigManager",
     {"device/", nullptr}},
    {Component::Cards,
     "cards",
     "tavio.lcd.configmodel.subcard",
     "SubcardConfigInterface",
     "SubcardConfigManager",
     {"subcard/", nullptr}},
    {Component::Connectors,
     "connectors",
     "tavio.lcd.configmodel.connector",
     "ConnectorConfigInterface",
     "ConnectorConfigManager",
     {"connector/", nullptr}},
    {Component::Menu,
     "menu",
     "tavio.lcd.configmodel.menuconfigmanager",
     "MenuConfigInterface",
     "MenuConfigManager",
     {"menu/menufcitems.xml", "menu/menuitems.xml"}},
    {Component::Hdr,
     "hdr",
     "tavio.lcd.configmodel.hdrconfig",
     "IHDRConfig",
     "HDRConfig",
     {"func/hdr/lcdhdrinputconfig.xml", "func/hdr/lcdhdroutputconfig.xml"}},
    {Component::Keys,
     "key-check",
     "tavio.lcd.configmodel.keycheck",
     "IKeyCheckConfig",
     "KeyCheckConfig",
     {"ui/checklist.xml", nullptr}},
    {Component::PrintKeys,
     "print-keys",
     "tavio.lcd.configmodel.printkeyno",
     "IPrintKeyNoConfig",
     "PrintKeyNoConfig",
     {"ui/printkeynoconfig.xml", nullptr}},
};

constexpr const ComponentFacts& component(Component c) {
    return kComponents[static_cast<int>(c)];
}

// The device model the host serves.
constexpr int kCurrentModel = 29974;

// ---- device models --------------------------------------------------------

// A model folder is named by its model number; what follows a dot is ignored
// ("29974.old" is model 29974). Sets `ok` false for a name without a number.
inline int modelOfFolder(const QFileInfo& folder, bool* ok) {
    return folder.baseName().toInt(ok);
}

// What a device model file describes, from its name: a name holding "feature"
// is a feature file, else one holding "slot" a slot file; any other may
// describe a screen, a layer and the cross-card groups at once.
enum FileKind : unsigned {
    NoKind = 0,
    FeatureFile = 1,
    SlotFile = 2,
    ScreenFile = 4,
    LayerFile = 8,
    CrosscardFile = 16,
};
inline unsigned fileKind(const QString& name) {
    if (name.contains(QLatin1String("feature"))) return FeatureFile;
    if (name.contains(QLatin1String("slot"))) return SlotFile;
    unsigned kind = NoKind;
    if (name.contains(QLatin1String("screen"))) kind |= ScreenFile;
    if (name.contains(QLatin1String("layer"))) kind |= LayerFile;
    if (name.contains(QLatin1String("crosscard"))) kind |= CrosscardFile;
    return kind;
}
// The one-word name of a kind ("feature", "slot", ...; the first of a mixed file).
inline const char* fileKindName(unsigned kind) {
    return kind & FeatureFile     ? "feature"
           : kind & SlotFile      ? "slot"
           : kind & ScreenFile    ? "screen"
           : kind & LayerFile     ? "layer"
           : kind & CrosscardFile ? "crosscard"
                                  : "";
}

// What a connector folder's file describes, from its first element: the
// resolutions ("resolutions"), connector descriptions ("connector"), or
// nothing that is read ("").
inline const char* connectorFileKind(const QString& firstElement) {
    return firstElement == QLatin1String("ResolutionRatios") ? "resolutions"
           : firstElement == QLatin1String("Connectors")     ? "connector"
                                                             : "";
}

// ---- slot groups ----------------------------------------------------------

struct SlotGroupFacts {
    const char* element; // its element under "Slots"
    const char* field;   // its member of s_Slots, as the record names it
    Slot::s_SlotAttr Slot::s_Slots::*member;
};

// The slot groups in the order the queries walk them.
inline const std::array<SlotGroupFacts, 7> kSlotGroups = {{
    {"MainControlCardSlots", "mainControlCardSlots", &Slot::s_Slots::mainControlCardSlots},
    {"MixCardSlots", "mixCardSlots", &Slot::s_Slots::mixCardSlots},
    {"InputCardSlots", "inputCardSlots", &Slot::s_Slots::inputCardSlots},
    {"OutputCardSlots", "outputCardSlots", &Slot::s_Slots::outputCardSlots},
    {"MVRCardSlots", "mvrCardSlots", &Slot::s_Slots::mvrCardSlots},
    {"AUXCardSlots", "auxCardSlots", &Slot::s_Slots::auxCardSlots},
    {"EXPCardSlots", "expCardSlots", &Slot::s_Slots::expCardSlots},
}};

// The position of the group read from `element` in kSlotGroups (-1 for none).
inline int slotGroupOf(const QString& element) {
    for (std::size_t i = 0; i < kSlotGroups.size(); ++i)
        if (element == QLatin1String(kSlotGroups[i].element)) return int(i);
    return -1;
}

// ---- catalogue ------------------------------------------------------------

// The names in `directory` that the file-name encoding cannot decode (a
// folder's with a trailing "/"), sorted. A listing through QDir gives them
// with U+FFFD in place of the bytes, a path that opens nothing: the loaders
// read them anyway, so that they fail with their path instead of vanishing.
inline QStringList undecodableNames(const QString& directory) {
    QStringList names;
    DIR* const dir = ::opendir(QFile::encodeName(directory).constData());
    if (!dir) return names;
    while (const dirent* entry = ::readdir(dir)) {
        const QByteArray raw(entry->d_name);
        const QString name = QFile::decodeName(raw);
        if (QFile::encodeName(name) != raw) names << name + QLatin1String(entry->d_type == DT_DIR ? "/" : "");
    }
    ::closedir(dir);
    names.sort();
    return names;
}

// The card files of the catalogue folder `path` in the order they are read:
// every "*.xml" file of `path` and of its direct sub-directories, deeper
// levels unread. The folder itself is listed as "." among its sub-directories
// in name order (so before any name that begins with a letter or digit); the
// files of each in name order, ignoring case.
inline QStringList catalogueFiles(const QString& path) {
    QStringList files;
    const QDir top(path);
    for (const QString& dir : top.entryList(QDir::Dirs | QDir::NoDotDot, QDir::DirsLast)) {
        const QDir level(QDir::cleanPath(top.absoluteFilePath(dir)));
        const QFileInfoList xmlFiles =
            level.entryInfoList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name | QDir::IgnoreCase);
        for (const QFileInfo& file : xmlFiles)
            files << file.absoluteFilePath();
        // Undecodable names after the others; a folder only at the top,
        // where sub-folders are read.
        for (const QString& name : undecodableNames(level.path()))
            if (name.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive) ||
                (dir == QLatin1String(".") && name.endsWith(QLatin1Char('/'))))
                files << level.absoluteFilePath(name);
    }
    return files;
}

// The connector files of the connector folder `path` in the order they are read.
inline QStringList connectorFiles(const QString& path) {
    const QDir dir(path);
    QStringList files;
    for (const QString& name :
         dir.entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name | QDir::IgnoreCase))
        files << dir.absoluteFilePath(name);
    for (const QString& name : undecodableNames(path)) // after the others
        if (name.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive)) files << dir.absoluteFilePath(name);
    return files;
}

} // namespace facts
} // namespace ConfigModel
} // namespace LCD
