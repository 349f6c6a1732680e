#include "catalog/modItemLookup.h"

#include "app/ADOUtilities.h"
#include "app/itemcodes.h"
#include "app/modMain.h"
#include "app/titles.h"
#include "base/counted.h"
#include "base/text.h"
#include "catalog/codedialog.h"
#include "catalog/frmItemParent.h"
#include "catalog/itemwizardform.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using db::Sql;

namespace {

constexpr int kParentType = 4;

void inheritDepartment(const std::string& sku, const std::string& matrixSku) {
    modMain().Conn->Execute(Sql("Update Item SET DepartmentID = (Select DepartmentID FROM Item WHERE SKU = '") + sku +
                            "' AND MatrixSKU = '" + sku + "') " + " WHERE SKU = '" + sku + "' AND MatrixSKU = '" + matrixSku + "'");
}

void giveDefaultTax(const std::string& sku, const std::string& matrixSku) {
    modMain().Conn->Execute(Sql("bsp_GiveDefaultTax '") + sku + "', '" + matrixSku + "'");
}

// The statement of a lookup grid.
Sql lookupStatement(const std::string& filterText, int filterPosition, const std::string& orderBy, const std::string& sku) {
    Sql statement = "SELECT SKU, MatrixSKU, Name FROM Item WHERE (SKU <> '$DROP') AND (SKU <> '$Payout')";
    if (!sku.empty())
        statement.add(" AND TypeId <> 4 AND SKU = '").add(sku).add("'");
    else if (filterText == "Serial")
        statement.add(" AND SerialFlag = True");
    else if (filterText != "Show All" && !filterText.empty())
        statement.add(" AND TypeId = ").add(filterPosition);
    if (orderBy.empty())
        statement.add(" ORDER BY SKU, MatrixSKU");
    else
        statement.add(" ORDER BY ").add(orderBy);
    return statement;
}

} // namespace

std::string AddNewItem(int typeId, const std::string& skuGiven, const std::string& prompt, const std::string& title, bool inherit) {
    std::string pair;
    guarded({"MR_modItemLookup", "AddNew Item"}, [&] {
        ui::Desk& desk = *modMain().desk;
        const std::string sku = CleanSQLValue(!skuGiven.empty() ? skuGiven : desk.input({prompt, title, ""}).value_or(""));
        if (sku.empty())
            return;
        std::string matrixSku = typeId == kParentType ? "" : desk.form<frmSKU>().GetSKU();
        matrixSku = CleanSQLValue(matrixSku.empty() ? sku : matrixSku);
        if (isRefused(sku, matrixSku) || ItemExists(sku, matrixSku, true))
            return;
        AddItemRow("Item", sku, matrixSku, "TypeId;" + std::to_string(typeId) + ";SalesMsgID;0");
        AddItemRow("Stock", sku, matrixSku, "Quantity;0");
        AddItemRow("PriceMatrix", sku, matrixSku, "Tier;1;Quantity;1");
        if (!ItemExists(sku, matrixSku, false))
            return;
        pair = sku + "|" + matrixSku;
        giveDefaultTax(sku, matrixSku);
        if (inherit)
            inheritDepartment(sku, matrixSku);
    });
    return pair;
}

void AddItemRow(const std::string& table, const std::string& sku, const std::string& matrixSku, const std::string& fieldList) {
    const auto rows = openDirect(Sql("Select * From ") + table + " Where SKU = '" + sku + "' AND MatrixSKU = '" + matrixSku + "'",
                                 db::CursorType::Keyset, db::LockType::Optimistic);
    if (!rows->Eof())
        return;
    rows->AddNew();
    (*rows)["MatrixSKU"] = matrixSku;
    (*rows)["SKU"] = sku;
    const std::vector<std::string> entries = fieldList.empty() ? std::vector<std::string>() : split(fieldList, ";");
    for (std::size_t i = 0; i + 1 < entries.size(); i += 2)
        (*rows)[entries[i]] = entries[i + 1];
    rows->Update();
    rows->Close();
}

bool isRefused(const std::string& sku, const std::string& matrixSku) {
    const std::string wrong = itemCodeComplaint(sku, matrixSku);
    if (!wrong.empty())
        modMain().desk->message(wrong, kProduct);
    return !wrong.empty();
}

bool ItemExists(const std::string& sku, const std::string& matrixSku, bool warn) {
    const auto rows = openDirect(Sql("SELECT SKU from Item WHERE SKU = '") + sku + "' AND MatrixSKU = '" + matrixSku + "'",
                                 db::CursorType::Keyset, db::LockType::ReadOnly);
    const bool exists = rows->RecordCount() > 0;
    if (exists && warn)
        modMain().desk->message("That item already exists in your store! Please enter a different SKU/MatrixSKU", kProduct);
    return exists;
}

std::string ParentOfPair(const std::string& pair) {
    const std::size_t sign = pair.find('|');
    return sign == std::string::npos || sign == 0 ? pair : pair.substr(0, sign);
}

void AddNewParent() {
    const std::string pair =
        AddNewItem(kParentType, "", "Please input new Matrix Parent SKU\r\n(A Descriptive SKU is recommended)", "New Parent SKU", false);
    if (!pair.empty())
        modMain().desk->form<frmItemParent>().UpdateParent(pair);
}

std::string ShowItemLookup(int kind) {
    auto& wizard = modMain().desk->form<frmItemLookupWiz>();
    if (kind == 1)
        wizard.CustomizeForm("Item Lookup", true, true, "Standard");
    else if (kind == 2)
        wizard.CustomizeForm("Matrix Parent Lookup", false, true, "Parent");
    else
        wizard.CustomizeForm("Item Matrix Lookup", true, false, "Matrix");
    modMain().desk->showModal(wizard);
    return "";
}

void InitLookupGrid(db::RecordsetPtr& rows, const std::string& filterText, int filterPosition, ui::Grid& grid, const std::string& orderBy,
                    const std::string& sku) {
    modMain().desk->waitCursor(true);
    grid.bind(nullptr);
    rows.reset();
    // The one procedure that goes on after an error: the column and the cursor are put right in any case.
    guarded({"MR_modItemLookup", "InitLookupGrid"}, [&] {
        rows = openDirect(lookupStatement(filterText, filterPosition, orderBy, sku), db::CursorType::Static, db::LockType::ReadOnly);
        grid.bind(rows.get());
        for (int column = 0; column < rows->columnCount(); ++column)
            if (rows->columnName(column) == (orderBy.empty() ? "SKU" : orderBy))
                grid.setSorted(RowOrder{column});
    });
    grid.setHidden(kParentColumn, filterText == "Parent");
    grid.setStatusText(counted(grid.dataRows(), "item"));
    modMain().desk->waitCursor(false);
}

std::string itemPairAt(const ui::Grid& grid, int row) {
    return grid.rawText(row, kParentColumn) + "|" + grid.rawText(row, kMatrixColumn);
}

bool makeItem(const std::string& sku, const std::string& matrixSku) {
    const auto made = openBroker("bsp_NewItem", db::CommandType::StoredProcedure, db::CursorType::ForwardOnly, db::LockType::ReadOnly,
                                 {textParameter("SKU", 100, sku), textParameter("MatrixSKU", 100, matrixSku)});
    return !made->Eof() && (*made)["cnt"].text() == "1";
}

} // namespace merchantry::catalog
