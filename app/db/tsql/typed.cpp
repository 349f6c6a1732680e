#include "app/db/tsql/typed.h"

#include "app/db/tsql/errors.h"

#include <cmath>

namespace merchantry::db::tsql {

const Cell* Typed::literal() const {
    const auto* literal = as<form::Literal>();
    return literal ? &literal->cell : nullptr;
}

bool Typed::isColumn() const {
    return as<form::Column>() != nullptr;
}

bool Typed::isPlace() const {
    return as<form::Place>() != nullptr;
}

// ---- making

Typed literalOf(Cell cell, const SqlType& type) {
    const bool isNull = cell.isNull();
    Typed result = typed(form::Literal{std::move(cell)}, type);
    result.nullable = isNull;
    return result;
}

Typed nullLiteral() {
    return literalOf(Cell(), SqlType());
}

Typed wholeNumber(std::int64_t number) {
    return literalOf(Cell::ofInteger(number), simpleType(TypeKind::Int));
}

Typed typeNumber(const SqlType& type) {
    return wholeNumber(typeCode(type));
}

Typed called(std::string function, std::vector<Typed> arguments, const SqlType& type) {
    return typed(form::Call{std::move(function), std::move(arguments)}, type);
}

Typed infix(std::string sign, Typed left, Typed right, const SqlType& type) {
    return typed(form::Infix{std::move(sign), {std::move(left), std::move(right)}}, type);
}

Typed queryColumn(const std::string& alias, std::size_t index, const SqlType& type) {
    return typed(form::Column{alias, "_c" + std::to_string(index), true}, type);
}

Typed ownColumn(const std::string& alias, std::string name) {
    return typed(form::Column{alias, std::move(name), true}, simpleType(TypeKind::BigInt));
}

Typed negated(Typed inverse) {
    return condition(form::Not{std::move(inverse)});
}

// ---- conversions

namespace {

// The cells of the one type are those of the other, though it means them as numbers of its own.
bool keepsDigits(const SqlType& from, const SqlType& to) {
    return from.isWhole() && to.kind == TypeKind::Decimal && to.scale == 0 && to.precision <= 18 &&
           asDecimal(from).precision <= to.precision;
}

Typed convertedWhenRun(const Typed& value, const SqlType& to, ConvertFor purpose, int style) {
    if (value.type.isWhole() && to.kind == TypeKind::Float)
        return typed(form::AsReal{value}, to);
    if (keepsDigits(value.type, to))
        return typed(form::Same{value}, to);
    std::vector<Typed> arguments = {value, typeNumber(value.type), typeNumber(to)};
    if (style >= 0)
        arguments.push_back(wholeNumber(style));
    return called(purpose == ConvertFor::Column ? "ts_st" : "ts_cv", std::move(arguments), to);
}

} // namespace

Typed convertTo(Typed value, const SqlType& to, ConvertFor purpose, int style) {
    const bool styled = style >= 0 && to.isText() && !value.type.isText();
    if (value.type.kind == TypeKind::Null || (!styled && sameCells(value.type, to))) {
        value.type = to;
        return value;
    }
    Typed result;
    if (const Cell* cell = value.literal()) {
        try {
            result = literalOf(converted(*cell, value.type, to, purpose, style), to);
        } catch (const DbError&) { // fails when it is reached
        }
    }
    if (!result.form)
        result = convertedWhenRun(value, to, purpose, style);
    result.nullable = value.nullable;
    result.collation = value.collation;
    return result;
}

Typed implicitTo(Typed value, const SqlType& to, int line, ConvertFor purpose) {
    requireImplicit(value.type, to, line);
    return convertTo(std::move(value), to, purpose);
}

Typed collated(Typed value) {
    if (!value.type.isText() && value.type.kind != TypeKind::UniqueIdentifier)
        return value;
    const Collation collation = value.collation;
    const SqlType type = value.type;
    return typed(form::Collated{std::move(value), collation}, type);
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

// A chain of texts is one form, since SQLite takes few parentheses inside one another.
Typed joinedTexts(const Typed& left, Typed right, const SqlType& type) {
    const auto* before = left.as<form::Infix>();
    if (!before || before->sign != "||")
        return infix("||", left, std::move(right), type);
    form::Infix chain = *before;
    chain.operands.push_back(std::move(right));
    return typed(std::move(chain), type);
}

// A whole literal enters exact arithmetic with the digits it has.
SqlType exactType(const Typed& value, const SqlType& high) {
    if (value.type.isText() || value.type.kind == TypeKind::Null)
        return high;
    const Cell* cell = value.literal();
    if (cell && value.type.kind == TypeKind::Int && !cell->isNull())
        return decimalType(static_cast<int>(std::to_string(std::abs(cell->integer)).size()), 0);
    return asDecimal(value.type);
}

// Of decimals: a whole literal has no more digits than it shows.
Typed exactArithmetic(char op, Typed left, Typed right, const SqlType& common, int line) {
    const SqlType leftType = exactType(left, common);
    const SqlType rightType = exactType(right, common);
    const bool texts = left.type.isText() || right.type.isText();
    const SqlType type = texts ? common : arithmeticType(op, leftType, rightType, line);
    return called(std::string("ts_") + operatorName(op) + "_dec",
                  {convertTo(std::move(left), leftType), convertTo(std::move(right), rightType), wholeNumber(leftType.scale),
                   wholeNumber(rightType.scale), wholeNumber(type.precision), wholeNumber(type.scale)},
                  type);
}

// A sum of whole numbers or money is one call, however long it is.
Typed summed(const std::string& function, Typed left, Typed right, const SqlType& type) {
    const auto* before = left.as<form::Call>();
    const bool goesOn = before && before->function == function && left.type == type;
    left = convertTo(std::move(left), type);
    right = convertTo(std::move(right), type);
    if (!goesOn)
        return called(function, {std::move(left), std::move(right)}, type);
    form::Call chain = *left.as<form::Call>();
    chain.arguments.push_back(std::move(right));
    return typed(std::move(chain), type);
}

// Of whole numbers, money, floats and dates.
Typed numberArithmetic(char op, Typed left, Typed right, const SqlType& common) {
    SqlType type = common;
    if (type.kind == TypeKind::SmallMoney)
        type.kind = TypeKind::Money;
    if (type.kind == TypeKind::SmallDateTime)
        type.kind = TypeKind::DateTime;
    const std::string family = std::string("ts_") + operatorName(op) + "_";
    const std::string function = family + (type.isMoney() ? "money" : wholeName(type.kind));
    if (op == '+' && (type.isMoney() || type.isWhole()))
        return summed(function, std::move(left), std::move(right), type);
    left = convertTo(std::move(left), type);
    right = convertTo(std::move(right), type);
    if (type.isFloat() && op != '/')
        return called("ts_float", {infix(std::string(1, op), std::move(left), std::move(right), type)}, type);
    if ((op == '&' || op == '|') && !type.isMoney() && !type.isFloat() && !type.isDate())
        return infix(std::string(1, op), std::move(left), std::move(right), type);
    return called(type.isFloat() ? "ts_div_float" : type.isDate() ? family + "date" : function, {std::move(left), std::move(right)}, type);
}

} // namespace

Typed calculated(char op, Typed left, Typed right, int line) {
    if (left.type.kind == TypeKind::Null && right.type.kind != TypeKind::Null)
        left.type = right.type;
    if (right.type.kind == TypeKind::Null && left.type.kind != TypeKind::Null)
        right.type = left.type;
    const SqlType type = arithmeticType(op, left.type, right.type, line);
    const bool nullable = left.nullable || right.nullable;
    const Collation collation = left.collation == Collation::None ? right.collation : left.collation;
    Typed result;
    if (type.isText())
        result = joinedTexts(left, std::move(right), type);
    else if (type.isBinary())
        result = called("ts_bytes", {std::move(left), std::move(right)}, type);
    else if (type.kind == TypeKind::Decimal)
        result = exactArithmetic(op, std::move(left), std::move(right), type, line);
    else
        result = numberArithmetic(op, std::move(left), std::move(right), type);
    result.nullable = nullable;
    result.collation = collation;
    return result;
}

// ---- comparing

namespace {

// A whole decimal of many digits, SCOPE_IDENTITY() above all, beside a column of integers: it becomes a number, since the column as a
// decimal would find no index.
void keepColumnBare(const Typed& column, Typed& other) {
    const bool wide = other.type.kind == TypeKind::Decimal && other.type.scale == 0 && other.type.precision > 18;
    if (!column.isColumn() || !column.type.isWhole() || !wide || other.isColumn())
        return;
    other = called("ts_whole", {std::move(other)}, column.type);
}

form::Comparison comparisonOf(const std::string& op, bool nullsEqual) {
    using enum form::Comparison;
    if (op == "=")
        return nullsEqual ? Is : Equal;
    if (op == "<>")
        return nullsEqual ? IsNot : NotEqual;
    if (op == "<")
        return Less;
    if (op == "<=")
        return LessOrEqual;
    return op == ">" ? Greater : GreaterOrEqual;
}

} // namespace

Typed compared(const std::string& op, Typed left, Typed right, int line, bool nullsEqual) {
    const bool mayBeNull = left.isNull() || right.isNull() || left.isPlace() || right.isPlace();
    const form::Comparison comparison = comparisonOf(op, nullsEqual && mayBeNull);
    keepColumnBare(left, right);
    keepColumnBare(right, left);
    SqlType type = commonType(left.type, right.type, line);
    if (type.kind == TypeKind::Null)
        type = simpleType(TypeKind::Int);
    const Collation collation = left.collation == Collation::None ? right.collation : left.collation;
    // A column of a table brings the usual collation along.
    const auto brings = [&](const Typed& value) { return value.isColumn() && value.table && sameCells(value.type, type); };
    const bool isUsual = collation == Collation::None || collation == Collation::Usual;
    const bool named = !isUsual || !(brings(left) || brings(right));
    left = implicitTo(std::move(left), type, line);
    right = implicitTo(std::move(right), type, line);
    left.collation = collation;
    return condition(form::Compare{comparison, named ? collated(std::move(left)) : std::move(left), std::move(right)});
}

} // namespace merchantry::db::tsql
