#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

bool isOfKey(const TableDef& table, const std::string& column) {
    const auto has = [&](const std::vector<IndexColumn>& columns) {
        return std::any_of(columns.begin(), columns.end(), [&](const IndexColumn& one) { return sameName(one.name, column); });
    };
    return std::any_of(table.keys.begin(), table.keys.end(), [&](const KeyDef& key) { return has(key.columns); }) ||
           std::any_of(table.indexes.begin(), table.indexes.end(),
                       [&](const IndexDef& index) { return index.unique && has(index.columns); });
}

} // namespace

bool Binder::containsSubquery(const Expr& expr) const {
    if (expr.query)
        return true;
    if (expr.kind == ExprKind::Function && expr.name.parts.size() > 1) // may read tables
        return true;
    if (expr.input && containsSubquery(*expr.input))
        return true;
    return std::any_of(expr.args.begin(), expr.args.end(), [&](const ExprPtr& arg) { return containsSubquery(*arg); });
}

// Binds the FROM of a change and finds the source that is changed. Gives the text of FROM and the base row; the source is a copy.
BaseRow Binder::changeTarget(const ObjectName& name, const std::vector<TableRefPtr>& from, Scope& scope, std::string& tail,
                             Source& source) {
    if (!from.empty()) {
        tail = bindFrom(from, scope);
        std::vector<std::size_t> byTable;
        for (std::size_t i = 0; i < scope.sources.size(); ++i) {
            const Source& one = scope.sources[i];
            if (name.parts.size() == 1 && sameName(one.exposed, name.last())) {
                byTable.assign(1, i);
                break;
            }
            const bool same = one.name.empty() ? one.bases.size() == 1 && one.viewId == 0 && sameName(one.bases[0].table->name, name.last())
                                               : sameName(one.name.last(), name.last());
            if (same)
                byTable.push_back(i);
        }
        if (byTable.size() > 1)
            throw nameError(8154, "The table '" + name.last() + "' is ambiguous.", name.line);
        if (byTable.size() == 1)
            source = scope.sources[byTable[0]];
    }
    if (source.sqlAlias.empty()) {
        TableRef ref;
        ref.kind = name.last().front() == '@' ? TableRef::Kind::Variable : TableRef::Kind::Table;
        ref.name = name;
        ref.line = name.line;
        const std::string own = bindTable(ref, scope);
        tail += (tail.empty() ? "" : ",") + own;
        source = scope.sources.back();
    }
    complete(source);
    if (source.bases.empty()) {
        const std::shared_ptr<const TableDef> table = findTable(name);
        if (table && table->readOnly)
            throw typeError(286, "The logical tables INSERTED and DELETED and the catalogue cannot be updated.", name.line);
        throw typeError(4403,
                        "Cannot update the view or function '" + name.last() +
                            "' because it contains aggregates, or a DISTINCT or GROUP BY clause, or PIVOT or UNPIVOT operator.",
                        name.line);
    }
    return source.bases[0];
}

std::string Binder::assignedValue(const Assignment& assignment, const TableDef& table, int column, const std::string& current) {
    Typed value = assignment.value->kind == ExprKind::Default ? defaultOf(table, column) : bindValue(*assignment.value);
    if (assignment.op != "=") {
        Typed before;
        before.type = table.columns[static_cast<std::size_t>(column)].type;
        before.sql = current;
        value = calculated(assignment.op[0], std::move(before), std::move(value), assignment.line);
    }
    std::string sql = storedValue(std::move(value), table, column, assignment.line);
    if (!assignment.variable.empty()) {
        const int slot = variableSlot(assignment.variable, assignment.line);
        sql = "ts_setvar(" + std::to_string(slot) + "," + sql + "," +
              std::to_string(typeCode(table.columns[static_cast<std::size_t>(column)].type)) + "," +
              std::to_string(typeCode(context_.variables[static_cast<std::size_t>(slot)].type)) + ")";
    }
    return sql;
}

// An UPDATE while it is bound.
struct Binder::Updating {
    explicit Updating(const UpdateStatement& of) : statement(of) {}

    const UpdateStatement& statement;
    Scope scope;
    std::string from;
    Source source;                                    // what FROM or the statement names
    BaseRow base;                                     // the row that changes
    bool instead = false;                             // a trigger takes the statement's place
    std::map<int, std::string> values;                // by column of the table
    std::map<std::string, std::string> insteadValues; // by lower-case name of the shown column
    std::string variables;                            // what is assigned to variables alone
    bool subqueries = false;
    std::string where;
    std::string limit;

    const TableDef& table() const { return *base.table; }
    // What the values come from.
    std::string tail() const { return " FROM " + from + where + limit; }
};

