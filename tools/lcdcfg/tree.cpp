#include "tools/lcdcfg/tree.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <algorithm>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/trace.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

namespace facts = LCD::ConfigModel::facts;

const facts::ComponentFacts& infoOf(Part part) {
    return facts::component(part);
}

// Follows the loads for the tree: which document is being read, and every
// diagnostic of the load with its place; forwards every event to the
// caller's observer.
class Tracker : public LoadObserver {
public:
    LoadObserver* next = nullptr;
    PartLoad* load = nullptr;
    QString aliasFrom; // a scaffold path standing for the root
    QString aliasTo;
    QString document;

    // A path the library gave, as the tree names it.
    QString aliased(const QString& path) const {
        const QString absolute = QFileInfo(path).absoluteFilePath();
        return !aliasFrom.isEmpty() && absolute.startsWith(aliasFrom)
                   ? aliasTo + absolute.mid(aliasFrom.size())
                   : absolute;
    }

    void documentStarted(const QString& path) override {
        document = aliased(path);
        load->documents << document;
        if (next) next->documentStarted(document);
    }
    void documentParsed(const DocumentRead& read) override {
        if (!next) return;
        DocumentRead copy = read;
        copy.path = document;
        next->documentParsed(copy);
    }
    void documentRejected(const QDomElement& root, const QString& error) override {
        if (next) next->documentRejected(root, error);
    }
    void elementFound(const QDomElement& element) override {
        if (next) next->elementFound(element);
    }
    void elementMissing(const QDomElement& parent, const char* name) override {
        if (next) next->elementMissing(parent, name);
    }
    void attributeRead(const AttributeRead& read) override {
        if (next) next->attributeRead(read);
    }
    void textRead(const QDomElement& element, ReadKind kind) override {
        if (next) next->textRead(element, kind);
    }
    void recordStarted(const RecordRead& record) override {
        // an option table is about its input until its file is opened
        if (record.kind == RecordKind::HdrTable) document = load->inputs.value(record.index);
        if (next) next->recordStarted(record);
    }
    void recordEnded(RecordKind kind) override {
        if (next) next->recordEnded(kind);
    }
    void diagnostic(const LoadDiagnostic& d) override {
        Diagnostic mine{d.kind,   d.text,   d.logged,  document,
                        d.line,   d.column, QString(), d.logLine.isEmpty() ? d.text : d.logLine,
                        QString()};
        if (!d.element.isNull()) {
            mine.line = d.element.lineNumber();
            mine.column = d.element.columnNumber();
        }
        if (d.kind == DiagnosticKind::ElementUnclosed)
            mine.name = QString::fromUtf8(d.name);
        else if (d.kind == DiagnosticKind::FileMissing && d.name)
            mine.name = aliased(QString::fromUtf8(d.name));
        else if (d.name)
            mine.missing = elementPath(d.element) + QLatin1Char('/') + QLatin1String(d.name);
        load->diagnostics << mine;
        if (next) next->diagnostic(d);
    }
};

Tracker* g_tracker = nullptr;

} // namespace

QString shownText(const Diagnostic& d, const std::function<QString(const QString&)>& relative) {
    // the library looked through a scaffold: its text names a temporary path
    if (d.kind == DiagnosticKind::FileMissing && !d.name.isEmpty())
        return QStringLiteral("no such file: %1 (the host goes on without its options)")
            .arg(relative(d.name));
    return d.text;
}

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

Tree::Stop Tree::stop(Part part) const {
    const PartLoad* load = loadOf(part);
    if (!load) return {};
    if (!load->missing.isEmpty()) return {relative(load->missing), -1, QStringLiteral("no such directory")};
    if (load->ok && load->error.isEmpty()) return {};
    for (const Diagnostic& d : load->diagnostics) // the first file that failed, else the loader's text
        if (d.kind != DiagnosticKind::ElementMissing || d.text == load->error)
            return {relative(d.document), d.line,
                    shownText(d, [this](const QString& p) { return relative(p); })};
    return {relative(load->documents.isEmpty() ? load->inputs.first() : load->documents.last()), -1,
            load->error};
}

QString Tree::failure(Part part) const {
    const Stop s = stop(part);
    if (s.isNull()) return QString();
    return s.line < 0 ? QStringLiteral("%1: %2").arg(s.file, s.problem)
                      : QStringLiteral("%1:%2: %3").arg(s.file).arg(s.line).arg(s.problem);
}

QString Tree::failures() const {
    QStringList lines;
    for (const PartLoad& load : m_loads)
        if (const QString why = failure(load.part); !why.isEmpty())
            lines << QStringLiteral("%1: %2").arg(QLatin1String(partName(load.part)), why);
    return lines.join(QLatin1Char('\n'));
}

bool Tree::load(LoadObserver* observer) {
    QVector<Part> all;
    for (const facts::ComponentFacts& info : facts::kComponents)
        all << info.component;
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
        keep(load);
        return;
    }

    Tracker tracker;
    tracker.next = observer;
    tracker.load = &load;
    g_tracker = &tracker;
    m_host.setLoadObserver(&tracker);
    {
        const QuietLibrary quiet; // what it writes arrives as events
        load.attempted = true;
        load.ok = run(load);
    }
    m_host.setLoadObserver(nullptr);
    g_tracker = nullptr;
    if (part == Part::Hdr) // the component has no result: no file failed
        load.ok = !load.documents.isEmpty() && std::none_of(load.diagnostics.begin(), load.diagnostics.end(),
                                                            [](const Diagnostic& d) { return d.logged; });
    keep(load);
}

// A part loaded again takes the place of its previous load.
void Tree::keep(const PartLoad& load) {
    for (PartLoad& previous : m_loads)
        if (previous.part == load.part) {
            previous = load;
            return;
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
