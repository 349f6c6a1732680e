#include "app/db/embedded/engine.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <thread>

namespace merchantry::db::embedded {

std::string Engine::raisedText(StatementPlan& plan, const std::string& format) {
    std::string text;
    std::size_t argument = 3;
    for (std::size_t at = 0; at < format.size(); ++at) {
        if (format[at] != '%' || at + 1 == format.size()) {
            text += format[at];
            continue;
        }
        std::size_t end = at + 1;
        while (end < format.size() && std::string_view("0123456789-+ #.*lhI").find(format[end]) != std::string_view::npos)
            ++end;
        const char kind = end < format.size() ? format[end] : '%';
        if (kind == '%' || std::string_view("sdiuxXo").find(kind) == std::string_view::npos) {
            text += kind == '%' ? "%" : format.substr(at, end - at + 1);
            at = end;
            continue;
        }
        std::string given = "(null)";
        if (argument < plan.values.size()) {
            const Cell cell = valueAt(plan, argument);
            if (!cell.isNull())
                given = tsql::textOf(cell, plan.values[argument].type);
            if (!cell.isNull() && (kind == 'x' || kind == 'X')) {
                std::array<char, 24> buffer{};
                std::snprintf(buffer.data(), buffer.size(), kind == 'x' ? "%llx" : "%llX", static_cast<unsigned long long>(cell.integer));
                given = buffer.data();
            }
        }
        ++argument;
        std::string flags = format.substr(at + 1, end - at - 1);
        const bool leftAligned = flags.find('-') != std::string::npos;
        std::erase_if(flags, [](char c) { return c < '0' || c > '9'; });
        const std::size_t width = flags.empty() ? 0 : static_cast<std::size_t>(std::min(std::stoi(flags.substr(0, 4)), 400));
        if (given.size() < width)
            given.insert(leftAligned ? given.size() : 0, width - given.size(), ' ');
        text += given;
        at = end;
    }
    return text;
}

void Engine::runRaise(const tsql::RaiseStatement& statement) {
    const PlanPtr plan = valuePlan(statement, wantedOf(statement));
    const Cell message = valueAt(*plan, 0);
    const int severity = static_cast<int>(valueAt(*plan, 1).integer);
    const int state = static_cast<int>(valueAt(*plan, 2).integer);
    const bool numbered = plan->values[0].type.isWhole();
    const std::string text = numbered ? "Error " + std::to_string(message.integer) + "." : raisedText(*plan, message.bytes);
    rowCount_ = 0;
    if (severity <= 10) {
        sink_->message(text);
        return;
    }
    throw DbError(DbError::Category::Raised, numbered ? static_cast<int>(message.integer) : 50000, text).withSeverity(severity, state);
}

void Engine::runThrow(const tsql::ThrowStatement& statement) {
    std::optional<DbError> error;
    if (!statement.number) {
        if (caught_.empty())
            throw tsql::syntaxError(10704, "To rethrow an error, a THROW statement must be used inside a CATCH block.", statement.line);
        error = caught_.back();
    } else {
        const PlanPtr plan = valuePlan(statement, wantedOf(statement));
        const std::int64_t number = valueAt(*plan, 0).integer;
        if (number < 50000)
            throw tsql::syntaxError(35100,
                                    "Error number " + std::to_string(number) +
                                        " in the THROW statement is outside the valid range. Specify an error number "
                                        "in the valid range of 50000 to 2147483647.",
                                    statement.line)
                .withSeverity(16, 10);
        error = DbError(DbError::Category::Raised, static_cast<int>(number), valueAt(*plan, 1).bytes, statement.line)
                    .withSeverity(16, static_cast<int>(valueAt(*plan, 2).integer));
    }
    if (tries_ > 0) {
        doomed_ = doomed_ || (settings_.xactAbort && tranCount_ > 0);
        throw DbError(*error);
    }
    if (error->procedure().empty() && !frame_->code->procedure.empty())
        error->in(frame_->code->procedure);
    note(*error);
    if (settings_.xactAbort || inTrigger())
        rollbackAll();
    throw BatchEnd{};
}

void Engine::runPrint(const tsql::PrintStatement& statement) {
    const PlanPtr plan = valuePlan(statement, wantedOf(statement));
    const Cell cell = valueAt(*plan, 0);
    sink_->message(cell.isNull() ? std::string(" ") : tsql::textOf(cell, plan->values[0].type));
    rowCount_ = 0;
}

void Engine::runWait(const tsql::WaitForStatement& statement) {
    const PlanPtr plan = valuePlan(statement, {{statement.delay.get(), tsql::simpleType(TypeKind::DateTime)}});
    std::int64_t restMs = valueAt(*plan, 0).integer;
    endRead();
    while (restMs > 0 && !cancelled_) {
        const std::int64_t partMs = std::min<std::int64_t>(restMs, 50);
        std::this_thread::sleep_for(std::chrono::milliseconds(partMs));
        restMs -= partMs;
    }
}

} // namespace merchantry::db::embedded
