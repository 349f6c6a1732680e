#pragma once

#include "app/db/server/odbc.h"
#include "app/db/session.h"

#include <vector>

namespace merchantry::db::server {

// The columns of the set of rows that a statement stands before; their tables are not known to the driver.
std::vector<Column> columnsOf(SQLHANDLE statement);

// Reads the rows of one set: short cells lie in one buffer that the driver fills with each row, long ones are asked for when they are
// wanted. The statement must outlive it.
class ResultRows : public RowView {
public:
    ResultRows(SQLHANDLE statement, const std::vector<Column>& columns);
    ~ResultRows() override;
    ResultRows(const ResultRows&) = delete;
    ResultRows& operator=(const ResultRows&) = delete;

    // The next row; SQL_NO_DATA behind the last. Anything else is for diagnosticsOf.
    SQLRETURN next();

    int size() const override { return static_cast<int>(cells_.size()); }
    bool isNull(int column) const override { return cellAt(column).length == SQL_NULL_DATA; }
    Value value(int column) const override;
    std::string_view text(int column) const override;
    std::int64_t number(int column) const override;

private:
    struct CellPlace {
        SqlType type;
        SQLSMALLINT read = SQL_C_CHAR; // as what the driver gives it
        std::size_t at = 0;            // in the buffer
        std::size_t room = 0;          // 0 for a long one
        SQLLEN length = 0;             // of this row's cell
        std::string text;              // of a long one
    };
    const CellPlace& cellAt(int column) const { return cells_[static_cast<std::size_t>(column)]; }
    std::string_view bytes(const CellPlace& cell) const;
    template <class T> T held(const CellPlace& cell) const;
    Value numberValue(const CellPlace& cell) const;
    SQLRETURN readLong(SQLUSMALLINT column, CellPlace& cell);

    SQLHANDLE statement_;
    std::vector<CellPlace> cells_;
    std::vector<char> buffer_;
    bool hasLong_ = false;
};

// A date and time of the driver; milliseconds that a datetime cannot hold are rounded to.
Date dateOf(const SQL_TIMESTAMP_STRUCT& time);
SQL_TIMESTAMP_STRUCT timestampOf(Date date);

} // namespace merchantry::db::server
