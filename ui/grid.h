#pragma once

#include "base/rows.h"
#include "ui/control.h"
#include "ui/list.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace merchantry::ui {

// How a grid shows and edits one column.
struct GridColumn {
    enum class Format { Plain, Number, Currency, Date, Flag, Bar };
    enum class Editor { Text, Check, Combo };

    std::string heading{};
    Format format = Format::Plain;
    Editor editor = Editor::Text;
    bool hidden = false;
    bool optional = false;   // hidden and shown by the user, in the grid's menu
    bool secret = false;     // passwords: nothing but dots comes out of its cells
    bool alignRight = false; // numbers and money stand right in any case
    bool centred = false;
    bool fixedWidth = false; // codes
    int characters = 0;      // wished width, 0 for what the content asks
    Twips width = 0;         // told width, 0 for none; never less than the heading needs, and a column of words grows with the window
    std::string mask{};      // of the cell's editor
    // Combo: shown text and stored value of each choice.
    std::vector<std::pair<std::string, std::string>> choices{};
};

// What a cell of the format Bar draws: shares of the whole from 0 to 1, what is done first, then what was dropped; the rest is still to
// come. The cell's text says the same in words, for tool tips, scripts and copies.
struct GridBar {
    double done = 0;
    double dropped = 0;
};

// Columns by rows of cells. Row 0 is the heading, data rows count from 1, columns from 0.
//
// Unbound, the grid keeps its own texts. Bound to Rows, it reads them in place and writes every accepted edit through at once; a write that
// the source refuses runs `error` (without that procedure the refusal is shown to the user) and leaves the cell as it was. Binding takes
// the column names as headings where a screen gave none, and ends with afterRefresh. The rows must outlive the binding; the grid notices
// when they change.
//
// The user's edit runs: beforeEdit (may refuse), changeEdit at each keystroke, validateEdit (may refuse), endEdit (may change what is
// written), the write, afterEdit.
// A move of the current cell runs beforeRowColChange (may refuse), rowColChange.
class Grid : public Control {
public:
    Grid(Form& form, std::string_view name);
    ~Grid() override;
    Role role() const override { return Role::Grid; }
    bool takesFocus() const override { return true; }

    // Columns. A screen may set them before or after binding; binding keeps what was set by position.
    int columnCount() const { return static_cast<int>(columns_.size()); }
    void setColumns(std::vector<GridColumn> columns);
    const GridColumn& column(int index) const { return columns_.at(static_cast<std::size_t>(index)); }
    void setColumn(int index, GridColumn column);
    void setHidden(int index, bool hidden);

    // Binding. Null unbinds and empties.
    void bind(Rows* rows);
    Rows* rows() const { return bound_; }

    // What the heading marks as the order of the rows: what a screen said of rows that came sorted, or else what the bound rows say.
    std::optional<RowOrder> sortedBy() const;
    // Until the grid is bound anew; nothing takes it back.
    void setSorted(std::optional<RowOrder> order);

    // Content. The data rows shown, and the cells as shown and as they are.
    int dataRows() const;
    std::string text(int row, int column) const;
    Value value(int row, int column) const;
    // What the cell holds, unformatted: "12.5" where text says "$12.50", the stored value where a combo shows its choice.
    std::string rawText(int row, int column) const;

    // The first data row whose cell in that column begins with the text, without case; 0 when there is none. The cell as it is, not as
    // shown.
    int findRow(const std::string& text, int column) const;

    // By program. Unbound: the texts themselves. Bound: written through at once; what the source refuses goes the way of a refused edit
    // (`error`, or shown to the user), changes nothing and gives false.
    void setDataRows(int count);
    bool setText(int row, int column, const std::string& text);
    // Bound, an empty text leaves the column to its default.
    bool addRow(const std::vector<std::string>& cells);
    bool removeRow(int row);
    void setCellColor(int row, int column, Color color);
    Color cellColor(int row, int column) const;
    // Colours that follow from the content, asked when a cell is drawn; goes before setCellColor.
    std::function<Color(int row, int column)> colorOf;

    // Asked when a cell of the format Bar is drawn.
    std::function<GridBar(int row, int column)> barOf;

    // Where the user stands: row 0 is none. Setting it by program runs the same events as the user's move.
    int row() const { return row_; }
    int col() const { return col_; }
    void setCurrent(int row, int column);
    int firstSelected() const { return selectedFrom_; }
    int lastSelected() const { return selectedTo_; }
    void select(int fromRow, int toRow);
    bool selected() const { return row_ >= 1; }
    // Scrolls the current row to the top.
    void showCurrent();
    // Counts these wishes, so that a drawing notices a new one.
    int showWishes() const { return showWishes_; }

    // What the user does; the drawing and the scripts call these. Each returns false when it was refused.
    bool userSelect(int row, int column);
    bool userClick(int row, int column);
    void userHeader(int column);
    void userDoubleClick(int row, int column);
    // Shows a column that is hidden or hides one that is shown; only an optional one.
    void userTurnColumn(int column);
    bool userBeginEdit(int row, int column);
    // The editor's text changed; gives back what it must show.
    std::string userEditText(std::string text);
    bool userCommit(const std::string& text);
    void userCancelEdit();
    bool editing() const { return editing_; }
    const std::string& editText() const { return editText_; }
    // Whether an edit there would be refused; asks beforeEdit.
    bool refusesEdit(int row, int column);

    bool editable = true;
    std::function<void()> click;
    std::function<void()> dblClick;
    std::function<void(int row, int column, bool& cancel)> beforeEdit;
    std::function<void(std::string& text)> changeEdit;
    std::function<void(int row, int column, const std::string& text, bool& cancel)> validateEdit;
    std::function<void(int row, int column, std::string& text)> endEdit;
    std::function<void(int row, int column)> afterEdit;
    // The source refused a write; the text is its message. Setting handled keeps it from the user.
    std::function<void(const std::string& message, bool& handled)> error;
    std::function<void(int oldRow, int newRow, bool& cancel)> beforeRowColChange;
    std::function<void()> rowColChange;
    std::function<void()> afterRefresh;
    // Before a column that was hidden is shown: the screen sees to what stands in it.
    std::function<void(int column)> showColumn;

    // Shown below the grid and in the empty grid; the screen says what is listed and what to do next.
    std::string statusText;
    std::string emptyText;
    void setStatusText(std::string text);

private:
    bool write(int row, int column, const std::string& text);
    bool attempt(const std::function<void()>& change);
    void refreshed();
    void clampCurrent();

    std::vector<GridColumn> columns_;
    std::vector<std::vector<std::string>> cells_; // unbound texts, row 1 first
    Rows* bound_ = nullptr;
    std::optional<RowOrder> sorted_; // as a screen said
    std::weak_ptr<const void> boundLives_;
    int listener_ = 0;
    std::map<std::pair<int, int>, Color> colors_;
    int row_ = 0;
    int col_ = 0;
    int selectedFrom_ = 0;
    int selectedTo_ = 0;
    int showWishes_ = 0;
    bool editing_ = false;
    bool writing_ = false;
    std::string editText_;
};

} // namespace merchantry::ui
