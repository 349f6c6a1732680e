#pragma once

#include "app/db/tsql/sql.h"
#include "base/currency.h"
#include "ui/desk.h"
#include "ui/grid.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
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
    Currency Cost;             // of a piece
    std::string OrderedPartNo; // these two as the order has them, when the screen's own are typed over
    Currency OrderedCost;

    // Whether something stays open when so many are received or cancelled now. What exceeds the order leaves nothing open.
    bool staysOpen(std::int16_t quantity) const { return quantity + QtyRecvd + QtyCanceled < Qty; }
    // Takes the line as the order has it now; a part number and a cost that were typed over stay.
    void renew(const OpenLine& now);
};

// Somebody else changed lines of the order since the screen read them, and nothing was posted; what() says which, a sentence a line.
class OrderChanged : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What others changed of an order, in sentences: of as many of its lines as a box has room for.
class ToldChanges {
public:
    // Takes the sentences on one line, each with its end; none when nothing of it changed.
    void add(const std::string& sentences);
    bool any() const { return lines_ > 0; }
    std::string text() const;

private:
    int lines_ = 0;
    std::string sentences_;
};

// What stands for an item among others, whatever the case of its codes.
std::string itemKey(const std::string& SKU, const std::string& MatrixSKU);

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

// A screen's lines as the order has them now. What was to be posted stays, but no more of a changed line than is open, and nothing of one
// that the screen did not show. Throws DbError.
template <class Line> std::vector<Line> renewedLines(std::int32_t PONumber, const std::vector<Line>& shown, std::int16_t Line::*posted) {
    std::map<std::string, const Line*> before;
    for (const Line& line : shown)
        before.emplace(itemKey(line.SKU, line.MatrixSKU), &line);
    std::vector<Line> lines;
    for (const OpenLine& now : openLines(PONumber)) {
        const auto found = before.find(itemKey(now.SKU, now.MatrixSKU));
        Line& line = lines.emplace_back(found == before.end() ? Line() : *found->second);
        const bool changed = line.OpenQty != now.OpenQty;
        line.renew(now);
        if (changed)
            line.*posted = std::min(line.*posted, now.OpenQty);
    }
    return lines;
}

// "2 open lines, 14 pieces to receive"
std::string openLinesInWords(std::size_t lines, std::int64_t pieces, const char* what);

// A whole number from 0 on; nothing for any other text. Throws OverflowError above 32767.
std::optional<std::int16_t> wholeQuantity(const std::string& text);

// Whether a text between quotes would make its statement fail: an apostrophe that stands alone.
bool breaksStatement(const std::string& text);

// Asks whether the order still has the lines as they are shown, and locks them until the transaction ends. Throws OrderChanged and DbError.
// Requires: a transaction is open.
void requireAsShown(std::int32_t PONumber, const std::vector<OpenLine>& shown);
// The same of those lines of a screen that have a quantity to post.
template <class Line> void requireAsShown(std::int32_t PONumber, const std::vector<Line>& lines, std::int16_t Line::*posted) {
    std::vector<OpenLine> shown;
    for (const Line& line : lines)
        if (line.*posted > 0)
            shown.push_back(line);
    requireAsShown(PONumber, shown);
}

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
