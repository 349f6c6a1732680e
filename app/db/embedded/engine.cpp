#include "app/db/embedded/engine.h"
#include "app/db/embedded/scopes.h"

#include "app/db/nativeerrors.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/parser.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>
#include <utility>

namespace merchantry::db::embedded {
Engine::Engine(const std::filesystem::path& file, bool durable, std::shared_ptr<SharedState> shared)
    : connection_(file, durable), store_(connection_), catalog_(store_, temporaries_, rows_),
      identities_(connection_, catalog_, std::move(shared)) {
    connection_.host = this;
    registerFunctions(connection_.handle(), *this);
    rows_.attach(connection_.handle());
}

void Engine::execute(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink) {
    runTop(sink, [&] {
        const std::shared_ptr<Code> code = code_.batch(batch, parameters);
        runCode(code, parameters);
    });
}

void Engine::call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink) {
    runTop(sink, [&] {
        const std::string name = objectNameOf(procedure).last();
        const StoredObject* object = store_.find(name);
        if (!object || object->kind != "P")
            throw tsql::nameError(2812, "Could not find stored procedure '" + name + "'.", 0);
        std::vector<BoundArgument> arguments;
        for (const Parameter& parameter : parameters) {
            BoundArgument argument;
            if (!parameter.name.empty() && !tsql::sameName(parameter.name, "RETURN_VALUE"))
                argument.name = parameter.name.front() == '@' ? parameter.name : "@" + parameter.name;
            argument.type = parameter.type.kind == TypeKind::Null ? tsql::typeOf(parameter.value) : parameter.type;
            argument.cell = tsql::cellOf(parameter.value, argument.type);
            arguments.push_back(std::move(argument));
        }
        std::vector<int> outputOf;
        const CallResult result = callModule(*object, arguments, outputOf);
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            const int slot = outputOf[i];
            if (!parameters[i].output || slot < 0)
                continue;
            const SqlType& type = result.code->variables[static_cast<std::size_t>(slot)].type;
            parameters[i].value = tsql::valueOf(result.outputs[static_cast<std::size_t>(slot)], type);
        }
    });
}

// Runs a batch's body with the state of a batch around it, and throws the first error when all has run. A sink that runs a batch of its
// own while it takes rows gets the outer batch's state back behind it.
void Engine::runTop(ResultSink& sink, const std::function<void()>& body) {
    const std::vector<DbError> errors = errorsOf(sink, body);
    if (errors.empty())
        return;
    session_.error = errors[0].native();
    throw DbError(errors[0]);
}

std::vector<DbError> Engine::errorsOf(ResultSink& sink, const std::function<void()>& body) {
    const bool nested = batch_.frame != nullptr;
    const BatchScope running(batch_, sink);
    failure.reset();
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

void Engine::runCode(const std::shared_ptr<Code>& code, std::vector<Parameter>& parameters) {
    Frame frame;
    frame.code = code;
    frame.variables.resize(code->variables.size());
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const SqlType& type = code->variables[i].type;
        const SqlType from = parameters[i].type.kind == TypeKind::Null ? tsql::typeOf(parameters[i].value) : parameters[i].type;
        frame.variables[i] = tsql::converted(tsql::cellOf(parameters[i].value, from), from, type);
    }
    runFrame(frame);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (parameters[i].output)
            parameters[i].value = tsql::valueOf(frame.variables[i], code->variables[i].type);
    }
}

// ---- the session's own

TableShape Engine::tableShape(std::string_view name) {
    transaction_.refresh();
    const std::shared_ptr<const tsql::TableDef> table = catalogFunctions_.table(name);
    if (!batch_.frame)
        transaction_.endRead();
    if (!table)
        throw tsql::nameError(208, "Invalid object name '" + std::string(name) + "'.", 0);
    TableShape shape;
    shape.name = table->name;
    for (const tsql::ColumnDef& column : table->columns)
        shape.fields.push_back(
            {column.name, column.type, column.nullable, column.identity, column.computed != nullptr, column.defaultValue != nullptr});
    const auto addKey = [&](const std::vector<tsql::IndexColumn>& columns) {
        const bool complete = std::none_of(columns.begin(), columns.end(), [&](const tsql::IndexColumn& column) {
            return table->columns[static_cast<std::size_t>(table->find(column.name))].nullable;
        });
        if (!complete)
            return;
        std::vector<std::string>& key = shape.keys.emplace_back();
        for (const tsql::IndexColumn& column : columns)
            key.push_back(table->columns[static_cast<std::size_t>(table->find(column.name))].name);
    };
    if (const tsql::KeyDef* primary = table->primaryKey())
        addKey(primary->columns);
    for (const tsql::KeyDef& key : table->keys)
        if (&key != table->primaryKey())
            addKey(key.columns);
    for (const tsql::IndexDef& index : table->indexes) {
        if (index.unique)
            addKey(index.columns);
    }
    return shape;
}

void Engine::begin() {
    transaction_.begin();
}

void Engine::commit() {
    transaction_.commit();
}

void Engine::rollback() {
    transaction_.rollback();
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
    const std::vector<std::shared_ptr<const tsql::TableDef>> temporaries = temporaries_.all();
    for (const std::shared_ptr<const tsql::TableDef>& table : temporaries) {
        connection_.run("DROP TABLE IF EXISTS " + table->storage);
        temporaries_.pop(table->name);
    }
    catalog_.reset();
    identities_.forgetLast();
    session_.reset();
}

} // namespace merchantry::db::embedded
