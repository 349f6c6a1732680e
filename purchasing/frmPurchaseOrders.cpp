#include "purchasing/frmPurchaseOrders.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "base/text.h"
#include "purchasing/frmPOCancel.h"
#include "purchasing/frmPOFrom.h"
#include "purchasing/frmPurchaseOrders_Edit.h"
#include "purchasing/frmPurchaseOrders_Recv.h"
#include "ui/desk.h"

namespace merchantry::purchasing {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "frmPurchaseOrders";

enum FilterCode { kAll = 1, kAllOpen, kPartial, kClosed, kNumber, kOfSupplier, kItem, kToday };
constexpr const char* kFilters[] = {"All PO",   "All Open PO", "All Partially Received PO", "All Closed PO", "PO Number",
                                    "Supplier", "Item",        "PO Entered Today"};

} // namespace

frmPurchaseOrders::frmPurchaseOrders(Desk& desk) : Form(desk, "frmPurchaseOrders", "Purchase Orders") {
    setIcon("items");
    using Format = GridColumn::Format;
    grdPO.setColumns({{.heading = "PO Number", .format = Format::Number, .width = 1105},
                      {.heading = "Supplier", .width = 2105},
                      {.heading = "Date", .format = Format::Date, .width = 1705},
                      {.heading = "PO Amount", .format = Format::Currency, .width = 1505},
                      {.heading = "Open Amount", .format = Format::Currency, .width = 1605},
                      {.heading = "Status", .centred = true, .characters = 9},
                      {.hidden = true},
                      {.heading = "Progress", .format = Format::Bar, .characters = 11}});
    grdPO.editable = false;
    grdPO.emptyText = "No such orders. Choose another list above, or create an order.";
    grdPO.colorOf = [this](int row, int column) {
        if (column != kStatus)
            return Color::None;
        const std::string_view status = rows_->cellText(row - 1, kStatus);
        return status == "Open" ? Color::Yellow : status == "Closed" ? Color::Green : status == "Partial" ? Color::Red : Color::None;
    };
    grdPO.barOf = [this](int row, int) {
        const OrderProgress* const order = rows_->progress(row - 1);
        if (order == nullptr || order->ordered <= 0)
            return GridBar{};
        const auto whole = static_cast<double>(order->ordered);
        return GridBar{static_cast<double>(order->received) / whole, static_cast<double>(order->cancelled) / whole};
    };
    cboSearch.setToolTip(
        "Which orders are listed. The line below the list tells what it shows: after a manual order the list stays as it was, "
        "whatever stands here. Item takes a number or a word as it is; any other code stands in apostrophes there: 'A-12'.");
    cboSortBy.setToolTip("The order of the list until it is read again, which puts the newest first: then choose here again.");
    cmdPrint.setToolTip("One order at a time: of several selected, the first is printed.");
    cmdViewHist.setToolTip("One order at a time: of several selected, the first is shown.");
    cmdDelete.setToolTip("Gives up what is still open of the order, line by line.");
    cmdDelete.isDanger = true;
    cmdExit.isCancel = true;
    cmdEdit.isDefault = true;

    cboSearch.click = [this] { cboSearch_Click(); };
    cboSortBy.click = [this] { sortList(); };
    optAsc.click = [this] { sortList(); };
    optDescending.click = [this] { sortList(); };
    grdPO.rowColChange = [this] { setButtons(); };
    grdPO.dblClick = [this] { cmdEdit_Click(); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdEdit.click = [this] { cmdEdit_Click(); };
    cmdDelete.click = [this] { cmdDelete_Click(); };
    cmdRecvInvent.click = [this] { cmdRecvInvent_Click(); };
    cmdPrint.click = [this] { openReport(0); };
    cmdViewHist.click = [this] { openReport(1); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        row({fields({field("&Show:", cboSearch).wide(23)}), gap(),
             fields({field("Sort &by:", cboSortBy, {at(optAsc), at(optDescending)}).wide(16)}), stretch()}),
        at(grdPO).high(16).wide(118).stretched(),
        buttons({at(cmdViewHist), at(cmdPrint), at(cmdRecvInvent), gap(), at(cmdDelete), stretch(), at(cmdAdd), at(cmdExit), at(cmdEdit)}),
    }));
}

