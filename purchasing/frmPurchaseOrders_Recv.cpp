#include "purchasing/frmPurchaseOrders_Recv.h"

#include "app/modMain.h"
#include "app/posting.h"
#include "app/titles.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "base/shown.h"
#include "base/text.h"
#include "base/textorder.h"
#include "purchasing/frmOtherCost.h"
#include "purchasing/rehearsal.h"
#include "ui/calls.h"
#include "ui/desk.h"

#include <array>
#include <map>

namespace merchantry::purchasing {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "frmPurchaseOrders_Recv";
constexpr std::int16_t kReceiptReport = 3;
enum Column { kMemorize, kSku, kName, kPartNo, kOpenQty, kRecvQty, kCost, kExt, kIndex };
enum RehearsalColumn { kItem, kItemName, kQty, kShare, kCostOfOne, kOnHand, kCostNow, kNewCost, kPrice, kMargin, kRemark };
constexpr Twips kWidth = 1240 * kTwipsPerPixel; // room for the rehearsal, on a screen of 1366 by 768
constexpr Twips kHeight = 690 * kTwipsPerPixel;
enum Page { kLinesPage, kRehearsalPage };

std::string comingShortInWords(int lines) {
    return lines == 0 ? "" : counted(lines, "line comes short", "lines come short");
}

} // namespace

frmPurchaseOrders_Recv::frmPurchaseOrders_Recv(Desk& desk)
    : OpenLinesForm(desk, "frmPurchaseOrders_Recv", "Receive Inventory", "&Cancel",
                    {kTag, "Receive Inventory for Purchase Order #", "Receive", "No item is being received."}, {kRecvQty, kExt, kIndex}) {
    setSize(kWidth, kHeight);
    shapeGrids();
    txtCode.placeholder = "Type or scan";
    txtCode.setToolTip("Enter selects the line of this code: the item's own, its barcode, its parent's, or the supplier's part number.");
    chkPrintLabels.setToolTip("Shelf labels for as many pieces as this receipt brings, after it is posted.");
    cmdNotReceived.setToolTip("Sets the selected lines to 0: they stay open.");
    cmdOK.setToolTip("Posts all received quantities at once. If the store refuses one of them, nothing is posted and the program ends.");

    wire();

    asksBeforeLeaving({&txtCode, &tabReceive, &chkPrintLabels, &cboPrint});
    setLayout(column({
        title(lblHeading),
        supplier_.item(),
        pages(tabReceive,
              {
                  column({
                      row({fields({field("Co&de:", txtCode).wide(22)}), gap(), at(lblCode).stretched(), gap(), at(lblShort)}),
                      at(grdPOItems).high(9).stretched(),
                  }),
                  column({
                      at(lblRehearsal),
                      at(grdRehearsal).high(9).stretched(),
                  }),
              })
            .stretched(),
        row({
            at(chkPrintLabels),
            gap(),
            at(lblLabelT),
            at(cboPrint).stretched(),
            gap(),
            figure("Subtotal", lblSubtotal),
            figure("Other costs", lblOtherCosts),
            figure("Total", lblTotal),
        }),
        buttons({at(cmdNotReceived), at(cmdOtherCost), at(cmdViewHist), stretch(), at(cmdCancel), at(cmdOK)}),
    }));
}

void frmPurchaseOrders_Recv::shapeGrids() {
    using Format = GridColumn::Format;
    grdPOItems.setColumns({{.heading = "Memorize", .editor = GridColumn::Editor::Check},
                           {.heading = "SKU", .fixedWidth = true, .characters = 12},
                           {.heading = "Name", .characters = 26},
                           {.heading = "Supplier Part #", .characters = 12},
                           {.heading = "Open Qty", .format = Format::Number},
                           {.heading = "Received Qty", .format = Format::Number},
                           {.heading = "Cost", .format = Format::Currency, .characters = 8},
                           {.heading = "Ext.", .alignRight = true, .characters = 10},
                           {.heading = "Index", .hidden = true}});
    grdPOItems.setToolTip("Part number, received quantity and cost can be changed. Memorize keeps cost and part number for the supplier.");
    grdRehearsal.setColumns({{.heading = "SKU", .fixedWidth = true, .characters = 12},
                             {.heading = "Name", .characters = 22},
                             {.heading = "Qty", .format = Format::Number},
                             {.heading = "Other Costs", .format = Format::Currency},
                             {.heading = "Cost of One", .format = Format::Number},
                             {.heading = "On Hand", .format = Format::Number},
                             {.heading = "Cost Now", .format = Format::Number},
                             {.heading = "New Cost", .format = Format::Number},
                             {.heading = "Price", .format = Format::Currency},
                             {.heading = "Margin", .format = Format::Number},
                             {.heading = "Remark", .characters = 15}});
    grdRehearsal.editable = false;
    grdRehearsal.emptyText = "No line brings anything.";
    grdRehearsal.setToolTip(
        "By the item's ledger. Cost of One holds its share of the other costs; Margin is that of the new weighted cost on "
        "today's retail price, sales included.");
}

