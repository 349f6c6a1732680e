#include "catalog/gridsearch.h"

#include "base/counted.h"
#include "base/text.h"
#include "catalog/modItemLookup.h"

#include <algorithm>

namespace merchantry::catalog {

using namespace ui;

bool SelectInColumn(Grid& grid, const std::string& text, int column) {
    const int row = grid.findRow(text, column);
    if (row == 0)
        return false;
    grid.setCurrent(row, kMatrixColumn);
    grid.showCurrent();
    return true;
}

bool SelectInGrid(Grid& grid, const std::string& text) {
    for (int column = 0; column < grid.columnCount(); ++column)
        if (SelectInColumn(grid, text, column))
            return true;
    return false;
}

void TellSearch(Grid& grid, const std::string& text, bool found) {
    grid.setStatusText(found || text.empty() ? counted(grid.dataRows(), "item")
                                             : "Nothing found: no code and no name begins with \"" + text + "\".");
}

void WireDelayedSearch(TextBox& box, Timer& timer, Grid& grid, std::function<void(const std::string& text)> search) {
    box.change = [&timer] { timer.start(); };
    box.keyDown = [&box, &grid](const std::string& key, bool& swallow) {
        swallow = key == "Enter" || key == "Up" || key == "Down";
        if (key == "Enter")
            box.selectAll();
        else if (swallow && grid.dataRows() > 0)
            grid.setCurrent(std::clamp(grid.row() + (key == "Up" ? -1 : 1), 1, grid.dataRows()), grid.col());
    };
    timer.fire = [&box, &timer, search = std::move(search)] {
        timer.stop();
        search(std::string(trimmed(box.text())));
    };
}

} // namespace merchantry::catalog
