#pragma once

#include "base/rows.h"

#include <map>

namespace merchantry {

// Rows over a list that the program holds in memory, which nobody can change unless a class of these says so. It gives columns and cells,
// and tells its listeners when the list is another one.
class ListRows : public Rows {
public:
    std::string_view cellText(int row, int column) const override {
        scratch_ = cell(row, column).toText();
        return scratch_;
    }
    bool canChange() const override { return false; }
    void setCell(int, int, const Value&) override {}
    void addRow(const std::vector<Value>&) override {}
    void removeRow(int) override {}
    int listen(std::function<void()> changed) override {
        listeners_[nextListener_] = std::move(changed);
        return nextListener_++;
    }
    void stopListening(int listener) override { listeners_.erase(listener); }

protected:
    void tellListeners() const {
        for (const auto& [number, changed] : std::map(listeners_))
            changed();
    }

private:
    std::map<int, std::function<void()>> listeners_;
    int nextListener_ = 1;
    mutable std::string scratch_;
};

} // namespace merchantry
