#include "customers/accountpanel.h"

#include "app/modMain.h"
#include "ui/desk.h"

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kScreen = "frmCustomer";

std::vector<GridColumn> lastColumns(const char* what) {
    using Format = GridColumn::Format;
    return {{.heading = what, .characters = 14},
            {.heading = "Date", .format = Format::Plain, .characters = 11},
            {.heading = "Amount", .alignRight = true, .characters = 11}};
}

} // namespace

AccountPanel::AccountPanel(Form& form, Frame& fields)
    : form_(form), fields_(fields), fraPanel(form, "fraPanel"), grdAges(form, "grdAges"), grdSales(form, "grdSales"),
      grdPayments(form, "grdPayments") {
    grdAges.setColumns({{.heading = "Open", .characters = 20}, {.heading = "Amount", .alignRight = true, .characters = 11}});
    grdSales.setColumns(lastColumns("Last sales"));
    grdPayments.setColumns(lastColumns("Last payments"));
    grdSales.emptyText = "Nothing was bought yet.";
    grdPayments.emptyText = "Nothing was paid on account yet.";
    for (Grid* grid : {&grdAges, &grdSales, &grdPayments})
        grid->editable = false;
    fraPanel.setVisible(form.desk().remembered(kScreen, "panel") == "shown");
}

Item AccountPanel::item() {
    return group(fraPanel, column({
                               at(grdAges).high(6).wide(38).stretched(17),
                               at(grdSales).high(4).stretched(12),
                               at(grdPayments).high(4).stretched(12),
                           }))
        .stretched();
}

void AccountPanel::toggle() {
    const bool on = !fraPanel.visible();
    if (Control* const held = form_.focused(); on) {
        if (!form_.focus(nullptr)) // a field that may be hidden now is checked as it is left
            return;
        held_ = held;
    }
    const Twips before = form_.width(); // the window may grow as soon as the panel shows
    fraPanel.setVisible(on);
    form_.desk().remember(kScreen, "panel", on ? "shown" : "hidden");
    if (before > 0)
        form_.setSize(before + (on ? kWidth : -gained_), form_.height());
    gained_ = on ? form_.width() - before : kWidth;
    arrange();
    if (!fields_.visible())
        grdAges.setFocus();
    else if (held_ != nullptr && (on || form_.focused() == nullptr || form_.focused()->container() == &fraPanel))
        held_->setFocus();
    refresh(customer_);
}

void AccountPanel::arrange() {
    const bool narrow = form_.width() > 0 && form_.width() < kBoth; // of no width before it is drawn
    fields_.setVisible(!fraPanel.visible() || !narrow);
}

void AccountPanel::refresh(std::int32_t customer) {
    customer_ = customer;
    if (!fraPanel.visible())
        return;
    guarded({kScreen, "AccountPanel"}, [&] {
        showAges();
        showLast(grdSales, Sql("SELECT TOP 10 TransType AS What, Time, Total FROM [Transaction] WHERE CustomerID = ") + customer_ +
                               " ORDER BY TransactionNumber DESC");
        showLast(grdPayments,
                 Sql("SELECT TOP 10 CreditCode AS What, Time, -Total AS Total FROM CreditTransaction WHERE Total < 0 AND CustomerID = ") +
                     customer_ + " ORDER BY Time DESC, CreditTransID DESC");
    });
}

// By the days since a debit was due; credits that are not applied yet stand for themselves.
void AccountPanel::showAges() {
    constexpr const char* kAges[] = {"Not due", "1 to 30 days", "31 to 60 days", "61 to 90 days", "Over 90 days", "Not applied yet"};
    std::vector<Currency> sums(std::size(kAges));
    const auto open = openDirect(Sql("SELECT OutstandingBalance, DATEDIFF(day, ISNULL(PastDueDate, Time), GETDATE()) AS Days FROM "
                                     "CreditTransaction WHERE OutstandingBalance <> 0 AND CustomerID = ") +
                                 customer_);
    for (; !open->Eof(); open->MoveNext()) {
        const Currency amount = (*open)["OutstandingBalance"].Value().toCurrency();
        const std::int64_t days = (*open)["Days"].Value().toInteger();
        const std::size_t age = days <= 0 ? 0 : days <= 30 ? 1 : days <= 60 ? 2 : days <= 90 ? 3 : 4;
        sums[amount < Currency() ? 5 : age] += amount;
    }
    grdAges.setDataRows(0);
    for (std::size_t i = 0; i < sums.size(); ++i)
        grdAges.addRow({kAges[i], sums[i].toDisplay()});
}

void AccountPanel::showLast(Grid& grid, const Sql& select) {
    const auto rows = openDirect(select);
    grid.setDataRows(0);
    for (; !rows->Eof(); rows->MoveNext())
        grid.addRow({(*rows)["What"].text(), (*rows)["Time"].Value().as<Date>().dateOnly().toShortText(),
                     (*rows)["Total"].Value().toCurrency().toDisplay()});
}

} // namespace merchantry::customers
