#include "app/db/tsql/convert_to.h"
#include "base/text.h"

#include "app/db/tsql/errors.h"
#include "base/characters.h"
#include "base/date.h"

#include <cmath>

namespace merchantry::db::tsql {
namespace {

Cell moneyFrom(Wide units, const SqlType& to) {
    const Range range = rangeOf(to.kind);
    if (units < range.low || units > range.high)
        throw overflow(to);
    return Cell::ofInteger(static_cast<std::int64_t>(units));
}

DbError noMoney() {
    return serverMessage(Message::TextIsNoMoney);
}

bool isCurrencySign(char32_t c) {
    static constexpr std::u32string_view kSigns =
        U"$\u00A2\u00A3\u00A4\u00A5\u09F2\u09F3\u0E3F\u17DB\uFDFC\uFE69\uFF04\uFFE0\uFFE1\uFFE5\uFFE6";
    return kSigns.find(c) != std::u32string_view::npos || (c >= 0x20A0 && c <= 0x20BF);
}

// What stands in front of the digits: one sign and one currency in either order, with blanks. Gives whether it is negative.
bool takeSigns(std::string_view& rest) {
    bool negative = false;
    bool signedAlready = false;
    bool currencyAlready = false;
    while (!rest.empty()) {
        std::size_t next = 0;
        const char32_t c = nextCodePoint(rest, next);
        if ((c == U'-' || c == U'+') && !signedAlready) {
            signedAlready = true;
            negative = c == U'-';
        } else if (isCurrencySign(c) && !currencyAlready) {
            currencyAlready = true;
        } else if (c != U' ') {
            return negative;
        }
        rest.remove_prefix(next);
    }
    return negative;
}

// Digits with one point, and commas that mean nothing; signs without a digit are 0. What is behind the fourth place rounds as it does in a
// number.
Cell moneyFromText(std::string_view text, const SqlType& to) {
    constexpr int kPlaces = 20; // more cannot change the fourth
    std::string_view rest = trimmed(text);
    const bool negative = takeSigns(rest);
    Wide digits = 0;
    int places = 0;
    bool sawPoint = false;
    for (const char c : rest) {
        if (c == '.' && !sawPoint) {
            sawPoint = true;
        } else if (c >= '0' && c <= '9') {
            if (sawPoint && places == kPlaces)
                continue;
            if (digits > powerOfTen(36))
                throw overflow(to);
            digits = digits * 10 + (c - '0');
            places += sawPoint ? 1 : 0;
        } else if (c != ',' || sawPoint) {
            throw noMoney();
        }
    }
    if (negative)
        digits = -digits;
    return moneyFrom(places >= 4 ? scaledDown(digits, places - 4) : digits * powerOfTen(4 - places), to);
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
