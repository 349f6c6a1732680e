#pragma once

#include "exchange/import/columns.h"
#include "exchange/import/sheettable.h"

#include <string_view>

namespace merchantry::exchange {

// Whether an amount can be read in two ways: "1.234" is one and a bit, or a thousand and more; so is "1,234".
bool readsEitherWay(std::string_view amount);
// Whether nothing tells the decimal sign of the amounts that are written as texts: all that have a sign read either way. False where none
// has.
bool decimalsUnclear(const SheetTable& table, const ColumnMatch& match, Target target);

} // namespace merchantry::exchange