void frmPurchaseOrders_Recv::wire() {
    txtCode.gotFocus = [this] { txtCode.selectAll(); };
    txtCode.keyDown = calls(this, &frmPurchaseOrders_Recv::txtCode_KeyDown);
    grdPOItems.beforeEdit = calls(this, &frmPurchaseOrders_Recv::grdPOItems_BeforeEdit);
    grdPOItems.afterEdit = calls(this, &frmPurchaseOrders_Recv::grdPOItems_AfterEdit);
    grdPOItems.rowColChange = [this] { setAvailable(); };
    tabReceive.change = [this](int) { tabReceive_Change(); };
    chkPrintLabels.click = [this] { chkPrintLabels_Click(); };
    clearsSelected(cmdNotReceived);
    cmdOtherCost.click = [this] { cmdOtherCost_Click(); };
    cmdOK.click = [this] { cmdOK_Click(); };
}

void frmPurchaseOrders_Recv::Form_Load() {
    txtCode.setFocus(); // a scanner finds its field
    OpenLinesForm::Form_Load();
}

void frmPurchaseOrders_Recv::loadLines() {
    lines_.clear();
    lines_ = openLinesFor(PONumber, &ReceiveLine::RecvQty);
    showLines();
    showTotals();
    loadPrinters();
    setAvailable();
}

void frmPurchaseOrders_Recv::loadPrinters() {
    const auto printers = openDirect("sp_GetLabelPrinters");
    cboPrint.clear();
    for (; !printers->Eof(); printers->MoveNext())
        if (const auto printer = (*printers)["Printer"]; !printer.isNull())
            cboPrint.add(printer.text());
}

void frmPurchaseOrders_Recv::showLines() {
    grdPOItems.setDataRows(static_cast<int>(lines_.size()));
    for (int row = 1; const ReceiveLine& line : lines_) {
        grdPOItems.setText(row, kSku, line.MatrixSKU);
        grdPOItems.setText(row, kName, line.Name);
        grdPOItems.setText(row, kPartNo, line.PartNo);
        grdPOItems.setText(row, kOpenQty, std::to_string(line.OpenQty));
        grdPOItems.setText(row, kIndex, std::to_string(row));
        showRow(row++, line);
    }
}

// What an edit can change.
void frmPurchaseOrders_Recv::showRow(int row, const ReceiveLine& line) {
    grdPOItems.setText(row, kMemorize, line.Memorize ? "1" : "0");
    grdPOItems.setText(row, kRecvQty, std::to_string(line.RecvQty));
    grdPOItems.setText(row, kCost, line.Cost.toText());
    grdPOItems.setText(row, kExt, line.extended().toDisplay());
    markIfShort(row, line);
}

// In colour; lblShort says the same in words.
void frmPurchaseOrders_Recv::markIfShort(int row, const ReceiveLine& line) {
    grdPOItems.setCellColor(row, kRecvQty, line.staysOpen() ? Color::Yellow : Color::None);
}

void frmPurchaseOrders_Recv::showTotals() {
    Subtotal_ = subtotalOf(lines_);
    lblTotal.setCaption((Subtotal_ + OtherCost_).toDisplay());
    lblSubtotal.setCaption(Subtotal_.toDisplay());
    lblOtherCosts.setCaption(OtherCost_.toDisplay());
    showStatus();
    if (tabReceive.current() == kRehearsalPage)
        rehearse();
}

void frmPurchaseOrders_Recv::showStatus() {
    std::int64_t pieces = 0;
    int shortLines = 0;
    bool breaks = breaksStatement(OtherCostDesc_);
    for (const ReceiveLine& line : lines_) {
        pieces += line.RecvQty;
        shortLines += line.staysOpen() ? 1 : 0;
        breaks = breaks || (line.RecvQty > 0 && breaksStatement(line.PartNo));
    }
    grdPOItems.setStatusText(
        breaks ? "An apostrophe in a part number or description makes the posting fail and the program end, with nothing booked"
               : openLinesInWords(lines_.size(), pieces, "receive"));
    lblShort.setCaption(comingShortInWords(shortLines));
}

OpenLine* frmPurchaseOrders_Recv::lineAt(int row) {
    return lineOf(lines_, grdPOItems, row, kIndex);
}

