#include "app/db/sqltype.h"

#include <array>

namespace merchantry::db {

std::string_view SqlType::kindName() const {
    static constexpr std::array<std::string_view, 23> kNames = {
        "null",     "bit",  "tinyint", "smallint",      "int",       "bigint", "decimal",         "smallmoney",
        "money",    "real", "float",   "smalldatetime", "datetime",  "char",   "varchar",         "nchar",
        "nvarchar", "text", "ntext",   "binary",        "varbinary", "image",  "uniqueidentifier"};
    static_assert(kNames.size() == static_cast<std::size_t>(TypeKind::UniqueIdentifier) + 1);
    return kNames.at(static_cast<std::size_t>(kind));
}

std::string SqlType::toText() const {
    const std::string name(kindName());
    if (kind == TypeKind::Decimal)
        return name + "(" + std::to_string(precision) + "," + std::to_string(scale) + ")";
    const bool measured = (isText() && kind != TypeKind::Text && kind != TypeKind::NText) || (isBinary() && kind != TypeKind::Image);
    return measured ? name + "(" + (length == kMax ? std::string("max") : std::to_string(length)) + ")" : name;
}

} // namespace merchantry::db
