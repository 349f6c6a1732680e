#pragma once

#include "app/db/dberror.h"
#include "app/db/tsql/cell.h"

namespace merchantry::db::tsql {

// What a conversion is for: a cast or a variable cuts a text that is too long; a table's column refuses it (8152).
enum class ConvertFor { Value, Column };

// The cell in another type. Null stays null. The style is that of CONVERT; -1 when none was given.
// Throws DbError (220, 235, 241, 245, 8114, 8115, 8152, ...) when the value has no place in the type.
Cell converted(const CellView& cell, const SqlType& from, const SqlType& to, ConvertFor purpose = ConvertFor::Value, int style = -1);

// Whether every value of the one type stands for itself in the other, cell for cell, so that nothing needs to be done.
bool sameCells(const SqlType& from, const SqlType& to);

// The text of a cell without regard to a length, as CAST to a long varchar gives it.
std::string textOf(const CellView& cell, const SqlType& from, int style = -1);

// Requires: nothing; throws 8115 when the digits do not fit.
Cell checkedDecimal(__int128 digits, const SqlType& type);
// The exact quotient of a decimal by a power of ten, halves away from zero.
__int128 scaledDown(__int128 digits, int places);

DbError overflow(const SqlType& type);

} // namespace merchantry::db::tsql
