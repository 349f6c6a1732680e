#pragma once

#include <cstdint>
#include <optional>

namespace merchantry::app {

// What an item's movements make of its quantity and of the weighted average cost of a piece: the rule of the ledger's trigger
// InventoryLedger_Insert, in the same exact arithmetic. Money in ten-thousandths.
struct MovingAverage {
    std::int64_t onHand = 0;
    std::optional<std::int64_t> average; // none before the first movement

    // One more movement at a cost of a piece; `reversal` for one that takes an adjustment back. What comes back by one costs what it was
    // worth when it left: the average after the movement that is taken back.
    void move(std::int64_t quantity, std::int64_t cost, bool reversal = false);
};

// What a piece of a receipt costs with its line's share of other costs, as sp_ReceiveItem writes it into the ledger. Requires: quantity >
// 0.
std::int64_t costWithShare(std::int64_t cost, std::int64_t share, std::int64_t quantity);

} // namespace merchantry::app
