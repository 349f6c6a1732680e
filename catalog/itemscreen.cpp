#include "catalog/itemscreen.h"

#include "app/posting.h"
#include "base/numbers.h"
#include "base/text.h"

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

std::vector<db::Parameter> itemKeyAnd(const db::Parameter& more) {
    std::vector<db::Parameter> parameters = itemKey();
    parameters.push_back(more);
    return parameters;
}

WrittenRows pricesOfTier(int tier) {
    return {{"PriceMatrix", {"SKU", "MatrixSKU", "Tier", "Quantity"}},
            db::Sql("SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "' AND Tier = " + tier};
}

db::RecordsetPtr itemOnRow() {
    const db::RecordsetPtr& item = modMain().ItemRecordset;
    return item != nullptr && item->onRow() ? item : nullptr;
}

void notingPassing(bool* passing, const std::function<void()>& write) {
    try {
        write();
    } catch (const db::DbError& error) {
        if (passing != nullptr)
            *passing = app::isPassing(error);
        throw;
    }
}

bool writeItem(const std::string& procedure, const std::function<void(db::Recordset& item)>& set, bool* passing) {
    const db::RecordsetPtr item = modMain().ItemRecordset;
    if (item == nullptr)
        return false;
    const bool written = guarded({kItemsTag, procedure}, [&] {
        notingPassing(passing, [&] {
            set(*item);
            item->Update();
        });
    });
    if (!written && passing != nullptr && *passing)
        item->CancelUpdate();
    else if (!written)
        readStored(*item); // someone else may have changed it, and by the old values no later write would meet it
    return written;
}

bool writeField(const std::string& procedure, const std::string& column, const std::function<Value()>& value, bool* passing) {
    return writeItem(
        procedure, [&](db::Recordset& item) { item[column] = value(); }, passing);
}

void readStored(db::Recordset& item) {
    item.CancelUpdate();
    guarded({kItemsTag, "ReadStored"}, [&] { item.Requery(); });
}

// The pair that the user picks in the item lookup as its two codes; empty when none was picked.
std::vector<std::string> pickedItem() {
    const auto& lookup = modMain().doors.SelectSKU;
    const std::vector<std::string> codes = split(lookup ? lookup(0) : "", "|");
    return codes.size() == 2 ? codes : std::vector<std::string>();
}

void fill(ui::ListBox& list, const db::RecordsetPtr& rows, const std::string& text, const std::string& key) {
    list.clear();
    for (; !rows->Eof(); rows->MoveNext())
        list.add((*rows)[text].text(), static_cast<int>((*rows)[key].Value().toInteger()));
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
