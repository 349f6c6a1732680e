#pragma once

#include "app/db/ado/recordset.h"
#include "catalog/pricechange.h"
#include "catalog/pricepreview.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <optional>
#include <string>
#include <vector>

namespace merchantry::catalog {

// Changes the prices of the items of a list together: by a percentage or an amount, in one tier, rounded. Every price is shown before and
// after; nothing is written until the user says so, and then all of it in one transaction, which can be undone as one, later too.
class frmBulkPrice : public ui::Form {
public:
    explicit frmBulkPrice(ui::Desk& desk);

    struct ListedItem {
        std::string sku;
        std::string matrixSku;
        std::string name;
    };
    // Modal, for these items in their order.
    void ChangePrices(std::vector<ListedItem> items);

private:
    void shapeGrids();
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void loadTiers();
    void loadPrices();
    void loadChanges();
    void show();
    std::optional<PriceRule> rule() const;
    void cmdApply_Click();
    void cmdUndo_Click();
    // Runs the writing with the progress bar; reports its failure.
    void write(const char* procedure, int prices, const std::function<PriceOutcome(const PriceProgress&)>& work,
               const std::function<void(const PriceOutcome&)>& done);
    void setWriting(bool on);

    ui::Label lblHeading{*this, "lblHeading", "Change Prices"};
    ui::TabSet tabPrices{*this, "tabPrices", {"New Change", "Earlier Changes"}};

    // New Change
    ui::ListBox lbxTier{*this, "lbxTier"};
    ui::ListBox lbxBy{*this, "lbxBy"}; // percent or amount
    ui::TextBox txtChange{*this, "txtChange"};
    ui::ListBox lbxRounding{*this, "lbxRounding"};
    ui::CheckBox chkBreaks{*this, "chkBreaks", "Quantity &breaks too"};
    ui::Label lblSays{*this, "lblSays"}; // what the rule would do, or what is wrong with it
    ui::Grid grdPrices{*this, "grdPrices"};
    ui::Button cmdApply{*this, "cmdApply", "&Change Prices"};

    // Earlier Changes
    ui::Grid grdChanges{*this, "grdChanges"};
    ui::Button cmdUndo{*this, "cmdUndo", "&Undo This Change"};

    ui::ProgressBar prgWrite{*this, "prgWrite"};
    ui::Button cmdStop{*this, "cmdStop", "&Stop"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    std::vector<ListedItem> items_;
    PricePreview preview_;
    db::RecordsetPtr changes_;
    bool writing_ = false;
    bool stop_ = false;
};

} // namespace merchantry::catalog
