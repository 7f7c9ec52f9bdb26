#include "tools/lcdcfg/table.h"

namespace lcdcfg {

int displayWidth(const QString& text) {
    int width = 0;
    for (const QChar c : text) {
        const ushort u = c.unicode();
        const bool wide = (u >= 0x1100 && u <= 0x115F) || (u >= 0x2E80 && u <= 0xA4CF) ||
                          (u >= 0xAC00 && u <= 0xD7A3) || (u >= 0xF900 && u <= 0xFAFF) ||
                          (u >= 0xFE30 && u <= 0xFE4F) || (u >= 0xFF00 && u <= 0xFF60) ||
                          (u >= 0xFFE0 && u <= 0xFFE6);
        width += wide ? 2 : 1;
    }
    return width;
}

void Table::print(QTextStream& out, const QString& title) const {
    if (m_rows.isEmpty()) {
        out << title << ": none\n";
        return;
    }
    out << title << "\n";
    QVector<int> widths(m_header.size());
    for (int i = 0; i < m_header.size(); ++i)
        widths[i] = displayWidth(m_header[i]);
    for (const QStringList& row : m_rows)
        for (int i = 0; i < row.size() && i < widths.size(); ++i)
            widths[i] = qMax(widths[i], displayWidth(row[i]));
    auto line = [&](const QStringList& cells) {
        QString text = QStringLiteral("  ");
        for (int i = 0; i < cells.size() && i < widths.size(); ++i) {
            text += cells[i];
            if (i + 1 < cells.size())
                text += QString(widths[i] - displayWidth(cells[i]) + 2, QLatin1Char(' '));
        }
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        out << text << "\n";
    };
    line(m_header);
    for (const QStringList& row : m_rows)
        line(row);
}

} // namespace lcdcfg
