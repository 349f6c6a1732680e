#include "purchasing/orderrows.h"

#include "app/modMain.h"

#include <algorithm>
#include <limits>

namespace merchantry::purchasing {

std::string OrderProgress::words() const {
    std::string text = std::to_string(received) + " of " + std::to_string(ordered) + " received";
    if (cancelled != 0)
        text += ", " + std::to_string(cancelled) + " cancelled";
    return text;
}

OrderRows::OrderRows(db::RecordsetPtr orders) : orders_(std::move(orders)) {
    readProgress();
}

// Of the keys from the lowest to the highest that are listed: few orders are read where few are listed.
void OrderRows::readProgress() {
    std::int64_t lowest = std::numeric_limits<std::int64_t>::max();
    std::int64_t highest = std::numeric_limits<std::int64_t>::min();
    for (int row = 0; row < orders_->rowCount(); ++row) {
        const std::int64_t key = orders_->cell(row, kPOID).toInteger();
        lowest = std::min(lowest, key);
        highest = std::max(highest, key);
    }
    if (lowest > highest)
        return;
    const auto sums = app::openDirect(db::Sql("SELECT POID, SUM(Qty), SUM(QtyRecvd), SUM(QtyCanceled) FROM PurchaseOrderItem WHERE POID "
                                              "BETWEEN ") +
                                      lowest + " AND " + highest + " GROUP BY POID");
    progress_.reserve(static_cast<std::size_t>(sums->rowCount()));
    for (int row = 0; row < sums->rowCount(); ++row)
        progress_[sums->cell(row, 0).toInteger()] = {sums->cell(row, 1).toInteger(), sums->cell(row, 2).toInteger(),
                                                     sums->cell(row, 3).toInteger()};
}

const OrderProgress* OrderRows::progress(int row) const {
    const auto found = progress_.find(orders_->cell(row, kPOID).toInteger());
    return found == progress_.end() ? nullptr : &found->second;
}

Value OrderRows::cell(int row, int column) const {
    if (column != kProgress) {
        Value cell = orders_->cell(row, column);
        return column == kDate && cell.is<Date>() ? Value(cell.as<Date>().dateOnly()) : cell;
    }
    const OrderProgress* const known = progress(row);
    return known == nullptr ? std::string() : known->words();
}

std::string_view OrderRows::cellText(int row, int column) const {
    if (column != kProgress && column != kDate)
        return orders_->cellText(row, column);
    scratch_ = cell(row, column).toText();
    return scratch_;
}

} // namespace merchantry::purchasing
