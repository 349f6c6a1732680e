#include "app/db/tsql/bind_literal.h"

#include "app/db/tsql/errors.h"
#include "base/characters.h"
#include "base/decimal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace merchantry::db::tsql {
namespace {

std::string withoutLeadingZeros(std::string_view digits) {
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string_view::npos ? "0" : std::string(digits.substr(first));
}

Typed numberLiteral(const Expr& expr) {
    const std::size_t point = expr.text.find('.');
    const std::string whole = withoutLeadingZeros(std::string_view(expr.text).substr(0, point));
    const std::string places = point == std::string::npos ? "" : expr.text.substr(point + 1);
    const int precision = static_cast<int>(whole == "0" && !places.empty() ? places.size() : whole.size() + places.size());
    if (precision > 38)
        throw serverMessage(Message::NumberTooLong, {expr.text}, expr.line);
    const std::optional<Decimal> number = Decimal::fromText(expr.text.front() == '.'  ? "0" + expr.text
                                                            : expr.text.back() == '.' ? expr.text + "0"
                                                                                      : expr.text);
    const SqlType type = decimalType(std::max(precision, 1), static_cast<int>(places.size()));
    const std::optional<Decimal> scaled = number ? number->rescaled(type.scale) : std::nullopt;
    if (!scaled)
        throw serverMessage(Message::NumberTooLong, {expr.text}, expr.line);
    return literalOf(decimalCell(scaled->digits, type.precision), type);
}

Typed integerLiteral(const Expr& expr) {
    const std::string digits = withoutLeadingZeros(expr.text);
    if (digits.size() <= 10) {
        const std::int64_t number = std::stoll(digits);
        if (number <= INT32_MAX)
            return literalOf(Cell::ofInteger(number), simpleType(TypeKind::Int));
    }
    return numberLiteral(expr);
}

Typed floatLiteral(const Expr& expr) {
    const SqlType type = simpleType(TypeKind::Float);
    const double number = std::strtod(expr.text.c_str(), nullptr);
    if (!std::isfinite(number))
        throw overflow(type);
    return literalOf(Cell::ofReal(number), type);
}

Typed moneyLiteral(const Expr& expr) {
    const SqlType type = simpleType(TypeKind::Money);
    const Cell text = Cell::ofText(expr.text);
    return literalOf(converted(text, varcharType(40), type), type);
}

Typed textLiteral(const Expr& expr) {
    const int length = std::max(1, static_cast<int>(characterCount(expr.text)));
    const bool wide = expr.kind == ExprKind::WideText;
    const SqlType type = wide ? nvarcharType(length > 4000 ? SqlType::kMax : length) : varcharType(length > 8000 ? SqlType::kMax : length);
    return literalOf(Cell::ofText(expr.text), type);
}

Typed binaryLiteral(const Expr& expr) {
    std::string digits = expr.text;
    if (digits.size() % 2 != 0)
        digits.insert(0, 1, '0');
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2)
        bytes += static_cast<char>(static_cast<unsigned char>(std::stoi(digits.substr(at, 2), nullptr, 16)));
    const int length = std::max(1, static_cast<int>(bytes.size()));
    return literalOf(Cell::ofBlob(std::move(bytes)), {TypeKind::VarBinary, length > 8000 ? SqlType::kMax : length, 0, 0});
}

} // namespace

Typed bindLiteral(const Expr& expr) {
    switch (expr.kind) {
    case ExprKind::Integer:
        return integerLiteral(expr);
    case ExprKind::Number:
        return numberLiteral(expr);
    case ExprKind::Float:
        return floatLiteral(expr);
    case ExprKind::Money:
        return moneyLiteral(expr);
    case ExprKind::Text:
    case ExprKind::WideText:
        return textLiteral(expr);
    case ExprKind::Binary:
        return binaryLiteral(expr);
    default:
        return nullLiteral();
    }
}

} // namespace merchantry::db::tsql
