#include "app/db/tsql/bind_function.h"

#include "app/db/tsql/bind_aggregate.h"
#include "app/db/tsql/bind_condition.h"
#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/functions.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <array>
#include <span>

namespace merchantry::db::tsql {
namespace {

// A function whose arguments are converted and handed to a function of the engine. Arguments: t text, i int, f float, d datetime, a any,
// behind
// '?' those that may be left out. Result: i int, f float, d datetime, v text, n wide text, s text like the first argument, x text of
// any length like the first argument, u uniqueidentifier.
struct PlainFunction {
    std::string_view name;
    std::string_view sql;
    std::string_view arguments;
    char result;
    int length;
};

constexpr std::array kPlain = std::to_array<PlainFunction>({
    {"LEN", "ts_len", "t", 'i', 0},
    {"SUBSTRING", "ts_substring", "tii", 's', 0},
    {"LEFT", "ts_left", "ti", 's', 0},
    {"RIGHT", "ts_right", "ti", 's', 0},
    {"LTRIM", "ts_ltrim", "t", 's', 0},
    {"RTRIM", "ts_rtrim", "t", 's', 0},
    {"UPPER", "ts_upper", "t", 's', 0},
    {"LOWER", "ts_lower", "t", 's', 0},
    {"REVERSE", "ts_reverse", "t", 's', 0},
    {"REPLACE", "ts_replace", "ttt", 'x', 0},
    {"STUFF", "ts_stuff", "tiit", 'x', 0},
    {"REPLICATE", "ts_replicate", "ti", 'x', 0},
    {"CHARINDEX", "ts_charindex", "tt?i", 'i', 0},
    {"PATINDEX", "ts_patindex", "tt", 'i', 0},
    {"SPACE", "ts_space", "i", 'v', 8000},
    {"STR", "ts_str", "f?ii", 'v', 8000},
    {"ASCII", "ts_ascii", "t", 'i', 0},
    {"CHAR", "ts_char", "i", 'v', 1},
    {"UNICODE", "ts_unicode", "t", 'i', 0},
    {"NCHAR", "ts_nchar", "i", 'n', 1},
    {"QUOTENAME", "ts_quotename", "t?t", 'n', 258},
    {"SOUNDEX", "ts_soundex", "t", 'v', 4},
    {"DIFFERENCE", "ts_difference", "tt", 'i', 0},
    {"PARSENAME", "ts_parsename", "ti", 'n', 128},
    {"SQRT", "ts_sqrt", "f", 'f', 0},
    {"SQUARE", "ts_square", "f", 'f', 0},
    {"EXP", "ts_exp", "f", 'f', 0},
    {"LOG", "ts_log", "f", 'f', 0},
    {"LOG10", "ts_log10", "f", 'f', 0},
    {"SIN", "ts_sin", "f", 'f', 0},
    {"COS", "ts_cos", "f", 'f', 0},
    {"TAN", "ts_tan", "f", 'f', 0},
    {"COT", "ts_cot", "f", 'f', 0},
    {"ASIN", "ts_asin", "f", 'f', 0},
    {"ACOS", "ts_acos", "f", 'f', 0},
    {"ATAN", "ts_atan", "f", 'f', 0},
    {"ATN2", "ts_atn2", "ff", 'f', 0},
    {"PI", "ts_pi", "", 'f', 0},
    {"RAND", "ts_rand", "?i", 'f', 0},
    {"DAY", "ts_day", "d", 'i', 0},
    {"MONTH", "ts_month", "d", 'i', 0},
    {"YEAR", "ts_year", "d", 'i', 0},
    {"EOMONTH", "ts_eomonth", "d?i", 'd', 0},
    {"ISDATE", "ts_isdate", "t", 'i', 0},
    {"NEWID", "ts_newid", "", 'u', 0},
    {"OBJECT_ID", "ts_object_id", "t?t", 'i', 0},
    {"OBJECT_NAME", "ts_object_name", "i?i", 'n', 128},
    {"COL_LENGTH", "ts_col_length", "tt", 'i', 0},
    {"COL_NAME", "ts_col_name", "ii", 'n', 128},
    {"COLUMNPROPERTY", "ts_columnproperty", "itt", 'i', 0},
    {"OBJECTPROPERTY", "ts_objectproperty", "it", 'i', 0},
    {"SERVERPROPERTY", "ts_serverproperty", "t", 'n', 128},
    {"DATABASEPROPERTYEX", "ts_databaseproperty", "tt", 'n', 128},
    {"DB_ID", "ts_db_id", "?t", 'i', 0},
    {"USER_ID", "ts_user_id", "?t", 'i', 0},
    {"SCHEMA_ID", "ts_user_id", "?t", 'i', 0},
    {"SCHEMA_NAME", "ts_schema_name", "?i", 'n', 128},
    {"CURSOR_STATUS", "ts_cursor_status", "tt", 'i', 0},
    {"CHECKSUM", "ts_checksum", "a", 'i', 0},
    {"BINARY_CHECKSUM", "ts_binary_checksum", "a", 'i', 0},
});

struct SystemFunction {
    std::string_view name;
    SystemValue value;
    SqlType type;
};

const std::vector<SystemFunction>& systemFunctions() {
    static const std::vector<SystemFunction> kFunctions = {
        {"GETDATE", SystemValue::Now, simpleType(TypeKind::DateTime)},
        {"CURRENT_TIMESTAMP", SystemValue::Now, simpleType(TypeKind::DateTime)},
        {"SYSDATETIME", SystemValue::Now, simpleType(TypeKind::DateTime)},
        {"GETUTCDATE", SystemValue::UtcNow, simpleType(TypeKind::DateTime)},
        {"SCOPE_IDENTITY", SystemValue::ScopeIdentity, decimalType(38, 0)},
        {"ERROR_NUMBER", SystemValue::ErrorNumber, simpleType(TypeKind::Int)},
        {"ERROR_MESSAGE", SystemValue::ErrorMessage, nvarcharType(4000)},
        {"ERROR_SEVERITY", SystemValue::ErrorSeverity, simpleType(TypeKind::Int)},
        {"ERROR_STATE", SystemValue::ErrorState, simpleType(TypeKind::Int)},
        {"ERROR_LINE", SystemValue::ErrorLine, simpleType(TypeKind::Int)},
        {"ERROR_PROCEDURE", SystemValue::ErrorProcedure, nvarcharType(128)},
        {"XACT_STATE", SystemValue::XactState, simpleType(TypeKind::SmallInt)},
        {"DB_NAME", SystemValue::DatabaseName, nvarcharType(128)},
        {"USER_NAME", SystemValue::UserName, nvarcharType(128)},
        {"USER", SystemValue::UserName, nvarcharType(128)},
        {"CURRENT_USER", SystemValue::UserName, nvarcharType(128)},
        {"SESSION_USER", SystemValue::UserName, nvarcharType(128)},
        {"SYSTEM_USER", SystemValue::UserName, nvarcharType(128)},
        {"SUSER_SNAME", SystemValue::UserName, nvarcharType(128)},
        {"SUSER_NAME", SystemValue::UserName, nvarcharType(128)},
        {"HOST_NAME", SystemValue::HostName, nvarcharType(128)},
        {"APP_NAME", SystemValue::AppName, nvarcharType(128)},
    };
    return kFunctions;
}

// Binds the call of one built-in function.
class FunctionBinder {
public:
    FunctionBinder(Binding& binding, const Expr& expr) : binding_(binding), expr_(expr) {}

