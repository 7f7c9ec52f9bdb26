#include "tools/lcdcfg/tree.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

struct PartInfo {
    Part part;
    const char* name;
    const char* id;
    const char* inputs[2]; // under the root; a trailing '/' names a directory
};

const PartInfo kParts[kPartCount] = {
    {Part::Devices, "devices", "tavio.lcd.configmodel.device", {"device/", nullptr}},
    {Part::Cards, "cards", "tavio.lcd.configmodel.subcard", {"subcard/", nullptr}},
    {Part::Connectors, "connectors", "tavio.lcd.configmodel.connector", {"connector/", nullptr}},
    {Part::Menu,
     "menu",
     "tavio.lcd.configmodel.menuconfigmanager",
     {"menu/menufcitems.xml", "menu/menuitems.xml"}},
    {Part::Hdr,
     "hdr",
     "tavio.lcd.configmodel.hdrconfig",
     {"func/hdr/lcdhdrinputconfig.xml", "func/hdr/lcdhdroutputconfig.xml"}},
    {Part::Keys, "key-check", "tavio.lcd.configmodel.keycheck", {"ui/checklist.xml", nullptr}},
    {Part::PrintKeys, "print-keys", "tavio.lcd.configmodel.printkeyno", {"ui/printkeynoconfig.xml", nullptr}},
};

const PartInfo& infoOf(Part part) {
    return kParts[static_cast<int>(part)];
}

// Follows the loads for the tree: which document is being read and where,
// so that a message the library writes can be placed; forwards every event
// to the caller's observer.
class Tracker : public LoadObserver {
public:
    LoadObserver* next = nullptr;
    PartLoad* load = nullptr;
    QString aliasFrom; // a scaffold path standing for the root
    QString aliasTo;
    QString document;
    int line = 0;
    int column = 0;

    void documentStarted(const QString& path) override {
        document = QFileInfo(path).absoluteFilePath();
        if (!aliasFrom.isEmpty() && document.startsWith(aliasFrom))
            document = aliasTo + document.mid(aliasFrom.size());
        line = column = 0;
        load->documents << document;
        if (next) next->documentStarted(document);
    }
    void documentParsed(const DocumentRead& read) override {
        if (!read.ok) at(read.line, read.column);
        if (!next) return;
        DocumentRead copy = read;
        copy.path = document;
        next->documentParsed(copy);
    }
    void documentRejected(const QDomElement& root, const QString& error) override {
        at(root);
        if (next) next->documentRejected(root, error);
    }
    void elementFound(const QDomElement& element) override {
        at(element);
        if (next) next->elementFound(element);
    }
    void elementMissing(const QDomElement& parent, const char* name) override {
        at(parent);
        if (next) next->elementMissing(parent, name);
    }
    void attributeRead(const AttributeRead& read) override {
        at(read.element);
        if (next) next->attributeRead(read);
    }
    void textRead(const QDomElement& element, ReadKind kind) override {
        at(element);
        if (next) next->textRead(element, kind);
    }

private:
    void at(const QDomElement& e) { at(e.lineNumber(), e.columnNumber()); }
    void at(int l, int c) {
        line = l;
        column = c;
    }
};

Tracker* g_tracker = nullptr;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (!g_tracker || !g_tracker->load) return;
    g_tracker->load->diagnostics.push_back(
        {type, text, g_tracker->document, g_tracker->line, g_tracker->column});
}

} // namespace

const char* partName(Part part) {
    return infoOf(part).name;
}

QStringList Tree::inputsOf(Part part, const QString& root) {
    QStringList inputs;
    for (const char* input : infoOf(part).inputs)
        if (input) inputs << QDir::cleanPath(QDir(root).absoluteFilePath(QLatin1String(input)));
    return inputs;
}

Tree::Tree(const kvchost::PluginHost& host, const QString& root)
    : m_host(host), m_root(QDir::cleanPath(QDir(root).absolutePath())) {}

Tree::~Tree() = default;

QString Tree::relative(const QString& path) const {
    if (path.isEmpty()) return path;
    const QString r = QDir(m_root).relativeFilePath(path);
    return r.startsWith(QLatin1String("..")) ? path : r;
}

const PartLoad* Tree::loadOf(Part part) const {
    for (const PartLoad& load : m_loads)
        if (load.part == part) return &load;
    return nullptr;
}

