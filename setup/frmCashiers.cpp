#include "setup/frmCashiers.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "setup/frmCashier_Security.h"
#include "setup/managers.h"
#include "ui/desk.h"

namespace merchantry::setup {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kDefaultAccount = "5";
constexpr int kIdColumn = 0;
constexpr int kNameColumn = 1;
constexpr std::size_t kColumns = 20; // of bsp_Cashiers

std::vector<GridColumn> columns() {
    std::vector<GridColumn> all{{.heading = "ID", .centred = true, .fixedWidth = true, .width = 1005},
                                {.heading = "Name", .width = 2500},
                                {.heading = "First and last name", .width = 2500},
                                {.heading = "Manager", .format = GridColumn::Format::Flag, .width = 1000}};
    while (all.size() + 1 < kColumns)
        all.push_back({.hidden = true});
    all.push_back({.hidden = true, .secret = true}); // the password
    return all;
}

} // namespace

frmCashiers::frmCashiers(Desk& desk) : Form(desk, "frmCashiers", "Cashiers") {
    setIcon("customers");
    grdCashiers.setColumns(columns());
    grdCashiers.emptyText = "No cashiers could be loaded.";
    grdCashiers.setToolTip("Enter or a double click opens the cashier.");
    cmdDelete.isDanger = true;
    CmdExit.isCancel = true;

    grdCashiers.beforeEdit = [](int, int, bool& cancel) { cancel = true; };
    grdCashiers.dblClick = [this] { cmdEdit_Click(); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdEdit.click = [this] { cmdEdit_Click(); };
    cmdDelete.click = [this] { cmdDelete_Click(); };
    CmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(grdCashiers).high(12).stretched(),
        note("Managers open Merchantry with their name and password; what a cashier may do on a register stands behind Edit."),
        buttons({at(cmdAdd), at(cmdEdit), gap(), at(cmdDelete), stretch(), at(CmdExit)}),
    }));
}

void frmCashiers::Form_Load() {
    guarded({"MR_frmItemMatrix", "Form_Load", caption() + " - Critical Error"}, [this] {
        release();
        rsCashiers = openBroker("bsp_Cashiers", db::CommandType::StoredProcedure, db::CursorType::Dynamic, db::LockType::Optimistic);
        grdCashiers.bind(rsCashiers.get());
    });
}

void frmCashiers::release() {
    grdCashiers.bind(nullptr);
    closeRows(rsCashiers);
}

void frmCashiers::Form_Unload(bool& /*cancel*/) {
    release();
}

// The list was read afresh: back to where the user was, as far as that cashier is still there.
void frmCashiers::standOn(const std::string& id) {
    for (int row = 1; row <= grdCashiers.dataRows(); ++row)
        if (grdCashiers.text(row, kIdColumn) == id)
            return grdCashiers.setCurrent(row, kNameColumn);
}

void frmCashiers::cmdAdd_Click() {
    for (int row = 1; row <= grdCashiers.dataRows(); ++row)
        if (grdCashiers.text(row, kNameColumn) == "Name") {
            desk().message("You already have a blank cashier to edit! Please edit the new addition before adding another.", kProduct);
            return;
        }
    guarded({"MR_frmCashiers", "cmdAdd_Click"}, [this] { add(); });
}

void frmCashiers::add() {
    if (rsCashiers == nullptr)
        return; // the cashiers could not be loaded
    db::Recordset& rows = *rsCashiers;
    Undo undo([&rows] { rows.CancelUpdate(); });
    rows.AddNew();
    rows["Name"] = Value(std::string("Name"));
    rows["Password"] = Value(std::string("Passcode"));
    rows["DrawerLimit"] = Value(std::string("1000"));
    rows["ReturnLimit"] = Value(std::string("100"));
    rows.Update();
    undo.keep();
    grdCashiers.setCurrent(grdCashiers.dataRows(), kNameColumn);
    cmdEdit_Click();
}

void frmCashiers::cmdEdit_Click() {
    const std::string id = grdCashiers.text(grdCashiers.row(), kIdColumn);
    if (id == kDefaultAccount)
        desk().message("You are about to edit the default manager account. Please ensure you maintain at least one manager account.  Not "
                       "doing so will cause you to lose access to the Merchantry",
                       kProduct);
    if (grdCashiers.row() < 1)
        return;
    auto& edit = desk().form<frmCashier_Security>();
    if (!guarded({"MR_frmCashiers", "cmdEdit_Click"}, [&] { edit.CashierID = toInt16(numericPrefix(id)); }))
        return;
    desk().showModal(edit);
    Form_Load();
    standOn(id);
}

void frmCashiers::cmdDelete_Click() {
    const std::string id = grdCashiers.text(grdCashiers.row(), kIdColumn);
    if (id == kDefaultAccount) {
        desk().message("Cannot edit or delete the default account", kProduct);
        return;
    }
    if (grdCashiers.row() < 1 || !mayDelete(id))
        return;
    try {
        openBroker(db::Sql("DELETE FROM Cashier WHERE ID = ") + id, db::CommandType::Text, db::CursorType::ForwardOnly,
                   db::LockType::ReadOnly);
    } catch (const db::DbError&) {
        desk().message("You may not delete a cashier that has transactions associated with it.", kProduct);
    }
    Form_Load();
}

bool frmCashiers::mayDelete(const std::string& id) {
    if (desk().message("Are you sure you want to delete this cashier?", kProduct, MessageIcon::Question, MessageButtons::OkCancel) !=
        Answer::Ok)
        return false;
    bool may = false;
    guarded({"MR_frmCashiers", "cmdDelete_Click"}, [&] {
        const std::string warning = lastManagerWarning(storedLogins(), static_cast<int>(numericPrefix(id)), {});
        may = warning.empty() || desk().message(warning, kProduct, MessageIcon::Exclamation, MessageButtons::YesNo) == Answer::Yes;
    });
    return may;
}

} // namespace merchantry::setup
