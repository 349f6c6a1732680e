#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/textbox.h"

#include <string>

namespace merchantry::catalog {

// What frmSKU and frmMatrixSKU share: one field for a code, OK and Cancel. Enter is OK; Escape and the close box are Cancel.
class CodeDialog : public ui::Form {
protected:
    CodeDialog(ui::Desk& desk, const char* name, const char* caption, const char* fieldCaption);

    // Modal: the text of the field, empty on Cancel.
    std::string ask(const std::string& preset);
    void Form_Activate() override;
    ui::Item layoutWith(std::vector<ui::Item> leftButtons);

    std::string fieldCaption_;
    ui::TextBox txtMatrixSKU{*this, "txtMatrixSKU"};
    ui::Label lblState{*this, "lblState"};
    ui::Button cmdCancel{*this, "cmdCancel", "Cancel"};
    ui::Button cmdOK{*this, "cmdOK", "&OK"};

private:
    void cmdOK_Click();

    bool accepted_ = false;
};

// Asks for an item's own code.
class frmSKU : public CodeDialog {
public:
    explicit frmSKU(ui::Desk& desk);
    std::string GetSKU();
};

// Asks for the parent's code; opens with the preset, all selected.
class frmMatrixSKU : public CodeDialog {
public:
    explicit frmMatrixSKU(ui::Desk& desk);
    std::string GetMatrixSKU(const std::string& preset);

private:
    void cmdLookupMatrixParent_Click();

    ui::Button cmdLookupMatrixParent{*this, "cmdLookupMatrixParent", "&Lookup Matrix Parent"};
};

} // namespace merchantry::catalog
