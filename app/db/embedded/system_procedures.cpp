#include "app/db/embedded/system_procedures.h"
#include "app/db/embedded/filestage.h"
#include "app/db/embedded/scopes.h"
#include "base/text.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/parser.h"
#include "app/db/tsql/token.h"
#include "base/lettercase.h"

#include <algorithm>

namespace merchantry::db::embedded {
namespace {

DbError missing(const char* procedure, const char* parameter, int line) {
    return serverMessage(Message::MissingParameter, {procedure, parameter}, line);
}

void requireWide(const Argument& argument, const char* parameter, int line) {
    const TypeKind kind = argument.type.kind;
    if (kind != TypeKind::NVarChar && kind != TypeKind::NChar && kind != TypeKind::NText && !argument.cell.isNull())
        throw serverMessage(Message::ParameterNotNText, {parameter}, line);
}

std::size_t placeOf(const std::vector<tsql::ParameterClause>& clauses, const Argument& argument, std::size_t place) {
    if (argument.name.empty())
        return place;
    const auto found = std::find_if(clauses.begin(), clauses.end(),
                                    [&](const tsql::ParameterClause& clause) { return tsql::sameName(clause.name, argument.name); });
    return static_cast<std::size_t>(found - clauses.begin());
}

} // namespace

// A procedure without a function is known and not carried out.
struct SystemProcedures::Entry {
    const char* name;
    void (SystemProcedures::*run)(const tsql::ExecuteStatement& statement);
};

const SystemProcedures::Entry* SystemProcedures::find(const std::string& name) {
    static constexpr Entry kAll[] = {
        {"sp_executesql", &SystemProcedures::executeSql},
        {"sp_addtype", &SystemProcedures::addType},
        {"sp_reindextexts", &SystemProcedures::reindexTexts},
        {"sp_useidentity", &SystemProcedures::useIdentity},
        {"xp_cmdshell", &SystemProcedures::runShell},
        {"sp_dboption", &SystemProcedures::doNothing},
        {"sp_configure", &SystemProcedures::doNothing},
        {"sp_rename", nullptr},
        {"sp_bindefault", nullptr},
        {"sp_bindrule", nullptr},
        {"sp_helptext", nullptr},
        {"sp_help", nullptr},
    };
    const auto found = std::find_if(std::begin(kAll), std::end(kAll), [&](const Entry& one) { return tsql::sameName(one.name, name); });
    return found == std::end(kAll) ? nullptr : found;
}

void SystemProcedures::execute(const tsql::ExecuteStatement& statement) {
    const std::string name = calls_.nameOf(statement);
    const Entry* entry = find(name);
    if (!entry)
        throw serverMessage(Message::UnknownProcedure, {(statement.procedure.empty() ? name : statement.procedure.toText())},
                            statement.line);
    if (!entry->run)
        throw tsql::unsupported(name, statement.line);
    (this->*entry->run)(statement);
}

void SystemProcedures::runShell(const tsql::ExecuteStatement& statement) {
    FileStage* const stage = FileStage::current();
    const Arguments arguments = calls_.argumentsOf(statement);
    if (stage == nullptr || arguments.size() != 1 || arguments.front().cell.isNull())
        refuseShell();
    stage->run(tsql::textOf(arguments.front().cell, arguments.front().type));
}

// Brings a store of an earlier order of texts to the newest; another session reads the catalogue, and with it the order, before its next
// batch.
void SystemProcedures::reindexTexts(const tsql::ExecuteStatement&) {
    WriteScope scope(transaction_);
    if (schema_.textOrder() == kNewestTextOrder)
        return scope.finish();
    Undo order([&, before = schema_.textOrder()] { batch_.noting([&] { schema_.compareBy(before); }); });
    schema_.takeNewestTextOrder();
    order.keep();
    scope.finish();
}

// (table, number): the table's identity goes on behind that number, as if a row had had it. For copies of stores whose newest rows were
// deleted.
void SystemProcedures::useIdentity(const tsql::ExecuteStatement& statement) {
    const Arguments arguments = calls_.argumentsOf(statement);
    if (arguments.size() != 2 || arguments[0].cell.isNull() || arguments[1].cell.isNull())
        throw missing("sp_useidentity", "@number", statement.line);
    tsql::ObjectName name;
    name.parts.push_back(arguments[0].cell.bytes);
    const std::shared_ptr<const tsql::TableDef> table = catalog_.table(name);
    if (!table || table->identityColumn() < 0)
        throw serverMessage(Message::NoIdentityColumn, {arguments[0].cell.bytes}, statement.line);
    WriteScope scope(transaction_);
    identities_.beginStatement();
    identities_.note(table->id, tsql::converted(arguments[1].cell, arguments[1].type, {TypeKind::BigInt}).integer);
    identities_.endStatement();
    scope.finish();
}

// (text, declarations of parameters, their values ...)
void SystemProcedures::executeSql(const tsql::ExecuteStatement& statement) {
    const Arguments arguments = calls_.argumentsOf(statement);
    if (arguments.empty())
        throw missing("sp_executesql", "@statement", statement.line);
    requireWide(arguments[0], "@statement", statement.line);
    std::vector<Parameter> parameters;
    if (arguments.size() == 1)
        return calls_.executeText(arguments[0].cell.bytes, parameters);
    requireWide(arguments[1], "@params", statement.line);
    const std::vector<tsql::ParameterClause> clauses = tsql::parseParameterText(arguments[1].cell.bytes);
    for (const tsql::ParameterClause& clause : clauses)
        parameters.push_back({clause.name.substr(1), catalog_.declaredType(clause.type), {}, clause.output});
    std::vector<bool> given(clauses.size(), false);
    std::vector<int> slots(clauses.size(), -1); // that take what comes back
    for (std::size_t i = 2; i < arguments.size(); ++i) {
        const std::size_t place = placeOf(clauses, arguments[i], i - 2);
        if (place >= clauses.size())
            throw serverError(Message::TooManyArguments, "Procedure or function has too many arguments specified.", statement.line);
        given[place] = true;
        const SqlType& type = parameters[place].type;
        parameters[place].value = tsql::valueOf(tsql::converted(arguments[i].cell, arguments[i].type, type), type);
        slots[place] = clauses[place].output ? arguments[i].outputSlot : -1;
    }
    const auto lacking = std::find(given.begin(), given.end(), false);
    if (lacking != given.end())
        throw serverMessage(Message::ParameterNotSupplied, {clauses[static_cast<std::size_t>(lacking - given.begin())].name},
                            statement.line);
    calls_.executeText(arguments[0].cell.bytes, parameters);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i] >= 0)
            calls_.give(slots[i], tsql::cellOf(parameters[i].value, parameters[i].type), parameters[i].type);
    }
}

void SystemProcedures::addType(const tsql::ExecuteStatement& statement) {
    const Arguments arguments = calls_.argumentsOf(statement);
    if (arguments.size() < 2)
        throw missing("sp_addtype", "@phystype", statement.line);
    tsql::CreateTypeStatement create;
    create.line = statement.line;
    create.name.parts.push_back(std::string(trimmed(arguments[0].cell.bytes)));
    create.base = tsql::parseTypeText(arguments[1].cell.bytes);
    if (arguments.size() > 2 && !arguments[2].cell.isNull()) {
        const std::string nulls = lowerCase(arguments[2].cell.bytes);
        create.nullable = nulls.find("not") == std::string::npos && nulls != "nonull";
    }
    definer_.run(create);
}

} // namespace merchantry::db::embedded
