#include "purchasing/pickform.h"

#include "base/numbers.h"
#include "base/text.h"

namespace merchantry::purchasing {

using namespace ui;

PickForm::PickForm(Desk& desk, const char* name, const char* caption, Grid& grid)
    : Form(desk, name, caption), txtFind(*this, "txtFind"), lblItems(*this, "lblItems"), lblSelected(*this, "lblSelected"), grid_(grid),
      cmdSelectAll(*this, "cmdSelectAll", "&Select All"), cmdClearAll(*this, "cmdClearAll", "&Clear All"),
      cmdCancel(*this, "cmdCancel", "Cancel"), cmdOK(*this, "cmdOK", "&OK") {
    setIcon("items");
    txtFind.placeholder = "First letters";
    txtFind.setToolTip("Goes to the first row that begins so.");
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;

    txtFind.change = [this] { find(); };
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
    selected_ = 0;
    for (int row = 0; row < rows.rowCount(); ++row)
        selected_ += rows.cell(row, 0).as<bool>() ? 1 : 0;
    grid_.beforeEdit = [this](int, int column, bool& cancel) { cancel = column != 0 || !ticks_; };
    grid_.afterEdit = [this](int row, int) {
        selected_ += ticked(row) ? 1 : -1;
        afterTick();
    };
    grid_.bind(&rows);
    lblItems.setCaption(withThousands(rows.rowCount()));
    lblSelected.setVisible(ticks);
    afterTick();
}

void PickForm::Form_Unload(bool& /*cancel*/) {
    grid_.bind(nullptr);
}

void PickForm::afterTick() {
    lblSelected.setCaption(withThousands(selected_));
    cmdSelectAll.setEnabled(ticks_ && selected_ < rows_->rowCount());
    cmdClearAll.setEnabled(ticks_ && selected_ > 0);
}

void PickForm::setAll(bool on) {
    for (int row = 0; row < rows_->rowCount(); ++row)
        rows_->setCell(row, 0, on);
    selected_ = on ? rows_->rowCount() : 0;
    grid_.changed(Aspect::Cells);
    afterTick();
}

void PickForm::find() {
    const std::string wanted(trimmed(txtFind.text()));
    if (wanted.empty())
        return;
    for (int column = 1; column <= lastFound_; ++column)
        if (const int row = grid_.findRow(wanted, column); row != 0) {
            grid_.setCurrent(row, ticks_ ? 0 : 1);
            grid_.showCurrent();
            return;
        }
}

void PickForm::cmdOK_Click() {
    if (!accepts())
        return;
    DialogResult = true;
    hide();
}

} // namespace merchantry::purchasing
