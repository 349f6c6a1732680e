#include "app/db/embedded/calls.h"
#include "app/db/embedded/scopes.h"
#include "base/text.h"

#include "app/db/messages.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::Cell;
using tsql::CellView;

namespace {

SqlType typeOf(const Parameter& parameter) {
    return parameter.type.kind == TypeKind::Null ? tsql::typeOf(parameter.value) : parameter.type;
}

// What is passed, or a parameter's default, in the parameter's type.
Cell toParameter(const Cell& cell, const SqlType& from, const SqlType& to) {
    try {
        return tsql::converted(cell, from, to);
    } catch (const DbError&) {
        throw serverMessage(Message::CannotConvert, {tsql::kindNameOf(from), tsql::kindNameOf(to)}).withSeverity(16, 5);
    }
}

Frame frameOf(const std::shared_ptr<Code>& code) {
    Frame frame;
    frame.code = code;
    frame.variables.resize(code->variables.size());
    return frame;
}

// The parameter that an argument is for.
std::size_t placeOf(const Code& code, const Argument& argument, std::size_t place) {
    if (argument.name.empty())
        return place;
    const auto found = std::find_if(code.parameters.begin(), code.parameters.end(),
                                    [&](const Code::Parameter& parameter) { return tsql::sameName(parameter.name, argument.name); });
    if (found == code.parameters.end())
        throw serverMessage(Message::UnknownParameter, {argument.name, code.procedure}, 0);
    return static_cast<std::size_t>(found - code.parameters.begin());
}

} // namespace

// ---- from outside

void Calls::runBatch(std::string_view text, std::vector<Parameter>& parameters) {
    Frame frame = frameOf(code_.batch(text, parameters));
    const std::vector<tsql::Variable>& variables = frame.code->variables;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const SqlType from = typeOf(parameters[i]);
        frame.variables[i] = tsql::converted(tsql::cellOf(parameters[i].value, from), from, variables[i].type);
    }
    runner_.runFrame(frame);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (parameters[i].output)
            parameters[i].value = tsql::valueOf(frame.variables[i], variables[i].type);
    }
}

void Calls::callProcedure(const std::string& name, std::vector<Parameter>& parameters) {
    const StoredObject* object = store_.find(name);
    if (!object || object->kind != "P")
        throw serverMessage(Message::UnknownProcedure, {name}, 0);
    Arguments arguments;
    for (const Parameter& parameter : parameters) {
        Argument argument;
        if (!parameter.name.empty() && !tsql::sameName(parameter.name, "RETURN_VALUE"))
            argument.name = parameter.name.front() == '@' ? parameter.name : "@" + parameter.name;
        argument.type = typeOf(parameter);
        argument.cell = tsql::cellOf(parameter.value, argument.type);
        arguments.push_back(std::move(argument));
    }
    const Result result = call(*object, arguments);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const int slot = result.parameterOf[i];
        if (!parameters[i].output || slot < 0)
            continue;
        const SqlType& type = result.code->variables[static_cast<std::size_t>(slot)].type;
        parameters[i].value = tsql::valueOf(result.outputs[static_cast<std::size_t>(slot)], type);
    }
}

// ---- EXEC

std::string Calls::nameOf(const tsql::ExecuteStatement& statement) {
    if (statement.procedureVariable.empty())
        return statement.procedure.empty() ? std::string() : statement.procedure.last();
    return split(batch_.value(plans_.slotOf(statement.procedureVariable, statement.line)).bytes, ".").back();
}

