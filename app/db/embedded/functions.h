#pragma once

#include "app/db/dberror.h"
#include "app/db/tsql/cell.h"
#include "app/db/tsql/plan.h"

#include <sqlite3.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db::embedded {

using tsql::Cell;
using tsql::CellView;

class CatalogFunctions;
class Identities;

// What the functions that run inside SQLite may ask of the session that runs the statement.
class FunctionHost {
public:
    virtual ~FunctionHost() = default;
    virtual const Cell& variable(int slot) = 0;
    virtual void setVariable(int slot, Cell cell) = 0;
    virtual Identities& identities() = 0;
    virtual CatalogFunctions& catalog() = 0;
    virtual Cell callFunction(std::int64_t id, const std::vector<CellView>& arguments) = 0;
    virtual bool isUpdated(int column) = 0;
    virtual int cursorStatus(std::string_view name) = 0;
    virtual Cell systemValue(tsql::SystemValue value) = 0;

    // The error that a function ended the running statement with.
    std::optional<DbError> failure;
};

// One call of a function.
struct Call {
    sqlite3_context* context;
    int count;
    sqlite3_value** values;
    FunctionHost& host;

    bool isNull(int index) const { return sqlite3_value_type(values[index]) == SQLITE_NULL; }
    bool anyNull() const;
    CellView cell(int index) const { return CellView(values[index]); }
    std::int64_t integer(int index) const { return sqlite3_value_int64(values[index]); }
    double real(int index) const { return sqlite3_value_double(values[index]); }
    std::string_view text(int index) const;

    void give(std::int64_t number) const { sqlite3_result_int64(context, number); }
    void give(double number) const { sqlite3_result_double(context, number); }
    void giveText(std::string_view text) const {
        sqlite3_result_text(context, text.empty() ? "" : text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    }
    void giveNull() const { sqlite3_result_null(context); }
    void give(const Cell& cell) const { tsql::resultCell(context, cell); }
};

using Body = void (*)(const Call&);

struct FunctionEntry {
    const char* name;
    int count; // of arguments; -1 for any
    Body body;
    bool pure = true;
    bool nullForNull = true; // a null argument gives null without a call
};

// Makes all functions of the engine known to a connection, and its collations in the order of the file. The host must outlive it.
void registerFunctions(sqlite3* db, FunctionHost& host);

void registerEntries(sqlite3* db, FunctionHost& host, const FunctionEntry* entries, std::size_t count);
void registerTextFunctions(sqlite3* db, FunctionHost& host);
void registerLikeFunctions(sqlite3* db, FunctionHost& host);
void registerMathFunctions(sqlite3* db, FunctionHost& host);
void registerDateFunctions(sqlite3* db, FunctionHost& host);
void registerConvertFunctions(sqlite3* db, FunctionHost& host);
void registerSystemFunctions(sqlite3* db, FunctionHost& host);
void registerAggregates(sqlite3* db, FunctionHost& host);

// Ends the running statement with this error.
void failWith(sqlite3_context* context, FunctionHost& host, const DbError& error);

} // namespace merchantry::db::embedded
