#include "app/db/embedded/cursors.h"
#include "app/db/embedded/scopes.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "base/lettercase.h"

#include <algorithm>

namespace merchantry::db::embedded {

using Action = tsql::CursorStatement::Action;
using Fetch = tsql::CursorStatement::Fetch;

Cursor* Cursors::find(const std::string& name) {
    if (!name.empty() && name.front() == '@') {
        const auto variable = batch_.frame->cursorVariables.find(plans_.slotOf(name, 0));
        return variable == batch_.frame->cursorVariables.end() ? nullptr : find(variable->second);
    }
    const std::string key = lowerCase(name);
    for (std::map<std::string, Cursor>* home : {&batch_.frame->cursors, &batch_.session.cursors}) {
        if (const auto found = home->find(key); found != home->end())
            return &found->second;
    }
    return nullptr;
}

Cursor& Cursors::require(const tsql::CursorStatement& statement) {
    Cursor* cursor = find(statement.name);
    if (!cursor)
        throw serverMessage(Message::UnknownCursor, {statement.name}, statement.line);
    return *cursor;
}

Cursor& Cursors::requireOpen(const tsql::CursorStatement& statement) {
    Cursor& cursor = require(statement);
    if (!cursor.open)
        throw serverMessage(Message::CursorClosed, {}, statement.line);
    return cursor;
}

void Cursors::run(const tsql::CursorStatement& statement) {
    switch (statement.action) {
    case Action::Declare:
        return declare(statement);
    case Action::Open:
        return open(require(statement), statement);
    case Action::Fetch:
        return fetch(requireOpen(statement), statement);
    case Action::Close:
        return close(requireOpen(statement));
    case Action::Deallocate:
        return deallocate(statement);
    }
}

void Cursors::declare(const tsql::CursorStatement& statement) {
    Cursor cursor;
    cursor.query = statement.query.get();
    cursor.code = batch_.frame->code;
    cursor.variables = batch_.frame->variables;
    cursor.number = statement.number;
    std::string key = lowerCase(statement.name);
    const bool isVariable = statement.name.front() == '@';
    if (isVariable) {
        key = "\x01" + std::to_string(++batch_.session.cursorNumber);
        batch_.frame->cursorVariables[plans_.slotOf(statement.name, statement.line)] = key;
    }
    std::map<std::string, Cursor>& home = statement.local || isVariable ? batch_.frame->cursors : batch_.session.cursors;
    if (home.count(key) != 0)
        throw serverMessage(Message::CursorExists, {statement.name}, statement.line);
    home[key] = std::move(cursor);
}

void Cursors::open(Cursor& cursor, const tsql::CursorStatement& statement) {
    if (cursor.open)
        throw serverMessage(Message::CursorOpen, {}, statement.line);
    transaction_.beforeRead();
    Frame declared;
    declared.code = cursor.code;
    declared.variables = cursor.variables;
    declared.caller = batch_.frame;
    declared.level = batch_.frame->level;
    declared.scopeIdentity = batch_.frame->scopeIdentity;
    const SeenFromScope inside(batch_, declared);
    const tsql::QueryPlan plan = plans_.binder().query(*cursor.query);
    cursor.types.clear();
    for (const Column& column : plan.columns)
        cursor.types.push_back(column.type);
    cursor.rows = evaluator_.rows(plan.sql);
    cursor.at = -1;
    cursor.open = true;
}

void Cursors::close(Cursor& cursor) {
    cursor.open = false;
    cursor.rows.clear();
}

void Cursors::deallocate(const tsql::CursorStatement& statement) {
    require(statement);
    std::string key = lowerCase(statement.name);
    if (statement.name.front() == '@')
        key = batch_.frame->cursorVariables[plans_.slotOf(statement.name, 0)];
    if (batch_.frame->cursors.erase(key) == 0)
        batch_.session.cursors.erase(key);
}

// The row that is wanted: -1 or less before the first, the count or more behind the last.
std::int64_t Cursors::placeOf(const Cursor& cursor, const tsql::CursorStatement& statement) {
    const auto count = static_cast<std::int64_t>(cursor.rows.size());
    std::int64_t position = 0;
    if (statement.position)
        position = evaluator_.value(*plans_.values(statement, {{statement.position.get(), tsql::simpleType(TypeKind::Int)}})).integer;
    switch (statement.fetch) {
    case Fetch::Next:
        return std::min(cursor.at + 1, count);
    case Fetch::Prior:
        return std::max<std::int64_t>(cursor.at - 1, -1);
    case Fetch::First:
        return 0;
    case Fetch::Last:
        return count - 1;
    case Fetch::Absolute:
        return position >= 0 ? position - 1 : count + position;
    case Fetch::Relative:
        break;
    }
    return cursor.at + position;
}

void Cursors::fetch(Cursor& cursor, const tsql::CursorStatement& statement) {
    const auto count = static_cast<std::int64_t>(cursor.rows.size());
    cursor.at = placeOf(cursor, statement);
    if (!statement.into.empty() && statement.into.size() != cursor.types.size())
        throw serverMessage(Message::FetchCount, {}, statement.line);
    if (cursor.at < 0 || cursor.at >= count) {
        cursor.at = cursor.at < 0 ? -1 : count;
        batch_.session.fetchStatus = -1;
        batch_.session.rowCount = 0;
        return;
    }
    batch_.session.fetchStatus = 0;
    if (statement.into.empty())
        throw tsql::unsupported("FETCH without INTO", statement.line);
    const std::vector<tsql::Cell>& row = cursor.rows[static_cast<std::size_t>(cursor.at)];
    for (std::size_t i = 0; i < statement.into.size(); ++i) {
        const int slot = plans_.slotOf(statement.into[i], statement.line);
        batch_.assign(slot, tsql::converted(row[i], cursor.types[i], batch_.variable(slot).type));
    }
    batch_.session.rowCount = 1;
}

int Cursors::status(const std::string& name) {
    const Cursor* cursor = batch_.frame ? find(name) : nullptr;
    if (!cursor)
        return -3;
    return !cursor->open ? -1 : cursor->rows.empty() ? 0 : 1;
}

} // namespace merchantry::db::embedded
