#include "app/db/embedded/engine.h"
#include "app/db/embedded/filestage.h"
#include "app/db/embedded/scopes.h"

#include "app/db/nativeerrors.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/parser.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::embedded {
namespace {

// What is passed, or a parameter's default, in the parameter's type.
Cell toParameter(const Cell& cell, const SqlType& from, const SqlType& to) {
    try {
        return tsql::converted(cell, from, to);
    } catch (const DbError&) {
        throw serverError(8114, "Error converting data type " + tsql::kindNameOf(from) + " to " + tsql::kindNameOf(to) + ".")
            .withSeverity(16, 5);
    }
}

} // namespace

std::vector<Engine::BoundArgument> Engine::argumentsOf(const tsql::ExecuteStatement& statement) {
    std::vector<BoundArgument> arguments;
    for (const tsql::Argument& argument : statement.arguments) {
        BoundArgument bound;
        bound.name = argument.name;
        if (argument.value->kind == tsql::ExprKind::Default) {
            bound.isDefault = true;
        } else if (argument.value->kind == tsql::ExprKind::Variable) {
            const int slot = plans_.slotOf(argument.value->text, argument.line);
            bound.cell = batch_.value(slot);
            bound.type = batch_.variable(slot).type;
            bound.outputSlot = argument.output ? slot : -1;
        } else {
            bound.cell = evaluator_.once(*argument.value, bound.type);
        }
        arguments.push_back(std::move(bound));
    }
    return arguments;
}

void Engine::runExecute(const tsql::ExecuteStatement& statement) {
    std::string name = statement.procedure.empty() ? std::string() : statement.procedure.last();
    if (!statement.procedureVariable.empty()) {
        const int slot = plans_.slotOf(statement.procedureVariable, statement.line);
        name = split(batch_.value(slot).bytes, ".").back();
    }
    const StoredObject* object = store_.find(name);
    const bool runnable = object && (object->kind == "P" || object->kind == "FN");
    if (!runnable)
        return runSystemProcedure(statement, name);
    const std::vector<BoundArgument> arguments = argumentsOf(statement);
    const auto setResult = [&](const Cell& cell, const SqlType& type) {
        if (statement.result.empty())
            return;
        const int slot = plans_.slotOf(statement.result, statement.line);
        batch_.assign(slot, tsql::converted(cell, type, batch_.variable(slot).type));
    };
    if (object->kind == "FN") {
        const std::shared_ptr<const tsql::FunctionDef> function = store_.functionById(object->id);
        if (arguments.size() > function->parameters.size())
            throw tsql::syntaxError(8144, "Procedure or function " + function->name + " has too many arguments specified.", statement.line);
        std::vector<Cell> cells;
        for (std::size_t i = 0; i < arguments.size(); ++i)
            cells.push_back(tsql::converted(arguments[i].cell, arguments[i].type, function->parameters[i].type));
        return setResult(callFunction(object->id, std::vector<CellView>(cells.begin(), cells.end())), function->returns);
    }
    std::vector<int> outputOf;
    const CallResult result = callModule(*object, arguments, outputOf);
    copyOutputs(result, arguments, outputOf);
    if (!result.ended)
        setResult(Cell::ofInteger(result.status), tsql::simpleType(TypeKind::Int));
}

void Engine::copyOutputs(const CallResult& result, const std::vector<BoundArgument>& arguments, const std::vector<int>& outputOf) {
    if (result.ended)
        return;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const int parameter = outputOf[i];
        if (arguments[i].outputSlot < 0 || parameter < 0)
            continue;
        const SqlType& from = result.code->variables[static_cast<std::size_t>(parameter)].type;
        const SqlType& to = batch_.frame->code->variables[static_cast<std::size_t>(arguments[i].outputSlot)].type;
        batch_.assign(arguments[i].outputSlot, tsql::converted(result.outputs[static_cast<std::size_t>(parameter)], from, to));
    }
}

