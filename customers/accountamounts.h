#pragma once

#include "base/currency.h"

#include <optional>
#include <string>

namespace merchantry::customers {

// Amounts of accounts as their screens take and show them.

// As much as one posting may come to, so that accounts and their sums never leave what money can hold.
constexpr Currency kMostAdjusted = Currency::fromUnits(9'999'999'999'900);

// Throws RunTimeError for what is no amount.
Currency amountFrom(const std::string& text);
// Nothing for what is no amount, or more than one posting may come to.
std::optional<Currency> amountWithin(const std::string& text);
Currency magnitude(Currency amount);
bool hasFractions(Currency amount); // of a cent
// As stored: in cents, and with all its decimals where it has fractions of one (a register's posting can), so that what is shown is what
// can be applied.
std::string asStored(Currency amount);
// Whether what is left open after applying would be more than the posting ever was, with the wrong sign that is.
bool opensMore(Currency total, Currency open, Currency applied);

} // namespace merchantry::customers
