#pragma once

#include "app/db/ado/rowstore.h"

#include <string_view>
#include <vector>

namespace merchantry::db {

// One field of a recordset's sort text: "SKU asc, Name DESC".
struct SortField {
    int column = 0;
    bool descending = false;
};
// Throws DbError with kInvalidArgument for a column that is not there.
std::vector<SortField> parseSort(std::string_view text, const RowStore& store);

// Order of two rows by one column, nulls first: negative, 0 or positive.
int compareCells(const RowStore& store, int left, int right, int column);

} // namespace merchantry::db
