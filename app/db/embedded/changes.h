#pragma once

#include "app/db/embedded/conflicts.h"
#include "app/db/embedded/key_mover.h"
#include "app/db/embedded/trigger_runner.h"

namespace merchantry::db::embedded {

class WriteScope;

// INSERT, UPDATE, DELETE and TRUNCATE: the change of rows, the triggers that follow it and what OUTPUT shows of it.
class Changes {
public:
    Changes(Connection& connection, BatchState& batch, StoreCatalog& store, SessionCatalog& catalog, Transaction& transaction,
            Identities& identities, Plans& plans, Evaluator& evaluator, ChangeCapture& capture, TriggerRunner& triggers, Runner& runner)
        : connection_(connection), batch_(batch), store_(store), catalog_(catalog), transaction_(transaction), identities_(identities),
          plans_(plans), evaluator_(evaluator), capture_(capture), triggers_(triggers), runner_(runner) {}

    void insert(const tsql::InsertStatement& statement);
    void update(const tsql::UpdateStatement& statement);
    void remove(const tsql::DeleteStatement& statement);
    void truncate(const tsql::TruncateStatement& statement);

private:
    void lock();
    void run(const PlanPtr& plan);
    bool undoesItself(const tsql::ChangePlan& change);
    Tables capturedFor(const tsql::ChangePlan& change);
    void change(StatementPlan& plan, WriteScope& scope);
    void changeInstead(StatementPlan& plan);
    std::int64_t runSql(StatementPlan& plan);
    void noteScopeIdentity(const tsql::TableDef& table, std::int64_t rows);
    void output(const tsql::ChangePlan& change);
    void insertRows(const tsql::ChangePlan& plan, const Rowset& rows);
    void insertFromExecute(const tsql::InsertStatement& statement);
    void requireUnended(const WriteScope& scope);

    Connection& connection_;
    BatchState& batch_;
    StoreCatalog& store_;
    SessionCatalog& catalog_;
    Transaction& transaction_;
    Identities& identities_;
    Plans& plans_;
    Evaluator& evaluator_;
    ChangeCapture& capture_;
    TriggerRunner& triggers_;
    Runner& runner_;
    Conflicts conflicts_{connection_, batch_, store_, identities_, capture_, evaluator_};
    KeyMover mover_{connection_, store_, capture_, evaluator_, conflicts_};
};

} // namespace merchantry::db::embedded
