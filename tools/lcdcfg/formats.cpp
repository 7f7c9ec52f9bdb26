// The formats of the file kinds, from what the readers did while loading
// sample trees; see formats.h.

#include "tools/lcdcfg/formats.h"
#include "tools/lcdcfg/session.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <climits>
#include <memory>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

const char* kindName(ReadKind kind) {
    switch (kind) {
    case ReadKind::Text:
        return "text";
    case ReadKind::Int:
        return "int";
    case ReadKind::UInt:
        return "unsigned";
    case ReadKind::Float:
        return "float";
    case ReadKind::Double:
        return "double";
    case ReadKind::Presence:
        return "presence";
    }
    return "?";
}

// Positions among the element children from the root element down to `e`.
QVector<int> chainOf(QDomElement e) {
    QVector<int> chain;
    for (; e.parentNode().isElement(); e = e.parentNode().toElement()) {
        int i = 0;
        for (QDomElement s = e.previousSiblingElement(); !s.isNull(); s = s.previousSiblingElement())
            ++i;
        chain.prepend(i);
    }
    return chain;
}

QDomElement follow(const QDomDocument& doc, const QVector<int>& chain) {
    QDomElement e = doc.documentElement();
    for (int i : chain) {
        e = e.firstChildElement();
        for (int k = 0; k < i && !e.isNull(); ++k)
            e = e.nextSiblingElement();
    }
    return e;
}

// Warnings and the error text of a part's load.
QStringList messagesOf(const PartLoad& load, const QString& root) {
    QStringList messages;
    auto add = [&](QString text) {
        text.replace(root + QLatin1Char('/'), QString());
        if (!text.isEmpty() && !messages.contains(text)) messages << text;
    };
    add(load.error);
    for (const Diagnostic& d : load.diagnostics)
        if (d.logged) add(d.logLine);
    return messages;
}

void addOnce(QStringList& list, const QString& value) {
    if (!list.contains(value)) list << value;
}

void record(Format& kind, const DocumentTrace& d, int root) {
    forEachElement(d.document, [&](const QDomElement& e) {
        const ElementTrace* t = d.at(e);
        const bool isRoot = e.parentNode().isDocument();
        if (!isRoot && (!t || !t->found)) return;
        const QString path = elementPath(e);
        const QString parent = isRoot ? QString() : elementPath(e.parentNode().toElement());
        FormatNode& n = kind.node(path, parent);
        if (!n.read) {
            n.order = ++kind.reached;
            n.root = root;
            n.document = d.path;
            n.chain = chainOf(e);
        }
        n.read = true;
        if (!isRoot) {
            for (QDomElement s = e.previousSiblingElement(e.tagName()); !s.isNull();
                 s = s.previousSiblingElement(e.tagName()))
                if (const ElementTrace* st = d.at(s); st && st->found) {
                    kind.nodes[parent].list = true;
                    kind.nodes[path].repeats = true;
                }
        }
        if (!t) return;
        FormatNode& m = kind.nodes[path];
        m.text = m.text || t->textRead;
        m.textNumber = m.textNumber || t->textNumber;
        for (const AttributeTrace& a : t->reads) {
            addOnce(m.attributeOrder, a.name);
            FormatAttribute& attribute = m.attributes[a.name];
            addOnce(attribute.kinds, QLatin1String(kindName(a.kind)));
            if (a.kind != ReadKind::Presence) addOnce(attribute.defaults, a.def);
        }
        for (const QString& missing : t->missing)
            kind.node(path + QLatin1Char('/') + missing, path);
    });
}

// A copy of a tree that probes change one file of at a time, made once.
class Scratch {
public:
    explicit Scratch(const Tree& tree) : m_root(m_dir.path() + QStringLiteral("/config")) {
        QDirIterator it(tree.root(), QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString source = it.next();
            const QString target = m_root + QLatin1Char('/') + tree.relative(source);
            QDir().mkpath(QFileInfo(target).absolutePath());
            QFile::copy(source, target);
        }
    }
    const QString& root() const { return m_root; }

private:
    QTemporaryDir m_dir;
    QString m_root;
};

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

