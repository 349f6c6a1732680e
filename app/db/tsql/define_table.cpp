#include "app/db/tsql/define_table.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/parser.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace merchantry::db::tsql {
namespace {

class TableDefiner {
public:
    TableDefiner(TableDef& table, const TypeLookup& types, bool creating) : table_(table), types_(types), creating_(creating) {}

    void add(const TableBody& body) {
        for (const ColumnClause& column : body.columns)
            addColumn(column);
        for (const ColumnClause& column : body.columns) {
            for (const ConstraintClause& constraint : column.constraints)
                addConstraint(constraint, &column);
        }
        for (const ConstraintClause& constraint : body.constraints)
            addConstraint(constraint, nullptr);
    }

private:
    std::string madeName(const char* prefix, const std::string& column = "") {
        std::array<char, 24> suffix{};
        std::snprintf(suffix.data(), suffix.size(), "%04X%02X", static_cast<unsigned>(table_.id), number_++);
        return std::string(prefix) + "__" + table_.name.substr(0, 20) + "__" + (column.empty() ? "" : column.substr(0, 20) + "__") +
               suffix.data();
    }

    static std::shared_ptr<const Expr> copyOf(const Expr& expr) { return parseExpressionText(expr.source); }

    void addColumn(const ColumnClause& clause) {
        if (table_.find(clause.name) >= 0)
            throw serverMessage(Message::ColumnTwice, {clause.name, table_.name}, clause.line);
        ColumnDef column;
        column.name = clause.name;
        if (clause.computed) {
            column.computed = copyOf(*clause.computed);
        } else {
            bool nullable = true;
            column.type = types_(clause.type, nullable);
            column.nullable = clause.nullable.value_or(clause.identity ? false : nullable);
        }
        if (clause.identity)
            setIdentity(column, clause);
        table_.columns.push_back(std::move(column));
    }

    void setIdentity(ColumnDef& column, const ColumnClause& clause) {
        const bool fits = (column.type.isWhole() && column.type.kind != TypeKind::Bit) ||
                          (column.type.kind == TypeKind::Decimal && column.type.scale == 0);
        if (!fits)
            throw serverMessage(Message::IdentityType, {column.name}, clause.line);
        if (table_.identityColumn() >= 0)
            throw serverMessage(Message::SeveralIdentities, {table_.name}, clause.line);
        if (column.type.kind == TypeKind::Decimal && column.type.precision > 18)
            throw unsupported("an identity of more than 18 digits", clause.line);
        column.identity = true;
        column.seed = clause.seed;
        column.increment = clause.increment;
    }

    void addConstraint(const ConstraintClause& clause, const ColumnClause* column) {
        requireFreeName(clause);
        switch (clause.kind) {
        case ConstraintClause::Kind::PrimaryKey:
        case ConstraintClause::Kind::Unique:
            return addKey(clause, column);
        case ConstraintClause::Kind::Check: {
            CheckDef check;
            check.name = clause.name.empty() ? madeName("CK", column ? column->name : "") : clause.name;
            check.expr = copyOf(*clause.expr);
            table_.checks.push_back(std::move(check));
            return;
        }
        case ConstraintClause::Kind::ForeignKey:
            return addForeignKey(clause, column);
        case ConstraintClause::Kind::Default:
            return addDefault(clause, column);
        }
    }

    void requireFreeName(const ConstraintClause& clause) const {
        if (clause.name.empty())
            return;
        const auto taken = [&](const auto& all) {
            return std::any_of(all.begin(), all.end(), [&](const auto& one) { return sameName(one.name, clause.name); });
        };
        const bool defaultTaken = std::any_of(table_.columns.begin(), table_.columns.end(),
                                              [&](const ColumnDef& one) { return sameName(one.defaultName, clause.name); });
        if (taken(table_.keys) || taken(table_.checks) || taken(table_.foreignKeys) || defaultTaken)
            throw serverMessage(Message::ObjectExists, {clause.name}, clause.line);
    }

    ColumnDef& columnOf(const std::string& name, Message missing, int line) {
        const int found = table_.find(name);
        if (found < 0)
            throw serverMessage(missing, {name}, line);
        return table_.columns[static_cast<std::size_t>(found)];
    }

