#include "app/db/embedded/changes.h"
#include "app/db/embedded/row_view.h"
#include "app/db/embedded/scopes.h"

#include "app/db/messages.h"
#include "app/db/tsql/errors.h"
#include "base/lettercase.h"

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

void Changes::insert(const tsql::InsertStatement& statement) {
    if (statement.execute)
        return insertFromExecute(statement);
    lock();
    run(plans_.insert(statement));
}

void Changes::update(const tsql::UpdateStatement& statement) {
    lock();
    run(plans_.update(statement));
}

void Changes::remove(const tsql::DeleteStatement& statement) {
    lock();
    run(plans_.remove(statement));
}

// In a transaction the lock is taken now, so that what is bound cannot change any more.
void Changes::lock() {
    if (transaction_.count() > 0)
        transaction_.beforeWrite();
}

void Changes::run(const PlanPtr& plan) {
    if (batch_.session.settings.rowCount > 0)
        throw tsql::unsupported("SET ROWCOUNT for INSERT, UPDATE and DELETE");
    const tsql::ChangePlan& bound = *plan->change;
    WriteScope scope(transaction_, bound.table->isTemporary(), undoesItself(bound));
    if (!plans_.isOfThisSchema(*plan) && !bound.table->isTemporary())
        throw serverError(1205, "The tables were changed by another user while the statement began. Run it again.").withSeverity(13, 1);
    change(*plan, scope);
    requireUnended(scope);
    scope.finish();
    if (!batch_.session.settings.noCount)
        batch_.sink->changed(batch_.session.rowCount);
}

// A trigger that ended the transaction ends the batch, and so does one that caught an error: nothing of its statement may be kept.
void Changes::requireUnended(const WriteScope& scope) {
    if (!scope.isOver() && !transaction_.isDoomed())
        return;
    const DbError ended = serverMessage(scope.isOver() ? Message::EndedInTrigger : Message::ErrorInTrigger);
    if (batch_.tries > 0)
        throw DbError(ended);
    batch_.note(ended);
    if (!scope.isOver())
        transaction_.rollbackAll();
    throw BatchEnd{};
}

// Whether a change is one statement of SQLite and nothing else: no trigger, no OUTPUT, no numbers given, no keys that rows may have to
// swap.
bool Changes::undoesItself(const tsql::ChangePlan& change) {
    if (change.insteadOf != 0 || change.output || !change.newRows.text.empty() || change.table->isTemporary())
        return false;
    return triggers_.watched(change.table, eventOf(change)).empty();
}

// The tables whose changed rows a trigger wants, and always the table itself for an OUTPUT clause.
Tables Changes::capturedFor(const tsql::ChangePlan& change) {
    Tables tables = triggers_.watched(change.table, eventOf(change));
    const auto isIt = [&](const auto& one) { return one->id == change.table->id; };
    if (change.output && std::none_of(tables.begin(), tables.end(), isIt))
        tables.push_back(change.table);
    return tables;
}

void Changes::change(StatementPlan& plan, WriteScope& scope) {
    const tsql::ChangePlan& change = *plan.change;
    if (change.insteadOf != 0)
        return changeInstead(plan);
    std::int64_t rows = 0;
    const ChangedTables changed = capture_.during(capturedFor(change), [&] { rows = runSql(plan); });
    batch_.session.rowCount = rows;
    if (change.kind == tsql::ChangePlan::Kind::Insert)
        noteScopeIdentity(*change.table, rows);
    if (change.output) {
        triggers_.show(changed.at(lowerCase(change.table->name)));
        output(change);
    }
    {
        const TriggersScope firing(batch_);
        const TriggerCount count(transaction_, scope.isOwn());
        triggers_.fireAfter(change, changed, eventOf(change));
    }
    batch_.session.rowCount = rows;
}

void Changes::changeInstead(StatementPlan& plan) {
    const tsql::ChangePlan& change = *plan.change;
    auto inserted = std::make_shared<Rowset>();
    auto deleted = std::make_shared<Rowset>();
    if (!change.insteadNew.text.empty())
        *inserted = evaluator_.rows(change.insteadNew);
    if (!change.insteadOld.text.empty())
        *deleted = evaluator_.rows(change.insteadOld);
    {
        const TriggerCount count(transaction_, true);
        const InsteadScope instead(catalog_, change.insteadOf);
        triggers_.fireInstead(change, eventOf(change), inserted, deleted);
    }
    batch_.session.rowCount = static_cast<std::int64_t>(std::max(inserted->size(), deleted->size()));
}

