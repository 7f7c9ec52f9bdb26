// lcdcfg lint: what the lenient readers let pass silently. The tree is loaded
// with the recording observer; then every parsed document is compared with
// what the readers did with it: attributes never read, elements never
// reached, numbers that did not convert, texts nobody read.

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

#include "tools/lcdcfg/check.h"
#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/problems.h"
#include "tools/lcdcfg/session.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

struct Rule {
    const char* code;
    const char* summary;
};

const Rule kRules[] = {
    {"parse", "the file cannot be opened or parsed"},
    {"root", "the root element is not the one the loader expects; the file is refused"},
    {"version", "the root \"version\" is not \"1.0\"; the file is refused"},
    {"file-unread", "no reader walks this file (its name or first element does not say what it is)"},
    {"unread-element", "no walk reaches the element (a misspelt name, or one no reader knows)"},
    {"duplicate-element", "a second element of a name where only the first is read"},
    {"ignored-element", "a walk reaches the element but reads nothing of it"},
    {"unread-attribute", "no reader reads the attribute"},
    {"number-invalid", "a number whose text is not a decimal number; it is stored as 0"},
    {"boolean-number", "\"true\" or \"false\" where a number is read; it is stored as 0"},
    {"hex-number", "a hexadecimal number where a decimal one is read; it is stored as 0"},
    {"number-overflow", "a number that does not fit its field; it is stored as 0"},
    {"unread-text", "text in an element whose attributes are read, not its text"},
    {"attribute-for-text", "an attribute on an element whose text is read, not its attributes"},
};

bool isNumber(ReadKind kind) {
    return kind == ReadKind::Int || kind == ReadKind::UInt || kind == ReadKind::Float ||
           kind == ReadKind::Double;
}

// The element's own text (its direct text and CDATA children), trimmed.
QString ownText(const QDomElement& e) {
    QString text;
    for (QDomNode n = e.firstChild(); !n.isNull(); n = n.nextSibling())
        if (n.isText()) text += n.nodeValue();
    return text.trimmed();
}

QString tag(const QDomElement& e) {
    return QLatin1Char('<') + e.tagName() + QLatin1Char('>');
}

QString readNames(const ElementTrace& t) {
    QStringList names;
    for (const AttributeTrace& a : t.reads)
        if (!names.contains(a.name)) names << a.name;
    return names.join(QStringLiteral(", "));
}

class Linter {
public:
    Linter(const Tree& tree, const Vocabulary& vocabulary, Problems& problems)
        : m_tree(tree), m_vocabulary(vocabulary), m_problems(problems) {}

    void document(const DocumentTrace& d);

private:
    void add(const QDomElement& at, const char* code, const QString& text) {
        m_problems.add(
            {m_file, at.lineNumber(), at.columnNumber(), Severity::Warning, QLatin1String(code), text});
    }
    // false: the element is reported and its content is not looked at.
    bool elementUsed(const DocumentTrace& d, const QDomElement& e);
    void unreached(const DocumentTrace& d, const QDomElement& e);
    void attributes(const QDomElement& e, const ElementTrace& t);
    // A number that did not convert: `what` names it ("Index=\"six\" of <Slot>").
    void number(const QDomElement& e, const QString& what, const QString& raw, ReadKind kind,
                const QString& stored);
    void text(const QDomElement& e, const ElementTrace& t);

    const Tree& m_tree;
    const Vocabulary& m_vocabulary;
    Problems& m_problems;
    QString m_file;
};

void Linter::document(const DocumentTrace& d) {
    m_file = m_tree.relative(d.path);
    if (!d.ok) {
        m_problems.add({m_file, d.line, d.column, Severity::Error, QStringLiteral("parse"), d.error});
        return;
    }
    const QDomElement root = d.document.documentElement();
    if (!d.rejected.isEmpty()) {
        const QString version = root.attribute(QStringLiteral("version"));
        if (root.hasAttribute(QStringLiteral("version")) && version != QLatin1String("1.0"))
            add(root, "version",
                QStringLiteral("version=\"%1\": only \"1.0\" is accepted (%2)").arg(version, d.rejected));
        else
            add(root, "root", QStringLiteral("root %1 is refused: %2").arg(tag(root), d.rejected));
        return;
    }
    const ElementTrace* rootTrace = d.at(root);
    if (!rootTrace || !rootTrace->lookedInto) {
        add(root, "file-unread", QStringLiteral("no reader walks this file"));
        return;
    }
    QVector<QDomElement> pending{root};
    while (!pending.isEmpty()) {
        const QDomElement e = pending.takeLast();
        if (!elementUsed(d, e)) continue;
        if (const ElementTrace* t = d.at(e)) {
            attributes(e, *t);
            text(e, *t);
        } else {
            attributes(e, ElementTrace{});
        }
        for (QDomElement c = e.lastChildElement(); !c.isNull(); c = c.previousSiblingElement())
            pending << c;
    }
}

