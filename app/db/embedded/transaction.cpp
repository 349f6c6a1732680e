#include "app/db/embedded/transaction.h"

#include "app/db/messages.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::embedded {

Transaction::Transaction(Connection& connection, BatchState& batch, SchemaVersion& schema, Identities& identities,
                         TemporaryUndo& temporaries)
    : connection_(connection), batch_(batch), schema_(schema), identities_(identities), temporaries_(temporaries),
      begin_(connection.handle(), "BEGIN", true), beginWrite_(connection.handle(), "BEGIN IMMEDIATE", true),
      commit_(connection.handle(), "COMMIT", true), rollback_(connection.handle(), "ROLLBACK", true),
      savepoint_(connection.handle(), "SAVEPOINT ts_statement", true), release_(connection.handle(), "RELEASE ts_statement", true) {}

void Transaction::run(const Statement3& statement) {
    const ResetGuard guard(statement.get());
    connection_.step(statement.get());
}

// ---- SQLite's

void Transaction::refresh() {
    if (inWrite_)
        return;
    if (!inRead_) {
        run(begin_);
        inRead_ = true;
    }
    schema_.refresh();
}

void Transaction::endRead() {
    if (!inRead_)
        return;
    inRead_ = false;
    const ResetGuard guard(commit_.get());
    sqlite3_step(commit_.get());
}

// In a transaction the first statement takes the lock of the writer, also when it only reads: nothing that it saw can change then.
void Transaction::beforeRead() {
    if (count_ > 0 && !doomed_)
        beforeWrite();
}

void Transaction::beforeWrite() {
    requireSound();
    if (inWrite_)
        return;
    endRead();
    connection_.readyToWrite();
    run(beginWrite_);
    inWrite_ = true;
    schema_.refresh();
}

void Transaction::endBatch() {
    endRead();
    if (doomed_) {
        rollbackAll();
        batch_.note(serverMessage(Message::UncommittableAtEnd));
    }
    if (count_ == 0 && inWrite_)
        rollbackAll();
}

void Transaction::reset() {
    if (count_ > 0 || inWrite_ || inRead_)
        rollbackAll();
}

// ---- T-SQL's

void Transaction::begin(const std::string& name) {
    if (count_ == 0)
        name_ = name;
    ++count_;
}

void Transaction::requireSound() const {
    if (doomed_)
        throw serverMessage(Message::Uncommittable);
}

void Transaction::commit() {
    if (count_ == 0)
        throw serverMessage(Message::CommitWithoutBegin);
    requireSound();
    if (count_ > 1) {
        --count_;
        return;
    }
    if (inWrite_)
        commitStatement();
    count_ = 0;
    ++endings_;
    closed();
}

void Transaction::closed() {
    schema_.settle();
    savedPoints_.clear();
    temporaries_.forget();
}

void Transaction::rollback(const std::string& name) {
    if (count_ == 0)
        throw serverMessage(Message::RollbackWithoutBegin);
    if (!name.empty() && !tsql::sameName(name, name_))
        return rollbackTo(name);
    if (batch_.inInsertExec) // the rows of it would stand alone
        throw serverMessage(Message::RollbackInInsertExec);
    rollbackAll();
}

void Transaction::rollbackAll() {
    const bool undone = inWrite_;
    TemporaryUndo::Rows rows;
    if (undone)
        batch_.noting([&] { rows = temporaries_.rowsOfVariables(); });
    if (inWrite_ || inRead_) {
        const ResetGuard guard(rollback_.get());
        sqlite3_step(rollback_.get());
    }
    inWrite_ = false;
    inRead_ = false;
    count_ = 0;
    doomed_ = false;
    identities_.rolledBack();
    ++endings_;
    if (undone)
        batch_.noting([&] { temporaries_.restore(rows); });
    const bool touched = schema_.touched();
    closed();
    if (touched) {
        schema_.distrust();
        batch_.noting([&] { refresh(); });
    }
}

void Transaction::savePoint(const std::string& name) {
    if (count_ == 0)
        throw serverMessage(Message::SaveWithoutBegin);
    beforeWrite();
    const std::string sqlName = "ts_p" + std::to_string(++savedPointNumber_);
    connection_.run("SAVEPOINT " + sqlName);
    savedPoints_.push_back({name, sqlName});
}

void Transaction::rollbackTo(const std::string& name) {
    if (doomed_)
        throw serverMessage(Message::UncommittableSavePoint);
    const auto found =
        std::find_if(savedPoints_.rbegin(), savedPoints_.rend(), [&](const SavedPoint& point) { return tsql::sameName(point.name, name); });
    if (found == savedPoints_.rend())
        throw serverMessage(Message::UnknownSavePoint, {name});
    const TemporaryUndo::Rows rows = temporaries_.rowsOfVariables();
    connection_.run("ROLLBACK TO " + found->sqlName);
    savedPoints_.erase(found.base(), savedPoints_.end());
    temporaries_.restore(rows);
    if (schema_.touched())
        schema_.readAgain();
}

// ---- one statement's piece of it

void Transaction::beginStatement() {
    run(savepoint_);
}

void Transaction::keepStatement() {
    run(release_);
}

void Transaction::undoStatement() {
    sqlite3_exec(connection_.handle(), "ROLLBACK TO ts_statement; RELEASE ts_statement", nullptr, nullptr, nullptr);
}

void Transaction::commitStatement() {
    identities_.write();
    run(commit_);
    inWrite_ = false;
    schema_.settle();
    temporaries_.forget();
}

} // namespace merchantry::db::embedded
