// lcdcfg: the description-file author's tool and the integrator's proof that
// the plug-in loads. Every verb loads the plug-in the way the host does.

#include <QtCore/QCoreApplication>

#include "tools/lcdcfg/cli.h"

namespace {

struct Verb {
    const char* name;
    int (*run)(const QStringList& args);
    const char* summary;
};

const Verb kVerbs[] = {
    {"plugin", lcdcfg::runPlugin, "print the plug-in record and its components"},
    {"check", lcdcfg::runCheck, "load every component of a configuration tree and report every problem"},
    {"report", lcdcfg::runReport,
     "write an HTML page that draws the chassis, the screen layouts and the menu"},
    {"show", lcdcfg::runShow, "what a model, card, connector type, the menu, HDR or the keys offer"},
    {"dump", lcdcfg::runDump, "every loaded record as JSON"},
    {"diff", lcdcfg::runDiff, "what changed between two configuration trees, record by record"},
    {"explain", lcdcfg::runExplain, "answer a question about a tree, with the file and line of every value"},
    {"reference", lcdcfg::runReference, "write the format reference of every file kind from the readers"},
    {"lint", lcdcfg::runLint, "report what the lenient readers let pass: unread names, numbers read as 0"},
    {"schema", lcdcfg::runSchema,
     "write an XML Schema of every file kind, with its catalog, from the readers"},
    {"lsp", lcdcfg::runLsp, "serve an editor: live check and lint, hover, completion, definitions"},
};

int usage(QTextStream& stream, int code) {
    stream << "usage: lcdcfg COMMAND [options] [arguments]\n\n"
              "Loads the LCD configuration-model plug-in the way the host does and works on\n"
              "configuration trees (a folder with device/, subcard/, connector/, menu/,\n"
              "func/hdr/ and ui/).\n\n"
              "Commands:\n";
    for (const Verb& verb : kVerbs)
        stream << "  " << qSetFieldWidth(10) << Qt::left << verb.name << qSetFieldWidth(0) << verb.summary
               << "\n";
    stream << "\nlcdcfg COMMAND --help describes a command.\n";
    return code;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lcdcfg"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LCD_VERSION));

    const lcdcfg::LibraryMessages messages;
    QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) return usage(lcdcfg::err(), lcdcfg::kUsage);
    const QString command = args.first();
    if (command == QLatin1String("--help") || command == QLatin1String("-h") ||
        command == QLatin1String("help"))
        return usage(lcdcfg::out(), lcdcfg::kClean);
    if (command == QLatin1String("--version")) {
        lcdcfg::out() << "lcdcfg " << LCD_VERSION << "\n";
        return lcdcfg::kClean;
    }
    for (const Verb& verb : kVerbs)
        if (command == QLatin1String(verb.name)) return verb.run(args);
    lcdcfg::err() << "lcdcfg: unknown command " << command << "\n";
    return usage(lcdcfg::err(), lcdcfg::kUsage);
}
