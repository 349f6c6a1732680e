#include "purchasing/frmPOCancel.h"

#include "app/modMain.h"
#include "app/posting.h"
#include "app/titles.h"
#include "ui/calls.h"
#include "ui/desk.h"

namespace merchantry::purchasing {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "frmPOCancel";
constexpr std::int16_t kCancelReport = 4;
enum Column { kSku, kName, kPartNo, kOpenQty, kCancelQty, kCost, kExt, kIndex };

} // namespace

frmPOCancel::frmPOCancel(Desk& desk)
    : OpenLinesForm(desk, "frmPOCancel", "Cancel Purchase Order", "C&lose",
                    {kTag, "Cancel Inventory for Purchase Order #", "Cancel", "No item is being canceled."}, {kCancelQty, kExt, kIndex}) {
    using Format = GridColumn::Format;
    grdPOItems.setColumns({{.heading = "SKU", .fixedWidth = true, .characters = 14},
                           {.heading = "Name", .characters = 28},
                           {.heading = "Supplier Part #", .characters = 14},
                           {.heading = "Open Qty", .format = Format::Number},
                           {.heading = "Cancelled Qty", .format = Format::Number},
                           {.heading = "Cost", .format = Format::Currency, .characters = 11},
                           {.heading = "Ext.", .alignRight = true, .characters = 12},
                           {.heading = "Index", .hidden = true}});
    grdPOItems.setToolTip("The cancelled quantity can be changed, up to what is open.");
    cmdNoCancel.setToolTip("Sets the selected lines to 0: they stay open.");
    cmdOK.setToolTip("Posts all cancelled quantities at once. If the store refuses one of them, nothing is posted and the program ends.");
    cmdCancel.setToolTip("Leaves without cancelling anything.");

    grdPOItems.beforeEdit = calls(this, &frmPOCancel::grdPOItems_BeforeEdit);
    grdPOItems.afterEdit = [this](int row, int) { grdPOItems_AfterEdit(row); };
    clearsSelected(cmdNoCancel);
    cmdOK.click = [this] { cmdOK_Click(); };

    asksBeforeLeaving();
    setLayout(column({
        title(lblHeading),
        supplier_.item(),
        at(grdPOItems).high(10).stretched(),
        row({stretch(), figure("Total", lblTotal)}),
        buttons({at(cmdNoCancel), at(cmdViewHist), stretch(), note("What is cancelled is on order no longer"), at(cmdCancel), at(cmdOK)}),
    }));
}

void frmPOCancel::loadLines() {
    lines_.clear();
    lines_ = openLinesFor(PONumber, &CancelLine::CancelQty);
    grdPOItems.setDataRows(0);
    for (const CancelLine& line : lines_)
        grdPOItems.addRow({line.MatrixSKU, line.Name, line.PartNo, std::to_string(line.OpenQty), std::to_string(line.CancelQty),
                           line.Cost.toText(), line.extended().toDisplay(), std::to_string(grdPOItems.dataRows() + 1)});
    showTotals();
}

void frmPOCancel::showTotals() {
    Currency total;
    std::int64_t pieces = 0;
    for (const CancelLine& line : lines_) {
        total += line.extended();
        pieces += line.CancelQty;
    }
    lblTotal.setCaption(total.toDisplay());
    grdPOItems.setStatusText(openLinesInWords(lines_.size(), pieces, "cancel"));
}

OpenLine* frmPOCancel::lineAt(int row) {
    return lineOf(lines_, grdPOItems, row, kIndex);
}

void frmPOCancel::clearLine(int row) {
    lineOf(lines_, grdPOItems, row, kIndex)->CancelQty = 0;
}

void frmPOCancel::grdPOItems_BeforeEdit(int row, int column, bool& cancel) {
    cancel = column != kCancelQty;
    saved_ = grdPOItems.rawText(row, column);
}

void frmPOCancel::grdPOItems_AfterEdit(int row) {
    CancelLine& line = *lineOf(lines_, grdPOItems, row, kIndex);
    std::string refused;
    const bool read = guarded({kTag, "grdPOItems_AfterEdit"}, [&] { refused = refusal(row, line); });
    if (!refused.empty())
        desk().message(refused, kProduct);
    if (!read || !refused.empty()) {
        grdPOItems.setText(row, kCancelQty, saved_);
        return;
    }
    grdPOItems.setText(row, kCancelQty, std::to_string(line.CancelQty));
    grdPOItems.setText(row, kExt, line.extended().toDisplay());
    showTotals();
}

std::string frmPOCancel::refusal(int row, CancelLine& line) {
    const auto quantity = wholeQuantity(grdPOItems.rawText(row, kCancelQty));
    if (!quantity)
        return "Quantity must be a positive integral number.";
    if (*quantity > line.OpenQty)
        return "Canceled quantity cannot exceed open quantity. The open quantity for this item is " + std::to_string(line.OpenQty) + ".";
    line.CancelQty = *quantity;
    return "";
}

// Without a handler: a failure before the commit ends the program, and its transaction is undone.
void frmPOCancel::cmdOK_Click() {
    if (!anything(lines_, &CancelLine::CancelQty))
        return;
    std::int32_t CancelNumber = -1;
    if (posted(desk(), kPostingTitle, [&] { CancelNumber = postCancellation(PONumber, lines_); }))
        reportAndLeave(kCancelReport, CancelNumber);
}

} // namespace merchantry::purchasing
