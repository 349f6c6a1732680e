#include "app/db/embedded/engine.h"
#include "app/db/embedded/write_scope.h"

#include "app/db/nativeerrors.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::StatementKind;

namespace {

DbError transactionError(int number, const std::string& message) {
    return serverError(number, message).withSeverity(16, 1);
}

} // namespace

// ---- SQLite's transaction

// Reads the number of the schema under the lock of the batch's first read, and the catalogue when it is a new one.
void Engine::refreshSchema() {
    if (inWrite_)
        return;
    if (!inRead_) {
        const ResetGuard guard(begin_.get());
        connection_.step(begin_.get());
        inRead_ = true;
    }
    std::int64_t now = 0;
    {
        const ResetGuard guard(readVersion_.get());
        connection_.step(readVersion_.get());
        now = sqlite3_column_int64(readVersion_.get(), 0);
    }
    if (now != fileVersion_) {
        readCatalogue();
        fileVersion_ = now;
    }
}

// What the file holds since another program, or a rollback, changed it.
void Engine::readCatalogue() {
    if (const TextOrder order = textOrderOf(connection_.handle()); order != textOrder_) {
        registerCollations(connection_.handle(), order);
        textOrder_ = order;
    }
    store_.load();
    modules_.clear();
    ++version_;
}

// One of the statements that are prepared once.
void Engine::runKept(const Statement3& statement) {
    const ResetGuard guard(statement.get());
    connection_.step(statement.get());
}

void Engine::endRead() {
    if (!inRead_)
        return;
    inRead_ = false;
    const ResetGuard guard(commit_.get());
    sqlite3_step(commit_.get());
}

// In a transaction the first statement takes the lock of the writer, also when it only reads: nothing that it saw can change then.
void Engine::beforeRead() {
    if (tranCount_ > 0 && !doomed_)
        beforeWrite();
}

void Engine::beforeWrite() {
    if (doomed_)
        throw transactionError(3930, "The current transaction cannot be committed and cannot support operations that write to the log "
                                     "file. Roll back the transaction.");
    if (inWrite_)
        return;
    endRead();
    connection_.readyToWrite();
    {
        const ResetGuard guard(beginWrite_.get());
        connection_.step(beginWrite_.get());
    }
    inWrite_ = true;
    const ResetGuard guard(readVersion_.get());
    connection_.step(readVersion_.get());
    const std::int64_t now = sqlite3_column_int64(readVersion_.get(), 0);
    if (now == fileVersion_)
        return;
    readCatalogue();
    fileVersion_ = now;
}

// ---- T-SQL's transaction

