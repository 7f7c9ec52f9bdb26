#pragma once

// What the verbs that read a loaded tree share (show, dump, diff): the
// --root and --locale options, the component names on the command line, and
// the load itself.

#include <QtCore/QCommandLineOption>
#include <QtCore/QVector>

#include <memory>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

class Session {
public:
    // Adds --root (and --locale when `withLocale`) to `cl`.
    Session(CommandLine& cl, bool withLocale);

    // The root given with --root, else defaultRoot().
    QString root() const;
    // Sets the application property "lcd_locale" from --locale ("en" or
    // "zh_CN"); false, after a usage message, for another value.
    bool applyLocale(int* exitCode);
    // Loads `parts` (every part when empty) and what they need to answer (the
    // print keys are asked per device model and card model) from `root`; null
    // with the reason printed. Debug messages of the later queries are dropped.
    std::unique_ptr<Tree> load(const QString& root, const QVector<Part>& parts = {});

private:
    CommandLine& m_cl;
    QCommandLineOption m_root;
    QCommandLineOption m_locale;
};

// The part named `name` (as partName gives it), or false.
bool parsePart(const QString& name, Part* part);

} // namespace lcdcfg