bool Tree::load(LoadObserver* observer) {
    QVector<Part> all;
    for (const PartInfo& info : kParts)
        all << info.part;
    return load(all, observer);
}

bool Tree::load(const QVector<Part>& parts, LoadObserver* observer) {
    if (!QFileInfo(m_root).isDir()) {
        m_error = QStringLiteral("no configuration directory %1").arg(m_root);
        return false;
    }
    for (Part part : parts)
        loadPart(part, observer);
    return true;
}

void Tree::loadPart(Part part, LoadObserver* observer) {
    PartLoad load;
    load.part = part;
    load.inputs = inputsOf(part, m_root);
    const bool directory = QLatin1String(infoOf(part).inputs[0]).endsWith(QLatin1Char('/'));
    if (directory && !QFileInfo(load.inputs.first()).isDir()) {
        load.missing = load.inputs.first();
        m_loads << load;
        return;
    }

    Tracker tracker;
    tracker.next = observer;
    tracker.load = &load;
    g_tracker = &tracker;
    m_host.setLoadObserver(&tracker);
    const QtMessageHandler previous = qInstallMessageHandler(&collect);
    load.attempted = true;
    load.ok = run(load);
    qInstallMessageHandler(previous);
    m_host.setLoadObserver(nullptr);
    g_tracker = nullptr;
    if (part == Part::Hdr) {
        load.ok = !load.documents.isEmpty();
        for (const Diagnostic& d : load.diagnostics)
            load.ok = load.ok && (d.type == QtDebugMsg || d.type == QtInfoMsg);
    }
    m_loads << load;
}

bool Tree::run(PartLoad& load) {
    const QString id = QLatin1String(infoOf(load.part).id);
    QString& error = load.error;
    QString createError;
    auto fail = [&](const QString& why) {
        error = why;
        return false;
    };
    switch (load.part) {
    case Part::Devices:
        m_devices = m_host.create<DeviceConfigInterface>(id, &createError);
        return m_devices ? m_devices->readConfig(load.inputs[0], error) : fail(createError);
    case Part::Cards:
        m_cards = m_host.create<SubcardConfigInterface>(id, &createError);
        return m_cards ? m_cards->readConfig(load.inputs[0], error) : fail(createError);
    case Part::Connectors:
        m_connectors = m_host.create<ConnectorConfigInterface>(id, &createError);
        return m_connectors ? m_connectors->readConfig(load.inputs[0], error) : fail(createError);
    case Part::Menu:
        m_menu = m_host.create<MenuConfigInterface>(id, &createError);
        return m_menu ? m_menu->readMenuFCItems(load.inputs[0], error) &&
                            m_menu->readMenuItems(load.inputs[1], error)
                      : fail(createError);
    case Part::Hdr: {
        m_hdr = m_host.create<IHDRConfig>(id, &createError);
        if (!m_hdr) return fail(createError);
        // The component reads <cwd>/../share/config/func/hdr: a scaffold
        // whose share/config is a link to the root, entered and left again.
        QTemporaryDir scaffold;
        const QString share = scaffold.path() + QLatin1String("/share");
        const QString work = scaffold.path() + QLatin1String("/work");
        if (!scaffold.isValid() || !QDir().mkpath(share) || !QDir().mkpath(work) ||
            !QFile::link(m_root, share + QLatin1String("/config")))
            return fail(QStringLiteral("cannot prepare a working directory for the HDR options"));
        if (g_tracker) {
            g_tracker->aliasFrom = share + QLatin1String("/config");
            g_tracker->aliasTo = m_root;
        }
        const QString previous = QDir::currentPath();
        QDir::setCurrent(work);
        m_hdr->initInputConfig();
        m_hdr->initOutputConfig();
        QDir::setCurrent(previous);
        return true;
    }
    case Part::Keys:
        m_keys = m_host.create<IKeyCheckConfig>(id, &createError);
        return m_keys ? m_keys->readConfig(load.inputs[0], error) : fail(createError);
    case Part::PrintKeys:
        m_printKeys = m_host.create<IPrintKeyNoConfig>(id, &createError);
        return m_printKeys ? m_printKeys->readConfig(load.inputs[0], error) : fail(createError);
    }
    return false;
}

} // namespace lcdcfg
