#pragma once

#include <cstdint>

namespace merchantry {

// The nearest whole number to the quotient, halves away from zero, as ROUND gives it. Requires: divisor > 0, and a quotient of 64 bits.
inline std::int64_t dividedAwayFromZero(__int128 number, __int128 divisor) {
    const __int128 half = divisor / 2;
    return static_cast<std::int64_t>((number < 0 ? number - half : number + half) / divisor);
}

} // namespace merchantry
