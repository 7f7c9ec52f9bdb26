#include "tools/lcdcfg/undecodable.h"

#include <QtCore/QFile>

#include <dirent.h>

namespace lcdcfg {

namespace {

// Printable ASCII as it is, every other byte of an undecodable name as \xHH.
QString escaped(const QByteArray& bytes) {
    QString out;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out += byte >= 0x20 && byte < 0x7F && byte != '\\'
                   ? QString(QLatin1Char(c))
                   : QStringLiteral("\\x%1").arg(byte, 2, 16, QLatin1Char('0'));
    }
    return out;
}

// `relative` is the path below the root as bytes, and as it is printed.
void scan(const QByteArray& root, const QByteArray& relative, const QString& printed, Problems& problems) {
    DIR* const dir = ::opendir((relative.isEmpty() ? root : root + '/' + relative).constData());
    if (!dir) return;
    while (const dirent* entry = ::readdir(dir)) {
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..") continue;
        const bool decodes = QFile::encodeName(QFile::decodeName(name)) == name;
        const QByteArray path = relative.isEmpty() ? name : relative + '/' + name;
        const QString shown = (printed.isEmpty() ? QString() : printed + QLatin1Char('/')) +
                              (decodes ? QFile::decodeName(name) : escaped(name));
        const bool folder = entry->d_type == DT_DIR;
        if (!decodes)
            problems.add({shown, 0, 0, Severity::Error, QStringLiteral("undecodable-name"),
                          QStringLiteral("the %1 name cannot be decoded in the file-name encoding; the host "
                                         "cannot open it under that name")
                              .arg(folder ? QStringLiteral("folder") : QStringLiteral("file"))});
        if (folder) scan(root, path, shown, problems);
    }
    ::closedir(dir);
}

} // namespace

void addUndecodableNames(const QString& root, Problems& problems) {
    scan(QFile::encodeName(root), QByteArray(), QString(), problems);
}

} // namespace lcdcfg