// Puts the arguments into the parameters of the frame; outputOf tells for each argument its parameter, when that gives something back.
void Engine::bindArguments(const Code& code, const std::vector<BoundArgument>& arguments, Frame& frame, std::vector<int>& outputOf) {
    const std::vector<Code::Parameter>& parameters = code.parameters;
    if (parameters.empty() && !arguments.empty())
        throw tsql::typeError(8146, "Procedure " + code.procedure + " has no parameters and arguments were supplied.", 0);
    if (arguments.size() > parameters.size())
        throw tsql::typeError(8144, "Procedure or function " + code.procedure + " has too many arguments specified.", 0);
    std::vector<bool> given(parameters.size(), false);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const BoundArgument& argument = arguments[i];
        std::size_t place = i;
        if (!argument.name.empty()) {
            const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const Code::Parameter& parameter) {
                return tsql::sameName(parameter.name, argument.name);
            });
            if (found == parameters.end())
                throw tsql::typeError(8145, argument.name + " is not a parameter for procedure " + code.procedure + ".", 0);
            place = static_cast<std::size_t>(found - parameters.begin());
        }
        if (given[place] && !argument.name.empty())
            throw tsql::typeError(8143, "Parameter '" + argument.name + "' was supplied multiple times.", 0);
        outputOf.push_back(parameters[place].output ? static_cast<int>(place) : -1);
        if (argument.isDefault)
            continue;
        given[place] = true;
        tsql::requireImplicit(argument.type, parameters[place].type, 0);
        frame.variables[place] = toParameter(argument.cell, argument.type, parameters[place].type);
    }
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (given[i])
            continue;
        if (!parameters[i].defaultValue)
            throw tsql::typeError(201,
                                  "Procedure or function '" + code.procedure + "' expects parameter '" + parameters[i].name +
                                      "', which was not supplied.",
                                  0);
        const DefaultScope inside(batch_, frame);
        SqlType type;
        const Cell cell = evaluator_.once(*parameters[i].defaultValue, type);
        frame.variables[i] = toParameter(cell, type, parameters[i].type);
    }
}

std::optional<DbError> Engine::runDeeper(Frame& frame) {
    const LevelScope level(batch_);
    try {
        runFrame(frame);
        return std::nullopt;
    } catch (const ScopeEnd& end) {
        if (end.frame != &frame)
            throw;
        if (batch_.tries > 0)
            throw DbError(end.error);
        return end.error;
    }
}

Engine::CallResult Engine::callModule(const StoredObject& object, const std::vector<BoundArgument>& arguments, std::vector<int>& outputOf) {
    CallResult result;
    result.code = code_.module(object);
    Frame frame;
    frame.code = result.code;
    frame.variables.resize(result.code->variables.size());
    bindArguments(*result.code, arguments, frame, outputOf);
    const int entry = transaction_.count();
    if (std::optional<DbError> error = runDeeper(frame)) {
        batch_.note(error->in(result.code->procedure));
        result.ended = true;
        return result;
    }
    result.status = frame.returnValue;
    result.outputs.assign(frame.variables.begin(), frame.variables.begin() + static_cast<std::ptrdiff_t>(result.code->parameters.size()));
    if (transaction_.count() != entry) {
        const DbError error =
            DbError(DbError::Category::Transaction, 266,
                    "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. Previous count = " +
                        std::to_string(entry) + ", current count = " + std::to_string(transaction_.count()) + ".")
                .withSeverity(16, 2);
        if (batch_.tries > 0)
            throw DbError(error);
        batch_.note(error);
    }
    return result;
}

void Engine::runExecuteText(const std::string& text, std::vector<Parameter>* parameters) {
    std::vector<Parameter> none;
    std::vector<Parameter>& given = parameters ? *parameters : none;
    const std::shared_ptr<Code> code = code_.batch(text, given);
    Frame frame;
    frame.code = code;
    frame.variables.resize(code->variables.size());
    for (std::size_t i = 0; i < given.size(); ++i)
        frame.variables[i] = tsql::cellOf(given[i].value, given[i].type);
    if (const std::optional<DbError> error = runDeeper(frame)) {
        batch_.note(*error);
        return;
    }
    for (std::size_t i = 0; i < given.size(); ++i)
        given[i].value = tsql::valueOf(frame.variables[i], given[i].type);
}

Cell Engine::callFunction(std::int64_t id, const std::vector<CellView>& arguments) {
    const StoredObject* object = store_.findById(id);
    if (!object)
        throw tsql::nameError(4121, "Cannot find the user-defined function.", 0);
    const FunctionScope inside(batch_);
    const std::shared_ptr<Code> code = code_.module(*object);
    Frame frame;
    frame.code = code;
    frame.isFunction = true;
    frame.variables.resize(code->variables.size());
    for (std::size_t i = 0; i < arguments.size(); ++i)
        frame.variables[i] = arguments[i].copy();
    try {
        runFrame(frame);
    } catch (const ScopeEnd& end) {
        throw DbError(end.error);
    } catch (const BatchEnd&) {
        throw DbError(DbError::Category::Cancelled, 0, "The statement was cancelled.");
    }
    return frame.result;
}

// ---- procedures of the system

void Engine::runSystemProcedure(const tsql::ExecuteStatement& statement, const std::string& name) {
    if (tsql::sameName(name, "sp_executesql"))
        return executeSql(statement);
    if (tsql::sameName(name, "sp_addtype"))
        return addType(statement);
    if (tsql::sameName(name, "sp_reindextexts"))
        return reindexTexts();
    if (tsql::sameName(name, "sp_dboption") || tsql::sameName(name, "sp_configure"))
        return;
    if (tsql::sameName(name, "xp_cmdshell"))
        return runShell(statement);
    if (tsql::sameName(name, "sp_rename") || tsql::sameName(name, "sp_bindefault") || tsql::sameName(name, "sp_bindrule") ||
        tsql::sameName(name, "sp_helptext") || tsql::sameName(name, "sp_help"))
        throw tsql::unsupported(name, statement.line);
    const std::string text = statement.procedure.empty() ? name : statement.procedure.toText();
    throw tsql::nameError(2812, "Could not find stored procedure '" + text + "'.", statement.line);
}

