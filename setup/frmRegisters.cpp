#include "setup/frmRegisters.h"

#include "app/modMain.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "setup/frmRegister_Edit.h"
#include "ui/desk.h"

namespace merchantry::setup {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmRegisters";
constexpr int kIdColumn = 0;

} // namespace

frmRegisters::frmRegisters(Desk& desk) : Form(desk, "frmRegisters", "Registers") {
    setIcon("store");
    // The columns of the table, in its order.
    grdReg.setColumns({{.heading = "ID", .centred = true, .fixedWidth = true},
                       {.heading = "Opens drawer", .format = GridColumn::Format::Flag},
                       {.heading = "Pole display", .characters = 12},
                       {.heading = "Printer", .characters = 13},
                       {.heading = "Display message", .characters = 22},
                       {.heading = "Cut code", .characters = 8},
                       {.heading = "Receipt message", .characters = 32},
                       {.heading = "Receipt printer", .characters = 18}});
    grdReg.editable = false;
    grdReg.emptyText = "No registers yet. Add makes the first one.";
    grdReg.setToolTip("Enter or a double click opens the register.");
    CmdExit.isCancel = true;

    grdReg.dblClick = [this] { cmdEdit_Click(); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdEdit.click = [this] { cmdEdit_Click(); };
    CmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(grdReg).high(10).stretched(),
        note("A register finds its row by its number, which the set-up of the register asks for."),
        buttons({at(cmdAdd), at(cmdEdit), stretch(), at(CmdExit)}),
    }));
}

void frmRegisters::Form_Load() {
    guarded({kTag, "Form_Load", caption() + " - Critical Error"}, [this] {
        release();
        rsRegisters =
            openBroker("Select * FROM Register ORDER BY ID", db::CommandType::Text, db::CursorType::Dynamic, db::LockType::Optimistic);
        grdReg.bind(rsRegisters.get());
    });
}

void frmRegisters::release() {
    grdReg.bind(nullptr);
    closeRows(rsRegisters);
}

void frmRegisters::Form_Unload(bool& /*cancel*/) {
    release();
}

void frmRegisters::cmdAdd_Click() {
    guarded({kTag, "cmdAdd_Click"}, [this] {
        if (rsRegisters == nullptr)
            return; // the registers could not be loaded
        Undo undo([this] { rsRegisters->CancelUpdate(); });
        rsRegisters->AddNew();
        (*rsRegisters)["RecptMsg"] = Value(std::string("Edit this receipt message"));
        (*rsRegisters)["PopDrawer"] = Value(std::string("0"));
        rsRegisters->Update();
        undo.keep();
        Form_Load();
        grdReg.setCurrent(grdReg.dataRows(), kIdColumn);
    });
}

void frmRegisters::cmdEdit_Click() {
    const int row = grdReg.row();
    if (row < 1)
        return;
    auto& edit = desk().form<frmRegister_Edit>();
    if (!guarded({kTag, "cmdEdit_Click"}, [&] { edit.RegisterID = toInt16(numericPrefix(grdReg.text(row, kIdColumn))); }))
        return;
    desk().showModal(edit);
    Form_Load();
    if (row <= grdReg.dataRows())
        grdReg.setCurrent(row, kIdColumn);
}

} // namespace merchantry::setup
