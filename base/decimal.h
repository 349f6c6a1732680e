#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace merchantry {

// An exact decimal number of up to 38 digits: digits times ten to the minus scale. The scale is part of the value:
// 1.50 and 1.5 compare equal but print as they are.
struct Decimal {
    __int128 digits = 0;
    int scale = 0; // decimals, 0 to 38

    // Reads "-12.50"; nullopt for any other text or more than 38 digits.
    static std::optional<Decimal> fromText(std::string_view text);
    std::string toText() const;
    double toDouble() const;
    // The same number with another scale, halves away from zero when digits fall off.
    // nullopt when the result has more than 38 digits.
    std::optional<Decimal> rescaled(int newScale) const;
    // Digits before and after the point, without leading zeros; at least 1.
    int precision() const;

    std::strong_ordering operator<=>(const Decimal& other) const;
    bool operator==(const Decimal& other) const { return (*this <=> other) == 0; }
};

} // namespace merchantry
