#include "catalog/frmItems_Sales.h"

#include "app/modMain.h"
#include "catalog/itemscreen.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_Item_Sales";
constexpr int kNoKeys = 9901;
constexpr int kUsualDays = 7;

enum SaleColumn { kSKU, kMatrixSKU, kDateFrom, kDateTo, kSalePrice, kIndex };

Date dayIn(const std::string& text) {
    const auto date = Date::fromText(text);
    if (!date)
        throw std::invalid_argument("Type mismatch: \"" + text + "\" is not a date.");
    return *date;
}

} // namespace

frmItems_Sales::frmItems_Sales(Desk& desk) : Form(desk, "frmItems_Sales", "Sales") {
    using Format = GridColumn::Format;
    setIcon("item");
    grdSales.setColumns({{.heading = "SKU", .fixedWidth = true},
                         {.heading = "MatrixSKU", .fixedWidth = true},
                         {.heading = "DateFrom", .format = Format::Date, .characters = 12},
                         {.heading = "DateTo", .format = Format::Date, .characters = 12},
                         {.heading = "SalePrice", .format = Format::Currency, .characters = 12},
                         {.heading = "", .hidden = true}});
    grdSales.emptyText = "No sales of the kinds that are ticked. Add one, or tick another kind.";
    grdSales.setStatusText("Nothing is written before Save and Exit.");
    chkPastSales.setToolTip("A sale ends as its last day begins: one that ends today is past.");
    cmdDelete.setToolTip("A new sale that was never saved is saved all the same when you delete it here; leave with Cancel to drop it.");
    cmdDelete.isDanger = true;
    cmdExit.isCancel = true;

    for (CheckBox* box : {&chkCurrentSales, &chkFutureSales, &chkPastSales})
        box->click = [this] {
            if (!holding_)
                showGrid();
        };
    grdSales.beforeEdit = [](int, int column, bool& cancel) { cancel = column <= kMatrixSKU; };
    grdSales.afterEdit = [this](int row, int) { grdSales_CellChanged(row); };
    cmdAdd.click = [this] {
        touched(grdSales);
        cmdAdd_Click();
    };
    cmdDelete.click = [this] {
        touched(grdSales);
        cmdDelete_Click();
    };
    cmdExit.click = [this] { unload(); };
    cmdSave.click = [this] { cmdSave_Click(); };

    asksBeforeLeaving({&chkCurrentSales, &chkFutureSales, &chkPastSales});
    setLayout(column({
        row({column({title(lblProductName), at(lblSKU)}), stretch(), at(chkCurrentSales), at(chkFutureSales), at(chkPastSales)}),
        at(lblSalesInstr),
        at(grdSales).high(12).wide(80).stretched(),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), at(cmdExit), at(cmdSave)}),
        undoLine.item(),
    }));
}

void frmItems_Sales::Form_Load() {
    guarded({kTag, "Form Load", caption() + " - Critical Error"}, [this] {
        holding_ = true;
        chkCurrentSales.setValue(true);
        chkFutureSales.setValue(true);
        chkPastSales.setValue(false);
        holding_ = false;
    });
}

void frmItems_Sales::Form_Activate() {
    if (activated_)
        return;
    activated_ = true;
    guarded({kTag, "Form Activate"}, [this] {
        const ModMain& session = modMain();
        if (session.CurrentSKU.empty() || session.CurrentMatrixSKU.empty())
            throw RunTimeError(kNoKeys, "SKUs Not Available during form load");
        lblSKU.setCaption(session.CurrentSKU);
        lblProductName.setCaption(session.CurrentItemName);
        lblSalesInstr.setCaption("Here are your current and past sales for SKU " + session.CurrentSKU +
                                 ". To modify, simply edit the appropriate grid cells.");
        Init_SalesGrid();
        showGrid();
    });
}

void frmItems_Sales::Init_SalesGrid() {
    guarded({kTag, "Init_SalesGrid"}, [this] {
        const auto rows = openDirect(Sql("bsp_SalesGrid '") + modMain().CurrentSKU + "', '" + modMain().CurrentMatrixSKU + "'",
                                     db::CursorType::Static, db::LockType::ReadOnly);
        for (; !rows->Eof(); rows->MoveNext())
            takeSale(*rows);
    });
}

void frmItems_Sales::takeSale(db::Recordset& rows) {
    const auto dayOf = [&](const char* column) {
        const Value value = rows[column].Value();
        return value.is<Date>() ? value.as<Date>() : Date();
    };
    SaleEvent sale;
    sale.ID = rows["ID"].Value().toInt32();
    sale.SKU = rows["SKU"].text();
    sale.MatrixSKU = rows["MatrixSKU"].text();
    sale.DateFrom = dayOf("DateFrom");
    sale.DateTo = dayOf("DateTo");
    sale.SalePrice = rows["SalePrice"].Value().toCurrency();
    sale.InDatabase = true;
    sales_.push_back(std::move(sale));
}

bool frmItems_Sales::wanted(const SaleEvent& sale) const {
    switch (timeOf(sale, desk().clock().now())) {
    case SaleTime::Future:
        return chkFutureSales.value();
    case SaleTime::Current:
        return chkCurrentSales.value();
    default:
        return chkPastSales.value();
    }
}