    std::optional<Typed> plain() {
        for (const PlainFunction& function : kPlain) {
            if (sameName(function.name, expr_.name.last()))
                return call(function);
        }
        return std::nullopt;
    }

    std::optional<Typed> system() {
        for (const SystemFunction& function : systemFunctions()) {
            if (sameName(function.name, expr_.name.last()))
                return binding_.system(function.value, function.type);
        }
        return std::nullopt;
    }

    std::optional<Typed> special() {
        for (const Entry& entry : entries()) {
            if (sameName(entry.name, expr_.name.last()))
                return (this->*entry.bind)();
        }
        return std::nullopt;
    }

    using Bind = Typed (FunctionBinder::*)();
    struct Entry {
        std::string_view name;
        Bind bind;
    };
    // Those whose arguments or result follow rules of their own.
    static std::span<const Entry> entries() {
        static constexpr std::array kEntries = std::to_array<Entry>({
            {"ISNULL", &FunctionBinder::isNull},
            {"COALESCE", &FunctionBinder::coalesce},
            {"NULLIF", &FunctionBinder::nullIf},
            {"IIF", &FunctionBinder::iif},
            {"CHOOSE", &FunctionBinder::choose},
            {"CONCAT", &FunctionBinder::concat},
            {"DATALENGTH", &FunctionBinder::dataLength},
            {"ISNUMERIC", &FunctionBinder::isNumeric},
            {"ABS", &FunctionBinder::abs},
            {"SIGN", &FunctionBinder::sign},
            {"FLOOR", &FunctionBinder::floor},
            {"CEILING", &FunctionBinder::floor},
            {"ROUND", &FunctionBinder::round},
            {"POWER", &FunctionBinder::power},
            {"DEGREES", &FunctionBinder::degrees},
            {"RADIANS", &FunctionBinder::degrees},
            {"DATEADD", &FunctionBinder::dateAdd},
            {"DATEDIFF", &FunctionBinder::dateDiff},
            {"DATEPART", &FunctionBinder::datePart},
            {"DATENAME", &FunctionBinder::datePart},
            {"IDENT_CURRENT", &FunctionBinder::identity},
            {"IDENT_SEED", &FunctionBinder::identity},
            {"IDENT_INCR", &FunctionBinder::identity},
            {"UPDATE", &FunctionBinder::updated},
        });
        return kEntries;
    }

private:
    void requireCount(std::size_t least, std::size_t most) const {
        if (expr_.args.size() < least || expr_.args.size() > most)
            throw wrongCount(expr_, static_cast<int>(least));
    }

