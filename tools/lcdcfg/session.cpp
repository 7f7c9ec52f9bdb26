#include "tools/lcdcfg/session.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QVariant>

namespace lcdcfg {

Session::Session(CommandLine& cl, Positional positional, Output output)
    : m_cl(cl), m_positional(positional),
      m_root(QStringLiteral("root"),
             QStringLiteral("Configuration root (default: $LCD_CONFIG, else the shipped one)."),
             QStringLiteral("dir")),
      m_locale(QStringLiteral("locale"), QStringLiteral("Language of names: en or zh_CN (default en)."),
               QStringLiteral("locale"), QStringLiteral("en")),
      m_json(QStringLiteral("json"), QStringLiteral("Print the results as JSON.")),
      m_hasJson(output == Json) {
    cl.addOption(m_root);
    cl.addOption(m_locale);
    if (output == Json) cl.addOption(m_json);
}

bool Session::parse(const QStringList& args, int* exitCode) {
    if (!m_cl.parse(args, exitCode)) return false;
    if (m_positional == RootPositional) {
        const int roots = m_cl.positional().size() + (m_cl.isSet(m_root) ? 1 : 0);
        if (roots > 1) {
            *exitCode = m_cl.usage(QStringLiteral("one ROOT at most (positional or --root)"));
            return false;
        }
    }
    const QString locale = m_cl.value(m_locale);
    if (locale != QLatin1String("en") && locale != QLatin1String("zh_CN")) {
        *exitCode = m_cl.usage(QStringLiteral("--locale is en or zh_CN, not %1").arg(locale));
        return false;
    }
    qApp->setProperty("lcd_locale", locale);
    return true;
}

QString Session::root() const {
    if (m_cl.isSet(m_root)) return m_cl.value(m_root);
    if (m_positional == RootPositional && !m_cl.positional().isEmpty()) return m_cl.positional().first();
    return defaultRoot();
}

QStringList Session::positional() const {
    return m_positional == RootPositional ? QStringList() : m_cl.positional();
}

bool Session::json() const {
    return m_hasJson && m_cl.isSet(m_json);
}

std::unique_ptr<Tree> Session::load(const QString& root, const QVector<Part>& parts,
                                    LCD::ConfigModel::LoadObserver* observer) {
    kvchost::PluginHost* host = m_cl.host();
    if (!host) return nullptr;
    QVector<Part> needed = parts;
    if (needed.contains(Part::PrintKeys))
        for (Part p : {Part::Devices, Part::Cards})
            if (!needed.contains(p)) needed.prepend(p);
    auto tree = std::make_unique<Tree>(*host, root);
    if (!(needed.isEmpty() ? tree->load(observer) : tree->load(needed, observer))) {
        err() << "lcdcfg: " << tree->error() << "\n";
        return nullptr;
    }
    return tree;
}

bool parsePart(const QString& name, Part* part) {
    for (int i = 0; i < kPartCount; ++i)
        if (name == QLatin1String(partName(static_cast<Part>(i)))) {
            *part = static_cast<Part>(i);
            return true;
        }
    return false;
}

} // namespace lcdcfg
