#include "base/counted.h"

#include "base/numbers.h"

namespace merchantry {

std::string counted(std::int64_t number, std::string_view one, std::string_view many) {
    const std::string words = withThousands(number) + " ";
    if (number == 1)
        return words + std::string(one);
    return words + (many.empty() ? std::string(one) + "s" : std::string(many));
}

} // namespace merchantry
