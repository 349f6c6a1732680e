#pragma once

#include "app/db/sqltype.h"
#include "base/value.h"

#include <cstdint>
#include <string>
#include <string_view>

struct sqlite3_stmt;
struct sqlite3_value;
struct sqlite3_context;

namespace merchantry::db::tsql {

// A cell in the form in which the store file keeps it. The type, known from outside, says what it means:
// bit and whole numbers: Integer; money: Integer of ten-thousandths; dates: Integer of milliseconds since 1900; decimal of up to
// 18 digits: Integer scaled by the type's scale, of more: Blob of 16 bytes that order like the numbers; float: Real; texts: Text; binaries:
// Blob.
struct Cell {
    enum class Kind { Null, Integer, Real, Text, Blob };
    Kind kind = Kind::Null;
    std::int64_t integer = 0;
    double real = 0;
    std::string bytes;

    bool isNull() const { return kind == Kind::Null; }
    static Cell ofInteger(std::int64_t number) { return {Kind::Integer, number, 0, {}}; }
    static Cell ofReal(double number) { return {Kind::Real, 0, number, {}}; }
    static Cell ofText(std::string text) { return {Kind::Text, 0, 0, std::move(text)}; }
    static Cell ofBlob(std::string bytes) { return {Kind::Blob, 0, 0, std::move(bytes)}; }
};

// The same, borrowed from where it lies.
struct CellView {
    Cell::Kind kind = Cell::Kind::Null;
    std::int64_t integer = 0;
    double real = 0;
    std::string_view bytes;

    CellView() = default;
    CellView(const Cell& cell) : kind(cell.kind), integer(cell.integer), real(cell.real), bytes(cell.bytes) {}
    explicit CellView(sqlite3_value* value);

    bool isNull() const { return kind == Cell::Kind::Null; }
    Cell copy() const { return {kind, integer, real, std::string(bytes)}; }
};

// The scaled digits of a decimal cell, and back. Requires: a decimal cell that is not null.
__int128 digitsOf(const CellView& cell);
Cell decimalCell(__int128 digits, int precision);

Value valueOf(const CellView& cell, const SqlType& type);
// The store form of a value of that type; a value of another kind is taken for what it holds (a whole number for a flag, a text for a
// text).
Cell cellOf(const Value& value, const SqlType& type);
// The type that fits a value best, for parameters without one.
SqlType typeOf(const Value& value);

Cell columnCell(sqlite3_stmt* statement, int column);
void bindCell(sqlite3_stmt* statement, int index, const Cell& cell);
void resultCell(sqlite3_context* context, const Cell& cell);

// A type as one number, which the functions of the engine take as an argument, and back.
std::int64_t typeCode(const SqlType& type);
SqlType typeOfCode(std::int64_t code);

} // namespace merchantry::db::tsql
