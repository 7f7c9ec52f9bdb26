#pragma once

// A problem found in a configuration tree, and the one way problems are
// printed: `PATH:LINE:COLUMN: SEVERITY: CODE: TEXT` for people (colour only
// on a terminal), one JSON object per problem for machines, then a summary.

#include <QtCore/QString>
#include <QtCore/QTextStream>
#include <QtCore/QVector>

namespace lcdcfg {

enum class Severity { Error, Warning };

// Another place a problem concerns (the first description of a duplicate).
struct Related {
    QString file; // relative to the root
    int line = 0;
    int column = 0;
    QString text;
};

struct Problem {
    QString file; // relative to the root; empty for the tree as a whole
    int line = 0; // 1-based; 0 when unknown
    int column = 0;
    Severity severity = Severity::Error;
    QString code; // stable, e.g. "parse", "card-unknown"
    QString text; // the library's own text, or the rule's
    QVector<Related> related = {};
};

class Problems {
public:
    void add(Problem problem) { m_list.push_back(std::move(problem)); }
    const QVector<Problem>& list() const { return m_list; }
    int count(Severity severity) const;
    // Sorted by file, line, column, then as added; duplicates removed.
    void sort();

    // `json`: {"problems": [...], "errors": N, "warnings": N}.
    void print(QTextStream& stream, bool json, bool colour) const;
    // "N errors, M warnings in F files" (or "no problems").
    QString summary() const;

private:
    QVector<Problem> m_list;
};

QString severityName(Severity severity);

} // namespace lcdcfg
