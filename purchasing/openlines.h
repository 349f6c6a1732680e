#pragma once

#include "app/db/tsql/sql.h"
#include "base/currency.h"
#include "ui/desk.h"
#include "ui/grid.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace merchantry::purchasing {

// What the screens that receive and cancel an order's open lines share.

// Titles of their boxes; the second one where a posting is refused.
constexpr const char* kPostingTitle = "Velmora Tillmark Professonal";

// A line of an order of which something is still open, as it was when it was read.
struct OpenLine {
    std::string SKU;
    std::string MatrixSKU;
    std::string PartNo; // the supplier's
    std::string Name;
    std::int16_t Qty = 0; // ordered
    std::int16_t QtyRecvd = 0;
    std::int16_t QtyCanceled = 0;
    std::int16_t OpenQty = 0;
    Currency Cost; // of a piece

    // Whether something stays open when so many are received or cancelled now. What exceeds the order leaves nothing open.
    bool staysOpen(std::int16_t quantity) const { return quantity + QtyRecvd + QtyCanceled < Qty; }
};

// The open lines of the order with that number, in the order of their names. Throws DbError.
std::vector<OpenLine> openLines(std::int32_t PONumber);
// The same as lines of a screen, with all that is open in the quantity that it posts.
template <class Line> std::vector<Line> openLinesFor(std::int32_t PONumber, std::int16_t Line::*posted) {
    std::vector<Line> lines;
    for (OpenLine& open : openLines(PONumber)) {
        Line& line = lines.emplace_back();
        static_cast<OpenLine&>(line) = std::move(open);
        line.*posted = line.OpenQty;
    }
    return lines;
}

// "2 open lines, 14 pieces to receive"
std::string openLinesInWords(std::size_t lines, std::int64_t pieces, const char* what);

// What stands for an item among others, whatever the case of its codes.
std::string itemKey(const std::string& SKU, const std::string& MatrixSKU);

// A whole number from 0 on; nothing for any other text. Throws OverflowError above 32767.
std::optional<std::int16_t> wholeQuantity(const std::string& text);

// Whether a text between quotes would make its statement fail: an apostrophe that stands alone.
bool breaksStatement(const std::string& text);

// Runs a statement of a posting that answers with the posting's number, which stands in that column. Throws DbError.
std::int32_t postedNumber(const db::Sql& statement, const char* column);
// Writes that the order is partial, when a line stays open, or closed. Throws DbError.
void changeStatus(std::int32_t PONumber, bool anyOpen);
// Books each line that has a quantity to post, by the statement made of it and of the posting's number (-1 until the first line got one),
// and then the order's status. The number; -1 when no line had anything. Throws DbError. Requires: a transaction is open.
template <class Line, class Statement>
std::int32_t postLines(std::int32_t PONumber, const std::vector<Line>& lines, std::int16_t Line::*posted, const char* numberColumn,
                       Statement statement) {
    std::int32_t number = -1;
    bool anyOpen = false;
    for (const Line& line : lines) {
        anyOpen = anyOpen || line.staysOpen(line.*posted);
        if (line.*posted <= 0)
            continue;
        const std::int32_t answered = postedNumber(statement(line, number), numberColumn);
        if (number == -1)
            number = answered;
    }
    changeStatus(PONumber, anyOpen);
    return number;
}

// The line of a data row, whose hidden column holds its place in the list from 1; nothing for the heading or no row.
template <class Line> Line* lineOf(std::vector<Line>& lines, const ui::Grid& grid, int row, int indexColumn) {
    return row < 1 || row > grid.dataRows() ? nullptr : &lines.at(static_cast<std::size_t>(std::stoi(grid.rawText(row, indexColumn)) - 1));
}

} // namespace merchantry::purchasing
