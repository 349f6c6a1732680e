#pragma once

#include "app/db/tsql/ast.h"
#include "app/db/tsql/binding.h"
#include "app/db/tsql/plan.h"

#include <optional>
#include <string>
#include <vector>

namespace merchantry::db::tsql {

// Turns a statement or expression into a plan: its names and types looked up, its tree rendered as SQL for SQLite. One binder serves one of
// them. Throws DbError of category Name (207, 208, 209, 4104, ...), Type (402, 8117, ...) or Syntax with the line.
class Binder {
public:
    explicit Binder(const BindContext& context) : binding_(context) {}

    QueryPlan query(const Query& query);
    ValuePlan value(const Expr& expr, const std::optional<SqlType>& target = std::nullopt);
    ValuePlan condition(const Expr& expr);
    // @variable op (value), as SET @variable op= value means it.
    ValuePlan compound(const std::string& variable, char op, const Expr& value, int line);
    ChangePlan insert(const InsertStatement& statement);
    // INSERT ... EXEC: the columns that take the rows, as a plan whose places stand for the cells of a row by their number.
    ChangePlan insertRow(const InsertStatement& statement, const std::vector<SqlType>& types);
    ChangePlan update(const UpdateStatement& statement);
    ChangePlan deleteFrom(const DeleteStatement& statement);
    // A check of a table, as SQLite text over its bare column names.
    std::string check(const TableDef& table, const Expr& expr);
    // A computed column: its type, and whether it may be null.
    Typed computed(const TableDef& table, const Expr& expr);
    // The columns of a view, as the catalogue shows them.
    std::vector<BoundColumn> viewColumns(const ViewDef& view);
    // The type of a declared variable, parameter or column.
    SqlType declaredType(const TypeName& name, bool* nullable = nullptr) const { return binding_.declaredType(name, nullable); }
    int variableSlot(const std::string& name, int line) const { return binding_.variableSlot(name, line); }

private:
    ValuePlan plan(const Typed& value) const;

    Binding binding_;
};

} // namespace merchantry::db::tsql
