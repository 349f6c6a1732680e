#pragma once

#include "app/db/ado/recordset.h"
#include "catalog/saleevents.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/undoline.h"

#include <vector>

namespace merchantry::catalog {

// The sale events of the current item. Works on a copy; only Save and Exit writes.
class frmItems_Sales : public ui::Form {
public:
    explicit frmItems_Sales(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Activate() override;

    void Init_SalesGrid();
    void takeSale(db::Recordset& rows);
    void showGrid();
    bool wanted(const SaleEvent& sale) const;
    void showRow(int row, int index);
    void grdSales_CellChanged(int row);
    void readRow(int row);
    void cmdAdd_Click();
    void cmdDelete_Click();
    void cmdSave_Click();
    void write(const SaleEvent& sale);
    int indexAt(int row) const;

    ui::Label lblSKU{*this, "lblSKU"};
    ui::Label lblProductName{*this, "lblProductName"};
    ui::Label lblSalesInstr{*this, "lblSalesInstr"};
    ui::CheckBox chkCurrentSales{*this, "chkCurrentSales", "Current"};
    ui::CheckBox chkFutureSales{*this, "chkFutureSales", "Future"};
    ui::CheckBox chkPastSales{*this, "chkPastSales", "Past"};
    ui::Grid grdSales{*this, "grdSales"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add Sale"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete Sale"};
    ui::Button cmdExit{*this, "cmdExit", "Cancel"};
    ui::Button cmdSave{*this, "cmdSave", "&Save and Exit"};
    ui::UndoLine undoLine{*this};

    std::vector<SaleEvent> sales_; // the hidden column of the grid holds positions in it
    bool activated_ = false;
    bool holding_ = false; // the boxes and the grid are being set: their procedures rest
};

} // namespace merchantry::catalog
