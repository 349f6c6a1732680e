#include "app/movingaverage.h"

#include "base/division.h"

namespace merchantry::app {
namespace {

std::int64_t averaged(const MovingAverage& item, std::int64_t quantity, std::int64_t cost) {
    return dividedAwayFromZero(static_cast<__int128>(item.onHand) * *item.average + static_cast<__int128>(quantity) * cost,
                               item.onHand + quantity);
}

} // namespace

void MovingAverage::move(std::int64_t quantity, std::int64_t cost, bool reversal) {
    if (reversal && quantity <= 0 && average) {
        if (onHand + quantity > 0)
            if (const std::int64_t rest = averaged(*this, quantity, cost); rest >= 0)
                average = rest;
    } else if (quantity > 0 && onHand > 0 && average) {
        average = averaged(*this, quantity, cost);
    } else if (quantity > 0 || !average) {
        average = cost;
    }
    onHand += quantity;
}

std::int64_t costWithShare(std::int64_t cost, std::int64_t share, std::int64_t quantity) {
    return dividedAwayFromZero(static_cast<__int128>(cost) * quantity + share, quantity);
}

} // namespace merchantry::app
