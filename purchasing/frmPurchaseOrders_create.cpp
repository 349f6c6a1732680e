// How the order list makes new orders.

#include "app/modMain.h"
#include "purchasing/frmPOCreate.h"
#include "purchasing/frmPOFrom.h"
#include "purchasing/frmPurchaseOrders.h"
#include "purchasing/frmPurchaseOrders_Edit.h"
#include "purchasing/frmPurchaseOrders_New.h"
#include "purchasing/orders.h"
#include "ui/desk.h"

namespace merchantry::purchasing {

using namespace app;
using db::Sql;

namespace {

constexpr const char* kTag = "frmPurchaseOrders";
constexpr const char* kEnteredToday = "PO Entered Today";

} // namespace

void frmPurchaseOrders::cmdAdd_Click() {
    auto& way = desk().form<frmPurchaseOrders_New>();
    desk().showModal(way);
    way.unload();
    if (way.Auto())
        createByRun();
    else if (way.Manual())
        guarded({kTag, "cmdAdd_Click"}, [this] { createByHand(); });
}

void frmPurchaseOrders::createByRun() {
    auto& run = desk().form<frmPOCreate>();
    desk().showModal(run);
    if (!run.DialogResult)
        return;
    run.unload();
    cboSearch.setListIndex(cboSearch.indexOf(kEnteredToday));
}

// The Empty Supplier takes no orders.
void frmPurchaseOrders::createByHand() {
    modMain().Conn->Execute("sp_POBreakGround");
    const auto supplier = PickSupplier(desk(), "");
    if (!supplier || *supplier < 1)
        return;
    modMain().Conn->Execute(Sql("sp_InsertWrkSupplier ") + int{*supplier});
    auto& edit = desk().form<frmPurchaseOrders_Edit>();
    edit.PONumber = kNewOrder;
    edit.SupplierID = *supplier;
    desk().showModal(edit);
    const bool made = edit.DialogResult;
    edit.unload();
    if (!made)
        return;
    showFilter(cboSearch.indexOf(kEnteredToday));
    reload();
}

} // namespace merchantry::purchasing
