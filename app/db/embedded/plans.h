#pragma once

#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/schema_version.h"
#include "app/db/embedded/session_catalog.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace merchantry::db::embedded {

// What the statements of the running batch or module are bound to. A plan is kept with its code and bound anew when the schema or a setting
// has changed since. All throw DbError as the binder does, with the line; a name that is missing where a statement is reached ends its
// module (ScopeEnd).
class Plans {
public:
    Plans(BatchState& batch, SessionCatalog& catalog, const SchemaVersion& schema, const TemporaryTables& temporaries)
        : batch_(batch), catalog_(catalog), schema_(schema), temporaries_(temporaries) {}

    // Binds against the running frame.
    tsql::Binder binder();
    int slotOf(const std::string& variable, int line) { return binder().variableSlot(variable, line); }

    // The expressions that a procedural statement evaluates, with the types that it wants.
    using Wanted = std::vector<std::pair<const tsql::Expr*, std::optional<SqlType>>>;
    Wanted wantedOf(const tsql::Statement& statement);
    PlanPtr values(const tsql::Statement& statement) { return values(statement, wantedOf(statement)); }
    PlanPtr values(const tsql::Statement& statement, const Wanted& wanted);
    PlanPtr set(const tsql::SetVariableStatement& statement);
    PlanPtr condition(const tsql::Statement& statement, const tsql::Expr& expr);
    PlanPtr query(const tsql::SelectStatement& statement);
    PlanPtr insert(const tsql::InsertStatement& statement);
    PlanPtr update(const tsql::UpdateStatement& statement);
    PlanPtr remove(const tsql::DeleteStatement& statement);
    // Whether the tables are still those that it was bound to.
    bool isOfThisSchema(const StatementPlan& plan) const { return plan.version == schema_.number(); }

private:
    bool isCurrent(const StatementPlan& plan) const;
    PlanPtr planFor(const tsql::Statement& statement, const std::function<void(StatementPlan&)>& bind);
    PlanPtr changePlan(const tsql::Statement& statement, const std::function<tsql::ChangePlan()>& bind);
    SqlType typeOfVariable(const std::string& name, int line) { return batch_.variable(slotOf(name, line)).type; }

    BatchState& batch_;
    SessionCatalog& catalog_;
    const SchemaVersion& schema_;
    const TemporaryTables& temporaries_;
};

} // namespace merchantry::db::embedded
