#include "app/db/tsql/convert_to.h"
#include "base/text.h"

#include "base/date.h"

#include <cmath>

namespace merchantry::db::tsql {
namespace {

Cell decimalFromText(std::string_view text, const SqlType& from, const SqlType& to) {
    const std::string_view rest = trimmed(text);
    std::size_t at = 0;
    const bool negative = !rest.empty() && rest[0] == '-';
    if (negative || (!rest.empty() && rest[0] == '+'))
        ++at;
    Wide digits = 0;
    int places = 0;
    bool point = false;
    bool any = false;
    bool roundUp = false;
    for (; at < rest.size(); ++at) {
        const char c = rest[at];
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9')
            throw textConversion(text, from, to);
        any = true;
        if (point && places >= to.scale) {
            if (places == to.scale)
                roundUp = c >= '5';
            ++places;
            continue;
        }
        if (digits > powerOfTen(37))
            throw overflow(to);
        digits = digits * 10 + (c - '0');
        places += point ? 1 : 0;
    }
    if (!any)
        throw textConversion(text, from, to);
    for (; places < to.scale; ++places) {
        if (digits > powerOfTen(37))
            throw overflow(to);
        digits *= 10;
    }
    digits += roundUp ? 1 : 0;
    return checkedDecimal(negative ? -digits : digits, to);
}

Cell decimalFromFloat(double number, const SqlType& to) {
    const long double scaled = std::round(static_cast<long double>(number) * std::pow(10.0L, static_cast<long double>(to.scale)));
    if (!(std::fabs(scaled) < 1e38L))
        throw overflow(to);
    return checkedDecimal(static_cast<Wide>(scaled), to);
}

Cell rescaled(Wide digits, int fromScale, const SqlType& to) {
    if (to.scale <= fromScale)
        return checkedDecimal(scaledDown(digits, fromScale - to.scale), to);
    for (int i = fromScale; i < to.scale; ++i) {
        if (digits > powerOfTen(37) || digits < -powerOfTen(37))
            throw overflow(to);
        digits *= 10;
    }
    return checkedDecimal(digits, to);
}

} // namespace

__int128 scaledDown(__int128 digits, int places) {
    const Wide divisor = powerOfTen(places);
    Wide quotient = digits / divisor;
    Wide rest = digits % divisor;
    rest = rest < 0 ? -rest : rest;
    if (places > 0 && rest >= divisor - rest)
        quotient += digits < 0 ? -1 : 1;
    return quotient;
}

Cell checkedDecimal(__int128 digits, const SqlType& type) {
    const Wide limit = powerOfTen(type.precision);
    if (digits >= limit || digits <= -limit)
        throw overflow(type);
    return decimalCell(digits, type.precision);
}

Cell toDecimal(const CellView& cell, const SqlType& from, const SqlType& to) {
    if (from.isText())
        return decimalFromText(cell.bytes, from, to);
    if (from.isFloat())
        return decimalFromFloat(cell.real, to);
    if (from.isMoney())
        return rescaled(cell.integer, 4, to);
    if (from.kind == TypeKind::Decimal)
        return rescaled(digitsOf(cell), from.scale, to);
    if (from.isDate())
        return decimalFromFloat(static_cast<double>(cell.integer) / static_cast<double>(Date::kMsPerDay), to);
    return rescaled(cell.integer, 0, to);
}

} // namespace merchantry::db::tsql
