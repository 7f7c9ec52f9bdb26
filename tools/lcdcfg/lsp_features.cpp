// Hover, completion, definitions and references, and the diagnostics'
// positions, from the texts as the editor has them.

#include "tools/lcdcfg/lsp_features.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QXmlStreamReader>

#include <algorithm>

#include "tools/lcdcfg/lsp_checks.h"
#include "tools/lcdcfg/lsp_documents.h"

namespace lcdcfg {

namespace {

// The ids one file names in another: where each kind of file defines an id
// ("card" models in the card catalogue, ...) and where files name one.
struct IdLink {
    const char* kind;
    const char* tag;
    const char* attribute;
    const char* space; // "card", "connector", "menu", "slot" (per model folder), "model"
    bool defines;
};

const IdLink kLinks[] = {
    {"subcard", "Subcard", "ModelId", "card", true},
    {"connector", "Connector", "Type", "connector", true},
    {"menu-items", "MenuItem", "Key", "menu", true},
    {"device-slot", "Slot", "Index", "slot", true},
    {"device-feature", "Device", "ModuleId", "model", true},
    {"device-slot", "Subcard", "ModuleId", "card", false},
    {"device-crosscard", "Subcard", "Value", "card", false},
    {"device-crosscard", "Connector", "ModuleId", "card", false},
    {"device-crosscard", "Connector", "Slot", "slot", false},
    {"device-screen", "Cell", "SlotIndex", "slot", false},
    {"subcard", "Connector", "Type", "connector", false},
    {"resolutions", "Connector", "Type", "connector", false},
    {"print-keys", "Device", "ModelId", "model", false},
    {"print-keys", "Subcard", "ModelId", "card", false},
    {"menu-tree", "MenuItem", "Key", "menu", false},
};

const IdLink* linkOf(const QString& kind, const QString& tag, const QString& attribute) {
    for (const IdLink& l : kLinks)
        if (kind == QLatin1String(l.kind) && tag == QLatin1String(l.tag) &&
            attribute == QLatin1String(l.attribute))
            return &l;
    return nullptr;
}

// "card:", or "slot:device/29974:" for the slots of the model folder of `file`.
QString keyPrefix(const IdLink& l, const QString& file) {
    const QString space = QLatin1String(l.space);
    return space == QLatin1String("slot")
               ? space + QLatin1Char(':') + QFileInfo(file).path() + QLatin1Char(':')
               : space + QLatin1Char(':');
}

QString normalised(const QString& value) {
    bool ok = false;
    const qlonglong n = value.trimmed().toLongLong(&ok);
    return ok ? QString::number(n) : value.trimmed();
}

// The elements open at `offset` (what a start tag there would be a child of).
QString parentPath(const QString& text, int offset) {
    QXmlStreamReader xml(text.left(offset));
    QStringList stack;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement)
            stack << xml.name().toString();
        else if (token == QXmlStreamReader::EndElement && !stack.isEmpty())
            stack.removeLast();
    }
    return stack.join(QLatin1Char('/'));
}

// Plain text as Markdown: what Markdown would take for markup escaped, and
// every line break kept.
QString markdownLines(const QString& text) {
    QString escaped;
    for (const QChar c : text) {
        if (QStringLiteral("\\`*_<>[]").contains(c)) escaped += QLatin1Char('\\');
        escaped += c;
    }
    return escaped.replace(QLatin1Char('\n'), QStringLiteral("  \n"));
}

const FormatNode* nodeOf(const TreeChecks& checks, const QString& file, const QString& path) {
    const auto kind = checks.formats().constFind(TreeChecks::kindOf(file));
    if (kind == checks.formats().constEnd()) return nullptr;
    const auto node = kind->nodes.constFind(path);
    return node == kind->nodes.constEnd() ? nullptr : &*node;
}

// "FILE:LINE" of a site.
QString placeOf(const IdSite& site) {
    const int line = site.range[QStringLiteral("start")].toObject()[QStringLiteral("line")].toInt();
    return QStringLiteral("%1:%2").arg(site.file).arg(line + 1);
}

QJsonObject location(const Workspace& workspace, const IdSite& site) {
    return {{QStringLiteral("uri"), workspace.uriOf(site.file)}, {QStringLiteral("range"), site.range}};
}

} // namespace

// ---- the text -------------------------------------------------------------

