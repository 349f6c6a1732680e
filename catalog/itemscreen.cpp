#include "catalog/itemscreen.h"

#include "base/numbers.h"

namespace merchantry::catalog {

using namespace app;

std::vector<db::Parameter> itemKey() {
    return {textParameter("SKU", 100, modMain().CurrentSKU), textParameter("MatrixSKU", 100, modMain().CurrentMatrixSKU)};
}

db::RecordsetPtr openList(const db::Sql& procedure, const std::vector<db::Parameter>& parameters) {
    return openBroker(procedure, db::CommandType::StoredProcedure, db::CursorType::ForwardOnly, db::LockType::ReadOnly, parameters);
}

db::RecordsetPtr openUpdatable(const db::Sql& procedure, const std::vector<db::Parameter>& parameters) {
    return openBroker(procedure, db::CommandType::StoredProcedure, db::CursorType::Dynamic, db::LockType::Optimistic, parameters);
}

db::Sql splitParents() {
    return "SELECT DISTINCT SKU FROM Item WHERE (SKU <> '$DROP' AND SKU <> '$CreditPayment' AND SKU <> '$CancelLayaway' AND SKU <> "
           "'$CreditAdjustment' AND SKU <> '$CreditApplication' AND SKU <> '$PAYOUT' AND TypeID <> 4) ORDER BY SKU";
}

db::Sql itemCost() {
    return db::Sql("SELECT TOP 1 Cost_wt FROM InventoryLedger WHERE SKU ='") + modMain().CurrentSKU + "' AND MatrixSKU = '" +
           modMain().CurrentMatrixSKU + "' ORDER BY PostDate DESC";
}

db::Sql supplierChoices() {
    return "SELECT * FROM Suppliers Order By Supplier";
}

db::Sql tierChoices() {
    return "SELECT *, (select count(*) from TierDefs) AS cnt FROM TierDefs ORDER BY TierID";
}

db::Sql itemSplit() {
    return db::Sql("SELECT * FROM ItemSplitMatrix WHERE SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" +
           modMain().CurrentMatrixSKU + "'";
}

int positionOfKey(const ui::ListBox& list, std::int64_t key) {
    int found = -1;
    for (int i = 0; i < list.count(); ++i)
        if (list.entries()[static_cast<std::size_t>(i)].itemData == key)
            found = i;
    return found;
}

Currency amountIn(const std::string& text) {
    const auto amount = amountOf(text);
    if (!amount)
        throw std::invalid_argument("Type mismatch: \"" + text + "\" is not a number.");
    return *amount;
}

void ValueBefore::remember(const std::string& cell) {
    if (!isNumeric(cell))
        return;
    const Currency value = amountIn(cell);
    if (value.units() != 0)
        lastNonZero = value;
    last = value.units() != 0 ? value : lastNonZero;
}

} // namespace merchantry::catalog
