#include "app/db/embedded/queries.h"
#include "app/db/embedded/row_view.h"
#include "app/db/embedded/scopes.h"

#include "app/db/tsql/errors.h"

namespace merchantry::db::embedded {

void Queries::select(const tsql::SelectStatement& statement) {
    transaction_.beforeRead();
    const PlanPtr plan = plans_.query(statement);
    if (plan->query->into)
        into(*plan->query, statement.line);
    else if (!plan->query->assignTo.empty())
        assignVariables(*plan);
    else
        sendRows(*plan);
}

void Queries::assignVariables(StatementPlan& plan) {
    const tsql::QueryPlan& query = *plan.query;
    Statement3 spare;
    sqlite3_stmt* statement = evaluator_.prepared(plan, 0, query.sql, spare);
    const ResetGuard guard(statement);
    std::int64_t rows = 0;
    while (parts_.connection.step(statement)) {
        for (std::size_t i = 0; i < query.assignTo.size(); ++i)
            batch_.assign(query.assignTo[i], tsql::columnCell(statement, static_cast<int>(i)));
        if (++rows == batch_.session.settings.rowCount)
            break;
    }
    batch_.session.rowCount = rows;
}

void Queries::sendRows(StatementPlan& plan) {
    const tsql::QueryPlan& query = *plan.query;
    Statement3 spare;
    sqlite3_stmt* statement = evaluator_.prepared(plan, 0, query.sql, spare);
    const ResetGuard guard(statement);
    std::int64_t rows = 0;
    // The first row is fetched before the set begins, so that a statement that fails at once gives no set.
    bool more = parts_.connection.step(statement);
    ResultSink& sink = *batch_.sink;
    sink.beginSet(query.columns);
    const StatementRow row(statement, query.columns);
    while (more) {
        sink.row(row);
        if (++rows == batch_.session.settings.rowCount || batch_.cancelled)
            break;
        more = parts_.connection.step(statement);
    }
    sink.endSet();
    batch_.session.rowCount = rows;
}

// ---- SELECT INTO

void Queries::into(const tsql::QueryPlan& query, int line) {
    const std::string& name = query.into->name;
    const bool temporary = query.into->isTemporary();
    WriteScope scope(transaction_, temporary);
    if (temporary ? parts_.catalog.table({{name}, 1}) != nullptr : parts_.store.find(name) != nullptr)
        throw serverMessage(Message::ObjectExists, {name}, line);
    tsql::TableDef table = *query.into;
    for (tsql::ColumnDef& column : table.columns) {
        if (column.type.kind == TypeKind::Null)
            column.type = tsql::simpleType(TypeKind::Int);
    }
    tables_.make(std::move(table), temporary);
    const std::shared_ptr<const tsql::TableDef> made = parts_.catalog.table({{name}, 1});
    const Statement3 insert = evaluator_.prepared(query.sql, "INSERT INTO " + made->storage + " " + query.sql.text);
    parts_.connection.step(insert.get());
    batch_.session.rowCount = sqlite3_changes64(parts_.connection.handle());
    noteNumbers(*made);
    scope.finish();
}

// The identity column that it took with its numbers goes on behind the last.
void Queries::noteNumbers(const tsql::TableDef& made) {
    const int identity = made.identityColumn();
    if (identity < 0) {
        identities_.forgetLast();
        batch_.frame->scopeIdentity = {};
        return;
    }
    const std::string& column = made.columns[static_cast<std::size_t>(identity)].name;
    const tsql::Cell most = parts_.connection.single("SELECT max(" + tsql::quotedName(column) + ") FROM " + made.storage);
    if (!most.isNull())
        identities_.note(made.id, most.integer);
    identities_.write();
}

} // namespace merchantry::db::embedded
