#pragma once

#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/connection.h"
#include "app/db/embedded/plans.h"
#include "app/db/embedded/rowset.h"
#include "app/db/embedded/system_values.h"
#include "app/db/embedded/transaction.h"

namespace merchantry::db::embedded {

// Steps what plans were bound to, with the variables of the running frame at their places.
class Evaluator {
public:
    Evaluator(Connection& connection, BatchState& batch, Transaction& transaction, Plans& plans, const SystemValues& system)
        : connection_(connection), batch_(batch), transaction_(transaction), plans_(plans), system_(system) {}

    // The value at that place of a plan of values.
    tsql::Cell value(StatementPlan& plan, std::size_t index = 0);
    // The only value that a statement evaluates.
    tsql::Cell valueOf(const tsql::Statement& statement) { return value(*plans_.values(statement)); }
    bool condition(const tsql::Statement& statement, const tsql::Expr& expr);
    // The value of an expression that is bound for this once, and its type.
    tsql::Cell once(const tsql::Expr& expr, SqlType& type);
    Rowset rows(const tsql::Sql3& sql);

    // The statement of SQLite at that place of a plan, ready to step; who steps it resets it. One that is still running further out is left
    // alone: the spare one takes its part.
    sqlite3_stmt* prepared(StatementPlan& plan, std::size_t index, const tsql::Sql3& sql, Statement3& spare);
    Statement3 prepared(const tsql::Sql3& sql) { return prepared(sql, sql.text); }
    // The same places in another text around it.
    Statement3 prepared(const tsql::Sql3& sql, const std::string& text);
    // Places that stand for the cells of a row by their number, beside values of the session.
    void bindRow(sqlite3_stmt* statement, const std::vector<tsql::Placeholder>& places, const std::vector<tsql::Cell>& row);

private:
    void bindPlaces(sqlite3_stmt* statement, const std::vector<tsql::Placeholder>& places);

    Connection& connection_;
    BatchState& batch_;
    Transaction& transaction_;
    Plans& plans_;
    const SystemValues& system_;
};

} // namespace merchantry::db::embedded
