#include "app/db/tsql/functions.h"

#include "app/db/tsql/binder.h"
#include "app/db/tsql/errors.h"
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

DbError wrongCount(const Expr& expr, int wanted) {
    return syntaxError(174, "The " + expr.name.last() + " function requires " + std::to_string(wanted) + " argument(s).", expr.line);
}

std::string code(const SqlType& type) {
    return std::to_string(typeCode(type));
}

bool isNumber(const SqlType& type) {
    return type.isWhole() || type.isMoney() || type.isFloat() || type.kind == TypeKind::Decimal;
}

} // namespace

// Binds the calls of built-in functions, with the binder's means.
class FunctionBinder {
public:
    FunctionBinder(Binder& binder, const Expr& expr) : binder_(binder), expr_(expr) {}

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
                return binder_.system(function.value, function.type);
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

    Typed argument(std::size_t index) { return binder_.bindValue(*expr_.args[index]); }

    Typed asText(Typed value) {
        if (value.type.isText() || value.type.kind == TypeKind::Null)
            return value;
        return tsql::convertTo(std::move(value), varcharType(8000));
    }

    Typed asNumber(Typed value) {
        if (value.type.kind == TypeKind::Null)
            return tsql::convertTo(std::move(value), simpleType(TypeKind::Int));
        if (value.type.isText())
            return tsql::convertTo(std::move(value), simpleType(TypeKind::Float));
        if (!isNumber(value.type))
            throw typeError(
                8116, "Argument data type " + kindNameOf(value.type) + " is invalid for argument 1 of " + expr_.name.last() + " function.",
                expr_.line);
        if (value.type.kind == TypeKind::Bit || value.type.kind == TypeKind::TinyInt || value.type.kind == TypeKind::SmallInt)
            return tsql::convertTo(std::move(value), simpleType(TypeKind::Int));
        return value;
    }

    Typed as(Typed value, TypeKind kind) { return tsql::convertTo(std::move(value), simpleType(kind)); }

    static Typed made(std::string sql, const SqlType& type) {
        Typed result;
        result.sql = std::move(sql);
        result.type = type;
        return result;
    }

    Typed call(const PlainFunction& function) {
        std::string sql;
        SqlType first;
        const std::size_t optional = function.arguments.find('?');
        const std::size_t most = function.arguments.size() - (optional == std::string_view::npos ? 0 : 1);
        const std::size_t least = std::min(optional, most);
        requireCount(least, most);
        std::string letters(function.arguments);
        std::erase(letters, '?');
        for (std::size_t i = 0; i < expr_.args.size(); ++i) {
            Typed value = argument(i);
            if (i == 0)
                first = value.type;
            sql += i > 0 ? "," : "";
            sql += adapted(std::move(value), letters[i]).sql;
        }
        return made(std::string(function.sql) + "(" + sql + ")", resultType(function, first));
    }

