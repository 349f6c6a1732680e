#pragma once

#include "app/db/tsql/ast.h"
#include "app/db/tsql/bound.h"
#include "app/db/tsql/catalog.h"
#include "app/db/tsql/plan.h"
#include "base/guard.h"

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace merchantry::db::tsql {

// A variable of a batch or module.
struct Variable {
    std::string name; // with @
    SqlType type;
    bool isCursor = false;
};

// What a statement is bound against, beside the catalogue.
struct BindContext {
    Catalog& catalog;
    const std::vector<Variable>& variables;
    bool ansiNulls = true;
    const TableDef* triggerTable = nullptr;             // in a trigger: the table
    std::shared_ptr<const TableDef> inserted = nullptr; // in a trigger or for OUTPUT
    std::shared_ptr<const TableDef> deleted = nullptr;
};

// A recursive common table while its step is bound.
struct Recursion {
    const CommonTable* table = nullptr;
    std::string name; // in SQLite
    std::vector<BoundColumn> columns;
    std::string alias; // under which the step reads it
};

// What the binders of one statement share: where they are and what is known there. Whoever changes a member for a part of the statement
// puts it back by a guard.
struct Binding {
    explicit Binding(const BindContext& of) : context(of) {}

    const BindContext context;
    Scope* scope = nullptr; // the innermost; null outside a query
    std::vector<const CommonTable*> commonTables;
    std::vector<Recursion> recursions;
    std::vector<std::pair<std::string, Typed>> inlined; // parameters of a table function
    std::set<int> assigned;                             // slots that the statement sets while it runs
    int maxRecursion = 100;
    bool readsTables = false;  // anything was read from a FROM clause
    bool inDefinition = false; // of a check, which has no places
    bool inComputed = false;   // within a computed column, which may use no other
    int aliases = 0;
    int depth = 0; // of queries

    std::string nextAlias() { return "t" + std::to_string(++aliases); }

    // Throws 137 for one that is not declared.
    int variableSlot(const std::string& name, int line) const;
    const SqlType& typeOfSlot(int slot) const { return context.variables[static_cast<std::size_t>(slot)].type; }
    // The variable as it is before the statement, and as it is while the statement sets it with each row.
    Typed variableBefore(int slot) const;
    Typed variableNow(int slot) const;
    Typed system(SystemValue value, const SqlType& type) const;
    // The value, given to a variable when a row passes.
    static Typed assignedTo(int slot, Typed value);

    // The type of a declared variable, parameter or column.
    SqlType declaredType(const TypeName& name, bool* nullable = nullptr) const;
    // Null when there is none.
    std::shared_ptr<const TableDef> findTable(const ObjectName& name) const;
    const CommonTable* findCommonTable(const ObjectName& name) const;
};

// The common tables of a query or statement are known while it is bound.
class CommonTablesScope {
public:
    CommonTablesScope(Binding& binding, const std::vector<CommonTable>& own)
        : known_(binding.commonTables), before_(binding.commonTables.size()) {
        for (const CommonTable& table : own)
            known_.push_back(&table);
    }
    ~CommonTablesScope() { known_.resize(before_); }
    CommonTablesScope(const CommonTablesScope&) = delete;
    CommonTablesScope& operator=(const CommonTablesScope&) = delete;

private:
    std::vector<const CommonTable*>& known_;
    std::size_t before_;
};

} // namespace merchantry::db::tsql
