#pragma once

#include "purchasing/openlines.h"

#include <cstdint>
#include <vector>

namespace merchantry::purchasing {

// One open line with what of it has arrived.
struct ReceiveLine : OpenLine {
    bool Memorize = false; // cost and part number are to be remembered for the supplier
    std::int16_t RecvQty = 0;
    Currency OtherCostShare; // 0 until the spread

    Currency extended() const { return Cost * RecvQty; }
    using OpenLine::staysOpen;
    bool staysOpen() const { return staysOpen(RecvQty); }
};

// The sum of what the lines bring. Throws OverflowError.
Currency subtotalOf(const std::vector<ReceiveLine>& lines);
// The lines with their shares of the other costs (SpreadOtherCosts).
void spreadOver(std::vector<ReceiveLine>& lines, Currency Subtotal, Currency OtherCost);

// Books the lines that bring something, their shares included, in one transaction on the shared connection; the number that the receipt
// got. Throws DbError and OverflowError, and then nothing of it is in the store.
std::int32_t postReceipt(std::int32_t PONumber, const std::vector<ReceiveLine>& lines, Currency OtherCost,
                         const std::string& OtherCostDesc);

} // namespace merchantry::purchasing