void frmPurchaseOrders_Recv::clearLine(int row) {
    ReceiveLine& line = *lineOf(lines_, grdPOItems, row, kIndex);
    line.RecvQty = 0;
    markIfShort(row, line);
}

// A marked line that the rehearsal covers is not set to 0 unseen.
void frmPurchaseOrders_Recv::setAvailable() {
    cmdNotReceived.setEnabled(grdPOItems.selected() && tabReceive.current() == kLinesPage);
    lblLabelT.setEnabled(chkPrintLabels.value());
    cboPrint.setEnabled(chkPrintLabels.value());
}

void frmPurchaseOrders_Recv::txtCode_KeyDown(const std::string& key, bool& swallow) {
    swallow = key == "Enter";
    const std::string code(trimmed(txtCode.text()));
    if (!swallow || code.empty())
        return;
    guarded({kTag, "txtCode_KeyDown"}, [&] {
        const int row = rowOfCode(code);
        if (row == 0) {
            desk().beep();
            lblCode.setCaption("No open line of this order has the code " + code + ".");
        } else {
            grdPOItems.setCurrent(row, kRecvQty);
            grdPOItems.showCurrent();
            const ReceiveLine& line = *lineOf(lines_, grdPOItems, row, kIndex);
            lblCode.setCaption(line.Name + ": " + std::to_string(line.OpenQty) + " open, " + std::to_string(line.RecvQty) + " to receive");
        }
        txtCode.selectAll();
    });
}

// The row whose item has the code; 0 when none has. An item's own code goes before its barcode, that before its parent's, and that before
// the supplier's part number. Of several rows the next one below the current, so that scanning again leads through all of them.
int frmPurchaseOrders_Recv::rowOfCode(const std::string& code) {
    loadBarcodes();
    const auto codesOf = [this](std::size_t i) {
        return std::array<const std::string*, 4>{&lines_[i].MatrixSKU, &barcodes_[i], &lines_[i].SKU, &lines_[i].PartNo};
    };
    for (std::size_t kind = 0; kind < 4; ++kind) {
        int first = 0;
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            if (!sameText(*codesOf(i)[kind], code))
                continue;
            const int row = static_cast<int>(i) + 1;
            if (row > grdPOItems.row())
                return row;
            first = first == 0 ? row : first;
        }
        if (first != 0)
            return first;
    }
    return 0;
}

void frmPurchaseOrders_Recv::loadBarcodes() {
    if (barcodes_.size() == lines_.size())
        return;
    barcodes_.assign(lines_.size(), "");
    const auto codes =
        openDirect(Sql("SELECT i.SKU, i.MatrixSKU, Item.BarcodeID FROM PurchaseOrder o INNER JOIN PurchaseOrderItem i ON i.POID = "
                       "o.POID INNER JOIN Item ON Item.SKU = i.SKU AND Item.MatrixSKU = i.MatrixSKU WHERE Item.BarcodeID <> '' AND "
                       "o.PONumber = ") +
                   PONumber);
    std::map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < lines_.size(); ++i)
        places.emplace(itemKey(lines_[i].SKU, lines_[i].MatrixSKU), i);
    for (; !codes->Eof(); codes->MoveNext())
        if (const auto place = places.find(itemKey((*codes)[0].text(), (*codes)[1].text())); place != places.end())
            barcodes_[place->second] = (*codes)[2].text();
}

void frmPurchaseOrders_Recv::grdPOItems_BeforeEdit(int row, int column, bool& cancel) {
    cancel = column != kMemorize && column != kPartNo && column != kRecvQty && column != kCost;
    if (column == kRecvQty || column == kCost)
        saved_ = grdPOItems.rawText(row, column);
}

void frmPurchaseOrders_Recv::grdPOItems_AfterEdit(int row, int column) {
    ReceiveLine& line = *lineOf(lines_, grdPOItems, row, kIndex);
    const ReceiveLine before = line;
    const bool taken = guarded({kTag, "grdPOItems_AfterEdit"}, [&] {
        if (column == kMemorize)
            line.Memorize = grdPOItems.rawText(row, column) != "0";
        if (column == kPartNo)
            line.PartNo = grdPOItems.rawText(row, column);
        if (column == kRecvQty)
            takeQuantity(row, line);
        if (column == kCost)
            takeCost(row, line);
        showTotals();
    });
    if (taken)
        return;
    line = before; // a number too large for its kind
    showRow(row, line);
    showTotals();
}

