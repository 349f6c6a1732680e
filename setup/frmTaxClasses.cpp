#include "setup/frmTaxClasses.h"

#include "app/titles.h"
#include "base/numbers.h"
#include "base/textorder.h"
#include "setup/taxpreview.h"
#include "ui/desk.h"

#include <cmath>

namespace merchantry::setup {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_frmTaxClasses";
constexpr int kRate = 1;
constexpr int kDescription = 2;
constexpr const char* kNewName = "Tax Type";
constexpr int kBase = 0; // the ID of the base class

// Runs a statement through a command of its own.
void runCommand(const Sql& statement) {
    openBroker(statement, db::CommandType::Text, db::CursorType::ForwardOnly, db::LockType::ReadOnly);
}

} // namespace

frmTaxClasses::frmTaxClasses(Desk& desk) : Form(desk, "frmTaxClasses", "Tax Classes") {
    setIcon("items");
    grdTax.setColumns({{.heading = "ID", .format = GridColumn::Format::Number, .fixedWidth = true, .characters = 4},
                       {.heading = "Rate %", .format = GridColumn::Format::Number, .characters = 8},
                       {.heading = "Description", .characters = 24}});
    grdTax.emptyText = "No tax classes could be loaded.";
    grdTax.setToolTip("The rate in percent: 7.5 is seven and a half. A rate is never negative.");
    grdTax.colorOf = [this](int row, int column) {
        return column == kDescription && doubles_.contains(classes_.key(row)) ? Color::Yellow : Color::None;
    };
    shapeTaxPreview(grdPreview);
    cmdDelete.isDanger = true;
    CmdExit.isCancel = true;

    grdTax.validateEdit = [this](int, int column, const std::string& text, bool& cancel) {
        cancel = column == kRate && text.find(',') != std::string::npos;
        if (cancel)
            this->desk().message("Write the rate with a point, as 7.5: a comma could be read as one or as thousands.", kProduct);
    };
    grdTax.endEdit = [this](int, int column, std::string& text) { grdTax_EndEdit(column, text); };
    classes_.changed = [this] { showAround(); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdDefault.click = [this] { cmdDefault_Click(); };
    cmdDelete.click = [this] { cmdDelete_Click(); };
    CmdExit.click = [this] { unload(); };

    setLayout(column({
        row({title(lblHeading), stretch(), at(lblDefault)}),
        row({
                box("Classes and Rates", at(grdTax).high(7).wide(34).stretched()).stretched(),
                box("An Item of $10.00", at(grdPreview).high(7).wide(36).stretched()).stretched(),
            })
            .stretched(),
        row({at(lblUse), stretch(), at(cmdShowItems)}),
        at(lblNote),
        buttons({at(cmdAdd), at(cmdDefault), gap(), at(cmdDelete), stretch(), note("Each cell is saved as you leave it"), at(CmdExit)}),
    }));
}

CodeTable frmTaxClasses::table() {
    return {.procedure = "bsp_TaxDefs",
            .nameColumn = kDescription,
            .newRow =
                [] {
                    return std::vector<Value>{Value(), 0.0, std::string(kNewName)};
                },
            .emptyName = " Please enter a valid Tax description",
            .nameForEmpty = "Edit Tax Description",
            .fixed = [](int row) { return row == 1; },
            .stays = [this](int row) { return classes_.key(row) == kBase; },
            .question = "Are you certain you wish to delete this Tax Class?",
            .questionCaption = "Delete Tax Class",
            .baseRefusal = "You may not delete the base Tax Class.",
            .writeRefused = "This action would invalidate your Tax Classes! Please check your entry and try again.",
            .loading = {kTag, "Form_Load", caption() + " - Critical Error"},
            .adding = {kTag, "Add_Click"}};
}

void frmTaxClasses::Form_Load() {
    classes_.load();
    showDefault();
}

void frmTaxClasses::Form_Unload(bool& /*cancel*/) {
    classes_.release();
}

void frmTaxClasses::grdTax_EndEdit(int column, std::string& text) {
    if (column == kRate)
        text = shortestDecimal(std::fabs(numericPrefix(text)));
    else
        classes_.endName(column, text);
}

// The class that was added before and bears the first name still is what keeps another from being added.
void frmTaxClasses::cmdAdd_Click() {
    if (classes_.add())
        return;
    for (int row = 1; row <= grdTax.dataRows(); ++row) {
        if (!sameText(grdTax.text(row, kDescription), kNewName))
            continue;
        grdTax.setCurrent(row, kDescription);
        grdTax.setStatusText("Give this class a name of its own, then add another.");
    }
}

void frmTaxClasses::cmdDefault_Click() {
    if (!grdTax.selected())
        return;
    guarded({kTag, "DefaultTax"}, [this] {
        const std::string description = grdTax.rawText(grdTax.row(), kDescription);
        const auto stored = openDirect(Sql("SELECT Description FROM TaxDef WHERE TaxID = ") + classes_.key(grdTax.row()));
        if (stored->Eof() || (*stored)[0].text() != description) {
            desk().message("Someone else changed this tax class meanwhile. The list shows it as it is now; nothing was set.", caption(),
                           MessageIcon::Exclamation);
            Form_Load();
            return;
        }
        runCommand("UPDATE TaxDef Set DefaultTax = 0");
        runCommand(Sql("UPDATE TaxDef Set DefaultTax = 1 WHERE Description = '") + description + "'");
        desk().message("Default Tax Class Set To " + description, kProduct);
        Form_Load();
    });
}

// The first box is a warning: whatever is pressed, the question comes.
void frmTaxClasses::cmdDelete_Click() {
    desk().message("Deletion of tax class will change the tax class for all associated items to 'none'. Editing existing tax class is "
                   "recommended",
                   "WARNING", MessageIcon::None, MessageButtons::OkCancel);
    classes_.remove();
    showDefault();
}

void frmTaxClasses::showAround() {
    use_.show(classes_.key(grdTax.row()), grdTax.text(grdTax.row(), kDescription));
    fillTaxPreview(grdPreview, grdTax);
    showDoubles();
}

// Two descriptions that differ here may be one name in accounting, which keeps the export from running.
void frmTaxClasses::showDoubles() {
    guarded({kTag, "ShowDoubles"}, [this] {
        doubles_.clear();
        const auto rows = openDirect("sp_QBGetTaxDefDups");
        for (; !rows->Eof(); rows->MoveNext())
            doubles_.insert((*rows)["TaxID"].Value().toInteger());
        grdTax.setStatusText(doubles_.empty() ? "" : "The yellow ones are one name in accounting.");
    });
}

void frmTaxClasses::showDefault() {
    guarded({kTag, "ShowDefault"}, [this] {
        const auto rows = openDirect("bsp_DefaultTax");
        lblDefault.setCaption(rows->Eof() ? "" : "New items get: " + (*rows)["Description"].text());
    });
}

} // namespace merchantry::setup
