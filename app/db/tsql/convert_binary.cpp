#include "app/db/tsql/convert_to.h"
#include "base/text.h"

#include "app/db/messages.h"
#include "app/db/tsql/errors.h"
#include "base/lettercase.h"

#include <cctype>

namespace merchantry::db::tsql {
namespace {

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

} // namespace

Cell toBinary(const CellView& cell, const SqlType& from, const SqlType& to, ConvertFor purpose) {
    const bool numeric = cell.kind == Cell::Kind::Integer;
    std::string bytes = numeric ? bytesOfWhole(cell.integer, from) : std::string(cell.bytes);
    if (to.length != SqlType::kMax && to.length > 0 && bytes.size() > static_cast<std::size_t>(to.length)) {
        if (purpose == ConvertFor::Column && !numeric)
            throw serverMessage(Message::TextTruncated).withSeverity(16, 1);
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
        throw serverMessage(Message::TextIsNoGuid);
    return Cell::ofText(upperCase(text.substr(0, 36)));
}

} // namespace merchantry::db::tsql
