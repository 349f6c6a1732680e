#include "catalog/substitutespage.h"

#include "app/takeback.h"
#include "base/counted.h"
#include "base/textorder.h"
#include "ui/calls.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

enum SubsColumn { kParent, kMatrix, kSubSKU, kSubMatrixSKU, kPriority, kNotes };

} // namespace

SubstitutesPage::SubstitutesPage(ItemScreen& screen)
    : ItemPage(screen, "Subs", 3), grdSubs(screen.form(), "grdSubs"), cmdSubsAddNew(screen.form(), "cmdSubsAddNew", "Add New"),
      cmdSubsDelete(screen.form(), "cmdSubsDelete", "Delete"),
      imgSubUp(screen.form(), "imgSubUp", "arrow-up", "Move the substitute up (Alt+Up)"),
      imgSubDown(screen.form(), "imgSubDown", "arrow-down", "Move the substitute down (Alt+Down)") {
    cmdSubsDelete.isDanger = true;
    grdSubs.setColumns({{.heading = "Parent", .fixedWidth = true},
                        {.heading = "Matrix", .fixedWidth = true},
                        {.heading = "Substitute Parent", .fixedWidth = true},
                        {.heading = "Substitute Matrix", .fixedWidth = true},
                        {.heading = "Priority", .format = GridColumn::Format::Number},
                        {.heading = "Notes", .characters = 20}});
    grdSubs.emptyText = "No substitutes.";
    grdSubs.beforeEdit = [](int, int column, bool& cancel) { cancel = column == kParent; };
    grdSubs.error = answers(this, &SubstitutesPage::grdSubs_Error);
    grdSubs.afterRefresh = [this] { guarded({kItemsTag, "grdSubs_AfterDataRefresh"}, [this] { showSubstituteCount(); }); };
    cmdSubsAddNew.click = [this] { cmdSubsAddNew_Click(); };
    cmdSubsDelete.click = [this] { cmdSubsDelete_Click(); };
    imgSubUp.click = [this] { grdSubs_ChangePriority(true); };
    imgSubDown.click = [this] { grdSubs_ChangePriority(false); };
}

Item SubstitutesPage::item() {
    return column({
        row({head(), stretch()}),
        row({at(grdSubs).stretched(), column({at(imgSubUp), at(imgSubDown), stretch()})}).stretched(),
        buttons({at(cmdSubsAddNew), gap(), at(cmdSubsDelete), stretch(), at(cmdExit)}),
    });
}

void SubstitutesPage::populate() {
    showSKU();
    reloadSubstitutes();
}

void SubstitutesPage::release() {
    grdSubs.bind(nullptr);
    closeRows(subsRows_);
}

void SubstitutesPage::pressArrow(bool up) {
    pressIfShown(up ? imgSubUp : imgSubDown);
}

void SubstitutesPage::reloadSubstitutes() {
    grdSubs.bind(nullptr);
    subsRows_ = openUpdatable("bsp_SubsGrid", itemKey());
    grdSubs.bind(subsRows_.get());
}

void SubstitutesPage::showSubstituteCount() {
    const int rows = grdSubs.dataRows();
    grdSubs.setStatusText(counted(rows, "substitute") + ". Each change is saved at once, deletions too.");
}

void SubstitutesPage::cmdSubsAddNew_Click() {
    guarded({kItemsTag, "cmdSubsAddNew_Click"}, [this] {
        const std::vector<std::string> picked = pickedItem();
        if (picked.empty())
            return;
        if (grdSubs.rows() == nullptr)
            reloadSubstitutes(); // the last reading failed: a row of an unbound grid would go nowhere
        // Without a row this is the heading, which counts as 0.
        const std::string last = grdSubs.rawText(grdSubs.dataRows(), kPriority);
        const auto priority = (last == "Priority" ? 0 : Value(last).toInteger()) + 1;
        for (int row = 1; row <= grdSubs.dataRows(); ++row)
            if (sameText(grdSubs.rawText(row, kSubSKU), picked[0]) && sameText(grdSubs.rawText(row, kSubMatrixSKU), picked[1])) {
                desk().message("This item already exists as a substitute!", kProduct);
                return;
            }
        if (grdSubs.addRow({modMain().CurrentSKU, modMain().CurrentMatrixSKU, picked[0], picked[1], std::to_string(priority)}))
            showSubstituteCount();
    });
}

void SubstitutesPage::cmdSubsDelete_Click() {
    guarded({kItemsTag, "cmdSubsDelete_Click"}, [this] {
        WrittenRows rows({"ItemSubstitutes", {"SKU", "MatrixSKU", "SubSKU", "SubMatrixSKU"}},
                         Sql("SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'");
        if (!grdSubs.removeRow(grdSubs.row()))
            return;
        showSubstituteCount();
        if (rows.compare())
            offerUndo(screen_.undoLine(), {kItemsTag, "cmdSubsDelete_Click"},
                      "Substitute " + rows.was("SubMatrixSKU").toText() + " removed.", rows, [this] { reloadSubstitutes(); });
    });
}

void SubstitutesPage::grdSubs_ChangePriority(bool Up) {
    guarded({kItemsTag, "grdPriceMatrix_Error"}, [&] {
        const int row = grdSubs.row();
        const int neighbour = Up ? row - 1 : row + 1;
        if (row < 1 || neighbour < 1 || neighbour > grdSubs.dataRows())
            return;
        const int column = grdSubs.col();
        if (!grdSubs.setText(row, kPriority, std::to_string(neighbour)) || !grdSubs.setText(neighbour, kPriority, std::to_string(row)))
            return;
        reloadSubstitutes();
        grdSubs.setCurrent(neighbour, column);
    });
}

void SubstitutesPage::grdSubs_Error() {
    guarded({kItemsTag, "grdSubs_Error"}, [this] {
        desk().message("This entry would invalidate your substitute matrix! Please check your entry and try again.", kProduct);
        reloadSubstitutes();
    });
}

} // namespace merchantry::catalog
