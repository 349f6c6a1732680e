#include "app/db/ado/writeback.h"

#include "base/characters.h"
#include "base/text.h"
#include "base/textorder.h"

#include <algorithm>
#include <set>
#include <utility>

namespace merchantry::db {
namespace {

using Category = DbError::Category;

// A statement being put together with its values as parameters.
class Statement {
public:
    void add(const std::string& text) { text_ += text; }
    void addValue(const SqlType& type, const Value& value) {
        const std::string name = "p" + std::to_string(parameters_.size());
        text_ += "@" + name;
        parameters_.push_back({name, parameterType(type, value), value, false});
    }
    // Runs it followed by a select of the number of rows that it changed.
    std::int64_t run(Session& session) { return runWith(session, "@@ROWCOUNT").toInteger(); }
    // Runs an INSERT followed by a select of the identity that it gave; null when the table has none.
    Value insert(Session& session) { return runWith(session, "CAST(SCOPE_IDENTITY() AS bigint)"); }
    void rows(Session& session, ResultSink& sink) { session.execute(text_, parameters_, sink); }

private:
    Value runWith(Session& session, const std::string& asked);
    // Texts go as long as they are, so that the server itself finds those that are too long.
    static SqlType parameterType(const SqlType& type, const Value& value) {
        if (!value.is<std::string>())
            return type;
        return {TypeKind::NVarChar, std::max(1, static_cast<int>(characterCount(value.as<std::string>()))), 0, 0};
    }

