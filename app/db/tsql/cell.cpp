#include "app/db/tsql/cell.h"

#include <sqlite3.h>

#include <cmath>

namespace merchantry::db::tsql {
namespace {

constexpr int kNarrowDigits = 18;
constexpr std::size_t kWideBytes = 16;

std::string_view bytesOf(const void* data, int size) {
    return {static_cast<const char*>(data), static_cast<std::size_t>(size)};
}

std::string wideBytes(__int128 digits) {
    auto bits = static_cast<unsigned __int128>(digits) ^ (static_cast<unsigned __int128>(1) << 127U);
    std::string bytes(kWideBytes, '\0');
    for (std::size_t i = kWideBytes; i-- > 0; bits >>= 8U)
        bytes[i] = static_cast<char>(static_cast<unsigned char>(bits & 0xFFU));
    return bytes;
}

} // namespace

CellView::CellView(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
        kind = Cell::Kind::Integer;
        integer = sqlite3_value_int64(value);
        break;
    case SQLITE_FLOAT:
        kind = Cell::Kind::Real;
        real = sqlite3_value_double(value);
        break;
    case SQLITE_TEXT: {
        kind = Cell::Kind::Text;
        const void* text = sqlite3_value_text(value);
        bytes = bytesOf(text, sqlite3_value_bytes(value));
        break;
    }
    case SQLITE_BLOB: {
        kind = Cell::Kind::Blob;
        const void* blob = sqlite3_value_blob(value);
        bytes = bytesOf(blob, sqlite3_value_bytes(value));
        break;
    }
    default:
        break;
    }
}

__int128 digitsOf(const CellView& cell) {
    if (cell.kind == Cell::Kind::Integer)
        return cell.integer;
    unsigned __int128 bits = 0;
    for (const char byte : cell.bytes)
        bits = (bits << 8U) | static_cast<unsigned char>(byte);
    return static_cast<__int128>(bits ^ (static_cast<unsigned __int128>(1) << 127U));
}

Cell decimalCell(__int128 digits, int precision) {
    if (precision <= kNarrowDigits)
        return Cell::ofInteger(static_cast<std::int64_t>(digits));
    return Cell::ofBlob(wideBytes(digits));
}

Value valueOf(const CellView& cell, const SqlType& type) {
    if (cell.isNull())
        return {};
    switch (type.kind) {
    case TypeKind::Bit:
        return cell.integer != 0;
    case TypeKind::Decimal:
        return Decimal{digitsOf(cell), type.scale};
    case TypeKind::Money:
    case TypeKind::SmallMoney:
        return Currency::fromUnits(cell.integer);
    case TypeKind::DateTime:
    case TypeKind::SmallDateTime:
        return Date::fromMs(cell.integer);
    case TypeKind::Float:
    case TypeKind::Real:
        return cell.kind == Cell::Kind::Integer ? static_cast<double>(cell.integer) : cell.real;
    default:
        break;
    }
    if (type.isBinary())
        return Bytes(cell.bytes.begin(), cell.bytes.end());
    if (cell.kind == Cell::Kind::Integer)
        return cell.integer;
    return std::string(cell.bytes);
}

namespace {

struct ToCell {
    const SqlType& type;

