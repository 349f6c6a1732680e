#include "inventory/adjustment.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace merchantry::inventory {

namespace {

constexpr const char* kMovements[] = {"Sale", "Return", "Receipt", "Cancel", "Opening Stock"}; // of registers, orders and the first load

} // namespace

std::string complaintAbout(const std::string& quantity, const std::string& cost) {
    for (const std::string* text : {&quantity, &cost})
        if (std::string wrong = commaComplaint(*text); !wrong.empty())
            return wrong;
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

namespace {

int balanceOf(const std::string& matrixSku, std::int64_t present, std::int16_t quantity) {
    try {
        return adjusted(present, quantity);
    } catch (const OverflowError&) {
        throw OverflowError("Overflow: the item " + matrixSku + " has " + std::to_string(present) + " in stock, and " +
                            std::to_string(present + quantity) + " after this adjustment; adjustments reckon from -32768 to 32767.");
    }
}

bool isMovement(const std::string& reason) {
    const std::string text(trimmedRight(reason));
    return std::any_of(std::begin(kMovements), std::end(kMovements), [&](const char* one) { return sameText(text, one); });
}

} // namespace

void postAdjustment(db::Connection& store, const std::string& sku, const std::string& matrixSku, const std::string& reason,
                    const Adjustment& made) {
    using db::Sql;
    db::Recordset stock;
    stock.Open(Sql("SELECT Quantity FROM Stock WHERE SKU = '") + sku + "' AND MatrixSKU = '" + matrixSku + "'", store.shared_from_this());
    const std::int64_t present = stock.Eof() ? 0 : stock["Quantity"].Value().toInteger();
    const int balance = balanceOf(matrixSku, present, made.quantity);
    store.Execute(Sql("UPDATE Stock SET Quantity = ") + balance + " WHERE SKU = '" + sku + "' AND MatrixSKU = '" + matrixSku + "'");
    store.Execute(Sql("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('") + sku + "', '" + matrixSku + "', '" +
                  reason + "', " + static_cast<int>(made.quantity) + ", " + made.cost + ")");
    // The store takes such a text for a movement of the registers or of an order, unless it is told.
    if (isMovement(reason))
        store.Execute("UPDATE InventoryLedger SET Kind = 'Adjustment' WHERE LedgerID = CAST(@@IDENTITY AS int)");
}

} // namespace merchantry::inventory
