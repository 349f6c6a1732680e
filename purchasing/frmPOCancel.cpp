#include "purchasing/frmPOCancel.h"

#include "app/db/ado/transaction.h"
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
using db::Sql;

namespace {

constexpr const char* kTag = "frmPOCancel";
constexpr std::int16_t kCancelReport = 4;
enum Column { kSku, kName, kPartNo, kOpenQty, kCancelQty, kCost, kExt, kIndex };

} // namespace

frmPOCancel::frmPOCancel(Desk& desk) : Form(desk, "frmPOCancel", "Cancel Purchase Order") {
    setIcon("items");
    using Format = GridColumn::Format;
    grdPOItems.setColumns({{.heading = "SKU", .fixedWidth = true, .characters = 14},
                           {.heading = "Name", .characters = 28},
                           {.heading = "Supplier Part #", .characters = 14},
                           {.heading = "Open Qty", .format = Format::Number},
                           {.heading = "Cancelled Qty", .format = Format::Number},
                           {.heading = "Cost", .format = Format::Currency, .characters = 11},
                           {.heading = "Ext.", .alignRight = true, .characters = 12},
                           {.heading = "Index", .hidden = true}});
    grdPOItems.emptyText = "Nothing of this order is open.";
    grdPOItems.setToolTip("The cancelled quantity can be changed, up to what is open.");
    cmdNoCancel.setToolTip("Sets the selected lines to 0: they stay open.");
    cmdOK.setToolTip("Posts all cancelled quantities at once. If the store refuses one of them, nothing is posted and the program ends.");
    cmdCancel.setToolTip("Leaves without cancelling anything.");
    cmdCancel.isCancel = true; // and nothing is the default: as it opens, the screen cancels everything

    grdPOItems.beforeEdit = [this](int row, int column, bool& cancel) { grdPOItems_BeforeEdit(row, column, cancel); };
    grdPOItems.afterEdit = [this](int row, int) { grdPOItems_AfterEdit(row); };
    cmdNoCancel.click = [this] {
        touched(grdPOItems);
        cmdNoCancel_Click();
    };
    cmdViewHist.click = [this] { cmdViewHist_Click(); };
    cmdCancel.click = [this] { unload(); };
    cmdOK.click = [this] { cmdOK_Click(); };

    asksBeforeLeaving();
    setLayout(column({
        title(lblHeading),
        supplier_.item(),
        at(grdPOItems).high(10).stretched(),
        row({stretch(), figure("Total", lblTotal)}),
        buttons({at(cmdNoCancel), at(cmdViewHist), stretch(), note("What is cancelled is on order no longer"), at(cmdCancel), at(cmdOK)}),
    }));
    // The order's number; "True" when a cancellation was posted.
    offer("Cancel", [this](const auto& arguments) {
        PONumber = toInt32(numericPrefix(arguments.at(0)));
        this->desk().showModal(*this);
        return Value(DialogResult).toText();
    });
}

void frmPOCancel::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        ShowSupplier();
        lines_.clear();
        lines_ = openLinesFor(PONumber, &CancelLine::CancelQty);
        showLines();
        showTotal();
        lblHeading.setCaption("Cancel Inventory for Purchase Order #" + std::to_string(PONumber));
    });
}

void frmPOCancel::ShowSupplier() {
    guarded({kTag, "ShowSupplier"}, [this] { SupplierID = supplier_.load(PONumber, SupplierID).SupID; });
}

void frmPOCancel::showLines() {
    grdPOItems.setDataRows(0);
    for (const CancelLine& line : lines_)
        grdPOItems.addRow({line.MatrixSKU, line.Name, line.PartNo, std::to_string(line.OpenQty), std::to_string(line.CancelQty),
                           line.Cost.toText(), line.extended().toDisplay(), std::to_string(grdPOItems.dataRows() + 1)});
}

void frmPOCancel::showTotal() {
    Currency total;
    std::int64_t pieces = 0;
    for (const CancelLine& line : lines_) {
        total += line.extended();
        pieces += line.CancelQty;
    }
    lblTotal.setCaption(total.toDisplay());
    grdPOItems.setStatusText(openLinesInWords(lines_.size(), pieces, "cancel"));
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
    showTotal();
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

void frmPOCancel::cmdNoCancel_Click() {
    for (int row = std::max(1, grdPOItems.firstSelected()); row <= grdPOItems.lastSelected(); ++row) {
        lineOf(lines_, grdPOItems, row, kIndex)->CancelQty = 0;
        grdPOItems.setText(row, kCancelQty, "0");
        grdPOItems.setText(row, kExt, "0");
    }
    showTotal();
}

void frmPOCancel::cmdViewHist_Click() {
    if (const CancelLine* line = lineOf(lines_, grdPOItems, grdPOItems.row(), kIndex))
        ShowPOItemHistory(PONumber, line->SKU, line->MatrixSKU);
    else
        desk().message("Please select an item to view.", kProduct);
}

// Without a handler: a failure before the commit ends the program, and its transaction is undone.
void frmPOCancel::cmdOK_Click() {
    if (std::none_of(lines_.begin(), lines_.end(), [](const CancelLine& line) { return line.CancelQty > 0; })) {
        desk().message("No item is being canceled.", kPostingTitle);
        return;
    }
    if (!posted(desk(), kPostingTitle, [this] { post(); }))
        return;
    carriedOut(desk(), kPostingTitle, [this] {
        modMain().doors.OrderReport(kCancelReport, std::to_string(PONumberToPOID(PONumber)), std::to_string(CancelNumber_));
    });
    DialogResult = true;
    unload();
}

void frmPOCancel::post() {
    db::Transaction transaction(modMain().Conn);
    CancelNumber_ = -1;
    bool anyOpen = false;
    for (const CancelLine& line : lines_) {
        anyOpen = anyOpen || line.staysOpen(line.CancelQty);
        if (line.CancelQty <= 0)
            continue;
        const std::int32_t number = postedNumber(Sql("sp_CancelItem 1, ") + PONumber + ", '" + line.SKU + "', '" + line.MatrixSKU + "', " +
                                                     int{line.CancelQty} + ", " + CancelNumber_,
                                                 "CancelNumber");
        if (CancelNumber_ == -1)
            CancelNumber_ = number;
    }
    changeStatus(PONumber, anyOpen);
    transaction.commit();
}

} // namespace merchantry::purchasing
