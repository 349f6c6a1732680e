#include "app/db/embedded/engine.h"
#include "app/db/embedded/row_view.h"
#include "app/db/embedded/scopes.h"

#include "app/db/nativeerrors.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::embedded {
namespace {

bool isTemporaryName(const tsql::ObjectName& name) {
    return !name.last().empty() && (name.last().front() == '#' || name.last().front() == '@');
}

// The trigger's event: I, U or D.
char eventOf(const tsql::ChangePlan& change) {
    static constexpr char kEvents[] = {'I', 'U', 'D'};
    return kEvents[static_cast<int>(change.kind)];
}

} // namespace

void Engine::runInsert(const tsql::InsertStatement& statement) {
    if (statement.execute)
        return insertFromExecute(statement);
    if (!isTemporaryName(statement.table) || transaction_.count() > 0)
        refreshForWrite();
    runChange(plans_.insert(statement));
}

void Engine::runUpdate(const tsql::UpdateStatement& statement) {
    if (!isTemporaryName(statement.table) || transaction_.count() > 0)
        refreshForWrite();
    runChange(plans_.update(statement));
}

void Engine::runDelete(const tsql::DeleteStatement& statement) {
    if (!isTemporaryName(statement.table) || transaction_.count() > 0)
        refreshForWrite();
    runChange(plans_.remove(statement));
}

// In a transaction the lock is taken now, so that what is bound cannot change any more.
void Engine::refreshForWrite() {
    if (transaction_.count() > 0)
        transaction_.beforeWrite();
}

void Engine::runChange(const PlanPtr& plan) {
    if (session_.settings.rowCount > 0)
        throw tsql::unsupported("SET ROWCOUNT for INSERT, UPDATE and DELETE");
    tsql::ChangePlan& change_plan = *plan->change;
    WriteScope scope(transaction_, change_plan.table->isTemporary(), undoesItself(change_plan));
    if (!plans_.isOfThisSchema(*plan) && !change_plan.table->isTemporary())
        throw DbError(DbError::Category::Busy, 1205, "The tables were changed by another user while the statement began. Run it again.")
            .withSeverity(13, 1);
    change(*plan, scope);
    // A trigger that rolled back ends the batch.
    if (scope.isOver()) {
        const DbError ended =
            DbError(DbError::Category::Transaction, 3609, "The transaction ended in the trigger. The batch has been aborted.")
                .withSeverity(16, 1);
        if (batch_.tries > 0)
            throw DbError(ended);
        batch_.note(ended);
        throw BatchEnd{};
    }
    scope.finish();
    batch_.sink->changed(session_.rowCount);
}

// Whether a change is one statement of SQLite and nothing else: no trigger, no OUTPUT, no numbers given, no keys that rows may have to
// swap.
bool Engine::undoesItself(const tsql::ChangePlan& change) {
    if (change.insteadOf != 0 || change.output || !change.newRows.text.empty() || change.table->isTemporary())
        return false;
    return !store_.hasTriggers() || watchedTables(change.table, eventOf(change)).empty();
}

void Engine::change(StatementPlan& plan, WriteScope& scope) {
    const tsql::ChangePlan& change = *plan.change;
    if (change.insteadOf != 0)
        return runInstead(plan);
    const char event = eventOf(change);
    std::int64_t rows = 0;
    const CapturedTables captured = captureOf(change.table, event, change.output != nullptr, [&] { rows = runChangeSql(plan); });
    session_.rowCount = rows;
    if (change.kind == tsql::ChangePlan::Kind::Insert)
        noteScopeIdentity(*change.table, rows);
    if (change.output) {
        const Captured& own = captured.at(lowerCase(change.table->name));
        rows_.define(pseudoName("inserted", change.table->id), *pseudoTable("inserted", *change.table));
        rows_.define(pseudoName("deleted", change.table->id), *pseudoTable("deleted", *change.table));
        rows_.set(pseudoName("inserted", change.table->id), own.inserted);
        rows_.set(pseudoName("deleted", change.table->id), own.deleted);
        runOutput(plan);
    }
    const Restore scopeIdentity(batch_.frame->scopeIdentity);
    {
        const TriggerCount count(transaction_, scope.isOwn());
        fireFor(change, captured, event);
    }
    session_.rowCount = rows;
}

// What an INSERT leaves for SCOPE_IDENTITY: its own number, nothing when the table gives none, and what was before when no row came.
void Engine::noteScopeIdentity(const tsql::TableDef& table, std::int64_t rows) {
    if (table.identityColumn() < 0) {
        identities_.forgetLast();
        batch_.frame->scopeIdentity = {};
    } else if (rows > 0) {
        batch_.frame->scopeIdentity = identities_.last();
    }
}

std::int64_t Engine::runChangeSql(StatementPlan& plan) {
    const tsql::ChangePlan& change = *plan.change;
    identities_.beginStatement();
    try {
        Statement3 spare;
        sqlite3_stmt* statement = evaluator_.prepared(plan, 0, change.sql, spare);
        const ResetGuard guard(statement);
        connection_.step(statement);
    } catch (const DbError& error) {
        if (error.native() == 2627 && error.category() == DbError::Category::Integrity && !change.newRows.text.empty())
            return moveKeys(plan);
        throw conflict(plan, error);
    }
    const std::int64_t rows = sqlite3_changes64(connection_.handle());
    identities_.endStatement();
    return rows;
}

