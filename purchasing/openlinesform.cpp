#include "purchasing/openlinesform.h"

#include "app/modMain.h"
#include "app/posting.h"
#include "app/titles.h"
#include "base/numbers.h"
#include "purchasing/frmPOItemHistory.h"
#include "purchasing/orders.h"
#include "ui/desk.h"

#include <algorithm>

namespace merchantry::purchasing {

using namespace app;
using namespace ui;

OpenLinesForm::OpenLinesForm(Desk& desk, const char* name, const char* caption, const char* cancelCaption, const Words& words,
                             Columns columns)
    : Form(desk, name, caption), lblHeading(*this, "lblHeading", caption), supplier_(*this), grdPOItems(*this, "grdPOItems"),
      lblTotal(*this, "lblTotal"), cmdViewHist(*this, "cmdViewHist", "Item &History"), cmdCancel(*this, "cmdCancel", cancelCaption),
      cmdOK(*this, "cmdOK", "&OK"), words_(words), columns_(columns) {
    setIcon("items");
    grdPOItems.emptyText = "Nothing of this order is open.";
    cmdCancel.isCancel = true; // and nothing is the default: as it opens, the screen posts everything, and a scanner sends Enter
    cmdCancel.click = [this] { unload(); };
    cmdViewHist.click = [this] { cmdViewHist_Click(); };
    offer(words.operation, [this](const auto& arguments) {
        PONumber = toInt32(numericPrefix(arguments.at(0)));
        this->desk().showModal(*this);
        return Value(DialogResult).toText();
    });
}

void OpenLinesForm::Form_Load() {
    guarded({words_.tag, "Form_Load"}, [this] {
        ShowSupplier();
        loadLines();
        lblHeading.setCaption(words_.heading + std::to_string(PONumber));
    });
}

void OpenLinesForm::ShowSupplier() {
    guarded({words_.tag, "ShowSupplier"}, [this] { SupplierID = supplier_.load(PONumber, SupplierID).SupID; });
}

void OpenLinesForm::clearsSelected(Button& button) {
    button.click = [this] {
        touched(grdPOItems);
        clearSelected();
    };
}

void OpenLinesForm::clearSelected() {
    for (int row = std::max(1, grdPOItems.firstSelected()); row <= grdPOItems.lastSelected(); ++row) {
        clearLine(row);
        grdPOItems.setText(row, columns_.quantity, "0");
        grdPOItems.setText(row, columns_.extended, "0");
    }
    showTotals();
}

void OpenLinesForm::cmdViewHist_Click() {
    if (const OpenLine* line = lineAt(grdPOItems.row()))
        ShowPOItemHistory(PONumber, line->SKU, line->MatrixSKU);
    else
        desk().message("Please select an item to view.", kProduct);
}

bool OpenLinesForm::sayNothing() const {
    desk().message(words_.nothing, kPostingTitle);
    return false;
}

void OpenLinesForm::reportAndLeave(std::int16_t report, std::int32_t number, const std::function<void()>& papers) {
    carriedOut(desk(), kPostingTitle, [&] {
        if (papers)
            papers();
        modMain().doors.OrderReport(report, std::to_string(PONumberToPOID(PONumber)), std::to_string(number));
    });
    DialogResult = true;
    unload();
}

} // namespace merchantry::purchasing
