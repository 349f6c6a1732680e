#include "app/db/embedded/engine.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

namespace merchantry::db::embedded {

using Action = tsql::CursorStatement::Action;
using Fetch = tsql::CursorStatement::Fetch;

// A cursor's rows are read when it is opened, and stand still from then on.

Cursor* Engine::findCursor(const std::string& name) {
    if (!name.empty() && name.front() == '@') {
        const int slot = plans_.slotOf(name, 0);
        const auto variable = batch_.frame->cursorVariables.find(slot);
        return variable == batch_.frame->cursorVariables.end() ? nullptr : findCursor(variable->second);
    }
    const std::string key = lowerCase(name);
    const auto local = batch_.frame->cursors.find(key);
    if (local != batch_.frame->cursors.end())
        return &local->second;
    const auto global = session_.cursors.find(key);
    return global == session_.cursors.end() ? nullptr : &global->second;
}

Cursor& Engine::cursorOf(const tsql::CursorStatement& statement) {
    Cursor* cursor = findCursor(statement.name);
    if (!cursor)
        throw tsql::typeError(16916, "A cursor with the name '" + statement.name + "' does not exist.", statement.line);
    return *cursor;
}

void Engine::runCursor(const tsql::CursorStatement& statement) {
    switch (statement.action) {
    case Action::Declare: {
        Cursor cursor;
        cursor.query = statement.query.get();
        cursor.code = batch_.frame->code;
        cursor.number = statement.number;
        std::string key = lowerCase(statement.name);
        const bool isVariable = statement.name.front() == '@';
        if (isVariable) {
            const int slot = plans_.slotOf(statement.name, statement.line);
            key = "\x01" + std::to_string(++session_.cursorNumber);
            batch_.frame->cursorVariables[slot] = key;
        }
        std::map<std::string, Cursor>& home = statement.local || isVariable ? batch_.frame->cursors : session_.cursors;
        if (home.count(key) != 0)
            throw tsql::typeError(16915, "A cursor with the name '" + statement.name + "' already exists.", statement.line);
        home[key] = std::move(cursor);
        return;
    }
    case Action::Open:
        return openCursor(cursorOf(statement), statement);
    case Action::Fetch:
        return fetch(statement);
    case Action::Close: {
        Cursor& cursor = cursorOf(statement);
        if (!cursor.open)
            throw tsql::typeError(16917, "Cursor is not open.", statement.line);
        cursor.open = false;
        cursor.rows.clear();
        return;
    }
    case Action::Deallocate: {
        cursorOf(statement);
        std::string key = lowerCase(statement.name);
        if (statement.name.front() == '@')
            key = batch_.frame->cursorVariables[plans_.slotOf(statement.name, 0)];
        if (batch_.frame->cursors.erase(key) == 0)
            session_.cursors.erase(key);
        return;
    }
    }
}

void Engine::openCursor(Cursor& cursor, const tsql::CursorStatement& statement) {
    if (cursor.open)
        throw tsql::typeError(16905, "The cursor is already open.", statement.line);
    transaction_.beforeRead();
    const tsql::QueryPlan plan = plans_.binder().query(*cursor.query);
    cursor.types.clear();
    for (const Column& column : plan.columns)
        cursor.types.push_back(column.type);
    cursor.rows = evaluator_.rows(plan.sql);
    cursor.at = -1;
    cursor.open = true;
}

void Engine::fetch(const tsql::CursorStatement& statement) {
    Cursor& cursor = cursorOf(statement);
    if (!cursor.open)
        throw tsql::typeError(16917, "Cursor is not open.", statement.line);
    const auto count = static_cast<std::int64_t>(cursor.rows.size());
    std::int64_t position = 0;
    if (statement.position) {
        const PlanPtr plan = plans_.values(statement, {{statement.position.get(), tsql::simpleType(TypeKind::Int)}});
        position = evaluator_.value(*plan, 0).integer;
    }
    switch (statement.fetch) {
    case Fetch::Next:
        cursor.at = std::min(cursor.at + 1, count);
        break;
    case Fetch::Prior:
        cursor.at = std::max<std::int64_t>(cursor.at - 1, -1);
        break;
    case Fetch::First:
        cursor.at = 0;
        break;
    case Fetch::Last:
        cursor.at = count - 1;
        break;
    case Fetch::Absolute:
        cursor.at = position >= 0 ? position - 1 : count + position;
        break;
    case Fetch::Relative:
        cursor.at += position;
        break;
    }
    if (!statement.into.empty() && statement.into.size() != cursor.types.size())
        throw tsql::typeError(16924, "Cursorfetch: The number of variables declared in the INTO list must match that of selected columns.",
                              statement.line);
    if (cursor.at < 0 || cursor.at >= count) {
        cursor.at = cursor.at < 0 ? -1 : count;
        session_.fetchStatus = -1;
        return;
    }
    session_.fetchStatus = 0;
    if (statement.into.empty())
        throw tsql::unsupported("FETCH without INTO", statement.line);
    const std::vector<Cell>& row = cursor.rows[static_cast<std::size_t>(cursor.at)];
    for (std::size_t i = 0; i < statement.into.size(); ++i) {
        const int slot = plans_.slotOf(statement.into[i], statement.line);
        batch_.assign(slot, tsql::converted(row[i], cursor.types[i], batch_.variable(slot).type));
    }
    session_.rowCount = 1;
}

int Engine::cursorStatus(std::string_view name) {
    const Cursor* cursor = batch_.frame ? findCursor(std::string(name)) : nullptr;
    if (!cursor)
        return -3;
    return !cursor->open ? -1 : cursor->rows.empty() ? 0 : 1;
}

} // namespace merchantry::db::embedded
