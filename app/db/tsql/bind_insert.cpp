#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::tsql {

Binder::Target Binder::insertTarget(const ObjectName& name) {
    Target target;
    if (std::shared_ptr<const TableDef> table = findTable(name)) {
        if (table->readOnly)
            throw typeError(286, "The logical tables INSERTED and DELETED and the catalogue cannot be updated.", name.line);
        target.table = std::move(table);
        for (std::size_t i = 0; i < target.table->columns.size(); ++i) {
            target.columns.push_back(static_cast<int>(i));
            target.names.push_back(target.table->columns[i].name);
        }
        return target;
    }
    if (name.last().front() == '@')
        throw nameError(1087, "Must declare the table variable \"" + name.last() + "\".", name.line).withSeverity(15, 2);
    const std::shared_ptr<const ViewDef> view = context_.catalog.view(name);
    if (!view)
        throw nameError(208, "Invalid object name '" + name.toText() + "'.", name.line);
    Scope scope;
    TableRef ref;
    ref.name = name;
    bindView(ref, *view, scope);
    const Source& source = scope.sources[0];
    target.viewId = view->id;
    if (source.grouped || source.bases.empty())
        throw typeError(4406,
                        "Update or insert of view or function '" + view->name + "' failed because it contains a derived or constant field.",
                        name.line);
    for (const BoundColumn& column : source.columns) {
        if (column.value.table && !target.table)
            target.table = column.value.table;
        const bool plain = column.value.table && column.value.table->id == target.table->id;
        target.columns.push_back(plain ? column.value.column : -1);
        target.names.push_back(column.name);
    }
    if (source.bases.size() > 1)
        throw typeError(4405,
                        "View or function '" + view->name + "' is not updatable because the modification affects multiple base tables.",
                        name.line);
    return target;
}

