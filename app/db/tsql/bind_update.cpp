#include "app/db/tsql/bind_update.h"

#include "app/db/tsql/bind_change.h"
#include "app/db/tsql/bind_condition.h"
#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/bind_select.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/render.h"
#include "app/db/tsql/token.h"

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

DbError givenTwice(const std::string& column, int line) {
    return serverError(Message::ColumnGivenTwice,
                       "The column name '" + column +
                           "' is specified more than once in the SET clause. A column cannot be assigned more than one value in the same "
                           "SET clause.",
                       line);
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
    std::size_t shownColumn(const Assignment& assignment) const;
    ColumnDef definitionOf(const BoundColumn& shown, int line) const;
    Typed assignedValue(const Assignment& assignment, const ColumnDef& column, const Typed& current);
    Typed calculatedWith(const Assignment& assignment, Typed before, Typed value) const;
    void setVariables();
    void finish();

    const TableDef& table() const { return *update_.table; }

    Binding& binding_;
    const UpdateStatement& statement_;
    ChangePlan plan_;
    Scope scope_;
    Source source_; // what FROM or the statement names
    BoundUpdate update_;
    bool instead_ = false;                // a trigger takes the statement's place
    std::map<std::size_t, Typed> values_; // by shown column
    std::vector<Typed> variables_;        // what is assigned to variables alone
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

std::size_t UpdateBinder::shownColumn(const Assignment& assignment) const {
    const auto found = std::find_if(source_.columns.begin(), source_.columns.end(),
                                    [&](const BoundColumn& column) { return sameName(column.name, assignment.column); });
    if (found == source_.columns.end())
        throw serverMessage(Message::InvalidColumn, {assignment.column}, assignment.line);
    const auto index = static_cast<std::size_t>(found - source_.columns.begin());
    if (values_.count(index) != 0)
        throw givenTwice(found->name, assignment.line);
    return index;
}

// What the value must fit: the table's column behind the shown one. A trigger may take what is shown and stands in no table.
ColumnDef UpdateBinder::definitionOf(const BoundColumn& shown, int line) const {
    const bool isOfTable = shown.value.table && shown.value.table->id == table().id;
    if (!isOfTable && !instead_)
        throw serverMessage(Message::DerivedField, {statement_.table.last()}, line);
    ColumnDef definition;
    definition.name = shown.name;
    definition.type = shown.value.type;
    if (shown.value.table)
        definition = shown.value.table->columns[static_cast<std::size_t>(shown.value.column)];
    if (instead_ && !source_.isTable)
        return definition;
    if (definition.computed)
        throw serverMessage(Message::ComputedNotModifiable, {definition.name}, line);
    if (definition.identity)
        throw serverMessage(Message::IdentityNotUpdatable, {definition.name}, line);
    return definition;
}

Typed UpdateBinder::assignedValue(const Assignment& assignment, const ColumnDef& column, const Typed& current) {
    Typed value = assignment.value->kind == ExprKind::Default ? bindDefault(binding_, column) : bindValue(binding_, *assignment.value);
    Typed before = current;
    before.type = column.type;
    value = storedIn(column, calculatedWith(assignment, std::move(before), std::move(value)), assignment.line);
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
    const std::size_t index = shownColumn(assignment);
    const BoundColumn& shown = source_.columns[index];
    values_.emplace(index, assignedValue(assignment, definitionOf(shown, assignment.line), shown.value));
}

// What is assigned to variables alone is set with the first column, whose value comes last.
void UpdateBinder::setVariables() {
    if (values_.empty())
        throw unsupported("UPDATE that sets variables only", statement_.line);
    if (variables_.empty())
        return;
    Typed& first = values_.begin()->second;
    const SqlType type = first.type;
    variables_.push_back(std::move(first));
    first = called("ts_last", std::move(variables_), type);
}

// One table and nothing looked up elsewhere is updated in place; otherwise the new values are worked out first, by row.
void UpdateBinder::finish() {
    for (auto& [index, value] : values_) {
        const int column = source_.columns[index].value.column;
        if (!update_.values.emplace(column, std::move(value)).second) // a view that shows it twice
            throw givenTwice(source_.columns[index].name, statement_.line);
        plan_.updated[static_cast<std::size_t>(column)] = true;
        plan_.changesKey = plan_.changesKey || isOfKey(table(), table().columns[static_cast<std::size_t>(column)].name);
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
    setVariables();
    if (instead_ && statement_.output)
        throw unsupported("OUTPUT beside an INSTEAD OF trigger", statement_.line);
    if (instead_)
        bindInstead(plan_, source_, values_, update_.rows, InsteadRows::Both);
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
