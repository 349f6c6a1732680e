#pragma once

#include <compare>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace merchantry {

// A value left the range of its type. Every arithmetic overflow of the base types is this error, never a wrap.
class OverflowError : public std::overflow_error {
public:
    using std::overflow_error::overflow_error;
};

// Money: a 64-bit fixed-point number with exactly four decimals, from -922,337,203,685,477.5808 to +922,337,203,685,477.5807.
// Sums and differences are exact; products and quotients go through 128 bits and round halves to even at the fourth decimal.
// Every operation that would leave the range throws OverflowError.
class Currency {
public:
    static constexpr std::int64_t kUnitsPerOne = 10000;

    constexpr Currency() = default;
    // From ten-thousandths: fromUnits(12345) is 1.2345.
    static constexpr Currency fromUnits(std::int64_t units) {
        Currency c;
        c.units_ = units;
        return c;
    }
    static Currency fromInteger(std::int64_t whole);
    // Rounds halves to even at the fourth decimal; throws OverflowError for what does not fit or is no number.
    static Currency fromDouble(double number);
    // Reads "1,234.5", "$12.30", "($4.00)", "-3"; throws std::invalid_argument for any other text.
    static Currency fromText(std::string_view text);

    constexpr std::int64_t units() const { return units_; }
    double toDouble() const { return static_cast<double>(units_) / kUnitsPerOne; }

    Currency operator+(Currency other) const;
    Currency operator-(Currency other) const;
    Currency operator-() const;
    Currency operator*(Currency other) const;
    Currency operator*(std::int64_t factor) const;
    // Throws std::domain_error when the divisor is zero.
    Currency operator/(Currency other) const;
    Currency& operator+=(Currency other) { return *this = *this + other; }
    Currency& operator-=(Currency other) { return *this = *this - other; }

    // Rounded to so many decimals (0 to 4), halves to even.
    Currency rounded(int decimals) const;

    auto operator<=>(const Currency&) const = default;

    // Shortest decimal form for statements: "12.5", "-0.0001", "3".
    std::string toText() const;
    // All four decimals: "12.5000".
    std::string toFixedText() const;
    // As the price fields show it, "$#,##0.00;($#,##0.00)": "$1,234.50", "($4.00)". Cents round halves away from zero.
    std::string toDisplay() const;

private:
    std::int64_t units_ = 0;
};

} // namespace merchantry