ScannedText::ScannedText(const QString& text) {
    lines << 0;
    for (int i = 0; i < text.size(); ++i)
        if (text[i] == QLatin1Char('\n')) lines << i + 1;
    static const QRegularExpression attribute(QStringLiteral("([\\w.:-]+)\\s*=\\s*(\"([^\"]*)\"|'([^']*)')"));
    QXmlStreamReader xml(text);
    QStringList stack;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::EndElement && !stack.isEmpty()) stack.removeLast();
        if (token != QXmlStreamReader::StartElement) continue;
        stack << xml.name().toString();
        ScannedElement e;
        e.tag = stack.last();
        e.path = stack.join(QLatin1Char('/'));
        e.index = elements.size();
        e.end = int(xml.characterOffset());
        e.start = std::max(0, int(text.lastIndexOf(QLatin1Char('<'), e.end - 1)));
        const QString tag = text.mid(e.start, e.end - e.start);
        for (auto m = attribute.globalMatch(tag); m.hasNext();) {
            const QRegularExpressionMatch a = m.next();
            const int group = a.capturedStart(3) >= 0 ? 3 : 4;
            e.attributes.push_back({a.captured(1), a.captured(group), e.start + int(a.capturedStart(1)),
                                    e.start + int(a.capturedStart(group)), e.start + int(a.capturedEnd(2))});
        }
        elements.push_back(e);
    }
}

int ScannedText::offset(int line, int character) const {
    if (line < 0) return 0;
    if (line >= lines.size()) return lines.last();
    const int offset = lines[line] + std::max(0, character);
    return line + 1 < lines.size() ? std::min(offset, lines[line + 1] - 1) : offset; // not past the line
}

QJsonObject ScannedText::position(int offset) const {
    const int line = int(std::upper_bound(lines.begin(), lines.end(), offset) - lines.begin()) - 1;
    return {{QStringLiteral("line"), line}, {QStringLiteral("character"), offset - lines[line]}};
}

QJsonObject ScannedText::range(int from, int to) const {
    return {{QStringLiteral("start"), position(from)}, {QStringLiteral("end"), position(to)}};
}

const ScannedElement* ScannedText::at(int offset) const {
    for (const ScannedElement& e : elements)
        if (e.start <= offset && offset < e.end) return &e;
    return nullptr;
}

const ScannedElement* ScannedText::onLine(int line) const {
    if (line < 1 || line > lines.size()) return nullptr;
    const int from = lines[line - 1];
    const int to = line < lines.size() ? lines[line] : INT_MAX;
    for (const ScannedElement& e : elements)
        if (e.start < to && e.end > from) return &e;
    return nullptr;
}

// ---- the ids ----------------------------------------------------------------

void IdIndex::update(const Workspace& workspace) {
    QHash<QString, File> files;
    m_touched.clear();
    const auto touch = [&](const QVector<IdSite>& sites) {
        for (const IdSite& s : sites)
            m_touched.insert(s.key);
    };
    for (const QString& rel : workspace.files()) {
        const QString kind = TreeChecks::kindOf(rel);
        bool linked = false;
        for (const IdLink& l : kLinks)
            linked = linked || kind == QLatin1String(l.kind);
        if (!linked) continue;
        const auto kept = m_files.constFind(rel);
        if (kept != m_files.constEnd() && !workspace.changed().contains(rel)) { // as last scanned
            files.insert(rel, *kept);
            continue;
        }
        const QString text = workspace.text(workspace.uriOf(rel));
        File file = m_files.value(rel);
        if (file.hash == qHash(text) && !file.sites.isEmpty()) {
            files.insert(rel, file);
            continue;
        }
        file = File{qHash(text), {}};
        const ScannedText scanned(text);
        for (const ScannedElement& e : scanned.elements)
            for (const ScannedAttribute& a : e.attributes)
                if (const IdLink* l = linkOf(kind, e.tag, a.name))
                    file.sites.push_back({rel, a.start, a.end, scanned.range(a.valueStart, a.end - 1),
                                          keyPrefix(*l, rel) + normalised(a.value), l->defines});
        const QVector<IdSite> before = m_files.value(rel).sites;
        if (!std::equal(before.begin(), before.end(), file.sites.begin(), file.sites.end(),
                        [](const IdSite& a, const IdSite& b) {
                            return a.start == b.start && a.end == b.end && a.key == b.key &&
                                   a.defines == b.defines && a.range == b.range;
                        })) {
            touch(before);
            touch(file.sites);
        }
        files.insert(rel, file);
    }
    for (auto it = m_files.constBegin(); it != m_files.constEnd(); ++it)
        if (!files.contains(it.key())) touch(it->sites); // a file gone
    m_files = files;
}

const IdSite* IdIndex::at(const QString& file, int offset) const {
    const auto it = m_files.constFind(file);
    if (it == m_files.constEnd()) return nullptr;
    for (const IdSite& s : it->sites)
        if (s.start <= offset && offset < s.end) return &s;
    return nullptr;
}