bool Linter::elementUsed(const DocumentTrace& d, const QDomElement& e) {
    const bool isRoot = e.parentNode().isDocument();
    const ElementTrace* t = d.at(e);
    if (!isRoot && (!t || !t->found)) {
        unreached(d, e);
        return false;
    }
    const bool nothingRead = !t || (t->reads.isEmpty() && !t->textRead && !t->lookedInto);
    const bool hasContent = e.attributes().count() > 0 || !e.firstChildElement().isNull();
    if (!isRoot && nothingRead && hasContent) {
        add(e, "ignored-element", QStringLiteral("%1 is reached but nothing in it is read").arg(tag(e)));
        return false;
    }
    return true;
}

void Linter::unreached(const DocumentTrace& d, const QDomElement& e) {
    const QDomElement parent = e.parentNode().toElement();
    for (QDomElement s = e.previousSiblingElement(e.tagName()); !s.isNull();
         s = s.previousSiblingElement(e.tagName())) {
        if (const ElementTrace* t = d.at(s); t && t->found) {
            add(e, "duplicate-element",
                QStringLiteral("only the first %1 in %2 is read; this one is ignored")
                    .arg(tag(e), tag(parent)));
            return;
        }
    }
    const QStringList known = m_vocabulary.children.value(elementPath(parent));
    if (known.contains(e.tagName())) {
        add(e, "unread-element",
            QStringLiteral("%1 in %2 is not read here (the walk ends before it)").arg(tag(e), tag(parent)));
        return;
    }
    const QString near = closest(e.tagName(), known);
    add(e, "unread-element",
        near.isEmpty()
            ? QStringLiteral("no reader reads %1 in %2").arg(tag(e), tag(parent))
            : QStringLiteral("no reader reads %1 in %2; did you mean <%3>?").arg(tag(e), tag(parent), near));
}

void Linter::attributes(const QDomElement& e, const ElementTrace& t) {
    const bool isRoot = e.parentNode().isDocument();
    const QDomNamedNodeMap map = e.attributes();
    for (int i = 0; i < map.count(); ++i) {
        const QDomAttr a = map.item(i).toAttr();
        const QString name = a.name();
        if ((isRoot && name == QLatin1String("version")) || name == QLatin1String("xmlns") ||
            name.startsWith(QLatin1String("xmlns:")))
            continue;
        bool read = false;
        for (const AttributeTrace& r : t.reads) {
            if (r.name != name) continue;
            read = true;
            if (r.present && !r.validNumber && isNumber(r.kind)) {
                number(e, QStringLiteral("%1=\"%2\" of %3").arg(r.name, r.raw, tag(e)), r.raw, r.kind,
                       r.stored);
                break;
            }
        }
        if (read) continue;
        if (t.textRead && ownText(e).isEmpty()) {
            add(e, "attribute-for-text",
                QStringLiteral("%1 is read for its text, which is empty; %2=\"%3\" is not read "
                               "(write %4%3</%5>)")
                    .arg(tag(e), name, a.value(), tag(e), e.tagName()));
            continue;
        }
        QStringList known = m_vocabulary.attributes.value(elementPath(e));
        for (const AttributeTrace& r : t.reads)
            if (!known.contains(r.name)) known << r.name;
        const QString near = closest(name, known);
        add(e, "unread-attribute",
            near.isEmpty()
                ? QStringLiteral("no reader reads %1 of %2").arg(name, tag(e))
                : QStringLiteral("no reader reads %1 of %2; did you mean %3?").arg(name, tag(e), near));
    }
}

