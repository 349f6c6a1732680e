#include "app/db/embedded/engine.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::StatementKind;

// The statement of SQLite at that place of a plan. One that is still running further out is left alone: the spare one takes its part.
sqlite3_stmt* Engine::prepared(StatementPlan& plan, std::size_t index, const tsql::Sql3& sql, Statement3& spare) {
    Statement3& own = plan.statements[index];
    if (!own)
        own = Statement3(connection_.handle(), sql.text, batch_.frame->code->module != nullptr);
    if (!own.busy()) {
        bindPlaces(own.get(), sql.places);
        return own.get();
    }
    spare = Statement3(connection_.handle(), sql.text);
    bindPlaces(spare.get(), sql.places);
    return spare.get();
}

void Engine::bindPlaces(sqlite3_stmt* statement, const std::vector<tsql::Placeholder>& places) {
    int index = 0;
    for (const tsql::Placeholder& place : places) {
        ++index;
        if (place.system) {
            tsql::bindCell(statement, index, systemValue(static_cast<tsql::SystemValue>(place.slot)));
            continue;
        }
        const Cell& cell = batch_.frame->variables[static_cast<std::size_t>(place.slot)];
        // Variables stay where they are while the statement runs.
        if (cell.kind == Cell::Kind::Text)
            sqlite3_bind_text(statement, index, cell.bytes.data(), static_cast<int>(cell.bytes.size()), SQLITE_STATIC);
        else
            tsql::bindCell(statement, index, cell);
    }
}

Cell Engine::valueAt(StatementPlan& plan, std::size_t index) {
    const tsql::ValuePlan& value = plan.values[index];
    if (value.isLiteral)
        return value.literal;
    if (value.variable >= 0)
        return batch_.frame->variables[static_cast<std::size_t>(value.variable)];
    if (value.sql.text.find(" FROM ") != std::string::npos)
        transaction_.beforeRead();
    Statement3 spare;
    sqlite3_stmt* statement = prepared(plan, index, value.sql, spare);
    const ResetGuard guard(statement);
    return connection_.step(statement) ? tsql::columnCell(statement, 0) : Cell();
}

bool Engine::conditionOf(const tsql::Statement& statement, const tsql::Expr& expr) {
    const PlanPtr plan = plans_.condition(statement, expr);
    return valueAt(*plan, 0).integer != 0;
}

} // namespace merchantry::db::embedded
