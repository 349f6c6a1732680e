#include "app/db/tsql/literal.h"

#include "app/db/tsql/catalog.h"
#include "base/value.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace merchantry::db::tsql {

std::string literalSql(const Cell& cell) {
    const auto hex = [&] { return "x'" + hexText(Bytes(cell.bytes.begin(), cell.bytes.end())).substr(2) + "'"; };
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
            return "CAST(" + hex() + " AS TEXT)";
        return quotedText(cell.bytes);
    case Cell::Kind::Blob:
        return hex();
    }
    return "NULL";
}

} // namespace merchantry::db::tsql
