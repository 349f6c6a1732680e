#include "catalog/itempanel.h"

#include "app/db/again.h"
#include "app/modMain.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr int kDaysShown = 365;
constexpr int kDaysBetweenTicks = 73;
enum Column { kDate, kType, kQty, kCost, kAverage, kBalance, kRow, kReverses };

Sql whereItem() {
    return Sql("WHERE SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'";
}

std::int64_t dayOf(Date date) {
    return date.dateOnly().ms() / Date::kMsPerDay;
}

} // namespace

ItemPanel::ItemPanel(Form& form)
    : cmdPanel(form, "cmdPanel", "Side Panel"), form_(form), fraPanel(form, "fraPanel", "Prices and stock"), chtPrices(form, "chtPrices"),
      chtStock(form, "chtStock"), grdLedger(form, "grdLedger"), cmdHidePanel(form, "cmdHidePanel", "&Hide"),
      cmdUndo(form, "cmdUndo", "&Undo Adjustment") {
    using Format = GridColumn::Format;
    cmdPanel.setToolTip("Shows or hides prices, stock and movements beside the item (F9)");
    cmdPanel.click = [this] { toggle(); };
    cmdHidePanel.click = [this] { toggle(); };
    cmdUndo.click = [this] { cmdUndo_Click(); };
    cmdUndo.setToolTip("Takes the chosen adjustment back by an opposite movement of the same cost; nothing is deleted");
    chtPrices.heading = "Price by quantity";
    chtPrices.emptyText = "No prices.";
    chtPrices.evenly = true;
    chtPrices.yText = [](Currency y) { return y.toDisplay(); };
    chtStock.heading = "Stock over the last year";
    chtStock.emptyText = "No movements in the last year.";
    chtStock.xText = [](std::int64_t day) { return Date::fromMs(day * Date::kMsPerDay).toShortText(); };
    grdLedger.setColumns({{.heading = "Date", .characters = 12},
                          {.heading = "Type", .characters = 13},
                          {.heading = "Qty", .format = Format::Number},
                          {.heading = "Cost", .format = Format::Currency},
                          {.heading = "Average", .format = Format::Currency},
                          {.heading = "Balance", .format = Format::Number},
                          {.heading = "Row", .format = Format::Number},
                          {.heading = "Undoes", .format = Format::Number}});
    grdLedger.editable = false;
    grdLedger.emptyText = "This item never moved.";
    grdLedger.rowColChange = [this] { choose(); };
    fraPanel.setVisible(form.desk().remembered("frmItems", "panel") == "shown");
}

Item ItemPanel::item() {
    return group(fraPanel, column({
                               at(chtPrices).high(9),
                               at(chtStock).high(9),
                               at(grdLedger).high(6).wide(60).stretched(),
                               row({at(cmdUndo), stretch(), at(cmdHidePanel)}),
                           }))
        .stretched(2);
}

void ItemPanel::toggle() {
    present(!shown());
}

void ItemPanel::present(bool on) {
    const Twips before = form_.width(); // the window may grow as soon as the panel shows
    fraPanel.setVisible(on);
    form_.desk().remember("frmItems", "panel", on ? "shown" : "hidden");
    if (before > 0)
        form_.setSize(before + (on ? kWidth : -gained_), form_.height());
    gained_ = on ? form_.width() - before : kWidth;
    if (on)
        refresh();
    else
        release();
}

void ItemPanel::release() {
    grdLedger.bind(nullptr);
    movements_.reset();
}

void ItemPanel::refresh() {
    if (!shown() || modMain().CurrentMatrixSKU.empty())
        return;
    guarded({"MR_frmItems", "ItemPanel"}, [this] {
        showPrices();
        showStock();
        showMovements();
    });
}

void ItemPanel::pricesChanged() {
    if (shown())
        guarded({"MR_frmItems", "ItemPanel"}, [this] { showPrices(); });
}

