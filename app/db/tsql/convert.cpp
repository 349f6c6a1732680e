#include "app/db/tsql/convert.h"

#include "app/db/tsql/datetext.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/numbers.h"
#include "base/text.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace merchantry::db::tsql {
namespace {

using Wide = __int128;

constexpr Wide powerOfTen(int exponent) {
    Wide power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

const char* kindName(const SqlType& type) {
    switch (type.kind) {
    case TypeKind::Decimal:
        return "numeric";
    case TypeKind::Char:
        return "char";
    case TypeKind::VarChar:
        return "varchar";
    case TypeKind::NChar:
        return "nchar";
    case TypeKind::NVarChar:
        return "nvarchar";
    case TypeKind::Binary:
        return "binary";
    case TypeKind::VarBinary:
        return "varbinary";
    case TypeKind::Bit:
        return "bit";
    case TypeKind::TinyInt:
        return "tinyint";
    case TypeKind::SmallInt:
        return "smallint";
    case TypeKind::Int:
        return "int";
    case TypeKind::BigInt:
        return "bigint";
    case TypeKind::Money:
        return "money";
    case TypeKind::SmallMoney:
        return "smallmoney";
    case TypeKind::Float:
        return "float";
    case TypeKind::Real:
        return "real";
    case TypeKind::DateTime:
        return "datetime";
    case TypeKind::SmallDateTime:
        return "smalldatetime";
    case TypeKind::Text:
        return "text";
    case TypeKind::NText:
        return "ntext";
    case TypeKind::Image:
        return "image";
    case TypeKind::UniqueIdentifier:
        return "uniqueidentifier";
    case TypeKind::Null:
        return "null";
    }
    return "";
}

struct Range {
    std::int64_t low;
    std::int64_t high;
};

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

// ---- to whole numbers

Cell wholeFrom(Wide number, const SqlType& from, const SqlType& to) {
    if (to.kind == TypeKind::Bit)
        return Cell::ofInteger(number != 0 ? 1 : 0);
    const Range range = rangeOf(to.kind);
    if (number >= range.low && number <= range.high)
        return Cell::ofInteger(static_cast<std::int64_t>(number));
    const bool small = to.kind == TypeKind::TinyInt || to.kind == TypeKind::SmallInt;
    if (small && from.isWhole())
        throw valueError(220, std::string("Arithmetic overflow error for data type ") + kindName(to) +
                                  ", value = " + std::to_string(static_cast<std::int64_t>(number)) + ".");
    if (from.isFloat())
        throw valueError(232, std::string("Arithmetic overflow error for type ") + kindName(to) +
                                  ", value = " + shortestDecimal(static_cast<double>(number)) + ".");
    throw overflow(to);
}

DbError textConversion(std::string_view text, const SqlType& from, const SqlType& to) {
    if (to.kind == TypeKind::BigInt || to.kind == TypeKind::Decimal || to.isFloat())
        return valueError(8114, std::string("Error converting data type ") + kindName(from) + " to " + kindName(to) + ".");
    return valueError(245, std::string("Conversion failed when converting the ") + kindName(from) + " value '" + std::string(text) +
                               "' to data type " + kindName(to) + ".");
}

DbError textOverflow(std::string_view text, const SqlType& from, const SqlType& to) {
    if (to.kind == TypeKind::BigInt)
        return overflow(to);
    if (to.kind == TypeKind::Int)
        return valueError(248, std::string("The conversion of the ") + kindName(from) + " value '" + std::string(text) +
                                   "' overflowed an int column.");
    return valueError(244, std::string("The conversion of the ") + kindName(from) + " value '" + std::string(text) + "' overflowed an " +
                               (to.kind == TypeKind::TinyInt ? "INT1" : "INT2") + " column. Use a larger integer column.");
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
        throw valueError(232, std::string("Arithmetic overflow error for type ") + kindName(to) + ".");
    return wholeFrom(static_cast<Wide>(number), from, to);
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

// ---- to decimals

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

// ---- to money

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

// ---- to floats

double floatFromText(std::string_view text, const SqlType& from, const SqlType& to) {
    const std::string rest(trimmed(text));
    if (rest.empty())
        return 0;
    char* end = nullptr;
    const bool plain = rest.find_first_not_of("0123456789+-.eE") == std::string::npos;
    const double number = std::strtod(rest.c_str(), &end);
    if (!plain || *end != '\0' || end == rest.c_str())
        throw textConversion(text, from, to);
    return number;
}

Cell toFloat(const CellView& cell, const SqlType& from, const SqlType& to) {
    double number = 0;
    if (from.isText())
        number = floatFromText(cell.bytes, from, to);
    else if (from.isFloat())
        number = cell.real;
    else if (from.isMoney())
        number = static_cast<double>(cell.integer) / 10000.0;
    else if (from.kind == TypeKind::Decimal)
        number = Decimal{digitsOf(cell), from.scale}.toDouble();
    else if (from.isDate())
        number = static_cast<double>(cell.integer) / static_cast<double>(Date::kMsPerDay);
    else
        number = static_cast<double>(cell.integer);
    if (!std::isfinite(number))
        throw overflow(to);
    if (to.kind == TypeKind::Real) {
        if (std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max()))
            throw valueError(232, "Arithmetic overflow error for type real.");
        number = static_cast<double>(static_cast<float>(number));
    }
    return Cell::ofReal(number);
}

// ---- to dates

Cell dateFromMs(std::int64_t ms, const SqlType& to) {
    const bool small = to.kind == TypeKind::SmallDateTime;
    ms = small ? roundedToMinute(ms) : roundedToTick(ms);
    if (small ? (ms < 0 || ms >= kEndOfSmallDateTime) : (ms < kFirstDateTime || ms >= kEndOfDateTime))
        throw overflow(to);
    return Cell::ofInteger(ms);
}

Cell dateFromText(std::string_view text, const SqlType& from, const SqlType& to, int style) {
    std::int64_t ms = 0;
    const DateTextResult result = readDate(text, std::max(style, 0), ms);
    if (result == DateTextResult::NoDate)
        throw valueError(241, "Conversion failed when converting date and/or time from character string.");
    const bool small = to.kind == TypeKind::SmallDateTime;
    if (result == DateTextResult::OutOfRange || ms >= kEndOfDateTime || (small && (ms < 0 || ms >= kEndOfSmallDateTime)))
        throw valueError(242, std::string("The conversion of a ") + kindName(from) + " data type to a " + kindName(to) +
                                  " data type resulted in an out-of-range value.");
    return dateFromMs(ms, to);
}

Cell toDate(const CellView& cell, const SqlType& from, const SqlType& to, int style) {
    if (from.isText())
        return dateFromText(cell.bytes, from, to, style);
    if (from.isDate()) {
        if (to.kind == TypeKind::SmallDateTime && (cell.integer < 0 || cell.integer >= kEndOfSmallDateTime))
            throw valueError(242, "The conversion of a datetime data type to a smalldatetime data type resulted in an out-of-range value.");
        return dateFromMs(cell.integer, to);
    }
    const double days = toFloat(cell, from, {TypeKind::Float, 0, 0, 0}).real;
    if (!(std::fabs(days) < 4e6))
        throw overflow(to);
    return dateFromMs(static_cast<std::int64_t>(std::llround(days * static_cast<double>(Date::kMsPerDay))), to);
}

// ---- to texts

std::string floatText(double number, int style) {
    std::array<char, 64> buffer{};
    const char* format = style == 1 ? "%.7e" : style == 2 || style == 3 ? "%.15e" : "%.6g";
    std::snprintf(buffer.data(), buffer.size(), format, number);
    std::string text = buffer.data();
    const std::size_t exponent = text.find_first_of("eE");
    if (exponent != std::string::npos && text.size() - exponent - 2 < 3)
        text.insert(exponent + 2, 3 - (text.size() - exponent - 2), '0');
    return text;
}

std::string moneyText(std::int64_t units, int style) {
    if (style == 2 || style == 126)
        return Currency::fromUnits(units).toFixedText();
    const Decimal cents{scaledDown(units, 2), 2};
    std::string text = cents.toText();
    if (style != 1)
        return text;
    const std::size_t first = text[0] == '-' ? 1 : 0;
    for (std::ptrdiff_t at = static_cast<std::ptrdiff_t>(text.size()) - 6; at > static_cast<std::ptrdiff_t>(first); at -= 3)
        text.insert(static_cast<std::size_t>(at), ",");
    return text;
}

Cell fitted(std::string text, const SqlType& from, const SqlType& to, ConvertFor purpose) {
    if (to.length != SqlType::kMax && to.length > 0 && text.size() > static_cast<std::size_t>(to.length)) {
        const auto limit = static_cast<std::size_t>(to.length);
        const std::string_view kept = characters(text, 0, limit);
        const bool tooLong = kept.size() < text.size();
        const bool wide = to.kind == TypeKind::NChar || to.kind == TypeKind::NVarChar;
        if (tooLong && (from.isWhole()) && purpose == ConvertFor::Value && !wide && from.kind != TypeKind::Bit)
            text = "*";
        else if (tooLong && (from.isWhole() || from.isMoney() || from.kind == TypeKind::Decimal || from.isFloat()))
            throw overflow(to);
        else if (tooLong && purpose == ConvertFor::Column && from.kind != TypeKind::DateTime &&
                 text.find_first_not_of(' ', kept.size()) != std::string::npos)
            throw DbError(DbError::Category::Type, 8152, "String or binary data would be truncated.").withSeverity(16, 1);
        else
            text.resize(kept.size());
    }
    if (to.kind == TypeKind::Char || to.kind == TypeKind::NChar) {
        const std::size_t count = characterCount(text);
        if (count < static_cast<std::size_t>(to.length))
            text.append(static_cast<std::size_t>(to.length) - count, ' ');
    }
    return Cell::ofText(std::move(text));
}

// ---- to binaries

std::string bytesOfWhole(std::int64_t number, const SqlType& from) {
    const std::size_t size = from.kind == TypeKind::BigInt || from.isMoney() || from.isDate() ? 8
                             : from.kind == TypeKind::SmallInt                                ? 2
                             : from.kind == TypeKind::TinyInt || from.kind == TypeKind::Bit   ? 1
                                                                                              : 4;
    std::string bytes(size, '\0');
    auto bits = static_cast<std::uint64_t>(number);
    for (std::size_t i = size; i-- > 0; bits >>= 8U)
        bytes[i] = static_cast<char>(static_cast<unsigned char>(bits & 0xFFU));
    return bytes;
}

Cell toBinary(const CellView& cell, const SqlType& from, const SqlType& to, ConvertFor purpose) {
    const bool numeric = cell.kind == Cell::Kind::Integer;
    std::string bytes = numeric ? bytesOfWhole(cell.integer, from) : std::string(cell.bytes);
    if (to.length != SqlType::kMax && to.length > 0 && bytes.size() > static_cast<std::size_t>(to.length)) {
        if (purpose == ConvertFor::Column && !numeric)
            throw DbError(DbError::Category::Type, 8152, "String or binary data would be truncated.").withSeverity(16, 1);
        if (numeric)
            bytes.erase(0, bytes.size() - static_cast<std::size_t>(to.length));
        else
            bytes.resize(static_cast<std::size_t>(to.length));
    }
    if (to.kind == TypeKind::Binary && bytes.size() < static_cast<std::size_t>(to.length)) {
        const std::size_t missing = static_cast<std::size_t>(to.length) - bytes.size();
        bytes.insert(numeric ? 0 : bytes.size(), missing, '\0');
    }
    return Cell::ofBlob(std::move(bytes));
}

Cell toUniqueIdentifier(const CellView& cell) {
    std::string_view text = trimmed(cell.bytes);
    if (text.size() == 38 && text.front() == '{' && text.back() == '}')
        text = text.substr(1, 36);
    bool good = text.size() >= 36;
    for (std::size_t i = 0; good && i < 36; ++i) {
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        good = dash ? text[i] == '-' : std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
    }
    if (!good)
        throw valueError(8169, "Conversion failed when converting from a character string to uniqueidentifier.");
    return Cell::ofText(upperCase(text.substr(0, 36)));
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

DbError overflow(const SqlType& type) {
    return valueError(8115, std::string("Arithmetic overflow error converting expression to data type ") + kindName(type) + ".");
}

Cell checkedDecimal(__int128 digits, const SqlType& type) {
    const Wide limit = powerOfTen(type.precision);
    if (digits >= limit || digits <= -limit)
        throw overflow(type);
    return decimalCell(digits, type.precision);
}

std::string textOf(const CellView& cell, const SqlType& from, int style) {
    if (cell.kind == Cell::Kind::Text)
        return std::string(cell.bytes);
    if (from.isMoney())
        return moneyText(cell.integer, style);
    if (from.kind == TypeKind::Decimal)
        return Decimal{digitsOf(cell), from.scale}.toText();
    if (from.isDate()) {
        std::string text;
        if (!writeDate(cell.integer, style < 0 ? 0 : style, text))
            throw valueError(281,
                             std::to_string(style) + " is not a valid style number when converting from datetime to a character string.");
        return text;
    }
    if (cell.kind == Cell::Kind::Real)
        return floatText(cell.real, style);
    if (cell.kind == Cell::Kind::Integer)
        return std::to_string(cell.integer);
    return std::string(cell.bytes);
}

Cell converted(const CellView& cell, const SqlType& from, const SqlType& to, ConvertFor purpose, int style) {
    if (cell.isNull())
        return {};
    if (to.isWhole())
        return toWhole(cell, from, to);
    if (to.kind == TypeKind::Decimal)
        return toDecimal(cell, from, to);
    if (to.isMoney())
        return toMoney(cell, from, to);
    if (to.isFloat())
        return toFloat(cell, from, to);
    if (to.isDate())
        return toDate(cell, from, to, style);
    if (to.isText()) {
        std::string text = textOf(cell, from, style);
        if (from.isDate() && style < 0 && (to.kind == TypeKind::Text))
            return Cell::ofText(std::move(text));
        return fitted(std::move(text), from, to, purpose);
    }
    if (to.isBinary())
        return toBinary(cell, from, to, purpose);
    if (to.kind == TypeKind::UniqueIdentifier)
        return toUniqueIdentifier(cell);
    return cell.copy();
}

bool sameCells(const SqlType& from, const SqlType& to) {
    if (from == to || to.kind == TypeKind::Null || from.kind == TypeKind::Null)
        return true;
    const auto fits = [&] { return to.length == SqlType::kMax || (from.length != SqlType::kMax && from.length <= to.length); };
    if (from.isText() && to.isText()) {
        if (to.kind == TypeKind::Text || to.kind == TypeKind::NText)
            return true;
        if (from.kind == TypeKind::Text || from.kind == TypeKind::NText)
            return to.length == SqlType::kMax && to.kind != TypeKind::Char && to.kind != TypeKind::NChar;
        const bool toFixed = to.kind == TypeKind::Char || to.kind == TypeKind::NChar;
        const bool fromFixed = from.kind == TypeKind::Char || from.kind == TypeKind::NChar;
        return toFixed ? fromFixed && from.length == to.length : fits();
    }
    if (from.isBinary() && to.isBinary())
        return to.kind != TypeKind::Binary && (to.kind == TypeKind::Image || fits());
    if (from.isWhole() && to.isWhole())
        return from.kind <= to.kind && to.kind != TypeKind::Bit;
    if (from.isMoney() && to.isMoney())
        return to.kind == TypeKind::Money;
    if (from.isDate() && to.isDate())
        return to.kind == TypeKind::DateTime;
    if (from.isFloat() && to.isFloat())
        return to.kind == TypeKind::Float;
    if (from.kind == TypeKind::Decimal && to.kind == TypeKind::Decimal)
        return from.scale == to.scale && from.precision <= to.precision && (from.precision > 18) == (to.precision > 18);
    return false;
}

} // namespace merchantry::db::tsql