    Typed argument(std::size_t index) { return bindValue(binding_, *expr_.args[index]); }
    Typed argument(std::size_t index, TypeKind kind) { return convertTo(argument(index), simpleType(kind)); }

    Typed numberArgument(std::size_t index) {
        Typed value = argument(index);
        if (value.type.kind == TypeKind::Null)
            return convertTo(std::move(value), simpleType(TypeKind::Int));
        if (value.type.isText())
            return convertTo(std::move(value), simpleType(TypeKind::Float));
        if (!isNumber(value.type))
            throw serverMessage(Message::ArgumentType, {kindNameOf(value.type), expr_.name.last()}, expr_.line);
        if (value.type.kind == TypeKind::Bit || value.type.kind == TypeKind::TinyInt || value.type.kind == TypeKind::SmallInt)
            return convertTo(std::move(value), simpleType(TypeKind::Int));
        return value;
    }

    // The values in the type that all have in common.
    SqlType commonOf(const std::vector<Typed>& values) const {
        SqlType type;
        for (const Typed& value : values)
            type = commonType(type, value.type, expr_.line);
        return type;
    }
    Typed inType(Typed value, const SqlType& type) const { return implicitTo(std::move(value), type, expr_.line); }

    Typed call(const PlainFunction& function) {
        const std::size_t optional = function.arguments.find('?');
        const std::size_t most = function.arguments.size() - (optional == std::string_view::npos ? 0 : 1);
        requireCount(std::min(optional, most), most);
        std::string letters(function.arguments);
        std::erase(letters, '?');
        SqlType first;
        std::vector<Typed> arguments;
        for (std::size_t i = 0; i < expr_.args.size(); ++i) {
            Typed value = argument(i);
            if (i == 0)
                first = value.type;
            arguments.push_back(adapted(std::move(value), letters[i]));
        }
        return called(std::string(function.sql), std::move(arguments), resultType(function, first));
    }

    static Typed adapted(Typed value, char letter) {
        switch (letter) {
        case 't':
            return value.type.isText() ? value : convertTo(std::move(value), varcharType(8000));
        case 'i':
            return convertTo(std::move(value), simpleType(TypeKind::Int));
        case 'f':
            return convertTo(std::move(value), simpleType(TypeKind::Float));
        case 'd':
            return convertTo(std::move(value), simpleType(TypeKind::DateTime));
        default:
            return value;
        }
    }

