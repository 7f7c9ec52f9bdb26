// The language server's documents and the private copy of the tree.

#include "tools/lcdcfg/lsp_documents.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>
#include <QtCore/QUrl>

namespace lcdcfg {

namespace {

bool write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

} // namespace

Workspace::Workspace(const QString& root)
    : m_root(QDir::cleanPath(QFileInfo(root).absoluteFilePath())),
      m_shadow(m_dir.path() + QStringLiteral("/config")) {}

QString Workspace::relative(const QString& uri) const {
    const QString path = QDir::cleanPath(QUrl(uri).toLocalFile());
    if (path.isEmpty() || !path.startsWith(m_root + QLatin1Char('/'))) return QString();
    return path.mid(m_root.size() + 1);
}

QString Workspace::uriOf(const QString& relative) const {
    return QUrl::fromLocalFile(m_root + QLatin1Char('/') + relative).toString();
}

void Workspace::open(const QString& uri, const QString& text) {
    m_open.insert(uri, text);
}

void Workspace::close(const QString& uri) {
    m_open.remove(uri);
    m_written.remove(relative(uri));
    m_copied.remove(relative(uri)); // the disk's text is copied again
}

QString Workspace::text(const QString& uri) const {
    const auto it = m_open.constFind(uri);
    if (it != m_open.constEnd()) return *it;
    QFile file(QUrl(uri).toLocalFile());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool Workspace::sync() {
    m_changed.clear();
    QSet<QString> present;
    QStringList files;
    QDirIterator it(m_root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString rel = path.mid(m_root.size() + 1);
        files << rel;
        present.insert(rel);
        const auto open = m_open.constFind(QUrl::fromLocalFile(path).toString());
        if (open != m_open.constEnd()) {
            if (m_written.value(rel) == *open && m_written.contains(rel)) continue;
            write(m_shadow + QLatin1Char('/') + rel, open->toUtf8());
            m_written.insert(rel, *open);
            m_copied.remove(rel);
            m_changed << rel;
            continue;
        }
        const QFileInfo info = it.fileInfo();
        const Stamp stamp{info.size(), info.lastModified()};
        if (m_copied.value(rel) == stamp) continue;
        QFile source(path);
        if (source.open(QIODevice::ReadOnly)) write(m_shadow + QLatin1Char('/') + rel, source.readAll());
        m_copied.insert(rel, stamp);
        m_written.remove(rel);
        m_changed << rel;
    }
    // files gone from the tree go from the copy too
    for (const QString& rel : QStringList(m_files))
        if (!present.contains(rel)) {
            QFile::remove(m_shadow + QLatin1Char('/') + rel);
            m_copied.remove(rel);
            m_written.remove(rel);
            m_changed << rel;
        }
    files.sort();
    m_files = files;
    return !m_changed.isEmpty();
}

} // namespace lcdcfg
