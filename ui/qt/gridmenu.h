#pragma once

class QTableView;

namespace merchantry::ui {

class FormWindow;
class Grid;

// Gives the table of a grid the context menu that all grids have: copies and exports of what it shows.
void menuFor(QTableView& view, FormWindow& host, Grid& grid);

} // namespace merchantry::ui