// No shell, ever: the three commands of the backup screen while its stage stands.
void Engine::runShell(const tsql::ExecuteStatement& statement) {
    FileStage* const stage = FileStage::current();
    const std::vector<BoundArgument> arguments = argumentsOf(statement);
    if (stage == nullptr || arguments.size() != 1 || arguments.front().cell.isNull())
        refuseShell();
    stage->run(tsql::textOf(arguments.front().cell, arguments.front().type));
}

// Brings a store of an earlier order of texts to the newest; another session reads the catalogue, and with it the order, before its next
// batch.
void Engine::reindexTexts() {
    WriteScope scope(transaction_);
    if (schema_.textOrder() == kNewestTextOrder)
        return scope.finish();
    Undo order([&, before = schema_.textOrder()] { batch_.noting([&] { schema_.compareBy(before); }); });
    schema_.takeNewestTextOrder();
    order.keep();
    scope.finish();
}

void Engine::executeSql(const tsql::ExecuteStatement& statement) {
    const std::vector<BoundArgument> arguments = argumentsOf(statement);
    if (arguments.empty())
        throw tsql::typeError(201, "Procedure or function 'sp_executesql' expects parameter '@statement', which was not supplied.",
                              statement.line);
    const auto requireWide = [&](const BoundArgument& argument, const char* parameter) {
        if (argument.type.kind != TypeKind::NVarChar && argument.type.kind != TypeKind::NChar && argument.type.kind != TypeKind::NText &&
            !argument.cell.isNull())
            throw tsql::typeError(214, std::string("Procedure expects parameter '") + parameter + "' of type 'ntext/nchar/nvarchar'.",
                                  statement.line);
    };
    requireWide(arguments[0], "@statement");
    std::vector<Parameter> parameters;
    std::vector<int> slots;
    if (arguments.size() > 1) {
        requireWide(arguments[1], "@params");
        const std::vector<tsql::ParameterClause> clauses = tsql::parseParameterText(arguments[1].cell.bytes);
        std::vector<bool> given(clauses.size(), false);
        for (const tsql::ParameterClause& clause : clauses) {
            bool nullable = true;
            parameters.push_back({clause.name.substr(1), catalog_.declaredType(clause.type, &nullable), {}, clause.output});
        }
        slots.assign(clauses.size(), -1);
        for (std::size_t i = 2; i < arguments.size(); ++i) {
            std::size_t place = i - 2;
            if (!arguments[i].name.empty()) {
                const auto found = std::find_if(clauses.begin(), clauses.end(), [&](const tsql::ParameterClause& clause) {
                    return tsql::sameName(clause.name, arguments[i].name);
                });
                place = static_cast<std::size_t>(found - clauses.begin());
            }
            if (place >= clauses.size())
                throw tsql::typeError(8144, "Procedure or function has too many arguments specified.", statement.line);
            given[place] = true;
            const SqlType& type = parameters[place].type;
            parameters[place].value = tsql::valueOf(tsql::converted(arguments[i].cell, arguments[i].type, type), type);
            slots[place] = clauses[place].output ? arguments[i].outputSlot : -1;
        }
        const auto missing = std::find(given.begin(), given.end(), false);
        if (missing != given.end())
            throw tsql::typeError(8178,
                                  "The parameterized query expects the parameter '" +
                                      clauses[static_cast<std::size_t>(missing - given.begin())].name + "', which was not supplied.",
                                  statement.line);
    }
    runExecuteText(arguments[0].cell.bytes, &parameters);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i] < 0)
            continue;
        const SqlType& to = batch_.frame->code->variables[static_cast<std::size_t>(slots[i])].type;
        batch_.assign(slots[i], tsql::converted(tsql::cellOf(parameters[i].value, parameters[i].type), parameters[i].type, to));
    }
}

void Engine::addType(const tsql::ExecuteStatement& statement) {
    const std::vector<BoundArgument> arguments = argumentsOf(statement);
    if (arguments.size() < 2)
        throw tsql::typeError(201, "Procedure or function 'sp_addtype' expects parameter '@phystype', which was not supplied.",
                              statement.line);
    tsql::CreateTypeStatement create;
    create.line = statement.line;
    create.name.parts.push_back(std::string(trimmed(arguments[0].cell.bytes)));
    create.base = tsql::parseTypeText(arguments[1].cell.bytes);
    if (arguments.size() > 2 && !arguments[2].cell.isNull())
        create.nullable =
            lowerCase(arguments[2].cell.bytes).find("not") == std::string::npos && lowerCase(arguments[2].cell.bytes) != "nonull";
    definer_.run(create);
}

} // namespace merchantry::db::embedded
