#pragma once

#include "exchange/import/fields.h"
#include "exchange/import/sheettable.h"

#include <string>
#include <vector>

namespace merchantry::exchange {

// Which columns of a table go to which fields.
struct ColumnMatch {
    int headingRow = -1;     // row of the table with the headings; -1 for a table without
    std::vector<int> fields; // by column: the field's position, -1 for a column that is left aside

    // The column that goes to the field; -1 for none.
    int columnOf(int field) const;
    // Lets the column go to the field, and no other; -1 leaves it aside.
    void set(int column, int field);
};

// The row that looks like headings, among the first ones, with the columns that they mean. A heading that a column before it took, or whose
// column is hidden, is left aside.
ColumnMatch matched(Target target, const SheetTable& table);
// The same with the headings in a row that the user says; -1 for none.
ColumnMatch matchedBy(Target target, const SheetTable& table, int headingRow);

// The headings of a file, folded, as a key: files of one maker have the same. Empty for a table without headings.
std::string headingsKey(const SheetTable& table, int headingRow);
// The match as a text to be remembered, and back; columns and fields that are not there any more are left out.
std::string remembered(Target target, const ColumnMatch& match);
void recall(Target target, const std::string& text, ColumnMatch& match);

// Tells texts apart: 32 hexadecimal digits. No secret depends on it.
std::string fingerprint(std::string_view text);

} // namespace merchantry::exchange
