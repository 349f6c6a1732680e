#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace merchantry::app {

// What an item can belong to.
enum class ItemGroup { Department, TaxClass };

// Every operation that a screen of one subsystem offers to screens of others. A subsystem calls the door; the programs bind it to the
// screen that answers. A door that is not bound yet is empty, and its command says so in the status bar.
struct Doors {
    // frmItems: opens the item of the pair "SKU|MatrixSKU"; does nothing for any other text.
    std::function<void(const std::string& pair, bool modal)> CheckSKUs;
    // frmItemLookup: the pair picked by the user, empty when none was; mode 1 shows Add New.
    std::function<std::string(int mode)> SelectSKU;
    // frmItemList: shows the list of items, not modally, with Add New.
    std::function<void()> ShowItemList;
    // frmItemsOf: the items of one department or tax class, modal; each can be opened from there.
    std::function<void(ItemGroup group, int id, const std::string& name)> ItemsOf;
    // frmSKU and frmMatrixSKU: a code typed by the user, empty on Cancel.
    std::function<std::string()> GetSKU;
    std::function<std::string(const std::string& preset)> GetMatrixSKU;
    // modItemLookup: makes a parent and opens it; the wizard lookup by kind (1 standard, 2 parents, other matrix items).
    std::function<void()> AddNewParent;
    std::function<void(int kind)> ShowItemLookup;
    // frmItemMatrixLookupWiz, modal.
    std::function<void()> ItemMatrixLookup;
    // frmReportCriteria: the criteria of the report with this key.
    std::function<void(const std::string& reportKey)> ReportCriteria;
    // frmReport_Generate.CustomGenerate: a report file of the user's own by its full path, shown not modally.
    std::function<void(const std::string& path)> CustomReport;
    // frmReport_Generate.GenerateFromRpt: a file of the report folder ("PurchaseOrder.rpt") with its parameters from number 1 on, with or
    // without the viewer tools.
    std::function<void(const std::string& file, const std::vector<std::string>& parameters, bool tools, bool modal)> ReportWindow;
    // frmViewer: the same, modal, under a title.
    std::function<void(const std::string& file, const std::vector<std::string>& parameters, const std::string& title)> ReportViewer;
    // frmPurchaseOrder_View, modal: 0 an order, 1 its history (the number is the POID; of several joined by "," the first), 2 items that no
    // supplier serves, 3 a receipt, 4 a cancellation (the criteria are its number).
    std::function<void(std::int16_t type, const std::string& number, const std::string& criteria)> OrderReport;
    // frmItems_SalesMsg: mode 1 picks ("message|id", empty when none), any other maintains.
    std::function<std::string(int mode)> SalesMessages;
    // frmInventory_Adjust for the item with this key and name.
    std::function<void(const std::string& sku, const std::string& matrixSku, const std::string& name)> AdjustInv;
    // frmItems_Sales for the current item.
    std::function<void()> ItemSales;
    // Screens without arguments, modal, by form name ("frmDepartments").
    std::function<bool(const std::string& form)> ShowScreen;
    // Whether there is such a screen; a command without one is grey.
    std::function<bool(const std::string& form)> HasScreen;
    // frmImportExport in mode "Std" or "QSell".
    std::function<void(const std::string& mode)> ImportExport;
    // Components of the suite.
    std::function<void(int first)> QuickBooksExport;
    std::function<void()> ExcelImport;
    std::function<void(int store, int cashier)> CustomerStatements;
};

} // namespace merchantry::app