    static SqlType resultType(const PlainFunction& function, const SqlType& first) {
        const bool wide = first.kind == TypeKind::NChar || first.kind == TypeKind::NVarChar || first.kind == TypeKind::NText;
        const int most = wide ? 4000 : 8000;
        switch (function.result) {
        case 'i':
            return simpleType(TypeKind::Int);
        case 'f':
            return simpleType(TypeKind::Float);
        case 'd':
            return simpleType(TypeKind::DateTime);
        case 'u':
            return simpleType(TypeKind::UniqueIdentifier);
        case 'n':
            return nvarcharType(function.length);
        case 's':
        case 'x': {
            const bool longText = first.length == SqlType::kMax || first.kind == TypeKind::Text || first.kind == TypeKind::NText;
            const int length = longText ? SqlType::kMax : function.result == 's' && first.isText() ? first.length : most;
            return wide ? nvarcharType(length) : varcharType(length);
        }
        default:
            return varcharType(function.length);
        }
    }

    Typed isNull() {
        requireCount(2, 2);
        Typed value = argument(0);
        Typed other = argument(1);
        if (value.type.kind == TypeKind::Null)
            return other;
        const SqlType type = value.type;
        const Collation collation = value.collation;
        Typed result = called("ifnull", {std::move(value), inType(std::move(other), type)}, type);
        result.collation = collation;
        return result;
    }

    Typed coalesce() {
        if (expr_.args.size() < 2)
            throw wrongCount(expr_, 2);
        std::vector<Typed> values;
        for (std::size_t i = 0; i < expr_.args.size(); ++i)
            values.push_back(argument(i));
        const SqlType type = commonOf(values);
        if (type.kind == TypeKind::Null)
            throw serverMessage(Message::CoalesceOfNulls, {}, expr_.line);
        for (Typed& value : values)
            value = inType(std::move(value), type);
        return called("coalesce", std::move(values), type);
    }

    static Typed choice(Typed condition, Typed then, Typed otherwise) {
        const SqlType type = then.type.kind == TypeKind::Null ? otherwise.type : then.type;
        form::Case result;
        result.whens.emplace_back(std::move(condition), std::move(then));
        result.otherwise = std::move(otherwise);
        return typed(std::move(result), type);
    }

    Typed nullIf() {
        requireCount(2, 2);
        Typed value = argument(0);
        Typed same = bindCompared(binding_, "=", value, argument(1), expr_.line);
        if (value.type.kind == TypeKind::Null)
            value.type = simpleType(TypeKind::Int);
        return choice(std::move(same), nullLiteral(), std::move(value));
    }

    Typed iif() {
        requireCount(3, 3);
        Typed condition = bindCondition(binding_, *expr_.args[0]);
        Typed yes = argument(1);
        Typed no = argument(2);
        const SqlType type = commonType(yes.type, no.type, expr_.line);
        return choice(std::move(condition), inType(std::move(yes), type), inType(std::move(no), type));
    }

    Typed choose() {
        requireCount(2, 100);
        std::vector<Typed> values;
        for (std::size_t i = 1; i < expr_.args.size(); ++i)
            values.push_back(argument(i));
        const SqlType type = commonOf(values);
        form::Case result;
        result.input = argument(0, TypeKind::Int);
        for (std::size_t i = 0; i < values.size(); ++i)
            result.whens.emplace_back(wholeNumber(static_cast<std::int64_t>(i) + 1), inType(std::move(values[i]), type));
        return typed(std::move(result), type);
    }

    Typed concat() {
        requireCount(2, 254);
        form::Infix chain{"||", {}};
        bool wide = false;
        for (std::size_t i = 0; i < expr_.args.size(); ++i) {
            Typed value = argument(i);
            wide = wide || value.type.kind == TypeKind::NVarChar || value.type.kind == TypeKind::NChar;
            value = adapted(std::move(value), 't');
            chain.operands.push_back(called("ifnull", {std::move(value), literalOf(Cell::ofText(""), varcharType(1))}, varcharType(8000)));
        }
        return typed(std::move(chain), wide ? nvarcharType(4000) : varcharType(8000));
    }

    Typed dataLength() {
        requireCount(1, 1);
        Typed value = argument(0);
        Typed of = typeNumber(value.type);
        return called("ts_datalength", {std::move(value), std::move(of)}, simpleType(TypeKind::Int));
    }

