#include "app/db/tsql/bind_update.h"

#include "app/db/tsql/bind_change.h"
#include "app/db/tsql/bind_condition.h"
#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/bind_select.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/render.h"
#include "app/db/tsql/token.h"
#include "base/lettercase.h"

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

// Binds one UPDATE.
class UpdateBinder {
public:
    UpdateBinder(Binding& binding, const UpdateStatement& statement) : binding_(binding), statement_(statement) {}

    ChangePlan bind();

private:
    void target();
    void assign(const Assignment& assignment);
    void assignVariable(const Assignment& assignment);
    int assignedColumn(const Assignment& assignment, const BoundColumn& target) const;
    Typed assignedValue(const Assignment& assignment, int column, const Typed& current);
    Typed calculatedWith(const Assignment& assignment, Typed before, Typed value) const;
    void finish();

    const TableDef& table() const { return *update_.table; }
    const ColumnDef& column(int index) const { return table().columns[static_cast<std::size_t>(index)]; }

    Binding& binding_;
    const UpdateStatement& statement_;
    ChangePlan plan_;
    Scope scope_;
    Source source_; // what FROM or the statement names
    BoundUpdate update_;
    bool instead_ = false;                       // a trigger takes the statement's place
    std::map<std::string, Typed> insteadValues_; // by lower-case name of the shown column
    std::vector<Typed> variables_;               // what is assigned to variables alone
    bool readsMore_ = false;
};

// Through a view of several tables the assigned columns say which one is meant.
void UpdateBinder::target() {
    ChangeTarget target = bindChangeTarget(binding_, statement_.table, statement_.from, scope_);
    source_ = std::move(target.source);
    update_.rows.from = std::move(target.from);
    BaseRow base = source_.bases[0];
    instead_ = binding_.context.catalog.hasInsteadTrigger(source_.viewId != 0 ? source_.viewId : base.table->id, "update");
    for (const Assignment& assignment : statement_.assignments) {
        for (const BoundColumn& column : source_.columns) {
            if (assignment.column.empty() || !sameName(column.name, assignment.column) || !column.value.table)
                continue;
            for (const BaseRow& one : source_.bases) {
                if (one.table->id == column.value.table->id)
                    base = one;
            }
        }
    }
    update_.table = base.table;
    update_.rowId = base.rowId;
    update_.alias = source_.alias;
    plan_.kind = ChangePlan::Kind::Update;
    plan_.table = base.table;
    plan_.updated.assign(base.table->columns.size(), false);
}

Typed UpdateBinder::calculatedWith(const Assignment& assignment, Typed before, Typed value) const {
    return assignment.op == "=" ? value : calculated(assignment.op[0], std::move(before), std::move(value), assignment.line);
}

void UpdateBinder::assignVariable(const Assignment& assignment) {
    const int slot = binding_.variableSlot(assignment.variable, assignment.line);
    Typed value = calculatedWith(assignment, binding_.variableNow(slot), bindValue(binding_, *assignment.value));
    variables_.push_back(Binding::assignedTo(slot, implicitTo(std::move(value), binding_.typeOfSlot(slot), assignment.line)));
}

// The table's column that a shown column stands for; throws for one that cannot be assigned.
int UpdateBinder::assignedColumn(const Assignment& assignment, const BoundColumn& target) const {
    if (!target.value.table || target.value.table->id != table().id)
        throw serverMessage(Message::DerivedField, {statement_.table.last()}, assignment.line);
    const ColumnDef& definition = column(target.value.column);
    if (definition.computed)
        throw serverMessage(Message::ComputedNotModifiable, {definition.name}, assignment.line);
    if (definition.identity)
        throw serverMessage(Message::IdentityNotUpdatable, {definition.name}, assignment.line);
    if (update_.values.count(target.value.column) != 0)
        throw serverError(Message::ColumnGivenTwice,
                          "The column name '" + definition.name +
                              "' is specified more than once in the SET clause. A column cannot be assigned more than one value in the "
                              "same SET clause.",
                          assignment.line);
    return target.value.column;
}

