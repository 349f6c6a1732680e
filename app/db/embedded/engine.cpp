#include "app/db/embedded/engine.h"
#include "app/db/embedded/scopes.h"

#include "app/db/messages.h"
#include "app/db/tsql/errors.h"

#include <algorithm>
#include <utility>

namespace merchantry::db::embedded {
namespace {

// The names of a key's columns, where it tells each row from all others: none for one with columns that may be null.
std::vector<std::string> keyOf(const tsql::TableDef& table, const std::vector<tsql::IndexColumn>& columns) {
    std::vector<std::string> key;
    for (const tsql::IndexColumn& one : columns) {
        const tsql::ColumnDef& column = table.columns[static_cast<std::size_t>(table.find(one.name))];
        if (column.nullable)
            return {};
        key.push_back(column.name);
    }
    return key;
}

TableShape shapeOf(const tsql::TableDef& table) {
    TableShape shape;
    shape.name = table.name;
    for (const tsql::ColumnDef& column : table.columns)
        shape.fields.push_back(
            {column.name, column.type, column.nullable, column.identity, column.computed != nullptr, column.defaultValue != nullptr});
    const auto add = [&](const std::vector<tsql::IndexColumn>& columns) {
        if (std::vector<std::string> key = keyOf(table, columns); !key.empty())
            shape.keys.push_back(std::move(key));
    };
    const tsql::KeyDef* primary = table.primaryKey();
    if (primary)
        add(primary->columns);
    for (const tsql::KeyDef& key : table.keys) {
        if (&key != primary)
            add(key.columns);
    }
    for (const tsql::IndexDef& index : table.indexes) {
        if (index.unique)
            add(index.columns);
    }
    return shape;
}

} // namespace

Engine::Engine(const std::filesystem::path& file, bool durable, std::shared_ptr<SharedState> shared)
    : connection_(file, durable), identities_(connection_, catalog_, std::move(shared)) {
    connection_.host = &host_;
    registerFunctions(connection_.handle(), host_);
    rows_.attach(connection_.handle());
}

void Engine::execute(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink) {
    run(sink, [&] { calls_.runBatch(batch, parameters); });
}

void Engine::call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink) {
    run(sink, [&] { calls_.callProcedure(objectNameOf(procedure).last(), parameters); });
}

// Runs a batch's body with the state of a batch around it, and throws the first error when all has run.
void Engine::run(ResultSink& sink, const std::function<void()>& body) {
    const std::vector<DbError> errors = errorsOf(sink, body);
    if (errors.empty())
        return;
    session_.error = errors[0].native();
    throw DbError(errors[0]);
}

std::vector<DbError> Engine::errorsOf(ResultSink& sink, const std::function<void()>& body) {
    const bool nested = batch_.frame != nullptr;
    const BatchScope running(batch_, sink);
    host_.failure.reset();
    {
        const AtEnd batch([&] {
            if (!nested)
                transaction_.endBatch();
        });
        try {
            transaction_.refresh();
            body();
        } catch (const BatchEnd&) {
        } catch (const ScopeEnd& end) {
            batch_.note(end.error);
        } catch (const DbError& error) {
            batch_.note(error);
        }
    }
    return std::move(batch_.errors);
}

// ---- the session's own

TableShape Engine::tableShape(std::string_view name) {
    transaction_.refresh();
    const std::shared_ptr<const tsql::TableDef> table = catalogFunctions_.table(name);
    if (!batch_.frame)
        transaction_.endRead();
    if (!table)
        throw serverMessage(Message::InvalidObject, {std::string(name)}, 0);
    return shapeOf(*table);
}

Value Engine::lastIdentity() const {
    return identities_.last().isNull() ? Value() : Value(identities_.last().integer);
}

void Engine::cancel() {
    batch_.cancelled = true;
    sqlite3_interrupt(connection_.handle());
}

void Engine::reset() {
    transaction_.reset();
    setReadOnly(false);
    for (const TemporaryTables::TablePtr& table : temporaries_.all()) {
        connection_.run("DROP TABLE IF EXISTS " + table->storage);
        temporaries_.pop(table->name);
    }
    catalog_.reset();
    identities_.forgetLast();
    session_.reset();
}

} // namespace merchantry::db::embedded
