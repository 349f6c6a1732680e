#include "app/db/tsql/bind_change.h"

#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/bind_from.h"
#include "app/db/tsql/bind_insert.h"
#include "app/db/tsql/bind_select.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/render.h"
#include "app/db/tsql/token.h"

namespace merchantry::db::tsql {
namespace {

bool isCalled(const Source& source, const ObjectName& name) {
    if (source.name.empty())
        return source.bases.size() == 1 && source.viewId == 0 && sameName(source.bases[0].table->name, name.last());
    return sameName(source.name.last(), name.last());
}

// The source that the name means: by the name under which it is read, or else as the only one of that table. Null for none.
const Source* sourceCalled(const Scope& scope, const ObjectName& name) {
    const Source* found = nullptr;
    for (const Source& source : scope.sources) {
        if (name.parts.size() == 1 && sameName(source.exposed, name.last()))
            return &source;
    }
    for (const Source& source : scope.sources) {
        if (!isCalled(source, name))
            continue;
        if (found)
            throw serverMessage(Message::AmbiguousTable, {name.last()}, name.line);
        found = &source;
    }
    return found;
}

void requireBases(const Binding& binding, const Source& source, const ObjectName& name) {
    if (!source.bases.empty())
        return;
    const std::shared_ptr<const TableDef> table = binding.findTable(name);
    if (table && table->readOnly)
        throw serverMessage(Message::LogicalTableNotModifiable, {}, name.line);
    throw serverMessage(Message::ViewNotUpdatable, {name.last()}, name.line);
}

// inserted or deleted as a source of OUTPUT.
from::Any pseudoTable(Binding& binding, const TableDef& of, const char* name, Scope& scope) {
    auto table = std::make_shared<TableDef>(of);
    table->name = name;
    table->readOnly = true;
    table->storage = "\"ts_" + std::string(name) + "_" + std::to_string(of.id) + "\"";
    const std::string alias = binding.nextAlias();
    Source source = tableSource(table, alias);
    source.exposed = name;
    scope.sources.push_back(std::move(source));
    return {from::Table{table->storage, alias}};
}

from::Any changedRows(Binding& binding, const ChangePlan& plan, Scope& scope) {
    if (plan.kind == ChangePlan::Kind::Insert)
        return pseudoTable(binding, *plan.table, "inserted", scope);
    if (plan.kind == ChangePlan::Kind::Delete)
        return pseudoTable(binding, *plan.table, "deleted", scope);
    from::Join both{JoinKind::Inner, nullptr, nullptr, std::nullopt};
    both.left = std::make_shared<const from::Any>(pseudoTable(binding, *plan.table, "inserted", scope));
    both.right = std::make_shared<const from::Any>(pseudoTable(binding, *plan.table, "deleted", scope));
    const auto rowId = [&](std::size_t source) { return ownColumn(scope.sources[source].alias, "_rowid_"); };
    both.on = condition(form::Compare{form::Comparison::Equal, rowId(0), rowId(1)});
    return {std::move(both)};
}

} // namespace

ChangeTarget bindChangeTarget(Binding& binding, const ObjectName& name, const std::vector<TableRefPtr>& refs, Scope& scope) {
    ChangeTarget target;
    from::List list;
    if (!refs.empty())
        list.members.push_back(bindFrom(binding, refs, scope));
    if (const Source* found = sourceCalled(scope, name)) {
        target.source = *found;
    } else {
        TableRef ref;
        ref.kind = name.last().front() == '@' ? TableRef::Kind::Variable : TableRef::Kind::Table;
        ref.name = name;
        ref.line = name.line;
        list.members.push_back(bindTable(binding, ref, scope));
        target.source = scope.sources.back();
    }
    if (list.members.size() == 1)
        target.from = std::move(list.members[0]);
    else
        target.from = {std::move(list)};
    complete(binding, target.source);
    requireBases(binding, target.source, name);
    return target;
}

Typed bindDefault(Binding& binding, const ColumnDef& column) {
    if (!column.defaultValue)
        return nullLiteral();
    const Restore nowhere(binding.scope, nullptr);
    return bindValue(binding, *column.defaultValue);
}

Typed storedIn(const ColumnDef& column, Typed value, int line) {
    return implicitTo(std::move(value), column.type, line, ConvertFor::Column);
}

void bindOutput(Binding& binding, const OutputClause& output, ChangePlan& plan) {
    Scope scope;
    BoundQuery query;
    query.rows.from = changedRows(binding, plan, scope);
    const Restore here(binding.scope, &scope);
    for (const SelectItem& item : output.items) {
        if (item.star) {
            expandStar(binding, item, scope, query.columns);
            continue;
        }
        BoundColumn column;
        column.value = bindValue(binding, *item.expr);
        column.name = item.alias.empty() && item.expr->kind == ExprKind::Column ? item.expr->name.last() : item.alias;
        query.columns.push_back(std::move(column));
    }
    plan.output = std::make_shared<QueryPlan>(planOf(query));
    if (output.into.empty())
        return;
    InsertStatement insert;
    insert.table = output.into;
    insert.table.line = 0;
    insert.columns = output.intoColumns;
    insert.hasColumns = !output.intoColumns.empty();
    Binding own(binding.context);
    plan.outputInto = std::make_shared<ChangePlan>(bindInsertRow(own, insert, columnTypes(query)));
}

void bindInstead(ChangePlan& plan, const Source& source, const std::map<std::size_t, Typed>& values, const BoundRows& rows,
                 InsteadRows which) {
    auto shape = std::make_shared<TableDef>();
    shape->id = source.viewId != 0 ? source.viewId : plan.table->id;
    std::vector<Typed> oldRow;
    std::vector<Typed> newRow;
    plan.updated.clear();
    for (std::size_t i = 0; i < source.columns.size(); ++i) {
        const BoundColumn& column = source.columns[i];
        ColumnDef definition;
        definition.name = column.name;
        definition.type = column.value.type;
        shape->columns.push_back(std::move(definition));
        const auto found = values.find(i);
        oldRow.push_back(column.value);
        newRow.push_back(found == values.end() ? column.value : found->second);
        plan.updated.push_back(found != values.end());
    }
    plan.insteadOf = shape->id;
    plan.insteadShape = shape;
    if (which == InsteadRows::Both)
        plan.insteadNew = renderRows(newRow, rows);
    plan.insteadOld = renderRows(oldRow, rows);
}

} // namespace merchantry::db::tsql
