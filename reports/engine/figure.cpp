#include "reports/engine/figure.h"

#include <algorithm>
#include <cmath>

namespace merchantry::reports {
namespace {

constexpr int kDecimals = 8;

__int128 powerOfTen(int exponent) {
    __int128 power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

// Requires: divisor is not 0.
__int128 dividedHalfEven(__int128 number, __int128 divisor) {
    if (divisor < 0) {
        number = -number;
        divisor = -divisor;
    }
    __int128 quotient = number / divisor;
    const __int128 rest = number % divisor < 0 ? -(number % divisor) : number % divisor;
    const __int128 doubled = rest * 2;
    if (doubled > divisor || (doubled == divisor && quotient % 2 != 0))
        quotient += number < 0 ? -1 : 1;
    return quotient;
}

std::string digitsOf(__int128 number) {
    std::string digits;
    do {
        digits += static_cast<char>('0' + static_cast<int>(number % 10));
        number /= 10;
    } while (number > 0);
    std::reverse(digits.begin(), digits.end());
    return digits;
}

} // namespace

Figure Figure::ofInteger(std::int64_t whole) {
    return Figure(static_cast<__int128>(whole) * kOne);
}

Figure Figure::ofMoney(std::int64_t tenThousandths) {
    return Figure(static_cast<__int128>(tenThousandths) * (kOne / Currency::kUnitsPerOne));
}

Figure Figure::ofDouble(double number) {
    if (!(std::fabs(number) < 1e18))
        throw OverflowError("Overflow");
    const double whole = std::trunc(number);
    return Figure(static_cast<__int128>(whole) * kOne + static_cast<__int128>(std::llrint((number - whole) * static_cast<double>(kOne))));
}

std::optional<Figure> Figure::of(const Value& value) {
    if (value.is<std::int64_t>())
        return ofInteger(value.as<std::int64_t>());
    if (value.is<Currency>())
        return ofMoney(value.as<Currency>().units());
    if (value.is<Decimal>()) {
        const auto scaled = value.as<Decimal>().rescaled(kDecimals);
        if (!scaled)
            throw OverflowError("Overflow");
        return Figure(scaled->digits);
    }
    if (value.is<double>())
        return ofDouble(value.as<double>());
    if (value.is<bool>())
        return ofInteger(value.as<bool>() ? 1 : 0);
    return std::nullopt;
}

std::optional<Figure> Figure::fromText(std::string_view text) {
    const auto number = Decimal::fromText(text);
    const auto scaled = number ? number->rescaled(kDecimals) : std::nullopt;
    return scaled ? std::optional<Figure>(Figure(scaled->digits)) : std::nullopt;
}

Figure Figure::operator+(Figure other) const {
    __int128 sum = 0;
    if (__builtin_add_overflow(units_, other.units_, &sum))
        throw OverflowError("Overflow");
    return Figure(sum);
}

Figure Figure::operator-(Figure other) const {
    return *this + Figure(-other.units_);
}

Figure Figure::operator*(Figure other) const {
    __int128 product = 0;
    if (__builtin_mul_overflow(units_, other.units_, &product))
        throw OverflowError("Overflow");
    return Figure(dividedHalfEven(product, kOne));
}

std::optional<Figure> Figure::over(Figure divisor) const {
    if (divisor.units_ == 0)
        return std::nullopt;
    __int128 widened = 0;
    if (__builtin_mul_overflow(units_, static_cast<__int128>(kOne), &widened))
        throw OverflowError("Overflow");
    return Figure(dividedHalfEven(widened, divisor.units_));
}

std::string Figure::toText(int decimals) const {
    const __int128 rounded = dividedHalfEven(units_, powerOfTen(kDecimals - decimals));
    std::string digits = digitsOf(rounded < 0 ? -rounded : rounded);
    if (digits.size() <= static_cast<std::size_t>(decimals))
        digits.insert(0, static_cast<std::size_t>(decimals) + 1 - digits.size(), '0');
    if (decimals > 0)
        digits.insert(digits.size() - static_cast<std::size_t>(decimals), ".");
    return rounded < 0 ? "-" + digits : digits;
}

std::string Figure::toShortText() const {
    std::string text = toText(kDecimals);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

double Figure::toDouble() const {
    return static_cast<double>(units_) / static_cast<double>(kOne);
}

} // namespace merchantry::reports