QVector<const IdSite*> IdIndex::sites(const QString& key) const {
    QVector<const IdSite*> list;
    for (const File& f : m_files)
        for (const IdSite& s : f.sites)
            if (s.key == key) list << &s;
    std::sort(list.begin(), list.end(), [](const IdSite* a, const IdSite* b) {
        return a->file != b->file ? a->file < b->file : a->start < b->start;
    });
    return list;
}

const IdSite* IdIndex::definition(const QString& key) const {
    for (const IdSite* s : sites(key))
        if (s->defines) return s;
    return nullptr;
}

QVector<QPair<QString, QString>> IdIndex::candidates(const QString& kind, const QString& tag,
                                                     const QString& attribute, const QString& file) const {
    QVector<QPair<QString, QString>> list;
    const IdLink* l = linkOf(kind, tag, attribute);
    if (!l || l->defines) return list;
    const QString prefix = keyPrefix(*l, file);
    for (const File& f : m_files)
        for (const IdSite& s : f.sites)
            if (s.defines && s.key.startsWith(prefix)) list.append({s.key.mid(prefix.size()), placeOf(s)});
    std::sort(list.begin(), list.end());
    return list;
}

// ---- answers ----------------------------------------------------------------

QJsonValue hover(const TreeChecks& checks, const IdIndex& index, const QString& file, const QString& text,
                 int line, int character) {
    const ScannedText scanned(text);
    const int offset = scanned.offset(line, character);
    const ScannedElement* e = scanned.at(offset);
    if (!e) return QJsonValue::Null;
    const FormatNode* node = nodeOf(checks, file, e->path);
    QStringList parts;
    int from = e->start;
    int to = e->end;
    const ScannedAttribute* attribute = nullptr;
    for (const ScannedAttribute& a : e->attributes)
        if (a.start <= offset && offset < a.end) attribute = &a;
    if (attribute) {
        from = attribute->start;
        to = attribute->end;
        const QString described = node ? describeAttribute(*node, attribute->name) : QString();
        parts << (described.isEmpty()
                      ? QStringLiteral("`%1` of `<%2>`: no reader reads it.").arg(attribute->name, e->tag)
                      : markdownLines(described));
        const QString loaded = checks.loaded(file, e->index, attribute->name);
        if (!loaded.isEmpty()) parts << markdownLines(QStringLiteral("Loaded: ") + loaded);
        if (const IdSite* site = index.at(file, attribute->valueStart)) {
            const IdSite* def = index.definition(site->key);
            if (def && def != site)
                parts << markdownLines(QStringLiteral("Defined in ") + placeOf(*def));
            else if (!def)
                parts << QStringLiteral("No file of the tree defines %1 %2.")
                             .arg(site->key.section(QLatin1Char(':'), 0, 0), attribute->value);
        }
    } else {
        to = e->start + 1 + e->tag.size();
        parts << QStringLiteral("`<%1>`").arg(e->tag)
              << (node ? markdownLines(describeElement(*node)) : QStringLiteral("No reader reads it here."));
    }
    return QJsonObject{{QStringLiteral("contents"),
                        QJsonObject{{QStringLiteral("kind"), QStringLiteral("markdown")},
                                    {QStringLiteral("value"), parts.join(QStringLiteral("\n\n"))}}},
                       {QStringLiteral("range"), scanned.range(from, to)}};
}

