#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/literal.h"
#include "base/text.h"

#include <cstdio>

namespace merchantry::db::tsql {
namespace {

Typed literalOf(Cell cell, const SqlType& type) {
    Typed result;
    result.sql = literalSql(cell);
    result.type = type;
    result.nullable = cell.isNull();
    result.literal = std::move(cell);
    return result;
}

std::string withoutLeadingZeros(std::string_view digits) {
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string_view::npos ? "0" : std::string(digits.substr(first));
}

} // namespace

std::string literalSql(const Cell& cell) {
    switch (cell.kind) {
    case Cell::Kind::Null:
        return "NULL";
    case Cell::Kind::Integer:
        if (cell.integer == INT64_MIN)
            return "(-9223372036854775807-1)";
        return std::to_string(cell.integer);
    case Cell::Kind::Real: {
        std::array<char, 40> buffer{};
        std::snprintf(buffer.data(), buffer.size(), "%.17g", cell.real);
        std::string text = buffer.data();
        if (text.find_first_of(".e") == std::string::npos)
            text += ".0";
        return text;
    }
    case Cell::Kind::Text:
        if (cell.bytes.find('\0') != std::string::npos)
            return "CAST(x'" + hexText(Bytes(cell.bytes.begin(), cell.bytes.end())).substr(2) + "' AS TEXT)";
        return quotedText(cell.bytes);
    case Cell::Kind::Blob:
        return "x'" + hexText(Bytes(cell.bytes.begin(), cell.bytes.end())).substr(2) + "'";
    }
    return "NULL";
}

Typed Binder::integerLiteral(const Expr& expr) {
    const std::string digits = withoutLeadingZeros(expr.text);
    if (digits.size() <= 10) {
        const std::int64_t number = std::stoll(digits);
        if (number <= INT32_MAX)
            return literalOf(Cell::ofInteger(number), simpleType(TypeKind::Int));
    }
    return numberLiteral(expr);
}

Typed Binder::numberLiteral(const Expr& expr) {
    const std::size_t point = expr.text.find('.');
    const std::string whole = withoutLeadingZeros(std::string_view(expr.text).substr(0, point));
    const std::string places = point == std::string::npos ? "" : expr.text.substr(point + 1);
    const int precision = static_cast<int>(whole == "0" && !places.empty() ? places.size() : whole.size() + places.size());
    if (precision > 38)
        throw syntaxError(1007, "The number '" + expr.text + "' is out of the range for numeric representation (maximum precision 38).",
                          expr.line);
    const std::optional<Decimal> number = Decimal::fromText(expr.text.front() == '.'  ? "0" + expr.text
                                                            : expr.text.back() == '.' ? expr.text + "0"
                                                                                      : expr.text);
    const SqlType type = decimalType(std::max(precision, 1), static_cast<int>(places.size()));
    const std::optional<Decimal> scaled = number ? number->rescaled(type.scale) : std::nullopt;
    if (!scaled)
        throw syntaxError(1007, "The number '" + expr.text + "' is out of the range for numeric representation (maximum precision 38).",
                          expr.line);
    return literalOf(decimalCell(scaled->digits, type.precision), type);
}

Typed Binder::moneyLiteral(const Expr& expr) {
    const SqlType type = simpleType(TypeKind::Money);
    const Cell text = Cell::ofText(expr.text);
    return literalOf(converted(text, varcharType(40), type), type);
}

Typed Binder::textLiteral(const Expr& expr) {
    const int length = std::max(1, static_cast<int>(characterCount(expr.text)));
    const bool wide = expr.kind == ExprKind::WideText;
    const SqlType type = wide ? nvarcharType(length > 4000 ? SqlType::kMax : length) : varcharType(length > 8000 ? SqlType::kMax : length);
    return literalOf(Cell::ofText(expr.text), type);
}

Typed Binder::binaryLiteral(const Expr& expr) {
    std::string digits = expr.text;
    if (digits.size() % 2 != 0)
        digits.insert(0, 1, '0');
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2)
        bytes += static_cast<char>(static_cast<unsigned char>(std::stoi(digits.substr(at, 2), nullptr, 16)));
    const int length = std::max(1, static_cast<int>(bytes.size()));
    return literalOf(Cell::ofBlob(std::move(bytes)), {TypeKind::VarBinary, length > 8000 ? SqlType::kMax : length, 0, 0});
}

} // namespace merchantry::db::tsql