void frmPurchaseOrders_Recv::takeQuantity(int row, ReceiveLine& line) {
    const auto quantity = wholeQuantity(grdPOItems.rawText(row, kRecvQty));
    if (!quantity) {
        desk().message("Quantity must be a positive integral number.", kProduct);
        grdPOItems.setText(row, kRecvQty, saved_);
        return;
    }
    line.RecvQty = *quantity;
    showRow(row, line);
}

void frmPurchaseOrders_Recv::takeCost(int row, ReceiveLine& line) {
    const auto cost = amountOf(grdPOItems.rawText(row, kCost));
    if (!cost) {
        desk().message("Cost must be numeric.", kProduct);
        grdPOItems.setText(row, kCost, saved_);
        return;
    }
    line.Cost = *cost;
    showRow(row, line);
}

void frmPurchaseOrders_Recv::tabReceive_Change() {
    setAvailable();
    guarded({kTag, "tabReceive_Change"}, [this] {
        if (tabReceive.current() == kRehearsalPage)
            rehearse();
    });
}

void frmPurchaseOrders_Recv::rehearse() {
    lblRehearsal.setCaption(wordsForReceipt(lines_));
    grdRehearsal.setDataRows(0);
    for (const RehearsedLine& one : rehearsed(PONumber, lines_, OtherCost_)) {
        const auto margin = one.margin();
        grdRehearsal.addRow({one.line.MatrixSKU, one.line.Name, std::to_string(one.line.RecvQty), one.line.OtherCostShare.toText(),
                             shownCost(one.costEach), std::to_string(one.before.onHand),
                             one.before.average ? shownCost(one.costBefore()) : "", shownCost(one.costAfter()),
                             one.price ? one.price->toText() : "", margin ? shownPercent(std::to_string(*margin)) : "", one.remark()});
        const int row = grdRehearsal.dataRows();
        if (margin && *margin < 0)
            grdRehearsal.setCellColor(row, kMargin, Color::Red);
        if (one.line.RecvQty > one.line.OpenQty)
            grdRehearsal.setCellColor(row, kRemark, Color::Yellow);
    }
}

void frmPurchaseOrders_Recv::chkPrintLabels_Click() {
    setAvailable();
    if (!chkPrintLabels.value() || !cboPrint.text().empty() || cboPrint.count() == 0)
        return;
    cboPrint.setFocus();
    cboPrint.dropDown();
}

void frmPurchaseOrders_Recv::cmdOtherCost_Click() {
    auto& dialog = desk().form<frmOtherCost>();
    dialog.PONumber = PONumber;
    dialog.OtherCost = OtherCost_;
    dialog.Description = OtherCostDesc_;
    desk().showModal(dialog);
    if (!dialog.DialogResult)
        return;
    guarded({kTag, "cmdOtherCost_Click"}, [&] {
        lblTotal.setCaption((Subtotal_ + dialog.OtherCost).toDisplay()); // what the total cannot hold is not taken
        OtherCost_ = dialog.OtherCost;
        OtherCostDesc_ = dialog.Description;
        showTotals();
    });
}

// Without a handler: a failure before the commit ends the program, and its transaction is undone.
void frmPurchaseOrders_Recv::cmdOK_Click() {
    if (chkPrintLabels.value() && cboPrint.text().empty()) {
        desk().message("Please select label size and printer.", kPostingTitle);
        cboPrint.setFocus();
        return;
    }
    if (!anything(lines_, &ReceiveLine::RecvQty))
        return;
    spreadOver(lines_, Subtotal_, OtherCost_);
    std::int32_t ReceiptNumber = -1;
    if (!posted(desk(), kPostingTitle, [&] { ReceiptNumber = postReceipt(PONumber, lines_, OtherCost_, OtherCostDesc_); }))
        return;
    MemorizePO();
    reportAndLeave(kReceiptReport, ReceiptNumber, [this] {
        if (chkPrintLabels.value())
            printLabels();
    });
}

void frmPurchaseOrders_Recv::MemorizePO() {
    guarded({kTag, "MemorizePO"}, [this] {
        for (ReceiveLine& line : lines_) {
            if (!line.Memorize)
                continue;
            modMain().Conn->Execute(Sql("sp_AdjustSupplierMatrix '") + line.SKU + "', '" + line.MatrixSKU + "', " + int{SupplierID} + ", " +
                                    line.Cost + ", " + int{line.RecvQty} + ", '" + line.PartNo + "'");
            line.Memorize = false;
        }
    });
}

void frmPurchaseOrders_Recv::printLabels() {
    const auto file = openDirect(Sql("sp_GetRcptReport '") + cboPrint.text() + "'");
    modMain().doors.ReportWindow((*file)["RcptReport"].text(), {std::to_string(PONumber)}, false, true);
}

} // namespace merchantry::purchasing
