#include "catalog/codedialog.h"

#include "app/itemcodes.h"
#include "catalog/itemwizardform.h"
#include "catalog/modItemLookup.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace ui;

CodeDialog::CodeDialog(Desk& desk, const char* name, const char* caption, const char* fieldCaption)
    : Form(desk, name, caption), fieldCaption_(fieldCaption) {
    setIcon("item");
    setFixedSize();
    txtMatrixSKU.maxLength = 100;
    txtMatrixSKU.fixedWidth = true;
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;
    lblState.setForeColor(Color::Red);
    cmdOK.click = [this] { cmdOK_Click(); };
    cmdCancel.click = [this] { unload(); };
}

Item CodeDialog::layoutWith(std::vector<Item> leftButtons) {
    leftButtons.push_back(stretch());
    leftButtons.push_back(at(cmdCancel));
    leftButtons.push_back(at(cmdOK));
    return column({fields({field(fieldCaption_, txtMatrixSKU).wide(32)}), at(lblState), buttons(std::move(leftButtons))});
}

// A code that no item can have is refused where it is typed.
void CodeDialog::cmdOK_Click() {
    const std::string& code = txtMatrixSKU.text();
    lblState.setCaption(app::itemCodeComplaint(code, code));
    accepted_ = lblState.caption().empty();
    if (accepted_)
        unload();
    else
        txtMatrixSKU.setFocus();
}

std::string CodeDialog::ask(const std::string& preset) {
    ensureLoaded();
    accepted_ = false;
    lblState.setCaption("");
    txtMatrixSKU.setText(preset);
    desk().showModal(*this);
    return accepted_ ? txtMatrixSKU.text() : std::string();
}

void CodeDialog::Form_Activate() {
    txtMatrixSKU.setFocus();
    txtMatrixSKU.selectAll();
}

frmSKU::frmSKU(Desk& desk) : CodeDialog(desk, "frmSKU", "Enter SKU", "SKU:") {
    cmdCancel.setToolTip("Counts as an empty field: the item's own code is that of its parent.");
    setLayout(layoutWith({}));
}

std::string frmSKU::GetSKU() {
    return ask("");
}

frmMatrixSKU::frmMatrixSKU(Desk& desk) : CodeDialog(desk, "frmMatrixSKU", "Matrix SKU", "Parent SKU:") {
    cmdLookupMatrixParent.setToolTip("Empties the field; it takes the parent that you pick, or stays empty.");
    cmdLookupMatrixParent.click = [this] { cmdLookupMatrixParent_Click(); };
    setLayout(layoutWith({at(cmdLookupMatrixParent)}));
}

std::string frmMatrixSKU::GetMatrixSKU(const std::string& preset) {
    return ask(preset);
}

void frmMatrixSKU::cmdLookupMatrixParent_Click() {
    txtMatrixSKU.setText("");
    auto& lookup = desk().form<frmParentLookup>();
    lookup.CustomizeForm("Matrix Parent Lookup", "Parent");
    desk().showModal(lookup);
    txtMatrixSKU.setText(ParentOfPair(lookup.Pair()));
}

} // namespace merchantry::catalog
