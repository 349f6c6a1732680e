#include "app/db/embedded/messages.h"
#include "app/db/embedded/raised_text.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace merchantry::db::embedded {

using tsql::Cell;

namespace {

constexpr std::size_t kFirstRaiseArgument = 3; // behind message, severity and state
constexpr std::int64_t kFirstFreeNumber = 50000;

} // namespace

void Messages::print(const tsql::PrintStatement& statement) {
    const PlanPtr plan = plans_.values(statement);
    const Cell cell = evaluator_.value(*plan);
    batch_.sink->message(cell.isNull() ? std::string(" ") : tsql::textOf(cell, plan->values[0].type));
    batch_.session.rowCount = 0;
}

void Messages::raise(const tsql::RaiseStatement& statement) {
    const PlanPtr plan = plans_.values(statement);
    const Cell message = evaluator_.value(*plan, 0);
    const auto severity = static_cast<int>(evaluator_.value(*plan, 1).integer);
    const auto state = static_cast<int>(evaluator_.value(*plan, 2).integer);
    const bool numbered = plan->values[0].type.isWhole();
    std::string text = "Error " + std::to_string(message.integer) + ".";
    if (!numbered) {
        std::vector<RaisedArgument> arguments;
        for (std::size_t i = kFirstRaiseArgument; i < plan->values.size(); ++i)
            arguments.push_back({evaluator_.value(*plan, i), plan->values[i].type});
        text = raisedText(message.bytes, arguments);
    }
    batch_.session.rowCount = 0;
    if (severity <= 10)
        return batch_.sink->message(text);
    throw DbError(DbError::Category::Raised, static_cast<int>(numbered ? message.integer : kFirstFreeNumber), text)
        .withSeverity(severity, state);
}

DbError Messages::thrown(const tsql::ThrowStatement& statement) {
    if (!statement.number) {
        if (batch_.caught.empty())
            throw serverMessage(Message::ThrowOutsideCatch, {}, statement.line);
        return batch_.caught.back();
    }
    const PlanPtr plan = plans_.values(statement);
    const std::int64_t number = evaluator_.value(*plan, 0).integer;
    if (number < kFirstFreeNumber)
        throw serverMessage(Message::ThrowNumber, {std::to_string(number)}, statement.line).withSeverity(16, 10);
    return DbError(DbError::Category::Raised, static_cast<int>(number), evaluator_.value(*plan, 1).bytes, statement.line)
        .withSeverity(16, static_cast<int>(evaluator_.value(*plan, 2).integer));
}

void Messages::raiseAndEnd(const tsql::ThrowStatement& statement) {
    DbError error = thrown(statement);
    const bool undoes = batch_.session.settings.xactAbort;
    if (batch_.tries > 0) {
        if (undoes)
            transaction_.doom();
        throw DbError(error);
    }
    if (error.procedure().empty() && !batch_.frame->code->procedure.empty())
        error.in(batch_.frame->code->procedure);
    batch_.note(error);
    if (undoes || batch_.inTrigger())
        transaction_.rollbackAll();
    throw BatchEnd{};
}

void Messages::wait(const tsql::WaitForStatement& statement) {
    const PlanPtr plan = plans_.values(statement, {{statement.delay.get(), tsql::simpleType(TypeKind::DateTime)}});
    std::int64_t restMs = evaluator_.value(*plan).integer;
    transaction_.endRead();
    while (restMs > 0 && !batch_.cancelled) {
        const std::int64_t partMs = std::min<std::int64_t>(restMs, 50);
        std::this_thread::sleep_for(std::chrono::milliseconds(partMs));
        restMs -= partMs;
    }
}

} // namespace merchantry::db::embedded
