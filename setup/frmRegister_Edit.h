#pragma once

#include "app/ADOUtilities.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <cstdint>

namespace merchantry::setup {

// One register: what its receipt and its display say, how its printer cuts, where it prints. It has no data of its own: it changes the row
// of the list's recordset.
class frmRegister_Edit : public ui::Form {
public:
    explicit frmRegister_Edit(ui::Desk& desk);

    // The register to edit; set before the screen is shown.
    std::int16_t RegisterID = 0;

private:
    void Form_Load() override;

    void load();
    void fillPrinters();
    void LoadReceiptPrinter();
    void SaveReceiptPrinter();
    void cmdUpdate_Click();
    void showPreview();
    bool hasRow() const;

    ui::Label lblReg{*this, "lblReg"};
    ui::TextBox txtRecptMsg{*this, "txtRecptMsg"};
    ui::TextBox txtDisplayMsg{*this, "txtDisplayMsg"};
    ui::TextBox txtPole{*this, "txtPole"}; // kind of pole display
    ui::ListBox lbxPrinterType{*this, "lbxPrinterType"};
    ui::ComboBox cboPrinters{*this, "cboPrinters"};
    ui::Label lblPrinter{*this, "lblPrinter"}; // says when the stored printer is not one of this workstation's
    ui::TextBox txtCutCode{*this, "txtCutCode"};
    ui::CheckBox cbxPopDrawer{*this, "cbxPopDrawer", "Pop &drawer after a sale"};
    ui::Label lblPaper{*this, "lblPaper"};
    ui::TextBox txtPreview{*this, "txtPreview"}; // the message as it will be printed
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};
    ui::Button cmdUpdate{*this, "cmdUpdate", "&Update"};

    app::DataControl data_;
};

} // namespace merchantry::setup
