#include "ui/grid.h"
#include "ui/play/looks.h"
#include "ui/play/verbs.h"

namespace merchantry::ui::play {
namespace {

Grid& gridOf(Step& step) {
    return step.as<Grid>("a grid");
}

int columnOf(Step& step, const Grid& grid) {
    const int column = step.number("a column, counted from 0");
    expectThat(column >= 0 && column < grid.columnCount(), "a column from 0 to " + std::to_string(grid.columnCount() - 1),
               "there was " + std::to_string(column));
    return column;
}

int rowOf(Step& step, const Grid& grid, int first) {
    const int row = step.number("a row, the heading being 0");
    expectThat(row >= first && row <= grid.dataRows(), "row " + std::to_string(row) + " in " + grid.name(),
               "there are " + std::to_string(grid.dataRows()) + " data rows");
    return row;
}

void expectRows(Step& step) {
    const Grid& grid = gridOf(step);
    const int rows = step.number("a number of rows");
    step.end();
    expectThat(grid.dataRows() == rows, std::to_string(rows) + " rows in " + grid.name(), "there are " + std::to_string(grid.dataRows()));
}

void expectShown(const Grid& grid, int row, int column, const Wanted& wanted) {
    const std::string seen = grid.text(row, column);
    expectThat(wanted.holds(seen), grid.name() + " " + std::to_string(row) + " " + std::to_string(column) + " " + wanted.told(),
               "there was " + inQuotes(seen));
}

void expectCell(Step& step) {
    const Grid& grid = gridOf(step);
    const int row = rowOf(step, grid, 0);
    const int column = columnOf(step, grid);
    const Wanted wanted = step.wanted("a cell's text");
    step.end();
    expectShown(grid, row, column, wanted);
}

void expectHeading(Step& step) {
    const Grid& grid = gridOf(step);
    const int column = columnOf(step, grid);
    const Wanted wanted = step.wanted("a heading");
    step.end();
    expectShown(grid, 0, column, wanted);
}

void expectCurrent(Step& step) {
    const Grid& grid = gridOf(step);
    const int row = step.number("a row");
    step.end();
    expectThat(grid.row() == row, "row " + std::to_string(row) + " of " + grid.name() + " to be current",
               "row " + std::to_string(grid.row()) + " is");
}

void expectReadonly(Step& step) {
    Grid& grid = gridOf(step);
    const int row = rowOf(step, grid, 1);
    const int column = columnOf(step, grid);
    step.end();
    const bool refused = !isEnabled(grid) || grid.column(column).hidden || grid.refusesEdit(row, column);
    expectThat(refused, "an edit of " + grid.name() + " " + std::to_string(row) + " " + std::to_string(column) + " to be refused",
               "it would be taken");
}

} // namespace

const std::vector<Entry>& gridExpectations() {
    static const std::vector<Entry> table{
        {"rows", "expect rows grd n", &expectRows},
        {"cell", R"(expect cell grd n col "text")", &expectCell},
        {"heading", R"(expect heading grd col "text")", &expectHeading},
        {"current", "expect current grd n", &expectCurrent},
        {"readonly", "expect readonly grd n col", &expectReadonly},
    };
    return table;
}

} // namespace merchantry::ui::play
