// lcdcfg reference: the format reference of every file kind, written from the
// recording observer's account of a load (the shipped tree and any further
// roots), so the documentation says what the readers read and nothing else.

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <climits>
#include <memory>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/session.h"
#include "tools/lcdcfg/trace.h"
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

struct Attribute {
    QStringList kinds;
    QStringList defaults;
};

struct Node {
    QString tag;
    int depth = 0;
    bool read = false; // reached in a sample (else only looked up)
    int order = 0;     // when it was first reached
    bool text = false;
    bool list = false; // several children of one name are read
    QStringList attributeOrder;
    QHash<QString, Attribute> attributes;
    QStringList children; // paths, first seen first
    // the first element seen at this path, for the probe that leaves it out
    int root = -1;
    QString document;
    QVector<int> chain;      // child positions from the root element
    QStringList whenMissing; // what the load reports when it is left out
};

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

struct Kind {
    QStringList files;
    QStringList rootOrder;
    int reached = 0;
    QHash<QString, Node> nodes;

    Node& node(const QString& path, const QString& parent) {
        if (!nodes.contains(path)) {
            Node n;
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
};

void addOnce(QStringList& list, const QString& value) {
    if (!list.contains(value)) list << value;
}

void record(Kind& kind, const DocumentTrace& d, int root) {
    forEachElement(d.document, [&](const QDomElement& e) {
        const ElementTrace* t = d.at(e);
        const bool isRoot = e.parentNode().isDocument();
        if (!isRoot && (!t || !t->found)) return;
        const QString path = elementPath(e);
        const QString parent = isRoot ? QString() : elementPath(e.parentNode().toElement());
        Node& n = kind.node(path, parent);
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
                if (const ElementTrace* st = d.at(s); st && st->found) kind.nodes[parent].list = true;
        }
        if (!t) return;
        n.text = n.text || t->textRead;
        for (const AttributeTrace& a : t->reads) {
            addOnce(n.attributeOrder, a.name);
            Attribute& attribute = n.attributes[a.name];
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
                  const Scratch& scratch, const Node& n) {
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

QString describe(const Node& n) {
    QStringList parts;
    for (const QString& name : n.attributeOrder) {
        const Attribute& a = n.attributes[name];
        QStringList defaults;
        for (const QString& d : a.defaults)
            defaults << (d.isEmpty() ? QStringLiteral("none") : QLatin1Char('"') + d + QLatin1Char('"'));
        parts << QStringLiteral("`%1` %2%3")
                     .arg(name, a.kinds.join(QLatin1Char('/')),
                          defaults.isEmpty()
                              ? QString()
                              : QStringLiteral(", default ") + defaults.join(QStringLiteral(" or ")));
    }
    QStringList notes;
    if (n.depth == 0) notes << QStringLiteral("`version` absent or \"1.0\", else the file is refused");
    if (n.text) notes << QStringLiteral("its text is read");
    if (n.list) notes << QStringLiteral("its children are read one after another");
    if (!n.read) notes << QStringLiteral("looked up, absent from the samples");
    if (!n.whenMissing.isEmpty())
        notes << QStringLiteral("when missing: ") + n.whenMissing.join(QStringLiteral("; "));
    QString line = QStringLiteral("`<%1>`").arg(n.tag);
    if (!parts.isEmpty()) line += QStringLiteral(": ") + parts.join(QStringLiteral("; "));
    if (!notes.isEmpty()) line += QStringLiteral(" (") + notes.join(QStringLiteral("; ")) + QLatin1Char(')');
    return line;
}

QString render(const QString& name, const Kind& kind) {
    QString text;
    QTextStream s(&text);
    s << "# " << name << "\n\n"
      << "Generated by `lcdcfg reference` from what the readers did while loading the shipped tree and the\n"
      << "reference samples; do not edit by hand. Per element: the attributes read (with how the text is\n"
      << "converted and the default used when the attribute is absent; `none` reads as 0 for a number,\n"
      << "as empty for a text). Elements not listed are not read.\n\n"
      << "Read from: " << kind.files.join(QStringLiteral(", ")) << "\n\n";
    QVector<QString> pending;
    for (int i = kind.rootOrder.size() - 1; i >= 0; --i)
        pending << kind.rootOrder[i];
    while (!pending.isEmpty()) {
        const Node& n = kind.nodes[pending.takeLast()];
        s << QString(n.depth * 2, QLatin1Char(' ')) << "- " << describe(n) << "\n";
        QStringList children = n.children; // in the order first reached, then those only looked up
        std::stable_sort(children.begin(), children.end(), [&](const QString& a, const QString& b) {
            const Node& x = kind.nodes[a];
            const Node& y = kind.nodes[b];
            return (x.read ? x.order : INT_MAX) < (y.read ? y.order : INT_MAX);
        });
        for (int i = children.size() - 1; i >= 0; --i)
            pending << children[i];
    }
    return text;
}

} // namespace

int runReference(const QStringList& args) {
    CommandLine cl(QStringLiteral("reference"),
                   QStringLiteral("Writes the format reference of every file kind (one Markdown file each)\n"
                                  "from what the readers do while loading the given trees (default: the\n"
                                  "shipped tree)."),
                   QStringLiteral("[ROOT...]"));
    const QCommandLineOption output(QStringLiteral("output"),
                                    QStringLiteral("Directory to write into (default docs/reference)."),
                                    QStringLiteral("dir"), QStringLiteral("docs/reference"));
    cl.addOption(output);
    Session session(cl, Session::OtherPositional, Session::NoJson);
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    QStringList roots = session.positional();
    if (roots.isEmpty() || session.rootGiven()) roots << session.root();
    kvchost::PluginHost* host = cl.host();
    if (!host) return kUsage;

    QMap<QString, Kind> kinds;
    std::vector<std::unique_ptr<Tree>> trees;
    std::vector<std::unique_ptr<Trace>> traces;
    for (const QString& root : roots) {
        traces.push_back(std::make_unique<Trace>());
        trees.push_back(std::make_unique<Tree>(*host, root));
        Tree& tree = *trees.back();
        if (!tree.load(traces.back().get())) {
            err() << "lcdcfg: " << tree.error() << "\n";
            return kUsage;
        }
        for (const DocumentTrace& d : traces.back()->documents()) {
            const QString kind = documentKind(tree, d);
            if (kind.isEmpty() || !d.ok || !d.rejected.isEmpty()) continue;
            addOnce(kinds[kind].files, tree.relative(d.path));
            record(kinds[kind], d, int(trees.size()) - 1);
        }
    }
    // Probes: each element left out of a copy of its tree, the part loaded
    // again, and what that load reports beyond the unchanged load.
    std::vector<std::unique_ptr<Scratch>> scratches(trees.size());
    for (Kind& kind : kinds)
        for (Node& n : kind.nodes) {
            if (!n.read || n.depth == 0) continue;
            std::unique_ptr<Scratch>& scratch = scratches[size_t(n.root)];
            if (!scratch) scratch = std::make_unique<Scratch>(*trees[size_t(n.root)]);
            n.whenMissing = probe(*host, *trees[size_t(n.root)], *traces[size_t(n.root)], *scratch, n);
        }
    const QDir dir(cl.value(output));
    if (!QDir().mkpath(dir.path())) {
        err() << "lcdcfg: cannot create " << dir.path() << "\n";
        return kUsage;
    }
    for (auto it = kinds.constBegin(); it != kinds.constEnd(); ++it) {
        QFile file(dir.filePath(it.key() + QStringLiteral(".md")));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            err() << "lcdcfg: cannot write " << file.fileName() << "\n";
            return kUsage;
        }
        file.write(render(it.key(), *it).toUtf8());
        out() << file.fileName() << "\n";
    }
    return kClean;
}

} // namespace lcdcfg
