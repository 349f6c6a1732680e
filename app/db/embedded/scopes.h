#pragma once

#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/change_capture.h"
#include "app/db/embedded/identities.h"
#include "app/db/embedded/session_catalog.h"
#include "app/db/embedded/temporary_tables.h"
#include "app/db/embedded/transaction.h"
#include "base/guard.h"

namespace merchantry::db::embedded {

// What changes while a part of a batch runs. Each of these stands for one such part and puts back what was before when it goes.

// A batch begins. One that a sink runs while it takes rows gives the outer batch its state back.
class BatchScope {
public:
    BatchScope(BatchState& batch, ResultSink& sink)
        : errors_(batch.errors, std::vector<DbError>()), caught_(batch.caught, std::vector<DbError>()), tries_(batch.tries, 0),
          level_(batch.level, 0), sink_(batch.sink, &sink), frame_(batch.frame, nullptr) {
        batch.cancelled = false;
    }

private:
    Restore<std::vector<DbError>> errors_;
    Restore<std::vector<DbError>> caught_;
    Restore<int> tries_;
    Restore<int> level_;
    Restore<ResultSink*> sink_;
    Restore<Frame*> frame_;
};

// A batch, module or text runs; its table variables are its own.
class FrameScope {
public:
    FrameScope(BatchState& batch, TemporaryTables& temporaries, Frame& frame)
        : frame_(batch.frame, below(batch, frame)), tables_(temporaries.scope, ++batch.scopeNumber) {}

private:
    static Frame* below(const BatchState& batch, Frame& frame);
    Restore<Frame*> frame_;
    Restore<std::int64_t> tables_;
};

// Something is worked out as another frame sees it: the default of a parameter as the module that is about to run, the query of a cursor
// as where that was declared.
class SeenFromScope {
public:
    SeenFromScope(BatchState& batch, Frame& frame) : frame_(batch.frame, &frame) {}

private:
    Restore<Frame*> frame_;
};

// One level deeper, for a module or text that another one runs; throws DbError 217 below the deepest.
class LevelScope {
public:
    explicit LevelScope(BatchState& batch) : level_(batch.level, deeper(batch.level)) {}

private:
    static int deeper(int level);
    Restore<int> level_;
};

// What runs within a TRY: its errors are thrown.
class TryScope {
public:
    explicit TryScope(BatchState& batch) : tries_(batch.tries, batch.tries + 1) {}

private:
    Restore<int> tries_;
};

// A CATCH block handles the error, which ERROR_NUMBER() and its kin tell of.
class CatchScope {
public:
    CatchScope(BatchState& batch, const DbError& error) : batch_(batch) { batch_.caught.push_back(error); }
    ~CatchScope() { batch_.caught.pop_back(); }
    CatchScope(const CatchScope&) = delete;
    CatchScope& operator=(const CatchScope&) = delete;

private:
    BatchState& batch_;
};

// A function runs within a statement: an error of it is one of the statement, and what it counts is not seen.
class FunctionScope {
public:
    explicit FunctionScope(BatchState& batch)
        : try_(batch), level_(batch), rowCount_(batch.session.rowCount), error_(batch.session.error) {}

private:
    TryScope try_;
    LevelScope level_;
    Restore<std::int64_t> rowCount_;
    Restore<int> error_;
};

// A batch or module is checked before it runs.
class CheckScope {
public:
    explicit CheckScope(BatchState& batch) : checking_(batch.checking, true) {}

private:
    Restore<bool> checking_;
};

// INSERT ... EXEC gathers the rows of what it runs.
class InsertExecScope {
public:
    InsertExecScope(BatchState& batch, ResultSink& sink) : sink_(batch.sink, &sink), inside_(batch.inInsertExec, true) {}

private:
    Restore<ResultSink*> sink_;
    Restore<bool> inside_;
};

// The trigger of a table or view runs in place of a statement: what it writes there is written.
class InsteadScope {
public:
    InsteadScope(SessionCatalog& catalog, std::int64_t tableOrView) : instead_(catalog.inInstead, tableOrView) {}

private:
    Restore<std::int64_t> instead_;
};

// The triggers of a statement run: what they insert is not seen by SCOPE_IDENTITY().
class TriggersScope {
public:
    explicit TriggersScope(BatchState& batch) : identity_(batch.frame->scopeIdentity) {}

private:
    Restore<tsql::Cell> identity_;
};

// Rows of a name that statements read like a table, as inserted and deleted of a running trigger.
class ShownRowsScope {
public:
    ShownRowsScope(RowsetRegistry& rows, std::string name, std::shared_ptr<const Rowset> shown);
    ~ShownRowsScope() { rows_.set(name_, before_); }
    ShownRowsScope(const ShownRowsScope&) = delete;
    ShownRowsScope& operator=(const ShownRowsScope&) = delete;

private:
    RowsetRegistry& rows_;
    std::string name_;
    std::shared_ptr<const Rowset> before_;
};

// References may be broken, as long as they hold again at the end. Requires: a transaction of SQLite.
class OpenReferencesScope {
public:
    explicit OpenReferencesScope(Connection& connection);
    ~OpenReferencesScope();
    OpenReferencesScope(const OpenReferencesScope&) = delete;
    OpenReferencesScope& operator=(const OpenReferencesScope&) = delete;

private:
    Connection& connection_;
};

// A statement is run for a trial, with all references left open: what it changes, counts, sets and captures is not seen.
class TrialScope {
public:
    TrialScope(Connection& connection, BatchState& batch, Identities& identities, ChangeCapture& capture);
    ~TrialScope();
    TrialScope(const TrialScope&) = delete;
    TrialScope& operator=(const TrialScope&) = delete;

private:
    Connection& connection_;
    Identities& identities_;
    Identities::Numbers numbers_;
    Restore<std::vector<tsql::Cell>> variables_;
    Restore<ChangeCapture::Seen> captured_;
};

// The piece of a transaction that one statement is: all of it or nothing. Outside a transaction it is one of its own, with the lock of the
// writer from the start; inside it is a savepoint, or nothing where one statement of SQLite, which undoes itself, is all there is. Not
// finished, it undoes what was done.
class WriteScope {
public:
    explicit WriteScope(Transaction& transaction, bool temporaryOnly = false, bool undoesItself = false);
    ~WriteScope();
    WriteScope(const WriteScope&) = delete;
    WriteScope& operator=(const WriteScope&) = delete;

    // Keeps what was done. Without effect when the transaction around ended meanwhile.
    void finish();
    // Whether the transaction ended since.
    bool isOver() const { return endings_ != transaction_.endings(); }
    // Whether the statement stands in no transaction but its own.
    bool isOwn() const { return mode_ == Mode::Own; }

private:
    enum class Mode { Own, SavePoint, Itself, Done };
    Transaction& transaction_;
    Mode mode_ = Mode::SavePoint;
    std::uint64_t endings_;
};

// While it lives, the triggers of a statement that is a transaction of its own see that one counted. Without effect within another.
class TriggerCount {
public:
    TriggerCount(Transaction& transaction, bool own);
    ~TriggerCount();
    TriggerCount(const TriggerCount&) = delete;
    TriggerCount& operator=(const TriggerCount&) = delete;

private:
    Transaction& transaction_;
    bool own_;
    std::uint64_t endings_;
};

} // namespace merchantry::db::embedded