    std::string text_;
    std::vector<Parameter> parameters_;
};

// The last cell of the last set.
class LastNumber : public ResultSink {
public:
    void beginSet(const std::vector<Column>&) override {}
    void row(const RowView& row) override { value = row.value(0); }
    Value value;
};

Value Statement::runWith(Session& session, const std::string& asked) {
    text_ += " SELECT " + asked;
    LastNumber answer;
    session.execute(text_, parameters_, answer);
    return answer.value;
}

std::string bracketed(const std::string& name) {
    return "[" + replaced(name, "]", "]]") + "]";
}

[[noreturn]] void readOnly(const std::string& why) {
    throw DbError(Category::Other, 0, why).withHresult(kReadOnly);
}

[[noreturn]] void conflict() {
    throw DbError(Category::Conflict, 0, "Row cannot be located for updating. Some values may have been changed since it was last read.");
}

int columnFor(const RowStore& store, const std::string& table, const std::string& field) {
    const auto& columns = store.columns();
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (sameText(columns[i].baseTable, table) && sameText(columns[i].baseColumn, field))
            return static_cast<int>(i);
    return -1;
}

// "[a] = @p" for a value, "[a] IS NULL" for none.
void addCondition(Statement& statement, const std::string& field, const SqlType& type, const Value& value) {
    statement.add(bracketed(field));
    if (value.isNull()) {
        statement.add(" IS NULL");
        return;
    }
    statement.add(" = ");
    statement.addValue(type, value);
}

// The first key of the table whose columns are all among the rows' own.
const std::vector<std::string>& keyAmong(const RowStore& store, const TableShape& shape) {
    if (shape.keys.empty())
        readOnly("Insufficient key column information for updating or refreshing: the table " + shape.name + " has no key.");
    for (const auto& key : shape.keys)
        if (std::all_of(key.begin(), key.end(), [&](const std::string& field) { return columnFor(store, shape.name, field) >= 0; }))
            return key;
    readOnly("Insufficient key column information for updating or refreshing: " + shape.keys.front().front() + " of " + shape.name +
             " is not among the columns.");
}

void addKey(Statement& statement, Session& session, const RowStore& store, int row, const std::string& table) {
    const TableShape shape = session.table(table);
    statement.add(" WHERE ");
    bool first = true;
    for (const std::string& field : keyAmong(store, shape)) {
        const int column = columnFor(store, table, field);
        statement.add(std::exchange(first, false) ? "" : " AND ");
        addCondition(statement, field, store.columns()[static_cast<std::size_t>(column)].type, store.value(row, column));
    }
}

bool comparable(const SqlType& type) {
    return type.kind != TypeKind::Text && type.kind != TypeKind::NText && type.kind != TypeKind::Image;
}

void updateTable(Session& session, const RowStore& store, int row, const std::string& table, const std::map<int, Value>& pending) {
    Statement statement;
    statement.add("UPDATE " + bracketed(table) + " SET ");
    bool first = true;
    const auto mine = [&](int column) { return sameText(store.columns()[static_cast<std::size_t>(column)].baseTable, table); };
    for (const auto& [column, value] : pending) {
        if (!mine(column))
            continue;
        const Column& shape = store.columns()[static_cast<std::size_t>(column)];
        statement.add((first ? "" : ", ") + bracketed(shape.baseColumn) + " = ");
        statement.addValue(shape.type, value);
        first = false;
    }
    addKey(statement, session, store, row, table);
    for (const auto& [column, value] : pending) {
        const Column& shape = store.columns()[static_cast<std::size_t>(column)];
        if (!mine(column) || !comparable(shape.type))
            continue;
        statement.add(" AND ");
        addCondition(statement, shape.baseColumn, shape.type, store.value(row, column));
    }
    if (statement.run(session) == 0)
        conflict();
}

std::set<std::string> tablesOf(const RowStore& store, const std::map<int, Value>& pending) {
    std::set<std::string> tables;
    for (const auto& [column, value] : pending) {
        const Column& shape = store.columns()[static_cast<std::size_t>(column)];
        if (shape.baseTable.empty() || shape.computed)
            readOnly("The column " + shape.name + " cannot be changed: it belongs to no table.");
        tables.insert(shape.baseTable);
    }
    return tables;
}

std::string tableToInsert(const RowStore& store, const std::map<int, Value>& pending) {
    const std::set<std::string> tables = tablesOf(store, pending);
    if (tables.size() > 1)
        readOnly("A new row can go into one table only.");
    if (tables.size() == 1)
        return *tables.begin();
    for (const Column& column : store.columns())
        if (!column.baseTable.empty())
            return column.baseTable;
    readOnly("The rows belong to no table.");
}

// Takes the first row of a result into a row of the store; the result's columns are those of `targets`.
class FillRow : public ResultSink {
public:
    FillRow(RowStore& store, int row, std::vector<int> targets) : store_(store), row_(row), targets_(std::move(targets)) {}
    void beginSet(const std::vector<Column>&) override {}
    void row(const RowView& view) override {
        for (std::size_t i = 0; i < targets_.size(); ++i)
            store_.set(row_, targets_[i], view.value(static_cast<int>(i)));
    }

private:
    RowStore& store_;
    int row_;
    std::vector<int> targets_;
};

// Reads the inserted row again by its key: the pending values, or the new identity.
void readBack(Session& session, RowStore& store, int row, const std::string& table, const TableShape& shape, const Value& identity) {
    Statement statement;
    statement.add("SELECT ");
    std::vector<int> targets;
    for (std::size_t i = 0; i < store.columns().size(); ++i) {
        const Column& column = store.columns()[i];
        if (!sameText(column.baseTable, table))
            continue;
        statement.add((targets.empty() ? "" : ", ") + bracketed(column.baseColumn));
        targets.push_back(static_cast<int>(i));
    }
    statement.add(" FROM " + bracketed(table) + " WHERE ");
    if (shape.keys.empty())
        return;
    bool first = true;
    for (const std::string& name : shape.keys.front()) {
        const int column = columnFor(store, table, name);
        const auto field = std::find_if(shape.fields.begin(), shape.fields.end(), [&](const auto& f) { return sameText(f.name, name); });
        if (field == shape.fields.end() || (column < 0 && !field->identity))
            return;
        statement.add(std::exchange(first, false) ? "" : " AND ");
        addCondition(statement, name, field->type, field->identity ? identity : store.value(row, column));
    }
    FillRow sink(store, row, targets);
    statement.rows(session, sink);
}

} // namespace

void writeUpdate(Session& session, const RowStore& store, int row, const std::map<int, Value>& pending) {
    for (const std::string& table : tablesOf(store, pending))
        updateTable(session, store, row, table, pending);
}

int writeInsert(Session& session, RowStore& store, const std::map<int, Value>& pending) {
    const std::string table = tableToInsert(store, pending);
    const TableShape shape = session.table(table);
    Statement statement;
    statement.add("INSERT INTO " + bracketed(table));
    std::string names;
    for (const auto& [column, value] : pending)
        names += (names.empty() ? "" : ", ") + bracketed(store.columns()[static_cast<std::size_t>(column)].baseColumn);
    statement.add(names.empty() ? " DEFAULT VALUES" : " (" + names + ") VALUES (");
    bool first = true;
    for (const auto& [column, value] : pending) {
        if (!first)
            statement.add(", ");
        statement.addValue(store.columns()[static_cast<std::size_t>(column)].type, value);
        first = false;
    }
    if (!names.empty())
        statement.add(")");
    const Value identity = statement.insert(session);
    const int row = store.appendEmpty();
    for (const auto& [column, value] : pending)
        store.set(row, column, value);
    readBack(session, store, row, table, shape, identity);
    return row;
}

void writeDelete(Session& session, const RowStore& store, int row) {
    std::string table;
    for (const Column& column : store.columns())
        if (table.empty())
            table = column.baseTable;
    if (table.empty())
        readOnly("The rows belong to no table.");
    Statement statement;
    statement.add("DELETE FROM " + bracketed(table));
    addKey(statement, session, store, row, table);
    if (statement.run(session) == 0)
        conflict();
}

} // namespace merchantry::db
