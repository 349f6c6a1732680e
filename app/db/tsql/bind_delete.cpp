#include "app/db/tsql/bind_delete.h"

#include "app/db/tsql/bind_change.h"
#include "app/db/tsql/bind_condition.h"
#include "app/db/tsql/bind_select.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/render.h"

namespace merchantry::db::tsql {

ChangePlan bindDelete(Binding& binding, const DeleteStatement& statement) {
    if (!statement.currentOf.empty())
        throw unsupported("WHERE CURRENT OF", statement.line);
    const CommonTablesScope known(binding, statement.commonTables);
    Scope scope;
    const Restore here(binding.scope, &scope);
    ChangeTarget target = bindChangeTarget(binding, statement.table, statement.from, scope);
    const Source& source = target.source;
    const BaseRow& base = source.bases[0];
    BoundRows rows{std::move(target.from), std::nullopt, std::nullopt};
    if (statement.where) {
        const Restore clause(scope.clause, &kWhereClause);
        rows.where = bindCondition(binding, *statement.where);
    }
    rows.limit = bindLimit(binding, statement.top);
    ChangePlan plan;
    plan.kind = ChangePlan::Kind::Delete;
    plan.table = base.table;
    plan.updated.assign(base.table->columns.size(), false);
    if (binding.context.catalog.hasInsteadTrigger(source.viewId != 0 ? source.viewId : base.table->id, "delete")) {
        if (statement.output)
            throw unsupported("OUTPUT beside an INSTEAD OF trigger", statement.line);
        bindInstead(plan, source, {}, rows, InsteadRows::Old);
        return plan;
    }
    if (source.viewId != 0 && source.bases.size() > 1)
        throw serverMessage(Message::ViewOfSeveralTables, {statement.table.last()}, statement.line);
    const bool inPlace = statement.from.empty() && !rows.limit && source.viewId == 0 && source.isTable;
    plan.sql = render(BoundDelete{base.table, base.rowId, std::move(rows), source.alias, inPlace});
    if (statement.output)
        bindOutput(binding, *statement.output, plan);
    return plan;
}

} // namespace merchantry::db::tsql
