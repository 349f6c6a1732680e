#include "catalog/frmItems_SalesMsg.h"

#include "app/modMain.h"
#include "catalog/itemscreen.h"
#include "ui/calls.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmSalesMsg";
enum MessageColumn { kId, kMessage };
constexpr int kPick = 1;

} // namespace

frmItems_SalesMsg::frmItems_SalesMsg(Desk& desk) : Form(desk, "frmItems_SalesMsg", "Sales Messages") {
    setIcon("item");
    grdSalesMsg.setColumns({{.heading = "ID", .format = GridColumn::Format::Number}, {.heading = "Message", .characters = 64}});
    grdSalesMsg.setToolTip("The first message means none at all and cannot be changed. A message cannot contain \"|\".");
    grdSalesMsg.setStatusText("The first message means none. A change shows on every item that has the message.");
    cmdSelect.setVisible(false);
    cmdDeleteMsg.isDanger = true;
    cmdExit.isCancel = true;

    grdSalesMsg.beforeEdit = calls(this, &frmItems_SalesMsg::grdSalesMsg_BeforeEdit);
    grdSalesMsg.changeEdit = [](std::string& text) {
        if (text.find('|') != std::string::npos)
            text = "XXX";
    };
    grdSalesMsg.afterEdit = calls(this, &frmItems_SalesMsg::grdSalesMsg_AfterEdit);
    grdSalesMsg.error = answers(this, &frmItems_SalesMsg::grdSalesMsg_Error);
    cmdAddMsg.click = [this] { cmdAddMsg_Click(); };
    cmdDeleteMsg.click = [this] { cmdDeleteMsg_Click(); };
    cmdSelect.click = [this] { cmdSelect_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        row({title(lblHeading), stretch()}),
        at(grdSalesMsg).high(12).wide(80).stretched(),
        buttons({at(cmdAddMsg), gap(), at(cmdDeleteMsg), stretch(), at(cmdExit), at(cmdSelect)}),
    }));
    offer("ShowForm",
          [this](const auto& arguments) { return ShowForm(arguments.empty() ? 0 : static_cast<int>(Value(arguments[0]).toInteger())); });
}

std::string frmItems_SalesMsg::ShowForm(int Mode) {
    opened_ = true;
    ensureLoaded();
    const bool picking = Mode == kPick;
    cmdSelect.setVisible(picking);
    cmdSelect.isDefault = picking;
    if (picking)
        grdSalesMsg.dblClick = [this] { cmdSelect_Click(); };
    desk().showModal(*this);
    return std::exchange(result_, "");
}

void frmItems_SalesMsg::Form_Load() {
    guarded({kTag, "Form_Load", caption() + " - Critical Error"}, [this] { load(); });
}

void frmItems_SalesMsg::load() {
    result_.clear();
    grdSalesMsg.bind(nullptr);
    rows_ = openUpdatable("bsp_SalesMessages");
    grdSalesMsg.bind(rows_.get());
}

void frmItems_SalesMsg::Form_Unload(bool& /*cancel*/) {
    grdSalesMsg.bind(nullptr);
    closeRows(rows_);
}

void frmItems_SalesMsg::cmdAddMsg_Click() {
    guarded({kTag, "cmdAddMsg_Click"}, [this] {
        if (!grdSalesMsg.addRow({"", "Edit this sales message"}))
            return;
        grdSalesMsg.setCurrent(grdSalesMsg.dataRows(), kMessage);
        grdSalesMsg.setFocus();
    });
}

void frmItems_SalesMsg::cmdDeleteMsg_Click() {
    if (desk().message("Are you certain you wish to delete this Sales Message?", "Delete Sales Message", MessageIcon::Question,
                       MessageButtons::YesNo) != Answer::Yes)
        return;
    guarded({kTag, "cmdDeleteMsg_Click"}, [this] {
        if (grdSalesMsg.selected() && grdSalesMsg.value(grdSalesMsg.row(), 0).toInteger() == 0)
            desk().message("You may not delete the base Sales Message.", kProduct);
        else
            grdSalesMsg.removeRow(grdSalesMsg.row());
        load();
    });
}

void frmItems_SalesMsg::grdSalesMsg_BeforeEdit(int row, int column, bool& cancel) {
    cancel = !opened_ || column != kMessage || row == 1;
}

void frmItems_SalesMsg::grdSalesMsg_AfterEdit(int row, int column) {
    if (!grdSalesMsg.text(row, column).empty())
        return;
    desk().message("Please enter a valid message.", kProduct);
    grdSalesMsg.setText(row, column, "Edit Sales Message");
}

void frmItems_SalesMsg::grdSalesMsg_Error() {
    guarded({kTag, "grdSalesMsg_Error"}, [this] {
        desk().message("This entry would invalidate your Sales Message matrix! Please check your entry and try again.", kProduct);
        load();
    });
}

void frmItems_SalesMsg::cmdSelect_Click() {
    guarded({kTag, "grdSalesMsg_Click"}, [this] {
        if (!cmdSelect.visible() || !grdSalesMsg.selected())
            return;
        result_ = grdSalesMsg.rawText(grdSalesMsg.row(), kMessage) + "|" + grdSalesMsg.rawText(grdSalesMsg.row(), kId);
        unload();
    });
}

} // namespace merchantry::catalog