// What an INSERT leaves for SCOPE_IDENTITY: its own number, nothing when the table gives none, and what was before when no row came.
void Changes::noteScopeIdentity(const tsql::TableDef& table, std::int64_t rows) {
    if (table.identityColumn() < 0) {
        identities_.forgetLast();
        batch_.frame->scopeIdentity = {};
    } else if (rows > 0) {
        batch_.frame->scopeIdentity = identities_.last();
    }
}

std::int64_t Changes::runSql(StatementPlan& plan) {
    const tsql::ChangePlan& change = *plan.change;
    identities_.beginStatement();
    try {
        Statement3 spare;
        sqlite3_stmt* statement = evaluator_.prepared(plan, 0, change.sql, spare);
        const ResetGuard guard(statement);
        connection_.step(statement);
    } catch (const DbError& error) {
        if (error.native() == 2627 && error.category() == DbError::Category::Integrity && !change.newRows.text.empty())
            return mover_.move(change);
        throw conflicts_.of(plan, error);
    }
    const std::int64_t rows = sqlite3_changes64(connection_.handle());
    identities_.endStatement();
    return rows;
}

void Changes::output(const tsql::ChangePlan& change) {
    if (change.outputInto)
        return insertRows(*change.outputInto, evaluator_.rows(change.output->sql));
    const Statement3 select = evaluator_.prepared(change.output->sql);
    batch_.sink->beginSet(change.output->columns);
    const StatementRow row(select.get(), change.output->columns);
    while (connection_.step(select.get()))
        batch_.sink->row(row);
    batch_.sink->endSet();
}

// Runs the plan of one row for each of the rows.
void Changes::insertRows(const tsql::ChangePlan& plan, const Rowset& rows) {
    const Statement3 insert(connection_.handle(), plan.sql.text);
    identities_.beginStatement();
    for (const std::vector<tsql::Cell>& row : rows) {
        const ResetGuard guard(insert.get());
        evaluator_.bindRow(insert.get(), plan.sql.places, row);
        try {
            connection_.step(insert.get());
        } catch (const DbError& error) {
            throw Conflicts::named(error, *plan.table, tsql::ChangePlan::Kind::Insert);
        }
    }
    identities_.endStatement();
}

void Changes::insertFromExecute(const tsql::InsertStatement& statement) {
    if (batch_.inInsertExec)
        throw serverMessage(Message::NestedInsertExec, {}, statement.line);
    if (const StoredObject* object = store_.find(statement.table.last()); object && catalog_.hasInsteadTrigger(object->id, "insert"))
        throw tsql::unsupported("INSERT EXEC into what has an INSTEAD OF trigger", statement.line);
    RowCollector collector(*batch_.sink);
    {
        const InsertExecScope inside(batch_, collector);
        runner_.runInner(*statement.execute);
    }
    WriteScope scope(transaction_, isTemporaryName(statement.table));
    std::int64_t rows = 0;
    for (const RowCollector::Set& set : collector.sets) {
        const tsql::ChangePlan plan = plans_.binder().insertRow(statement, set.types);
        const ChangedTables changed = capture_.during(triggers_.watched(plan.table, 'I'), [&] { insertRows(plan, set.rows); });
        const auto inserted = static_cast<std::int64_t>(set.rows.size());
        noteScopeIdentity(*plan.table, inserted);
        {
            const TriggersScope firing(batch_);
            const TriggerCount count(transaction_, scope.isOwn());
            triggers_.fireAfter(plan, changed, 'I');
        }
        rows += inserted;
        requireUnended(scope);
    }
    scope.finish();
    batch_.session.rowCount = rows;
}

void Changes::truncate(const tsql::TruncateStatement& statement) {
    const std::shared_ptr<const tsql::TableDef> table = catalog_.requireTable(statement.table, Message::TruncateUnknownTable);
    WriteScope scope(transaction_, table->isTemporary());
    for (const auto& [other, key] : store_.referencesTo(table->name)) {
        if (other->id != table->id)
            throw serverMessage(Message::TruncateReferenced, {table->name}, statement.line);
    }
    connection_.run("DELETE FROM " + table->storage);
    identities_.startOver(table->id);
    scope.finish();
    batch_.session.rowCount = 0;
}

} // namespace merchantry::db::embedded
