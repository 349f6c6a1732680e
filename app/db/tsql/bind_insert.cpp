#include "app/db/tsql/bind_insert.h"

#include "app/db/tsql/bind_change.h"
#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/bind_from.h"
#include "app/db/tsql/bind_select.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/render.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

// Where rows go.
struct Target {
    std::shared_ptr<const TableDef> table;
    std::vector<int> columns; // the table's columns, as far as a view shows them; -1 for what is none
    std::vector<std::string> names;
    bool instead = false; // a trigger takes the rows
};

Target targetOf(Binding& binding, const ObjectName& name) {
    Target target;
    if (std::shared_ptr<const TableDef> table = binding.findTable(name)) {
        if (table->readOnly)
            throw serverMessage(Message::LogicalTableNotModifiable, {}, name.line);
        target.table = std::move(table);
        for (std::size_t i = 0; i < target.table->columns.size(); ++i) {
            target.columns.push_back(static_cast<int>(i));
            target.names.push_back(target.table->columns[i].name);
        }
        return target;
    }
    if (name.last().front() == '@')
        throw serverMessage(Message::UndeclaredTableVariable, {name.last()}, name.line).withSeverity(15, 2);
    const std::shared_ptr<const ViewDef> view = binding.context.catalog.view(name);
    if (!view)
        throw serverMessage(Message::InvalidObject, {name.toText()}, name.line);
    Scope scope;
    TableRef ref;
    ref.name = name;
    bindView(binding, ref, *view, scope);
    const Source& source = scope.sources[0];
    if (source.grouped || source.bases.empty())
        throw serverMessage(Message::DerivedField, {view->name}, name.line);
    for (const BoundColumn& column : source.columns) {
        if (column.value.table && !target.table)
            target.table = column.value.table;
        const bool plain = column.value.table && column.value.table->id == target.table->id;
        target.columns.push_back(plain ? column.value.column : -1);
        target.names.push_back(column.name);
    }
    if (source.bases.size() > 1)
        throw serverMessage(Message::ViewOfSeveralTables, {view->name}, name.line);
    return target;
}

// The rows of a view that a trigger takes: whatever it shows.
Target shapeOf(Binding& binding, const ViewDef& view) {
    Target target;
    auto shape = std::make_shared<TableDef>();
    shape->id = view.id;
    shape->name = view.name;
    Scope scope;
    TableRef ref;
    ref.name.parts.push_back(view.name);
    bindView(binding, ref, view, scope);
    for (const BoundColumn& column : scope.sources[0].columns) {
        ColumnDef definition;
        definition.name = column.name;
        definition.type = column.value.type;
        target.columns.push_back(static_cast<int>(shape->columns.size()));
        target.names.push_back(column.name);
        shape->columns.push_back(std::move(definition));
    }
    target.table = std::move(shape);
    target.instead = true;
    return target;
}

std::vector<int> columnsOf(const InsertStatement& statement, const Target& target) {
    std::vector<int> columns;
    if (!statement.hasColumns) {
        for (const int column : target.columns) {
            if (column < 0)
                throw serverMessage(Message::DerivedField, {statement.table.last()}, statement.line);
            const ColumnDef& definition = target.table->columns[static_cast<std::size_t>(column)];
            if (!definition.identity && !definition.computed)
                columns.push_back(column);
        }
        return columns;
    }
    for (const std::string& name : statement.columns) {
        int found = -1;
        for (std::size_t i = 0; i < target.names.size(); ++i) {
            if (sameName(target.names[i], name))
                found = target.columns[i] < 0 ? -2 : target.columns[i];
        }
        if (found == -2)
            throw serverMessage(Message::DerivedField, {statement.table.last()}, statement.line);
        if (found < 0)
            throw serverMessage(Message::InvalidColumn, {name}, statement.line);
        if (target.table->columns[static_cast<std::size_t>(found)].computed)
            throw serverMessage(Message::ComputedNotModifiable, {name}, statement.line);
        if (std::find(columns.begin(), columns.end(), found) != columns.end())
            throw serverMessage(Message::ColumnGivenTwice, {name}, statement.line);
        columns.push_back(found);
    }
    return columns;
}

