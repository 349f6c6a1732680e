#pragma once

#include "app/db/tsql/sql.h"
#include "purchasing/pickform.h"
#include "purchasing/pickrows.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace merchantry::purchasing {

// An item of a pick list.
struct ItemPick {
    std::string Name;
    std::string SKU;
    std::string MatrixSKU;
    std::int32_t Restock = 0;
    std::int32_t Quantity = 0; // in stock
    bool Selected = false;
};

// Chooses items for an order. The caller sets the public members before it shows the form, reads them back afterwards and unloads it;
// PickItems does all that.
class frmPOPickItems : public PickForm {
public:
    explicit frmPOPickItems(ui::Desk& desk);

    std::vector<ItemPick> Items; // the list; Selected is the user's
    std::string SupplierName;    // whose order it is; empty for none

private:
    void Form_Load() override;
    bool accepts() override;

    ui::Label lblHeading{*this, "lblHeading", "Select Items for Purchase Order"};
    ui::Grid grdItems{*this, "grdItems"};
    PickRows<ItemPick> rows_;
};

// The items that the user ticks among those of the procedure (columns MatrixSKU, SKU, Name, Quantity, Restock); those of `ticked` (pairs of
// SKU and MatrixSKU) are ticked beforehand. Empty when there are none, which is said, or on Cancel. Throws DbError.
using ItemKeys = std::set<std::pair<std::string, std::string>>;
std::vector<ItemPick> PickItems(ui::Desk& desk, const db::Sql& procedure, const std::string& supplierName, const ItemKeys& ticked = {});

} // namespace merchantry::purchasing
