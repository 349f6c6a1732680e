#include "app/db/tsql/convert_to.h"
#include "base/text.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "app/db/tsql/types.h"
#include "base/date.h"
#include "base/numbers.h"

#include <cmath>

namespace merchantry::db::tsql {
namespace {

Cell wholeFrom(Wide number, const SqlType& from, const SqlType& to) {
    if (to.kind == TypeKind::Bit)
        return Cell::ofInteger(number != 0 ? 1 : 0);
    const Range range = rangeOf(to.kind);
    if (number >= range.low && number <= range.high)
        return Cell::ofInteger(static_cast<std::int64_t>(number));
    const bool small = to.kind == TypeKind::TinyInt || to.kind == TypeKind::SmallInt;
    if (small && from.isWhole())
        throw serverMessage(Message::DataTypeOverflow, {kindNameOf(to), std::to_string(static_cast<std::int64_t>(number))});
    if (from.isFloat())
        throw serverError(Message::TypeOverflow, "Arithmetic overflow error for type " + kindNameOf(to) +
                                                     ", value = " + shortestDecimal(static_cast<double>(number)) + ".");
    throw overflow(to);
}

DbError textOverflow(std::string_view text, const SqlType& from, const SqlType& to) {
    if (to.kind == TypeKind::BigInt)
        return overflow(to);
    if (to.kind == TypeKind::Int)
        return serverMessage(Message::TextOverflowsInt, {kindNameOf(from), std::string(text)});
    return serverMessage(Message::TextOverflows, {kindNameOf(from), std::string(text), to.kind == TypeKind::TinyInt ? "INT1" : "INT2"});
}

Cell wholeFromText(std::string_view text, const SqlType& from, const SqlType& to) {
    std::string_view rest = trimmed(text);
    if (to.kind == TypeKind::Bit) {
        if (sameName(rest, "true"))
            return Cell::ofInteger(1);
        if (sameName(rest, "false"))
            return Cell::ofInteger(0);
    }
    bool negative = false;
    const bool signedText = !rest.empty() && (rest[0] == '-' || rest[0] == '+');
    if (signedText) {
        negative = rest[0] == '-';
        rest = trimmed(rest.substr(1));
    }
    if (rest.empty() && signedText)
        throw textConversion(text, from, to);
    Wide number = 0;
    for (const char c : rest) {
        if (c < '0' || c > '9')
            throw textConversion(text, from, to);
        number = number > powerOfTen(30) ? number : number * 10 + (c - '0');
    }
    number = negative ? -number : number;
    if (to.kind == TypeKind::Bit)
        return Cell::ofInteger(number != 0 ? 1 : 0);
    const Range range = rangeOf(to.kind);
    if (number < range.low || number > range.high)
        throw textOverflow(text, from, to);
    return Cell::ofInteger(static_cast<std::int64_t>(number));
}

Wide bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (const char byte : bytes.substr(bytes.size() > 8 ? bytes.size() - 8 : 0))
        number = (number << 8U) | static_cast<unsigned char>(byte);
    return static_cast<std::int64_t>(number);
}

Wide wholeDays(std::int64_t ms, bool round) {
    const Wide half = round ? Date::kMsPerDay / 2 : 0;
    Wide shifted = ms + half;
    Wide days = shifted / Date::kMsPerDay;
    if (shifted % Date::kMsPerDay < 0)
        --days;
    return days;
}

Cell wholeFromFloat(double number, const SqlType& from, const SqlType& to) {
    if (to.kind == TypeKind::Bit)
        return Cell::ofInteger(number != 0 ? 1 : 0);
    if (!(std::fabs(number) < 9.3e18))
        throw serverMessage(Message::TypeOverflow, {kindNameOf(to)});
    return wholeFrom(static_cast<Wide>(number), from, to);
}

} // namespace

Range rangeOf(TypeKind kind) {
    switch (kind) {
    case TypeKind::TinyInt:
        return {0, 255};
    case TypeKind::SmallInt:
        return {INT16_MIN, INT16_MAX};
    case TypeKind::Int:
        return {INT32_MIN, INT32_MAX};
    case TypeKind::SmallMoney:
        return {-2'147'483'648, 2'147'483'647};
    default:
        return {INT64_MIN, INT64_MAX};
    }
}

DbError textConversion(std::string_view text, const SqlType& from, const SqlType& to) {
    if (to.kind == TypeKind::BigInt || to.kind == TypeKind::Decimal || to.isFloat())
        return serverMessage(Message::CannotConvert, {kindNameOf(from), kindNameOf(to)});
    return serverMessage(Message::TextDoesNotConvert, {kindNameOf(from), std::string(text), kindNameOf(to)});
}

Cell toWhole(const CellView& cell, const SqlType& from, const SqlType& to) {
    if (from.isText())
        return wholeFromText(cell.bytes, from, to);
    if (from.isMoney())
        return wholeFrom(to.kind == TypeKind::Bit ? cell.integer : scaledDown(cell.integer, 4), from, to);
    if (from.isFloat())
        return wholeFromFloat(cell.real, from, to);
    if (from.kind == TypeKind::Decimal)
        return wholeFrom(to.kind == TypeKind::Bit ? digitsOf(cell) : digitsOf(cell) / powerOfTen(from.scale), from, to);
    if (from.isBinary()) {
        const Wide number = bigEndian(cell.bytes);
        return to.kind == TypeKind::Int ? Cell::ofInteger(static_cast<std::int32_t>(number)) : wholeFrom(number, to, to);
    }
    if (from.isDate())
        return wholeFrom(wholeDays(cell.integer, true), from, to);
    return wholeFrom(cell.integer, from, to);
}

} // namespace merchantry::db::tsql
