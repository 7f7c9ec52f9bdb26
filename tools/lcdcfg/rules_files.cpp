// Rules on the files themselves: where they lie and how they are named, how
// their bytes are encoded, and the element a parse error left open.

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <algorithm>

#include "tools/lcdcfg/rulebook.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;
namespace facts = LCD::ConfigModel::facts;

namespace {

QByteArray bytesOf(const QString& path, qint64 size = 4 << 20) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(size) : QByteArray();
}

// Every file some load of the tree opened.
QSet<QString> filesOpened(const RuleRun& run) {
    QSet<QString> opened;
    for (const PartLoad& load : run.tree.loads())
        for (const QString& document : load.documents)
            opened.insert(QFileInfo(document).absoluteFilePath());
    return opened;
}

// The encoding the XML declaration names, lower case ("" when none).
QString declaredEncoding(const QByteArray& bytes) {
    static const QRegularExpression declaration(
        QStringLiteral("^(?:\\x{ef}\\x{bb}\\x{bf})?<\\?xml[^>]*encoding\\s*=\\s*[\"']([^\"']+)"));
    return declaration.match(QString::fromLatin1(bytes.left(200))).captured(1).toLower();
}

bool isUtf8(const QString& encoding) {
    return encoding.isEmpty() || encoding == QLatin1String("utf-8") || encoding == QLatin1String("utf8");
}

// Well-formed UTF-8: lead bytes with their continuation bytes, no overlong
// two-byte forms (the rarer overlong and surrogate forms are let pass).
bool validUtf8(const QByteArray& bytes) {
    const auto* p = reinterpret_cast<const uchar*>(bytes.constData());
    const auto* end = p + bytes.size();
    while (p < end) {
        const uchar c = *p++;
        const int more = c < 0x80                ? 0
                         : c >= 0xC2 && c < 0xE0 ? 1
                         : c >= 0xE0 && c < 0xF0 ? 2
                         : c >= 0xF0 && c < 0xF5 ? 3
                                                 : -1;
        if (more < 0 || end - p < more) return false;
        for (int i = 0; i < more; ++i)
            if ((*p++ & 0xC0) != 0x80) return false;
    }
    return true;
}

bool ascii(const QByteArray& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return uchar(c) < 0x80; });
}

// The first value read in `document` for which `bad` holds, with its site.
template <class F>
std::pair<const Site*, QString> firstValue(const RuleRun& run, const QString& document, F&& bad) {
    for (const Site* site : run.trace.find(run.is(document), QString(), {}))
        for (auto it = site->values.cbegin(); it != site->values.cend(); ++it)
            if (bad(it.value())) return {site, it.value()};
    return {nullptr, QString()};
}

// What the rules take from the bytes of `path`, read once per run (or as
// long as the caller keeps them).
const FileBytes& bytesOf(RuleRun& run, const QString& path) {
    const auto kept = run.bytes->constFind(path);
    if (kept != run.bytes->cend()) return *kept;
    const QByteArray bytes = bytesOf(path);
    FileBytes facts;
    facts.declared = declaredEncoding(bytes);
    facts.ascii = ascii(bytes);
    facts.utf8 = validUtf8(bytes);
    static const QRegularExpression entity(QStringLiteral("&([A-Za-z_][A-Za-z0-9._-]*);"));
    static const QStringList known{QStringLiteral("amp"), QStringLiteral("lt"), QStringLiteral("gt"),
                                   QStringLiteral("quot"), QStringLiteral("apos")};
    const QString text = bytes.contains('&') ? QString::fromUtf8(bytes) : QString(); // no reference at all
    for (auto m = entity.globalMatch(text); m.hasNext();) {
        const QRegularExpressionMatch hit = m.next();
        if (known.contains(hit.captured(1))) continue;
        const int start = int(hit.capturedStart());
        // the parser keeps the text up to the entity: of the element's text, or of the attribute
        const int from = int(std::max(text.lastIndexOf(QLatin1Char('>'), start),
                                      text.lastIndexOf(QLatin1Char('"'), start))) +
                         1;
        const int line = int(text.left(start).count(QLatin1Char('\n'))) + 1;
        const int column = start - int(text.lastIndexOf(QLatin1Char('\n'), start));
        facts.unknownEntities.push_back({line, column, hit.captured(0), text.mid(from, start - from)});
    }
    return *run.bytes->insert(path, facts);
}

} // namespace

