#pragma once

#include "app/db/dberror.h"
#include "app/db/tsql/ast.h"

#include <string_view>
#include <vector>

namespace merchantry::db::tsql {

// The parts of a date, by the number under which the engine's functions know them.
enum class DatePart { Year, Quarter, Month, DayOfYear, Day, Week, Weekday, Hour, Minute, Second, Millisecond };

// -1 for a word that is no part of a date.
int datePartOf(std::string_view word);

// Whether a name is that of a function over the rows of a group, or over ranked rows.
bool isAggregate(std::string_view name);
bool isRanking(std::string_view name);

// The names of all built-in functions that are written as calls, aggregates and ranking functions among them.
std::vector<std::string_view> builtInFunctions();
std::vector<std::string_view> aggregateNames();
std::vector<std::string_view> rankingNames();

// The call of a function has another number of arguments than it wants (174).
DbError wrongCount(const Expr& expr, int wanted);

} // namespace merchantry::db::tsql
