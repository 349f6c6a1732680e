#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/undoline.h"

#include <cstdint>
#include <string>

namespace merchantry::inventory {

// The serial numbers of the units of one item. It never changes the stock; the stock is only a ceiling for how many numbers can be added.
// The database sees to it that no number is there twice.
class frmInventory_Serial : public ui::Form {
public:
    explicit frmInventory_Serial(ui::Desk& desk);

    // Opens for the item, modally. The row of the calling grid is kept and not used.
    void ShowSerials(const std::string& SKU, const std::string& MatrixSKU, std::int16_t Row);

private:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    void cmdAdd_Click();
    void addSerial();
    std::int64_t inStock() const;
    void cmdDelete_Click();
    void grdInv_Error();
    void showState();
    int placeholders() const;
    void release();

    ui::Label lblHeading{*this, "lblHeading", "Item Serials"};
    ui::Label lblInstructions{*this, "lblInstructions", "Add/Delete/Modify Unique Item Serial Numbers"};
    ui::Grid grdInv{*this, "grdInv"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::UndoLine undoLine{*this};

    std::string sku_;
    std::string matrixSku_;
    std::int16_t row_ = 0;
    bool activated_ = false;
    db::RecordsetPtr rsSerials;
};

} // namespace merchantry::inventory
