#include "setup/frmDepartments.h"

namespace merchantry::setup {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmDepartments";
constexpr int kName = 1;
constexpr int kBase = 1; // the ID of the base department

} // namespace

frmDepartments::frmDepartments(Desk& desk) : Form(desk, "frmDepartments", "Departments") {
    setIcon("items");
    grdDept.setColumns({{.heading = "ID", .format = GridColumn::Format::Number, .fixedWidth = true, .characters = 6},
                        {.heading = "Department", .characters = 50}});
    grdDept.emptyText = "No departments could be loaded.";
    grdDept.setToolTip("Type over a name to change it. The first department is the one of items that have no other; its name stands.");
    cmdDelete.isDanger = true;
    CmdExit.isCancel = true;

    codes_.changed = [this] { use_.show(codes_.key(grdDept.row()), grdDept.text(grdDept.row(), kName)); };
    cmdAdd.click = [this] { codes_.add(); };
    cmdDelete.click = [this] { codes_.remove(); };
    CmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(grdDept).high(9).wide(64).stretched(),
        row({at(lblUse), stretch(), at(cmdShowItems)}),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), note("Each name is saved as you leave its cell"), at(CmdExit)}),
    }));
}

CodeTable frmDepartments::table() {
    const auto isBase = [this](int row) { return codes_.key(row) == kBase; };
    return {.procedure = "bsp_Departments",
            .newRow =
                [] {
                    return std::vector<Value>{Value(), std::string("Department")};
                },
            .emptyName = "Please enter a valid Department Name.",
            .nameForEmpty = "Edit Department",
            .fixed = isBase,
            .stays = isBase,
            .question = "Are you certain you wish to delete this Department?",
            .questionCaption = "Delete Department?",
            .baseRefusal = "You may not edit or delete the base Department",
            .loading = {kTag, "Form_Load", caption() + " - Critical Error"},
            .adding = {kTag, "Add_Click"},
            .removing = {kTag, "Delete_Click"}};
}

void frmDepartments::Form_Load() {
    codes_.load();
}

void frmDepartments::Form_Unload(bool& /*cancel*/) {
    codes_.release();
}

} // namespace merchantry::setup