QStringList probe(const kvchost::PluginHost& host, const Tree& tree, const Trace& trace,
                  const Scratch& scratch, const FormatNode& n) {
    const DocumentTrace* d = trace.document(n.document);
    const PartLoad* original = nullptr;
    for (const PartLoad& load : tree.loads())
        if (load.documents.contains(n.document)) original = &load;
    if (!d || !original) return {};
    const QString root = scratch.root();
    QDomDocument copy = d->document.cloneNode(true).toDocument();
    QDomElement e = follow(copy, n.chain);
    e.parentNode().removeChild(e);
    const QString changed = root + QLatin1Char('/') + tree.relative(n.document);
    QFile source(n.document);
    if (!source.open(QIODevice::ReadOnly)) return {};
    const QByteArray unchanged = source.readAll();
    if (!writeFile(changed, copy.toByteArray(2))) return {};
    Tree probed(host, root);
    probed.load({original->part});
    writeFile(changed, unchanged); // the next probe starts from the tree as it is
    const QStringList before = messagesOf(*original, tree.root());
    QStringList added;
    for (const QString& m : messagesOf(*probed.loadOf(original->part), root))
        if (!before.contains(m)) added << m;
    return added;
}

bool isNumber(const QString& kind) {
    return kind != QLatin1String("text") && kind != QLatin1String("presence");
}

QString kindText(const QString& kind) {
    if (kind == QLatin1String("int")) return QStringLiteral("a decimal integer (-2147483648 to 2147483647)");
    if (kind == QLatin1String("unsigned")) return QStringLiteral("a decimal integer (0 to 4294967295)");
    if (kind == QLatin1String("float") || kind == QLatin1String("double"))
        return QStringLiteral("a decimal number");
    if (kind == QLatin1String("presence")) return QStringLiteral("only whether it is there counts");
    return QStringLiteral("a text");
}

} // namespace

FormatNode& Format::node(const QString& path, const QString& parent) {
    if (!nodes.contains(path)) {
        FormatNode n;
        n.kind = kind;
        n.path = path;
        n.tag = path.section(QLatin1Char('/'), -1);
        n.depth = path.count(QLatin1Char('/'));
        nodes.insert(path, n);
        if (parent.isEmpty())
            rootOrder << path;
        else
            nodes[parent].children << path;
    }
    return nodes[path];
}

QStringList Format::orderedChildren(const QString& path) const {
    QStringList children = nodes.value(path).children;
    std::stable_sort(children.begin(), children.end(), [&](const QString& a, const QString& b) {
        const FormatNode& x = nodes[a];
        const FormatNode& y = nodes[b];
        return (x.read ? x.order : INT_MAX) < (y.read ? y.order : INT_MAX);
    });
    return children;
}

void addFormats(Formats& formats, const Tree& tree, const Trace& trace, int root) {
    for (const DocumentTrace& d : trace.documents()) {
        const QString kind = documentKind(tree, d);
        if (kind.isEmpty() || !d.ok || !d.rejected.isEmpty()) continue;
        formats[kind].kind = kind;
        addOnce(formats[kind].files, tree.relative(d.path));
        record(formats[kind], d, root);
    }
}

bool gatherFormats(const kvchost::PluginHost& host, const QStringList& roots, bool withProbes,
                   Formats* formats, QString* error) {
    std::vector<std::unique_ptr<Tree>> trees;
    std::vector<std::unique_ptr<Trace>> traces;
    for (const QString& root : roots) {
        traces.push_back(std::make_unique<Trace>());
        trees.push_back(std::make_unique<Tree>(host, root));
        Tree& tree = *trees.back();
        if (!tree.load(traces.back().get())) {
            *error = tree.error();
            return false;
        }
        addFormats(*formats, tree, *traces.back(), int(trees.size()) - 1);
    }
    if (!withProbes) return true;
    // Probes: each element left out of a copy of its tree, the part loaded
    // again, and what that load reports beyond the unchanged load.
    std::vector<std::unique_ptr<Scratch>> scratches(trees.size());
    for (Format& kind : *formats)
        for (FormatNode& n : kind.nodes) {
            if (!n.read || n.depth == 0) continue;
            std::unique_ptr<Scratch>& scratch = scratches[size_t(n.root)];
            if (!scratch) scratch = std::make_unique<Scratch>(*trees[size_t(n.root)]);
            n.whenMissing = probe(host, *trees[size_t(n.root)], *traces[size_t(n.root)], *scratch, n);
        }
    return true;
}

