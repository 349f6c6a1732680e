#include "inventory/adjustment.h"

#include "base/numbers.h"

#include <cmath>

namespace merchantry::inventory {

std::string complaintAbout(const std::string& quantity, const std::string& cost) {
    if (numericPrefix(quantity) == 0)
        return "Please enter a valid Quantity!";
    if (numericPrefix(cost) < 0)
        return "Negative cost can not be entered, please enter a positive cost amount!";
    return "";
}

Adjustment readAdjustment(const std::string& quantity, const std::string& cost) {
    return {toInt16(numericPrefix(quantity)), std::fabs(numericPrefix(cost))};
}

std::int16_t adjusted(std::int64_t present, std::int16_t quantity) {
    return toInt16(static_cast<double>(toInt16(static_cast<double>(present))) + quantity);
}

} // namespace merchantry::inventory
