#include "catalog/profit.h"

#include <stdexcept>

namespace merchantry::catalog {

int profitPercent(Currency price, Currency cost) {
    if (price.units() == 0)
        throw std::domain_error("Division by zero");
    __int128 dividend = (static_cast<__int128>(price.units()) - cost.units()) * 100;
    __int128 divisor = price.units();
    if (divisor < 0) {
        dividend = -dividend;
        divisor = -divisor;
    }
    __int128 percent = dividend / divisor;
    const __int128 rest = dividend % divisor;
    const __int128 twice = (rest < 0 ? -rest : rest) * 2;
    if (twice > divisor || (twice == divisor && percent % 2 != 0))
        percent += rest < 0 ? -1 : 1;
    return static_cast<int>(percent);
}

} // namespace merchantry::catalog