void checkIdentity(const Binding& binding, const TableDef& table, const std::vector<int>& columns, bool named, int line) {
    const int identity = table.identityColumn();
    if (identity < 0)
        return;
    const bool given = std::find(columns.begin(), columns.end(), identity) != columns.end();
    const bool allowed = binding.context.catalog.identityInsert(table);
    if (named && given && !allowed)
        throw serverMessage(Message::IdentityGiven, {table.name}, line);
    if (allowed && !named)
        throw serverMessage(Message::IdentityNeedsColumns, {table.name}, line);
    if (allowed && !given)
        throw serverMessage(Message::IdentityNotGiven, {table.name}, line);
}

void checkWidth(const Binding& binding, const InsertStatement& statement, std::size_t wanted, std::size_t given, bool values) {
    if (wanted == given)
        return;
    if (!statement.hasColumns) {
        const std::shared_ptr<const TableDef> table = binding.context.catalog.table(statement.table);
        if (table && table->identityColumn() >= 0 && given == wanted + 1)
            throw serverMessage(Message::IdentityNeedsColumns, {table->name}, statement.line);
        throw serverMessage(Message::ColumnsDoNotMatch, {}, statement.line).withSeverity(16, 1);
    }
    if (values)
        throw serverMessage(given < wanted ? Message::TooFewValues : Message::TooManyValues, {}, statement.line);
    throw serverMessage(given < wanted ? Message::TooFewSelected : Message::TooManySelected, {}, statement.line);
}

// Binds the rows of one INSERT.
class InsertBinder {
public:
    InsertBinder(Binding& binding, const InsertStatement& statement, const Target& target)
        : binding_(binding), statement_(statement), target_(target), table_(*target.table) {
        insert_.table = target.table;
    }

    // The rows for these columns, every other one by its default.
    BoundInsert rows(const std::vector<int>& columns) {
        columns_ = columns;
        if (statement_.defaultValues)
            insert_.rows.push_back(row({}));
        else if (statement_.query)
            query();
        else
            values();
        return std::move(insert_);
    }

    // One row whose values come from outside.
    BoundInsert given(const std::vector<int>& columns, std::vector<Typed> values) {
        columns_ = columns;
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = storedIn(column(columns[i]), std::move(values[i]), statement_.line);
        insert_.rows.push_back(row(values));
        return std::move(insert_);
    }

private:
    const ColumnDef& column(int index) const { return table_.columns[static_cast<std::size_t>(index)]; }

    // A whole row in the order of the table, computed columns left out.
    std::vector<Typed> row(const std::vector<Typed>& given) {
        std::vector<Typed> row;
        for (std::size_t i = 0; i < table_.columns.size(); ++i) {
            const ColumnDef& column = table_.columns[i];
            const auto found = std::find(columns_.begin(), columns_.end(), static_cast<int>(i));
            if (column.computed)
                continue;
            if (found != columns_.end())
                row.push_back(explicitValue(column, given[static_cast<std::size_t>(found - columns_.begin())]));
            else if (column.identity)
                row.push_back(convertTo(nextIdentity(), column.type, ConvertFor::Column));
            else
                row.push_back(storedIn(column, bindDefault(binding_, column), 0));
        }
        return row;
    }

    Typed explicitValue(const ColumnDef& column, const Typed& value) const {
        return column.identity ? called("ts_identity", {wholeNumber(table_.id), value}, column.type) : value;
    }

    // None for a row that a trigger takes.
    Typed nextIdentity() const {
        const SqlType type = simpleType(TypeKind::BigInt);
        return target_.instead ? literalOf(Cell::ofInteger(0), type) : called("ts_identity", {wholeNumber(table_.id)}, type);
    }

    void values() {
        if (statement_.top)
            throw unsupported("INSERT TOP ... VALUES", statement_.line);
        for (const std::vector<ExprPtr>& exprs : statement_.rows) {
            checkWidth(binding_, statement_, columns_.size(), exprs.size(), true);
            std::vector<Typed> given;
            for (std::size_t i = 0; i < exprs.size(); ++i) {
                const ColumnDef& to = column(columns_[i]);
                const bool isDefault = exprs[i]->kind == ExprKind::Default;
                given.push_back(storedIn(to, isDefault ? bindDefault(binding_, to) : bindValue(binding_, *exprs[i]), statement_.line));
            }
            insert_.rows.push_back(row(given));
        }
    }

