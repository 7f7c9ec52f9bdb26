#pragma once

// The one way lcdcfg loads a configuration tree: through the host stand-in,
// component by component, as the host would, with a load observer attached:
// every diagnostic of a load arrives as the library's structured event, tied
// to the document and the element it is about.
//
// Nothing is created: a directory the host would hand a component that does
// not exist is reported, not made (the directory loaders would create it).
// The HDR options are read from ROOT/func/hdr whatever the root is called:
// the component finds them from the working directory, so the load runs in a
// temporary scaffold whose ../share/config links to the root, and the working
// directory is restored afterwards.

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>

#include "common/facts.h"
#include "common/loadobserver.h"
#include "host/kvchost.h"
#include "lcdconfigmodel.h"

namespace lcdcfg {

// The components in the host's table order (the library's table).
using Part = LCD::ConfigModel::facts::Component;
constexpr int kPartCount = LCD::ConfigModel::facts::kComponentCount;
const char* partName(Part part); // "devices", "cards", ...

// A diagnostic of a part's load, as the library told it.
struct Diagnostic {
    LCD::ConfigModel::DiagnosticKind kind = LCD::ConfigModel::DiagnosticKind::ParseFailed;
    QString text;        // the library's text, unchanged
    bool logged = false; // also written to the message log
    QString document;    // the file being read, absolute; the input it is about before the first
    int line = 0;        // the element it is about, or where the parser stopped (0 when none)
    int column = 0;
    QString missing; // ElementMissing: the path of the missing element, "Vrn/Device"
    QString logLine; // logged: the line as the library wrote it
    // ElementUnclosed: the element left open (line and column: where it was
    // opened); FileMissing: the file looked for, absolute, as the tree names it.
    QString name;
};

// The text every verb shows for a diagnostic: the library's, except for a
// missing option file, named as the tree names it (`relative`: to the root).
QString shownText(const Diagnostic& d, const std::function<QString(const QString&)>& relative);

struct PartLoad {
    Part part = Part::Devices;
    QStringList inputs; // the paths handed to the loader, absolute
    QString missing;    // an input that does not exist: the load was not attempted
    bool attempted = false;
    bool ok = false;       // the loader's result (HDR: no document failed)
    QString error;         // the loader's error text after the load
    QStringList documents; // every file the load opened, in order, absolute
    QVector<Diagnostic> diagnostics;
};

class Tree {
public:
    Tree(const kvchost::PluginHost& host, const QString& root);
    ~Tree();
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    // Loads every part (or those in `parts`) in table order; a part loaded
    // before is loaded anew, the others keep their loads. `observer`, when
    // given, sees every load too. false only when the plug-in could not be
    // used at all (`error()` says why); failed loads are in loads().
    bool load(LCD::ConfigModel::LoadObserver* observer = nullptr);
    bool load(const QVector<Part>& parts, LCD::ConfigModel::LoadObserver* observer = nullptr);
    QString error() const { return m_error; }

    QString root() const { return m_root; } // absolute, clean
    const kvchost::PluginHost& host() const { return m_host; }
    QString relative(const QString& path) const; // to the root, for messages
    const QVector<PartLoad>& loads() const { return m_loads; }
    const PartLoad* loadOf(Part part) const;
    // Where a part's load stopped: the first file whose load failed (the
    // missing input, or the loader's error) and its problem; an empty file
    // when the part loaded every file.
    struct Stop {
        QString file;  // relative to the root
        int line = -1; // the diagnostic's line (0: none known); -1 for the file as a whole
        QString problem;
        bool isNull() const { return file.isEmpty() && problem.isEmpty(); }
    };
    Stop stop(Part part) const;
    // Why a part cannot answer in full: stop() as "FILE: TEXT" (or
    // "FILE:LINE: TEXT"), empty when the part loaded every file.
    QString failure(Part part) const;
    // failure() of every part that has one, one per line ("cards: FILE: TEXT").
    QString failures() const;

    // The components; null when the part was not loaded (or not created).
    LCD::ConfigModel::DeviceConfigInterface* devices() const { return m_devices.get(); }
    LCD::ConfigModel::SubcardConfigInterface* cards() const { return m_cards.get(); }
    LCD::ConfigModel::ConnectorConfigInterface* connectors() const { return m_connectors.get(); }
    LCD::ConfigModel::MenuConfigInterface* menu() const { return m_menu.get(); }
    LCD::ConfigModel::IHDRConfig* hdr() const { return m_hdr.get(); }
    LCD::ConfigModel::IKeyCheckConfig* keys() const { return m_keys.get(); }
    LCD::ConfigModel::IPrintKeyNoConfig* printKeys() const { return m_printKeys.get(); }

    // The inputs of a part under `root` (directories or files, absolute).
    static QStringList inputsOf(Part part, const QString& root);

private:
    void loadPart(Part part, LCD::ConfigModel::LoadObserver* observer);
    void keep(const PartLoad& load);
    bool run(PartLoad& load);

    const kvchost::PluginHost& m_host;
    QString m_root;
    QString m_error;
    QVector<PartLoad> m_loads;
    kvchost::Component<LCD::ConfigModel::DeviceConfigInterface> m_devices;
    kvchost::Component<LCD::ConfigModel::SubcardConfigInterface> m_cards;
    kvchost::Component<LCD::ConfigModel::ConnectorConfigInterface> m_connectors;
    kvchost::Component<LCD::ConfigModel::MenuConfigInterface> m_menu;
    kvchost::Component<LCD::ConfigModel::IHDRConfig> m_hdr;
    kvchost::Component<LCD::ConfigModel::IKeyCheckConfig> m_keys;
    kvchost::Component<LCD::ConfigModel::IPrintKeyNoConfig> m_printKeys;
};

} // namespace lcdcfg