    Typed isNumeric() {
        requireCount(1, 1);
        const SqlType type = simpleType(TypeKind::Int);
        Typed value = argument(0);
        if (isNumber(value.type))
            return typed(form::IsNull{std::move(value), true}, type);
        return called("ts_isnumeric", {adapted(std::move(value), 't')}, type);
    }

    Typed abs() { return typedCall("ts_abs"); }
    Typed sign() { return typedCall("ts_sign"); }

    Typed typedCall(const char* function) {
        requireCount(1, 1);
        Typed value = numberArgument(0);
        const SqlType type = value.type;
        return called(function, {std::move(value), typeNumber(type)}, type);
    }

    Typed floor() {
        requireCount(1, 1);
        const bool up = sameName(expr_.name.last(), "CEILING");
        Typed value = numberArgument(0);
        const SqlType from = value.type;
        const SqlType type = from.kind == TypeKind::Decimal ? decimalType(from.precision, 0) : from;
        return called(up ? "ts_ceiling" : "ts_floor", {std::move(value), typeNumber(from)}, type);
    }

    Typed round() {
        requireCount(2, 3);
        Typed value = numberArgument(0);
        const SqlType type = value.type;
        Typed places = argument(1, TypeKind::Int);
        Typed cut = expr_.args.size() > 2 ? argument(2, TypeKind::Int) : wholeNumber(0);
        return called("ts_round", {std::move(value), std::move(places), std::move(cut), typeNumber(type)}, type);
    }

    Typed power() {
        requireCount(2, 2);
        Typed value = numberArgument(0);
        const SqlType from = value.type;
        const SqlType type = from.kind == TypeKind::Decimal ? decimalType(38, from.scale) : from;
        return called("ts_power", {std::move(value), argument(1, TypeKind::Float), typeNumber(from), typeNumber(type)}, type);
    }

    Typed degrees() {
        requireCount(1, 1);
        const bool toDegrees = sameName(expr_.name.last(), "DEGREES");
        return called(toDegrees ? "ts_degrees" : "ts_radians", {argument(0, TypeKind::Float)}, simpleType(TypeKind::Float));
    }

    // ---- dates

    DatePart part() const {
        const Expr& part = *expr_.args[0];
        const bool named = part.kind == ExprKind::Column && part.name.parts.size() == 1;
        const int number = named ? datePartOf(part.name.last()) : -1;
        if (number < 0)
            throw serverMessage(Message::UnknownOption, {(named ? part.name.last() : part.text), expr_.name.last()}, expr_.line);
        return static_cast<DatePart>(number);
    }
    static Typed partNumber(DatePart part) { return wholeNumber(static_cast<int>(part)); }

    Typed date(std::size_t index) {
        Typed value = argument(index);
        return value.type.kind == TypeKind::SmallDateTime ? value : convertTo(std::move(value), simpleType(TypeKind::DateTime));
    }

    // Days since 1900 of a date in milliseconds, in SQLite's own arithmetic, which cuts towards zero.
    static Typed dayNumber(const Typed& date) {
        const SqlType whole = simpleType(TypeKind::BigInt);
        const Typed day = wholeNumber(Date::kMsPerDay);
        const Typed below = infix("-", date, wholeNumber(Date::kMsPerDay - 1), whole);
        return choice(condition(form::Compare{form::Comparison::Less, date, wholeNumber(0)}), infix("/", below, day, whole),
                      infix("/", date, day, whole));
    }

    Typed dateAdd() {
        requireCount(3, 3);
        Typed number = argument(1, TypeKind::Int);
        Typed value = date(2);
        const SqlType type = value.type;
        return called("ts_dateadd", {partNumber(part()), std::move(number), std::move(value)}, type);
    }

    Typed dateDiff() {
        requireCount(3, 3);
        const SqlType whole = simpleType(TypeKind::Int);
        Typed from = date(1);
        Typed to = date(2);
        const DatePart what = part();
        const auto plain = [](const Typed& value) { return value.isColumn() || value.literal(); };
        if (what == DatePart::Day && plain(from) && plain(to)) // the commonest grouping of all
            return infix("-", dayNumber(to), dayNumber(from), whole);
        return called("ts_datediff", {partNumber(what), std::move(from), std::move(to)}, whole);
    }

