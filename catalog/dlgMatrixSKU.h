#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/list.h"

#include <string>

namespace merchantry::catalog {

// Picks one of a parent's items. The code picked becomes the current item's own code.
class dlgMatrixSKU : public ui::Form {
public:
    explicit dlgMatrixSKU(ui::Desk& desk);

    // Lists the own codes of the items under that parent, the first selected; shows itself modally when asked to.
    void GetMatrixSKU(const std::string& SKU, bool Show);

private:
    void Form_Load() override;
    void cmdOK_Click();

    ui::ComboBox cboMatrixSKU{*this, "cboMatrixSKU"};
    ui::Button cmdCancel{*this, "cmdCancel", "Cancel"};
    ui::Button cmdOK{*this, "cmdOK", "&OK"};

    std::string sku_;
};

} // namespace merchantry::catalog
