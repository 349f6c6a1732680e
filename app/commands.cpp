#include "app/commands.h"

#include "app/reportlistings.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace merchantry::app {
namespace {

using Kind = CommandKind;

// clang-format off
constexpr CommandRow kCommands[] = {
    {"", "mnuFile", "&File", false, Kind::Menu, ""},
    {"mnuFile", "mnuDBConfiguration", "&Database Configuration", false, Kind::Own, ""},
    {"mnuFile", "mnuFileDButil", "&Backup/Restore Database", true, Kind::Screen, "frmDatabaseBak"},
    {"mnuFile", "mnuFileImport", "&Export Items", false, Kind::Menu, ""},
    {"mnuFileImport", "mnuImportexportQuicksell", "&QuickSell", true, Kind::Own, ""},
    {"mnuFileImport", "mnuImportexportStandard", "&Standard", true, Kind::Own, ""},
    {"mnuFile", "mnuFileQuickbooksexport", "&QuickBooks Export", false, Kind::Own, ""},
    {"mnuFile", "mnuExcelImport", "Excel &Import", false, Kind::Own, ""},
    {"mnuFile", "mnuLine1", "-", false, Kind::Line, ""},
    {"mnuFile", "mnuFileExit", "E&xit", true, Kind::Own, ""},
    {"", "mnuStore", "&Store", false, Kind::Menu, ""},
    {"mnuStore", "mnuStoreGeneraloptions", "&General Options", true, Kind::Screen, "frmOptions"},
    {"mnuStore", "mnuStoreCashiers", "&Cashiers", false, Kind::Screen, "frmCashiers"},
    {"mnuStore", "mnuStoreSetupRegisters", "&Registers", true, Kind::Screen, "frmRegisters"},
    {"mnuStore", "mnuStoreSetupPCCharge", "&PCCharge", true, Kind::Message, "PCCharge configuration has been moved to Store Options"},
    {"mnuStore", "mnuTenders", "&Tender Types", false, Kind::Screen, "frmTenderTypes"},
    {"", "mnuItems", "&Items", false, Kind::Menu, ""},
    {"mnuItems", "mnuItemsItemmaintenance", "&Item Maintenance", true, Kind::Own, ""},
    {"mnuItems", "mnuItemsInventoryquantities", "I&nventory Quantities", true, Kind::Screen, "frmInventory"},
    {"mnuItems", "mnuItemsMatrixitems", "&Matrix Items", false, Kind::Menu, ""},
    {"mnuItemsMatrixitems", "mnuItemsMatrixitemsAddparent", "Add &Parent", true, Kind::Own, ""},
    {"mnuItemsMatrixitems", "mnuItemsMatrixitemsParentlookup", "Parent &Lookup", true, Kind::Own, ""},
    {"mnuItemsMatrixitems", "mnuItemsMatrixitemsMatrixitemlookup", "&Matrix Item Lookup", true, Kind::Own, ""},
    {"mnuItems", "mnuItemsSetup", "&Setup", false, Kind::Menu, ""},
    {"mnuItemsSetup", "mnuItemsSetupDepartments", "&Departments", true, Kind::Screen, "frmDepartments"},
    {"mnuItemsSetup", "mnuItemsSetupItemmatrix", "&Item Matrix", true, Kind::Screen, "frmItemMatrix"},
    {"mnuItemsSetup", "mnuItemsSetupInventoryadjustmentcodes", "In&ventory Adjustment Codes", true, Kind::Screen, "frmInvReasonCodes"},
    {"mnuItemsSetup", "mnuItemsSetupSalesmessages", "Sales &Messages", true, Kind::Own, ""},
    {"mnuItemsSetup", "mnuItemsSetupTaxclasses", "&Tax Classes", true, Kind::Screen, "frmTaxClasses"},
    {"", "mnuSuppliers", "S&uppliers", false, Kind::Menu, ""},
    {"mnuSuppliers", "mnuSuppliersSuppliermaintenance", "Supplier Maintenance", true, Kind::Screen, "frmSuppliers"},
    {"mnuSuppliers", "mnuSuppiersPurchaseorders", "&Purchase Orders", true, Kind::Screen, "frmPurchaseOrders"},
    {"", "mnuCustomers", "&Customers", false, Kind::Menu, ""},
    {"mnuCustomers", "mnuCustomersCustomermaintenance", "&Customer Maintenance", true, Kind::Screen, "frmCustomerView"},
    {"mnuCustomers", "mnuStoreCreditAdj", "&Store Credit Adjustment", true, Kind::Screen, "frmStoreCreditUdjustment"},
    {"mnuCustomers", "mnuRunCustomerStatements", "Run Customer Statements", false, Kind::Own, ""},
    {"mnuCustomers", "mnuCustomerCustomFields", "Custom Fields", false, Kind::Own, ""},
    {"mnuCustomers", "mnuCustomerSetup", "S&etup", false, Kind::Menu, ""},
    {"mnuCustomerSetup", "mnuCustomerSetupPricetiers", "&Price Tiers", true, Kind::Screen, "frmPriceTiers"},
    {"mnuCustomerSetup", "mnuCreditAdjustmentCodes", "&Credit Adjustment Codes", true, Kind::Screen, "frmCreditAdjCodes"},
    {"", "mnuReports", "&Reports", false, Kind::Menu, ""},
    {"mnuReports", "mnuReportsPrintLabels", "&Print Labels", false, Kind::Menu, ""},
    {"mnuReports", "mnuReportsCustomers", "&Customers", false, Kind::Menu, ""},
    {"mnuReports", "mnuRptInventory", "&Inventory", false, Kind::Menu, ""},
    {"mnuRptInventory", "mnuReportsInventoryInventoryadjustmentreport", "Inventory adjustments", false, Kind::Menu, ""},
    {"mnuRptInventory", "mnuReportsItemMatrixReports", "Item Matrix Reports", false, Kind::Menu, ""},
    {"mnuRptInventory", "mnuReportsInventoryMaintenance", "Maintenance", false, Kind::Menu, ""},
    {"mnuReports", "mnuRptProfit", "P&rofit", false, Kind::Menu, ""},
    {"mnuReports", "mnuRptSales", "&Sales", false, Kind::Menu, ""},
    {"mnuReports", "mnuReportsStore", "S&tore", false, Kind::Menu, ""},
    {"mnuReports", "mnuRptSuppliers", "S&uppliers", false, Kind::Menu, ""},
};

// What follows the reports in their menus.
constexpr CommandRow kBehindReports[] = {
    {"mnuRptProfit", "mnuProfitTopprofitperformers", "Top profit performers", false, Kind::Message, "Top profit performers report is not available at this time"},
    {"mnuRptSales", "mnuReportsSalesTopsalesperformers", "Top sales performers", false, Kind::Message, "Top sales performers report is not available at this time"},
    {"mnuReports", "mnuLine2", "-", false, Kind::Line, ""},
    {"mnuReports", "mnuCustomReport", "Custom Reports", false, Kind::Own, ""},
    {"", "mnuHelp", "&Help", false, Kind::Menu, ""},
    {"mnuHelp", "mnuProductHelp", "Tillmark Professional Help", true, Kind::Own, ""},
    {"mnuHelp", "mnuFirstRoad", "&Your Shop in Ten Minutes", true, Kind::Own, ""},
    {"mnuHelp", "mnuStockProof", "&Proof of Stock", true, Kind::Screen, "frmStockProof"},
    {"mnuHelp", "mnuAbout", "&About Tillmark Professional", true, Kind::Own, ""},
};
// clang-format on

// As reportListings() has them, for the check below.
constexpr ReportListing kReports[] = {
#include "reportcommands.inc"
};

constexpr bool isMenu(std::string_view name) {
    return std::any_of(std::begin(kCommands), std::end(kCommands),
                       [&](const CommandRow& row) { return row.kind == Kind::Menu && name == row.name; });
}
static_assert(std::all_of(std::begin(kReports), std::end(kReports), [](const ReportListing& report) { return isMenu(report.menu); }),
              "The [listing] of a report file names a menu that the table above does not have.");

std::vector<CommandRow> joined() {
    std::vector<CommandRow> rows(std::begin(kCommands), std::end(kCommands));
    for (const ReportListing& report : reportListings())
        rows.push_back({report.menu, report.command, report.caption, false, Kind::Report, report.key});
    rows.insert(rows.end(), std::begin(kBehindReports), std::end(kBehindReports));
    return rows;
}

} // namespace

std::span<const CommandRow> commandTable() {
    static const std::vector<CommandRow> rows = joined();
    return rows;
}

} // namespace merchantry::app
