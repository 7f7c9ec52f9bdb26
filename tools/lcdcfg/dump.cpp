// lcdcfg dump: every loaded record as JSON, for tools and for diffing.

#include <QtCore/QJsonDocument>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/records.h"
#include "tools/lcdcfg/session.h"

namespace lcdcfg {

int runDump(const QStringList& args) {
    CommandLine cl(
        QStringLiteral("dump"),
        QStringLiteral("Prints every loaded record of a configuration tree as JSON (one component "
                       "when COMPONENT names one: devices, cards, connectors, menu, hdr, key-check, "
                       "print-keys)."),
        QStringLiteral("[COMPONENT]"));
    Session session(cl, Session::OtherPositional, Session::Json); // JSON is its only format
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    const QStringList positional = session.positional();
    if (positional.size() > 1) return cl.usage(QStringLiteral("one COMPONENT at most"));
    Part part = Part::Devices;
    if (!positional.isEmpty() && !parsePart(positional.first(), &part))
        return cl.usage(QStringLiteral("unknown component %1").arg(positional.first()));

    const std::unique_ptr<Tree> tree =
        session.load(positional.isEmpty() ? QVector<Part>{} : QVector<Part>{part});
    if (!tree) return kUsage;
    QJsonObject dump = dumpTree(*tree);
    QJsonObject stopped; // where a component's load stopped, and why: its records end there
    for (const PartLoad& load : tree->loads()) {
        const QLatin1String name(partName(load.part));
        if (!positional.isEmpty() && load.part != part) {
            dump.remove(name);
            continue;
        }
        const Tree::Stop stop = tree->stop(load.part);
        if (stop.isNull()) continue;
        QJsonObject at{{QStringLiteral("file"), stop.file}, {QStringLiteral("problem"), stop.problem}};
        if (stop.line > 0) at.insert(QStringLiteral("line"), stop.line);
        stopped.insert(name, at);
        err() << "lcdcfg dump: " << name << " did not load in full: " << tree->failure(load.part) << "\n";
    }
    if (!stopped.isEmpty()) dump.insert(QStringLiteral("stopped"), stopped);
    out() << QString::fromUtf8(QJsonDocument(dump).toJson(QJsonDocument::Indented));
    return kClean;
}

} // namespace lcdcfg
