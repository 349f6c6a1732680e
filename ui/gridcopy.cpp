#include "ui/gridcopy.h"

#include "base/text.h"
#include "ui/desk.h"
#include "ui/form.h"
#include "ui/longwork.h"

#include <algorithm>
#include <array>

namespace merchantry::ui {
namespace {

constexpr int kRowsAtOnce = 1000;

bool isTick(const GridColumn& column) {
    return column.editor == GridColumn::Editor::Check || column.format == GridColumn::Format::Flag;
}

// One cell of a tab separated text: its own tabs and line ends would make other cells of it.
std::string flat(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
    return text;
}

std::string forHtml(const std::string& text) {
    return replaced(replaced(replaced(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

// A table growing in both forms.
class Copy {
public:
    explicit Copy(const Grid& grid) : grid_(grid), columns_(shownColumns(grid)) {}
    // Row 0 is the heading.
    void add(int row) {
        const char* const tag = row == 0 ? "th" : "td";
        if (!text_.empty())
            text_ += "\n";
        html_ += "<tr>";
        for (const int column : columns_) {
            const std::string cell = cellOutside(grid_, row, column);
            text_ += (column == columns_.front() ? "" : "\t") + flat(cell);
            html_ += std::string("<") + tag + ">" + forHtml(cell) + "</" + tag + ">";
        }
        html_ += "</tr>";
    }
    void put(Desk& desk) const { desk.copyTable(text_, "<table>" + html_ + "</table>"); }

private:
    const Grid& grid_;
    std::vector<int> columns_;
    std::string text_;
    std::string html_;
};

void copyRows(Grid& grid, int first, int last) {
    Copy copy(grid);
    int next = first;
    const auto step = [&] {
        for (const int end = std::min(last + 1, next + kRowsAtOnce); next < end; ++next)
            copy.add(next);
        return next > last ? 100 : static_cast<int>(static_cast<std::int64_t>(next - first) * 100 / (last - first + 1));
    };
    if (longWork(grid.form().desk(), "Copying the rows ...", step))
        copy.put(grid.form().desk());
}

void copyCell(Grid& grid) {
    if (grid.selected())
        grid.form().desk().copyText(grid.text(grid.row(), grid.col()));
}

} // namespace

std::span<const GridUse> gridUses() {
    static constexpr std::array kUses{
        GridUse{"Copy Cell", "Ctrl+C", &copyCell},
        GridUse{"Copy Selected Rows", "", &copySelection},
        GridUse{"Copy All Rows", "Ctrl+Shift+C", &copyAll},
        GridUse{"Export to CSV...", "Ctrl+Shift+E", &exportCsv},
        GridUse{"Export to Workbook...", "Ctrl+Shift+X", &exportWorkbook},
    };
    return kUses;
}

std::vector<ColumnUse> columnUses(const Grid& grid) {
    std::vector<ColumnUse> uses;
    for (int column = 0; column < grid.columnCount(); ++column)
        if (grid.column(column).optional)
            uses.push_back({(grid.column(column).hidden ? "Show " : "Hide ") + grid.column(column).heading, column});
    return uses;
}

std::vector<int> shownColumns(const Grid& grid) {
    std::vector<int> shown;
    for (int column = 0; column < grid.columnCount(); ++column)
        if (!grid.column(column).hidden)
            shown.push_back(column);
    return shown;
}

std::string cellOutside(const Grid& grid, int row, int column) {
    if (row > 0 && isTick(grid.column(column)))
        return grid.value(row, column).toFlag() ? "Yes" : "No";
    return grid.text(row, column);
}

void copySelection(Grid& grid) {
    if (grid.selected())
        copyRows(grid, std::max(1, grid.firstSelected()), std::max(1, grid.lastSelected()));
}

void copyAll(Grid& grid) {
    copyRows(grid, 0, grid.dataRows());
}

} // namespace merchantry::ui
