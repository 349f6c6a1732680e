#include "purchasing/othercosts.h"

#include "base/division.h"

namespace merchantry::purchasing {
namespace {

constexpr std::int64_t kUnitsPerCent = Currency::kUnitsPerOne / 100;

// So much of the cost as `part` is of `whole`, in whole cents. Requires: whole > 0.
Currency shareOf(Currency cost, std::int64_t part, std::int64_t whole) {
    const __int128 cents = dividedHalfEven(static_cast<__int128>(cost.units()) * part, static_cast<__int128>(whole) * kUnitsPerCent);
    if (cents > INT64_MAX / kUnitsPerCent || cents < INT64_MIN / kUnitsPerCent)
        throw OverflowError("A share of the other costs is too large for money.");
    return Currency::fromUnits(static_cast<std::int64_t>(cents) * kUnitsPerCent);
}

} // namespace

std::vector<Currency> SpreadOtherCosts(std::span<const ReceivedQuantity> lines, Currency Subtotal, Currency OtherCost) {
    std::vector<Currency> shares(lines.size());
    std::int64_t TotalQty = 0;
    for (const ReceivedQuantity& line : lines)
        TotalQty += line.RecvQty > 0 ? line.RecvQty : 0;
    Currency RestValue = Subtotal;
    Currency RestCost = OtherCost;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const ReceivedQuantity& line = lines[i];
        if (line.RecvQty <= 0)
            continue;
        const Currency Ext = line.Cost * line.RecvQty;
        shares[i] = RestValue > Currency() ? shareOf(RestCost, Ext.units(), RestValue.units()) : shareOf(RestCost, line.RecvQty, TotalQty);
        RestValue -= Ext;
        RestCost -= shares[i];
        TotalQty -= line.RecvQty;
    }
    return shares;
}

} // namespace merchantry::purchasing
