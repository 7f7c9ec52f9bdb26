#pragma once

// The geometry and the feeds of one layout of a screen template: which cells
// overlap, which lie outside the layout's frame or off its grid, which grid
// positions no cell fills, and which cells name a slot that cannot feed a
// screen or a connector position the cards of that slot do not have. Pure
// functions over the public records, so every verb can use them.
//
// The frame of a layout is its grid: column c is as wide as the widest cell
// of column c, row r as high as the highest cell of row r, from (0, 0). A
// column or row no cell names takes the most common cell width or height.

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <vector>

#include "lcdconfigmodel.h"

namespace lcdcfg {
namespace layout {

enum class Fault {
    Overlap,     // shares area with another cell
    Outside,     // reaches beyond the frame (or starts left of or above it)
    Empty,       // no width or no height
    OffGrid,     // row or column beyond the layout's rows and columns
    Gap,         // a grid position no cell fills (layout-wide, cell -1)
    InputSlot,   // the slot holds no card that can feed a screen
    NoConnector, // the slot's cards have no output connector at that position
};

// The stable code of a fault ("layout-overlap", ...).
QString code(Fault fault);

struct Finding {
    Fault fault;
    int cell = -1;  // index into the layout's cells; -1 for the layout as a whole
    int other = -1; // the other cell of an overlap
    int row = 0;    // a gap's grid position
    int column = 0;
    QString text; // English
};

// One slot group of a chassis with its element name, in the order the device
// queries walk them.
struct SlotGroup {
    const char* name; // "MainControlCardSlots", ...
    const LCD::ConfigModel::Slot::s_SlotAttr* attr;
};
QVector<SlotGroup> slotGroups(const LCD::ConfigModel::Slot::s_Slots& chassis);

// The output connectors a device model can feed screens from, per slot.
struct Feeds {
    // slot index -> connector positions that can feed a screen (empty: none)
    QHash<int, QSet<int>> positions;
    // slot index -> the card models considered for it (placed, else accepted)
    QHash<int, QVector<int>> cards;
    // slots whose cards are none of the catalogue's: their feeds are unknown, not wrong
    QSet<int> unknown;
    bool isOutputSlot(int slot) const { return !positions.value(slot).isEmpty(); }
};

// Feeds of a chassis: a slot's cards are the ones placed in it, else the ones
// its group accepts; a connector feeds a screen unless it is an input
// (interface type 2). A slot none of whose cards the catalogue has is
// unknown: its cells are not judged (the missing card is another finding).
Feeds feedsOf(const LCD::ConfigModel::Slot::s_Slots& chassis,
              const std::vector<LCD::ConfigModel::Subcard::s_Subcard>& catalogue);

struct Frame {
    int width = 0;
    int height = 0;
};

Frame frameOf(const LCD::ConfigModel::Screen::s_Layout& layout);

// Every finding of one layout, cells in order, then the gaps.
QVector<Finding> analyse(const LCD::ConfigModel::Screen::s_Layout& layout, const Feeds& feeds);

} // namespace layout
} // namespace lcdcfg
