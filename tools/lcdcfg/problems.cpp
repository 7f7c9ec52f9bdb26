#include "tools/lcdcfg/problems.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>

#include <algorithm>

namespace lcdcfg {

QString severityName(Severity severity) {
    return severity == Severity::Error ? QStringLiteral("error") : QStringLiteral("warning");
}

int Problems::count(Severity severity) const {
    return int(std::count_if(m_list.begin(), m_list.end(),
                             [&](const Problem& p) { return p.severity == severity; }));
}

void Problems::sort() {
    std::stable_sort(m_list.begin(), m_list.end(), [](const Problem& a, const Problem& b) {
        return std::tie(a.file, a.line, a.column) < std::tie(b.file, b.line, b.column);
    });
    auto same = [](const Problem& a, const Problem& b) {
        return a.file == b.file && a.line == b.line && a.column == b.column && a.severity == b.severity &&
               a.code == b.code && a.text == b.text;
    };
    m_list.erase(std::unique(m_list.begin(), m_list.end(), same), m_list.end());
}

void Problems::print(QTextStream& stream, bool json, bool colour) const {
    if (json) {
        QJsonArray array;
        for (const Problem& p : m_list) {
            QJsonObject problem{
                {QStringLiteral("file"), p.file},     {QStringLiteral("line"), p.line},
                {QStringLiteral("column"), p.column}, {QStringLiteral("severity"), severityName(p.severity)},
                {QStringLiteral("code"), p.code},     {QStringLiteral("text"), p.text}};
            QJsonArray related;
            for (const Related& r : p.related)
                related.append(QJsonObject{{QStringLiteral("file"), r.file},
                                           {QStringLiteral("line"), r.line},
                                           {QStringLiteral("column"), r.column},
                                           {QStringLiteral("text"), r.text}});
            if (!related.isEmpty()) problem.insert(QStringLiteral("related"), related);
            array.append(problem);
        }
        const QJsonObject document{{QStringLiteral("problems"), array},
                                   {QStringLiteral("errors"), count(Severity::Error)},
                                   {QStringLiteral("warnings"), count(Severity::Warning)}};
        stream << QJsonDocument(document).toJson(QJsonDocument::Indented);
        return;
    }
    for (const Problem& p : m_list) {
        const QString where = QStringLiteral("%1:%2:%3:")
                                  .arg(p.file.isEmpty() ? QStringLiteral(".") : p.file)
                                  .arg(p.line)
                                  .arg(p.column);
        const QString severity = severityName(p.severity) + QLatin1Char(':');
        if (colour)
            stream << "\x1b[1m" << where << "\x1b[0m "
                   << (p.severity == Severity::Error ? "\x1b[31m" : "\x1b[33m") << severity << "\x1b[0m ";
        else
            stream << where << ' ' << severity << ' ';
        // a multi-line text (a parse error) continues indented
        stream << p.code << ": " << QString(p.text).replace(QLatin1Char('\n'), QLatin1String("\n    "))
               << "\n";
    }
    stream << summary() << "\n";
}

QString Problems::summary() const {
    if (m_list.isEmpty()) return QStringLiteral("no problems");
    QSet<QString> files;
    for (const Problem& p : m_list)
        files.insert(p.file);
    const int errors = count(Severity::Error);
    const int warnings = count(Severity::Warning);
    return QStringLiteral("%1 error%2, %3 warning%4 in %5 file%6")
        .arg(errors)
        .arg(errors == 1 ? "" : "s")
        .arg(warnings)
        .arg(warnings == 1 ? "" : "s")
        .arg(files.size())
        .arg(files.size() == 1 ? "" : "s");
}

} // namespace lcdcfg
