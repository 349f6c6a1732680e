#include "catalog/pricerule.h"

#include "base/numbers.h"
#include "base/shown.h"
#include "base/text.h"

#include <algorithm>
#include <array>

namespace merchantry::catalog {
namespace {

constexpr Currency cents(std::int64_t count) {
    return Currency::fromUnits(count * (Currency::kUnitsPerOne / 100));
}

constexpr std::array kRoundings{
    PriceRounding{"no rounding", cents(0), cents(0)},      PriceRounding{"to 0.01", cents(1), cents(0)},
    PriceRounding{"to 0.05", cents(5), cents(0)},          PriceRounding{"to 0.10", cents(10), cents(0)},
    PriceRounding{"to 0.50", cents(50), cents(0)},         PriceRounding{"to 1.00", cents(100), cents(0)},
    PriceRounding{"to end in 9", cents(10), cents(9)},     PriceRounding{"to end in .49 or .99", cents(50), cents(49)},
    PriceRounding{"to end in .95", cents(100), cents(95)}, PriceRounding{"to end in .99", cents(100), cents(99)},
};

bool hasAtMost(const Currency& number, int decimals) {
    return number.rounded(decimals) == number;
}

} // namespace

std::span<const PriceRounding> priceRoundings() {
    return kRoundings;
}

Currency roundedPrice(Currency price, const PriceRounding& rounding) {
    const std::int64_t step = rounding.step.units();
    if (step == 0)
        return price;
    const std::int64_t above = (price - rounding.end).units();
    if (above <= 0)
        return rounding.end;
    const std::int64_t steps = above / step + (above % step * 2 >= step ? 1 : 0);
    return rounding.step * steps + rounding.end;
}

NewPrice changedPrice(Currency old, const PriceRule& rule) {
    if (old.units() == 0)
        return {old, NewPrice::Remark::NoPrice};
    const Currency raw = rule.percent ? old + old * (rule.change / Currency::fromInteger(100)) : old + rule.change;
    if (raw.units() <= 0)
        return {old, NewPrice::Remark::NotAboveZero};
    const Currency price = roundedPrice(raw, rule.rounding);
    if (price.units() <= 0)
        return {old, NewPrice::Remark::NotAboveZero};
    return {price, price == old ? NewPrice::Remark::Unchanged : NewPrice::Remark::None};
}

std::optional<Currency> changeFromText(const std::string& text, bool percent) {
    std::string number(trimmed(text));
    if (percent && number.ends_with('%'))
        number = std::string(trimmedRight(std::string_view(number).substr(0, number.size() - 1)));
    if (number.starts_with('+'))
        number.erase(0, 1);
    // More decimals than money has would be rounded away silently.
    const std::size_t point = number.find('.');
    if (!isNumeric(number) || (point != std::string::npos && number.size() - point > 5))
        return std::nullopt;
    try {
        const Currency change = Currency::fromText(number);
        return percent && !hasAtMost(change, 2) ? std::nullopt : std::optional(change);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::string wordsFor(const PriceRule& rule) {
    const bool lowers = rule.change.units() < 0;
    const Currency size = lowers ? -rule.change : rule.change;
    const std::string change = rule.percent ? shownPercent(size.toText()) : shownCost(size);
    return (lowers ? "-" : "+") + change + (rule.rounding.step.units() == 0 ? "" : std::string(", ") + rule.rounding.caption);
}

} // namespace merchantry::catalog
