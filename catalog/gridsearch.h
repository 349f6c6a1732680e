#pragma once

#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/textbox.h"

#include <functional>
#include <string>

namespace merchantry::catalog {

// Makes the first row current of which a cell begins with the text, without case, looked for column by column, and shows it; the
// item's own code becomes current. False, with nothing changed, when no row has such a cell.
bool SelectInGrid(ui::Grid& grid, const std::string& text);
// The same in one column only.
bool SelectInColumn(ui::Grid& grid, const std::string& text, int column);

// Says below the grid that a search for the text found nothing, or else how many items it lists.
void TellSearch(ui::Grid& grid, const std::string& text, bool found);

// Has the search run a while after the first change of the box, once for a whole code that is typed or scanned: a change while the timer
// counts does not start it anew. Enter, which a scanner sends behind a code, presses nothing: it selects the text, so that the next code
// takes its place. Up and Down move through the grid without leaving the box. The search gets the text without blanks around it.
void WireDelayedSearch(ui::TextBox& box, ui::Timer& timer, ui::Grid& grid, std::function<void(const std::string& text)> search);

} // namespace merchantry::catalog
