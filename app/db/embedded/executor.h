#pragma once

#include "app/db/embedded/batch_check.h"
#include "app/db/embedded/calls.h"
#include "app/db/embedded/changes.h"
#include "app/db/embedded/cursors.h"
#include "app/db/embedded/definer.h"
#include "app/db/embedded/messages.h"
#include "app/db/embedded/options.h"
#include "app/db/embedded/queries.h"
#include "app/db/embedded/system_procedures.h"

namespace merchantry::db::embedded {

// Who carries out the statements that are not the flow itself.
struct StatementParts {
    Queries& queries;
    Changes& changes;
    Calls& calls;
    SystemProcedures& systemProcedures;
    Cursors& cursors;
    Messages& messages;
    Options& options;
    Definer& definer;
    TableMaker& tables;
};

// Runs a batch or module statement by statement: IF and WHILE, GOTO, TRY, and what follows from an error. What a statement does is done by
// the parts.
class Executor : public Runner {
public:
    Executor(const StatementParts& parts, BatchState& batch, SessionCatalog& catalog, TemporaryTables& temporaries,
             Transaction& transaction, Plans& plans, Evaluator& evaluator, BatchCheck& check)
        : parts_(parts), batch_(batch), catalog_(catalog), temporaries_(temporaries), transaction_(transaction), plans_(plans),
          evaluator_(evaluator), check_(check) {}

    void runFrame(Frame& frame) override;
    void runInner(const tsql::Statement& statement) override { runOne(statement); }

private:
    enum class Flow { Next, Break, Continue, Return, Goto };
    Flow runBlock(const tsql::Block& block);
    Flow run(const tsql::Statement& statement);
    Flow runOne(const tsql::Statement& statement);
    bool holds(const tsql::Statement& statement, const tsql::Expr& condition);
    Flow runIf(const tsql::IfStatement& statement);
    Flow runWhile(const tsql::WhileStatement& statement);
    Flow runTry(const tsql::TryStatement& statement);
    std::optional<DbError> runTried(const tsql::Block& block, Flow& flow);
    Flow runHandler(const tsql::Block& handler, const DbError& error);
    Flow runReturn(const tsql::ReturnStatement& statement);
    void declare(const tsql::DeclareStatement& statement);
    void set(const tsql::SetVariableStatement& statement);
    void execute(const tsql::ExecuteStatement& statement);
    void executeText(const tsql::ExecuteTextStatement& statement);
    void control(const tsql::TransactionStatement& statement);
    Flow failed(DbError error, const tsql::Statement& statement);
    void endAll(const ScopeEnd& end);
    void stopIfCancelled();

    StatementParts parts_;
    BatchState& batch_;
    SessionCatalog& catalog_;
    TemporaryTables& temporaries_;
    Transaction& transaction_;
    Plans& plans_;
    Evaluator& evaluator_;
    BatchCheck& check_;
};

} // namespace merchantry::db::embedded
