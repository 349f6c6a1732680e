#include "reports/reporttable.h"

namespace merchantry::reports {
namespace {

constexpr ReportKey kKeys[] = {
    {"DailySales", "DailySales.rpt"},
    {"DeptSales", "SalesByDept.rpt"},
    {"SupplierList", "SupplierList.rpt", false},
    {"CashierList", "CashierList.rpt", false},
    {"CustomerList", "CustomerList.rpt", false},
    {"ErrorLog", "ErrorLog.rpt", false},
    {"InventoryValuation", "InvValuation.rpt"},
    {"ProfitByDept", "ProfitByDept.rpt"},
    {"SalesByCust", "SalesByCust.rpt"},
    {"ProfitByCust", "ProfitByCust.rpt"},
    {"ProfitByItem", "ProfitByItem.rpt"},
    {"PurchaseOrderStatus", "PurchaseOrderStatus.rpt"},
    {"PurchasesByDept", "PurchasesbyDept.rpt"},
    {"PurchasesByItem", "PurchasesbyItem.rpt"},
    {"PurchasesBySupplier", "PurchasesbySupplier.rpt"},
    {"SalesByItem", "SalesByItem.rpt"},
    {"PhysicalInvWk", "PhysicalInvWk.rpt"},
    {"ItemBelowReorder", "InvBelowReorder.rpt"},
    {"ItemWithNoCost", "ItemWithNoCost.rpt"},
    {"CreditbyCustomer", "CreditbyCustomer.rpt"},
    {"InventoryAdjustmentType", "InvAdjustmentType.rpt"},
    {"TenderAnalysis", "TenderAnalysis.rpt"},
    {"DailyTaxESales", "DailyTaxESales.rpt"},
    {"SerialRecon", "SerialRecon.rpt"},
    {"SerialList", "SerialList.rpt"},
    {"ItemSubs", "ItemSubs.rpt"},
    {"CustLabels", "CustLabels.rpt", false},
    {"ItemLabels", "ItemLabels.rpt", false},
    {"CashierLog", "CashierLog.rpt"},
    {"DailyTaxes", "DailyTaxes.rpt"},
    {"DailyProfit", "DailyProfit.rpt"},
    {"ItemMatrixCP", "ItemMatrixGroup.rpt"},
    {"ItemMatrixGC", "ItemMatrixParent.rpt"},
    {"ItemDetailList", "ItemDetailList.rpt"},
    {"ItemPriceList", "PriceList.rpt"},
    {"ItemsByDept", "ItemsByDept.rpt"},
    {"CommittedInventory", "CommittedInventory.rpt"},
    {"GiftVouchers", "GiftVouchers.rpt"},
    {"CreditAging", "CreditAging.rpt"},
    {"CreditAdjustmentType", "CreditAdjustmentType.rpt"},
    {"layawaybycustomer", "layawaybycustomer.rpt"},
    {"layawayexpiration", "layawayexpiration.rpt"},
    {"InventoryAdjustment", "InvAdjustment.rpt"},
    {"ItemNoSupp", "InvWithNoSupplier.rpt"},
    {"RegisterAnalysis", "RegAnalysis.rpt"},
    // Keys without a file.
    {"Customer", "", false},
    {"SalesTax", "", false},
    {"Register", "", false, true},
    {"SalesByItemSummary", ""},
};

} // namespace

const ReportKey* reportKey(std::string_view key) {
    for (const ReportKey& one : kKeys)
        if (key == one.key)
            return &one;
    return nullptr;
}

} // namespace merchantry::reports
