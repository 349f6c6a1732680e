#pragma once

#include <cstdint>

namespace merchantry {

// The nearest whole number to the quotient, halves away from zero, as ROUND gives it. Requires: divisor > 0, and a quotient of 64 bits.
inline std::int64_t dividedAwayFromZero(__int128 number, __int128 divisor) {
    const __int128 half = divisor / 2;
    return static_cast<std::int64_t>((number < 0 ? number - half : number + half) / divisor);
}

// The nearest whole number to the quotient, halves to even. Requires: divisor != 0, and twice the divisor within 127 bits.
inline __int128 dividedHalfEven(__int128 dividend, __int128 divisor) {
    if (divisor < 0) {
        dividend = -dividend;
        divisor = -divisor;
    }
    __int128 quotient = dividend / divisor;
    __int128 rest = dividend % divisor;
    const bool negative = rest < 0;
    if (negative)
        rest = -rest;
    const __int128 twice = rest * 2;
    if (twice > divisor || (twice == divisor && (quotient & 1) != 0))
        quotient += negative ? -1 : 1;
    return quotient;
}

} // namespace merchantry
