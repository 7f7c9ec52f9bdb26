#include "tools/lcdcfg/layout.h"

#include "common/facts.h"

#include <QtCore/QMap>

#include <algorithm>

namespace lcdcfg {
namespace layout {

using namespace LCD::ConfigModel;

namespace {

constexpr int kInputInterface = 2;
constexpr int kMaxLines = 256; // rows and columns beyond are not drawn or searched for gaps

// The most common value of `values` (the smallest of equally common ones); 0 when empty.
int mostCommon(const QVector<int>& values) {
    QMap<int, int> counts;
    for (int v : values)
        ++counts[v];
    int best = 0;
    int bestCount = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        if (it.value() > bestCount) {
            best = it.key();
            bestCount = it.value();
        }
    return best;
}

// The extents of `count` grid lines: the largest `size` of the cells on each,
// or `fallback` for a line no cell names.
QVector<int> lineSizes(const std::vector<Screen::s_Cell>& cells, int count, int Screen::s_Cell::*index,
                       int Screen::s_Cell::*size) {
    QVector<int> all;
    for (const Screen::s_Cell& cell : cells)
        all << cell.*size;
    const int fallback = mostCommon(all);
    QVector<int> sizes(std::min(std::max(count, 0), kMaxLines), -1);
    for (const Screen::s_Cell& cell : cells) {
        const int i = cell.*index - 1;
        if (i >= 0 && i < sizes.size()) sizes[i] = std::max(sizes[i], cell.*size);
    }
    for (int& s : sizes)
        if (s < 0) s = fallback;
    return sizes;
}

constexpr size_t kMaxCells = 256; // the area of more cells is not measured

// The area of the frame that at least one cell covers (coordinate compression).
qint64 coveredArea(const std::vector<Screen::s_Cell>& cells, const Frame& frame) {
    if (cells.size() > kMaxCells) return qint64(frame.width) * frame.height;
    auto clamp = [](qint64 v, qint64 hi) { return std::min(std::max(v, qint64(0)), hi); };
    QVector<qint64> xs{0, frame.width};
    QVector<qint64> ys{0, frame.height};
    for (const Screen::s_Cell& c : cells) {
        xs << clamp(c.x, frame.width) << clamp(qint64(c.x) + std::max(c.width, 0), frame.width);
        ys << clamp(c.y, frame.height) << clamp(qint64(c.y) + std::max(c.height, 0), frame.height);
    }
    std::sort(xs.begin(), xs.end());
    std::sort(ys.begin(), ys.end());
    xs.erase(std::unique(xs.begin(), xs.end()), xs.end());
    ys.erase(std::unique(ys.begin(), ys.end()), ys.end());
    qint64 area = 0;
    for (int i = 0; i + 1 < xs.size(); ++i)
        for (int j = 0; j + 1 < ys.size(); ++j)
            for (const Screen::s_Cell& c : cells)
                if (c.x <= xs[i] && qint64(c.x) + c.width >= xs[i + 1] && c.y <= ys[j] &&
                    qint64(c.y) + c.height >= ys[j + 1]) {
                    area += (xs[i + 1] - xs[i]) * (ys[j + 1] - ys[j]);
                    break;
                }
    return area;
}

QString cellName(int index, const Screen::s_Cell& cell) {
    return QStringLiteral("cell %1 (row %2, column %3)").arg(index + 1).arg(cell.row).arg(cell.column);
}

} // namespace

QString code(Fault fault) {
    switch (fault) {
    case Fault::Overlap:
        return QStringLiteral("layout-overlap");
    case Fault::Outside:
        return QStringLiteral("layout-outside");
    case Fault::Empty:
        return QStringLiteral("layout-empty-cell");
    case Fault::OffGrid:
        return QStringLiteral("layout-off-grid");
    case Fault::Gap:
        return QStringLiteral("layout-gap");
    case Fault::InputSlot:
        return QStringLiteral("layout-slot");
    case Fault::NoConnector:
        return QStringLiteral("layout-connector");
    }
    return QString();
}

QVector<SlotGroup> slotGroups(const Slot::s_Slots& chassis) {
    QVector<SlotGroup> groups;
    for (const LCD::ConfigModel::facts::SlotGroupFacts& group : LCD::ConfigModel::facts::kSlotGroups)
        groups.push_back({group.element, &(chassis.*group.member)});
    return groups;
}

Feeds feedsOf(const Slot::s_Slots& chassis, const std::vector<Subcard::s_Subcard>& catalogue) {
    Feeds feeds;
    for (const SlotGroup& group : slotGroups(chassis))
        for (const Slot::s_Slot& slot : group.attr->slots) {
            QVector<int> cards;
            for (const Slot::s_InlineSubcard& placed : slot.subcards)
                cards << placed.moduleId;
            if (cards.isEmpty())
                for (const Slot::s_Subcard& accepted : group.attr->subcards)
                    cards << accepted.moduleId;
            QVector<int>& known = feeds.cards[slot.index];
            QSet<int>& positions = feeds.positions[slot.index];
            bool found = false;
            for (int model : cards) {
                if (!known.contains(model)) known << model;
                const auto card =
                    std::find_if(catalogue.begin(), catalogue.end(),
                                 [model](const Subcard::s_Subcard& c) { return c.modelId == model; });
                if (card == catalogue.end()) continue;
                found = true;
                for (const Subcard::s_Connector& connector : card->connectors.connectors)
                    if (connector.interfaceType != kInputInterface) positions.insert(connector.position);
            }
            if (!cards.isEmpty() && !found && positions.isEmpty()) feeds.unknown.insert(slot.index);
        }
    return feeds;
}

Frame frameOf(const Screen::s_Layout& layout) {
    Frame frame;
    for (int w : lineSizes(layout.cells, layout.columns, &Screen::s_Cell::column, &Screen::s_Cell::width))
        frame.width += w;
    for (int h : lineSizes(layout.cells, layout.rows, &Screen::s_Cell::row, &Screen::s_Cell::height))
        frame.height += h;
    return frame;
}

QVector<Finding> analyse(const Screen::s_Layout& layout, const Feeds& feeds) {
    QVector<Finding> findings;
    const Frame frame = frameOf(layout);
    const std::vector<Screen::s_Cell>& cells = layout.cells;
    QSet<QPair<int, int>> filled;
    for (int i = 0; i < int(cells.size()); ++i) {
        const Screen::s_Cell& c = cells[i];
        const QString name = cellName(i, c);
        filled.insert({c.row, c.column});
        if (c.width <= 0 || c.height <= 0)
            findings.push_back(
                {Fault::Empty, i, -1, 0, 0,
                 QStringLiteral("%1 is %2 x %3: it has no area").arg(name).arg(c.width).arg(c.height)});
        if (c.row < 1 || c.row > layout.rows || c.column < 1 || c.column > layout.columns)
            findings.push_back({Fault::OffGrid, i, -1, 0, 0,
                                QStringLiteral("%1 is off the layout's %2 x %3 grid")
                                    .arg(name)
                                    .arg(layout.rows)
                                    .arg(layout.columns)});
        if (c.x < 0 || c.y < 0 || qint64(c.x) + c.width > frame.width ||
            qint64(c.y) + c.height > frame.height)
            findings.push_back({Fault::Outside, i, -1, 0, 0,
                                QStringLiteral("%1 at %2,%3 size %4 x %5 reaches outside the %6 x %7 frame")
                                    .arg(name)
                                    .arg(c.x)
                                    .arg(c.y)
                                    .arg(c.width)
                                    .arg(c.height)
                                    .arg(frame.width)
                                    .arg(frame.height)});
        for (int j = 0; j < i; ++j) {
            const Screen::s_Cell& d = cells[j];
            const qint64 w = std::min(qint64(c.x) + c.width, qint64(d.x) + d.width) - std::max(c.x, d.x);
            const qint64 h = std::min(qint64(c.y) + c.height, qint64(d.y) + d.height) - std::max(c.y, d.y);
            if (w > 0 && h > 0)
                findings.push_back(
                    {Fault::Overlap, i, j, 0, 0,
                     QStringLiteral("%1 overlaps %2 by %3 x %4").arg(name, cellName(j, d)).arg(w).arg(h)});
        }
        if (feeds.unknown.contains(c.slotIndex)) continue; // the feed checks come last
        if (!feeds.isOutputSlot(c.slotIndex))
            findings.push_back({Fault::InputSlot, i, -1, 0, 0,
                                QStringLiteral("%1 is fed from slot %2, which holds no output card")
                                    .arg(name)
                                    .arg(c.slotIndex)});
        else if (!feeds.positions.value(c.slotIndex).contains(c.connectorIndex)) {
            QStringList cards;
            for (int model : feeds.cards.value(c.slotIndex))
                cards << QString::number(model);
            findings.push_back(
                {Fault::NoConnector, i, -1, 0, 0,
                 QStringLiteral("%1 names connector %2 of slot %3; card %4 has no output there")
                     .arg(name)
                     .arg(c.connectorIndex)
                     .arg(c.slotIndex)
                     .arg(cards.join(QLatin1Char('/')))});
        }
    }
    for (int row = 1; row <= std::min(layout.rows, kMaxLines); ++row)
        for (int column = 1; column <= std::min(layout.columns, kMaxLines); ++column)
            if (!filled.contains({row, column}))
                findings.push_back({Fault::Gap, -1, -1, row, column,
                                    QStringLiteral("no cell fills row %1, column %2 of the %3 x %4 grid")
                                        .arg(row)
                                        .arg(column)
                                        .arg(layout.rows)
                                        .arg(layout.columns)});
    const qint64 covered = coveredArea(cells, frame);
    if (covered < qint64(frame.width) * frame.height && cells.size() <= kMaxCells)
        findings.push_back({Fault::Gap, -1, -1, 0, 0,
                            QStringLiteral("the cells cover %1 of the %2 x %3 frame's %4 pixels")
                                .arg(covered)
                                .arg(frame.width)
                                .arg(frame.height)
                                .arg(qint64(frame.width) * frame.height)});
    return findings;
}

} // namespace layout
} // namespace lcdcfg
