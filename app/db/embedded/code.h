#pragma once

#include "app/db/embedded/connection.h"
#include "app/db/embedded/rowset.h"
#include "app/db/session.h"
#include "app/db/tsql/ast.h"
#include "app/db/tsql/binder.h"
#include "app/db/tsql/plan.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::db::embedded {

// What a statement was compiled to; empty until it is first needed.
struct StatementPlan {
    std::uint64_t version = 0; // of the schema and the settings that it was bound under; 0: not bound
    std::uint64_t temporaryVersion = 0;
    bool usesTemporary = false;
    std::unique_ptr<tsql::QueryPlan> query;
    std::unique_ptr<tsql::ChangePlan> change;
    std::vector<tsql::ValuePlan> values;
    std::vector<Statement3> statements; // of the query, the change or the values, by place
};

using PlanPtr = std::shared_ptr<StatementPlan>;

// A parsed batch or module, with the plans of its statements. Kept by the session that runs it.
struct Code {
    std::string text;
    tsql::Batch batch;         // of a batch
    tsql::StatementPtr module; // of a procedure, function or trigger
    const tsql::Block* body = nullptr;
    std::vector<tsql::Variable> variables; // parameters first
    std::vector<PlanPtr> plans;            // by statement number
    std::string procedure;                 // its name
    std::int64_t objectId = 0;
    // of a module
    struct Parameter {
        std::string name;
        SqlType type;
        const tsql::Expr* defaultValue = nullptr;
        bool output = false;
    };
    std::vector<Parameter> parameters;
    SqlType returns; // of a function
    // of a trigger
    std::shared_ptr<const tsql::TableDef> triggerTable;
    std::shared_ptr<const tsql::TableDef> inserted;
    std::shared_ptr<const tsql::TableDef> deleted;
    bool checked = false; // all statements were bound once
    std::uint64_t version = 0;
};

struct Cursor {
    const tsql::Query* query = nullptr; // lives as long as its code
    std::shared_ptr<Code> code;
    std::vector<tsql::Cell> variables; // as they were when it was declared
    int number = -1;                   // of the statement that declared it
    std::vector<SqlType> types;
    Rowset rows;
    std::int64_t at = -1;
    bool open = false;
};

// A batch, procedure, function or trigger while it runs.
struct Frame {
    std::shared_ptr<Code> code;
    std::vector<tsql::Cell> variables;
    Frame* caller = nullptr;
    int level = 0; // @@NESTLEVEL
    tsql::Cell scopeIdentity;
    bool isTrigger = false;
    bool isFunction = false;
    const std::vector<bool>* updated = nullptr; // of a trigger
    std::int64_t returnValue = 0;
    tsql::Cell result; // of a function
    std::string gotoLabel;
    std::vector<std::string> temporaries; // tables that end with the frame
    std::map<std::string, Cursor> cursors;
    std::map<int, std::string> cursorVariables;
};

} // namespace merchantry::db::embedded
