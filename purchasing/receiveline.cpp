#include "purchasing/receiveline.h"

#include "purchasing/othercosts.h"

namespace merchantry::purchasing {

Currency subtotalOf(const std::vector<ReceiveLine>& lines) {
    Currency sum;
    for (const ReceiveLine& line : lines)
        sum += line.extended();
    return sum;
}

void spreadOver(std::vector<ReceiveLine>& lines, Currency Subtotal, Currency OtherCost) {
    std::vector<ReceivedQuantity> received;
    received.reserve(lines.size());
    for (const ReceiveLine& line : lines)
        received.push_back({line.RecvQty, line.Cost});
    const auto shares = SpreadOtherCosts(received, Subtotal, OtherCost);
    for (std::size_t i = 0; i < lines.size(); ++i)
        lines[i].OtherCostShare = shares[i];
}

} // namespace merchantry::purchasing
