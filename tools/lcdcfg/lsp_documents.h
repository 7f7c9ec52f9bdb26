#pragma once

// The language server's documents: the configuration tree on disk, the texts
// the editor has open (unsaved changes count), and a private copy of the tree
// where the open texts replace the files, which the checks load. The tree
// itself is only ever read.

#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

namespace lcdcfg {

class Workspace {
public:
    explicit Workspace(const QString& root);

    QString root() const { return m_root; }     // the tree, absolute
    QString shadow() const { return m_shadow; } // the copy the checks load
    bool valid() const { return m_dir.isValid(); }

    // The path of a file:// URI relative to the root; empty when the file
    // is not in the tree.
    QString relative(const QString& uri) const;
    QString uriOf(const QString& relative) const;

    void open(const QString& uri, const QString& text);
    void change(const QString& uri, const QString& text) { open(uri, text); }
    void close(const QString& uri);

    // The text of a file: the editor's when open, else what is on disk.
    QString text(const QString& uri) const;
    // The files of the tree (relative), as of the last sync.
    const QStringList& files() const { return m_files; }

    // Brings the copy up to date with the disk and the open texts; true
    // when something changed since the last sync.
    bool sync();
    // The files (relative) the last sync wrote into the copy or removed.
    const QStringList& changed() const { return m_changed; }

private:
    struct Stamp {
        qint64 size = -1;
        QDateTime modified;
        bool operator==(const Stamp& o) const { return size == o.size && modified == o.modified; }
    };

    QString m_root;
    QTemporaryDir m_dir;
    QString m_shadow;
    QHash<QString, QString> m_open;    // uri -> text
    QHash<QString, Stamp> m_copied;    // relative -> the disk file copied
    QHash<QString, QString> m_written; // relative -> the open text written
    QStringList m_files;
    QStringList m_changed;
};

} // namespace lcdcfg
