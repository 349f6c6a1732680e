#pragma once

#include "ui/grid.h"

#include <span>
#include <string>
#include <vector>

namespace merchantry::ui {

// What every grid can do for its user beside what the screen does with it: the entries of its context menu.
struct GridUse {
    const char* caption;
    const char* key; // that does the same; empty for none
    void (*run)(Grid& grid);
};
std::span<const GridUse> gridUses();

// The further entries of a grid's menu: a column of the user's choice, shown or hidden.
struct ColumnUse {
    std::string caption; // "Show Balance"
    int column = 0;
};
std::vector<ColumnUse> columnUses(const Grid& grid);

// The columns that are shown, in their order.
std::vector<int> shownColumns(const Grid& grid);
// A cell as it stands in a table outside: what the user sees, a tick as Yes or No.
std::string cellOutside(const Grid& grid, int row, int column);

// Copies the rows that are selected, or all with the headings, as a table. A copy that takes long can be stopped; nothing is copied then.
void copySelection(Grid& grid);
void copyAll(Grid& grid);

// Asks for a file and writes every row there, headings first. A file that cannot be written, or a stop, leaves what was there.
void exportCsv(Grid& grid);      // RFC 4180, UTF-8
void exportWorkbook(Grid& grid); // typed cells, the heading row frozen, widths of the columns

} // namespace merchantry::ui
