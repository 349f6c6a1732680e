#include "ui/grid.h"

#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/textorder.h"
#include "ui/desk.h"
#include "ui/form.h"

#include <algorithm>

namespace merchantry::ui {
namespace {

using Format = GridColumn::Format;

constexpr const char* kDots = "••••••••";

// A number that is no amount of money, because it is too large or has an exponent, stands as it was typed.
std::string moneyShown(const std::string& number) {
    try {
        return Currency::fromText(number).toDisplay();
    } catch (const std::exception&) {
        return number;
    }
}

std::string shown(const GridColumn& column, const std::string& raw) {
    if (column.editor == GridColumn::Editor::Combo)
        for (const auto& [text, stored] : column.choices)
            if (sameText(stored, raw))
                return text;
    if (column.format == Format::Currency && isNumeric(raw))
        return moneyShown(raw);
    if (column.format == Format::Date)
        if (const auto date = Date::fromText(raw))
            return date->toShortText();
    return raw;
}

std::string shown(const GridColumn& column, const Value& value) {
    if (column.format == Format::Currency && (value.is<Currency>() || value.is<double>() || value.is<Decimal>()))
        return value.toCurrency().toDisplay();
    if (value.is<bool>())
        return column.editor == GridColumn::Editor::Check ? (value.as<bool>() ? "1" : "0") : value.toText();
    return shown(column, value.toText());
}

// What the editor's text means for the cell: a combo's choice by its text.
std::string stored(const GridColumn& column, const std::string& text) {
    if (column.editor == GridColumn::Editor::Combo)
        for (const auto& [choice, value] : column.choices)
            if (sameText(choice, text))
                return value;
    return text;
}

} // namespace

Grid::Grid(Form& form, std::string_view name) : Control(form, name) {}

Grid::~Grid() {
    if (bound_ != nullptr && !boundLives_.expired())
        bound_->stopListening(listener_);
}

void Grid::setColumns(std::vector<GridColumn> columns) {
    columns_ = std::move(columns);
    for (auto& cells : cells_)
        cells.resize(columns_.size());
    changed(Aspect::Rows);
}

void Grid::setColumn(int index, GridColumn column) {
    if (index >= columnCount())
        columns_.resize(static_cast<std::size_t>(index) + 1);
    columns_[static_cast<std::size_t>(index)] = std::move(column);
    changed(Aspect::Rows);
}

void Grid::setHidden(int index, bool hidden) {
    if (index >= columnCount())
        columns_.resize(static_cast<std::size_t>(index) + 1);
    columns_[static_cast<std::size_t>(index)].hidden = hidden;
    changed(Aspect::Rows);
}

void Grid::userTurnColumn(int column) {
    if (column < 0 || column >= columnCount() || !this->column(column).optional)
        return;
    if (this->column(column).hidden && showColumn)
        showColumn(column);
    setHidden(column, !this->column(column).hidden);
}

void Grid::bind(Rows* rows) {
    if (bound_ != nullptr && !boundLives_.expired())
        bound_->stopListening(listener_);
    bound_ = rows;
    cells_.clear();
    colors_.clear();
    sorted_.reset();
    editing_ = false;
    if (bound_ != nullptr) {
        boundLives_ = bound_->lifetime();
        listener_ = bound_->listen([this] { refreshed(); });
        columns_.resize(static_cast<std::size_t>(bound_->columnCount()));
        for (int i = 0; i < bound_->columnCount(); ++i)
            if (columns_[static_cast<std::size_t>(i)].heading.empty())
                columns_[static_cast<std::size_t>(i)].heading = bound_->columnName(i);
    }
    row_ = 0;
    clampCurrent();
    if (row_ == 0 && dataRows() > 0)
        row_ = selectedFrom_ = selectedTo_ = 1;
    changed(Aspect::Rows);
    if (afterRefresh)
        afterRefresh();
}

std::optional<RowOrder> Grid::sortedBy() const {
    if (sorted_ || bound_ == nullptr || boundLives_.expired())
        return sorted_;
    return bound_->sortedBy();
}

void Grid::setSorted(std::optional<RowOrder> order) {
    sorted_ = order;
    changed(Aspect::Look);
}

int Grid::dataRows() const {
    return bound_ != nullptr ? bound_->rowCount() : static_cast<int>(cells_.size());
}

std::string Grid::text(int row, int column) const {
    if (column < 0 || column >= columnCount() || row < 0 || row > dataRows())
        return "";
    const GridColumn& shape = columns_[static_cast<std::size_t>(column)];
    if (row == 0)
        return shape.heading;
    if (shape.secret)
        return kDots;
    if (bound_ == nullptr)
        return shown(shape, cells_[static_cast<std::size_t>(row) - 1][static_cast<std::size_t>(column)]);
    return shown(shape, bound_->cell(row - 1, column));
}

Value Grid::value(int row, int column) const {
    if (column < 0 || column >= columnCount() || row < 1 || row > dataRows())
        return {};
    if (columns_[static_cast<std::size_t>(column)].secret)
        return std::string(kDots);
    if (bound_ != nullptr)
        return bound_->cell(row - 1, column);
    return cells_[static_cast<std::size_t>(row) - 1][static_cast<std::size_t>(column)];
}

std::string Grid::rawText(int row, int column) const {
    return row == 0 ? text(0, column) : value(row, column).toText();
}

int Grid::findRow(const std::string& text, int column) const {
    if (column < 0 || column >= columnCount() || columns_[static_cast<std::size_t>(column)].secret)
        return 0;
    const int rows = dataRows();
    const auto lowered = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    // Most cells fall out by their first letter; beyond ASCII the whole beginning decides.
    const char first = text.empty() || static_cast<signed char>(text[0]) < 0 ? '\0' : lowered(text[0]);
    for (int row = 0; row < rows; ++row) {
        const std::string_view cell = bound_ != nullptr
                                          ? bound_->cellText(row, column)
                                          : std::string_view(cells_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
        if (first != '\0' && (cell.empty() || lowered(cell[0]) != first))
            continue;
        if (beginsWith(cell, text))
            return row + 1;
    }
    return 0;
}

void Grid::setDataRows(int count) {
    cells_.resize(static_cast<std::size_t>(std::max(count, 0)), std::vector<std::string>(columns_.size()));
    std::erase_if(colors_, [&](const auto& entry) { return entry.first.first > count; });
    clampCurrent();
    changed(Aspect::Rows);
}

bool Grid::setText(int row, int column, const std::string& text) {
    if (row >= 1 && bound_ != nullptr)
        return attempt([&] { bound_->setCell(row - 1, column, text); });
    if (row == 0) {
        columns_.at(static_cast<std::size_t>(column)).heading = text;
        changed(Aspect::Rows);
    } else {
        cells_.at(static_cast<std::size_t>(row) - 1).at(static_cast<std::size_t>(column)) = text;
        changed(Aspect::Cells);
    }
    return true;
}

bool Grid::addRow(const std::vector<std::string>& cells) {
    if (bound_ != nullptr) {
        std::vector<Value> values;
        for (const std::string& cell : cells)
            values.push_back(cell.empty() ? Value() : Value(cell));
        return attempt([&] { bound_->addRow(values); });
    }
    cells_.push_back(cells);
    cells_.back().resize(columns_.size());
    changed(Aspect::Rows);
    return true;
}

bool Grid::removeRow(int row) {
    if (row < 1 || row > dataRows())
        return false;
    if (bound_ != nullptr)
        return attempt([&] { bound_->removeRow(row - 1); });
    cells_.erase(cells_.begin() + (row - 1));
    std::map<std::pair<int, int>, Color> colors; // the rows below move up with theirs
    for (const auto& [cell, color] : colors_)
        if (cell.first != row)
            colors[{cell.first - (cell.first > row ? 1 : 0), cell.second}] = color;
    colors_ = std::move(colors);
    clampCurrent();
    changed(Aspect::Rows);
    return true;
}

void Grid::setCellColor(int row, int column, Color color) {
    colors_[{row, column}] = color;
    changed(Aspect::Cells);
}

Color Grid::cellColor(int row, int column) const {
    if (colorOf)
        if (const Color color = colorOf(row, column); color != Color::None)
            return color;
    const auto found = colors_.find({row, column});
    return found == colors_.end() ? Color::None : found->second;
}

void Grid::setCurrent(int row, int column) {
    if (row < 0 || row > dataRows())
        return;
    if (row == row_ && column == col_) {
        selectedFrom_ = selectedTo_ = row;
        return;
    }
    bool cancel = false;
    if (beforeRowColChange)
        beforeRowColChange(row_, row, cancel);
    if (cancel)
        return;
    row_ = row;
    col_ = column;
    selectedFrom_ = selectedTo_ = row;
    changed(Aspect::Choice);
    if (rowColChange)
        rowColChange();
}

void Grid::select(int fromRow, int toRow) {
    setCurrent(fromRow, col_);
    if (row_ != fromRow)
        return;
    selectedFrom_ = std::min(fromRow, toRow);
    selectedTo_ = std::clamp(std::max(fromRow, toRow), 0, dataRows());
    changed(Aspect::Choice);
}

void Grid::showCurrent() {
    ++showWishes_;
    changed(Aspect::Choice);
}

bool Grid::userSelect(int row, int column) {
    if (editing_ && !userCommit(editText_))
        return false;
    setCurrent(row, column);
    return row_ == row && col_ == column;
}

bool Grid::userClick(int row, int column) {
    if (!userSelect(row, column))
        return false;
    if (click)
        click();
    return true;
}

void Grid::userHeader(int column) {
    if (editing_)
        userCommit(editText_);
    setCurrent(std::min(1, dataRows()), column);
    col_ = column;
    if (click)
        click();
}

void Grid::userDoubleClick(int row, int column) {
    if (userSelect(row, column) && dblClick)
        dblClick();
}

bool Grid::refusesEdit(int row, int column) {
    if (!editable || row < 1 || row > dataRows() || column < 0 || column >= columnCount())
        return true;
    if (bound_ != nullptr && !bound_->canChange())
        return true;
    bool cancel = false;
    if (beforeEdit)
        beforeEdit(row, column, cancel);
    return cancel;
}

bool Grid::userBeginEdit(int row, int column) {
    if (!userSelect(row, column) || refusesEdit(row, column))
        return false;
    editing_ = true;
    editText_ = columns_[static_cast<std::size_t>(column)].editor == GridColumn::Editor::Text ? rawText(row, column) : text(row, column);
    changed(Aspect::Choice);
    return true;
}

std::string Grid::userEditText(std::string text) {
    editText_ = std::move(text);
    if (changeEdit)
        changeEdit(editText_);
    return editText_;
}

bool Grid::userCommit(const std::string& typed) {
    if (!editing_)
        return true;
    const int row = row_;
    const int column = col_;
    bool cancel = false;
    if (validateEdit)
        validateEdit(row, column, typed, cancel);
    if (cancel)
        return false;
    editing_ = false;
    editText_.clear();
    std::string text = typed;
    if (endEdit)
        endEdit(row, column, text);
    if (text != rawText(row, column))
        form().touched(*this);
    const bool written = write(row, column, text);
    changed(Aspect::Cells);
    if (written && afterEdit)
        afterEdit(row, column);
    return written;
}

void Grid::userCancelEdit() {
    editing_ = false;
    editText_.clear();
    changed(Aspect::Cells);
}

void Grid::setStatusText(std::string text) {
    statusText = std::move(text);
    changed(Aspect::Look);
}

bool Grid::write(int row, int column, const std::string& typed) {
    const std::string text = stored(columns_[static_cast<std::size_t>(column)], typed);
    if (bound_ == nullptr) {
        cells_[static_cast<std::size_t>(row) - 1][static_cast<std::size_t>(column)] = text;
        return true;
    }
    return attempt([&] { bound_->setCell(row - 1, column, text); });
}

// What the source refuses goes to the screen's error procedure, or is shown to the user.
bool Grid::attempt(const std::function<void()>& change) {
    try {
        change();
        return true;
    } catch (const std::runtime_error& refused) {
        bool handled = false;
        if (error)
            error(refused.what(), handled);
        if (!handled)
            form().desk().message({refused.what(), form().caption(), MessageIcon::Exclamation});
        return false;
    }
}

void Grid::refreshed() {
    clampCurrent();
    changed(Aspect::Rows);
}

void Grid::clampCurrent() {
    const int most = dataRows();
    row_ = std::min(row_, most);
    selectedFrom_ = std::min(selectedFrom_, most);
    selectedTo_ = std::min(selectedTo_, most);
}

} // namespace merchantry::ui