QFileInfoList modelFolders(const RuleRun& run) {
    const PartLoad* load = run.tree.loadOf(Part::Devices);
    if (!load || !load->attempted) return {};
    return QDir(load->inputs.first()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

// ---- file placement ---------------------------------------------------------

void modelDirUnnamed(RuleRun& run) {
    for (const QFileInfo& dir : modelFolders(run)) {
        bool ok = false;
        facts::modelOfFolder(dir, &ok);
        if (!ok)
            run.report(
                nullptr, run.tree.relative(dir.absoluteFilePath()),
                QStringLiteral("a model folder is named by its model number: the host skips this one"));
    }
}

void modelFileMissing(RuleRun& run) {
    for (const QFileInfo& dir : modelFolders(run)) {
        unsigned kinds = facts::NoKind;
        const QStringList files =
            QDir(dir.absoluteFilePath()).entryList({QStringLiteral("*.xml")}, QDir::Files);
        for (const QString& name : files)
            kinds |= facts::fileKind(name);
        bool ok = false;
        facts::modelOfFolder(dir, &ok);
        if (!ok || files.isEmpty()) continue; // model-dir-unnamed, model-dir-empty
        for (const unsigned kind : {unsigned(facts::FeatureFile), unsigned(facts::SlotFile)})
            if (!(kinds & kind))
                run.report(
                    nullptr, run.tree.relative(dir.absoluteFilePath()),
                    QStringLiteral("the model has no %1 file (a file whose name holds \"%1\"): the host "
                                   "loads it without its %2")
                        .arg(QLatin1String(facts::fileKindName(kind)),
                             kind == facts::FeatureFile ? QStringLiteral("type names and features")
                                                        : QStringLiteral("slots")));
    }
}

// A description file no component opens: below the folders the loads read
// (a card file two folders deep), or out of the folder it belongs in. Files a
// load that stopped early did not reach are where they belong.
void fileMisplaced(RuleRun& run) {
    QSet<QString> read = filesOpened(run);
    for (const PartLoad& load : run.tree.loads()) {
        QStringList files = load.inputs;
        if (load.part == Part::Cards) files = facts::catalogueFiles(load.inputs.first());
        if (load.part == Part::Connectors) files = facts::connectorFiles(load.inputs.first());
        for (const QString& file : files)
            read.insert(QFileInfo(file).absoluteFilePath());
    }
    for (const QFileInfo& dir : modelFolders(run))
        for (const QFileInfo& file :
             QDir(dir.absoluteFilePath()).entryInfoList({QStringLiteral("*.xml")}, QDir::Files))
            read.insert(file.absoluteFilePath());
    QDirIterator it(run.tree.root(), {QStringLiteral("*.xml")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = QFileInfo(it.next()).absoluteFilePath();
        if (!read.contains(path) && !path.contains(QChar(0xFFFD))) // undecodable-name tells those
            run.report(nullptr, path, QStringLiteral("no component reads a file here: the host ignores it"));
    }
}

void fileKindAmbiguous(RuleRun& run) {
    for (const QFileInfo& dir : modelFolders(run))
        for (const QString& name :
             QDir(dir.absoluteFilePath()).entryList({QStringLiteral("*.xml")}, QDir::Files)) {
            const unsigned read = facts::fileKind(name);
            for (const unsigned kind : {facts::FeatureFile, facts::SlotFile, facts::ScreenFile,
                                        facts::LayerFile, facts::CrosscardFile}) {
                const QLatin1String word(facts::fileKindName(kind));
                if (read && !(read & kind) && name.contains(word))
                    run.report(
                        nullptr, QDir(dir.absoluteFilePath()).filePath(name),
                        QStringLiteral("the name holds \"%1\", but the host reads the file as a %2 file only")
                            .arg(word, QLatin1String(facts::fileKindName(read))));
            }
        }
}

// ---- encodings and entities -------------------------------------------------

void encodingMismatch(RuleRun& run) {
    for (const DocumentTrace& document : run.trace.documents()) {
        if (!document.ok) continue;
        const FileBytes& bytes = bytesOf(run, document.path);
        if (isUtf8(bytes.declared) || bytes.declared.startsWith(QLatin1String("utf")) || bytes.ascii ||
            !bytes.utf8)
            continue;
        const auto value = firstValue(run, document.path, [](const QString& v) {
            return std::any_of(v.begin(), v.end(), [](QChar c) { return c.unicode() >= 0x80; });
        });
        run.report(value.first, document.path,
                   QStringLiteral("the file declares %1 but is written in UTF-8: \"%2\" is stored")
                       .arg(bytes.declared, value.second));
    }
}

void textUndecodable(RuleRun& run) {
    for (const DocumentTrace& document : run.trace.documents()) {
        if (!document.ok) continue;
        const FileBytes& bytes = bytesOf(run, document.path);
        if (!isUtf8(bytes.declared) || bytes.utf8) continue;
        const auto value =
            firstValue(run, document.path, [](const QString& v) { return v.contains(QChar(0xFFFD)); });
        run.report(value.first, document.path,
                   QStringLiteral("the file is not UTF-8 (saved in another encoding?): \"%1\" is stored")
                       .arg(value.second));
    }
}

void entityUnknown(RuleRun& run) {
    for (const DocumentTrace& document : run.trace.documents()) {
        if (!document.ok) continue;
        for (const FileBytes::Entity& entity : bytesOf(run, document.path).unknownEntities) {
            Site at{document.path, QString(), entity.line, entity.column, {}};
            run.report(
                &at, QString(),
                QStringLiteral("%1 is no entity the parser knows: the text is cut short, stored as \"%2\"")
                    .arg(entity.reference, entity.stored));
        }
    }
}

// ---- unclosed elements ------------------------------------------------------

// A parse error the library traced to an element left open: that element,
// where it was opened.
void elementUnclosed(RuleRun& run) {
    for (const PartLoad& load : run.tree.loads())
        for (int i = 1; run.covers(load.part) && i < load.diagnostics.size(); ++i) {
            const Diagnostic& d = load.diagnostics[i];
            const Diagnostic& parse = load.diagnostics[i - 1]; // the failure it explains
            if (d.kind != DiagnosticKind::ElementUnclosed || parse.kind != DiagnosticKind::ParseFailed)
                continue;
            Site at{d.document, QString(), d.line, d.column, {}};
            run.report(&at, QString(),
                       QStringLiteral("<%1> opened here is not closed: the parser stopped at line %2")
                           .arg(d.name)
                           .arg(parse.line));
        }
}

} // namespace lcdcfg