void Linter::number(const QDomElement& e, const QString& what, const QString& text, ReadKind kind,
                    const QString& storedValue) {
    const QString raw = text.trimmed();
    const QString stored = QStringLiteral("stored as %1").arg(storedValue);
    static const QRegularExpression hex(QStringLiteral("^[+-]?0[xX]([0-9a-fA-F]+)$"));
    static const QRegularExpression digits(QStringLiteral("^[+-]?[0-9]+$"));
    if (raw.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 ||
        raw.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0) {
        add(e, "boolean-number", QStringLiteral("%1 is not a number: write 1 or 0 (%2)").arg(what, stored));
    } else if (const QRegularExpressionMatch m = hex.match(raw); m.hasMatch()) {
        bool ok = false;
        const qulonglong value = m.captured(1).toULongLong(&ok, 16);
        add(e, "hex-number",
            ok ? QStringLiteral("%1 is hexadecimal; numbers are decimal: write %2 (%3)")
                     .arg(what, QString::number(value), stored)
               : QStringLiteral("%1 is hexadecimal; numbers are decimal (%2)").arg(what, stored));
    } else if (digits.match(raw).hasMatch()) {
        const char* range = kind == ReadKind::UInt ? "0 to 4294967295" : "-2147483648 to 2147483647";
        add(e, "number-overflow",
            QStringLiteral("%1 is outside %2 (%3)").arg(what, QLatin1String(range), stored));
    } else {
        add(e, "number-invalid", QStringLiteral("%1 is not a decimal number (%2)").arg(what, stored));
    }
}

void Linter::text(const QDomElement& e, const ElementTrace& t) {
    if (t.textNumber) {
        // read as a 32-bit decimal, 0 when the text does not convert
        bool ok = false;
        e.text().toInt(&ok);
        if (!ok)
            number(e, QStringLiteral("the text \"%1\" of %2").arg(e.text().trimmed(), tag(e)), e.text(),
                   ReadKind::Int, QStringLiteral("0"));
        return;
    }
    const QString own = ownText(e);
    if (own.isEmpty() || t.textRead) return;
    const QString shown = own.size() > 40 ? own.left(37) + QStringLiteral("...") : own;
    add(e, "unread-text",
        t.reads.isEmpty() ? QStringLiteral("the text \"%1\" of %2 is not read").arg(shown, tag(e))
                          : QStringLiteral("the text \"%1\" of %2 is not read; its attributes are (%3)")
                                .arg(shown, tag(e), readNames(t)));
}

} // namespace

void lintTree(const Tree& tree, const Trace& trace, const Vocabulary& vocabulary, Problems& problems) {
    Linter linter(tree, vocabulary, problems);
    for (const DocumentTrace& d : trace.documents())
        linter.document(d);
}

void lintDocument(const Tree& tree, const DocumentTrace& document, const Vocabulary& vocabulary,
                  Problems& problems) {
    Linter(tree, vocabulary, problems).document(document);
}

int runLint(const QStringList& args) {
    CommandLine cl(
        QStringLiteral("lint"),
        QStringLiteral("Reports what the lenient readers let pass silently in a configuration tree:\n"
                       "attributes and elements no reader reads, numbers that read as 0, texts\n"
                       "that are not read. Exit 1 when anything is reported."),
        QStringLiteral("[ROOT]"));
    Session session(cl, Session::RootPositional, Session::Json);
    const QCommandLineOption ignore(QStringLiteral("ignore"),
                                    QStringLiteral("Do not report CODE (repeat, or separate with commas)."),
                                    QStringLiteral("CODE"));
    const QCommandLineOption rules(QStringLiteral("rules"),
                                   QStringLiteral("List the rules and their codes."));
    cl.addOption(ignore);
    cl.addOption(rules);
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    if (cl.isSet(rules)) {
        for (const Rule& rule : kRules)
            out() << qSetFieldWidth(20) << Qt::left << rule.code << qSetFieldWidth(0) << rule.summary << "\n";
        return kClean;
    }
    QSet<QString> ignored;
    for (const QString& value : cl.parser().values(ignore)) {
        for (const QString& c : value.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            const auto known = std::find_if(std::begin(kRules), std::end(kRules),
                                            [&](const Rule& r) { return c == QLatin1String(r.code); });
            if (known == std::end(kRules)) return cl.usage(QStringLiteral("unknown rule %1").arg(c));
            ignored.insert(c);
        }
    }
    Trace trace;
    const std::unique_ptr<Tree> loaded = session.load(&trace);
    if (!loaded) return kUsage;
    const Tree& tree = *loaded;
    kvchost::PluginHost* host = cl.host();
    // What the readers look for, from this load and from the shipped tree.
    Vocabulary vocabulary;
    vocabulary.add(trace);
    Trace shipped;
    Tree shippedTree(*host, defaultRoot());
    if (shippedTree.root() != tree.root() && shippedTree.load(&shipped)) vocabulary.add(shipped);

    Problems all;
    lintTree(tree, trace, vocabulary, all);
    Problems problems;
    for (const Problem& p : all.list())
        if (!ignored.contains(p.code)) problems.add(p);
    problems.sort();
    problems.print(out(), session.json(), !session.json() && outIsTerminal());
    return problems.list().isEmpty() ? kClean : kProblems;
}

} // namespace lcdcfg
