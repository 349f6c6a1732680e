#pragma once

#include "app/db/ado/rowstore.h"

#include <memory>
#include <string_view>

namespace merchantry::db {

// A recordset's filter, read once and asked for every row: conditions on columns joined by "and" and "or", with brackets. A condition is a
// column name (in square brackets where it is no plain word), one of = <> < > <= >= like, and a value: 'text' (doubled apostrophes stand
// for one), #date#, a number, true, false or null. LIKE takes % and * for any text, at the ends. Texts compare without case and trailing
// blanks. A text that is no filter throws DbError with kInvalidArgument and says where. The rows must outlive the filter.
class Filter {
public:
    struct Node;

    Filter(std::string_view text, const RowStore& store);
    ~Filter();
    bool matches(int row) const;

private:
    const RowStore& store_;
    std::unique_ptr<Node> root_;
};

} // namespace merchantry::db
