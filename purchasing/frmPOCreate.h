#pragma once

#include "purchasing/frmPOPickItems.h"
#include "purchasing/orderpreview.h"
#include "purchasing/orderrun.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace merchantry::purchasing {

// Turns low stock into orders: which items, from which suppliers, and then one order per supplier, each whole or not at all. Hides when the
// orders are written; the caller unloads it. Preview shows what the choice would order and why from whom, and writes nothing.
class frmPOCreate : public ui::Form {
public:
    explicit frmPOCreate(ui::Desk& desk);

    bool DialogResult = false; // the run ended with its summary

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void choiceClicked();
    void cmdPreview_Click();
    void cmdOK_Click();

    // The lines of the chosen filter, into lines_; false when there are none. A failure is reported, and the lines so far stay.
    bool collectLines();
    bool GetAllReorderItems();
    bool PickIndividualItemsItems();
    bool PickItemsBySuppliers();
    bool PickItemsByDepartments();

    SupplierRule rule() const;
    // Looks up who serves each of the lines, and gives the answer to `choose`; false when the user stopped it.
    bool lookUpSuppliers(const std::function<void(OrderLine& line, db::Recordset& offers)>& choose);
    bool forEach(const std::string& what, std::size_t count, const std::function<void(std::size_t index)>& work);
    // Groups the lines and writes them.
    OrdersWritten write();
    void setWriting(bool on);

    void preview();
    void clearPreview();
    void grdPreview_RowColChange();
    void showOffers(const PreviewLine& shown);

    ui::Label lblHeading{*this, "lblHeading", "Create an Automatic Purchase Order"};
    ui::OptionButton optAll{*this, "optAll", "All Items", true};
    ui::OptionButton optReorder{*this, "optReorder", "Specific Items @ Reorder Level"};
    ui::OptionButton optSpecItems{*this, "optSpecItems", "Specific Items"};
    ui::OptionButton optSpecSupplier{*this, "optSpecSupplier", "Specific Suppliers"};
    ui::OptionButton optSpecDepartment{*this, "optSpecDepartment", "Specific Departments"};
    ui::OptionButton optLowestCost{*this, "optLowestCost", "Lowest Cost", true};
    ui::OptionButton optPriorityOrder{*this, "optPriorityOrder", "Priority Order"};
    ui::Label lblExplain{*this, "lblExplain"};
    ui::Button cmdPreview{*this, "cmdPreview", "Pre&view"};
    ui::Grid grdPreview{*this, "grdPreview"}; // the lines
    ui::Label lblOffers{*this, "lblOffers"};
    ui::Grid grdOffers{*this, "grdOffers"}; // the suppliers compared for the current line
    ui::ProgressBar pbPO{*this, "pbPO"};
    ui::Button cmdCancel{*this, "cmdCancel", "Cancel"};
    ui::Button cmdOK{*this, "cmdOK", "&OK"};

    std::vector<OrderLine> lines_;
    OrderPreview preview_;
    SupplierRule previewRule_ = SupplierRule::LowestCost;
    // What the user picked for the preview, ticked again when the run asks.
    std::vector<std::int16_t> pickedSources_;
    ItemKeys pickedItems_;
    bool writing_ = false;
    bool stop_ = false;
};

} // namespace merchantry::purchasing
