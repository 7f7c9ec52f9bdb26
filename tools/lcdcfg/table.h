#pragma once

// Aligned text tables for the show verbs: a header row and rows of cells,
// each column as wide as its widest cell (CJK characters count two columns).

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTextStream>
#include <QtCore/QVector>

namespace lcdcfg {

class Table {
public:
    explicit Table(const QStringList& header) : m_header(header) {}
    void add(const QStringList& row) { m_rows << row; }
    bool isEmpty() const { return m_rows.isEmpty(); }
    // Prints "TITLE" then the header and the rows indented by two spaces;
    // "TITLE: none" when there are no rows.
    void print(QTextStream& out, const QString& title) const;

private:
    QStringList m_header;
    QVector<QStringList> m_rows;
};

// Columns `text` takes on a terminal.
int displayWidth(const QString& text);

} // namespace lcdcfg