Typed UpdateBinder::assignedValue(const Assignment& assignment, int index, const Typed& current) {
    const ColumnDef& definition = column(index);
    Typed value = assignment.value->kind == ExprKind::Default ? bindDefault(binding_, definition) : bindValue(binding_, *assignment.value);
    Typed before = current;
    before.type = definition.type;
    value = storedIn(definition, calculatedWith(assignment, std::move(before), std::move(value)), assignment.line);
    if (assignment.variable.empty())
        return value;
    const int slot = binding_.variableSlot(assignment.variable, assignment.line);
    const SqlType type = value.type;
    return called("ts_setvar", {wholeNumber(slot), std::move(value), typeNumber(type), typeNumber(binding_.typeOfSlot(slot))}, type);
}

void UpdateBinder::assign(const Assignment& assignment) {
    readsMore_ = readsMore_ || readsMore(*assignment.value);
    if (assignment.column.empty())
        return assignVariable(assignment);
    const BoundColumn* target = nullptr;
    for (const BoundColumn& column : source_.columns) {
        if (sameName(column.name, assignment.column))
            target = &column;
    }
    if (!target)
        throw serverMessage(Message::InvalidColumn, {assignment.column}, assignment.line);
    if (instead_) {
        Typed value = implicitTo(bindValue(binding_, *assignment.value), target->value.type, assignment.line);
        insteadValues_.insert_or_assign(lowerCase(target->name), std::move(value));
        return;
    }
    const int index = assignedColumn(assignment, *target);
    update_.values.insert_or_assign(index, assignedValue(assignment, index, target->value));
    plan_.updated[static_cast<std::size_t>(index)] = true;
    plan_.changesKey = plan_.changesKey || isOfKey(table(), column(index).name);
}

// One table and nothing looked up elsewhere is updated in place; otherwise the new values are worked out first, by row.
void UpdateBinder::finish() {
    if (update_.values.empty())
        throw unsupported("UPDATE that sets variables only", statement_.line);
    if (!variables_.empty()) { // set with the first column, whose value comes last
        Typed& first = update_.values.begin()->second;
        const SqlType type = first.type;
        variables_.push_back(std::move(first));
        first = called("ts_last", std::move(variables_), type);
    }
    update_.inPlace = statement_.from.empty() && !update_.rows.limit && !readsMore_ && source_.viewId == 0 && source_.isTable;
    plan_.sql = render(update_);
    if (plan_.changesKey && !table().isTemporary())
        plan_.newRows = renderRows(update_);
    if (statement_.output)
        bindOutput(binding_, *statement_.output, plan_);
}

ChangePlan UpdateBinder::bind() {
    for (const Assignment& assignment : statement_.assignments) {
        if (!assignment.variable.empty())
            binding_.assigned.insert(binding_.variableSlot(assignment.variable, assignment.line));
    }
    const Restore here(binding_.scope, &scope_);
    target();
    for (const Assignment& assignment : statement_.assignments)
        assign(assignment);
    if (statement_.where) {
        const Restore clause(scope_.clause, &kWhereClause);
        update_.rows.where = bindCondition(binding_, *statement_.where);
    }
    update_.rows.limit = bindLimit(binding_, statement_.top);
    if (instead_)
        bindInstead(plan_, source_, insteadValues_, update_.rows, InsteadRows::Both);
    else
        finish();
    return std::move(plan_);
}

} // namespace

ChangePlan bindUpdate(Binding& binding, const UpdateStatement& statement) {
    if (!statement.currentOf.empty())
        throw unsupported("WHERE CURRENT OF", statement.line);
    const CommonTablesScope known(binding, statement.commonTables);
    return UpdateBinder(binding, statement).bind();
}

} // namespace merchantry::db::tsql
