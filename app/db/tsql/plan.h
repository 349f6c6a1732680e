#pragma once

#include "app/db/session.h"
#include "app/db/tsql/cell.h"

#include <memory>
#include <string>
#include <vector>

namespace merchantry::db::tsql {

struct TableDef;

// Values of the session that a statement reads.
// Checks in stores hold the numbers: a new one goes to the end.
enum class SystemValue {
    RowCount,
    Error,
    Identity,
    ScopeIdentity,
    TranCount,
    NestLevel,
    FetchStatus,
    Now,
    UtcNow,
    Spid,
    ErrorNumber,
    ErrorMessage,
    ErrorSeverity,
    ErrorState,
    ErrorLine,
    ErrorProcedure,
    XactState,
    DatabaseName,
    DateFirst,
    Version,
    ServerName,
    UserName,
    HostName,
    AppName,
    Language,
    ProcedureId,
    Options,
    MaxPrecision,
    UpdatedColumns, // of the running trigger, as 0 or 1 for the column in question
    CursorRows,
};

// What stands at a place of a prepared statement.
struct Placeholder {
    bool system = false;
    int slot = 0; // of the variable, or the SystemValue
};

// SQL for SQLite, with what its places hold: the first is ?1.
struct Sql3 {
    std::string text;
    std::vector<Placeholder> places;
};

// A bound query whose rows are wanted.
struct QueryPlan {
    Sql3 sql;
    std::vector<Column> columns;
    std::vector<std::string> assignOps;   // SELECT @v = ...: empty when it returns rows
    std::vector<int> assignTo;            // slots
    std::shared_ptr<const TableDef> into; // SELECT INTO: the table to make, with the columns of the result
};

// A bound expression, condition (1, 0 or null) or value, as a select of one cell.
struct ValuePlan {
    Sql3 sql;
    SqlType type;
    int variable = -1; // it is only this variable
    bool readsTables = false;
    bool isLiteral = false;
    Cell literal;
};

// A bound change of one table.
struct ChangePlan {
    enum class Kind { Insert, Update, Delete };
    Kind kind = Kind::Insert;
    std::shared_ptr<const TableDef> table;
    Sql3 sql;
    // UPDATE of a key: the rowids with the new rows, for when the rows must pass through each other.
    Sql3 newRows;
    bool changesKey = false;
    std::vector<bool> updated; // by column
    bool givesIdentity = false;
    std::int64_t insteadOf = 0; // id of the table or view whose trigger stands for the statement
    Sql3 insteadNew;            // rows of inserted
    Sql3 insteadOld;            // rows of deleted
    std::shared_ptr<const TableDef> insteadShape;
    // OUTPUT: a select over the inserted and deleted rows, and where its rows go
    std::shared_ptr<QueryPlan> output;
    std::shared_ptr<ChangePlan> outputInto;
};

} // namespace merchantry::db::tsql