QJsonArray completion(const TreeChecks& checks, const IdIndex& index, const QString& file,
                      const QString& text, int line, int character) {
    const ScannedText scanned(text);
    const int offset = std::min(int(text.size()), scanned.offset(line, character));
    const int lt = int(text.lastIndexOf(QLatin1Char('<'), offset - 1));
    if (lt < 0 || text.lastIndexOf(QLatin1Char('>'), offset - 1) > lt) return {};
    const QString fragment = text.mid(lt, offset - lt);
    static const QRegularExpression name(QStringLiteral("^<([\\w.:-]*)$"));
    static const QRegularExpression tagName(QStringLiteral("^<([\\w.:-]+)\\s"));
    static const QRegularExpression value(QStringLiteral("([\\w.:-]+)\\s*=\\s*[\"']([^\"']*)$"));
    const QString parent = parentPath(text, lt);
    QJsonArray items;
    auto item = [&](const QString& label, int kind, const QString& detail, const QString& doc) {
        QJsonObject o{{QStringLiteral("label"), label}, {QStringLiteral("kind"), kind}};
        if (!detail.isEmpty()) o.insert(QStringLiteral("detail"), detail);
        if (!doc.isEmpty())
            o.insert(QStringLiteral("documentation"),
                     QJsonObject{{QStringLiteral("kind"), QStringLiteral("markdown")},
                                 {QStringLiteral("value"), markdownLines(doc)}});
        items.append(o);
    };
    const auto kind = checks.formats().constFind(TreeChecks::kindOf(file));
    if (const QRegularExpressionMatch m = name.match(fragment); m.hasMatch()) {
        if (kind == checks.formats().constEnd()) return {};
        const QStringList children = parent.isEmpty() ? kind->rootOrder : kind->orderedChildren(parent);
        for (const QString& child : children) {
            const FormatNode& n = kind->nodes[child];
            item(n.tag, 10, QStringLiteral("element"), describeElement(n));
        }
        return items;
    }
    const QRegularExpressionMatch tag = tagName.match(fragment);
    if (!tag.hasMatch()) return {};
    if (const QRegularExpressionMatch v = value.match(fragment); v.hasMatch()) {
        for (const auto& c : index.candidates(TreeChecks::kindOf(file), tag.captured(1), v.captured(1), file))
            item(c.first, 12, c.second, QString());
        return items;
    }
    const QString path = (parent.isEmpty() ? QString() : parent + QLatin1Char('/')) + tag.captured(1);
    const FormatNode* node = nodeOf(checks, file, path);
    if (!node) return {};
    static const QRegularExpression written(QStringLiteral("([\\w.:-]+)\\s*="));
    QStringList present;
    for (auto m = written.globalMatch(fragment); m.hasNext();)
        present << m.next().captured(1);
    for (const QString& a : node->attributeOrder)
        if (!present.contains(a)) item(a, 5, QStringLiteral("attribute"), describeAttribute(*node, a));
    return items;
}

QJsonArray definition(const Workspace& workspace, const IdIndex& index, const QString& file,
                      const QString& text, int line, int character) {
    const IdSite* site = index.at(file, ScannedText(text).offset(line, character));
    const IdSite* def = site ? index.definition(site->key) : nullptr;
    return def ? QJsonArray{location(workspace, *def)} : QJsonArray();
}

QJsonArray references(const Workspace& workspace, const IdIndex& index, const QString& file,
                      const QString& text, int line, int character, bool withDefinition) {
    const IdSite* site = index.at(file, ScannedText(text).offset(line, character));
    QJsonArray list;
    if (site)
        for (const IdSite* s : index.sites(site->key))
            if (withDefinition || !s->defines) list.append(location(workspace, *s));
    return list;
}

QJsonArray diagnostics(const TreeChecks& checks, const Workspace& workspace, const IdIndex& index,
                       const QString& file, const QString& text, QSet<QString>* ids) {
    const ScannedText scanned(text);
    QJsonArray list;
    for (const Problem& p : checks.problems()) {
        if (p.file != file) continue;
        int from = scanned.offset(p.line - 1, 0);
        int to = p.line > 0 && p.line < scanned.lines.size() ? scanned.lines[p.line] - 1 : from;
        while (from < to && text[from].isSpace())
            ++from;
        QJsonArray related;
        if (const ScannedElement* e = scanned.onLine(p.line)) {
            from = std::max(from, e->start);
            to = std::min(to, e->end);
            // the definition a reference names, or another definition of the same id
            for (const ScannedAttribute& a : e->attributes) {
                const IdSite* site = index.at(file, a.valueStart);
                if (site && ids) ids->insert(site->key);
                for (const IdSite* other : site ? index.sites(site->key) : QVector<const IdSite*>())
                    if (other->defines && other->file != file)
                        related.append(
                            QJsonObject{{QStringLiteral("location"), location(workspace, *other)},
                                        {QStringLiteral("message"),
                                         QStringLiteral("%1 %2 is %3 here")
                                             .arg(site->key.section(QLatin1Char(':'), 0, 0), a.value,
                                                  site->defines ? QStringLiteral("also defined")
                                                                : QStringLiteral("defined"))}});
            }
        }
        QJsonObject d{{QStringLiteral("range"), scanned.range(from, std::max(from, to))},
                      {QStringLiteral("severity"), p.severity == Severity::Error ? 1 : 2},
                      {QStringLiteral("code"), p.code},
                      {QStringLiteral("source"), QStringLiteral("lcdcfg")},
                      {QStringLiteral("message"), p.text}};
        if (!related.isEmpty()) d.insert(QStringLiteral("relatedInformation"), related);
        list.append(d);
    }
    return list;
}

} // namespace lcdcfg