void frmItems_Sales::showGrid() {
    holding_ = true;
    grdSales.setDataRows(0);
    for (std::size_t i = 0; i < sales_.size(); ++i)
        if (!sales_[i].Deleted && wanted(sales_[i])) {
            grdSales.setDataRows(grdSales.dataRows() + 1);
            showRow(grdSales.dataRows(), static_cast<int>(i));
        }
    holding_ = false;
}

void frmItems_Sales::showRow(int row, int index) {
    const SaleEvent& sale = sales_[static_cast<std::size_t>(index)];
    grdSales.setText(row, kSKU, sale.SKU);
    grdSales.setText(row, kMatrixSKU, sale.MatrixSKU);
    grdSales.setText(row, kDateFrom, sale.DateFrom.dateOnly().toShortText());
    grdSales.setText(row, kDateTo, sale.DateTo.dateOnly().toShortText());
    grdSales.setText(row, kSalePrice, sale.SalePrice.toDisplay());
    grdSales.setText(row, kIndex, std::to_string(index));
}

// The position of a row's sale; -1 when there is no such row.
int frmItems_Sales::indexAt(int row) const {
    return row < 1 || row > grdSales.dataRows() ? -1 : static_cast<int>(Value(grdSales.rawText(row, kIndex)).toInteger());
}

void frmItems_Sales::grdSales_CellChanged(int row) {
    if (holding_)
        return;
    if (!guarded({kTag, "grdSales_CellChanged"}, [&] { readRow(row); }))
        showRow(row, indexAt(row));
}

void frmItems_Sales::readRow(int row) {
    SaleEvent& sale = sales_[static_cast<std::size_t>(indexAt(row))];
    const Date to = dayIn(grdSales.rawText(row, kDateTo));
    const Date from = dayIn(grdSales.rawText(row, kDateFrom));
    const std::string price = grdSales.rawText(row, kSalePrice);
    if (price != sale.SalePrice.toDisplay()) // what stands there unchanged keeps decimals that it does not show
        sale.SalePrice = amountIn(price);
    sale.DateTo = to;
    sale.DateFrom = from;
    sale.Dirty = true;
}

void frmItems_Sales::cmdAdd_Click() {
    guarded({kTag, "cmdAdd_Click"}, [this] {
        const Date today = desk().clock().now().dateOnly();
        SaleEvent sale;
        sale.SKU = modMain().CurrentSKU;
        sale.MatrixSKU = modMain().CurrentMatrixSKU;
        sale.DateFrom = today;
        sale.DateTo = today.plusDays(kUsualDays);
        sale.SalePrice = Currency::fromInteger(1);
        sales_.push_back(std::move(sale));
        showGrid();
        if (!wanted(sales_.back()))
            grdSales.setStatusText("A sale was added that shows only while Current is ticked. Nothing is written before Save and Exit.");
        grdSales.setCurrent(grdSales.dataRows(), kDateFrom);
        grdSales.setFocus();
    });
}

void frmItems_Sales::cmdDelete_Click() {
    guarded({kTag, "cmdDelete_Click"}, [this] {
        const int index = indexAt(grdSales.row());
        if (index < 0) {
            desk().message("You must first select a row to delete.", kProduct);
            return;
        }
        SaleEvent& sale = sales_[static_cast<std::size_t>(index)];
        sale.Deleted = true;
        grdSales.removeRow(grdSales.row());
        undoLine.offer("Sale from " + sale.DateFrom.dateOnly().toShortText() + " to " + sale.DateTo.dateOnly().toShortText() + " at " +
                           sale.SalePrice.toDisplay() + " deleted.",
                       [this, index] {
                           sales_[static_cast<std::size_t>(index)].Deleted = false;
                           showGrid();
                           return std::string();
                       });
    });
}

void frmItems_Sales::cmdSave_Click() {
    const std::string fault = faultIn(sales_);
    if (!fault.empty()) {
        desk().message(fault, kProduct, MessageIcon::Information);
        return;
    }
    const bool written = guarded({kTag, "cmdSave_Click"}, [this] {
        for (const SaleEvent& sale : sales_)
            write(sale);
    });
    if (written)
        unload();
    else
        grdSales.setStatusText("The sales before the one that failed are written. Leave with Cancel, come back, and save what is missing.");
}

// A sale that is not in the store yet is inserted, also one that was deleted before it ever was.
void frmItems_Sales::write(const SaleEvent& sale) {
    const ModMain& session = modMain();
    if (sale.InDatabase && sale.Deleted)
        session.Conn->Execute(Sql("sp_DeleteSale ") + int{sale.ID});
    else if (sale.InDatabase && sale.Dirty)
        session.Conn->Execute(Sql("sp_UpdateSale ") + int{sale.ID} + ", '" + sale.DateFrom + "', '" + sale.DateTo + "', " + sale.SalePrice);
    else if (!sale.InDatabase)
        session.Conn->Execute(Sql("sp_InsertSale '") + sale.SKU + "', '" + sale.MatrixSKU + "', '" + sale.DateFrom + "', '" + sale.DateTo +
                              "', " + sale.SalePrice);
}

} // namespace merchantry::catalog
