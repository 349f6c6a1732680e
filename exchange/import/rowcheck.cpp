#include "exchange/import/rowcheck.h"

#include "base/counted.h"
#include "base/lettercase.h"
#include "base/text.h"
#include "exchange/import/delimitedfile.h"

#include <algorithm>
#include <map>

namespace merchantry::exchange {
namespace {

// The cells of a row up to its last one that holds something.
int filledCells(const SheetTable& table, int row) {
    int count = table.cells(row);
    while (count > 0 && trimmed(table.cell(row, count - 1).text).empty())
        --count;
    return count;
}

std::string delimiterName(char sign) {
    for (const Delimiter& one : delimiters())
        if (one.sign == sign)
            return lowerCase(one.name);
    return "delimiter";
}

std::string cellsInWords(int count) {
    return counted(count, "cell");
}

// By what a row says whose it is.
std::vector<int> namingFields(Target target) {
    if (target == Target::Items)
        return {item::Code, item::Name};
    if (target == Target::Suppliers)
        return {fieldNamed(target, "Supplier")};
    std::vector<int> fields;
    for (const char* key : {"AccountNumber", "FirstName", "LastName", "Company"})
        fields.push_back(fieldNamed(target, key));
    return fields;
}

bool isSumWord(std::string_view text) {
    const std::string word = foldedHeading(text);
    for (const char* sum : {"total", "totals", "sum", "sums", "summe", "subtotal", "grandtotal", "sumtotal", "gesamt", "gesamtsumme",
                            "zwischensumme", "insgesamt"})
        if (word == sum)
            return true;
    return false;
}

} // namespace

RowCheck::RowCheck(const SheetTable& table, const ColumnMatch& match, Target target) : table_(table), match_(match), target_(target) {
    findSums();
    if (table.delimiter == '\0')
        return;
    std::map<int, int> widths;
    for (int row = match.headingRow + 1; row < table.rows(); ++row) {
        ++widths[table.written(row)];
        writesEmpty_ = writesEmpty_ || table.cells(row) < table.written(row);
    }
    for (const auto& [width, count] : widths)
        usual_ = usual_ == 0 || count >= widths[usual_] ? width : usual_;
    headed_ = match.headingRow < 0 ? usual_ : filledCells(table, match.headingRow);
    for (int column = headed_; column < static_cast<int>(match.fields.size()); ++column)
        headed_ = match.fields[static_cast<std::size_t>(column)] < 0 ? headed_ : column + 1;
}

bool RowCheck::isBlank(int row) const {
    return filledCells(table_, row) == 0;
}

void RowCheck::findSums() {
    sumsFrom_ = table_.rows();
    while (sumsFrom_ - 1 > match_.headingRow && (isBlank(sumsFrom_ - 1) || sumWordIn(sumsFrom_ - 1) >= 0))
        --sumsFrom_;
}

// A customer may be called Sum, with a first name: all that names one must be such words.
int RowCheck::sumWordIn(int row) const {
    int found = -1;
    for (const int field : namingFields(target_)) {
        const int column = match_.columnOf(field);
        const std::string_view text = column < 0 ? std::string_view() : trimmed(table_.cell(row, column).text);
        if (text.empty())
            continue;
        if (isSumWord(text))
            found = found < 0 ? field : found;
        else if (target_ == Target::Customers)
            return -1;
    }
    return found;
}

// Cells that are not there count as empty, where the file leaves empty ones at the end out.
bool RowCheck::isShort(int row) const {
    return writesEmpty_ && table_.written(row) < std::min(headed_, usual_);
}

std::string RowCheck::widthComplaint(int row) const {
    if (table_.delimiter == '\0')
        return "";
    const int filled = filledCells(table_, row);
    // All of a row may have moved where one cell more is empty.
    const bool moved = table_.written(row) > std::max(headed_, usual_);
    if (filled <= headed_ && !moved && !isShort(row))
        return "";
    const int cells = filled > headed_ ? filled : table_.written(row);
    const std::string cause = isShort(row) ? "line end within a text" : delimiterName(table_.delimiter) + " within a number or text";
    return "This row has " + cellsInWords(cells) + ", the headings " + std::to_string(headed_) + ": a " + cause + " may want quotes.";
}

} // namespace merchantry::exchange
