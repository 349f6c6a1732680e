#pragma once

#include "exchange/import/columns.h"
#include "exchange/import/sheettable.h"

#include <string>

namespace merchantry::exchange {

// Judges the rows of a table by how they stand among the others, whatever is in their cells. The table must outlive it.
class RowCheck {
public:
    RowCheck(const SheetTable& table, const ColumnMatch& match);

    // Why a row of delimited text seems to be cut into other cells than the headings; empty for one that is not.
    std::string widthComplaint(int row) const;

private:
    bool isShort(int row) const;

    const SheetTable& table_;
    int headed_ = 0;           // cells up to the last heading, or the last column that goes to a field
    int usual_ = 0;            // cells that most rows are written with
    bool writesEmpty_ = false; // rows have their empty cells at the end, too
};

} // namespace merchantry::exchange
