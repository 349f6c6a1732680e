#include "demo/goods.h"

#include "base/currency.h"
#include "base/text.h"
#include "tools/registersim/bulkinsert.h"

#include <algorithm>

namespace merchantry::demo {
namespace {

using registersim::BulkInsert;
using registersim::query;
using registersim::Row;

constexpr const char* kHolidayMessage = "Ask whether it is a gift: we wrap for free";
constexpr const char* kBikeMessage = "Offer a helmet, a lock and the free first service";

Currency part(Currency amount, int percent) {
    const std::int64_t cents = (amount.units() * percent / 100 + 50) / 100;
    return Currency::fromUnits(std::max<std::int64_t>(cents, 1) * 100);
}

Value orNull(const std::string& text) {
    return text.empty() ? Value() : Value(text);
}

} // namespace

Ids idsFrom(db::Session& session, std::string_view select) {
    Ids ids;
    for (const Row& row : query(session, select))
        ids[row[1].as<std::string>()] = static_cast<int>(row[0].toInteger());
    return ids;
}

Goods::Goods(db::Session& session, const std::filesystem::path& dataFolder, const Ids& taxes, const Ids& tiers, Date today)
    : session_(session), folder_(dataFolder), taxes_(taxes), tiers_(tiers), today_(today), items_(dataFolder / "items.tsv") {}

void Goods::fill() {
    const Tsv departments(folder_ / "departments.tsv");
    BulkInsert rows(session_, "Departments", "Department", "t");
    for (std::size_t i = 0; i < departments.size(); ++i)
        rows.add({departments.at(i, "department")});
    rows.finish();
    departments_ = idsFrom(session_, "SELECT DepartmentID, Department FROM Departments");
    BulkInsert messages(session_, "SalesMessages", "Message", "t");
    for (const char* message : {kHolidayMessage, kBikeMessage, "Returns within 30 days with the receipt"})
        messages.add({message});
    messages.finish();
    messages_ = idsFrom(session_, "SELECT SalesMsgID, Message FROM SalesMessages");
    addItems();
    addPseudoItems();
    addStock();
    addPrices();
    addFamilies();
    addPacks();
    addSubstitutes();
    addSuppliers();
    addSupplies();
    addSaleEvents();
}

int Goods::taxOf(const std::string& department) const {
    return taxes_.at(department == "Cycle Clothing" ? "Clothing" : department == "Stationery & Books" ? "Reduced" : "Sales Tax");
}

int Goods::messageOf(const std::string& department) const {
    return department == "Christmas" ? messages_.at(kHolidayMessage) : department == "Bikes" ? messages_.at(kBikeMessage) : 0;
}

void Goods::addItems() {
    BulkInsert rows(session_, "Item",
                    "SKU, MatrixSKU, Name, StoreLocation, SalesMsgID, DepartmentID, TaxID, TypeID, Reorder, Restock, BarcodeID, "
                    "MatrixFlag, SerialFlag, Active",
                    "ttttiiiiiitbbb");
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const std::string& department = items_.at(i, "department");
        const int type = items_.number(i, "type");
        const int departmentId = departments_.at(department);
        const std::string location = "Aisle " + std::to_string(departmentId) + ", shelf " + std::to_string(i % 8 + 1);
        const bool slow = type == 6 && items_.number(i, "popularity") == 1;
        rows.add({items_.at(i, "sku"), items_.at(i, "matrixsku"), items_.at(i, "name"), location, messageOf(department), departmentId,
                  taxOf(department), type, items_.number(i, "reorderqty"), items_.number(i, "reorderat"), orNull(items_.at(i, "barcode")),
                  type == 2 || type == 4, items_.number(i, "serial") == 1, !slow});
    }
    rows.finish();
}

// What the registers book that is not goods.
void Goods::addPseudoItems() {
    BulkInsert rows(session_, "Item", "SKU, MatrixSKU, Name", "ttt");
    for (const auto& [sku, name] :
         {std::pair("$DROP", "Cash drop"), std::pair("$Payout", "Payout"), std::pair("$CreditPayment", "Payment on account"),
          std::pair("$CancelLayaway", "Cancelled layaway"), std::pair("$CreditAdjustment", "Account adjustment"),
          std::pair("$CreditApplication", "Credit applied")})
        rows.add({sku, sku, name});
    rows.finish();
}

void Goods::addStock() {
    BulkInsert rows(session_, "Stock", "SKU, MatrixSKU, Quantity", "tti");
    for (std::size_t i = 0; i < items_.size(); ++i)
        rows.add({items_.at(i, "sku"), items_.at(i, "matrixsku"), 0});
    rows.finish();
}

void Goods::addPrices() {
    const int trade = tiers_.at("Trade");
    const int wholesale = tiers_.at("Wholesale");
    BulkInsert rows(session_, "PriceMatrix", "SKU, MatrixSKU, Tier, Quantity, Price", "ttifm");
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const std::string& sku = items_.at(i, "sku");
        const std::string& matrix = items_.at(i, "matrixsku");
        const Currency price = Currency::fromText(items_.at(i, "price"));
        rows.add({sku, matrix, 1, 1, price});
        const std::vector<std::string> lower = split(items_.at(i, "break"), ":");
        if (lower.size() == 2)
            rows.add({sku, matrix, 1, std::stoi(lower[0]), Currency::fromText(lower[1])});
        if (items_.number(i, "type") == 4)
            continue;
        rows.add({sku, matrix, trade, 1, part(price, 92)});
        rows.add({sku, matrix, trade, 12, part(price, 86)});
        rows.add({sku, matrix, wholesale, 1, part(price, 84)});
        rows.add({sku, matrix, wholesale, 24, part(price, 78)});
    }
    rows.finish();
}

