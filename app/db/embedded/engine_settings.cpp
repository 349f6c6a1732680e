#include "app/db/embedded/engine.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

namespace merchantry::db::embedded {

void Engine::runOption(const tsql::SetOptionStatement& statement) {
    for (const std::string& option : statement.options)
        setOption(option, statement);
    session_.rowCount = 0;
}

void Engine::setOption(const std::string& option, const tsql::SetOptionStatement& statement) {
    const bool on = statement.value == "ON";
    const auto number = [&] {
        if (!statement.expr)
            throw tsql::syntaxError(102, "Incorrect syntax near '" + statement.value + "'.", statement.line);
        const PlanPtr plan = plans_.values(statement, {{statement.expr.get(), tsql::simpleType(TypeKind::Int)}});
        return evaluator_.value(*plan, 0).integer;
    };
    if (option == "ANSI_NULLS") {
        session_.settings.ansiNulls = on;
    } else if (option == "QUOTED_IDENTIFIER") {
        session_.settings.quotedIdentifiers = on;
    } else if (option == "XACT_ABORT") {
        session_.settings.xactAbort = on;
    } else if (option == "ROWCOUNT") {
        session_.settings.rowCount = number();
    } else if (option == "DATEFIRST") {
        session_.settings.dateFirst = static_cast<int>(number());
    } else if (option == "IDENTITY_INSERT") {
        const std::shared_ptr<const tsql::TableDef> table = catalog_.requireTable(statement.table, 1088);
        if (on && catalog_.identityInsertTable != 0 && catalog_.identityInsertTable != table->id)
            throw tsql::typeError(
                8107, "IDENTITY_INSERT is already ON for another table. Cannot perform SET operation for table '" + table->name + "'.",
                statement.line);
        if (on && table->identityColumn() < 0)
            throw tsql::typeError(8106, "Table '" + table->name + "' does not have the identity property. Cannot perform SET operation.",
                                  statement.line);
        catalog_.identityInsertTable = on ? table->id : 0;
        schema_.changed();
    } else if (option == "IMPLICIT_TRANSACTIONS" || option == "CONCAT_NULL_YIELDS_NULL" || option == "ANSI_WARNINGS" ||
               option == "ARITHABORT" || option == "ANSI_PADDING") {
        const bool usual = option != "IMPLICIT_TRANSACTIONS";
        if (on != usual && option != "ARITHABORT" && option != "ANSI_WARNINGS")
            throw tsql::unsupported("SET " + option + " " + statement.value, statement.line);
    } else if (option == "DATEFORMAT") {
        if (statement.value != "MDY")
            throw tsql::unsupported("SET DATEFORMAT " + statement.value, statement.line);
    } else if (option == "LANGUAGE") {
        if (statement.value != "US_ENGLISH" && statement.value != "ENGLISH")
            throw tsql::unsupported("SET LANGUAGE " + statement.value, statement.line);
    } else if (option == "PARSEONLY" || option == "NOEXEC" || option == "FMTONLY" || option == "SHOWPLAN_ALL" ||
               option == "SHOWPLAN_TEXT") {
        if (on)
            throw tsql::unsupported("SET " + option + " ON", statement.line);
    } else if (option != "NOCOUNT" && option != "TEXTSIZE" && option != "LOCK_TIMEOUT" && option != "STATISTICS" &&
               option != "ANSI_NULL_DFLT_ON" && option != "ANSI_NULL_DFLT_OFF" && option != "ANSI_DEFAULTS" &&
               option != "NUMERIC_ROUNDABORT" && option != "ARITHIGNORE" && option != "CURSOR_CLOSE_ON_COMMIT" &&
               option != "DEADLOCK_PRIORITY" && option != "FORCEPLAN" && option != "NO_BROWSETABLE" &&
               option != "REMOTE_PROC_TRANSACTIONS" && option != "TRANSACTION ISOLATION LEVEL" && option != "QUERY_GOVERNOR_COST_LIMIT" &&
               option != "CONTEXT_INFO") {
        throw tsql::syntaxError(195, "'" + option + "' is not a recognized SET option.", statement.line);
    }
    if (option == "ANSI_NULLS")
        schema_.changed();
}

void Engine::runTransaction(const tsql::TransactionStatement& statement) {
    session_.rowCount = 0;
    std::string name = statement.name;
    if (!name.empty() && name.front() == '@')
        name = batch_.value(plans_.slotOf(name, statement.line)).bytes;
    switch (statement.kind) {
    case tsql::StatementKind::Begin:
        return transaction_.begin(name);
    case tsql::StatementKind::Commit:
        return transaction_.commit();
    case tsql::StatementKind::Save:
        return transaction_.savePoint(name);
    default:
        return transaction_.rollback(name);
    }
}

} // namespace merchantry::db::embedded
