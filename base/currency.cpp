#include "base/currency.h"

#include "base/division.h"

#include <cmath>

namespace merchantry {
namespace {

using Wide = __int128;

Currency narrowed(Wide units) {
    if (units > INT64_MAX || units < INT64_MIN)
        throw OverflowError("The amount is too large for money.");
    return Currency::fromUnits(static_cast<std::int64_t>(units));
}

std::string digitsOf(unsigned long long number, int atLeast) {
    std::string text = std::to_string(number);
    if (static_cast<int>(text.size()) < atLeast)
        text.insert(0, static_cast<std::size_t>(atLeast) - text.size(), '0');
    return text;
}

unsigned long long magnitude(std::int64_t number) {
    return number < 0 ? 0ULL - static_cast<unsigned long long>(number) : static_cast<unsigned long long>(number);
}

} // namespace

Currency Currency::fromInteger(std::int64_t whole) {
    return narrowed(static_cast<Wide>(whole) * kUnitsPerOne);
}

Currency Currency::fromDouble(double number) {
    const double scaled = number * static_cast<double>(kUnitsPerOne);
    if (!(scaled > -9.2233720368547758e18 && scaled < 9.2233720368547758e18))
        throw OverflowError("The number is too large for money.");
    return fromUnits(static_cast<std::int64_t>(std::nearbyint(scaled)));
}

Currency Currency::fromText(std::string_view text) {
    const auto fail = [&] { throw std::invalid_argument("\"" + std::string(text) + "\" is not an amount of money."); };
    std::size_t at = 0;
    std::size_t end = text.size();
    while (at < end && text[at] == ' ')
        ++at;
    while (end > at && text[end - 1] == ' ')
        --end;
    bool negative = false;
    bool bracketed = false;
    if (at < end && text[at] == '(' && text[end - 1] == ')') {
        bracketed = negative = true;
        ++at;
        --end;
    }
    bool sawSign = bracketed;
    bool sawDollar = false;
    for (; at < end; ++at) {
        if ((text[at] == '-' || text[at] == '+') && !sawSign) {
            negative = text[at] == '-';
            sawSign = true;
        } else if (text[at] == '$' && !sawDollar) {
            sawDollar = true;
        } else if (text[at] != ' ') {
            break;
        }
    }
    Wide units = 0;
    int decimals = -1;
    bool sawDigit = false;
    int beyond = 0;          // first digit after the fourth decimal
    bool beyondRest = false; // any non-zero digit behind that
    for (; at < end; ++at) {
        const char c = text[at];
        if (c >= '0' && c <= '9') {
            sawDigit = true;
            if (decimals < 4) {
                units = units * 10 + (c - '0');
                if (decimals >= 0)
                    ++decimals;
            } else if (decimals == 4) {
                beyond = c - '0';
                ++decimals;
            } else {
                beyondRest = beyondRest || c != '0';
            }
            if (units > static_cast<Wide>(INT64_MAX) * 2)
                throw OverflowError("The amount is too large for money.");
        } else if (c == '.' && decimals < 0) {
            decimals = 0;
        } else if (c != ',' || decimals >= 0) {
            fail();
        }
    }
    if (!sawDigit)
        fail();
    for (int i = decimals < 0 ? 0 : decimals; i < 4; ++i)
        units *= 10;
    if (beyond > 5 || (beyond == 5 && (beyondRest || (units & 1) != 0)))
        ++units;
    return narrowed(negative ? -units : units);
}

Currency Currency::operator+(Currency other) const {
    return narrowed(static_cast<Wide>(units_) + other.units_);
}

Currency Currency::operator-(Currency other) const {
    return narrowed(static_cast<Wide>(units_) - other.units_);
}

Currency Currency::operator-() const {
    return narrowed(-static_cast<Wide>(units_));
}

Currency Currency::operator*(Currency other) const {
    return narrowed(dividedHalfEven(static_cast<Wide>(units_) * other.units_, kUnitsPerOne));
}

Currency Currency::operator*(std::int64_t factor) const {
    return narrowed(static_cast<Wide>(units_) * factor);
}

Currency Currency::operator/(Currency other) const {
    if (other.units_ == 0)
        throw std::domain_error("Division by zero");
    return narrowed(dividedHalfEven(static_cast<Wide>(units_) * kUnitsPerOne, other.units_));
}

Currency Currency::rounded(int decimals) const {
    Wide step = 1;
    for (int i = decimals; i < 4; ++i)
        step *= 10;
    return narrowed(dividedHalfEven(units_, step) * step);
}

std::string Currency::toText() const {
    std::string text = toFixedText();
    while (text.back() == '0')
        text.pop_back();
    if (text.back() == '.')
        text.pop_back();
    return text;
}

std::string Currency::toFixedText() const {
    const unsigned long long all = magnitude(units_);
    return (units_ < 0 ? "-" : "") + std::to_string(all / kUnitsPerOne) + "." + digitsOf(all % kUnitsPerOne, 4);
}

std::string Currency::toDisplay() const {
    const unsigned long long cents = (magnitude(units_) + 50) / 100;
    std::string whole = std::to_string(cents / 100);
    for (std::ptrdiff_t at = static_cast<std::ptrdiff_t>(whole.size()) - 3; at > 0; at -= 3)
        whole.insert(static_cast<std::size_t>(at), ",");
    const std::string amount = "$" + whole + "." + digitsOf(cents % 100, 2);
    return units_ < 0 && cents != 0 ? "(" + amount + ")" : amount;
}

} // namespace merchantry
