#pragma once

#include "base/value.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace merchantry {

// What rows stand in the order of.
struct RowOrder {
    int column = 0; // from 0
    bool descending = false;
    bool operator==(const RowOrder&) const = default;
};

// A table that one can read and change, row by row: what a bound grid or list knows of a recordset, and nothing more.
// Rows and columns count from 0. Changing members throw what the source throws (for the store, its database error);
// a failed change leaves the rows as they were.
class Rows {
public:
    virtual ~Rows() = default;

    virtual int columnCount() const = 0;
    virtual std::string columnName(int column) const = 0;
    virtual int rowCount() const = 0;
    virtual Value cell(int row, int column) const = 0;
    // The first column that the rows were asked to be sorted by; nothing when they stand as they came.
    virtual std::optional<RowOrder> sortedBy() const { return std::nullopt; }
    // The cell's text without making a Value; the reference holds until the next call.
    virtual std::string_view cellText(int row, int column) const = 0;

    virtual bool canChange() const = 0;
    // Writes one cell through to the source at once.
    virtual void setCell(int row, int column, const Value& value) = 0;
    // Adds a row with these cells (columns from 0, missing ones left to their defaults) and writes it at once.
    virtual void addRow(const std::vector<Value>& cells) = 0;
    virtual void removeRow(int row) = 0;

    // Called after anything changed that a reader could have shown: rows filtered, sorted, added, changed or closed.
    // The source owns the listener until stopListening with the returned number.
    virtual int listen(std::function<void()> changed) = 0;
    virtual void stopListening(int listener) = 0;

    // Expires with the rows, so that a reader that outlives them can tell.
    std::weak_ptr<const void> lifetime() const { return alive_; }

private:
    std::shared_ptr<const void> alive_ = std::make_shared<int>();
};

} // namespace merchantry