// Sizes and colours as groups of categories, and what every member of a family has of them.
void Goods::addFamilies() {
    for (const auto& [group, column] : {std::pair("Color", "color"), std::pair("Size", "size")}) {
        registersim::run(session_, "INSERT INTO ItemMatrixGroups (GroupName) VALUES (@p1)", "t", {group});
        const Value groupId = session_.lastIdentity();
        std::map<std::string, int> categories;
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (items_.number(i, "type") == 2 && !items_.at(i, column).empty())
                categories[items_.at(i, column)] = 0;
        for (auto& [name, id] : categories) {
            registersim::run(session_, "INSERT INTO ItemMatrixCategories (CategoryName, GroupID) VALUES (@p1, @p2)", "ti", {name, groupId});
            id = static_cast<int>(session_.lastIdentity().toInteger());
        }
        BulkInsert rows(session_, "ItemMatrix", "SKU, MatrixSKU, CategoryID", "tti");
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (items_.number(i, "type") == 2 && !items_.at(i, column).empty())
                rows.add({items_.at(i, "sku"), items_.at(i, "matrixsku"), categories.at(items_.at(i, column))});
        rows.finish();
    }
}

void Goods::addPacks() {
    const Tsv packs(folder_ / "splits.tsv");
    BulkInsert rows(session_, "ItemSplitMatrix", "SKU, MatrixSKU, SplitParentSKU, SplitParentMatrixSKU, SplitQuantity", "ttttf");
    for (std::size_t i = 0; i < packs.size(); ++i)
        rows.add({packs.at(i, "sku"), packs.at(i, "matrixsku"), packs.at(i, "parentsku"), packs.at(i, "parentmatrixsku"),
                  packs.number(i, "quantity")});
    rows.finish();
}

// The same article in another colour or design: their codes differ in the last letter only.
void Goods::addSubstitutes() {
    BulkInsert rows(session_, "ItemSubstitutes", "SKU, MatrixSKU, SubSKU, SubMatrixSKU, Priority, Notes", "ttttit");
    for (std::size_t i = 0; i + 1 < items_.size(); ++i) {
        const std::string& sku = items_.at(i, "sku");
        const std::string& next = items_.at(i + 1, "sku");
        const bool related = sku.size() == 6 && next.size() == 6 && std::isdigit(static_cast<unsigned char>(sku.front())) != 0 &&
                             sku.compare(0, 5, next, 0, 5) == 0 && sku != next;
        if (related)
            rows.add({sku, sku, next, next, 1, "Another design"});
    }
    rows.finish();
}

void Goods::addSuppliers() {
    const Tsv suppliers(folder_ / "suppliers.tsv");
    BulkInsert rows(session_, "Suppliers", "Supplier, Address1, Address2, City, State, Zip, Phone, Email, AccountNumber, SalesRep, Website",
                    "ttttttttttt");
    for (std::size_t i = 0; i < suppliers.size(); ++i) {
        Row row;
        for (const char* column :
             {"supplier", "address", "address2", "city", "state", "zip", "phone", "email", "account", "salesrep", "website"})
            row.emplace_back(suppliers.at(i, column));
        rows.add(std::move(row));
    }
    rows.finish();
    suppliers_ = idsFrom(session_, "SELECT SupID, Supplier FROM Suppliers");
}

void Goods::addSupplies() {
    const Tsv supplies(folder_ / "itemsuppliers.tsv");
    BulkInsert rows(session_, "SupplierMatrixDetail", "SKU, MatrixSKU, SupID, Cost, MinOrder, PartNo, Priority", "ttimiti");
    for (std::size_t i = 0; i < supplies.size(); ++i)
        rows.add({supplies.at(i, "sku"), supplies.at(i, "matrixsku"), suppliers_.at(supplies.at(i, "supplier")),
                  Currency::fromText(supplies.at(i, "cost")), supplies.number(i, "minorder"), supplies.at(i, "partno"),
                  supplies.number(i, "priority")});
    rows.finish();
}

// A sale in the past for every fortieth item, and one that runs today for every sixtieth.
void Goods::addSaleEvents() {
    BulkInsert rows(session_, "Sales", "SKU, MatrixSKU, DateFrom, DateTo, SalePrice", "ttddm");
    std::vector<std::size_t> running;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (items_.number(i, "type") == 4)
            continue;
        const Currency price = Currency::fromText(items_.at(i, "price"));
        if (i % 40 == 0)
            rows.add({items_.at(i, "sku"), items_.at(i, "matrixsku"), today_.plusDays(-200), today_.plusDays(-186), part(price, 75)});
        if (i % 60 == 30) {
            rows.add({items_.at(i, "sku"), items_.at(i, "matrixsku"), today_.plusDays(-4), today_.plusDays(10), part(price, 80)});
            running.push_back(i);
        }
    }
    rows.finish();
    for (const std::size_t i : running)
        registersim::run(session_, "UPDATE Item SET SaleFlag = 1 WHERE SKU = @p1 AND MatrixSKU = @p2", "tt",
                         {items_.at(i, "sku"), items_.at(i, "matrixsku")});
}

} // namespace merchantry::demo
