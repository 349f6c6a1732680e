#pragma once

#include "app/db/ado/recordset.h"

#include <cstdint>
#include <unordered_map>

namespace merchantry::purchasing {

// The columns of the procedures that list orders, and one behind them that the list draws.
enum OrderColumn { kPONumber, kSupplier, kDate, kAmount, kOpenAmount, kStatus, kPOID, kProgress };

// How far an order is, in pieces over all of its lines.
struct OrderProgress {
    std::int64_t ordered = 0;
    std::int64_t received = 0;
    std::int64_t cancelled = 0;

    // "3 of 10 received, 2 cancelled"
    std::string words() const;
};

// A list of orders as the rows of a grid: the recordset in place, dates without their time, and each order's progress in one more column,
// in words. Nothing is written.
class OrderRows : public Rows {
public:
    // The recordset is open. Reads the progress of all listed orders with one statement; throws DbError.
    explicit OrderRows(db::RecordsetPtr orders);

    db::Recordset& orders() const { return *orders_; }
    // Of the order in that row, from 0; null for one without lines.
    const OrderProgress* progress(int row) const;

    int columnCount() const override { return kProgress + 1; }
    std::string columnName(int column) const override { return column == kProgress ? "Progress" : orders_->columnName(column); }
    int rowCount() const override { return orders_->rowCount(); }
    Value cell(int row, int column) const override;
    std::string_view cellText(int row, int column) const override;
    std::optional<RowOrder> sortedBy() const override { return orders_->sortedBy(); }
    bool canChange() const override { return false; }
    void setCell(int row, int column, const Value& value) override { orders_->setCell(row, column, value); }
    void addRow(const std::vector<Value>& cells) override { orders_->addRow(cells); }
    void removeRow(int row) override { orders_->removeRow(row); }
    int listen(std::function<void()> changed) override { return orders_->listen(std::move(changed)); }
    void stopListening(int listener) override { orders_->stopListening(listener); }

private:
    void readProgress();

    db::RecordsetPtr orders_;
    std::unordered_map<std::int64_t, OrderProgress> progress_; // by POID
    mutable std::string scratch_;
};

} // namespace merchantry::purchasing
