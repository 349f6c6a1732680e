#include "base/text.h"
#include "ui/gestures.h"
#include "ui/play/looks.h"
#include "ui/play/verbs.h"

#include "base/textorder.h"

#include <algorithm>

namespace merchantry::ui::play {
namespace {

Grid& gridOf(Step& step) {
    return step.as<Grid>("a grid");
}

// A column that a user can point at.
int columnOf(Step& step, const Grid& grid) {
    const int column = step.number("a column, counted from 0");
    lineNeeds(column >= 0 && column < grid.columnCount(), "a column from 0 to " + std::to_string(grid.columnCount() - 1),
              "there was " + std::to_string(column));
    return column;
}

int rowOf(Step& step, const Grid& grid) {
    const int row = step.number("a data row, counted from 1");
    lineNeeds(row >= 1 && row <= grid.dataRows(), "a data row " + std::to_string(row) + " in " + grid.name(),
              "there are " + std::to_string(grid.dataRows()));
    return row;
}

// The column named, otherwise the one where the user is.
int columnOrCurrent(Step& step, const Grid& grid) {
    if (step.more())
        return columnOf(step, grid);
    const bool usable = grid.col() >= 0 && grid.col() < grid.columnCount() && !grid.column(grid.col()).hidden;
    return usable ? grid.col() : firstVisibleColumn(grid);
}

void makeCurrent(Step& step) {
    Grid& grid = gridOf(step);
    step.demand(gestures::obstacle(grid), "click into " + grid.name());
    const int row = rowOf(step, grid);
    const int column = columnOrCurrent(step, grid);
    step.end();
    step.demand(gestures::select(grid, row, column), "click into " + grid.name());
    step.refusedIf(grid.row() != row, "click into " + grid.name());
}

void selectRows(Step& step) {
    Grid& grid = gridOf(step);
    step.demand(gestures::obstacle(grid), "select in " + grid.name());
    const std::string range = step.bare("rows as n-m");
    step.end();
    const std::vector<std::string> ends = split(range, "-");
    const bool twoNumbers =
        ends.size() == 2 && std::all_of(range.begin(), range.end(), [](char c) { return c == '-' || (c >= '0' && c <= '9'); });
    lineNeeds(twoNumbers, "rows as n-m", "there was " + range);
    const int from = std::atoi(ends[0].c_str());
    const int to = std::atoi(ends[1].c_str());
    lineNeeds(from >= 1 && from <= to && to <= grid.dataRows(), "data rows of " + grid.name(),
              "there was " + range + " where there are " + std::to_string(grid.dataRows()));
    step.demand(gestures::selectRows(grid, from, to), "select in " + grid.name());
}

void clickHeading(Step& step) {
    Grid& grid = gridOf(step);
    const int column = columnOf(step, grid);
    step.end();
    lineNeeds(!grid.column(column).hidden, "a column that is shown", "column " + std::to_string(column) + " is hidden");
    step.demand(gestures::clickHeading(grid, column), "click a heading of " + grid.name());
}

void doubleClick(Step& step) {
    const std::string name = step.any("a control's name");
    Control& control = *step.target(name).control;
    if (auto* grid = dynamic_cast<Grid*>(&control)) {
        step.demand(gestures::obstacle(*grid), "double-click in " + name);
        const int row = rowOf(step, *grid);
        const int column = columnOrCurrent(step, *grid);
        step.end();
        step.demand(gestures::doubleClick(*grid, row, column), "double-click in " + name);
        return;
    }
    step.end();
    auto* list = dynamic_cast<ListBox*>(&control);
    lineNeeds(list != nullptr, name + " to be a grid or a list", "it is a " + kindOf(control));
    step.demand(gestures::enter(*list), "double-click " + name);
    if (list->listIndex() >= 0 && list->dblClick)
        list->dblClick();
}

// Fails where the cell's editor would not let a user enter this.
void checkTypable(const Grid& grid, int column, const std::string& text) {
    const GridColumn& shape = grid.column(column);
    lineNeeds(!shape.hidden, "a column that is shown", "column " + std::to_string(column) + " is hidden");
    if (shape.editor == GridColumn::Editor::Check)
        lineNeeds(text == "1" || text == "0", R"("1" or "0" for a check cell)", "there was " + inQuotes(text));
    if (shape.editor != GridColumn::Editor::Combo || shape.choices.empty())
        return;
    std::vector<std::string> texts;
    for (const auto& [choice, stored] : shape.choices)
        texts.push_back(choice);
    const bool listed = std::any_of(texts.begin(), texts.end(), [&](const std::string& one) { return sameText(one, text); });
    lineNeeds(listed, "an entry of the cell's list",
              "there was " + inQuotes(text) + " where there are \"" + joined(texts, "\", \"") + "\"");
}

void edit(Step& step) {
    Grid& grid = gridOf(step);
    step.demand(gestures::obstacle(grid), "edit in " + grid.name());
    const int row = rowOf(step, grid);
    const int column = columnOf(step, grid);
    const std::string text = step.text("a text for the cell");
    step.end();
    checkTypable(grid, column, text);
    step.refusedIf(grid.refusesEdit(row, column), "edit in " + grid.name());
    step.demand(gestures::edit(grid, row, column, text), "edit in " + grid.name());
}

void chooseUse(Step& step) {
    Grid& grid = gridOf(step);
    const std::string caption = step.text("an entry of the grid's menu");
    step.end();
    step.demand(gestures::chooseUse(grid, caption), "choose from the menu of " + grid.name());
}

} // namespace

const std::vector<Entry>& gridVerbs() {
    static const std::vector<Entry> table{
        {"row", "row grd n [col]", &makeCurrent},    {"rows", "rows grd n-m", &selectRows},
        {"header", "header grd col", &clickHeading}, {"dblclick", "dblclick grd n [col] or dblclick ctl", &doubleClick},
        {"edit", R"(edit grd n col "text")", &edit}, {"menu", R"(menu grd "Copy All Rows")", &chooseUse},
    };
    return table;
}

} // namespace merchantry::ui::play
