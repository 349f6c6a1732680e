#include "inventory/adjustment.h"

#include "base/numbers.h"

#include <cmath>

namespace merchantry::inventory {

std::string complaintAbout(const std::string& quantity, const std::string& cost) {
    if (numericPrefix(quantity) == 0)
        return "Please enter a valid Quantity!";
    if (numericPrefix(cost) < 0)
        return "Negative cost can not be entered, please enter a positive cost amount!";
    return "";
}

Adjustment readAdjustment(const std::string& quantity, const std::string& cost) {
    return {toInt16(numericPrefix(quantity)), std::fabs(numericPrefix(cost))};
}

std::int16_t adjusted(std::int64_t present, std::int16_t quantity) {
    return toInt16(static_cast<double>(toInt16(static_cast<double>(present))) + quantity);
}

void postAdjustment(db::Connection& store, const std::string& sku, const std::string& matrixSku, const std::string& reason,
                    const Adjustment& made) {
    using db::Sql;
    db::Recordset stock;
    stock.Open(Sql("SELECT Quantity FROM Stock WHERE SKU = '") + sku + "' AND MatrixSKU = '" + matrixSku + "'", store.shared_from_this());
    const std::int64_t present = stock.Eof() ? 0 : stock["Quantity"].Value().toInteger();
    const int balance = adjusted(present, made.quantity);
    store.Execute(Sql("UPDATE Stock SET Quantity = ") + balance + " WHERE SKU = '" + sku + "' AND MatrixSKU = '" + matrixSku + "'");
    store.Execute(Sql("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('") + sku + "', '" + matrixSku + "', '" +
                  reason + "', " + static_cast<int>(made.quantity) + ", " + made.cost + ")");
}

} // namespace merchantry::inventory
