#pragma once

#include "app/db/ado/recordset.h"
#include "base/rows.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace merchantry::customers {

// The list of customers with two columns beside those of its procedure: what each owes, and how much at most. Both are empty until they are
// read, in one select over all customers. Borrows the list, which must outlive it.
class CustomerRows : public Rows {
public:
    static constexpr int kBalance = 8;
    static constexpr int kLimit = 9;

    explicit CustomerRows(db::Recordset& list) : list_(list) {}

    // Reads both for all customers. Throws DbError; what was read before stays.
    void readAccounts();

    int columnCount() const override { return kLimit + 1; }
    std::string columnName(int column) const override;
    int rowCount() const override { return list_.rowCount(); }
    Value cell(int row, int column) const override;
    std::optional<RowOrder> sortedBy() const override { return list_.sortedBy(); }
    std::string_view cellText(int row, int column) const override;
    bool canChange() const override { return list_.canChange(); }
    void setCell(int row, int column, const Value& value) override { list_.setCell(row, column, value); }
    void addRow(const std::vector<Value>& cells) override { list_.addRow(cells); }
    void removeRow(int row) override { list_.removeRow(row); }
    int listen(std::function<void()> changed) override { return list_.listen(std::move(changed)); }
    void stopListening(int listener) override { list_.stopListening(listener); }

private:
    struct Account {
        Value balance;
        Value limit;
    };

    db::Recordset& list_;
    std::unordered_map<std::int64_t, Account> accounts_; // by customer
    mutable std::string text_;
};

} // namespace merchantry::customers
