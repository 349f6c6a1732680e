#include "programs/screens.h"

#include "app/frmAbout.h"
#include "app/frmDbConfig.h"
#include "app/frmFieldSearch.h"
#include "app/frmLogin.h"
#include "app/frmMain.h"
#include "app/modMain.h"
#include "base/textorder.h"
#include "catalog/codedialog.h"
#include "catalog/dlgMatrixSKU.h"
#include "catalog/frmBulkPrice.h"
#include "catalog/frmItemMatrix.h"
#include "catalog/frmItemParent.h"
#include "catalog/frmItems.h"
#include "catalog/frmItemsOf.h"
#include "catalog/frmItems_Sales.h"
#include "catalog/frmItems_SalesMsg.h"
#include "catalog/frmPriceTiers.h"
#include "catalog/itemlistform.h"
#include "catalog/itemwizardform.h"
#include "catalog/modItemLookup.h"
#include "customers/frmCreditAdjCodes.h"
#include "customers/frmCustomer.h"
#include "customers/frmCustomerShip.h"
#include "customers/frmCustomerView.h"
#include "customers/frmStatements.h"
#include "customers/frmStoreCreditUdjustment.h"
#include "exchange/frmDatabaseBak.h"
#include "exchange/frmImportExport.h"
#include "exchange/frmQuickBooks.h"
#include "exchange/import/frmExcelImport.h"
#include "inventory/frmInvReasonCodes.h"
#include "inventory/frmInventory.h"
#include "inventory/frmInventory_Adjust.h"
#include "inventory/frmInventory_Serial.h"
#include "inventory/frmStockProof.h"
#include "purchasing/frmOtherCost.h"
#include "purchasing/frmPOCancel.h"
#include "purchasing/frmPOCreate.h"
#include "purchasing/frmPOFrom.h"
#include "purchasing/frmPOItemHistory.h"
#include "purchasing/frmPOPickItems.h"
#include "purchasing/frmPurchaseOrders.h"
#include "purchasing/frmPurchaseOrders_Edit.h"
#include "purchasing/frmPurchaseOrders_New.h"
#include "purchasing/frmPurchaseOrders_Recv.h"
#include "purchasing/frmSuppliers.h"
#include "purchasing/frmSuppliers_Info.h"
#include "reports/frmOrphanedItems.h"
#include "reports/frmPurchaseOrder_View.h"
#include "reports/frmReportCriteria.h"
#include "reports/frmReport_Generate.h"
#include "reports/frmViewer.h"
#include "setup/frmCashier_Security.h"
#include "setup/frmCashiers.h"
#include "setup/frmDepartments.h"
#include "setup/frmOptions.h"
#include "setup/frmRegister_Edit.h"
#include "setup/frmRegisters.h"
#include "setup/frmTaxClasses.h"
#include "setup/frmTaxTable.h"
#include "setup/frmTenderTypes.h"

#include <algorithm>
#include <iterator>