// Through a view of several tables the assigned columns say which one is meant.
void Binder::chooseBase(Updating& update) {
    update.base = changeTarget(update.statement.table, update.statement.from, update.scope, update.from, update.source);
    const Source& source = update.source;
    update.instead = context_.catalog.hasInsteadTrigger(source.viewId != 0 ? source.viewId : update.base.table->id, "update");
    for (const Assignment& assignment : update.statement.assignments) {
        for (const BoundColumn& column : source.columns) {
            if (assignment.column.empty() || !sameName(column.name, assignment.column) || !column.value.table)
                continue;
            for (const BaseRow& one : source.bases) {
                if (one.table->id == column.value.table->id)
                    update.base = one;
            }
        }
    }
}

void Binder::assignVariable(Updating& update, const Assignment& assignment) {
    const int slot = variableSlot(assignment.variable, assignment.line);
    const SqlType& type = context_.variables[static_cast<std::size_t>(slot)].type;
    Typed value = bindValue(*assignment.value);
    if (assignment.op != "=") {
        Typed old;
        old.type = type;
        old.sql = "ts_var(" + std::to_string(slot) + ")";
        value = calculated(assignment.op[0], std::move(old), std::move(value), assignment.line);
    }
    update.variables += "ts_setvar(" + std::to_string(slot) + "," + implicitTo(std::move(value), type, assignment.line).sql + "),";
}

// The table's column that a shown column stands for; throws for one that cannot be assigned.
int Binder::assignedColumn(const Updating& update, const Assignment& assignment, const BoundColumn& target) const {
    const TableDef& table = update.table();
    if (!target.value.table || target.value.table->id != table.id)
        throw typeError(4406,
                        "Update or insert of view or function '" + update.statement.table.last() +
                            "' failed because it contains a derived or constant field.",
                        assignment.line);
    const ColumnDef& definition = table.columns[static_cast<std::size_t>(target.value.column)];
    if (definition.computed)
        throw typeError(271,
                        "The column \"" + definition.name +
                            "\" cannot be modified because it is either a computed column or is the result of a UNION operator.",
                        assignment.line);
    if (definition.identity)
        throw typeError(8102, "Cannot update identity column '" + definition.name + "'.", assignment.line);
    if (update.values.count(target.value.column) != 0)
        throw syntaxError(264,
                          "The column name '" + definition.name +
                              "' is specified more than once in the SET clause. A column cannot be assigned more than one value in the "
                              "same SET clause.",
                          assignment.line);
    return target.value.column;
}

void Binder::assign(Updating& update, const Assignment& assignment, ChangePlan& plan) {
    update.subqueries = update.subqueries || containsSubquery(*assignment.value);
    if (assignment.column.empty())
        return assignVariable(update, assignment);
    const BoundColumn* target = nullptr;
    for (const BoundColumn& column : update.source.columns) {
        if (sameName(column.name, assignment.column))
            target = &column;
    }
    if (!target)
        throw nameError(207, "Invalid column name '" + assignment.column + "'.", assignment.line);
    if (update.instead) {
        update.insteadValues[lowerCase(target->name)] = implicitTo(bindValue(*assignment.value), target->value.type, assignment.line).sql;
        return;
    }
    const TableDef& table = update.table();
    const int column = assignedColumn(update, assignment, *target);
    update.values[column] = assignedValue(assignment, table, column, target->value.sql);
    plan.updated[static_cast<std::size_t>(column)] = true;
    plan.changesKey = plan.changesKey || isOfKey(table, table.columns[static_cast<std::size_t>(column)].name);
}

// One table and nothing looked up elsewhere is updated in place; otherwise the new values are worked out first, by row.
void Binder::updateText(const Updating& update, ChangePlan& plan) {
    const TableDef& table = update.table();
    const bool simple =
        update.statement.from.empty() && update.limit.empty() && !update.subqueries && update.source.viewId == 0 && update.source.isTable;
    std::string sets;
    std::string given;
    for (const auto& [column, value] : update.values) {
        const std::string name = quotedName(table.columns[static_cast<std::size_t>(column)].name);
        const std::string number = std::to_string(column);
        sets += (sets.empty() ? "" : ",") + name + "=" + (simple ? value : "u._v" + number);
        given += "," + value + " AS _v" + number;
    }
    const std::string rows = "SELECT " + update.base.sql + " AS _rid" + given + update.tail();
    if (simple)
        plan.sql.text = "UPDATE " + table.storage + " AS " + update.source.sqlAlias + " SET " + sets + update.where;
    else
        plan.sql.text = "UPDATE " + table.storage + " AS tt SET " + sets + " FROM (" + rows + ") AS u WHERE tt._rowid_=u._rid";
    plan.sql.places = places_;
    if (!plan.changesKey || table.isTemporary())
        return;
    std::string all;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (!table.columns[i].computed)
            all += "," +
                   (update.values.count(static_cast<int>(i)) != 0 ? "u._v" + std::to_string(i) : "tt." + quotedName(table.columns[i].name));
    }
    plan.newRows = {"SELECT u._rid" + all + " FROM (" + rows + ") AS u JOIN " + table.storage + " AS tt ON tt._rowid_=u._rid", places_};
}

