#include "setup/frmCashier_Security.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/lettercase.h"
#include "base/text.h"
#include "setup/boundrow.h"
#include "setup/frmCashiers.h"
#include "setup/managers.h"
#include "setup/secretbox.h"
#include "ui/desk.h"

namespace merchantry::setup {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmCashier_Security";

std::string nameKey(std::string_view name) {
    return upperCase(trimmed(name));
}

} // namespace

frmCashier_Security::frmCashier_Security(Desk& desk) : Form(desk, "frmCashier_Security", "Cashier Security Settings") {
    setIcon("customers");
    keepSecret(Password, cmdShowPassword);
    bindFields();
    for (TextBox* box : {&CashierName, &FloorLimit, &Password, &ReturnLimit, &txtFirstName, &txtLastName}) {
        box->maxLength = 50;
        box->gotFocus = [box] { box->selectAll(); };
    }
    for (TextBox* box : {&FloorLimit, &ReturnLimit})
        box->money = box->alignRight = true;
    CashierStoreID.alignRight = true;
    cmdCancel.isCancel = true;
    cmdUpdate.isDefault = true;

    CashierName.lostFocus = [this] { CashierName_LostFocus(); };
    ManagerTimer.fire = [this] { ManagerTimer_Timer(); };
    cmdUpdate.click = [this] { cmdUpdate_Click(); };
    cmdCancel.click = [this] { unload(); };
    CmdExit.click = [this] { unload(); };

    asksBeforeLeaving();
    setLayout(column({
        title(lblHeading),
        row({
            column({
                box("Cashier", fields({
                                   field("Log-in &name:", CashierName).wide(19),
                                   field("Pass&word:", Password, {at(cmdShowPassword)}).wide(19),
                                   field("&First name:", txtFirstName).wide(19),
                                   field("&Last name:", txtLastName).wide(19),
                                   field("&Store number:", CashierStoreID).wide(8),
                               })),
                box("Limits", fields({
                                  field("Drawer l&imit:", FloorLimit).wide(12),
                                  field("Return limit:", ReturnLimit).wide(12),
                              })),
            }),
            column({
                       at(ManagerFlag),
                       group(fraAllow,
                             row({column({at(AllowSerialAdd), at(AllowUpdateCust), at(AllowTaxStatusChg), at(AllowReprint),
                                          at(AllowViewCost)}),
                                  column({at(AllowExit), at(AllowHold), at(AllowDropPayout), at(AllowNoSale), at(AllowPriceChange)})})),
                       at(lblRights).wide(34).high(4),
                   })
                .stretched(),
        }),
        buttons({stretch(), note("Update saves and closes"), at(CmdExit), at(cmdCancel), at(cmdUpdate)}),
    }));
}

void frmCashier_Security::bindFields() {
    const std::pair<Control*, const char*> bound[] = {
        {&CashierName, "Name"},
        {&Password, "Password"},
        {&CashierStoreID, "StoreID"},
        {&txtFirstName, "FirstName"},
        {&txtLastName, "LastName"},
        {&FloorLimit, "DrawerLimit"},
        {&ReturnLimit, "ReturnLimit"},
        {&ManagerFlag, "ManagerFlag"},
        {&AllowSerialAdd, "AllowSerialAdd"},
        {&AllowUpdateCust, "AllowUpdateCust"},
        {&AllowTaxStatusChg, "AllowTaxStatusChg"},
        {&AllowReprint, "AllowReprint"},
        {&AllowViewCost, "AllowViewCost"},
        {&AllowExit, "AllowExit"},
        {&AllowHold, "AllowHold"},
        {&AllowDropPayout, "AllowDropPayout"},
        {&AllowNoSale, "AllowNoSale"},
        {&AllowPriceChange, "AllowPriceChg"},
    };
    for (const auto& [control, column] : bound)
        control->dataField = column;
}

bool frmCashier_Security::hasRow() const {
    return data_.Recordset() != nullptr && data_.Recordset()->onRow();
}

void frmCashier_Security::Form_Load() {
    guarded({kTag, "Form_Load", caption() + " - Critical Error"}, [this] {
        const auto* list = desk().existing<frmCashiers>();
        if (list == nullptr || list->Recordset() == nullptr)
            return;
        list->Recordset()->MoveFirst();
        list->Recordset()->Find("ID = " + std::to_string(CashierID));
        data_.setRecordset(list->Recordset());
        if (hasRow())
            BindControls(*this, data_);
    });
    ManagerTimer.start();
}

void frmCashier_Security::ManagerTimer_Timer() {
    guarded({kTag, "ManagerFlag_Click"}, [this] {
        ManagerTimer.stop();
        fraAllow.setEnabled(!ManagerFlag.value());
        for (Control* control : controls())
            if (auto* box = dynamic_cast<CheckBox*>(control); box != nullptr && box != &ManagerFlag)
                box->setValue(ManagerFlag.value());
        lblRights.setCaption(
            ManagerFlag.value()
                ? "A manager may do everything. To take rights away, untick Manager, press Update and open the cashier again."
                : "The boxes open clear, whatever is stored: tick everything that this cashier may do, each time, before Update.");
    });
}

// Whether another cashier of the list has the name; case and surrounding blanks do not tell two apart.
bool frmCashier_Security::isTaken(const std::string& name) const {
    const db::Recordset& rows = *data_.Recordset();
    for (int row = 0; row < rows.rowCount(); ++row)
        if (row + 1 != rows.AbsolutePosition() && nameKey(rows.cell(row, 1).toText()) == nameKey(name))
            return true;
    return false;
}

// On the way out, by Exit, Cancel or the close box, what was typed is dropped.
void frmCashier_Security::CashierName_LostFocus() {
    const bool leaving = focused() == nullptr || focused() == &cmdCancel || focused() == &CmdExit;
    if (leaving || !hasRow() || !isTaken(CashierName.text()))
        return;
    desk().message("This Name is already present as a cashier. Please edit this name.", kProduct);
    CashierName.setText("Name");
    write("CashierName_LostFocus");
}

bool frmCashier_Security::mayWrite() {
    const Login becomes{CashierID, CashierName.text(), Password.text(), ManagerFlag.value()};
    const std::string warning = lastManagerWarning(storedLogins(), CashierID, becomes);
    return warning.empty() || desk().message(warning, kProduct, MessageIcon::Exclamation, MessageButtons::YesNo) == Answer::Yes;
}

// False when nothing was written: it failed, or the user would rather keep the last login.
bool frmCashier_Security::write(const char* procedure) {
    bool may = false;
    guarded({kTag, procedure}, [&] { may = mayWrite(); });
    return may && writeBound(data_, {kTag, procedure});
}

void frmCashier_Security::cmdUpdate_Click() {
    if (!hasRow() || write("Error_cmdUpdate_Click"))
        unload();
}

} // namespace merchantry::setup