namespace merchantry::programs {
namespace {

template <class F> ui::Form& instanceOf(ui::Desk& desk) {
    return desk.form<F>();
}

constexpr Screen kScreens[] = {
    {"frmLogin", instanceOf<app::frmLogin>, false},
    {"frmMain", instanceOf<app::frmMain>, false},
    {"frmDbConfig", instanceOf<app::frmDbConfig>, false},
    {"frmAbout", instanceOf<app::frmAbout>, false},
    {"frmFieldSearch", instanceOf<app::frmFieldSearch>, false},
    {"frmSKU", instanceOf<catalog::frmSKU>, false},
    {"frmMatrixSKU", instanceOf<catalog::frmMatrixSKU>, false},
    {"frmItemLookup", instanceOf<catalog::frmItemLookup>, false},
    {"frmItemList", instanceOf<catalog::frmItemList>, false},
    {"frmItems", instanceOf<catalog::frmItems>, false},
    {"frmItemsOf", instanceOf<catalog::frmItemsOf>, false},
    {"frmItemLookupWiz", instanceOf<catalog::frmItemLookupWiz>, false},
    {"frmItemMatrixLookupWiz", instanceOf<catalog::frmItemMatrixLookupWiz>, false},
    {"frmParentLookup", instanceOf<catalog::frmParentLookup>, false},
    {"frmItemParent", instanceOf<catalog::frmItemParent>, false},
    {"frmItemMatrix", instanceOf<catalog::frmItemMatrix>, true},
    {"frmBulkPrice", instanceOf<catalog::frmBulkPrice>, false},
    {"dlgMatrixSKU", instanceOf<catalog::dlgMatrixSKU>, false},
    {"frmInventory", instanceOf<inventory::frmInventory>, true},
    {"frmInventory_Adjust", instanceOf<inventory::frmInventory_Adjust>, false},
    {"frmInventory_Serial", instanceOf<inventory::frmInventory_Serial>, false},
    {"frmStockProof", instanceOf<inventory::frmStockProof>, true},
    {"frmInvReasonCodes", instanceOf<inventory::frmInvReasonCodes>, true},
    {"frmItems_Sales", instanceOf<catalog::frmItems_Sales>, false},
    {"frmItems_SalesMsg", instanceOf<catalog::frmItems_SalesMsg>, false},
    {"frmPriceTiers", instanceOf<catalog::frmPriceTiers>, true},
    {"frmSuppliers", instanceOf<purchasing::frmSuppliers>, true},
    {"frmSuppliers_Info", instanceOf<purchasing::frmSuppliers_Info>, false},
    {"frmPOCreate", instanceOf<purchasing::frmPOCreate>, false},
    {"frmPOFrom", instanceOf<purchasing::frmPOFrom>, false},
    {"frmPOPickItems", instanceOf<purchasing::frmPOPickItems>, false},
    {"frmPurchaseOrders", instanceOf<purchasing::frmPurchaseOrders>, true},
    {"frmPurchaseOrders_Edit", instanceOf<purchasing::frmPurchaseOrders_Edit>, false},
    {"frmPurchaseOrders_Recv", instanceOf<purchasing::frmPurchaseOrders_Recv>, false},
    {"frmOtherCost", instanceOf<purchasing::frmOtherCost>, false},
    {"frmPOCancel", instanceOf<purchasing::frmPOCancel>, false},
    {"frmPOItemHistory", instanceOf<purchasing::frmPOItemHistory>, false},
    {"frmPurchaseOrder_View", instanceOf<reports::frmPurchaseOrder_View>, false},
    {"frmPurchaseOrders_New", instanceOf<purchasing::frmPurchaseOrders_New>, false},
    {"frmCustomerView", instanceOf<customers::frmCustomerView>, true},
    {"frmCustomer", instanceOf<customers::frmCustomer>, false},
    {"frmCustomerShip", instanceOf<customers::frmCustomerShip>, false},
    {"frmStatements", instanceOf<customers::frmStatements>, false},
    {"frmStoreCreditUdjustment", instanceOf<customers::frmStoreCreditUdjustment>, true},
    {"frmCreditAdjCodes", instanceOf<customers::frmCreditAdjCodes>, true},
    {"frmExcelImport", instanceOf<exchange::frmExcelImport>, false},
    {"frmDepartments", instanceOf<setup::frmDepartments>, true},
    {"frmTaxClasses", instanceOf<setup::frmTaxClasses>, true},
    {"frmTaxTable", instanceOf<setup::frmTaxTable>, false},
    {"frmTenderTypes", instanceOf<setup::frmTenderTypes>, true},
    {"frmReportCriteria", instanceOf<reports::frmReportCriteria>, false},
    {"frmReport_Generate", instanceOf<reports::frmReport_Generate>, false},
    {"frmViewer", instanceOf<reports::frmViewer>, false},
    {"frmOrphanedItems", instanceOf<reports::frmOrphanedItems>, false},
    {"frmImportExport", instanceOf<exchange::frmImportExport>, false},
    {"frmQuickBooks", instanceOf<exchange::frmQuickBooks>, false},
    {"frmCashiers", instanceOf<setup::frmCashiers>, true},
    {"frmCashier_Security", instanceOf<setup::frmCashier_Security>, false},
    {"frmRegisters", instanceOf<setup::frmRegisters>, true},
    {"frmRegister_Edit", instanceOf<setup::frmRegister_Edit>, false},
    {"frmOptions", instanceOf<setup::frmOptions>, true},
    {"frmDatabaseBak", instanceOf<exchange::frmDatabaseBak>, true},
};

// A file of the report folder with its parameters; null when it cannot be opened, which was said.
reports::RptFilePtr preparedReport(ui::Desk& desk, const std::string& file, const std::vector<std::string>& parameters) {
    const auto report = reports::openReport(desk, reports::reportFolder(desk) / file);
    for (std::size_t i = 0; report != nullptr && i < parameters.size(); ++i)
        report->setParameter(i + 1, parameters[i]);
    return report;
}

} // namespace

std::span<const Screen> screens() {
    return kScreens;
}

ui::Form* screenNamed(ui::Desk& desk, const std::string& name) {
    for (const Screen& screen : kScreens)
        if (sameText(screen.name, name))
            return &screen.instance(desk);
    return nullptr;
}

namespace {

void bindCatalogueDoors(ui::Desk& desk, app::Doors& doors) {
    using namespace catalog;
    doors.CheckSKUs = [&desk](const std::string& pair, bool modal) { desk.form<frmItems>().CheckSKUs(pair, modal); };
    doors.SelectSKU = [&desk](int mode) { return desk.form<frmItemLookup>().SelectSKU(mode); };
    doors.ShowItemList = [&desk] { desk.form<frmItemList>().ShowFormAddNewVisible(); };
    doors.ItemsOf = [&desk](app::ItemGroup group, int id, const std::string& name) { desk.form<frmItemsOf>().ShowItems(group, id, name); };
    doors.GetSKU = [&desk] { return desk.form<frmSKU>().GetSKU(); };
    doors.GetMatrixSKU = [&desk](const std::string& preset) { return desk.form<frmMatrixSKU>().GetMatrixSKU(preset); };
    doors.AddNewParent = [] { AddNewParent(); };
    doors.ShowItemLookup = [](int kind) { ShowItemLookup(kind); };
    doors.ItemMatrixLookup = [&desk] {
        auto& lookup = desk.form<frmItemMatrixLookupWiz>();
        lookup.CustomizeForm("Item Matrix Lookup", true, false, "Matrix");
        desk.showModal(lookup);
    };
    doors.AdjustInv = [&desk](const std::string& sku, const std::string& matrixSku, const std::string& name) {
        desk.form<inventory::frmInventory_Adjust>().AdjustInv(sku, matrixSku, name, 0);
    };
    doors.SalesMessages = [&desk](int mode) { return desk.form<frmItems_SalesMsg>().ShowForm(mode); };
    doors.ItemSales = [&desk] { desk.showModal(desk.form<frmItems_Sales>()); };
}

void bindReportDoors(ui::Desk& desk, app::Doors& doors) {
    doors.ReportCriteria = [&desk](const std::string& key) { desk.form<reports::frmReportCriteria>().LoadForm(key); };
    doors.CustomReport = [&desk](const std::string& file) {
        auto& window = desk.newForm<reports::frmReport_Generate>();
        window.CustomGenerate(file);
        desk.show(window);
    };
    doors.ReportWindow = [&desk](const std::string& file, const std::vector<std::string>& parameters, bool tools, bool modal) {
        const auto report = preparedReport(desk, file, parameters);
        if (report == nullptr)
            return;
        auto& window = desk.newForm<reports::frmReport_Generate>();
        window.GenerateFromRpt(report);
        window.ViewerTools = tools;
        if (modal)
            desk.showModal(window);
        else
            desk.show(window);
    };
    doors.ReportViewer = [&desk](const std::string& file, const std::vector<std::string>& parameters, const std::string& title) {
        const auto report = preparedReport(desk, file, parameters);
        if (report == nullptr)
            return;
        auto& window = desk.newForm<reports::frmViewer>();
        window.Report = report;
        window.Title = title;
        desk.showModal(window);
    };
    doors.OrderReport = [&desk](std::int16_t type, const std::string& number, const std::string& criteria) {
        auto& view = desk.form<reports::frmPurchaseOrder_View>();
        view.ReportType = type;
        view.OpenReport(number, criteria);
    };
}

void bindScreens(ui::Desk& desk, app::Doors& doors) {
    doors.HasScreen = [](const std::string& form) {
        return std::any_of(std::begin(kScreens), std::end(kScreens), [&](const Screen& s) { return s.command && form == s.name; });
    };
    doors.ShowScreen = [&desk](const std::string& form) {
        for (const Screen& screen : kScreens) {
            if (!screen.command || form != screen.name)
                continue;
            desk.showModal(screen.instance(desk));
            return true;
        }
        return false;
    };
}

} // namespace

void bindDoors(ui::Desk& desk) {
    app::Doors& doors = app::modMain().doors;
    bindCatalogueDoors(desk, doors);
    bindReportDoors(desk, doors);
    bindScreens(desk, doors);
    doors.ExcelImport = [&desk] { desk.showModal(desk.form<exchange::frmExcelImport>()); };
    doors.CustomerStatements = [&desk](int store, int cashier) {
        auto& statements = desk.form<customers::frmStatements>();
        statements.StoreId = store;
        statements.CashierId = cashier;
        desk.showModal(statements);
    };
    doors.ImportExport = [&desk](const std::string& mode) { desk.form<exchange::frmImportExport>().ShowMode(mode); };
    doors.QuickBooksExport = [&desk](int) { desk.showModal(desk.form<exchange::frmQuickBooks>()); };
}

} // namespace merchantry::programs
