#pragma once

#include "app/modMain.h"
#include "ui/grid.h"

#include <functional>
#include <string>
#include <vector>

namespace merchantry::app {

// One of the store's short lists of codes (departments, tax classes, reasons, tiers), as its screen edits it: what the screen says, and
// where its failures go. Texts that are null are not said.
struct CodeTable {
    db::Sql procedure;  // gives the rows, updatable, the key in column 0
    int nameColumn = 1; // where a new row is typed over, and which may not stay empty
    std::function<std::vector<Value>()> newRow{};
    const char* emptyName = nullptr;      // said of a name that was left empty
    const char* nameForEmpty = "";        // what it becomes
    std::function<bool(int row)> fixed{}; // the base row's texts stand
    std::function<bool(int row)> stays{}; // the base row is not deleted
    const char* question = "";
    const char* questionCaption = "";
    const char* baseRefusal = "";
    const char* writeRefused = nullptr; // said in the place of the store's own words
    FailurePlace loading{};
    FailurePlace adding{};
    FailurePlace removing{}; // without a tag a refused removal is one of the grid's writes
};

// Edits such a table in a grid. Each cell is written as it is left; what the store refuses is said, and the rows are read again, so that
// the grid shows what the store holds. Wires the grid's events; a screen may put its own in their places afterwards. Borrows the grid,
// which must be a member of the same form; owns the rows.
class CodeGrid {
public:
    CodeGrid(ui::Grid& grid, CodeTable table);
    CodeGrid(const CodeGrid&) = delete;
    CodeGrid& operator=(const CodeGrid&) = delete;

    // Reads the rows; the current row keeps its place. A failure is reported.
    void load();
    void release();
    // Writes a new row and stands on its name. False when it could not be added, which was reported.
    bool add();
    // Asks, refuses the base row, removes the current one and reads the rows again.
    void remove();
    // Gives a name that was left empty a text, and says so.
    void endName(int column, std::string& text);

    // The key of a row; -1 for no row.
    std::int64_t key(int row) const;

    // Called when other rows, another current row or another text is shown.
    std::function<void()> changed;

private:
    void open();
    void removeRow(int row);
    void refused(const std::string& message);
    void tellChanged();

    ui::Grid& grid_;
    CodeTable table_;
    db::RecordsetPtr rows_;
};

} // namespace merchantry::app
