#pragma once

#include <string_view>

namespace merchantry {

// Order of two texts as the store compares them: without case and without trailing blanks, signs before digits before letters, letters with
// accents beside their base letter. Negative, 0 or positive; 0 only where the letters have the same accents.
int compareText(std::string_view left, std::string_view right);
inline bool sameText(std::string_view left, std::string_view right) {
    return compareText(left, right) == 0;
}

} // namespace merchantry