    void addKey(const ConstraintClause& clause, const ColumnClause* column) {
        KeyDef key;
        key.primary = clause.kind == ConstraintClause::Kind::PrimaryKey;
        key.clustered = clause.clustered;
        key.columns = clause.columns;
        if (column && key.columns.empty())
            key.columns.push_back({column->name, false});
        if (key.primary && table_.primaryKey()) {
            if (creating_)
                throw serverMessage(Message::SeveralPrimaryKeys, {table_.name}, clause.line);
            throw serverMessage(Message::PrimaryKeyExists, {table_.name}, clause.line);
        }
        for (const IndexColumn& one : key.columns) {
            ColumnDef& definition = columnOf(one.name, Message::KeyOfUnknownColumn, clause.line);
            if (definition.computed)
                throw unsupported("a key of a computed column", clause.line);
            if (key.primary && definition.nullable) {
                const bool explicitNull = !creating_ || saysNull(one.name);
                if (explicitNull)
                    throw serverMessage(Message::PrimaryKeyNullable, {table_.name}, clause.line);
                definition.nullable = false;
            }
        }
        key.name = clause.name.empty() ? madeName(key.primary ? "PK" : "UQ") : clause.name;
        table_.keys.push_back(std::move(key));
    }

    bool saysNull(const std::string& name) const {
        return std::any_of(nullColumns_.begin(), nullColumns_.end(), [&](const std::string& one) { return sameName(one, name); });
    }

    void addForeignKey(const ConstraintClause& clause, const ColumnClause* column) {
        ForeignKeyDef key;
        key.columns = clause.foreignKey.columns;
        if (column && key.columns.empty())
            key.columns.push_back(column->name);
        for (const std::string& one : key.columns)
            columnOf(one, Message::ForeignKeyOfUnknownColumn, clause.line);
        key.table = clause.foreignKey.table.last();
        key.refColumns = clause.foreignKey.refColumns;
        key.onDelete = clause.foreignKey.onDelete == "NO ACTION" ? "" : clause.foreignKey.onDelete;
        key.onUpdate = clause.foreignKey.onUpdate == "NO ACTION" ? "" : clause.foreignKey.onUpdate;
        key.name = clause.name.empty() ? madeName("FK", key.columns.empty() ? "" : key.columns[0]) : clause.name;
        table_.foreignKeys.push_back(std::move(key));
    }

    void addDefault(const ConstraintClause& clause, const ColumnClause* column) {
        ColumnDef& definition = columnOf(column ? column->name : clause.forColumn, Message::DefaultOfUnknownColumn, clause.line);
        if (definition.defaultValue)
            throw serverMessage(Message::DefaultExists, {}, clause.line);
        if (definition.identity)
            throw serverMessage(Message::DefaultOnIdentity, {}, clause.line);
        definition.defaultValue = copyOf(*clause.expr);
        definition.defaultName = clause.name.empty() ? madeName("DF", definition.name) : clause.name;
    }

public:
    void noteNullColumns(const TableBody& body) {
        for (const ColumnClause& column : body.columns) {
            if (column.nullable.value_or(false))
                nullColumns_.push_back(column.name);
        }
        number_ = static_cast<unsigned>(table_.columns.size() + table_.keys.size() + table_.checks.size() + table_.foreignKeys.size());
    }

private:
    TableDef& table_;
    const TypeLookup& types_;
    bool creating_;
    unsigned number_ = 0;
    std::vector<std::string> nullColumns_;
};

} // namespace

TableDef defineTable(const ObjectName& name, const TableBody& body, std::int64_t id, const TypeLookup& types) {
    TableDef table;
    table.id = id;
    table.name = name.last();
    if (body.columns.empty())
        throw serverMessage(Message::IncorrectSyntax, {")"}, name.line);
    addToTable(table, body, types, true);
    return table;
}

void addToTable(TableDef& table, const TableBody& body, const TypeLookup& types, bool creating) {
    TableDefiner definer(table, types, creating);
    definer.noteNullColumns(body);
    definer.add(body);
}

} // namespace merchantry::db::tsql
