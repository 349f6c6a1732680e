#include "app/db/embedded/catalog_functions.h"
#include "app/db/embedded/functions.h"
#include "app/db/embedded/identities.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/token.h"

#include <array>

namespace merchantry::db::embedded {
namespace {

void variable(const Call& call) {
    call.give(call.host.variable(static_cast<int>(call.integer(0))));
}

// (slot, value, optional type of the value, type of the variable): gives the value.
void setVariable(const Call& call) {
    const auto slot = static_cast<int>(call.integer(0));
    if (call.count > 2)
        call.host.setVariable(slot, tsql::converted(call.cell(1), tsql::typeOfCode(call.integer(2)), tsql::typeOfCode(call.integer(3))));
    else
        call.host.setVariable(slot, call.cell(1).copy());
    sqlite3_result_value(call.context, call.values[1]);
}

// (table): the next number. (table, given): the given one, remembered.
void identity(const Call& call) {
    if (call.count == 1)
        return call.give(call.host.identities().next(call.integer(0)));
    if (!call.isNull(1))
        call.host.identities().note(call.integer(0), call.integer(1));
    sqlite3_result_value(call.context, call.values[1]);
}

void identityInfo(const Call& call) {
    const std::shared_ptr<const tsql::TableDef> table = call.host.catalog().table(call.text(0));
    call.give(call.host.identities().info(table.get(), static_cast<int>(call.integer(1))));
}

void userFunction(const Call& call) {
    std::vector<CellView> arguments;
    for (int i = 1; i < call.count; ++i)
        arguments.push_back(call.cell(i));
    call.give(call.host.callFunction(call.integer(0), arguments));
}

void updated(const Call& call) {
    call.give(std::int64_t{call.host.isUpdated(static_cast<int>(call.integer(0))) ? 1 : 0});
}

void objectId(const Call& call) {
    call.give(call.host.catalog().objectId(call.text(0), call.count > 1 ? call.text(1) : std::string_view()));
}

void objectName(const Call& call) {
    call.give(call.host.catalog().objectName(call.integer(0)));
}

void columnLength(const Call& call) {
    call.give(call.host.catalog().columnLength(call.text(0), call.text(1)));
}

void columnName(const Call& call) {
    call.give(call.host.catalog().columnName(call.integer(0), call.integer(1)));
}

void columnProperty(const Call& call) {
    call.give(call.host.catalog().columnInfo(call.integer(0), call.text(1), call.text(2)));
}

void objectProperty(const Call& call) {
    call.give(call.host.catalog().objectProperty(call.integer(0), call.text(1)));
}

void serverProperty(const Call& call) {
    const std::string_view name = call.text(0);
    if (tsql::sameName(name, "ProductVersion"))
        return call.giveText("12.0.2000.8");
    if (tsql::sameName(name, "ProductMajorVersion"))
        return call.giveText("12");
    if (tsql::sameName(name, "Edition"))
        return call.giveText("Merchantry");
    if (tsql::sameName(name, "Collation"))
        return call.giveText("SQL_Latin1_General_CP1_CI_AS");
    call.giveNull();
}

void databaseProperty(const Call& call) {
    if (tsql::sameName(call.text(1), "Collation"))
        return call.giveText("SQL_Latin1_General_CP1_CI_AS");
    call.giveNull();
}

void databaseId(const Call& call) {
    call.give(std::int64_t{1});
}

void schemaName(const Call& call) {
    call.giveText("dbo");
}

void systemValue(const Call& call) {
    call.give(call.host.systemValue(static_cast<tsql::SystemValue>(call.integer(0))));
}

void cursorStatus(const Call& call) {
    call.give(std::int64_t{call.host.cursorStatus(call.text(1))});
}

} // namespace

void registerSystemFunctions(sqlite3* db, FunctionHost& host) {
    static constexpr auto kEntries = std::to_array<FunctionEntry>({
        {"ts_var", 1, variable, false},
        {"ts_setvar", -1, setVariable, false, false},
        {"ts_identity", -1, identity, false, false},
        {"ts_ident_info", 2, identityInfo, false},
        {"ts_udf", -1, userFunction, true, false},
        {"ts_updated", 1, updated, false},
        {"ts_object_id", -1, objectId, false},
        {"ts_object_name", -1, objectName, false},
        {"ts_col_length", 2, columnLength, false},
        {"ts_col_name", 2, columnName, false},
        {"ts_columnproperty", 3, columnProperty, false},
        {"ts_objectproperty", 2, objectProperty, false},
        {"ts_serverproperty", 1, serverProperty},
        {"ts_databaseproperty", 2, databaseProperty},
        {"ts_db_id", -1, databaseId},
        {"ts_user_id", -1, databaseId},
        {"ts_schema_name", -1, schemaName},
        {"ts_cursor_status", 2, cursorStatus, false},
        {"ts_system", 1, systemValue, false},
    });
    registerEntries(db, host, kEntries.data(), kEntries.size());
}

} // namespace merchantry::db::embedded
