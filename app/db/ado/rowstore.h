#pragma once

#include "app/db/session.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>
#include <vector>

namespace merchantry::db {

// The rows of a recordset in memory: nine bytes a cell and the texts behind one another. Rows are never moved or copied by sorting and
// filtering, which keep lists of row numbers of their own. Rows and columns count from 0.
class RowStore {
public:
    explicit RowStore(std::vector<Column> columns);

    const std::vector<Column>& columns() const { return columns_; }
    int rowCount() const { return static_cast<int>(tags_.size() / stride_); }
    // The column of that name, without case; -1 when there is none.
    int columnOf(std::string_view name) const;

    void append(const RowView& row);
    // A row of nulls; its number.
    int appendEmpty();
    void set(int row, int column, const Value& value);

    bool isNull(int row, int column) const { return tags_[at(row, column)] == Tag::Null; }
    Value value(int row, int column) const;
    // A text cell in place; empty for null. Requires: a text column.
    std::string_view text(int row, int column) const;
    bool isText(int column) const { return columns_[static_cast<std::size_t>(column)].type.isText(); }
    // Numbers as they order. Requires: a whole, money or date column, not null.
    std::int64_t number(int row, int column) const { return payloads_[at(row, column)].number; }

private:
    enum class Tag : std::uint8_t { Null, Number, Real, Text, Other };
    union Payload {
        std::int64_t number = 0;
        double real;
        const char* text;  // length in four bytes, then the text
        std::size_t other; // position in others_
    };

    std::size_t at(int row, int column) const { return static_cast<std::size_t>(row) * stride_ + static_cast<std::size_t>(column); }
    const char* keep(std::string_view text);

    std::vector<Column> columns_;
    std::size_t stride_;
    std::vector<Payload> payloads_;
    std::vector<Tag> tags_;
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::size_t used_ = 0; // of the last block
    std::size_t room_ = 0;
    std::deque<Value> others_;
};

} // namespace merchantry::db
