#pragma once

#include "base/currency.h"

namespace merchantry {

// A tax rate as registers reckon with it: in thousandths of a percent, the tax rounded to cents with halves away from zero.
class TaxRate {
public:
    constexpr TaxRate() = default;
    static constexpr TaxRate fromThousandths(std::int64_t thousandths) {
        TaxRate rate;
        rate.thousandths_ = thousandths;
        return rate;
    }
    // To the nearest thousandth; what is beyond a million percent counts as that.
    static TaxRate fromPercent(double percent);

    std::int64_t thousandths() const { return thousandths_; }
    // The tax that comes on top of an amount.
    Currency on(Currency amount) const;
    // The tax that a price holds when it is meant with its tax. Nothing for a rate below 0.
    Currency within(Currency price) const;

private:
    std::int64_t thousandths_ = 0;
};

} // namespace merchantry
