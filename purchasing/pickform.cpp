#include "purchasing/pickform.h"

#include "base/numbers.h"
#include "base/text.h"
#include "purchasing/pickrows.h"
#include "ui/calls.h"
#include "ui/desk.h"

#include <algorithm>

namespace merchantry::purchasing {

using namespace ui;

PickForm::PickForm(Desk& desk, const char* name, const char* caption, Grid& grid)
    : Form(desk, name, caption), txtFind(*this, "txtFind"), lblItems(*this, "lblItems"), lblSelected(*this, "lblSelected"), grid_(grid),
      cmdSelectAll(*this, "cmdSelectAll", "&Select All"), cmdClearAll(*this, "cmdClearAll", "&Clear All"),
      cmdCancel(*this, "cmdCancel", "Cancel"), cmdOK(*this, "cmdOK", "&OK") {
    setIcon("items");
    txtFind.placeholder = "First letters";
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;

    txtFind.change = [this] { find(); };
    txtFind.keyDown = calls(this, &PickForm::txtFind_KeyDown);
    cmdSelectAll.click = [this] { setAll(true); };
    cmdClearAll.click = [this] { setAll(false); };
    cmdCancel.click = [this] { unload(); };
    cmdOK.click = [this] { cmdOK_Click(); };
}

Item PickForm::layoutAround(Label& heading, int characters) {
    return column({
        row({title(heading), stretch(), figure("Selected", lblSelected), figure("Listed", lblItems)}),
        fields({field("&Find:", txtFind).wide(30)}),
        at(grid_).high(16).wide(characters).stretched(),
        buttons({at(cmdSelectAll), at(cmdClearAll), stretch(), at(cmdCancel), at(cmdOK)}),
    });
}

void PickForm::show(Rows& rows, int lastFound, bool ticks) {
    rows_ = &rows;
    lastFound_ = lastFound;
    ticks_ = ticks;
    grid_.beforeEdit = [this](int, int column, bool& cancel) { cancel = column != kTick || !ticks_; };
    grid_.afterEdit = [this](int, int) { afterTick(); };
    grid_.bind(&rows);
    lblItems.setCaption(withThousands(rows.rowCount()));
    lblSelected.setVisible(ticks);
    txtFind.setToolTip(ticks ? "Goes to the first row that begins so; Enter ticks it."
                             : "Goes to the first row that begins so; Enter takes it.");
    afterTick();
}

void PickForm::Form_Unload(bool& /*cancel*/) {
    grid_.bind(nullptr);
}

void PickForm::afterTick() {
    selected_ = 0;
    for (int row = 0; row < rows_->rowCount(); ++row)
        selected_ += rows_->cell(row, kTick).as<bool>() ? 1 : 0;
    lblSelected.setCaption(withThousands(selected_));
    cmdSelectAll.setEnabled(ticks_ && selected_ < rows_->rowCount());
    cmdClearAll.setEnabled(ticks_ && selected_ > 0);
}

void PickForm::setAll(bool on) {
    for (int row = 0; row < rows_->rowCount(); ++row)
        rows_->setCell(row, kTick, on);
    grid_.changed(Aspect::Cells);
    afterTick();
}

bool PickForm::find() {
    const std::string wanted(trimmed(txtFind.text()));
    if (wanted.empty())
        return false;
    for (int column = kFirstShown; column <= lastFound_; ++column)
        if (const int row = grid_.findRow(wanted, column); row != 0) {
            stand(row);
            return true;
        }
    return false;
}

void PickForm::stand(int row) {
    grid_.setCurrent(row, ticks_ ? kTick : kFirstShown);
    grid_.showCurrent();
}

// Enter, which a scanner sends behind a code, ticks the row and makes ready for the next one; in an empty box it is OK, as it is where one
// row is chosen. Up and Down move through the list without leaving the box.
void PickForm::txtFind_KeyDown(const std::string& key, bool& swallow) {
    if (key == "Up" || key == "Down") {
        swallow = true;
        if (rows_->rowCount() > 0)
            stand(std::clamp(grid_.row() + (key == "Up" ? -1 : 1), 1, rows_->rowCount()));
    } else if (key == "Enter" && ticks_ && !trimmed(txtFind.text()).empty()) {
        swallow = true;
        if (find())
            rows_->setCell(grid_.row() - 1, kTick, true);
        else
            desk().beep();
        txtFind.selectAll();
        grid_.changed(Aspect::Cells);
        afterTick();
    }
}

void PickForm::cmdOK_Click() {
    if (!accepts())
        return;
    DialogResult = true;
    hide();
}

} // namespace merchantry::purchasing
