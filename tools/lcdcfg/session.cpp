#include "tools/lcdcfg/session.h"

#include <QtCore/QCoreApplication>

namespace lcdcfg {

Session::Session(CommandLine& cl, bool withLocale)
    : m_cl(cl),
      m_root(QStringLiteral("root"), QStringLiteral("Configuration root (default: the shipped one)."),
             QStringLiteral("dir")),
      m_locale(QStringLiteral("locale"), QStringLiteral("Language of names: en or zh_CN."),
               QStringLiteral("locale")) {
    cl.addOption(m_root);
    if (withLocale) cl.addOption(m_locale);
}

QString Session::root() const {
    return m_cl.isSet(m_root) ? m_cl.value(m_root) : defaultRoot();
}

bool Session::applyLocale(int* exitCode) {
    if (!m_cl.isSet(m_locale)) return true;
    const QString locale = m_cl.value(m_locale);
    if (locale != QLatin1String("en") && locale != QLatin1String("zh_CN")) {
        *exitCode = m_cl.usage(QStringLiteral("--locale is en or zh_CN, not %1").arg(locale));
        return false;
    }
    qApp->setProperty("lcd_locale", locale);
    return true;
}

std::unique_ptr<Tree> Session::load(const QString& root, const QVector<Part>& parts) {
    kvchost::PluginHost* host = m_cl.host();
    if (!host) return nullptr;
    QVector<Part> needed = parts;
    if (needed.contains(Part::PrintKeys))
        for (Part p : {Part::Devices, Part::Cards})
            if (!needed.contains(p)) needed.prepend(p);
    auto tree = std::make_unique<Tree>(*host, root);
    if (!(needed.isEmpty() ? tree->load() : tree->load(needed))) {
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
