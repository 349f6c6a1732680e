#include "app/db/embedded/functions.h"

#include "app/db/messages.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/types.h"

#include <cmath>
#include <memory>

namespace merchantry::db::embedded {
namespace {

using Wide = __int128;

enum class Kind {
    SumInt,
    SumBig,
    SumMoney,
    SumDecimal,
    SumFloat,
    AvgInt,
    AvgBig,
    AvgMoney,
    AvgDecimal,
    AvgFloat,
    StdDev,
    StdDevP,
    Variance,
    VarianceP,
    One
};

// What SQLite keeps for an aggregate; scale is that of the argument of an average of decimals.
struct Aggregate {
    Kind kind;
    int scale;
    FunctionHost& host;
};

// SQLite's memory is aligned to eight bytes only.
typedef Wide WideOfEight __attribute__((aligned(8))); // NOLINT(modernize-use-using): the attribute binds to a typedef

// What is gathered over the rows; SQLite gives it zeroed.
struct Gathered {
    std::int64_t count;
    WideOfEight sum;
    double real;
    double squares;
    sqlite3_value* value;
};

bool isReal(Kind kind) {
    return kind == Kind::SumFloat || kind == Kind::AvgFloat || kind >= Kind::StdDev;
}

void step(sqlite3_context* context, int, sqlite3_value** values) {
    const auto& aggregate = *static_cast<Aggregate*>(sqlite3_user_data(context));
    auto* gathered = static_cast<Gathered*>(sqlite3_aggregate_context(context, sizeof(Gathered)));
    if (!gathered)
        return sqlite3_result_error_nomem(context);
    if (aggregate.kind == Kind::One) {
        if (++gathered->count > 1)
            return failWith(context, aggregate.host, serverMessage(Message::SubqueryOfSeveralRows).withSeverity(16, 1));
        gathered->value = sqlite3_value_dup(values[0]);
        return;
    }
    if (sqlite3_value_type(values[0]) == SQLITE_NULL)
        return;
    ++gathered->count;
    if (isReal(aggregate.kind)) {
        const double number = sqlite3_value_double(values[0]);
        gathered->real += number;
        gathered->squares += number * number;
        return;
    }
    Wide sum = 0;
    if (__builtin_add_overflow(static_cast<Wide>(gathered->sum), tsql::digitsOf(CellView(values[0])), &sum))
        return failWith(context, aggregate.host, tsql::overflow(tsql::decimalType(38, 0)));
    gathered->sum = sum;
}

void inverse(sqlite3_context* context, int, sqlite3_value** values) {
    const auto& aggregate = *static_cast<Aggregate*>(sqlite3_user_data(context));
    auto* gathered = static_cast<Gathered*>(sqlite3_aggregate_context(context, sizeof(Gathered)));
    if (!gathered || sqlite3_value_type(values[0]) == SQLITE_NULL)
        return;
    --gathered->count;
    if (isReal(aggregate.kind)) {
        const double number = sqlite3_value_double(values[0]);
        gathered->real -= number;
        gathered->squares -= number * number;
        return;
    }
    gathered->sum -= tsql::digitsOf(CellView(values[0]));
}

Cell whole(Wide number, TypeKind kind, std::int64_t low, std::int64_t high) {
    if (number < low || number > high)
        throw tsql::overflow(tsql::simpleType(kind));
    return Cell::ofInteger(static_cast<std::int64_t>(number));
}

Cell finite(double number) {
    if (!std::isfinite(number))
        throw tsql::overflow(tsql::simpleType(TypeKind::Float));
    return Cell::ofReal(number);
}

double spread(const Gathered& gathered, bool population) {
    const auto count = static_cast<double>(gathered.count);
    const double mean = gathered.real / count;
    const double sum = std::max(0.0, gathered.squares - mean * gathered.real);
    return sum / (population ? count : count - 1);
}

Cell resultOf(const Aggregate& aggregate, const Gathered& gathered) {
    const Wide count = gathered.count;
    switch (aggregate.kind) {
    case Kind::SumInt:
        return whole(gathered.sum, TypeKind::Int, INT32_MIN, INT32_MAX);
    case Kind::SumBig:
        return whole(gathered.sum, TypeKind::BigInt, INT64_MIN, INT64_MAX);
    case Kind::SumMoney:
        return whole(gathered.sum, TypeKind::Money, INT64_MIN, INT64_MAX);
    case Kind::SumDecimal:
        return tsql::checkedDecimal(gathered.sum, tsql::decimalType(38, 0));
    case Kind::AvgInt:
    case Kind::AvgBig:
    case Kind::AvgMoney:
        return whole(gathered.sum / count, TypeKind::BigInt, INT64_MIN, INT64_MAX);
    case Kind::AvgDecimal: {
        Wide digits = gathered.sum;
        for (int scale = aggregate.scale; scale < 6; ++scale) {
            if (__builtin_mul_overflow(digits, static_cast<Wide>(10), &digits))
                throw tsql::overflow(tsql::decimalType(38, 6));
        }
        return tsql::checkedDecimal(digits / count, tsql::decimalType(38, 6));
    }
    case Kind::SumFloat:
        return finite(gathered.real);
    case Kind::AvgFloat:
        return finite(gathered.real / static_cast<double>(gathered.count));
    case Kind::StdDev:
        return gathered.count < 2 ? Cell() : finite(std::sqrt(spread(gathered, false)));
    case Kind::StdDevP:
        return finite(std::sqrt(spread(gathered, true)));
    case Kind::Variance:
        return gathered.count < 2 ? Cell() : finite(spread(gathered, false));
    case Kind::VarianceP:
        return finite(spread(gathered, true));
    case Kind::One:
        break;
    }
    return {};
}

void value(sqlite3_context* context) {
    const auto& aggregate = *static_cast<Aggregate*>(sqlite3_user_data(context));
    auto* gathered = static_cast<Gathered*>(sqlite3_aggregate_context(context, 0));
    if (!gathered || gathered->count == 0)
        return sqlite3_result_null(context);
    if (aggregate.kind == Kind::One) {
        if (gathered->value)
            sqlite3_result_value(context, gathered->value);
        return;
    }
    try {
        tsql::resultCell(context, resultOf(aggregate, *gathered));
    } catch (const DbError& error) {
        failWith(context, aggregate.host, error);
    }
}

void finish(sqlite3_context* context) {
    value(context);
    auto* gathered = static_cast<Gathered*>(sqlite3_aggregate_context(context, 0));
    if (gathered && gathered->value) {
        sqlite3_value_free(gathered->value);
        gathered->value = nullptr;
    }
}

void destroy(void* aggregate) {
    delete static_cast<Aggregate*>(aggregate);
}

void add(sqlite3* db, FunctionHost& host, const std::string& name, Kind kind, int scale = 0) {
    auto aggregate = std::make_unique<Aggregate>(Aggregate{kind, scale, host});
    const bool window = kind != Kind::One;
    sqlite3_create_window_function(db, name.c_str(), 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, aggregate.release(), step, finish,
                                   window ? value : nullptr, window ? inverse : nullptr, destroy);
}

} // namespace

void registerAggregates(sqlite3* db, FunctionHost& host) {
    add(db, host, "ts_sum_int", Kind::SumInt);
    add(db, host, "ts_sum_big", Kind::SumBig);
    add(db, host, "ts_sum_money", Kind::SumMoney);
    add(db, host, "ts_sum_dec", Kind::SumDecimal);
    add(db, host, "ts_sum_float", Kind::SumFloat);
    add(db, host, "ts_avg_int", Kind::AvgInt);
    add(db, host, "ts_avg_big", Kind::AvgBig);
    add(db, host, "ts_avg_money", Kind::AvgMoney);
    add(db, host, "ts_avg_float", Kind::AvgFloat);
    for (int scale = 0; scale <= 38; ++scale)
        add(db, host, "ts_avg_dec" + std::to_string(scale), Kind::AvgDecimal, scale);
    add(db, host, "ts_stdev", Kind::StdDev);
    add(db, host, "ts_stdevp", Kind::StdDevP);
    add(db, host, "ts_var_", Kind::Variance);
    add(db, host, "ts_varp", Kind::VarianceP);
    add(db, host, "ts_one", Kind::One);
}

} // namespace merchantry::db::embedded
