#include "purchasing/frmPurchaseOrders_New.h"

#include "app/modMain.h"

namespace merchantry::purchasing {

using namespace ui;

namespace {

constexpr std::int16_t kItemsWithoutSupplier = 2; // among the reports of orders

} // namespace

frmPurchaseOrders_New::frmPurchaseOrders_New(Desk& desk) : Form(desk, "frmPurchaseOrders_New", "Create a Purchase Order") {
    setIcon("items");
    setFixedSize();
    cmdSkippedItems.setToolTip("Items that no supplier delivers: no order can hold them.");
    cmdGenerate.isDefault = true;
    cmdCancel.isCancel = true;
    cmdGenerate.click = [this] { end(cmdGenerate); };
    cmdManual.click = [this] { end(cmdManual); };
    cmdSkippedItems.click = [] {
        if (const auto& report = app::modMain().doors.OrderReport)
            report(kItemsWithoutSupplier, "", "");
    };
    cmdCancel.click = [this] { end(cmdCancel); };
    setLayout(column({
        title(lblHeading),
        gap(),
        row({at(cmdGenerate).wide(12), at(lblGenerate).wide(46)}),
        row({at(cmdManual).wide(12), at(lblManual).wide(46)}),
        gap(),
        buttons({at(cmdSkippedItems), stretch(), at(cmdCancel)}),
    }));
}

void frmPurchaseOrders_New::end(const Button& button) {
    ending_ = &button;
    hide();
}

} // namespace merchantry::purchasing