    Typed adapted(Typed value, char letter) {
        switch (letter) {
        case 't':
            return asText(std::move(value));
        case 'i':
            return as(std::move(value), TypeKind::Int);
        case 'f':
            return as(std::move(value), TypeKind::Float);
        case 'd':
            return as(std::move(value), TypeKind::DateTime);
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
        const SqlType type = value.type.kind == TypeKind::Null ? other.type : value.type;
        if (value.type.kind == TypeKind::Null)
            return other;
        Typed result = made("ifnull(" + value.sql + "," + tsql::implicitTo(std::move(other), type, expr_.line).sql + ")", type);
        result.collation = value.collation;
        return result;
    }

    Typed coalesce() {
        if (expr_.args.size() < 2)
            throw wrongCount(expr_, 2);
        std::vector<Typed> values;
        SqlType type;
        for (std::size_t i = 0; i < expr_.args.size(); ++i) {
            values.push_back(argument(i));
            type = commonType(type, values.back().type, expr_.line);
        }
        if (type.kind == TypeKind::Null)
            throw typeError(4127, "At least one of the arguments to COALESCE must be an expression that is not the NULL constant.",
                            expr_.line);
        std::string sql;
        for (Typed& value : values)
            sql += (sql.empty() ? "" : ",") + tsql::implicitTo(std::move(value), type, expr_.line).sql;
        return made("coalesce(" + sql + ")", type);
    }

    Typed nullIf() {
        requireCount(2, 2);
        Typed value = argument(0);
        const std::string same = binder_.compare("=", value, argument(1), expr_.line);
        return made("(CASE WHEN " + same + " THEN NULL ELSE " + value.sql + " END)",
                    value.type.kind == TypeKind::Null ? simpleType(TypeKind::Int) : value.type);
    }

    Typed iif() {
        requireCount(3, 3);
        const std::string condition = binder_.bindCondition(*expr_.args[0]);
        Typed yes = argument(1);
        Typed no = argument(2);
        const SqlType type = commonType(yes.type, no.type, expr_.line);
        return made("(CASE WHEN " + condition + " THEN " + tsql::implicitTo(std::move(yes), type, expr_.line).sql + " ELSE " +
                        tsql::implicitTo(std::move(no), type, expr_.line).sql + " END)",
                    type);
    }

    Typed choose() {
        requireCount(2, 100);
        std::vector<Typed> values;
        SqlType type;
        for (std::size_t i = 1; i < expr_.args.size(); ++i) {
            values.push_back(argument(i));
            type = commonType(type, values.back().type, expr_.line);
        }
        std::string sql = "(CASE " + as(argument(0), TypeKind::Int).sql;
        for (std::size_t i = 0; i < values.size(); ++i)
            sql += " WHEN " + std::to_string(i + 1) + " THEN " + tsql::implicitTo(std::move(values[i]), type, expr_.line).sql;
        return made(sql + " END)", type);
    }

    Typed concat() {
        requireCount(2, 254);
        std::string sql;
        bool wide = false;
        for (std::size_t i = 0; i < expr_.args.size(); ++i) {
            Typed value = argument(i);
            wide = wide || value.type.kind == TypeKind::NVarChar || value.type.kind == TypeKind::NChar;
            sql += (i > 0 ? "||" : "") + ("ifnull(" + asText(std::move(value)).sql + ",'')");
        }
        return made("(" + sql + ")", wide ? nvarcharType(4000) : varcharType(8000));
    }

    Typed dataLength() {
        requireCount(1, 1);
        const Typed value = argument(0);
        return made("ts_datalength(" + value.sql + "," + code(value.type) + ")", simpleType(TypeKind::Int));
    }

    Typed isNumeric() {
        requireCount(1, 1);
        Typed value = argument(0);
        if (isNumber(value.type))
            return made("(" + value.sql + " IS NOT NULL)", simpleType(TypeKind::Int));
        return made("ts_isnumeric(" + asText(std::move(value)).sql + ")", simpleType(TypeKind::Int));
    }

    Typed abs() { return typedCall("ts_abs"); }
    Typed sign() { return typedCall("ts_sign"); }

    Typed typedCall(const std::string& name) {
        requireCount(1, 1);
        const Typed value = asNumber(argument(0));
        return made(name + "(" + value.sql + "," + code(value.type) + ")", value.type);
    }

    Typed floor() {
        requireCount(1, 1);
        const bool up = sameName(expr_.name.last(), "CEILING");
        const Typed value = asNumber(argument(0));
        const SqlType type = value.type.kind == TypeKind::Decimal ? decimalType(value.type.precision, 0) : value.type;
        return made(std::string(up ? "ts_ceiling(" : "ts_floor(") + value.sql + "," + code(value.type) + ")", type);
    }

    Typed round() {
        requireCount(2, 3);
        const Typed value = asNumber(argument(0));
        const std::string places = as(argument(1), TypeKind::Int).sql;
        const std::string cut = expr_.args.size() > 2 ? as(argument(2), TypeKind::Int).sql : "0";
        return made("ts_round(" + value.sql + "," + places + "," + cut + "," + code(value.type) + ")", value.type);
    }

    Typed power() {
        requireCount(2, 2);
        const Typed value = asNumber(argument(0));
        const SqlType type = value.type.kind == TypeKind::Decimal ? decimalType(38, value.type.scale) : value.type;
        return made("ts_power(" + value.sql + "," + as(argument(1), TypeKind::Float).sql + "," + code(value.type) + "," + code(type) + ")",
                    type);
    }

    Typed degrees() {
        requireCount(1, 1);
        const bool toDegrees = sameName(expr_.name.last(), "DEGREES");
        return made(std::string(toDegrees ? "ts_degrees(" : "ts_radians(") + as(argument(0), TypeKind::Float).sql + ")",
                    simpleType(TypeKind::Float));
    }

    // ---- dates

    std::string part() const {
        const Expr& part = *expr_.args[0];
        const bool named = part.kind == ExprKind::Column && part.name.parts.size() == 1;
        const int number = named ? datePartOf(part.name.last()) : -1;
        if (number < 0)
            throw syntaxError(155, "'" + (named ? part.name.last() : part.text) + "' is not a recognized " + expr_.name.last() + " option.",
                              expr_.line);
        return std::to_string(number);
    }

    Typed date(std::size_t index) {
        Typed value = argument(index);
        const bool small = value.type.kind == TypeKind::SmallDateTime;
        return small ? value : as(std::move(value), TypeKind::DateTime);
    }

    // Days since 1900 of a date in milliseconds, in SQLite's own arithmetic, which cuts towards zero.
    static std::string dayNumber(const std::string& date) {
        const std::string day = std::to_string(Date::kMsPerDay);
        return "(CASE WHEN " + date + "<0 THEN (" + date + "-" + std::to_string(Date::kMsPerDay - 1) + ")/" + day + " ELSE " + date + "/" +
               day + " END)";
    }

    Typed dateAdd() {
        requireCount(3, 3);
        const std::string number = as(argument(1), TypeKind::Int).sql;
        const Typed value = date(2);
        return made("ts_dateadd(" + part() + "," + number + "," + value.sql + ")", value.type);
    }

    Typed dateDiff() {
        requireCount(3, 3);
        const Typed from = date(1);
        const Typed to = date(2);
        const std::string what = part();
        const auto plain = [](const Typed& value) { return value.isColumn || value.literal.has_value(); };
        if (what == std::to_string(static_cast<int>(DatePart::Day)) && plain(from) && plain(to)) // the commonest grouping of all
            return made("(" + dayNumber(to.sql) + "-" + dayNumber(from.sql) + ")", simpleType(TypeKind::Int));
        return made("ts_datediff(" + what + "," + from.sql + "," + to.sql + ")", simpleType(TypeKind::Int));
    }

    Typed datePart() {
        requireCount(2, 2);
        const bool name = sameName(expr_.name.last(), "DATENAME");
        const std::string first = binder_.system(SystemValue::DateFirst, simpleType(TypeKind::TinyInt)).sql;
        return made(std::string(name ? "ts_datename(" : "ts_datepart(") + part() + "," + date(1).sql + "," + first + ")",
                    name ? nvarcharType(30) : simpleType(TypeKind::Int));
    }

    Typed identity() {
        requireCount(1, 1);
        const std::string which = sameName(expr_.name.last(), "IDENT_CURRENT") ? "0"
                                  : sameName(expr_.name.last(), "IDENT_SEED")  ? "1"
                                                                               : "2";
        return made("ts_cv(ts_ident_info(" + asText(argument(0)).sql + "," + which + ")," + code(simpleType(TypeKind::BigInt)) + "," +
                        code(decimalType(38, 0)) + ")",
                    decimalType(38, 0));
    }

    // UPDATE(column) of a trigger.
    Typed updated() {
        requireCount(1, 1);
        if (!binder_.context_.triggerTable || expr_.args[0]->kind != ExprKind::Column)
            throw syntaxError(140, "Can only use IF UPDATE within a CREATE TRIGGER statement.", expr_.line);
        const std::string& name = expr_.args[0]->name.last();
        const int column = binder_.context_.triggerTable->find(name);
        if (column < 0)
            throw nameError(207, "Invalid column name '" + name + "'.", expr_.line);
        return made("ts_updated(" + std::to_string(column) + ")", simpleType(TypeKind::Bit));
    }

    Binder& binder_;
    const Expr& expr_;
};

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

Typed Binder::function(const Expr& expr) {
    if (expr.name.parts.size() > 1)
        return userFunction(expr);
    const std::string& name = expr.name.last();
    if (isRanking(name) || (expr.window && isAggregate(name)))
        return windowed(expr, name);
    if (isAggregate(name))
        return aggregate(expr, name);
    FunctionBinder binder(*this, expr);
    if (std::optional<Typed> found = binder.special())
        return *found;
    if (std::optional<Typed> found = binder.system())
        return *found;
    if (std::optional<Typed> found = binder.plain())
        return *found;
    throw nameError(195, "'" + name + "' is not a recognized built-in function name.", expr.line).withSeverity(15, 10);
}

Typed Binder::userFunction(const Expr& expr) {
    const std::shared_ptr<const FunctionDef> found = context_.catalog.function(expr.name);
    if (!found || found->statement->table)
        throw nameError(4121,
                        "Cannot find either column \"" + expr.name.parts[0] + "\" or the user-defined function or aggregate \"" +
                            expr.name.toText() + "\", or the name is ambiguous.",
                        expr.line);
    if (expr.args.size() > found->parameters.size())
        throw syntaxError(8144, "Procedure or function " + found->name + " has too many arguments specified.", expr.line);
    if (expr.args.size() < found->parameters.size())
        throw syntaxError(313, "An insufficient number of arguments were supplied for the procedure or function " + found->name + ".",
                          expr.line);
    Typed result;
    result.type = found->returns;
    result.sql = "ts_udf(" + std::to_string(found->id);
    for (std::size_t i = 0; i < expr.args.size(); ++i) {
        const FunctionDef::Parameter& parameter = found->parameters[i];
        const bool isDefault = expr.args[i]->kind == ExprKind::Default;
        if (isDefault && !parameter.defaultValue)
            throw syntaxError(313, "An insufficient number of arguments were supplied for the procedure or function " + found->name + ".",
                              expr.line);
        Typed value = bindValue(isDefault ? *parameter.defaultValue : *expr.args[i]);
        result.sql += "," + implicitTo(std::move(value), parameter.type, expr.line).sql;
    }
    result.sql += ")";
    return result;
}

} // namespace merchantry::db::tsql
