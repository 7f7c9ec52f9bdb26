#pragma once

// What every verb that reads a tree shares: one command line (--root DIR,
// a positional ROOT where the verb takes no other positional argument, one
// --locale, --json where it prints results) and the one way it loads.

#include <QtCore/QCommandLineOption>
#include <QtCore/QVector>

#include <memory>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

class Session {
public:
    enum Positional {
        RootPositional, // the only positional argument is an optional ROOT
        OtherPositional // the verb's positional arguments are its own
    };
    enum Output { NoJson, Json };

    // Adds --root, --locale and, with Json, --json to `cl`.
    Session(CommandLine& cl, Positional positional, Output output);

    // Parses `args` and applies --locale; false with `exitCode` set on a
    // usage error or --help.
    bool parse(const QStringList& args, int* exitCode);
    // --root, else the positional ROOT, else defaultRoot().
    QString root() const;
    // The positional arguments that are not ROOT.
    QStringList positional() const;
    bool json() const;
    bool rootGiven() const { return m_cl.isSet(m_root); }

    // Loads `parts` (every part when empty) and what they need to answer (the
    // print keys are asked per device model and card model) from `root`; null
    // with the reason printed.
    // `observer`, when given, sees the load too.
    std::unique_ptr<Tree> load(const QString& root, const QVector<Part>& parts = {},
                               LCD::ConfigModel::LoadObserver* observer = nullptr);
    std::unique_ptr<Tree> load(const QVector<Part>& parts = {}) { return load(root(), parts); }
    // Every part of root(), seen by `observer`.
    std::unique_ptr<Tree> load(LCD::ConfigModel::LoadObserver* observer) {
        return load(root(), {}, observer);
    }

private:
    CommandLine& m_cl;
    Positional m_positional;
    QCommandLineOption m_root;
    QCommandLineOption m_locale;
    QCommandLineOption m_json;
    bool m_hasJson;
};

// The part named `name` (as partName gives it), or false.
bool parsePart(const QString& name, Part* part);

} // namespace lcdcfg
