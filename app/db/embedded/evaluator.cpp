#include "app/db/embedded/evaluator.h"

namespace merchantry::db::embedded {

using tsql::Cell;

void Evaluator::bindPlaces(sqlite3_stmt* statement, const std::vector<tsql::Placeholder>& places) {
    int index = 0;
    for (const tsql::Placeholder& place : places) {
        ++index;
        if (place.system) {
            tsql::bindCell(statement, index, system_.of(static_cast<tsql::SystemValue>(place.slot)));
            continue;
        }
        const Cell& cell = batch_.value(place.slot);
        // Variables stay where they are while the statement runs.
        if (cell.kind == Cell::Kind::Text)
            sqlite3_bind_text(statement, index, cell.bytes.data(), static_cast<int>(cell.bytes.size()), SQLITE_STATIC);
        else
            tsql::bindCell(statement, index, cell);
    }
}

void Evaluator::bindRow(sqlite3_stmt* statement, const std::vector<tsql::Placeholder>& places, const std::vector<Cell>& row) {
    int index = 0;
    for (const tsql::Placeholder& place : places)
        tsql::bindCell(statement, ++index,
                       place.system ? system_.of(static_cast<tsql::SystemValue>(place.slot)) : row[static_cast<std::size_t>(place.slot)]);
}

sqlite3_stmt* Evaluator::prepared(StatementPlan& plan, std::size_t index, const tsql::Sql3& sql, Statement3& spare) {
    Statement3& own = plan.statements[index];
    if (!own)
        own = Statement3(connection_.handle(), sql.text, batch_.frame->code->module != nullptr);
    if (!own.busy()) {
        bindPlaces(own.get(), sql.places);
        return own.get();
    }
    spare = prepared(sql);
    return spare.get();
}

Statement3 Evaluator::prepared(const tsql::Sql3& sql, const std::string& text) {
    Statement3 statement(connection_.handle(), text);
    bindPlaces(statement.get(), sql.places);
    return statement;
}

Cell Evaluator::value(StatementPlan& plan, std::size_t index) {
    const tsql::ValuePlan& value = plan.values[index];
    if (value.isLiteral)
        return value.literal;
    if (value.variable >= 0)
        return batch_.value(value.variable);
    if (value.readsTables)
        transaction_.beforeRead();
    Statement3 spare;
    sqlite3_stmt* statement = prepared(plan, index, value.sql, spare);
    const ResetGuard guard(statement);
    return connection_.step(statement) ? tsql::columnCell(statement, 0) : Cell();
}

bool Evaluator::condition(const tsql::Statement& statement, const tsql::Expr& expr) {
    return value(*plans_.condition(statement, expr)).integer != 0;
}

Cell Evaluator::once(const tsql::Expr& expr, SqlType& type) {
    const tsql::ValuePlan plan = plans_.binder().value(expr);
    type = plan.type;
    if (plan.isLiteral)
        return plan.literal;
    if (plan.variable >= 0)
        return batch_.value(plan.variable);
    const Statement3 statement = prepared(plan.sql);
    return connection_.step(statement.get()) ? tsql::columnCell(statement.get(), 0) : Cell();
}

Rowset Evaluator::rows(const tsql::Sql3& sql) {
    const Statement3 statement = prepared(sql);
    return rowsOf(connection_, statement.get());
}

} // namespace merchantry::db::embedded
