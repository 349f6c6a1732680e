#pragma once

#include "base/currency.h"

#include <cstdint>
#include <span>
#include <vector>

namespace merchantry::purchasing {

// How much of one line a receipt brings, and at what cost of a piece.
struct ReceivedQuantity {
    std::int16_t RecvQty = 0;
    Currency Cost;
};

// The lines' shares of a receipt's other costs, in whole cents, in the order of the lines; 0 for a line that brings nothing. Each line
// takes of what is left in proportion to its extended cost, or, where no value is left, to its quantity; halves of a cent go to the even
// one. The last line takes the rest, so that the shares add up to the whole amount. Subtotal is the sum of the extended costs. Example:
// 0.10 over three lines of equal value is 0.03, 0.04, 0.03. The quotient is exact: as a double, 0.35 x 1/10 falls short of the half cent
// that it is. Throws OverflowError for a share that money cannot hold. Requires: an amount of whole cents, for the sum.
std::vector<Currency> SpreadOtherCosts(std::span<const ReceivedQuantity> lines, Currency Subtotal, Currency OtherCost);

} // namespace merchantry::purchasing
