#include "customers/accountamounts.h"

#include "app/failure.h"
#include "base/numbers.h"

namespace merchantry::customers {

Currency amountFrom(const std::string& text) {
    const auto amount = amountOf(text);
    if (!amount)
        throw app::RunTimeError(13, "Type mismatch");
    return *amount;
}

std::optional<Currency> amountWithin(const std::string& text) {
    try {
        const auto amount = amountOf(text);
        return amount && magnitude(*amount) <= kMostAdjusted ? amount : std::nullopt;
    } catch (const OverflowError&) {
        return std::nullopt;
    }
}

Currency magnitude(Currency amount) {
    return amount < Currency() ? -amount : amount;
}

bool hasFractions(Currency amount) {
    constexpr std::int64_t kUnitsInCent = 100;
    return amount.units() % kUnitsInCent != 0;
}

std::string asStored(Currency amount) {
    if (!hasFractions(amount))
        return amount.toDisplay();
    const std::string digits = magnitude(amount).toText();
    return amount < Currency() ? "($" + digits + ")" : "$" + digits;
}

bool opensMore(Currency total, Currency open, Currency applied) {
    const Currency left = open - applied;
    return open > Currency() ? left > open && left > total : left < open && left < total;
}

} // namespace merchantry::customers
