#pragma once

#include "base/currency.h"

namespace merchantry::app {

// Gross margin on the selling price, in whole percent: (price - cost) / price, rounded to two decimals with halves to even, times 100.
// A price below the cost gives a negative figure. Throws std::domain_error ("Division by zero") for a price of 0.
int profitPercent(Currency price, Currency cost);

} // namespace merchantry::app