std::vector<int> Binder::insertColumns(const InsertStatement& statement, const Target& target) {
    std::vector<int> columns;
    if (!statement.hasColumns) {
        for (const int column : target.columns) {
            if (column < 0)
                throw typeError(4406, "Update or insert of view or function failed because it contains a derived or constant field.",
                                statement.line);
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
            throw typeError(4406, "Update or insert of view or function failed because it contains a derived or constant field.",
                            statement.line);
        if (found < 0)
            throw nameError(207, "Invalid column name '" + name + "'.", statement.line);
        if (target.table->columns[static_cast<std::size_t>(found)].computed)
            throw typeError(271,
                            "The column \"" + name +
                                "\" cannot be modified because it is either a computed column or is the result of a UNION operator.",
                            statement.line);
        if (std::find(columns.begin(), columns.end(), found) != columns.end())
            throw syntaxError(264,
                              "The column name '" + name + "' is specified more than once in the SET clause or column list of an INSERT.",
                              statement.line);
        columns.push_back(found);
    }
    return columns;
}

void Binder::checkIdentity(const TableDef& table, const std::vector<int>& columns, bool named, int line) {
    const int identity = table.identityColumn();
    if (identity < 0)
        return;
    const bool given = std::find(columns.begin(), columns.end(), identity) != columns.end();
    const bool allowed = context_.catalog.identityInsert(table);
    if (named && given && !allowed)
        throw typeError(
            544, "Cannot insert explicit value for identity column in table '" + table.name + "' when IDENTITY_INSERT is set to OFF.",
            line);
    if (allowed && !named)
        throw typeError(8101,
                        "An explicit value for the identity column in table '" + table.name +
                            "' can only be specified when a column list is used and IDENTITY_INSERT is ON.",
                        line);
    if (allowed && !given)
        throw typeError(545,
                        "Explicit value must be specified for identity column in table '" + table.name +
                            "' either when IDENTITY_INSERT is set to ON or when a replication user is inserting into a NOT FOR REPLICATION "
                            "identity column.",
                        line);
}

void Binder::checkWidth(const InsertStatement& statement, std::size_t wanted, std::size_t given, bool values) const {
    if (wanted == given)
        return;
    if (!statement.hasColumns) {
        const std::shared_ptr<const TableDef> table = context_.catalog.table(statement.table);
        if (table && table->identityColumn() >= 0 && given == wanted + 1)
            throw typeError(8101,
                            "An explicit value for the identity column in table '" + table->name +
                                "' can only be specified when a column list is used and IDENTITY_INSERT is ON.",
                            statement.line);
        throw syntaxError(213, "Column name or number of supplied values does not match table definition.", statement.line)
            .withSeverity(16, 1);
    }
    if (values)
        throw syntaxError(given < wanted ? 109 : 110,
                          std::string("There are ") + (given < wanted ? "more" : "fewer") +
                              " columns in the INSERT statement than values specified in the VALUES clause. The number of values in the "
                              "VALUES clause must match "
                              "the number of columns specified in the INSERT statement.",
                          statement.line);
    throw syntaxError(given < wanted ? 120 : 121,
                      std::string("The select list for the INSERT statement contains ") + (given < wanted ? "fewer" : "more") +
                          " items than the insert list. The number of SELECT values must match the number of INSERT columns.",
                      statement.line);
}

Typed Binder::defaultOf(const TableDef& table, int column) {
    const ColumnDef& definition = table.columns[static_cast<std::size_t>(column)];
    if (!definition.defaultValue) {
        Typed null;
        null.sql = "NULL";
        null.literal = Cell();
        return null;
    }
    const Restore nowhere(scope_, nullptr);
    return bindValue(*definition.defaultValue);
}

std::string Binder::storedValue(Typed value, const TableDef& table, int column, int line) {
    return implicitTo(std::move(value), table.columns[static_cast<std::size_t>(column)].type, line, ConvertFor::Column).sql;
}

// The values of a whole row in the order of the table, computed columns left out.
std::vector<std::string> Binder::rowValues(const TableDef& table, const std::vector<int>& columns, const std::vector<std::string>& given,
                                           Numbers numbers) {
    std::vector<std::string> row;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const ColumnDef& column = table.columns[i];
        if (column.computed)
            continue;
        const auto found = std::find(columns.begin(), columns.end(), static_cast<int>(i));
        if (found != columns.end()) {
            const std::string& value = given[static_cast<std::size_t>(found - columns.begin())];
            row.push_back(column.identity ? "ts_identity(" + std::to_string(table.id) + "," + value + ")" : value);
        } else if (column.identity) {
            Typed number;
            number.type = simpleType(TypeKind::BigInt);
            number.sql = numbers == Numbers::Given ? "ts_identity(" + std::to_string(table.id) + ")" : "0";
            row.push_back(convertTo(std::move(number), column.type, ConvertFor::Column).sql);
        } else {
            row.push_back(storedValue(defaultOf(table, static_cast<int>(i)), table, static_cast<int>(i), 0));
        }
    }
    return row;
}

std::string Binder::insertHead(const TableDef& table) const {
    std::string names;
    for (const ColumnDef& column : table.columns) {
        if (!column.computed)
            names += (names.empty() ? "" : ",") + quotedName(column.name);
    }
    return "INSERT INTO " + table.storage + "(" + names + ") ";
}

std::string Binder::insertValues(const InsertStatement& statement, const Target& target, const std::vector<int>& columns, Numbers numbers) {
    const TableDef& table = *target.table;
    std::string sql;
    for (const std::vector<ExprPtr>& row : statement.rows) {
        checkWidth(statement, columns.size(), row.size(), true);
        std::vector<std::string> given;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const bool isDefault = row[i]->kind == ExprKind::Default;
            given.push_back(storedValue(isDefault ? defaultOf(table, columns[i]) : bindValue(*row[i]), table, columns[i], statement.line));
        }
        sql += (sql.empty() ? "VALUES (" : ",(") + joined(rowValues(table, columns, given, numbers), ",") + ")";
    }
    return sql;
}

std::string Binder::insertQuery(const InsertStatement& statement, const Target& target, const std::vector<int>& columns, Numbers numbers) {
    std::unique_ptr<BoundQuery> query = bindQuery(*statement.query, true);
    checkWidth(statement, columns.size(), query->columns.size(), false);
    std::vector<std::string> given;
    const std::string alias = nextAlias();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Typed value = query->columns[i].value;
        if (!(query->op == SetOperator::None && value.literal))
            value.literal.reset();
        value.sql = alias + "._c" + std::to_string(i);
        if (value.literal && value.literal->isNull())
            value.sql = "NULL";
        value.literal.reset();
        value.isPlace = false;
        given.push_back(storedValue(std::move(value), *target.table, columns[i], statement.line));
    }
    if (statement.top)
        query->limit = topLimit(statement.top);
    else if (!query->orderBy.empty() && query->limit.empty())
        query->limit = " LIMIT -1"; // keeps the order for the numbers that are given on the way
    return "SELECT " + joined(rowValues(*target.table, columns, given, numbers), ",") + " FROM (" + render(*query) + ") AS " + alias;
}

