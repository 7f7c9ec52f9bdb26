#pragma once

// lcdcfg report: one self-contained HTML page (inline SVG and CSS, no script,
// nothing fetched) that draws a configuration tree: per model the chassis and
// every screen template's layouts to scale, the layer types, the connector
// types' resolutions, the menu tree and the tree's problems, each problem
// linked to the picture it concerns.

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>

#include "common/loadobserver.h"
#include "tools/lcdcfg/problems.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

// What the records do not say but the page needs: where each layout cell was
// read (records carry no positions) and the names of each connector type.
class ReportSites : public LCD::ConfigModel::LoadObserver {
public:
    struct Place {
        QString document; // absolute
        int line = 0;
        int column = 0;
    };
    struct Names {
        QString en, zhCN, shortEn, shortZhCN;
    };

    const QVector<Place>& cells() const { return m_cells; }             // every layout cell, in reading order
    const QHash<int, Names>& connectorNames() const { return m_names; } // by connector type
    const QHash<QString, int>& connectorDocuments() const { return m_connectorDocs; } // document -> type
    const QHash<QString, int>& cardDocuments() const { return m_cardDocs; } // document -> first card model

    void documentStarted(const QString& path) override { m_document = path; }
    void attributeRead(const LCD::ConfigModel::AttributeRead& read) override;
    void textRead(const QDomElement& element) override;

private:
    QString m_document;
    QVector<Place> m_cells;
    QHash<QString, bool> m_seenCells;
    QHash<int, Names> m_names;
    QHash<QString, int> m_connectorDocs;
    QHash<QString, int> m_cardDocs;
};

// Adds every diagnostic of the tree's loads (and every load that failed or
// could not start) to `problems`, code "load" (or "missing").
void addLoadProblems(const Tree& tree, Problems& problems);

// The page of a loaded tree. Adds the layout findings to `problems` first,
// then lists all of `problems`. `english` picks the names and labels.
QByteArray writeReport(const Tree& tree, const ReportSites& sites, Problems& problems, bool english);

} // namespace lcdcfg