    void query() {
        std::unique_ptr<BoundQuery> query = bindQuery(binding_, *statement_.query);
        checkWidth(binding_, statement_, columns_.size(), query->columns.size(), false);
        const std::string alias = binding_.nextAlias();
        std::vector<Typed> given;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            Typed value = query->columns[i].value;
            if (!value.isNull())
                value.form = queryColumn(alias, i, value.type).form;
            given.push_back(storedIn(column(columns_[i]), std::move(value), statement_.line));
        }
        if (statement_.top)
            query->limit = bindLimit(binding_, statement_.top);
        else if (!query->orderBy.empty() && !query->isLimited())
            query->limit = wholeNumber(-1); // keeps the order for the numbers that are given on the way
        insert_.rows.push_back(row(given));
        insert_.from = from::Any{from::Subquery{std::move(query), alias}};
    }

    Binding& binding_;
    const InsertStatement& statement_;
    const Target& target_;
    const TableDef& table_;
    std::vector<int> columns_;
    BoundInsert insert_;
};

ChangePlan planOf(const BoundInsert& insert) {
    ChangePlan plan;
    plan.kind = ChangePlan::Kind::Insert;
    plan.table = insert.table;
    plan.sql = render(insert);
    plan.givesIdentity = insert.table->identityColumn() >= 0;
    plan.updated.assign(insert.table->columns.size(), true);
    return plan;
}

Target insertTarget(Binding& binding, const ObjectName& name) {
    const std::shared_ptr<const ViewDef> view = binding.findTable(name) ? nullptr : binding.context.catalog.view(name);
    if (view && binding.context.catalog.hasInsteadTrigger(view->id, "insert"))
        return shapeOf(binding, *view);
    Target target = targetOf(binding, name);
    target.instead = binding.context.catalog.hasInsteadTrigger(target.table->id, "insert");
    return target;
}

} // namespace

ChangePlan bindInsert(Binding& binding, const InsertStatement& statement) {
    const CommonTablesScope known(binding, statement.commonTables);
    const Target target = insertTarget(binding, statement.table);
    const std::vector<int> columns = statement.defaultValues ? std::vector<int>() : columnsOf(statement, target);
    if (!target.instead)
        checkIdentity(binding, *target.table, columns, statement.hasColumns, statement.line);
    const BoundInsert insert = InsertBinder(binding, statement, target).rows(columns);
    if (target.instead) {
        if (statement.output)
            throw unsupported("OUTPUT beside an INSTEAD OF trigger", statement.line);
        ChangePlan plan;
        plan.kind = ChangePlan::Kind::Insert;
        plan.table = target.table;
        plan.insteadOf = target.table->id;
        plan.insteadShape = target.table;
        plan.insteadNew = renderRows(insert);
        plan.updated.assign(target.table->columns.size(), true);
        return plan;
    }
    ChangePlan plan = planOf(insert);
    if (statement.output)
        bindOutput(binding, *statement.output, plan);
    return plan;
}

ChangePlan bindInsertRow(Binding& binding, const InsertStatement& statement, const std::vector<SqlType>& types) {
    const Target target = targetOf(binding, statement.table);
    const std::vector<int> columns = columnsOf(statement, target);
    if (columns.size() != types.size())
        throw serverMessage(Message::ColumnsDoNotMatch, {}, statement.line).withSeverity(16, 7);
    checkIdentity(binding, *target.table, columns, statement.hasColumns, statement.line);
    std::vector<Typed> cells;
    for (std::size_t i = 0; i < types.size(); ++i)
        cells.push_back(typed(form::Place{{false, static_cast<int>(i)}}, types[i]));
    return planOf(InsertBinder(binding, statement, target).given(columns, std::move(cells)));
}

} // namespace merchantry::db::tsql
