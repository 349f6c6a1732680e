#pragma once

#include "app/db/session.h"

#include <functional>

namespace merchantry::db {

// Hands each row that a batch gives to a function; the sets follow on each other.
//
//   EachRow names([&](const RowView& row) { all.push_back(row.text(0)); });
//   session.execute("SELECT Name FROM Item", names);
class EachRow : public ResultSink {
public:
    explicit EachRow(std::function<void(const RowView&)> take) : take_(std::move(take)) {}
    void beginSet(const std::vector<Column>&) override {}
    void row(const RowView& row) override { take_(row); }

private:
    std::function<void(const RowView&)> take_;
};

} // namespace merchantry::db
