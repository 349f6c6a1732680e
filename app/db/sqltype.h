#pragma once

#include <string>
#include <string_view>

namespace merchantry::db {

enum class TypeKind {
    Null, // an untyped NULL
    Bit,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    Decimal,
    SmallMoney,
    Money,
    Real,
    Float,
    SmallDateTime,
    DateTime,
    Char,
    VarChar,
    NChar,
    NVarChar,
    Text,
    NText,
    Binary,
    VarBinary,
    Image,
    UniqueIdentifier,
};

// A T-SQL type with its measures. A cell of a kind holds, as Value: Bit a flag; the whole numbers an integer; Decimal a Decimal;
// the moneys a Currency; Real and Float a double; the dates a Date; the texts and UniqueIdentifier a text; the binaries Bytes.
struct SqlType {
    static constexpr int kMax = -1; // length of varchar(max)

    TypeKind kind = TypeKind::Null;
    int length = 0;    // characters or bytes, kMax for max
    int precision = 0; // Decimal: 1 to 38
    int scale = 0;     // Decimal: 0 to precision

    bool operator==(const SqlType&) const = default;

    bool isText() const { return kind >= TypeKind::Char && kind <= TypeKind::NText; }
    bool isWhole() const { return kind >= TypeKind::Bit && kind <= TypeKind::BigInt; }
    bool isMoney() const { return kind == TypeKind::Money || kind == TypeKind::SmallMoney; }
    bool isDate() const { return kind == TypeKind::DateTime || kind == TypeKind::SmallDateTime; }
    bool isFloat() const { return kind == TypeKind::Float || kind == TypeKind::Real; }
    bool isBinary() const { return kind >= TypeKind::Binary && kind <= TypeKind::Image; }

    // Without its measures: "varchar", "decimal".
    std::string_view kindName() const;
    // As it is written: "varchar(25)", "decimal(9,2)", "int".
    std::string toText() const;
};

} // namespace merchantry::db
