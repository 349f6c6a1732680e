#pragma once

#include "app/db/tsql/convert.h"

namespace merchantry::db::tsql {

// The steps of `converted`, one for each family of types; no cell is null here. They throw what `converted` throws.
Cell toWhole(const CellView& cell, const SqlType& from, const SqlType& to);
Cell toDecimal(const CellView& cell, const SqlType& from, const SqlType& to);
Cell toMoney(const CellView& cell, const SqlType& from, const SqlType& to);
Cell toFloat(const CellView& cell, const SqlType& from, const SqlType& to);
Cell toDate(const CellView& cell, const SqlType& from, const SqlType& to, int style);
Cell toText(const CellView& cell, const SqlType& from, const SqlType& to, ConvertFor purpose, int style);
Cell toBinary(const CellView& cell, const SqlType& from, const SqlType& to, ConvertFor purpose);
Cell toUniqueIdentifier(const CellView& cell);

// What they share.
using Wide = __int128;

constexpr Wide powerOfTen(int exponent) {
    Wide power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

struct Range {
    std::int64_t low;
    std::int64_t high;
};
// Of the whole numbers, and of the moneys in ten-thousandths.
Range rangeOf(TypeKind kind);

// The error for a text that is no value of the type.
DbError textConversion(std::string_view text, const SqlType& from, const SqlType& to);

} // namespace merchantry::db::tsql
