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

#include "tools/lcdcfg/problems.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

// The page of a tree loaded with `trace` attached (where each layout cell
// was read, the connector types' names). Adds the layout findings to
// `problems` first, then lists all of `problems`. `english` picks the names
// and labels.
QByteArray writeReport(const Tree& tree, const Trace& trace, Problems& problems, bool english);

} // namespace lcdcfg
