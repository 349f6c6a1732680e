#include "customers/customerrows.h"

#include "app/modMain.h"

namespace merchantry::customers {

void CustomerRows::readAccounts() {
    std::unordered_map<std::int64_t, Account> read;
    const auto rows = app::openDirect("bsp_CustomerAccounts", db::CursorType::Static);
    for (int row = 0; row < rows->rowCount(); ++row)
        read[rows->cell(row, 0).toInteger()] = {rows->cell(row, 1), rows->cell(row, 2)};
    accounts_ = std::move(read);
}

std::string CustomerRows::columnName(int column) const {
    return column < kBalance ? list_.columnName(column) : column == kBalance ? "Balance" : "AccountLimit";
}

Value CustomerRows::cell(int row, int column) const {
    if (column < kBalance)
        return list_.cell(row, column);
    const auto found = accounts_.find(list_.cell(row, 0).toInteger());
    return found == accounts_.end() ? Value() : column == kBalance ? found->second.balance : found->second.limit;
}

std::string_view CustomerRows::cellText(int row, int column) const {
    if (column < kBalance)
        return list_.cellText(row, column);
    text_ = cell(row, column).toText();
    return text_;
}

} // namespace merchantry::customers
