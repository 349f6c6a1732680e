#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::exchange {

// Why a file cannot be read, in a sentence for the user.
class FileRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What a reader takes at most of a file, unpacked, and of a sheet.
constexpr std::int64_t kMostBytes = 100LL * 1024 * 1024;
constexpr int kMostRows = 1'048'576;
constexpr int kMostColumns = 16'384;

// What a cell of a file is. Numbers are exact decimal texts ("12.1"), dates "yyyy-mm-dd" with " hh:mm:ss" where they have a time, flags
// "TRUE" and "FALSE", errors what the spreadsheet shows ("#N/A"), percentages as well ("15%").
enum class CellKind : std::uint8_t { Empty, Text, Number, Date, Flag, Error, Percent };

struct SheetCell {
    CellKind kind = CellKind::Empty;
    std::string_view text; // lives as long as the table, until it is added to
};

// The cells of a file as they come, packed: a cell costs eight bytes and its text, a text that many cells share counts once. Rows and
// columns count from 0 here; a row knows the number that a spreadsheet shows for it.
class SheetTable {
public:
    // A text that cells can share.
    struct Kept {
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
    };

    // Rows come in the order of their numbers. Throws FileRefused beyond kMostRows and for a number that is not above the last.
    void beginRow(int number, bool hidden = false);
    // A cell of the last row begun, in a column behind those it has. Throws FileRefused beyond kMostColumns and when the table gets too
    // large.
    void add(int column, CellKind kind, std::string_view text) { addKept(column, kind, keep(text)); }
    void addKept(int column, CellKind kind, Kept text);
    Kept keep(std::string_view text);
    void clear(int row, int column);
    // How many cells the last row begun is written with, empty ones at its end counted, too.
    void setWritten(int cells) { rows_.back().written = static_cast<std::uint32_t>(cells); }
    // Gives back the room that growing took in advance.
    void finish();

    int rows() const { return static_cast<int>(rows_.size()); }
    // Of the widest row.
    int columns() const { return columns_; }
    int number(int row) const { return rows_[static_cast<std::size_t>(row)].number; }
    bool hidden(int row) const { return rows_[static_cast<std::size_t>(row)].hidden; }
    int cells(int row) const;
    // As setWritten says; 0 in a workbook.
    int written(int row) const { return static_cast<int>(rows_[static_cast<std::size_t>(row)].written); }
    // Empty for a column behind the row's last.
    SheetCell cell(int row, int column) const;
    // The row of that number, or the next one; rows() behind the last.
    int rowAt(int number) const;

    std::vector<bool> hiddenColumns;
    int merged = 0;        // areas of merged cells
    char delimiter = '\0'; // of delimited text; none in a workbook

private:
    struct CellRef {
        std::uint32_t offset;
        std::uint32_t length : 28;
        std::uint32_t kind : 4;
    };
    struct RowRef {
        std::uint32_t first;
        std::int32_t number : 31;
        std::uint32_t hidden : 1;
        std::uint32_t written;
    };
    const CellRef* at(int row, int column) const;

    std::string texts_;
    std::vector<CellRef> cells_;
    std::vector<RowRef> rows_;
    int columns_ = 0;
};

// "A" for 0, "AA" for 26.
std::string columnLetters(int column);

} // namespace merchantry::exchange
