#include "base/shown.h"

#include "base/numbers.h"

namespace merchantry {

std::string shownCost(Currency cost) {
    const std::string fixed = cost.toFixedText();
    if (fixed.ends_with("00"))
        return cost.toDisplay();
    const bool negative = fixed.starts_with('-');
    const std::size_t point = fixed.find('.');
    const std::string whole = fixed.substr(negative ? 1 : 0, point - (negative ? 1 : 0));
    const std::string shown = "$" + withThousands(std::stoll(whole)) + fixed.substr(point);
    return negative ? "(" + shown + ")" : shown;
}

std::string shownPercent(const std::string& number) {
    return number + "%";
}

} // namespace merchantry