// An UPDATE whose rows take each other's keys on the way: all old rows go, then all new ones come, under their old rowids.
std::int64_t Engine::moveKeys(StatementPlan& plan) {
    const tsql::ChangePlan& change = *plan.change;
    const tsql::TableDef& table = *change.table;
    for (const auto& [other, key] : store_.referencesTo(table.name)) {
        if (!key.onDelete.empty())
            throw refined(serverError(2627, table.name), table, change.kind);
    }
    for (auto& [name, captured] : capture_.tables) {
        captured.inserted->clear();
        captured.deleted->clear();
    }
    connection_.run("PRAGMA defer_foreign_keys=ON");
    const AtEnd atOnce([this] { sqlite3_exec(connection_.handle(), "PRAGMA defer_foreign_keys=OFF", nullptr, nullptr, nullptr); });
    const Rowset rows = evaluator_.rows(change.newRows);
    std::string names = "_rowid_";
    std::string places = "?1";
    int count = 1;
    for (const tsql::ColumnDef& column : table.columns) {
        if (column.computed)
            continue;
        names += "," + tsql::quotedName(column.name);
        places += ",?" + std::to_string(++count);
    }
    try {
        const Statement3 remove(connection_.handle(), "DELETE FROM " + table.storage + " WHERE _rowid_ = ?1");
        const Statement3 insert(connection_.handle(), "INSERT INTO " + table.storage + "(" + names + ") VALUES (" + places + ")");
        for (const std::vector<Cell>& row : rows) {
            const ResetGuard guard(remove.get());
            tsql::bindCell(remove.get(), 1, row[0]);
            connection_.step(remove.get());
        }
        for (const std::vector<Cell>& row : rows) {
            const ResetGuard guard(insert.get());
            for (std::size_t i = 0; i < row.size(); ++i)
                tsql::bindCell(insert.get(), static_cast<int>(i) + 1, row[i]);
            connection_.step(insert.get());
        }
    } catch (const DbError& error) {
        throw refined(error, table, change.kind);
    }
    if (const std::optional<DbError> broken = brokenReference(change))
        throw DbError(*broken);
    return static_cast<std::int64_t>(rows.size());
}

void Engine::runOutput(StatementPlan& plan) {
    const tsql::ChangePlan& change = *plan.change;
    if (!change.outputInto) {
        const Statement3 select = evaluator_.prepared(change.output->sql);
        batch_.sink->beginSet(change.output->columns);
        const StatementRow row(select.get(), change.output->columns);
        while (connection_.step(select.get()))
            batch_.sink->row(row);
        batch_.sink->endSet();
        return;
    }
    const Rowset rows = evaluator_.rows(change.output->sql);
    insertRows(*change.outputInto, rows);
}

// Runs the plan of one row for each of the rows.
void Engine::insertRows(const tsql::ChangePlan& plan, const Rowset& rows) {
    const Statement3 insert(connection_.handle(), plan.sql.text);
    identities_.beginStatement();
    for (const std::vector<Cell>& row : rows) {
        const ResetGuard guard(insert.get());
        for (std::size_t i = 0; i < row.size(); ++i)
            tsql::bindCell(insert.get(), static_cast<int>(i) + 1, row[i]);
        try {
            connection_.step(insert.get());
        } catch (const DbError& error) {
            throw refined(error, *plan.table, tsql::ChangePlan::Kind::Insert);
        }
    }
    identities_.endStatement();
}

void Engine::insertFromExecute(const tsql::InsertStatement& statement) {
    if (batch_.inInsertExec)
        throw tsql::typeError(8164, "An INSERT EXEC statement cannot be nested.", statement.line);
    RowCollector collector(*batch_.sink);
    {
        const InsertExecScope inside(batch_, collector);
        runOne(*statement.execute);
    }
    WriteScope scope(transaction_, isTemporaryName(statement.table));
    std::int64_t rows = 0;
    for (const RowCollector::Set& set : collector.sets) {
        const tsql::ChangePlan plan = plans_.binder().insertRow(statement, set.types);
        const CapturedTables captured = captureOf(plan.table, 'I', false, [&] { insertRows(plan, set.rows); });
        noteScopeIdentity(*plan.table, static_cast<std::int64_t>(set.rows.size()));
        const Restore scopeIdentity(batch_.frame->scopeIdentity);
        fireFor(plan, captured, 'I');
        rows += static_cast<std::int64_t>(set.rows.size());
    }
    scope.finish();
    session_.rowCount = rows;
}

void Engine::runTruncate(const tsql::TruncateStatement& statement) {
    const std::shared_ptr<const tsql::TableDef> table = catalog_.requireTable(statement.table, 4701);
    WriteScope scope(transaction_, table->isTemporary());
    for (const auto& [other, key] : store_.referencesTo(table->name)) {
        if (other->id != table->id)
            throw tsql::typeError(4712,
                                  "Cannot truncate table '" + table->name + "' because it is being referenced by a FOREIGN KEY constraint.",
                                  statement.line);
    }
    connection_.run("DELETE FROM " + table->storage);
    identities_.startOver(table->id);
    scope.finish();
    session_.rowCount = 0;
}

} // namespace merchantry::db::embedded
