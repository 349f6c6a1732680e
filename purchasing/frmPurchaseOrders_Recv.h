#pragma once

#include "purchasing/openlinesform.h"
#include "purchasing/receiveline.h"
#include "ui/choice.h"
#include "ui/list.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <cstdint>
#include <string>
#include <vector>

namespace merchantry::purchasing {

// Books what has arrived of one order: quantities, costs and other costs of its open lines, all in one transaction. A code typed or scanned
// selects its line; the second page works out what the receipt would make of each item's cost. Set the members, show it modally, read
// DialogResult.
class frmPurchaseOrders_Recv : public OpenLinesForm {
public:
    explicit frmPurchaseOrders_Recv(ui::Desk& desk);

private:
    void shapeGrids();
    void wire();
    void Form_Load() override;

    void loadLines() override;
    void loadPrinters();
    void showLines();
    void showRow(int row, const ReceiveLine& line);
    void markIfShort(int row, const ReceiveLine& line);
    void showTotals() override;
    void showStatus();
    OpenLine* lineAt(int row) override;
    void clearLine(int row) override;
    void setAvailable();

    void txtCode_KeyDown(const std::string& key, bool& swallow);
    int rowOfCode(const std::string& code);
    void loadBarcodes();

    void grdPOItems_BeforeEdit(int row, int column, bool& cancel);
    void grdPOItems_AfterEdit(int row, int column);
    void takeQuantity(int row, ReceiveLine& line);
    void takeCost(int row, ReceiveLine& line);
    void tabReceive_Change();
    void rehearse();
    void chkPrintLabels_Click();
    void cmdOtherCost_Click();

    void cmdOK_Click();
    void MemorizePO();
    void printLabels();

    ui::TabSet tabReceive{*this, "tabReceive", {"Order Lines", "Rehearsal"}};

    // Order Lines
    ui::TextBox txtCode{*this, "txtCode"};
    ui::Label lblCode{*this, "lblCode"};   // what the code found
    ui::Label lblShort{*this, "lblShort"}; // how many lines bring less than is open

    // Rehearsal
    ui::Label lblRehearsal{*this, "lblRehearsal"};
    ui::Grid grdRehearsal{*this, "grdRehearsal"};

    ui::CheckBox chkPrintLabels{*this, "chkPrintLabels", "Print &labels"};
    ui::Label lblLabelT{*this, "lblLabelT", "Label size and printer:"};
    ui::ComboBox cboPrint{*this, "cboPrint"};
    ui::Label lblSubtotal{*this, "lblSubtotal"};
    ui::Label lblOtherCosts{*this, "lblOtherCosts"};
    ui::Button cmdNotReceived{*this, "cmdNotReceived", "&Not Received"};
    ui::Button cmdOtherCost{*this, "cmdOtherCost", "O&ther Costs"};

    std::vector<ReceiveLine> lines_;
    std::vector<std::string> barcodes_; // of the lines; empty until the first code is looked for
    Currency Subtotal_;
    Currency OtherCost_;
    std::string OtherCostDesc_;
};

} // namespace merchantry::purchasing
