#include "app/db/sqltype.h"

namespace merchantry::db {

std::string SqlType::toText() const {
    const auto measured = [&](const char* name) {
        return std::string(name) + "(" + (length == kMax ? std::string("max") : std::to_string(length)) + ")";
    };
    switch (kind) {
    case TypeKind::Null:
        return "null";
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
    case TypeKind::Decimal:
        return "decimal(" + std::to_string(precision) + "," + std::to_string(scale) + ")";
    case TypeKind::SmallMoney:
        return "smallmoney";
    case TypeKind::Money:
        return "money";
    case TypeKind::Real:
        return "real";
    case TypeKind::Float:
        return "float";
    case TypeKind::SmallDateTime:
        return "smalldatetime";
    case TypeKind::DateTime:
        return "datetime";
    case TypeKind::Char:
        return measured("char");
    case TypeKind::VarChar:
        return measured("varchar");
    case TypeKind::NChar:
        return measured("nchar");
    case TypeKind::NVarChar:
        return measured("nvarchar");
    case TypeKind::Text:
        return "text";
    case TypeKind::NText:
        return "ntext";
    case TypeKind::Binary:
        return measured("binary");
    case TypeKind::VarBinary:
        return measured("varbinary");
    case TypeKind::Image:
        return "image";
    case TypeKind::UniqueIdentifier:
        return "uniqueidentifier";
    }
    return "";
}

} // namespace merchantry::db
