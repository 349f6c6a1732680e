#pragma once

#include "base/currency.h"

#include <string>

namespace merchantry {

// How money and percentages are shown: on every screen, in every list, message and report alike. An amount is Currency::toDisplay,
// "$1,234.50" and "($4.00)"; a screen that is told to put "$" before a column's own text does that.

// What one piece costs: an amount, with all four decimals where cents do not tell it: "$12.50", "$0.0912", "($0.0912)".
std::string shownCost(Currency cost);
// The sign stands behind its number without a blank: "33%", "-2.5%".
std::string shownPercent(const std::string& number);

} // namespace merchantry