    Cell operator()(Null) const { return {}; }
    Cell operator()(bool flag) const { return Cell::ofInteger(flag ? 1 : 0); }
    Cell operator()(std::int64_t number) const { return Cell::ofInteger(number); }
    Cell operator()(double number) const { return Cell::ofReal(number); }
    Cell operator()(Currency amount) const { return Cell::ofInteger(amount.units()); }
    Cell operator()(Decimal number) const {
        const std::optional<Decimal> scaled = number.rescaled(type.scale);
        return decimalCell(scaled ? scaled->digits : number.digits, type.precision);
    }
    Cell operator()(Date date) const { return Cell::ofInteger(date.ms()); }
    Cell operator()(const std::string& text) const { return Cell::ofText(text); }
    Cell operator()(const Bytes& bytes) const { return Cell::ofBlob(std::string(bytes.begin(), bytes.end())); }
};

struct ToType {
    static SqlType of(TypeKind kind) {
        SqlType type;
        type.kind = kind;
        return type;
    }
    SqlType operator()(Null) const { return {}; }
    SqlType operator()(bool) const { return of(TypeKind::Bit); }
    SqlType operator()(std::int64_t number) const {
        return of(number >= INT32_MIN && number <= INT32_MAX ? TypeKind::Int : TypeKind::BigInt);
    }
    SqlType operator()(double) const { return of(TypeKind::Float); }
    SqlType operator()(Currency) const { return of(TypeKind::Money); }
    SqlType operator()(Decimal number) const { return {TypeKind::Decimal, 0, std::max(number.precision(), 1), number.scale}; }
    SqlType operator()(Date) const { return of(TypeKind::DateTime); }
    SqlType operator()(const std::string& text) const {
        return {TypeKind::VarChar, text.size() > 8000 ? SqlType::kMax : std::max(1, static_cast<int>(text.size())), 0, 0};
    }
    SqlType operator()(const Bytes& bytes) const {
        return {TypeKind::VarBinary, bytes.size() > 8000 ? SqlType::kMax : std::max(1, static_cast<int>(bytes.size())), 0, 0};
    }
};

} // namespace

Cell cellOf(const Value& value, const SqlType& type) {
    return std::visit(ToCell{type}, value.held());
}

SqlType typeOf(const Value& value) {
    return std::visit(ToType{}, value.held());
}

Cell columnCell(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return Cell::ofInteger(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return Cell::ofReal(sqlite3_column_double(statement, column));
    case SQLITE_TEXT: {
        const void* text = sqlite3_column_text(statement, column);
        return Cell::ofText(std::string(bytesOf(text, sqlite3_column_bytes(statement, column))));
    }
    case SQLITE_BLOB: {
        const void* blob = sqlite3_column_blob(statement, column);
        return Cell::ofBlob(std::string(bytesOf(blob, sqlite3_column_bytes(statement, column))));
    }
    default:
        return {};
    }
}

void bindCell(sqlite3_stmt* statement, int index, const Cell& cell) {
    switch (cell.kind) {
    case Cell::Kind::Null:
        sqlite3_bind_null(statement, index);
        break;
    case Cell::Kind::Integer:
        sqlite3_bind_int64(statement, index, cell.integer);
        break;
    case Cell::Kind::Real:
        sqlite3_bind_double(statement, index, cell.real);
        break;
    case Cell::Kind::Text:
        sqlite3_bind_text(statement, index, cell.bytes.data(), static_cast<int>(cell.bytes.size()), SQLITE_TRANSIENT);
        break;
    case Cell::Kind::Blob:
        sqlite3_bind_blob(statement, index, cell.bytes.data(), static_cast<int>(cell.bytes.size()), SQLITE_TRANSIENT);
        break;
    }
}

void resultCell(sqlite3_context* context, const Cell& cell) {
    switch (cell.kind) {
    case Cell::Kind::Null:
        sqlite3_result_null(context);
        break;
    case Cell::Kind::Integer:
        sqlite3_result_int64(context, cell.integer);
        break;
    case Cell::Kind::Real:
        sqlite3_result_double(context, cell.real);
        break;
    case Cell::Kind::Text:
        sqlite3_result_text(context, cell.bytes.data(), static_cast<int>(cell.bytes.size()), SQLITE_TRANSIENT);
        break;
    case Cell::Kind::Blob:
        sqlite3_result_blob(context, cell.bytes.data(), static_cast<int>(cell.bytes.size()), SQLITE_TRANSIENT);
        break;
    }
}

std::int64_t typeCode(const SqlType& type) {
    return static_cast<std::int64_t>(type.kind) | (static_cast<std::int64_t>(type.precision) << 8) |
           (static_cast<std::int64_t>(type.scale) << 16) | (static_cast<std::int64_t>(type.length + 1) << 24);
}

SqlType typeOfCode(std::int64_t code) {
    return {static_cast<TypeKind>(code & 0xFF), static_cast<int>(code >> 24) - 1, static_cast<int>((code >> 8) & 0xFF),
            static_cast<int>((code >> 16) & 0xFF)};
}

} // namespace merchantry::db::tsql
