#include "exchange/flat/packages.h"

#include <algorithm>

namespace merchantry::exchange {
namespace {

// The columns of an export with its mask of quotes, a digit each, in their order.
std::vector<FlatColumn> masked(std::initializer_list<const char*> names, std::string_view mask) {
    std::vector<FlatColumn> columns;
    for (const char* name : names)
        columns.push_back({name, name, mask.at(columns.size()) == '1'});
    return columns;
}

std::vector<FlatColumn> sameNamed(std::initializer_list<const char*> names) {
    std::vector<FlatColumn> columns;
    for (const char* name : names)
        columns.push_back({name, name});
    return columns;
}

const std::vector<FlatPackage> kPackages{
    {.name = "CustomerExport",
     .table = "Customer",
     .select = "select [AccountNumber],[Address2],[AssessFinanceCharges],[Company],[Country],[LastUpdated],[State],[StoreID],[ID],"
               "[ChargeAccount],[LayawayCustomer],[FirstName],[LastName],[Address],[City],[Zip],[PhoneNumber],[FaxNumber],[TaxExempt],"
               "[Email],[Employee],[TierID],[AccountOpened],[TotalSales],[LastPurchaseDate],[Notes] from [Tillmark2k].[dbo].[Customer]",
     .columns =
         masked({"FirstName", "LastName", "Company", "Address", "Address2", "City", "State", "Zip", "Email", "PhoneNumber", "FaxNumber"},
                "11111111111"),
     .heading = true},
    {.name = "dts_StockExport",
     .table = "Item",
     .select = "select [StoreLocation],[Name],[FoodStampFlag],[SalesMsgID],[DepartmentID],[SKU],[MatrixSKU],[SaleFlag],[TaxID],[TypeID],"
               "[Reorder],[Restock],[TagAlongSKU],[TagAlongMatrixSKU],[TagAlongQty],[BarcodeID],[DateLastSold],[MatrixFlag],[Notes] "
               "from [Tillmark2k].[dbo].[Item]",
     .columns = masked({"StoreLocation", "Name", "FoodStampFlag", "SalesMsgID", "Notes", "DepartmentID", "SKU", "MatrixSKU", "SaleFlag",
                        "TaxID", "TypeID", "Reorder", "Restock", "TagAlongSKU", "TagAlongMatrixSKU", "TagAlongQty", "BarcodeID",
                        "DateLastSold", "MatrixFlag"},
                       "1100101100000110000"),
     .heading = true},
    {.name = "SupplierExport",
     .table = "Suppliers",
     .select = "select [SupID],[Supplier],[Address1],[Address2],[Address3],[City],[State],[Zip],[Phone],[Fax],[Email] from "
               "[Tillmark2k].[dbo].[Suppliers]",
     .columns = masked({"Supplier", "Address1", "Address2", "Address3", "City", "State", "Zip", "Phone", "Fax", "Email"}, "1111111111"),
     .heading = false},
    {.name = "ImportCust",
     .table = "Customer",
     .select = nullptr,
     .columns = sameNamed(
         {"Address2", "Company", "State", "FirstName", "LastName", "Address", "City", "Zip", "PhoneNumber", "FaxNumber", "Email"}),
     .heading = true},
    {.name = "dts_StockImport",
     .table = "Stock",
     .select = nullptr,
     .columns = {{"SKU", "SKU"}, {"MatrixSKU", "MatrixSKU"}, {"Qty", "Quantity"}},
     .heading = true},
    {.name = "dts_TillmarkItemImport",
     .table = "Item",
     .select = nullptr,
     .columns = sameNamed({"Name", "Notes", "SKU", "MatrixSKU", "Reorder"}),
     .heading = true},
    {.name = "ImportSupp",
     .table = "Suppliers",
     .select = nullptr,
     .columns = {{"Col001", "Supplier"},
                 {"Col002", "Address1"},
                 {"Col003", "Address2"},
                 {"Col004", "Address3"},
                 {"Col005", "City"},
                 {"Col006", "State"},
                 {"Col007", "Zip"},
                 {"Col008", "Phone"},
                 {"Col009", "Fax"},
                 {"Col010", "Email"}},
     .heading = false},
};

} // namespace

const FlatPackage& flatPackage(std::string_view name) {
    return *std::find_if(kPackages.begin(), kPackages.end(), [&](const FlatPackage& package) { return name == package.name; });
}

} // namespace merchantry::exchange