Arguments Calls::argumentsOf(const tsql::ExecuteStatement& statement) {
    Arguments arguments;
    for (const tsql::Argument& given : statement.arguments) {
        Argument argument;
        argument.name = given.name;
        if (given.value->kind == tsql::ExprKind::Default) {
            argument.isDefault = true;
        } else if (given.value->kind == tsql::ExprKind::Variable) {
            const int slot = plans_.slotOf(given.value->text, given.line);
            argument.cell = batch_.value(slot);
            argument.type = batch_.variable(slot).type;
            argument.outputSlot = given.output ? slot : -1;
        } else {
            argument.cell = evaluator_.once(*given.value, argument.type);
        }
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

void Calls::give(int slot, const Cell& cell, const SqlType& type) {
    batch_.assign(slot, tsql::converted(cell, type, batch_.variable(slot).type));
}

bool Calls::execute(const tsql::ExecuteStatement& statement) {
    const StoredObject* object = store_.find(nameOf(statement));
    if (!object || (object->kind != "P" && object->kind != "FN"))
        return false;
    const Arguments arguments = argumentsOf(statement);
    SqlType type = tsql::simpleType(TypeKind::Int);
    Cell result;
    if (object->kind == "FN") {
        result = executeFunction(*object, arguments, type);
    } else {
        const Result called = call(*object, arguments);
        if (called.ended)
            return true;
        copyOutputs(called, arguments);
        result = Cell::ofInteger(called.status);
    }
    if (!statement.result.empty())
        give(plans_.slotOf(statement.result, statement.line), result, type);
    return true;
}

Cell Calls::executeFunction(const StoredObject& object, const Arguments& arguments, SqlType& type) {
    const std::shared_ptr<const tsql::FunctionDef> function = store_.functionById(object.id);
    if (arguments.size() > function->parameters.size())
        throw serverMessage(Message::TooManyArguments, {function->name}, 0);
    std::vector<Cell> cells;
    for (std::size_t i = 0; i < arguments.size(); ++i)
        cells.push_back(tsql::converted(arguments[i].cell, arguments[i].type, function->parameters[i].type));
    type = function->returns;
    return callFunction(object.id, std::vector<CellView>(cells.begin(), cells.end()));
}

void Calls::copyOutputs(const Result& result, const Arguments& arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const int parameter = result.parameterOf[i];
        if (arguments[i].outputSlot < 0 || parameter < 0)
            continue;
        const auto place = static_cast<std::size_t>(parameter);
        give(arguments[i].outputSlot, result.outputs[place], result.code->variables[place].type);
    }
}

void Calls::executeText(const std::string& text, std::vector<Parameter>& parameters) {
    Frame frame = frameOf(code_.batch(text, parameters));
    for (std::size_t i = 0; i < parameters.size(); ++i)
        frame.variables[i] = tsql::cellOf(parameters[i].value, parameters[i].type);
    if (const std::optional<DbError> error = runDeeper(frame))
        return batch_.note(*error);
    for (std::size_t i = 0; i < parameters.size(); ++i)
        parameters[i].value = tsql::valueOf(frame.variables[i], parameters[i].type);
}

// ---- procedures

void Calls::bind(const Code& code, const Arguments& arguments, Frame& frame, std::vector<int>& parameterOf) {
    const std::vector<Code::Parameter>& parameters = code.parameters;
    if (parameters.empty() && !arguments.empty())
        throw serverMessage(Message::NoParameters, {code.procedure}, 0);
    if (arguments.size() > parameters.size())
        throw serverMessage(Message::TooManyArguments, {code.procedure}, 0);
    std::vector<bool> given(parameters.size(), false);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const Argument& argument = arguments[i];
        const std::size_t place = placeOf(code, argument, i);
        if (given[place] && !argument.name.empty())
            throw serverMessage(Message::ParameterTwice, {argument.name}, 0);
        parameterOf.push_back(parameters[place].output ? static_cast<int>(place) : -1);
        if (argument.isDefault)
            continue;
        given[place] = true;
        tsql::requireImplicit(argument.type, parameters[place].type, 0);
        frame.variables[place] = toParameter(argument.cell, argument.type, parameters[place].type);
    }
    bindDefaults(code, given, frame);
}

void Calls::bindDefaults(const Code& code, const std::vector<bool>& given, Frame& frame) {
    for (std::size_t i = 0; i < code.parameters.size(); ++i) {
        const Code::Parameter& parameter = code.parameters[i];
        if (given[i])
            continue;
        if (!parameter.defaultValue)
            throw serverMessage(Message::MissingParameter, {code.procedure, parameter.name}, 0);
        const SeenFromScope inside(batch_, frame);
        SqlType type;
        const Cell cell = evaluator_.once(*parameter.defaultValue, type);
        frame.variables[i] = toParameter(cell, type, parameter.type);
    }
}

// Runs it one level below its caller. The error that ended its scope, for the caller to note; thrown where a TRY waits for it.
std::optional<DbError> Calls::runDeeper(Frame& frame) {
    const LevelScope level(batch_);
    try {
        runner_.runFrame(frame);
        return std::nullopt;
    } catch (const ScopeEnd& end) {
        if (end.frame != &frame)
            throw;
        if (batch_.tries > 0)
            throw DbError(end.error);
        return end.error;
    }
}

Calls::Result Calls::call(const StoredObject& procedure, const Arguments& arguments) {
    Result result;
    result.code = code_.module(procedure);
    Frame frame = frameOf(result.code);
    bind(*result.code, arguments, frame, result.parameterOf);
    const int before = transaction_.count();
    if (std::optional<DbError> error = runDeeper(frame)) {
        batch_.note(error->in(result.code->procedure));
        result.ended = true;
        return result;
    }
    result.status = frame.returnValue;
    result.outputs.assign(frame.variables.begin(), frame.variables.begin() + static_cast<std::ptrdiff_t>(result.code->parameters.size()));
    checkCount(before);
    return result;
}

void Calls::checkCount(int before) {
    if (transaction_.count() == before)
        return;
    const DbError error =
        serverMessage(Message::TransactionCount, {std::to_string(before), std::to_string(transaction_.count())}).withSeverity(16, 2);
    if (batch_.tries > 0)
        throw DbError(error);
    batch_.note(error);
}

// ---- functions

Cell Calls::callFunction(std::int64_t id, const std::vector<CellView>& arguments) {
    const StoredObject* object = store_.findById(id);
    if (!object)
        throw serverError(Message::UnknownUserFunction, "Cannot find the user-defined function.", 0);
    const FunctionScope inside(batch_);
    Frame frame = frameOf(code_.module(*object));
    frame.isFunction = true;
    for (std::size_t i = 0; i < arguments.size(); ++i)
        frame.variables[i] = arguments[i].copy();
    try {
        runner_.runFrame(frame);
    } catch (const ScopeEnd& end) {
        throw DbError(end.error);
    } catch (const BatchEnd&) {
        throw DbError(DbError::Category::Cancelled, 0, "The statement was cancelled.");
    }
    return frame.result;
}

} // namespace merchantry::db::embedded