void frmPurchaseOrders::Form_Load() {
    guarded({"MR_frmPurchaseOrders", "Form_Load"}, [this] {
        for (int code = kAll; const char* name : kFilters)
            cboSearch.add(name, code++);
        setButtons();
        cboSearch.setListIndex(kAllOpen - 1);
    });
}

void frmPurchaseOrders::Form_Unload(bool& /*cancel*/) {
    grdPO.bind(nullptr);
    rows_.reset();
}

void frmPurchaseOrders::cboSearch_Click() {
    if (held_)
        return;
    guarded({.tag = kTag, .procedure = "cboSearch_Click", .plain = "The search could not be made."}, [this] {
        if (auto filter = askedFilter())
            LoadPOList(std::move(*filter));
        else
            showFilter(shownFilter_);
    });
}

// The entry in the box, and nothing else.
void frmPurchaseOrders::showFilter(int index) {
    held_ = true;
    cboSearch.setListIndex(index);
    held_ = false;
}

// The chosen filter, with what it asks the user for; nothing when the user gave no answer.
std::optional<frmPurchaseOrders::Filter> frmPurchaseOrders::askedFilter() {
    const std::string words = cboSearch.text();
    switch (cboSearch.itemData()) {
    case kAll:
        return Filter{"bsp_PurchaseOrders", words};
    case kAllOpen:
        return Filter{"bsp_PurchaseOrders_Status 'O', 'P'", words};
    case kPartial:
        return Filter{"bsp_PurchaseOrders_Status 'P'", words};
    case kClosed:
        return Filter{"bsp_PurchaseOrders_Status 'C'", words};
    case kNumber:
        return askedNumber();
    case kOfSupplier:
        return askedSupplier();
    case kItem:
        return askedItem();
    default:
        return Filter{Sql("bsp_PurchaseOrders_ByDate '") + desk().clock().now() + "'", words};
    }
}

std::optional<frmPurchaseOrders::Filter> frmPurchaseOrders::askedNumber() {
    const std::string number = desk().input({"Enter PO Number", "Find PO Number", ""}).value_or("");
    if (number.empty())
        return std::nullopt;
    if (!isNumeric(number))
        desk().message("Puchase Order Number must be numeric.", kProduct);
    return Filter{Sql("bsp_PurchaseOrders_PO ") + number, "PO Number " + number};
}

std::optional<frmPurchaseOrders::Filter> frmPurchaseOrders::askedSupplier() {
    const auto supplier = PickSupplier(desk(), "Select Supplier");
    if (!supplier)
        return std::nullopt;
    return Filter{Sql("bsp_PurchaseOrders_Supplier ") + int{*supplier}, cboSearch.text()};
}

std::optional<frmPurchaseOrders::Filter> frmPurchaseOrders::askedItem() {
    const std::string sku = desk().input({"Enter SKU", "Find PO by item", ""}).value_or("");
    if (sku.empty())
        return std::nullopt;
    return Filter{Sql("bsp_PurchaseOrders_SKU ") + sku, "Item " + sku};
}

// A list that cannot be read leaves the one that is shown.
void frmPurchaseOrders::LoadPOList(Filter filter) {
    auto rows = std::make_unique<OrderRows>(openDirect(filter.statement, db::CursorType::Static));
    std::swap(rows_, rows);
    grdPO.bind(rows_.get());
    filter_ = std::move(filter);
    if (cboSortBy.count() == 0) {
        for (int column = 0; column < rows_->orders().columnCount(); ++column)
            if (!grdPO.column(column).hidden)
                cboSortBy.add(grdPO.text(0, column), column);
        optAsc.setValue(true);
    }
    if (grdPO.dataRows() > 0)
        grdPO.setCurrent(1, kPONumber);
    shownFilter_ = cboSearch.listIndex();
    setButtons();
    showSums();
}

void frmPurchaseOrders::reload() {
    if (rows_ == nullptr) // nothing could be read so far
        return cboSearch_Click();
    const std::string order = grdPO.selected() ? grdPO.rawText(grdPO.row(), kPOID) : "";
    guarded({kTag, "LoadPOList"}, [&] {
        LoadPOList(filter_);
        standOn(order);
    });
}

