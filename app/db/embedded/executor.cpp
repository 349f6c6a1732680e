#include "app/db/embedded/executor.h"
#include "app/db/embedded/scopes.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "app/db/tsql/visit.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::StatementKind;

namespace {

// Whether other statements run within it: their errors are theirs.
bool holdsStatements(const tsql::Statement& statement) {
    switch (statement.kind) {
    case StatementKind::BlockOf:
    case StatementKind::TryCatch:
    case StatementKind::If:
    case StatementKind::While:
    case StatementKind::Execute:
    case StatementKind::ExecuteText:
        return true;
    default:
        return false;
    }
}

} // namespace

void Executor::runFrame(Frame& frame) {
    const FrameScope here(batch_, temporaries_, frame);
    const AtEnd leave([&] { parts_.tables.dropTablesOf(frame); });
    const bool isBatch = frame.caller == nullptr && frame.code->procedure.empty();
    const AtEnd chosen([&, before = batch_.session.settings] {
        if (!isBatch)
            parts_.options.putBack(before);
    });
    check_.check(*frame.code);
    runBlock(*frame.code->body);
}

Executor::Flow Executor::runBlock(const tsql::Block& block) {
    std::size_t at = 0;
    while (at < block.size()) {
        const Flow flow = run(*block[at]);
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

Executor::Flow Executor::run(const tsql::Statement& statement) {
    stopIfCancelled();
    try {
        const Flow flow = runOne(statement);
        if (!holdsStatements(statement))
            batch_.session.error = 0;
        return flow;
    } catch (const DbError& error) {
        return failed(error, statement);
    } catch (const OverflowError& error) {
        return failed(serverError(Message::ArithmeticOverflow, error.what()), statement);
    } catch (const ScopeEnd& end) {
        endAll(end);
        throw;
    }
}

// A name that is missing ends its batch or module alone, unless every error there ends the transaction.
void Executor::endAll(const ScopeEnd& end) {
    if (end.frame != batch_.frame || !(batch_.session.settings.xactAbort || batch_.inTrigger()))
        return;
    if (batch_.tries > 0)
        return transaction_.doom();
    DbError error = end.error;
    if (!batch_.frame->code->procedure.empty())
        error.in(batch_.frame->code->procedure);
    batch_.note(error);
    transaction_.rollbackAll();
    throw BatchEnd{};
}

void Executor::stopIfCancelled() {
    if (!batch_.cancelled)
        return;
    batch_.note(DbError(DbError::Category::Cancelled, 0, "The statement was cancelled."));
    throw BatchEnd{};
}

// What follows from a statement's error: CATCH, the end of the batch, or the next statement.
Executor::Flow Executor::failed(DbError error, const tsql::Statement& statement) {
    if (error.line() == 0)
        error.at(statement.line);
    if (error.procedure().empty() && !batch_.frame->code->procedure.empty())
        error.in(batch_.frame->code->procedure);
    batch_.session.error = error.native();
    batch_.session.rowCount = 0;
    const bool raised = error.category() == DbError::Category::Raised;
    const bool fatal = (batch_.session.settings.xactAbort && !raised) || tsql::endsBatch(error.native()) || (batch_.inTrigger() && !raised);
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

// ---- by kind

Executor::Flow Executor::runOne(const tsql::Statement& statement) {
    const auto then = [](auto&& run) {
        run();
        return Flow::Next;
    };
    return tsql::visit(
        statement,
        tsql::Visitor{[&](const tsql::IfStatement& branch) { return runIf(branch); },
                      [&](const tsql::WhileStatement& loop) { return runWhile(loop); },
                      [&](const tsql::BlockStatement& block) { return runBlock(block.body); },
                      [&](const tsql::TryStatement& guarded) { return runTry(guarded); },
                      [&](const tsql::ReturnStatement& end) { return runReturn(end); },
                      [&](const tsql::GotoStatement& jump) {
                          if (jump.kind == StatementKind::Label)
                              return Flow::Next;
                          batch_.frame->gotoLabel = jump.label;
                          return Flow::Goto;
                      },
                      [&](const tsql::SelectStatement& select) { return then([&] { parts_.queries.select(select); }); },
                      [&](const tsql::InsertStatement& insert) { return then([&] { parts_.changes.insert(insert); }); },
                      [&](const tsql::UpdateStatement& update) { return then([&] { parts_.changes.update(update); }); },
                      [&](const tsql::DeleteStatement& remove) { return then([&] { parts_.changes.remove(remove); }); },
                      [&](const tsql::TruncateStatement& truncate) { return then([&] { parts_.changes.truncate(truncate); }); },
                      [&](const tsql::DeclareStatement& variables) { return then([&] { declare(variables); }); },
                      [&](const tsql::DeclareTableStatement& table) { return then([&] { parts_.tables.declare(table); }); },
                      [&](const tsql::SetVariableStatement& variable) { return then([&] { set(variable); }); },
                      [&](const tsql::SetOptionStatement& option) { return then([&] { parts_.options.set(option); }); },
                      [&](const tsql::ExecuteStatement& call) { return then([&] { execute(call); }); },
                      [&](const tsql::ExecuteTextStatement& text) { return then([&] { executeText(text); }); },
                      [&](const tsql::TransactionStatement& transaction) { return then([&] { control(transaction); }); },
                      [&](const tsql::RaiseStatement& raise) { return then([&] { parts_.messages.raise(raise); }); },
                      [&](const tsql::ThrowStatement& raise) { return then([&] { parts_.messages.raiseAndEnd(raise); }); },
                      [&](const tsql::PrintStatement& print) { return then([&] { parts_.messages.print(print); }); },
                      [&](const tsql::WaitForStatement& wait) { return then([&] { parts_.messages.wait(wait); }); },
                      [&](const tsql::CursorStatement& cursor) { return then([&] { parts_.cursors.run(cursor); }); },
                      [&](const tsql::UseStatement& use) { return then([&] { catalog_.databaseName = use.database; }); },
                      [](const tsql::UnsupportedStatement& unknown) -> Flow { throw tsql::unsupported(unknown.feature, unknown.line); },
                      [&](const tsql::Statement& other) {
                          if (other.kind == StatementKind::Break)
                              return Flow::Break;
                          if (other.kind == StatementKind::Continue)
                              return Flow::Continue;
                          return other.kind == StatementKind::Nothing ? Flow::Next : then([&] { parts_.definer.run(other); });
                      }});
}

// Asking is a statement of its own: what is below it finds neither the error nor the row count of the one before.
bool Executor::holds(const tsql::Statement& statement, const tsql::Expr& condition) {
    const bool held = evaluator_.condition(statement, condition);
    batch_.session.error = 0;
    batch_.session.rowCount = 0;
    return held;
}

Executor::Flow Executor::runIf(const tsql::IfStatement& statement) {
    if (holds(statement, *statement.condition))
        return run(*statement.then);
    return statement.otherwise ? run(*statement.otherwise) : Flow::Next;
}

Executor::Flow Executor::runWhile(const tsql::WhileStatement& statement) {
    while (holds(statement, *statement.condition)) {
        stopIfCancelled();
        const Flow flow = run(*statement.body);
        if (flow == Flow::Break)
            break;
        if (flow == Flow::Return || flow == Flow::Goto)
            return flow;
    }
    return Flow::Next;
}

Executor::Flow Executor::runTry(const tsql::TryStatement& statement) {
    Flow flow = Flow::Next;
    const std::optional<DbError> error = runTried(statement.body, flow);
    return error ? runHandler(statement.handler, *error) : flow;
}

// The error that the block ended with.
std::optional<DbError> Executor::runTried(const tsql::Block& block, Flow& flow) {
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

Executor::Flow Executor::runHandler(const tsql::Block& handler, const DbError& error) {
    const CatchScope handling(batch_, error);
    batch_.session.error = error.native();
    const Flow flow = runBlock(handler);
    batch_.session.error = 0;
    return flow;
}

Executor::Flow Executor::runReturn(const tsql::ReturnStatement& statement) {
    if (!statement.value)
        return Flow::Return;
    const tsql::Cell cell = evaluator_.valueOf(statement);
    if (batch_.frame->isFunction)
        batch_.frame->result = cell;
    else
        batch_.frame->returnValue = cell.integer;
    return Flow::Return;
}

// ---- variables, calls, transactions

void Executor::declare(const tsql::DeclareStatement& statement) {
    const Plans::Wanted wanted = plans_.wantedOf(statement);
    if (wanted.empty())
        return;
    const PlanPtr plan = plans_.values(statement, wanted);
    std::size_t index = 0;
    for (const tsql::Declaration& variable : statement.variables) {
        if (variable.value)
            batch_.assign(plans_.slotOf(variable.name, statement.line), evaluator_.value(*plan, index++));
    }
    batch_.session.rowCount = 1;
}

void Executor::set(const tsql::SetVariableStatement& statement) {
    const int slot = plans_.slotOf(statement.variable, statement.line);
    if (statement.cursor)
        return parts_.cursors.run(static_cast<const tsql::CursorStatement&>(*statement.cursor));
    batch_.assign(slot, evaluator_.value(*plans_.set(statement)));
    batch_.session.rowCount = 1;
}

void Executor::execute(const tsql::ExecuteStatement& statement) {
    if (!parts_.calls.execute(statement))
        parts_.systemProcedures.execute(statement);
}

void Executor::executeText(const tsql::ExecuteTextStatement& statement) {
    std::vector<Parameter> none;
    parts_.calls.executeText(evaluator_.valueOf(statement).bytes, none);
}

void Executor::control(const tsql::TransactionStatement& statement) {
    batch_.session.rowCount = 0;
    std::string name = statement.name;
    if (!name.empty() && name.front() == '@')
        name = batch_.value(plans_.slotOf(name, statement.line)).bytes;
    switch (statement.kind) {
    case StatementKind::Begin:
        return transaction_.begin(name);
    case StatementKind::Commit:
        return transaction_.commit();
    case StatementKind::Save:
        return transaction_.savePoint(name);
    default:
        return transaction_.rollback(name);
    }
}

} // namespace merchantry::db::embedded
