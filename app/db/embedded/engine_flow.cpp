#include "app/db/embedded/engine.h"
#include "app/db/embedded/scopes.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <set>
#include <thread>

namespace merchantry::db::embedded {

using tsql::StatementKind;

Engine::Flow Engine::runFrame(Frame& frame) {
    const FrameScope here(batch_, temporaries_, frame);
    const AtEnd leave([&] { tables_.dropTablesOf(frame); });
    check_.check(*frame.code);
    return runBlock(*frame.code->body);
}

Engine::Flow Engine::runBlock(const tsql::Block& block) {
    std::size_t at = 0;
    while (at < block.size()) {
        const Flow flow = runStatement(*block[at]);
        if (flow == Flow::Next) {
            ++at;
            continue;
        }
        if (flow != Flow::Goto)
            return flow;
        const auto label = std::find_if(block.begin(), block.end(), [&](const tsql::StatementPtr& statement) {
            return statement->kind == StatementKind::Label &&
                   tsql::sameName(static_cast<const tsql::GotoStatement&>(*statement).label, batch_.frame->gotoLabel);
        });
        if (label == block.end())
            return Flow::Goto;
        at = static_cast<std::size_t>(label - block.begin());
    }
    return Flow::Next;
}

Engine::Flow Engine::runStatement(const tsql::Statement& statement) {
    if (batch_.cancelled)
        throw failedByCancel();
    try {
        const Flow flow = runOne(statement);
        if (statement.kind != StatementKind::BlockOf && statement.kind != StatementKind::TryCatch && statement.kind != StatementKind::If &&
            statement.kind != StatementKind::While && statement.kind != StatementKind::Execute &&
            statement.kind != StatementKind::ExecuteText)
            session_.error = 0;
        return flow;
    } catch (const DbError& error) {
        return failed(error, statement);
    } catch (const OverflowError& error) {
        return failed(tsql::valueError(8115, error.what()), statement);
    }
}

BatchEnd Engine::failedByCancel() {
    batch_.note(DbError(DbError::Category::Cancelled, 0, "The statement was cancelled."));
    return {};
}

// What follows from a statement's error: CATCH, the end of the batch, or the next statement.
Engine::Flow Engine::failed(DbError error, const tsql::Statement& statement) {
    if (error.line() == 0)
        error.at(statement.line);
    if (error.procedure().empty() && !batch_.frame->code->procedure.empty())
        error.in(batch_.frame->code->procedure);
    session_.error = error.native();
    session_.rowCount = 0;
    const bool raised = error.category() == DbError::Category::Raised;
    const bool fatal = (session_.settings.xactAbort && !raised) || tsql::endsBatch(error.native()) || (batch_.inTrigger() && !raised);
    if (error.category() == DbError::Category::Cancelled) {
        batch_.note(error);
        throw BatchEnd{};
    }
    if (batch_.tries > 0) {
        if (fatal)
            transaction_.doom();
        throw error;
    }
    batch_.note(error);
    if (fatal || error.category() == DbError::Category::Storage) {
        transaction_.rollbackAll();
        throw BatchEnd{};
    }
    return Flow::Next;
}

Engine::Flow Engine::runOne(const tsql::Statement& statement) {
    switch (statement.kind) {
    case StatementKind::Select:
        runSelect(static_cast<const tsql::SelectStatement&>(statement));
        return Flow::Next;
    case StatementKind::Insert:
        runInsert(static_cast<const tsql::InsertStatement&>(statement));
        return Flow::Next;
    case StatementKind::Update:
        runUpdate(static_cast<const tsql::UpdateStatement&>(statement));
        return Flow::Next;
    case StatementKind::Delete:
        runDelete(static_cast<const tsql::DeleteStatement&>(statement));
        return Flow::Next;
    case StatementKind::Truncate:
        runTruncate(static_cast<const tsql::TruncateStatement&>(statement));
        return Flow::Next;
    case StatementKind::Declare:
        runDeclare(static_cast<const tsql::DeclareStatement&>(statement));
        return Flow::Next;
    case StatementKind::DeclareTable:
        tables_.declare(static_cast<const tsql::DeclareTableStatement&>(statement));
        return Flow::Next;
    case StatementKind::SetVariable:
        runSet(static_cast<const tsql::SetVariableStatement&>(statement));
        return Flow::Next;
    case StatementKind::SetOption:
        runOption(static_cast<const tsql::SetOptionStatement&>(statement));
        return Flow::Next;
    case StatementKind::If:
        return runIf(static_cast<const tsql::IfStatement&>(statement));
    case StatementKind::While:
        return runWhile(static_cast<const tsql::WhileStatement&>(statement));
    case StatementKind::Break:
        return Flow::Break;
    case StatementKind::Continue:
        return Flow::Continue;
    case StatementKind::Return:
        return runReturn(static_cast<const tsql::ReturnStatement&>(statement));
    case StatementKind::Goto:
        batch_.frame->gotoLabel = static_cast<const tsql::GotoStatement&>(statement).label;
        return Flow::Goto;
    case StatementKind::BlockOf:
        return runBlock(static_cast<const tsql::BlockStatement&>(statement).body);
    case StatementKind::TryCatch:
        return runTry(static_cast<const tsql::TryStatement&>(statement));
    case StatementKind::Raise:
        runRaise(static_cast<const tsql::RaiseStatement&>(statement));
        return Flow::Next;
    case StatementKind::Throw:
        runThrow(static_cast<const tsql::ThrowStatement&>(statement));
        return Flow::Next;
    case StatementKind::Print:
        runPrint(static_cast<const tsql::PrintStatement&>(statement));
        return Flow::Next;
    case StatementKind::Execute:
        runExecute(static_cast<const tsql::ExecuteStatement&>(statement));
        return Flow::Next;
    case StatementKind::ExecuteText: {
        const PlanPtr plan = plans_.values(statement);
        runExecuteText(evaluator_.value(*plan, 0).bytes);
        return Flow::Next;
    }
    case StatementKind::Begin:
    case StatementKind::Commit:
    case StatementKind::Rollback:
    case StatementKind::Save:
        runTransaction(static_cast<const tsql::TransactionStatement&>(statement));
        return Flow::Next;
    case StatementKind::Use:
        catalog_.databaseName = static_cast<const tsql::UseStatement&>(statement).database;
        return Flow::Next;
    case StatementKind::Label:
    case StatementKind::Nothing:
        return Flow::Next;
    case StatementKind::WaitFor:
        runWait(static_cast<const tsql::WaitForStatement&>(statement));
        return Flow::Next;
    case StatementKind::Cursor:
        runCursor(static_cast<const tsql::CursorStatement&>(statement));
        return Flow::Next;
    case StatementKind::Unsupported:
        throw tsql::unsupported(static_cast<const tsql::UnsupportedStatement&>(statement).feature, statement.line);
    default:
        definer_.run(statement);
        return Flow::Next;
    }
}

Engine::Flow Engine::runIf(const tsql::IfStatement& statement) {
    const bool holds = evaluator_.condition(statement, *statement.condition);
    session_.error = 0;
    if (holds)
        return runStatement(*statement.then);
    return statement.otherwise ? runStatement(*statement.otherwise) : Flow::Next;
}

Engine::Flow Engine::runWhile(const tsql::WhileStatement& statement) {
    while (evaluator_.condition(statement, *statement.condition)) {
        if (batch_.cancelled)
            throw failedByCancel();
        const Flow flow = runStatement(*statement.body);
        if (flow == Flow::Break)
            break;
        if (flow == Flow::Return || flow == Flow::Goto)
            return flow;
    }
    return Flow::Next;
}

Engine::Flow Engine::runTry(const tsql::TryStatement& statement) {
    Flow flow = Flow::Next;
    const std::optional<DbError> error = runTried(statement.body, flow);
    return error ? runHandler(statement, *error) : flow;
}

// The error that the block ended with.
std::optional<DbError> Engine::runTried(const tsql::Block& block, Flow& flow) {
    const TryScope inside(batch_);
    try {
        flow = runBlock(block);
        return std::nullopt;
    } catch (const ScopeEnd& end) {
        if (end.frame == batch_.frame) // a name that is missing in the TRY's own batch is not for its CATCH
            throw;
        return end.error;
    } catch (const DbError& caught) {
        return caught;
    }
}

Engine::Flow Engine::runHandler(const tsql::TryStatement& statement, const DbError& error) {
    const CatchScope handling(batch_, error);
    session_.error = error.native();
    const Flow flow = runBlock(statement.handler);
    session_.error = 0;
    return flow;
}

Engine::Flow Engine::runReturn(const tsql::ReturnStatement& statement) {
    if (!statement.value)
        return Flow::Return;
    const PlanPtr plan = plans_.values(statement);
    const Cell cell = evaluator_.value(*plan, 0);
    if (batch_.frame->isFunction)
        batch_.frame->result = cell;
    else
        batch_.frame->returnValue = cell.integer;
    return Flow::Return;
}

// ---- variables

void Engine::runDeclare(const tsql::DeclareStatement& statement) {
    const Plans::Wanted wanted = plans_.wantedOf(statement);
    if (wanted.empty())
        return;
    const PlanPtr plan = plans_.values(statement, wanted);
    std::size_t index = 0;
    for (const tsql::Declaration& variable : statement.variables) {
        if (variable.value)
            batch_.assign(plans_.slotOf(variable.name, statement.line), evaluator_.value(*plan, index++));
    }
    session_.rowCount = 1;
}

void Engine::runSet(const tsql::SetVariableStatement& statement) {
    const int slot = plans_.slotOf(statement.variable, statement.line);
    if (statement.cursor) {
        runCursor(static_cast<const tsql::CursorStatement&>(*statement.cursor));
        return;
    }
    const PlanPtr plan = plans_.set(statement);
    batch_.assign(slot, evaluator_.value(*plan, 0));
    session_.rowCount = 1;
}

} // namespace merchantry::db::embedded