// On the order of that key; where the user is when it is no longer listed.
void frmPurchaseOrders::standOn(const std::string& order) {
    for (int row = 1; row <= grdPO.dataRows(); ++row)
        if (!order.empty() && grdPO.rawText(row, kPOID) == order)
            return grdPO.setCurrent(row, kPONumber);
}

void frmPurchaseOrders::sortList() {
    if (rows_ == nullptr || cboSortBy.listIndex() < 0)
        return;
    const std::string field = rows_->orders().columnName(cboSortBy.itemData());
    rows_->orders().setSort(field + (optDescending.value() ? " Desc" : " Asc"));
    if (grdPO.dataRows() > 0)
        grdPO.setCurrent(1, kPONumber);
    setButtons();
    showSums();
}

void frmPurchaseOrders::showSums() {
    Currency ordered;
    Currency open;
    for (int row = 0; row < rows_->rowCount(); ++row) {
        ordered += rows_->cell(row, kAmount).toCurrency();
        open += rows_->cell(row, kOpenAmount).toCurrency();
    }
    const int count = rows_->rowCount();
    std::string text =
        filter_.words + ": " + counted(count, "order") + ", " + open.toDisplay() + " open of " + ordered.toDisplay() + " ordered";
    if (count > 1 && cboSortBy.listIndex() >= 0 && rows_->orders().Sort().empty())
        text += ". The newest stand first again; choose the sort once more.";
    grdPO.setStatusText(text);
}

bool frmPurchaseOrders::currentIs(const char* status) const {
    return grdPO.rawText(grdPO.row(), kStatus) == status;
}

void frmPurchaseOrders::setButtons() {
    const bool any = grdPO.selected();
    const bool closed = any && currentIs("Closed");
    cmdAdd.setEnabled(true);
    for (Button* button : {&cmdEdit, &cmdViewHist, &cmdPrint})
        button->setEnabled(any);
    for (Button* button : {&cmdDelete, &cmdRecvInvent})
        button->setEnabled(any && !closed);
    if (any)
        cmdEdit.setCaption(closed || currentIs("Partial") ? "View PO" : "Edit PO");
}

std::int32_t frmPurchaseOrders::currentNumber() const {
    return grdPO.value(grdPO.row(), kPONumber).toInt32();
}

void frmPurchaseOrders::cmdEdit_Click() {
    if (!grdPO.selected() || grdPO.text(grdPO.row(), kPONumber).empty()) {
        desk().message("Please select a valid PO to edit", kProduct);
        return;
    }
    auto& edit = desk().form<frmPurchaseOrders_Edit>();
    edit.PONumber = currentNumber();
    edit.ReadOnly = !currentIs("Open");
    desk().showModal(edit);
    const bool changed = !edit.ReadOnly && edit.DialogResult;
    edit.unload();
    if (changed)
        reload();
}

void frmPurchaseOrders::cmdDelete_Click() {
    takeFrom<frmPOCancel>();
}

void frmPurchaseOrders::cmdRecvInvent_Click() {
    takeFrom<frmPurchaseOrders_Recv>();
}

// Opens the screen that receives or cancels what is open of the current order.
template <class Screen> void frmPurchaseOrders::takeFrom() {
    if (!grdPO.selected()) {
        desk().message("Please select a valid Purchase Order", kProduct);
        return;
    }
    auto& screen = desk().form<Screen>();
    screen.PONumber = currentNumber();
    desk().showModal(screen);
    if (screen.DialogResult)
        reload();
}

void frmPurchaseOrders::openReport(std::int16_t type) {
    if (!grdPO.selected()) {
        desk().message("Please select a valid PO to print", kProduct);
        return;
    }
    std::vector<std::string> keys;
    for (int row = grdPO.firstSelected(); row <= grdPO.lastSelected(); ++row)
        keys.push_back(grdPO.rawText(row, kPOID));
    modMain().doors.OrderReport(type, joined(keys, ","), "");
}

} // namespace merchantry::purchasing
