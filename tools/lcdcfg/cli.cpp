#include "tools/lcdcfg/cli.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <unistd.h>

namespace lcdcfg {

QTextStream& out() {
    static QTextStream stream(stdout);
    return stream;
}

QTextStream& err() {
    static QTextStream stream(stderr);
    return stream;
}

bool outIsTerminal() {
    return isatty(STDOUT_FILENO) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR");
}

namespace {
int g_quiet = 0;

void libraryMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (g_quiet > 0 || type == QtDebugMsg || type == QtInfoMsg) return;
    err() << "lcdcfg: library: " << text << "\n";
    err().flush();
}
} // namespace

LibraryMessages::LibraryMessages() : m_previous(qInstallMessageHandler(&libraryMessage)) {}
LibraryMessages::~LibraryMessages() {
    qInstallMessageHandler(m_previous);
}
QuietLibrary::QuietLibrary() {
    ++g_quiet;
}
QuietLibrary::~QuietLibrary() {
    --g_quiet;
}

QString defaultRoot() {
    const QString fromEnvironment = qEnvironmentVariable("LCD_CONFIG");
    if (!fromEnvironment.isEmpty()) return fromEnvironment;
    const QString installed =
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../share/config"));
    if (QFileInfo(installed).isDir()) return QDir::cleanPath(installed);
    return QStringLiteral(LCD_SOURCE_CONFIG);
}

CommandLine::CommandLine(const QString& verb, const QString& description, const QString& arguments)
    : m_verb(verb), m_plugin(QStringLiteral("plugin"), QStringLiteral("Plug-in library to load."),
                             QStringLiteral("path"), kvchost::PluginHost::defaultPluginPath()) {
    m_parser.setApplicationDescription(description);
    m_parser.addHelpOption();
    m_parser.addOption(m_plugin);
    m_parser.addPositionalArgument(verb, QString(),
                                   verb + (arguments.isEmpty() ? QString() : QLatin1Char(' ') + arguments));
}

bool CommandLine::parse(const QStringList& args, int* exitCode) {
    QStringList argv = args;
    argv.prepend(QCoreApplication::applicationFilePath());
    if (!m_parser.parse(argv)) {
        *exitCode = usage(m_parser.errorText());
        return false;
    }
    if (m_parser.isSet(QStringLiteral("help"))) {
        out() << m_parser.helpText();
        *exitCode = kClean;
        return false;
    }
    return true;
}

QStringList CommandLine::positional() const {
    return m_parser.positionalArguments().mid(1);
}

kvchost::PluginHost* CommandLine::host() {
    if (m_host) return m_host.get();
    auto host = std::make_unique<kvchost::PluginHost>(m_parser.value(m_plugin));
    QString error;
    if (!host->load(&error)) {
        err() << "lcdcfg: " << error << "\n";
        return nullptr;
    }
    m_host = std::move(host);
    return m_host.get();
}

int CommandLine::usage(const QString& message) {
    err() << "lcdcfg " << m_verb << ": " << message << "\n"
          << "usage: lcdcfg " << m_verb << " --help\n";
    return kUsage;
}

} // namespace lcdcfg
