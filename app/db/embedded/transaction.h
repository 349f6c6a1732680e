#pragma once

#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/connection.h"
#include "app/db/embedded/identities.h"
#include "app/db/embedded/schema_version.h"
#include "app/db/embedded/temporary_undo.h"

#include <string>
#include <vector>

namespace merchantry::db::embedded {

// The transaction of a session: T-SQL's, which BEGIN TRANSACTION counts, over SQLite's, which the first statement opens. Outside of one a
// batch reads under one lock, and each statement that writes is a transaction of its own (WriteScope). What it refuses is a DbError
// Transaction.
class Transaction {
public:
    Transaction(Connection& connection, BatchState& batch, SchemaVersion& schema, Identities& identities, TemporaryUndo& temporaries);

    // T-SQL's.
    int count() const { return count_; }
    bool isDoomed() const { return doomed_; }
    // From now on it can only be rolled back. Without effect outside of one.
    void doom() { doomed_ = doomed_ || count_ > 0; }
    void begin(const std::string& name = {});
    void commit();
    // All of it, or to the saved point of that name.
    void rollback(const std::string& name = {});
    void savePoint(const std::string& name);
    // Throws nothing: its own errors are noted as more of the batch.
    void rollbackAll();
    // Changes when it ends, by a rollback of all or its last commit: who ran something can tell that the transaction it ran in is over.
    std::uint64_t endings() const { return endings_; }
    // Whether SQLite has a transaction open that a statement's own changes belong to.
    bool isOpen() const { return count_ > 0 || inWrite_; }
    bool isWriting() const { return inWrite_; }

    // SQLite's. The first read of a batch takes the lock, under which the definitions are as they were read last, or read now.
    void refresh();
    void beforeRead();
    // Takes the lock of the writer.
    void beforeWrite();
    void endRead();
    // Rolls back what cannot stay open behind a batch.
    void endBatch();
    // As a new session has it.
    void reset();

    // For the guards of scopes.h: one statement's piece of it.
    void beginStatement();
    void keepStatement();
    void undoStatement();
    // A statement that was a transaction of its own.
    void commitStatement();
    void endCount() { count_ = 0; }

private:
    struct SavedPoint {
        std::string name;
        std::string sqlName;
    };
    void rollbackTo(const std::string& name);
    void requireSound() const;
    void run(const Statement3& statement);
    void closed();

    Connection& connection_;
    BatchState& batch_;
    SchemaVersion& schema_;
    Identities& identities_;
    TemporaryUndo& temporaries_;

    Statement3 begin_;
    Statement3 beginWrite_;
    Statement3 commit_;
    Statement3 rollback_;
    Statement3 savepoint_; // of a statement within a transaction
    Statement3 release_;

    int count_ = 0;
    bool inWrite_ = false; // SQLite has a write transaction open
    bool inRead_ = false;
    bool doomed_ = false;
    std::uint64_t endings_ = 0;
    std::string name_;
    std::vector<SavedPoint> savedPoints_;
    int savedPointNumber_ = 0;
};

} // namespace merchantry::db::embedded