std::string Binder::topLimit(const std::optional<TopClause>& top) {
    if (!top)
        return "";
    if (top->percent || top->ties)
        throw unsupported("TOP ... PERCENT", top->count->line);
    const Typed count = convertTo(bindValue(*top->count), simpleType(TypeKind::BigInt));
    return " LIMIT " + (count.literal ? count.sql : "ts_top(" + count.sql + ")");
}

ChangePlan Binder::insert(const InsertStatement& statement) {
    ChangePlan plan;
    const CommonTablesScope known(commonTables_, statement.commonTables);
    const std::shared_ptr<const ViewDef> view = findTable(statement.table) ? nullptr : context_.catalog.view(statement.table);
    const bool insteadOfView = view && context_.catalog.hasInsteadTrigger(view->id, "insert");
    Target target;
    if (insteadOfView) {
        auto shape = std::make_shared<TableDef>();
        shape->id = view->id;
        shape->name = view->name;
        for (const BoundColumn& column : viewColumns(*view)) {
            ColumnDef definition;
            definition.name = column.name;
            definition.type = column.value.type;
            target.columns.push_back(static_cast<int>(shape->columns.size()));
            target.names.push_back(column.name);
            shape->columns.push_back(std::move(definition));
        }
        target.table = shape;
    } else {
        target = insertTarget(statement.table);
    }
    plan.kind = ChangePlan::Kind::Insert;
    plan.table = target.table;
    const std::vector<int> columns = statement.defaultValues ? std::vector<int>() : insertColumns(statement, target);
    const bool instead = insteadOfView || context_.catalog.hasInsteadTrigger(target.table->id, "insert");
    if (!instead)
        checkIdentity(*target.table, columns, statement.hasColumns, statement.line);
    const Numbers numbers = instead ? Numbers::None : Numbers::Given;
    std::string rows;
    if (statement.defaultValues)
        rows = "VALUES (" + joined(rowValues(*target.table, {}, {}, numbers), ",") + ")";
    else
        rows = statement.query ? insertQuery(statement, target, columns, numbers) : insertValues(statement, target, columns, numbers);
    if (instead) {
        plan.insteadOf = target.table->id;
        plan.insteadShape = target.table;
        plan.insteadNew.text = rows;
        plan.insteadNew.places = places_;
        return plan;
    }
    plan.sql.text = insertHead(*target.table) + rows;
    plan.sql.places = places_;
    plan.givesIdentity = target.table->identityColumn() >= 0;
    plan.updated.assign(target.table->columns.size(), true);
    if (statement.output)
        bindOutput(plan, *statement.output);
    return plan;
}

ChangePlan Binder::insertRow(const InsertStatement& statement, const std::vector<SqlType>& types) {
    const Target target = insertTarget(statement.table);
    const std::vector<int> columns = insertColumns(statement, target);
    if (columns.size() != types.size())
        throw syntaxError(213, "Column name or number of supplied values does not match table definition.", statement.line)
            .withSeverity(16, 7);
    checkIdentity(*target.table, columns, statement.hasColumns, statement.line);
    std::vector<std::string> given;
    for (std::size_t i = 0; i < types.size(); ++i) {
        Typed value;
        value.type = types[i];
        value.sql = "?" + std::to_string(i + 1);
        given.push_back(storedValue(std::move(value), *target.table, columns[i], statement.line));
        places_.push_back({false, static_cast<int>(i)});
    }
    ChangePlan plan;
    plan.kind = ChangePlan::Kind::Insert;
    plan.table = target.table;
    plan.sql.text = insertHead(*target.table) + "VALUES (" + joined(rowValues(*target.table, columns, given), ",") + ")";
    plan.sql.places = places_;
    plan.givesIdentity = target.table->identityColumn() >= 0;
    plan.updated.assign(target.table->columns.size(), true);
    return plan;
}

} // namespace merchantry::db::tsql
