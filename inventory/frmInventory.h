#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <string>

namespace merchantry::inventory {

// Every stocked item with what is on hand and what is promised. Quantities change through Adjust, or a double click: an item with serial
// numbers (yellow) opens the list of its numbers, any other an adjustment.
class frmInventory : public ui::Form {
public:
    explicit frmInventory(ui::Desk& desk);

    // Reloads the list, ordered by this column expression; by both codes when it is empty.
    void Init_Grid(const std::string& sort);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void showSums();
    void grdInv_Click();
    void cmdSearch_Click();
    int rowOf(const std::string& sku) const;
    void cmdAdjust_Click();
    void openAdjustment(int row);
    void comeBackTo(const std::string& sku, const std::string& matrixSku);
    bool isSerialed(int row) const;
    void release();

    ui::Label lblHeading{*this, "lblHeading", "Inventory"};
    ui::Label lblInstructions{
        *this, "lblInstructions",
        "Click in the grid cells to modify \"In Stock\" or QtyCommitted. Yellow indicates Serialed Item - Double Click "
        "to edit."};
    ui::Grid grdInv{*this, "grdInv"};
    ui::Button cmdSearch{*this, "cmdSearch", "&Search"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdAdjust{*this, "cmdAdjust", "&Adjust"};

    db::RecordsetPtr rsInv;
};

} // namespace merchantry::inventory