void ItemPanel::showPrices() {
    const auto breaks =
        openDirect(Sql("SELECT TierDefs.TierName, PriceMatrix.Tier, PriceMatrix.Quantity, PriceMatrix.Price FROM PriceMatrix "
                       "INNER JOIN TierDefs ON PriceMatrix.Tier = TierDefs.TierID ") +
                   whereItem() + " ORDER BY PriceMatrix.Tier, PriceMatrix.Quantity");
    std::vector<ChartSeries> tiers;
    std::int64_t tier = -1;
    for (; !breaks->Eof(); breaks->MoveNext()) {
        if (std::exchange(tier, (*breaks)["Tier"].Value().toInteger()) != tier || tiers.empty())
            tiers.push_back({(*breaks)["TierName"].text(), {}});
        tiers.back().points.push_back({(*breaks)["Quantity"].Value().toInteger(), (*breaks)["Price"].Value().toCurrency()});
    }
    chtPrices.show(std::move(tiers));
}

// One point a day, the balance at its end; before them what was there a year ago.
void ItemPanel::showStock() {
    const Date today = form_.desk().clock().now().dateOnly();
    const Date from = today.plusDays(-kDaysShown);
    ChartSeries balance{"In stock", {}};
    const auto before = openDirect(Sql("SELECT TOP 1 QtyAfter FROM InventoryLedger ") + whereItem() + " AND PostDate < '" + from +
                                   "' ORDER BY PostDate DESC, LedgerID DESC");
    if (!before->Eof())
        balance.points.push_back({dayOf(from), (*before)["QtyAfter"].Value().toCurrency()});
    const auto moves = openDirect(Sql("SELECT PostDate, QtyAfter FROM InventoryLedger ") + whereItem() + " AND PostDate >= '" + from +
                                  "' ORDER BY PostDate, LedgerID");
    for (; !moves->Eof(); moves->MoveNext()) {
        const std::int64_t day = dayOf((*moves)["PostDate"].Value().as<Date>());
        if (balance.points.empty() || balance.points.back().x != day)
            balance.points.push_back({day, {}});
        balance.points.back().y = (*moves)["QtyAfter"].Value().toCurrency();
    }
    chtStock.ticks.clear();
    for (int day = 0; day <= kDaysShown; day += kDaysBetweenTicks)
        chtStock.ticks.push_back(dayOf(from.plusDays(day)));
    chtStock.show(balance.points.empty() ? std::vector<ChartSeries>{} : std::vector{balance});
}

void ItemPanel::showMovements() {
    release();
    movements_ =
        openDirect(Sql("SELECT DATEADD(day, DATEDIFF(day, 0, PostDate), 0) AS Posted, Type, Qty, Cost_ea, Cost_wt, QtyAfter, LedgerID, "
                       "ReversesID FROM InventoryLedger ") +
                       whereItem() + " ORDER BY PostDate DESC, LedgerID DESC",
                   db::CursorType::Static, db::LockType::ReadOnly);
    grdLedger.bind(movements_.get());
    grdLedger.setStatusText(counted(movements_->RecordCount(), "movement") + ", newest first");
    choose();
}

void ItemPanel::choose() {
    cmdUndo.setEnabled(grdLedger.selected());
}

void ItemPanel::cmdUndo_Click() {
    if (!grdLedger.selected())
        return;
    const int row = grdLedger.row();
    const std::string what = grdLedger.text(row, kType) + " of " + grdLedger.text(row, kQty);
    if (form_.desk().message("Undo \"" + what + "\"? An opposite movement of the same cost is posted, and the stock follows.",
                             form_.caption(), MessageIcon::Question, MessageButtons::YesNo) != Answer::Yes)
        return;
    guarded({"MR_frmItems", "cmdUndo_Click"}, [&] {
        const auto& conn = modMain().Conn;
        const Sql undo = Sql("bsp_UndoAdjustment ") + static_cast<int>(grdLedger.value(row, kRow).toInteger());
        const auto answer = db::againWhenBusy(conn->session(), [&] { return conn->Execute(undo); });
        const std::string refused = (*answer)["Refused"].text();
        if (!refused.empty()) {
            form_.desk().message(refused, form_.caption(), MessageIcon::Exclamation);
            return;
        }
        moved();
    });
}

} // namespace merchantry::catalog
