#pragma once

#include "app/movingaverage.h"
#include "purchasing/receiveline.h"

#include <optional>
#include <string>
#include <vector>

namespace merchantry::purchasing {

// What posting one line of a receipt would make of its item.
struct RehearsedLine {
    ReceiveLine line; // with its share of the other costs
    app::MovingAverage before;
    app::MovingAverage after;
    Currency costEach;             // of a piece, its share included, as the ledger would hold it
    std::optional<Currency> price; // today's retail price, that of a sale event where it is lower; none when the item has no price

    Currency costBefore() const { return Currency::fromUnits(before.average.value_or(0)); }
    Currency costAfter() const { return Currency::fromUnits(after.average.value_or(0)); }
    // Of the price, in whole percent; nothing without a price above 0.
    std::optional<int> margin() const;
    // In words: what of the line stays open; and that nothing is on hand, so that the cost of what comes is the new one.
    std::string remark() const;
};

// The lines that bring something, in their order, worked out from the ledger as it stands now by the rule of its trigger. Reads, and writes
// nothing. Throws DbError and OverflowError.
std::vector<RehearsedLine> rehearsed(std::int32_t PONumber, const std::vector<ReceiveLine>& lines, Currency OtherCost);

// The receipt as a whole in words: what the order would be, and what more than was ordered does.
std::string wordsForReceipt(const std::vector<ReceiveLine>& lines);

} // namespace merchantry::purchasing
