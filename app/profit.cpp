#include "app/profit.h"

#include "base/division.h"

#include <stdexcept>

namespace merchantry::app {

int profitPercent(Currency price, Currency cost) {
    if (price.units() == 0)
        throw std::domain_error("Division by zero");
    return static_cast<int>(dividedHalfEven((static_cast<__int128>(price.units()) - cost.units()) * 100, price.units()));
}

} // namespace merchantry::app