ChangePlan Binder::update(const UpdateStatement& statement) {
    if (!statement.currentOf.empty())
        throw unsupported("WHERE CURRENT OF", statement.line);
    const CommonTablesScope known(commonTables_, statement.commonTables);
    for (const Assignment& assignment : statement.assignments) {
        if (!assignment.variable.empty())
            assigned_.insert(variableSlot(assignment.variable, assignment.line));
    }
    Updating update(statement);
    const Restore here(scope_, &update.scope);
    chooseBase(update);
    ChangePlan plan;
    plan.kind = ChangePlan::Kind::Update;
    plan.table = update.base.table;
    plan.updated.assign(update.table().columns.size(), false);
    for (const Assignment& assignment : statement.assignments)
        assign(update, assignment, plan);
    if (statement.where) {
        const Restore clause(update.scope.clause, &kWhereClause);
        update.where = " WHERE " + bindCondition(*statement.where);
    }
    update.limit = topLimit(statement.top);
    if (update.instead) {
        bindInstead(plan, update.source, update.insteadValues, update.tail(), true, true);
        return plan;
    }
    if (update.values.empty())
        throw unsupported("UPDATE that sets variables only", statement.line);
    if (!update.variables.empty())
        update.values.begin()->second = "ts_last(" + update.variables + update.values.begin()->second + ")";
    updateText(update, plan);
    if (statement.output)
        bindOutput(plan, *statement.output);
    return plan;
}

// The rows of inserted and deleted that an instead-of trigger gets.
void Binder::bindInstead(ChangePlan& plan, const Source& source, const std::map<std::string, std::string>& values, const std::string& tail,
                         bool withNew, bool withOld) {
    auto shape = std::make_shared<TableDef>();
    shape->id = source.viewId != 0 ? source.viewId : plan.table->id;
    std::string oldRow;
    std::string newRow;
    for (const BoundColumn& column : source.columns) {
        ColumnDef definition;
        definition.name = column.name;
        definition.type = column.value.type;
        shape->columns.push_back(std::move(definition));
        const auto found = values.find(lowerCase(column.name));
        oldRow += (oldRow.empty() ? "" : ",") + column.value.sql;
        newRow += (newRow.empty() ? "" : ",") + (found == values.end() ? column.value.sql : found->second);
    }
    plan.insteadOf = shape->id;
    plan.insteadShape = shape;
    if (withNew)
        plan.insteadNew = {"SELECT " + newRow + tail, places_};
    if (withOld)
        plan.insteadOld = {"SELECT " + oldRow + tail, places_};
    plan.updated.assign(source.columns.size(), true);
}

// A select over the inserted and deleted rows side by side.
void Binder::bindOutput(ChangePlan& plan, const OutputClause& output) {
    Scope scope;
    const auto pseudo = [&](const char* name) {
        auto table = std::make_shared<TableDef>(*plan.table);
        table->name = name;
        table->readOnly = true;
        table->storage = "\"ts_" + std::string(name) + "_" + std::to_string(plan.table->id) + "\"";
        const std::string alias = nextAlias();
        Source source = tableSourceOf(table, alias);
        source.exposed = name;
        scope.sources.push_back(std::move(source));
        return table->storage + " AS " + alias;
    };
    std::string from;
    if (plan.kind != ChangePlan::Kind::Delete)
        from = pseudo("inserted");
    if (plan.kind != ChangePlan::Kind::Insert) {
        const std::string second = pseudo("deleted");
        from += from.empty()
                    ? second
                    : " JOIN " + second + " ON " + scope.sources[0].sqlAlias + "._rowid_=" + scope.sources[1].sqlAlias + "._rowid_";
    }
    const Restore here(scope_, &scope);
    SelectCore core;
    BoundQuery query;
    for (const SelectItem& item : output.items) {
        if (item.star) {
            expandStar(item, scope, query.columns);
            continue;
        }
        BoundColumn column;
        column.value = bindValue(*item.expr);
        column.name = item.alias.empty() && item.expr->kind == ExprKind::Column ? item.expr->name.last() : item.alias;
        query.columns.push_back(std::move(column));
    }
    query.tail = " FROM " + from;
    Query plainQuery;
    plan.output = std::make_shared<QueryPlan>(this->plan(query, plainQuery));
    if (output.into.empty())
        return;
    InsertStatement insert;
    insert.table = output.into;
    insert.table.line = 0;
    insert.columns = output.intoColumns;
    insert.hasColumns = !output.intoColumns.empty();
    Binder binder(context_);
    plan.outputInto = std::make_shared<ChangePlan>(binder.insertRow(insert, columnTypes(query)));
}

} // namespace merchantry::db::tsql
