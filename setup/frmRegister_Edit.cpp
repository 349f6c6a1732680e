#include "setup/frmRegister_Edit.h"

#include "app/modMain.h"
#include "setup/boundrow.h"
#include "setup/frmRegisters.h"
#include "setup/receiptpreview.h"
#include "ui/desk.h"

namespace merchantry::setup {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmRegister_Edit";
constexpr const char* kDefaultPrinter = "Windows Default";

} // namespace

frmRegister_Edit::frmRegister_Edit(Desk& desk) : Form(desk, "frmRegister_Edit", "Register Options") {
    setIcon("store");
    for (const std::string& type : printerTypes())
        lbxPrinterType.add(type);
    const std::pair<Control*, const char*> bound[] = {{&txtRecptMsg, "RecptMsg"},
                                                      {&txtDisplayMsg, "DisplayMsg"},
                                                      {&txtPole, "DisplayType"},
                                                      {&lbxPrinterType, "PrinterType"},
                                                      {&txtCutCode, "CutCode"}};
    for (const auto& [control, column] : bound)
        control->dataField = column;
    txtRecptMsg.multiline = txtPreview.multiline = true;
    txtRecptMsg.maxLength = 255;
    txtDisplayMsg.maxLength = 100;
    txtPole.maxLength = txtCutCode.maxLength = 50;
    txtPreview.fixedWidth = txtCutCode.fixedWidth = true;
    txtPreview.setLocked(true);
    txtPreview.setToolTip("How the receipt ends on paper of that width.");
    txtCutCode.setToolTip("What the printer is sent to cut the paper, as its manual gives it. Leave it empty for paper that is torn off.");
    cmdCancel.isCancel = true;
    cmdUpdate.isDefault = true;

    for (TextBox* box : {&txtRecptMsg, &txtDisplayMsg, &txtPole, &txtCutCode})
        box->gotFocus = [box] { box->selectAll(); };
    txtRecptMsg.change = [this] { showPreview(); };
    txtCutCode.change = [this] { showPreview(); };
    lbxPrinterType.click = [this] { showPreview(); };
    cmdUpdate.click = [this] { cmdUpdate_Click(); };
    cmdCancel.click = [this] { unload(); };

    asksBeforeLeaving();
    setLayout(column({
        title(lblReg),
        row({
            box("Receipt", fields({
                               field("Receipt &message:", txtRecptMsg).high(4),
                               field("Printer &type:", lbxPrinterType),
                               field("Receipt &printer:", cboPrinters),
                               at(lblPrinter).wide(21).high(4),
                               field("Cut c&ode:", txtCutCode),
                               at(cbxPopDrawer),
                           }))
                .stretched(),
            column({
                at(lblPaper),
                at(txtPreview).wide(50).high(6).stretched(),
                box("Customer display", fields({
                                            field("Di&splay message:", txtDisplayMsg),
                                            field("Po&le display:", txtPole),
                                        })),
            }),
        }),
        buttons({stretch(), note("Update saves and closes"), at(cmdCancel), at(cmdUpdate)}),
    }));
}

bool frmRegister_Edit::hasRow() const {
    return data_.Recordset() != nullptr && data_.Recordset()->onRow();
}

void frmRegister_Edit::Form_Load() {
    guarded({kTag, "Form_Load", caption() + " - Critical Error"}, [this] { load(); });
}

void frmRegister_Edit::load() {
    lblReg.setCaption("Register #" + std::to_string(RegisterID));
    const auto* list = desk().existing<frmRegisters>();
    if (list != nullptr && list->Recordset() != nullptr) {
        list->Recordset()->MoveFirst();
        list->Recordset()->Find("ID = " + std::to_string(RegisterID));
        data_.setRecordset(list->Recordset());
    }
    if (hasRow()) {
        BindControls(*this, data_);
        cbxPopDrawer.setValue((*data_.Recordset())["PopDrawer"].text() == "1");
    }
    showPreview();
    fillPrinters();
    LoadReceiptPrinter();
}

void frmRegister_Edit::fillPrinters() {
    cboPrinters.clear();
    cboPrinters.add(kDefaultPrinter);
    for (const std::string& printer : desk().printers())
        cboPrinters.add(printer);
}

void frmRegister_Edit::LoadReceiptPrinter() {
    cboPrinters.setListIndex(0);
    lblPrinter.setVisible(false);
    const auto rows = modMain().Conn->Execute(db::Sql("sp_GetReceiptPrinter ") + static_cast<int>(RegisterID));
    if (rows->Eof() || (*rows)["ReceiptPrinter"].isNull())
        return;
    const std::string stored = (*rows)["ReceiptPrinter"].text();
    for (int i = 0; i < cboPrinters.count(); ++i)
        if (cboPrinters.entries()[static_cast<std::size_t>(i)].text == stored)
            return cboPrinters.setListIndex(i);
    lblPrinter.setVisible(true);
    lblPrinter.setForeColor(Color::Red);
    lblPrinter.setCaption("\"" + stored + "\" is not on this workstation. Update puts Windows Default in its place.");
}

void frmRegister_Edit::showPreview() {
    txtPreview.setText(receiptPreview(txtRecptMsg.text(), lbxPrinterType.text(), txtCutCode.text()));
    lblPaper.setCaption("As it will be printed: " + std::to_string(receiptColumns(lbxPrinterType.text())) + " characters a line");
}

void frmRegister_Edit::cmdUpdate_Click() {
    const FailurePlace place{kTag, "Error_cmdUpdate_Click"};
    if (hasRow() &&
        !writeBound(data_, place, [this](db::Recordset& row) { row["PopDrawer"] = Value(std::string(cbxPopDrawer.value() ? "1" : "0")); }))
        return;
    if (guarded(place, [this] { SaveReceiptPrinter(); }))
        unload();
}

void frmRegister_Edit::SaveReceiptPrinter() {
    if (cboPrinters.listIndex() < 0)
        return;
    const db::Sql call = db::Sql("sp_SetReceiptPrinter ") + static_cast<int>(RegisterID);
    if (cboPrinters.listIndex() == 0)
        modMain().Conn->Execute(call + ", NULL");
    else
        modMain().Conn->Execute(call + ", '" + cboPrinters.text() + "'");
}

} // namespace merchantry::setup
