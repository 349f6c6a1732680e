#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"

namespace merchantry::db::tsql {

ChangePlan Binder::deleteFrom(const DeleteStatement& statement) {
    if (!statement.currentOf.empty())
        throw unsupported("WHERE CURRENT OF", statement.line);
    const CommonTablesScope known(commonTables_, statement.commonTables);
    Scope scope;
    const Restore here(scope_, &scope);
    std::string from;
    Source source;
    const BaseRow base = changeTarget(statement.table, statement.from, scope, from, source);
    std::string where;
    if (statement.where) {
        const Restore clause(scope.clause, &kWhereClause);
        where = " WHERE " + bindCondition(*statement.where);
    }
    const std::string limit = topLimit(statement.top);
    ChangePlan plan;
    plan.kind = ChangePlan::Kind::Delete;
    plan.table = base.table;
    plan.updated.assign(base.table->columns.size(), false);
    const bool instead = context_.catalog.hasInsteadTrigger(source.viewId != 0 ? source.viewId : base.table->id, "delete");
    if (instead) {
        bindInstead(plan, source, {}, " FROM " + from + where + limit, false, true);
        return plan;
    }
    if (source.viewId != 0 && source.bases.size() > 1)
        throw typeError(4405,
                        "View or function '" + statement.table.last() +
                            "' is not updatable because the modification affects multiple base tables.",
                        statement.line);
    const bool simple = statement.from.empty() && limit.empty() && source.viewId == 0 && source.isTable;
    if (simple)
        plan.sql.text = "DELETE FROM " + base.table->storage + " AS " + source.sqlAlias + (where.empty() ? " WHERE 1" : where);
    else
        plan.sql.text =
            "DELETE FROM " + base.table->storage + " AS tt WHERE tt._rowid_ IN (SELECT " + base.sql + " FROM " + from + where + limit + ")";
    plan.sql.places = places_;
    if (statement.output)
        bindOutput(plan, *statement.output);
    return plan;
}

} // namespace merchantry::db::tsql
