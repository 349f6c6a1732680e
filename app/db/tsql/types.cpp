#include "app/db/tsql/types.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <array>

namespace merchantry::db::tsql {
namespace {

struct NamedType {
    std::string_view name;
    TypeKind kind;
};

constexpr std::array kTypes = std::to_array<NamedType>({
    {"bit", TypeKind::Bit},
    {"tinyint", TypeKind::TinyInt},
    {"smallint", TypeKind::SmallInt},
    {"int", TypeKind::Int},
    {"integer", TypeKind::Int},
    {"bigint", TypeKind::BigInt},
    {"decimal", TypeKind::Decimal},
    {"dec", TypeKind::Decimal},
    {"numeric", TypeKind::Decimal},
    {"money", TypeKind::Money},
    {"smallmoney", TypeKind::SmallMoney},
    {"float", TypeKind::Float},
    {"real", TypeKind::Real},
    {"datetime", TypeKind::DateTime},
    {"smalldatetime", TypeKind::SmallDateTime},
    {"char", TypeKind::Char},
    {"character", TypeKind::Char},
    {"varchar", TypeKind::VarChar},
    {"nchar", TypeKind::NChar},
    {"ncharacter", TypeKind::NChar},
    {"nvarchar", TypeKind::NVarChar},
    {"sysname", TypeKind::NVarChar},
    {"text", TypeKind::Text},
    {"ntext", TypeKind::NText},
    {"binary", TypeKind::Binary},
    {"varbinary", TypeKind::VarBinary},
    {"image", TypeKind::Image},
    {"uniqueidentifier", TypeKind::UniqueIdentifier},
});

bool isMeasured(TypeKind kind) {
    return kind == TypeKind::Char || kind == TypeKind::VarChar || kind == TypeKind::NChar || kind == TypeKind::NVarChar ||
           kind == TypeKind::Binary || kind == TypeKind::VarBinary;
}

void setMeasures(SqlType& type, const TypeName& name, bool inCast) {
    if (type.kind == TypeKind::Decimal) {
        type.precision = name.first.value_or(18);
        type.scale = name.second.value_or(0);
        if (type.precision < 1 || type.precision > 38)
            throw serverMessage(Message::PrecisionTooHigh, {std::to_string(type.precision)}, name.line);
        if (type.scale < 0 || type.scale > type.precision)
            throw serverMessage(Message::ScaleAbovePrecision, {}, name.line);
        return;
    }
    if (type.kind == TypeKind::Float && name.first && *name.first <= 24)
        type.kind = TypeKind::Real;
    if (!isMeasured(type.kind))
        return;
    type.length = name.max ? SqlType::kMax : name.first.value_or(inCast ? 30 : 1);
    const bool wide = type.kind == TypeKind::NChar || type.kind == TypeKind::NVarChar;
    if (type.length != SqlType::kMax && (type.length < 1 || type.length > (wide ? 4000 : 8000)))
        throw serverMessage(Message::TypeTooLong, {std::to_string(type.length), name.name}, name.line);
}

int rank(TypeKind kind) {
    switch (kind) {
    case TypeKind::Null:
        return 0;
    case TypeKind::Binary:
        return 1;
    case TypeKind::VarBinary:
        return 2;
    case TypeKind::Char:
        return 3;
    case TypeKind::VarChar:
        return 4;
    case TypeKind::NChar:
        return 5;
    case TypeKind::NVarChar:
        return 6;
    case TypeKind::UniqueIdentifier:
        return 7;
    case TypeKind::Image:
        return 9;
    case TypeKind::Text:
        return 10;
    case TypeKind::NText:
        return 11;
    case TypeKind::Bit:
        return 12;
    case TypeKind::TinyInt:
        return 13;
    case TypeKind::SmallInt:
        return 14;
    case TypeKind::Int:
        return 15;
    case TypeKind::BigInt:
        return 16;
    case TypeKind::SmallMoney:
        return 17;
    case TypeKind::Money:
        return 18;
    case TypeKind::Decimal:
        return 19;
    case TypeKind::Real:
        return 20;
    case TypeKind::Float:
        return 21;
    case TypeKind::SmallDateTime:
        return 22;
    case TypeKind::DateTime:
        return 23;
    }
    return 0;
}

constexpr int kLargest = 38;
constexpr int kLeastScale = 6;

SqlType fittedDecimal(int precision, int scale, bool keepsScale) {
    if (precision > kLargest) {
        const int whole = precision - scale;
        const int least = keepsScale ? 0 : std::min(scale, kLeastScale);
        scale = std::max(std::min(scale, kLargest - whole), least);
        precision = kLargest;
    }
    return decimalType(precision, std::max(scale, 0));
}

SqlType decimalResult(char op, const SqlType& left, const SqlType& right) {
    const int wholeLeft = left.precision - left.scale;
    const int wholeRight = right.precision - right.scale;
    const int scale = std::max(left.scale, right.scale);
    switch (op) {
    case '*':
        return fittedDecimal(left.precision + right.precision + 1, left.scale + right.scale, false);
    case '/': {
        const int places = std::max(kLeastScale, left.scale + right.precision + 1);
        return fittedDecimal(wholeLeft + right.scale + places, places, false);
    }
    case '%':
        return fittedDecimal(std::min(wholeLeft, wholeRight) + scale, scale, true);
    default:
        return fittedDecimal(std::max(wholeLeft, wholeRight) + scale + 1, scale, true);
    }
}

SqlType joinedText(const SqlType& left, const SqlType& right) {
    const bool wide = rank(left.kind) >= rank(TypeKind::NChar) || rank(right.kind) >= rank(TypeKind::NChar);
    const bool fixed =
        (left.kind == TypeKind::Char || left.kind == TypeKind::NChar) && (right.kind == TypeKind::Char || right.kind == TypeKind::NChar);
    SqlType type = simpleType(wide ? (fixed ? TypeKind::NChar : TypeKind::NVarChar) : (fixed ? TypeKind::Char : TypeKind::VarChar));
    const bool longOne =
        left.length == SqlType::kMax || right.length == SqlType::kMax || left.kind == TypeKind::Text || right.kind == TypeKind::Text;
    type.length = longOne ? SqlType::kMax : std::min(left.length + right.length, wide ? 4000 : 8000);
    return type;
}

DbError incompatible(char op, const SqlType& left, const SqlType& right, int line) {
    const char* name = op == '+' ? "add" : op == '-' ? "subtract" : op == '*' ? "multiply" : op == '/' ? "divide" : "modulo";
    return serverMessage(Message::IncompatibleTypes, {kindNameOf(left), kindNameOf(right), name}, line);
}

DbError invalidOperand(char op, const SqlType& type, int line) {
    const char* name = op == '+' ? "add" : op == '-' ? "subtract" : op == '*' ? "multiply" : op == '/' ? "divide" : "modulo";
    return serverMessage(Message::OperandType, {kindNameOf(type), name}, line);
}

bool isBitwise(char op) {
    return op == '&' || op == '|' || op == '^';
}

} // namespace

std::string kindNameOf(const SqlType& type) {
    return type.kind == TypeKind::Decimal ? "numeric" : std::string(type.kindName());
}

SqlType simpleType(TypeKind kind) {
    SqlType type;
    type.kind = kind;
    return type;
}

SqlType varcharType(int length) {
    return {TypeKind::VarChar, length, 0, 0};
}

SqlType nvarcharType(int length) {
    return {TypeKind::NVarChar, length, 0, 0};
}

SqlType decimalType(int precision, int scale) {
    return {TypeKind::Decimal, 0, precision, scale};
}

std::optional<SqlType> builtInType(const TypeName& name, bool inCast) {
    const auto found = std::find_if(kTypes.begin(), kTypes.end(), [&](const NamedType& type) { return sameName(type.name, name.name); });
    if (found == kTypes.end()) {
        for (const std::string_view other :
             {"datetime2", "date", "time", "datetimeoffset", "sql_variant", "xml", "timestamp", "rowversion", "hierarchyid"}) {
            if (sameName(other, name.name))
                throw unsupported("the type " + std::string(other), name.line);
        }
        return std::nullopt;
    }
    SqlType type = simpleType(found->kind);
    setMeasures(type, name, inCast);
    if (found->name == "sysname")
        type.length = 128;
    return type;
}

bool isNumber(const SqlType& type) {
    return type.isWhole() || type.isMoney() || type.isFloat() || type.kind == TypeKind::Decimal;
}

SqlType asDecimal(const SqlType& type) {
    switch (type.kind) {
    case TypeKind::Bit:
        return decimalType(1, 0);
    case TypeKind::TinyInt:
        return decimalType(3, 0);
    case TypeKind::SmallInt:
        return decimalType(5, 0);
    case TypeKind::BigInt:
        return decimalType(19, 0);
    case TypeKind::Money:
        return decimalType(19, 4);
    case TypeKind::SmallMoney:
        return decimalType(10, 4);
    case TypeKind::Decimal:
        return type;
    default:
        return decimalType(10, 0);
    }
}

SqlType arithmeticType(char op, const SqlType& left, const SqlType& right, int line) {
    if (left.kind == TypeKind::Null && right.kind == TypeKind::Null)
        return simpleType(TypeKind::Int);
    if (left.kind == TypeKind::Null)
        return op == '+' || !right.isText() ? arithmeticType(op, right, right, line) : right;
    if (right.kind == TypeKind::Null)
        return arithmeticType(op, left, left, line);
    if (left.isText() && right.isText()) {
        if (op != '+')
            throw invalidOperand(op, left, line);
        return joinedText(left, right);
    }
    if (left.isBinary() && right.isBinary() && op == '+')
        return {TypeKind::VarBinary, std::min(left.length + right.length, 8000), 0, 0};
    const SqlType& high = rank(left.kind) >= rank(right.kind) ? left : right;
    if (high.kind == TypeKind::UniqueIdentifier || high.kind == TypeKind::Text || high.kind == TypeKind::NText ||
        high.kind == TypeKind::Image)
        throw incompatible(op, left, right, line);
    if (isBitwise(op)) {
        if (!high.isWhole())
            throw serverMessage(Message::IncompatibleTypes, {kindNameOf(left), kindNameOf(right), "'" + std::string(1, op) + "'"}, line);
        return high;
    }
    if (high.isDate()) {
        if (op != '+' && op != '-')
            throw invalidOperand(op, high, line);
        return high;
    }
    if (high.isFloat()) {
        if (op == '%')
            throw incompatible(op, left, right, line);
        return high;
    }
    if (high.kind == TypeKind::Decimal)
        return decimalResult(op, left.isText() ? high : asDecimal(left), right.isText() ? high : asDecimal(right));
    if (high.kind == TypeKind::Bit)
        throw invalidOperand(op, high, line);
    return high;
}

SqlType commonType(const SqlType& left, const SqlType& right, int line) {
    if (left == right || right.kind == TypeKind::Null)
        return left;
    if (left.kind == TypeKind::Null)
        return right;
    SqlType high = rank(left.kind) >= rank(right.kind) ? left : right;
    const SqlType& low = rank(left.kind) >= rank(right.kind) ? right : left;
    if (high.isText() && low.isText()) {
        // Texts of different kinds do not pad one another.
        if (left.kind != right.kind && high.kind == TypeKind::NChar)
            high.kind = TypeKind::NVarChar;
        high.length = left.length == SqlType::kMax || right.length == SqlType::kMax ? SqlType::kMax : std::max(left.length, right.length);
        if (left.kind == right.kind && left.length != right.length && (high.kind == TypeKind::Char || high.kind == TypeKind::NChar))
            high.kind = high.kind == TypeKind::Char ? TypeKind::VarChar : TypeKind::NVarChar;
        return high;
    }
    if (high.isBinary() && low.isBinary()) {
        high.length = left.length == SqlType::kMax || right.length == SqlType::kMax ? SqlType::kMax : std::max(left.length, right.length);
        return high;
    }
    if (high.kind == TypeKind::Decimal && (low.isWhole() || low.isMoney() || low.kind == TypeKind::Decimal)) {
        const SqlType other = asDecimal(low);
        const int scale = std::max(high.scale, other.scale);
        return fittedDecimal(std::max(high.precision - high.scale, other.precision - other.scale) + scale, scale, true);
    }
    if ((high.kind == TypeKind::UniqueIdentifier && !low.isText() && !low.isBinary()) ||
        (high.kind == TypeKind::Image && !low.isBinary()) ||
        ((high.kind == TypeKind::Text || high.kind == TypeKind::NText) && !low.isText()))
        throw serverMessage(Message::OperandClash, {kindNameOf(low), kindNameOf(high)}, line);
    return high;
}

void requireImplicit(const SqlType& from, const SqlType& to, int line) {
    const auto refuse = [&] { throw serverMessage(Message::NotImplicit, {kindNameOf(from), kindNameOf(to)}, line); };
    if (from.kind == TypeKind::Null || from == to)
        return;
    if (from.isDate() && (to.isWhole() || to.kind == TypeKind::Decimal || to.isMoney() || to.isFloat() || to.isBinary()))
        refuse();
    if (from.isText() && to.isBinary())
        refuse();
    if (from.isMoney() && to.isText())
        refuse();
    const bool numeric = from.isWhole() || from.isMoney() || from.isFloat() || from.kind == TypeKind::Decimal;
    if ((numeric && to.kind == TypeKind::UniqueIdentifier) || (from.kind == TypeKind::UniqueIdentifier && !to.isText() && !to.isBinary()) ||
        (from.isBinary() && (to.isFloat())))
        throw serverMessage(Message::OperandClash, {kindNameOf(from), kindNameOf(to)}, line);
}

int storedLength(const SqlType& type) {
    switch (type.kind) {
    case TypeKind::Bit:
    case TypeKind::TinyInt:
        return 1;
    case TypeKind::SmallInt:
        return 2;
    case TypeKind::Int:
    case TypeKind::SmallMoney:
    case TypeKind::SmallDateTime:
    case TypeKind::Real:
        return 4;
    case TypeKind::BigInt:
    case TypeKind::Money:
    case TypeKind::DateTime:
    case TypeKind::Float:
        return 8;
    case TypeKind::Decimal:
        return type.precision < 10 ? 5 : type.precision < 20 ? 9 : type.precision < 29 ? 13 : 17;
    case TypeKind::NChar:
    case TypeKind::NVarChar:
        return type.length == SqlType::kMax ? -1 : type.length * 2;
    case TypeKind::UniqueIdentifier:
    case TypeKind::Text:
    case TypeKind::NText:
    case TypeKind::Image:
        return 16;
    default:
        return type.length;
    }
}

} // namespace merchantry::db::tsql
