#pragma once

#include "app/db/session.h"
#include "app/db/tsql/cell.h"

#include <sqlite3.h>

namespace merchantry::db::embedded {

// A row of a running statement of SQLite, read in place.
class StatementRow : public RowView {
public:
    StatementRow(sqlite3_stmt* statement, const std::vector<Column>& columns) : statement_(statement), columns_(columns) {}

    int size() const override { return static_cast<int>(columns_.size()); }
    bool isNull(int column) const override { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
    Value value(int column) const override {
        return tsql::valueOf(tsql::columnCell(statement_, column), columns_[static_cast<std::size_t>(column)].type);
    }
    std::string_view text(int column) const override {
        const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
        return {data ? data : "", static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
    }
    std::int64_t number(int column) const override { return sqlite3_column_int64(statement_, column); }

private:
    sqlite3_stmt* statement_;
    const std::vector<Column>& columns_;
};

// Keeps the rows of all results, for INSERT ... EXEC.
class RowCollector : public ResultSink {
public:
    explicit RowCollector(ResultSink& messages) : messages_(messages) {}

    void beginSet(const std::vector<Column>& columns) override {
        types.clear();
        for (const Column& column : columns)
            types.push_back(column.type);
        sets.push_back({types, {}});
    }
    void row(const RowView& row) override {
        std::vector<tsql::Cell> cells;
        for (int i = 0; i < row.size(); ++i)
            cells.push_back(tsql::cellOf(row.value(i), types[static_cast<std::size_t>(i)]));
        sets.back().rows.push_back(std::move(cells));
    }
    void message(const std::string& text) override { messages_.message(text); }
    void error(const DbError& error) override { messages_.error(error); }

    struct Set {
        std::vector<SqlType> types;
        std::vector<std::vector<tsql::Cell>> rows;
    };
    std::vector<SqlType> types;
    std::vector<Set> sets;

private:
    ResultSink& messages_;
};

} // namespace merchantry::db::embedded
