#include "exchange/import/sheettable.h"

#include <algorithm>

namespace merchantry::exchange {
namespace {

constexpr std::size_t kMostCells = 12'000'000;
constexpr std::size_t kMostTextLength = (1U << 28) - 1;

} // namespace

void SheetTable::beginRow(int number, bool hidden) {
    if (number > kMostRows)
        throw FileRefused("The sheet has more than 1,048,576 rows.");
    if (!rows_.empty() && number <= rows_.back().number)
        throw FileRefused("The file is damaged: its row " + std::to_string(number) + " comes behind row " +
                          std::to_string(int{rows_.back().number}) + ".");
    rows_.push_back({static_cast<std::uint32_t>(cells_.size()), number, hidden ? 1U : 0U, 0});
}

SheetTable::Kept SheetTable::keep(std::string_view text) {
    if (text.size() > kMostTextLength || texts_.size() + text.size() > static_cast<std::size_t>(kMostBytes) * 2)
        throw FileRefused("The texts of the sheet are too long to be read.");
    const Kept kept{static_cast<std::uint32_t>(texts_.size()), static_cast<std::uint32_t>(text.size())};
    texts_ += text;
    return kept;
}

void SheetTable::addKept(int column, CellKind kind, Kept text) {
    if (column >= kMostColumns)
        throw FileRefused("The sheet has more than 16,384 columns.");
    const std::size_t wanted = rows_.back().first + static_cast<std::size_t>(column);
    if (wanted < cells_.size())
        throw FileRefused("The file is damaged: row " + std::to_string(int{rows_.back().number}) + " has two cells in column " +
                          columnLetters(column) + ".");
    if (wanted >= kMostCells)
        throw FileRefused("The sheet has more than 12,000,000 cells. Please leave out columns that are not needed.");
    cells_.resize(wanted, CellRef{0, 0, 0});
    cells_.push_back({text.offset, text.length, static_cast<std::uint32_t>(kind)});
    columns_ = std::max(columns_, column + 1);
}

const SheetTable::CellRef* SheetTable::at(int row, int column) const {
    return column < 0 || column >= cells(row) ? nullptr
                                              : &cells_[rows_[static_cast<std::size_t>(row)].first + static_cast<std::size_t>(column)];
}

void SheetTable::clear(int row, int column) {
    if (const CellRef* found = at(row, column))
        cells_[static_cast<std::size_t>(found - cells_.data())] = {0, 0, 0};
}

void SheetTable::finish() {
    texts_.shrink_to_fit();
    cells_.shrink_to_fit();
    rows_.shrink_to_fit();
}

int SheetTable::cells(int row) const {
    const auto index = static_cast<std::size_t>(row);
    const std::size_t end = index + 1 < rows_.size() ? rows_[index + 1].first : cells_.size();
    return static_cast<int>(end - rows_[index].first);
}

SheetCell SheetTable::cell(int row, int column) const {
    const CellRef* found = at(row, column);
    if (found == nullptr)
        return {};
    return {static_cast<CellKind>(found->kind), std::string_view(texts_).substr(found->offset, found->length)};
}

int SheetTable::rowAt(int number) const {
    const auto found =
        std::lower_bound(rows_.begin(), rows_.end(), number, [](const RowRef& row, int wanted) { return row.number < wanted; });
    return static_cast<int>(found - rows_.begin());
}

std::string columnLetters(int column) {
    std::string letters;
    for (int rest = column + 1; rest > 0; rest = (rest - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('A' + (rest - 1) % 26));
    return letters;
}

} // namespace merchantry::exchange