    Typed datePart() {
        requireCount(2, 2);
        const bool name = sameName(expr_.name.last(), "DATENAME");
        Typed first = binding_.system(SystemValue::DateFirst, simpleType(TypeKind::TinyInt));
        return called(name ? "ts_datename" : "ts_datepart", {partNumber(part()), date(1), std::move(first)},
                      name ? nvarcharType(30) : simpleType(TypeKind::Int));
    }

    Typed identity() {
        requireCount(1, 1);
        const int which = sameName(expr_.name.last(), "IDENT_CURRENT") ? 0 : sameName(expr_.name.last(), "IDENT_SEED") ? 1 : 2;
        const SqlType number = simpleType(TypeKind::BigInt);
        return convertTo(called("ts_ident_info", {adapted(argument(0), 't'), wholeNumber(which)}, number), decimalType(38, 0));
    }

    // UPDATE(column) of a trigger.
    Typed updated() {
        requireCount(1, 1);
        const TableDef* table = binding_.context.triggerTable;
        if (!table || expr_.args[0]->kind != ExprKind::Column)
            throw serverMessage(Message::UpdateOutsideTrigger, {}, expr_.line);
        const std::string& name = expr_.args[0]->name.last();
        const int column = table->find(name);
        if (column < 0)
            throw serverMessage(Message::InvalidColumn, {name}, expr_.line);
        return called("ts_updated", {wholeNumber(column)}, simpleType(TypeKind::Bit));
    }

    Binding& binding_;
    const Expr& expr_;
};

DbError tooFew(const FunctionDef& function, int line) {
    return serverMessage(Message::TooFewArguments, {function.name}, line);
}

// A function of the store.
Typed ownFunction(Binding& binding, const Expr& expr) {
    const std::shared_ptr<const FunctionDef> found = binding.context.catalog.function(expr.name);
    if (!found || found->statement->table)
        throw serverMessage(Message::UnknownUserFunction, {expr.name.parts[0], expr.name.toText()}, expr.line);
    if (expr.args.size() > found->parameters.size())
        throw serverMessage(Message::TooManyArguments, {found->name}, expr.line);
    if (expr.args.size() < found->parameters.size())
        throw tooFew(*found, expr.line);
    std::vector<Typed> arguments = {wholeNumber(found->id)};
    for (std::size_t i = 0; i < expr.args.size(); ++i) {
        const FunctionDef::Parameter& parameter = found->parameters[i];
        const bool isDefault = expr.args[i]->kind == ExprKind::Default;
        if (isDefault && !parameter.defaultValue)
            throw tooFew(*found, expr.line);
        Typed value = bindValue(binding, isDefault ? *parameter.defaultValue : *expr.args[i]);
        arguments.push_back(implicitTo(std::move(value), parameter.type, expr.line));
    }
    return called("ts_udf", std::move(arguments), found->returns);
}

} // namespace

DbError wrongCount(const Expr& expr, int wanted) {
    return serverMessage(Message::ArgumentCount, {expr.name.last(), std::to_string(wanted)}, expr.line);
}

std::vector<std::string_view> builtInFunctions() {
    std::vector<std::string_view> names = aggregateNames();
    const auto take = [&](const auto& entries) {
        for (const auto& entry : entries)
            names.push_back(entry.name);
    };
    for (const std::string_view name : rankingNames())
        names.push_back(name);
    take(kPlain);
    take(systemFunctions());
    take(FunctionBinder::entries());
    return names;
}

Typed bindFunction(Binding& binding, const Expr& expr) {
    if (expr.name.parts.size() > 1)
        return ownFunction(binding, expr);
    const std::string& name = expr.name.last();
    if (isRanking(name) || (expr.window && isAggregate(name)))
        return bindWindowed(binding, expr);
    if (isAggregate(name))
        return bindAggregate(binding, expr);
    FunctionBinder binder(binding, expr);
    if (std::optional<Typed> found = binder.special())
        return *found;
    if (std::optional<Typed> found = binder.system())
        return *found;
    if (std::optional<Typed> found = binder.plain())
        return *found;
    throw serverMessage(Message::UnknownFunction, {name}, expr.line).withSeverity(15, 10);
}

} // namespace merchantry::db::tsql
