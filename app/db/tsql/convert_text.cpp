#include "app/db/tsql/convert_to.h"

#include "app/db/messages.h"
#include "app/db/tsql/datetext.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/characters.h"
#include "base/currency.h"
#include "base/decimal.h"

#include <array>

namespace merchantry::db::tsql {
namespace {

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
            throw serverMessage(Message::TextTruncated).withSeverity(16, 1);
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

} // namespace

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
            throw serverMessage(Message::InvalidStyle, {std::to_string(style)});
        return text;
    }
    if (cell.kind == Cell::Kind::Real)
        return floatText(cell.real, style);
    if (cell.kind == Cell::Kind::Integer)
        return std::to_string(cell.integer);
    return std::string(cell.bytes);
}

Cell toText(const CellView& cell, const SqlType& from, const SqlType& to, ConvertFor purpose, int style) {
    std::string text = textOf(cell, from, style);
    if (from.isDate() && style < 0 && to.kind == TypeKind::Text)
        return Cell::ofText(std::move(text));
    return fitted(std::move(text), from, to, purpose);
}

} // namespace merchantry::db::tsql
