#pragma once

#include "base/value.h"

#include <compare>
#include <optional>
#include <string>

namespace merchantry::reports {

// A number that reports add up: fixed point with eight decimals, so that sums of money are exact to the last unit. Products and quotients
// are rounded half to even. Beyond 30 digits before the point an operation throws OverflowError.
class Figure {
public:
    Figure() = default;
    static Figure ofInteger(std::int64_t whole);
    static Figure ofMoney(std::int64_t tenThousandths);
    static Figure ofDouble(double number);
    // The number of a cell; nothing for null, dates, texts and bytes.
    static std::optional<Figure> of(const Value& value);
    // A plain decimal number as report files write it; nothing for anything else.
    static std::optional<Figure> fromText(std::string_view text);

    Figure operator+(Figure other) const;
    Figure operator-(Figure other) const;
    Figure operator*(Figure other) const;
    // Nothing when the divisor is 0.
    std::optional<Figure> over(Figure divisor) const;
    auto operator<=>(const Figure&) const = default;

    // Rounded half to even: "1234.50" with two decimals.
    std::string toText(int decimals) const;
    // With as many decimals as it needs, at most eight.
    std::string toShortText() const;
    double toDouble() const;

private:
    static constexpr std::int64_t kOne = 100'000'000;
    explicit Figure(__int128 units) : units_(units) {}

    __int128 units_ = 0; // hundred-millionths
};

} // namespace merchantry::reports
