#include "app/db/tsql/bound.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/literal.h"

#include <cmath>

namespace merchantry::db::tsql {

// ---- conversions

Typed convertTo(Typed value, const SqlType& to, ConvertFor purpose, int style) {
    if (value.type.kind == TypeKind::Null) {
        value.type = to;
        return value;
    }
    const bool styled = style >= 0 && to.isText() && !value.type.isText();
    if (!styled && sameCells(value.type, to)) {
        value.type = to;
        return value;
    }
    Typed result;
    result.type = to;
    result.nullable = value.nullable;
    result.collation = value.collation;
    if (value.literal) {
        try {
            result.literal = converted(*value.literal, value.type, to, purpose, style);
            result.sql = literalSql(*result.literal);
            return result;
        } catch (const DbError&) {
            result.literal.reset(); // fails when it is reached
        }
    }
    if (value.type.isWhole() && to.kind == TypeKind::Float) {
        result.sql = "CAST(" + value.sql + " AS REAL)";
        return result;
    }
    if (value.type.isWhole() && to.kind == TypeKind::Decimal && to.scale == 0 && to.precision <= 18 &&
        asDecimal(value.type).precision <= to.precision) {
        result.sql = value.sql;
        return result;
    }
    result.sql = std::string(purpose == ConvertFor::Column ? "ts_st(" : "ts_cv(") + value.sql + "," + std::to_string(typeCode(value.type)) +
                 "," + std::to_string(typeCode(to));
    result.sql += style >= 0 ? "," + std::to_string(style) + ")" : ")";
    return result;
}

Typed implicitTo(Typed value, const SqlType& to, int line, ConvertFor purpose) {
    requireImplicit(value.type, to, line);
    return convertTo(std::move(value), to, purpose);
}

std::string collationOf(const Typed& left, const Typed& right) {
    if (!left.collation.empty())
        return left.collation;
    return right.collation.empty() ? "ts" : right.collation;
}

std::string collated(const Typed& value) {
    if (!value.type.isText() && value.type.kind != TypeKind::UniqueIdentifier)
        return value.sql;
    return value.sql + " COLLATE " + (value.collation.empty() ? "ts" : value.collation);
}

// ---- arithmetic

namespace {

const char* operatorName(char op) {
    switch (op) {
    case '+':
        return "add";
    case '-':
        return "sub";
    case '*':
        return "mul";
    case '/':
        return "div";
    case '%':
        return "mod";
    case '&':
        return "and";
    case '|':
        return "or";
    default:
        return "xor";
    }
}

const char* wholeName(TypeKind kind) {
    switch (kind) {
    case TypeKind::TinyInt:
        return "tiny";
    case TypeKind::SmallInt:
        return "small";
    case TypeKind::BigInt:
        return "big";
    default:
        return "int";
    }
}

// One more operand in the brackets of a call or chain.
std::string withOperand(const std::string& call, const std::string& operand) {
    return call.substr(0, call.size() - 1) + operand + ")";
}

// SQLite takes few parentheses inside one another, so a chain stays flat.
Typed joinedTexts(const Typed& left, const Typed& right) {
    Typed result;
    result.chain = "||";
    result.sql = left.chain == result.chain ? withOperand(left.sql, "||" + right.sql) : "(" + left.sql + "||" + right.sql + ")";
    return result;
}

// A whole literal enters exact arithmetic with the digits it has.
SqlType exactType(const Typed& value, const SqlType& high) {
    if (value.type.isText() || value.type.kind == TypeKind::Null)
        return high;
    if (value.literal && value.type.kind == TypeKind::Int && !value.literal->isNull())
        return decimalType(static_cast<int>(std::to_string(std::abs(value.literal->integer)).size()), 0);
    return asDecimal(value.type);
}

// Of decimals: a whole literal has no more digits than it shows.
Typed exactArithmetic(char op, Typed left, Typed right, const SqlType& common, int line) {
    const SqlType leftType = exactType(left, common);
    const SqlType rightType = exactType(right, common);
    const bool texts = left.type.isText() || right.type.isText();
    Typed result;
    result.type = texts ? common : arithmeticType(op, leftType, rightType, line);
    const std::string a = convertTo(std::move(left), leftType).sql;
    const std::string b = convertTo(std::move(right), rightType).sql;
    result.sql = std::string("ts_") + operatorName(op) + "_dec(" + a + "," + b + "," + std::to_string(leftType.scale) + "," +
                 std::to_string(rightType.scale) + "," + std::to_string(result.type.precision) + "," + std::to_string(result.type.scale) +
                 ")";
    return result;
}

// Of whole numbers, money, floats and dates. A sum of whole numbers or money is one call, however long it is.
Typed numberArithmetic(char op, Typed left, Typed right, const SqlType& common) {
    SqlType type = common;
    if (type.kind == TypeKind::SmallMoney)
        type.kind = TypeKind::Money;
    if (type.kind == TypeKind::SmallDateTime)
        type.kind = TypeKind::DateTime;
    const std::string call = std::string("ts_") + operatorName(op) + "_";
    const std::string head = call + (type.isMoney() ? "money" : wholeName(type.kind)) + "(";
    const bool isSum = op == '+' && (type.isMoney() || type.isWhole());
    const bool goesOn = isSum && left.chain == head && left.type == type;
    const std::string a = convertTo(std::move(left), type).sql;
    const std::string b = convertTo(std::move(right), type).sql;
    Typed result;
    result.type = type;
    if (isSum)
        result.chain = head;
    if (goesOn)
        result.sql = withOperand(a, "," + b);
    else if (type.isFloat())
        result.sql = op == '/' ? "ts_div_float(" + a + "," + b + ")" : "ts_float(" + a + op + b + ")";
    else if (type.isDate())
        result.sql = call + "date(" + a + "," + b + ")";
    else if (op == '&' || op == '|')
        result.sql = type.isMoney() ? head + a + "," + b + ")" : "(" + a + op + b + ")";
    else
        result.sql = head + a + "," + b + ")";
    return result;
}

} // namespace

Typed calculated(char op, Typed left, Typed right, int line) {
    if (left.type.kind == TypeKind::Null && right.type.kind != TypeKind::Null)
        left.type = right.type;
    if (right.type.kind == TypeKind::Null && left.type.kind != TypeKind::Null)
        right.type = left.type;
    const SqlType type = arithmeticType(op, left.type, right.type, line);
    const bool nullable = left.nullable || right.nullable;
    const std::string collation = left.collation.empty() ? right.collation : left.collation;
    Typed result;
    if (type.isText())
        result = joinedTexts(left, right);
    else if (type.isBinary())
        result.sql = "ts_bytes(" + left.sql + "," + right.sql + ")";
    else if (type.kind == TypeKind::Decimal)
        result = exactArithmetic(op, std::move(left), std::move(right), type, line);
    else
        result = numberArithmetic(op, std::move(left), std::move(right), type);
    if (type.isText() || type.isBinary())
        result.type = type;
    result.nullable = nullable;
    result.collation = collation;
    return result;
}

} // namespace merchantry::db::tsql
