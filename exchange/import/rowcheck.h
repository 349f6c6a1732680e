#pragma once

#include "exchange/import/columns.h"
#include "exchange/import/sheettable.h"

#include <string>

namespace merchantry::exchange {

// Judges the rows of a table by how they stand among the others, whatever is in their cells. The table and the match must outlive it.
class RowCheck {
public:
    RowCheck(const SheetTable& table, const ColumnMatch& match, Target target);

    // Why a row of delimited text seems to be cut into other cells than the headings; empty for one that is not.
    std::string widthComplaint(int row) const;

    // The field in which one of the last rows calls itself a sum of the list ("Total:"); -1 for any other row.
    int sumField(int row) const { return row < sumsFrom_ ? -1 : sumWordIn(row); }

private:
    int sumWordIn(int row) const;
    bool isBlank(int row) const;
    void findSums();
    bool isShort(int row) const;

    const SheetTable& table_;
    const ColumnMatch& match_;
    Target target_;
    int headed_ = 0;           // cells up to the last heading, or the last column that goes to a field
    int usual_ = 0;            // cells that most rows are written with
    bool writesEmpty_ = false; // rows have their empty cells at the end, too
    int sumsFrom_ = 0;         // the first of the rows below which there are sums alone
};

} // namespace merchantry::exchange
