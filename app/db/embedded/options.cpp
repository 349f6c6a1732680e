#include "app/db/embedded/options.h"

#include "app/db/tsql/errors.h"

#include <algorithm>
#include <string_view>

namespace merchantry::db::embedded {
namespace {

bool isOn(const tsql::SetOptionStatement& statement) {
    return statement.value == "ON";
}

} // namespace

// What an option does; without a function, the values that it may have: others are refused. None of either: it has no effect here.
struct Options::Entry {
    std::string_view name;
    void (Options::*set)(const tsql::SetOptionStatement& statement) = nullptr;
    bool (*isHarmless)(const tsql::SetOptionStatement& statement) = nullptr;
};

const Options::Entry* Options::find(const std::string& option) {
    static constexpr auto kOnly = [](const tsql::SetOptionStatement& statement) { return isOn(statement); };
    static constexpr auto kNever = [](const tsql::SetOptionStatement& statement) { return !isOn(statement); };
    static constexpr Entry kAll[] = {
        {"ANSI_NULLS", &Options::setAnsiNulls},
        {"QUOTED_IDENTIFIER", &Options::setQuotedIdentifiers},
        {"XACT_ABORT", &Options::setXactAbort},
        {"NOCOUNT", &Options::setNoCount},
        {"ROWCOUNT", &Options::setRowCount},
        {"DATEFIRST", &Options::setDateFirst},
        {"IDENTITY_INSERT", &Options::setIdentityInsert},
        {"CONCAT_NULL_YIELDS_NULL", nullptr, kOnly},
        {"ANSI_PADDING", nullptr, kOnly},
        {"IMPLICIT_TRANSACTIONS", nullptr, kNever},
        {"PARSEONLY", nullptr, kNever},
        {"NOEXEC", nullptr, kNever},
        {"FMTONLY", nullptr, kNever},
        {"SHOWPLAN_ALL", nullptr, kNever},
        {"SHOWPLAN_TEXT", nullptr, kNever},
        {"DATEFORMAT", nullptr, [](const tsql::SetOptionStatement& statement) { return statement.value == "MDY"; }},
        {"LANGUAGE", nullptr,
         [](const tsql::SetOptionStatement& statement) { return statement.value == "US_ENGLISH" || statement.value == "ENGLISH"; }},
        {"ANSI_DEFAULTS"},
        {"ANSI_NULL_DFLT_OFF"},
        {"ANSI_NULL_DFLT_ON"},
        {"ANSI_WARNINGS"},
        {"ARITHABORT"},
        {"ARITHIGNORE"},
        {"CONTEXT_INFO"},
        {"CURSOR_CLOSE_ON_COMMIT"},
        {"DEADLOCK_PRIORITY"},
        {"FORCEPLAN"},
        {"LOCK_TIMEOUT"},
        {"NO_BROWSETABLE"},
        {"NUMERIC_ROUNDABORT"},
        {"QUERY_GOVERNOR_COST_LIMIT"},
        {"REMOTE_PROC_TRANSACTIONS"},
        {"STATISTICS"},
        {"TEXTSIZE"},
        {"TRANSACTION ISOLATION LEVEL"},
    };
    const auto found = std::find_if(std::begin(kAll), std::end(kAll), [&](const Entry& one) { return one.name == option; });
    return found == std::end(kAll) ? nullptr : found;
}

void Options::set(const tsql::SetOptionStatement& statement) {
    for (const std::string& option : statement.options) {
        const Entry* entry = find(option);
        if (!entry)
            throw serverError(Message::UnknownFunction, "'" + option + "' is not a recognized SET option.", statement.line);
        if (entry->isHarmless && !entry->isHarmless(statement))
            throw tsql::unsupported("SET " + option + " " + statement.value, statement.line);
        if (entry->set)
            (this->*entry->set)(statement);
    }
    session_.rowCount = 0;
}

void Options::putBack(const Settings& before) {
    if (session_.settings.ansiNulls != before.ansiNulls)
        schema_.changed();
    session_.settings = before;
}

std::int64_t Options::number(const tsql::SetOptionStatement& statement) {
    if (!statement.expr)
        throw serverMessage(Message::IncorrectSyntax, {statement.value}, statement.line);
    return evaluator_.value(*plans_.values(statement, {{statement.expr.get(), tsql::simpleType(TypeKind::Int)}})).integer;
}

void Options::setAnsiNulls(const tsql::SetOptionStatement& statement) {
    session_.settings.ansiNulls = isOn(statement);
    schema_.changed();
}

void Options::setQuotedIdentifiers(const tsql::SetOptionStatement& statement) {
    session_.settings.quotedIdentifiers = isOn(statement);
}

void Options::setXactAbort(const tsql::SetOptionStatement& statement) {
    session_.settings.xactAbort = isOn(statement);
}

void Options::setNoCount(const tsql::SetOptionStatement& statement) {
    session_.settings.noCount = isOn(statement);
}

void Options::setRowCount(const tsql::SetOptionStatement& statement) {
    session_.settings.rowCount = number(statement);
}

void Options::setDateFirst(const tsql::SetOptionStatement& statement) {
    session_.settings.dateFirst = static_cast<int>(number(statement));
}

void Options::setIdentityInsert(const tsql::SetOptionStatement& statement) {
    const std::shared_ptr<const tsql::TableDef> table = catalog_.requireTable(statement.table, Message::UnknownTable);
    if (isOn(statement) && catalog_.identityInsertTable != 0 && catalog_.identityInsertTable != table->id)
        throw serverMessage(Message::IdentityInsertElsewhere, {table->name}, statement.line);
    if (isOn(statement) && table->identityColumn() < 0)
        throw serverMessage(Message::NoIdentityProperty, {table->name}, statement.line);
    catalog_.identityInsertTable = isOn(statement) ? table->id : 0;
    schema_.changed();
}

} // namespace merchantry::db::embedded
