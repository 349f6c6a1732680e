#include "app/db/embedded/engine.h"
#include "app/db/embedded/row_view.h"
#include "app/db/embedded/scopes.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

namespace merchantry::db::embedded {

void Engine::runSelect(const tsql::SelectStatement& statement) {
    transaction_.beforeRead();
    const PlanPtr plan = plans_.query(statement);
    if (plan->query->into)
        return selectInto(*plan, statement);
    runQuery(*plan, *batch_.sink);
}

void Engine::runQuery(StatementPlan& plan, ResultSink& sink) {
    const tsql::QueryPlan& query = *plan.query;
    Statement3 spare;
    sqlite3_stmt* statement = evaluator_.prepared(plan, 0, query.sql, spare);
    const ResetGuard guard(statement);
    std::int64_t rows = 0;
    if (!query.assignTo.empty()) {
        while (connection_.step(statement)) {
            for (std::size_t i = 0; i < query.assignTo.size(); ++i)
                batch_.assign(query.assignTo[i], tsql::columnCell(statement, static_cast<int>(i)));
            if (++rows == session_.settings.rowCount)
                break;
        }
        session_.rowCount = rows;
        return;
    }
    // The first row is fetched before the set begins, so that a statement that fails at once gives no set.
    bool more = connection_.step(statement);
    sink.beginSet(query.columns);
    const StatementRow row(statement, query.columns);
    while (more) {
        sink.row(row);
        if (++rows == session_.settings.rowCount || batch_.cancelled)
            break;
        more = connection_.step(statement);
    }
    sink.endSet();
    session_.rowCount = rows;
}

void Engine::selectInto(StatementPlan& plan, const tsql::Statement& statement) {
    const tsql::QueryPlan& query = *plan.query;
    const bool temporary = query.into->isTemporary();
    WriteScope scope(transaction_, temporary);
    if (temporary ? catalog_.table({{query.into->name}, 1}) != nullptr : store_.find(query.into->name) != nullptr)
        throw tsql::nameError(2714, "There is already an object named '" + query.into->name + "' in the database.", statement.line);
    tsql::TableDef table = *query.into;
    for (tsql::ColumnDef& column : table.columns) {
        if (column.type.kind == TypeKind::Null)
            column.type = tsql::simpleType(TypeKind::Int);
    }
    tables_.make(table, temporary);
    const std::shared_ptr<const tsql::TableDef> made = catalog_.table({{table.name}, 1});
    const Statement3 insert = evaluator_.prepared(query.sql, "INSERT INTO " + made->storage + " " + query.sql.text);
    connection_.step(insert.get());
    session_.rowCount = sqlite3_changes64(connection_.handle());
    if (const int identity = made->identityColumn(); identity >= 0) {
        const Cell most = connection_.single("SELECT max(" + tsql::quotedName(made->columns[static_cast<std::size_t>(identity)].name) +
                                             ") FROM " + made->storage);
        if (!most.isNull())
            identities_.note(made->id, most.integer);
        identities_.write();
    }
    scope.finish();
}

} // namespace merchantry::db::embedded
