#include "app/db/embedded/engine.h"
#include "app/db/embedded/raised_text.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace merchantry::db::embedded {
namespace {

constexpr std::size_t kFirstRaiseArgument = 3; // behind message, severity and state

} // namespace

std::string Engine::raisedMessage(StatementPlan& plan, const std::string& format) {
    std::vector<RaisedArgument> arguments;
    for (std::size_t i = kFirstRaiseArgument; i < plan.values.size(); ++i)
        arguments.push_back({evaluator_.value(plan, i), plan.values[i].type});
    return raisedText(format, arguments);
}

void Engine::runRaise(const tsql::RaiseStatement& statement) {
    const PlanPtr plan = plans_.values(statement);
    const Cell message = evaluator_.value(*plan, 0);
    const int severity = static_cast<int>(evaluator_.value(*plan, 1).integer);
    const int state = static_cast<int>(evaluator_.value(*plan, 2).integer);
    const bool numbered = plan->values[0].type.isWhole();
    const std::string text = numbered ? "Error " + std::to_string(message.integer) + "." : raisedMessage(*plan, message.bytes);
    session_.rowCount = 0;
    if (severity <= 10) {
        batch_.sink->message(text);
        return;
    }
    throw DbError(DbError::Category::Raised, numbered ? static_cast<int>(message.integer) : 50000, text).withSeverity(severity, state);
}

void Engine::runThrow(const tsql::ThrowStatement& statement) {
    std::optional<DbError> error;
    if (!statement.number) {
        if (batch_.caught.empty())
            throw tsql::syntaxError(10704, "To rethrow an error, a THROW statement must be used inside a CATCH block.", statement.line);
        error = batch_.caught.back();
    } else {
        const PlanPtr plan = plans_.values(statement);
        const std::int64_t number = evaluator_.value(*plan, 0).integer;
        if (number < 50000)
            throw tsql::syntaxError(35100,
                                    "Error number " + std::to_string(number) +
                                        " in the THROW statement is outside the valid range. Specify an error number "
                                        "in the valid range of 50000 to 2147483647.",
                                    statement.line)
                .withSeverity(16, 10);
        error = DbError(DbError::Category::Raised, static_cast<int>(number), evaluator_.value(*plan, 1).bytes, statement.line)
                    .withSeverity(16, static_cast<int>(evaluator_.value(*plan, 2).integer));
    }
    if (batch_.tries > 0) {
        if (session_.settings.xactAbort)
            transaction_.doom();
        throw DbError(*error);
    }
    if (error->procedure().empty() && !batch_.frame->code->procedure.empty())
        error->in(batch_.frame->code->procedure);
    batch_.note(*error);
    if (session_.settings.xactAbort || batch_.inTrigger())
        transaction_.rollbackAll();
    throw BatchEnd{};
}

void Engine::runPrint(const tsql::PrintStatement& statement) {
    const PlanPtr plan = plans_.values(statement);
    const Cell cell = evaluator_.value(*plan, 0);
    batch_.sink->message(cell.isNull() ? std::string(" ") : tsql::textOf(cell, plan->values[0].type));
    session_.rowCount = 0;
}

void Engine::runWait(const tsql::WaitForStatement& statement) {
    const PlanPtr plan = plans_.values(statement, {{statement.delay.get(), tsql::simpleType(TypeKind::DateTime)}});
    std::int64_t restMs = evaluator_.value(*plan, 0).integer;
    transaction_.endRead();
    while (restMs > 0 && !batch_.cancelled) {
        const std::int64_t partMs = std::min<std::int64_t>(restMs, 50);
        std::this_thread::sleep_for(std::chrono::milliseconds(partMs));
        restMs -= partMs;
    }
}

} // namespace merchantry::db::embedded
