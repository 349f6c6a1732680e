#pragma once

#include "base/listrows.h"

#include <string>
#include <utility>
#include <vector>

namespace merchantry::purchasing {

// The columns that every pick list begins with.
enum PickColumn { kTick, kFirstShown };

// The entries of a pick list as the rows of a grid: the tick (Entry::Selected) in the first column, what the screen shows of an entry
// behind it, and in the last column the entry's place in the list, from 1. Only the tick can be changed. Borrows the list, which keeps its
// length.
template <class Entry> class PickRows : public ListRows {
public:
    using Shown = Value (*)(const Entry&);
    PickRows(std::vector<Entry>& entries, std::vector<Shown> shown) : entries_(entries), shown_(std::move(shown)) {}

    int columnCount() const override { return static_cast<int>(shown_.size()) + 2; }
    std::string columnName(int) const override { return ""; }
    int rowCount() const override { return static_cast<int>(entries_.size()); }
    Value cell(int row, int column) const override {
        const Entry& entry = entries_.at(static_cast<std::size_t>(row));
        if (column == kTick)
            return entry.Selected;
        const auto shown = static_cast<std::size_t>(column - kFirstShown);
        return shown < shown_.size() ? shown_[shown](entry) : Value(row + 1);
    }
    bool canChange() const override { return true; }
    void setCell(int row, int column, const Value& value) override {
        if (column == kTick)
            entries_.at(static_cast<std::size_t>(row)).Selected = value.toFlag();
    }

private:
    std::vector<Entry>& entries_;
    std::vector<Shown> shown_;
};

} // namespace merchantry::purchasing
