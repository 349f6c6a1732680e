#pragma once

#include "app/db/session.h"
#include "exchange/import/columns.h"

#include <cstddef>

namespace merchantry::exchange {

// Characters of a cell that the pages show of it.
constexpr std::size_t kSampleText = 60;

// The table that is imported, what its rows become and which of its columns go where. The pages of the screen share it.
struct MatchedTable {
    SheetTable table;
    Target target = Target::Items;
    ColumnMatch match;

    // Matches the columns by the headings, or as those of such a file went last. Throws DbError.
    void matchAnew(db::Session& session);
    // Matches them by the headings in the row of that number, where the table has none as one without headings. False when they were so
    // already, and nothing changed.
    bool matchBy(int rowNumber);
    // Whether a column goes to a field at all.
    bool goesAnywhere() const;
};

} // namespace merchantry::exchange
