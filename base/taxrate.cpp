#include "base/taxrate.h"

#include "base/division.h"

#include <algorithm>
#include <cmath>

namespace merchantry {
namespace {

constexpr std::int64_t kUnitsPerCent = Currency::kUnitsPerOne / 100;
constexpr std::int64_t kWhole = 100'000; // a hundred percent
constexpr double kMostPercent = 1e6;

// The share of an amount, in whole cents.
Currency share(Currency amount, std::int64_t part, std::int64_t whole) {
    const std::int64_t cents =
        dividedAwayFromZero(static_cast<__int128>(amount.units()) * part, static_cast<__int128>(whole) * kUnitsPerCent);
    return Currency::fromUnits(cents * kUnitsPerCent);
}

} // namespace

TaxRate TaxRate::fromPercent(double percent) {
    return fromThousandths(std::llround(std::clamp(percent, -kMostPercent, kMostPercent) * 1000));
}

Currency TaxRate::on(Currency amount) const {
    return share(amount, thousandths_, kWhole);
}

Currency TaxRate::within(Currency price) const {
    return thousandths_ <= 0 ? Currency() : share(price, thousandths_, kWhole + thousandths_);
}

} // namespace merchantry
