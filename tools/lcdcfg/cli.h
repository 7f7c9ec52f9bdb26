#pragma once

// What every lcdcfg verb shares: its command line (with the plug-in option),
// the loaded plug-in, the output streams and the default configuration root.

#include <QtCore/QCommandLineParser>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTextStream>

#include <memory>

#include "host/kvchost.h"

namespace lcdcfg {

QTextStream& out();
QTextStream& err();
// True when standard output is a terminal (colour is used only then).
bool outIsTerminal();

// Exit statuses shared by every verb.
enum Exit { kClean = 0, kProblems = 1, kUsage = 2 };

// The one message handler of the process, installed by main() for the run
// and restored when it ends. What the library writes while a tree loads or
// rules run is muted (it reaches lcdcfg as structured events); anything
// else but debug output is printed as "lcdcfg: library: TEXT".
class LibraryMessages {
public:
    LibraryMessages();
    ~LibraryMessages();
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;

private:
    QtMessageHandler m_previous;
};
// A scope during which the library's messages are muted.
class QuietLibrary {
public:
    QuietLibrary();
    ~QuietLibrary();
    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;
};

// The shipped configuration: $LCD_CONFIG, else share/config beside the
// installed tool, else the source tree's.
QString defaultRoot();

// One verb's command line: `lcdcfg VERB [options] [arguments]`. Every verb
// takes --plugin and --help.
class CommandLine {
public:
    CommandLine(const QString& verb, const QString& description, const QString& arguments);

    QCommandLineParser& parser() { return m_parser; }
    void addOption(const QCommandLineOption& option) { m_parser.addOption(option); }

    // Parses `args` (the verb first). false: usage error or --help, with
    // `exitCode` set to what the verb should return.
    bool parse(const QStringList& args, int* exitCode);
    // Positional arguments after the verb.
    QStringList positional() const;
    QString value(const QCommandLineOption& option) const { return m_parser.value(option); }
    bool isSet(const QCommandLineOption& option) const { return m_parser.isSet(option); }

    // Loads the plug-in named by --plugin; null with the reason printed.
    kvchost::PluginHost* host();
    // Prints `message` and the usage line; returns kUsage.
    int usage(const QString& message);

private:
    QCommandLineParser m_parser;
    QString m_verb;
    QCommandLineOption m_plugin;
    std::unique_ptr<kvchost::PluginHost> m_host;
};

// The verbs, one source file each.
int runPlugin(const QStringList& args);
int runCheck(const QStringList& args);
int runReport(const QStringList& args);
int runShow(const QStringList& args);
int runDump(const QStringList& args);
int runDiff(const QStringList& args);
int runLint(const QStringList& args);
int runExplain(const QStringList& args);
int runReference(const QStringList& args);
int runSchema(const QStringList& args);
int runLsp(const QStringList& args);

} // namespace lcdcfg
