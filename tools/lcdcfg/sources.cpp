// Where a value came from, and the kind of a document.

#include "tools/lcdcfg/trace.h"

#include <QtCore/QFileInfo>

#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;
namespace facts = LCD::ConfigModel::facts;

namespace {

QString sourceText(const Tree& tree, const QString& document, int line, const AttributeTrace* read) {
    if (!read) return QStringLiteral("not read");
    if (!read->present) return QStringLiteral("default");
    return QStringLiteral("%1:%2").arg(tree.relative(document)).arg(line);
}

} // namespace

QString sourceOf(const Tree& tree, const Trace& trace, const Site* site, const QString& attribute) {
    return site ? sourceText(tree, site->document, site->line, trace.readAt(site, attribute))
                : QStringLiteral("-");
}

// The document that owns `e` (a document read twice is traced twice).
QString sourceOf(const Tree& tree, const Trace& trace, const QDomElement& e, const QString& attribute) {
    if (e.isNull()) return QStringLiteral("-");
    const QDomDocument owner = e.ownerDocument();
    for (const DocumentTrace& d : trace.documents())
        if (d.document == owner) {
            const ElementTrace* t = d.at(e);
            return sourceText(tree, d.path, e.lineNumber(), t ? t->read(attribute) : nullptr);
        }
    return QStringLiteral("not read");
}

QString documentKind(const Tree& tree, const DocumentTrace& document) {
    for (const PartLoad& load : tree.loads()) {
        if (!load.documents.contains(document.path)) continue;
        const QString name = QFileInfo(document.path).fileName();
        switch (load.part) {
        case Part::Devices: {
            const char* kind = facts::fileKindName(facts::fileKind(name));
            return *kind ? QStringLiteral("device-") + QLatin1String(kind) : QString();
        }
        case Part::Cards:
            return QStringLiteral("subcard");
        case Part::Connectors:
            return QLatin1String(
                facts::connectorFileKind(document.document.documentElement().firstChildElement().tagName()));
        case Part::Menu:
            return document.path == load.inputs.value(0) ? QStringLiteral("menu-items")
                                                         : QStringLiteral("menu-tree");
        case Part::Hdr:
            return QStringLiteral("hdr-options");
        case Part::Keys:
            return QStringLiteral("key-check");
        case Part::PrintKeys:
            return QStringLiteral("print-keys");
        }
    }
    return QString();
}
} // namespace lcdcfg