void Engine::runTransaction(const tsql::TransactionStatement& statement) {
    session_.rowCount = 0;
    std::string name = statement.name;
    if (!name.empty() && name.front() == '@')
        name = batch_.frame->variables[static_cast<std::size_t>(tsql::Binder(bindContext()).variableSlot(name, statement.line))].bytes;
    switch (statement.kind) {
    case StatementKind::Begin:
        if (tranCount_ == 0)
            transactionName_ = name;
        return beginTransaction();
    case StatementKind::Commit:
        return commitTransaction();
    case StatementKind::Save:
        return savePoint(name);
    default:
        if (tranCount_ == 0)
            throw transactionError(3903, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
        if (name.empty() || tsql::sameName(name, transactionName_))
            return rollbackAll();
        return rollbackTo(name);
    }
}

void Engine::beginTransaction() {
    ++tranCount_;
}

void Engine::commitTransaction() {
    if (tranCount_ == 0)
        throw transactionError(3902, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION.");
    if (doomed_)
        throw transactionError(3930, "The current transaction cannot be committed and cannot support operations that write to the log "
                                     "file. Roll back the transaction.");
    if (tranCount_ > 1) {
        --tranCount_;
        return;
    }
    if (inWrite_) {
        identities_.write();
        runKept(commit_);
        inWrite_ = false;
    }
    tranCount_ = 0;
    schemaTouched_ = false;
    savedPoints_.clear();
    droppedTemporaries_.clear();
}

void Engine::rollbackAll() {
    const bool undone = inWrite_;
    KeptTables kept;
    if (undone)
        batch_.noting([&] { kept = keepTableVariables(); });
    if (inWrite_ || inRead_) {
        const ResetGuard guard(rollback_.get());
        sqlite3_step(rollback_.get());
    }
    inWrite_ = false;
    inRead_ = false;
    tranCount_ = 0;
    doomed_ = false;
    identities_.rolledBack();
    savedPoints_.clear();
    ++transaction_;
    if (undone) {
        batch_.noting([&] {
            restoreTemporaries();
            restoreTableVariables(kept);
        });
    }
    droppedTemporaries_.clear();
    if (schemaTouched_) {
        schemaTouched_ = false;
        fileVersion_ = -1;
        ++version_;
        batch_.noting([&] { refreshSchema(); });
    }
}

// Temporary tables that were made in the transaction are gone with it; dropped ones are there again.
void Engine::restoreTemporaries() {
    const auto exists = [&](const tsql::TableDef& table) {
        const Statement3 find(
            connection_.handle(),
            "SELECT 1 FROM sqlite_temp_schema WHERE type = 'table' AND 'temp.\"' || replace(name, '\"', '\"\"') || '\"' = ?1");
        sqlite3_bind_text(find.get(), 1, table.storage.c_str(), -1, SQLITE_TRANSIENT);
        return connection_.step(find.get());
    };
    for (const std::shared_ptr<const tsql::TableDef>& table : temporaries_.all()) {
        if (table->name.front() == '@' || exists(*table))
            continue;
        temporaries_.pop(table->name);
    }
    for (const std::shared_ptr<const tsql::TableDef>& table : droppedTemporaries_) {
        if (!exists(*table))
            continue;
        temporaries_.push(table);
    }
}

// Table variables keep their rows over a rollback.
Engine::KeptTables Engine::keepTableVariables() {
    KeptTables kept;
    for (const std::shared_ptr<const tsql::TableDef>& table : temporaries_.all()) {
        if (table->name.front() != '@')
            continue;
        tsql::Sql3 all;
        all.text = "SELECT * FROM " + table->storage;
        kept.emplace_back(table, rowsOf(all));
    }
    return kept;
}

void Engine::restoreTableVariables(const KeptTables& kept) {
    for (const auto& [table, rows] : kept) {
        const std::string& storage = table->storage;
        connection_.run("DROP TABLE IF EXISTS " + storage);
        builder_.build(*table);
        for (const std::vector<Cell>& row : rows) {
            std::string places;
            for (std::size_t i = 0; i < row.size(); ++i)
                places += (i > 0 ? ",?" : "?") + std::to_string(i + 1);
            const Statement3 insert(connection_.handle(), "INSERT INTO " + storage + " VALUES (" + places + ")");
            for (std::size_t i = 0; i < row.size(); ++i)
                tsql::bindCell(insert.get(), static_cast<int>(i) + 1, row[i]);
            connection_.step(insert.get());
        }
    }
}

void Engine::savePoint(const std::string& name) {
    if (tranCount_ == 0)
        throw transactionError(628, "Cannot issue SAVE TRANSACTION when there is no active transaction.");
    beforeWrite();
    const std::string sqlName = "ts_p" + std::to_string(++savedPointNumber_);
    connection_.run("SAVEPOINT " + sqlName);
    savedPoints_.push_back({name, sqlName});
}

void Engine::rollbackTo(const std::string& name) {
    if (doomed_)
        throw transactionError(
            3931,
            "The current transaction cannot be committed and cannot be rolled back to a savepoint. Roll back the entire transaction.");
    const auto found =
        std::find_if(savedPoints_.rbegin(), savedPoints_.rend(), [&](const SavedPoint& point) { return tsql::sameName(point.name, name); });
    if (found == savedPoints_.rend())
        throw transactionError(6401, "Cannot roll back " + name + ". No transaction or savepoint of that name was found.");
    const KeptTables kept = keepTableVariables();
    connection_.run("ROLLBACK TO " + found->sqlName);
    savedPoints_.erase(found.base(), savedPoints_.end());
    restoreTemporaries();
    restoreTableVariables(kept);
    if (schemaTouched_) {
        readCatalogue();
        fileVersion_ = scalar("PRAGMA user_version");
    }
}

std::int64_t Engine::scalar(const std::string& sql) {
    return connection_.single(sql).integer;
}

// ---- one statement's piece of it

WriteScope::WriteScope(Engine& engine, bool temporaryOnly, bool undoesItself) : engine_(engine) {
    if (temporaryOnly && engine_.tranCount_ == 0 && !engine_.inWrite_) {
        // SQLite's own statement is enough; the file is not locked.
        engine_.endRead();
        engine_.runKept(engine_.savepoint_);
        mode_ = Mode::Temporary;
        transaction_ = engine_.transaction_;
        return;
    }
    const bool own = engine_.tranCount_ == 0 && !engine_.inWrite_;
    engine_.beforeWrite();
    mode_ = own ? Mode::Own : undoesItself ? Mode::Itself : Mode::SavePoint;
    transaction_ = engine_.transaction_;
    if (mode_ == Mode::SavePoint)
        engine_.runKept(engine_.savepoint_);
}

bool WriteScope::isOver() const {
    return transaction_ != engine_.transaction_;
}

void WriteScope::finish() {
    if (isOver())
        return;
    if (mode_ == Mode::Own) {
        engine_.identities_.write();
        engine_.runKept(engine_.commit_);
        engine_.inWrite_ = false;
        engine_.schemaTouched_ = false;
        engine_.droppedTemporaries_.clear();
    } else if (mode_ != Mode::Itself) {
        engine_.runKept(engine_.release_);
    }
    mode_ = Mode::Done;
}

WriteScope::~WriteScope() {
    if (mode_ == Mode::Done || mode_ == Mode::Itself || isOver())
        return;
    if (mode_ == Mode::Own) {
        engine_.rollbackAll();
        return;
    }
    sqlite3_exec(engine_.connection_.handle(), "ROLLBACK TO ts_statement; RELEASE ts_statement", nullptr, nullptr, nullptr);
}

TriggerCount::TriggerCount(Engine& engine, bool own)
    : engine_(engine), own_(own && engine.tranCount_ == 0), transaction_(engine.transaction_) {
    if (own_)
        engine_.tranCount_ = 1;
}

TriggerCount::~TriggerCount() {
    if (own_ && transaction_ == engine_.transaction_)
        engine_.tranCount_ = 0;
}

} // namespace merchantry::db::embedded
