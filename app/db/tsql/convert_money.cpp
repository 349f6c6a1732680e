#include "app/db/tsql/convert_to.h"

#include "app/db/tsql/errors.h"
#include "base/currency.h"
#include "base/date.h"
#include "base/text.h"

#include <cmath>

namespace merchantry::db::tsql {
namespace {

Cell moneyFrom(Wide units, const SqlType& to) {
    const Range range = rangeOf(to.kind);
    if (units < range.low || units > range.high)
        throw overflow(to);
    return Cell::ofInteger(static_cast<std::int64_t>(units));
}

Cell moneyFromText(std::string_view text, const SqlType& to) {
    const std::string_view rest = trimmed(text);
    if (rest.empty())
        return Cell::ofInteger(0);
    if (rest.find_first_of("()") != std::string_view::npos)
        throw valueError(235, "Cannot convert a char value to money. The char value has incorrect syntax.");
    try {
        return moneyFrom(Currency::fromText(rest).units(), to);
    } catch (const OverflowError&) {
        throw overflow(to);
    } catch (const std::invalid_argument&) {
        throw valueError(235, "Cannot convert a char value to money. The char value has incorrect syntax.");
    }
}

} // namespace

Cell toMoney(const CellView& cell, const SqlType& from, const SqlType& to) {
    if (from.isText())
        return moneyFromText(cell.bytes, to);
    if (from.isFloat()) {
        const double scaled = std::round(cell.real * 10000.0);
        if (!(std::fabs(scaled) < 9.2e18))
            throw overflow(to);
        return moneyFrom(static_cast<Wide>(scaled), to);
    }
    if (from.kind == TypeKind::Decimal) {
        const Wide digits = digitsOf(cell);
        if (from.scale >= 4)
            return moneyFrom(scaledDown(digits, from.scale - 4), to);
        if (digits > powerOfTen(30) || digits < -powerOfTen(30))
            throw overflow(to);
        return moneyFrom(digits * powerOfTen(4 - from.scale), to);
    }
    if (from.isMoney())
        return moneyFrom(cell.integer, to);
    if (from.isDate())
        return toMoney(Cell::ofReal(static_cast<double>(cell.integer) / static_cast<double>(Date::kMsPerDay)), {TypeKind::Float, 0, 0, 0},
                       to);
    return moneyFrom(static_cast<Wide>(cell.integer) * 10000, to);
}

} // namespace merchantry::db::tsql