int runFormatWriter(const QStringList& args, const QString& verb, const QString& description,
                    const QString& defaultOutput,
                    const std::function<QMap<QString, QByteArray>(const Formats&)>& files) {
    CommandLine cl(verb, description, QStringLiteral("[ROOT...]"));
    const QCommandLineOption output(
        QStringLiteral("output"), QStringLiteral("Directory to write into (default %1).").arg(defaultOutput),
        QStringLiteral("dir"), defaultOutput);
    cl.addOption(output);
    Session session(cl, Session::OtherPositional, Session::NoJson);
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    QStringList roots = session.positional();
    if (roots.isEmpty() || session.rootGiven()) roots << session.root();
    kvchost::PluginHost* host = cl.host();
    if (!host) return kUsage;

    Formats formats;
    QString error;
    if (!gatherFormats(*host, roots, true, &formats, &error)) {
        err() << "lcdcfg: " << error << "\n";
        return kUsage;
    }
    const QDir dir(cl.value(output));
    if (!QDir().mkpath(dir.path())) {
        err() << "lcdcfg: cannot create " << dir.path() << "\n";
        return kUsage;
    }
    const QMap<QString, QByteArray> made = files(formats);
    for (auto it = made.constBegin(); it != made.constEnd(); ++it) {
        QFile file(dir.filePath(it.key()));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(*it) != it->size()) {
            err() << "lcdcfg: cannot write " << file.fileName() << "\n";
            return kUsage;
        }
        out() << file.fileName() << "\n";
    }
    return kClean;
}

QString describeElement(const FormatNode& n) {
    QStringList lines;
    if (const QString meaning = meaningOf(n.kind, n.path); !meaning.isEmpty()) lines << meaning;
    if (!n.read) {
        lines << QStringLiteral("<%1> is looked for by a reader; no sample has one, so its content is not "
                                "described.")
                     .arg(n.tag);
        return lines.join(QLatin1Char('\n'));
    }
    if (n.depth == 0)
        lines << QStringLiteral("The root element; version absent or \"1.0\", else the file is refused.");
    else if (n.required())
        lines << QStringLiteral("Required: without it the load reports \"%1\".")
                     .arg(n.whenMissing.join(QStringLiteral("\"; \"")));
    else
        lines << QStringLiteral("Optional.");
    if (n.depth > 0)
        lines << (n.repeats ? QStringLiteral("Each one is read, one after another.")
                            : QStringLiteral("Only the first one in its parent is read."));
    if (n.text)
        lines << (n.textNumber ? QStringLiteral("Its text is read as a decimal integer.")
                               : QStringLiteral("Its text is read."));
    if (!n.attributeOrder.isEmpty())
        lines << QStringLiteral("Attributes read: %1.").arg(n.attributeOrder.join(QStringLiteral(", ")));
    return lines.join(QLatin1Char('\n'));
}

QString describeAttribute(const FormatNode& n, const QString& name) {
    const auto it = n.attributes.constFind(name);
    if (it == n.attributes.constEnd()) return QString();
    QStringList kinds;
    for (const QString& kind : it->kinds)
        addOnce(kinds, kindText(kind));
    QStringList defaults;
    for (const QString& d : it->defaults)
        defaults << (!d.isEmpty()                   ? QLatin1Char('"') + d + QLatin1Char('"')
                     : isNumber(it->kinds.value(0)) ? QStringLiteral("0")
                                                    : QStringLiteral("empty"));
    const QString meaning = meaningOf(n.kind, n.path, name);
    QString text = meaning.isEmpty() ? QString() : meaning + QLatin1Char('\n');
    text += QStringLiteral("%1 of <%2>: %3.").arg(name, n.tag, kinds.join(QStringLiteral(" or ")));
    if (!defaults.isEmpty())
        text += QStringLiteral(" When absent: %1%2.")
                    .arg(defaults.join(QStringLiteral(" or ")),
                         defaults.size() > 1 ? QStringLiteral(", depending on where it is read") : QString());
    return text;
}

} // namespace lcdcfg
