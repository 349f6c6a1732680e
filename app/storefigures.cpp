#include "app/storefigures.h"

#include "app/db/embedded/connection.h"
#include "app/db/embedded/filehead.h"
#include "app/db/embedded/text_order.h"
#include "app/db/schema/schema.h"
#include "base/numbers.h"

#include <optional>
#include <vector>

namespace merchantry::app {
namespace {

using db::embedded::Connection;
using db::embedded::Statement3;

constexpr const char* kStockValue = "Value of the stock";

// What is summed of a table, in the engine's own SQL: amounts and quantities are whole numbers there, so that every sum is exact, and one
// that would not fit fails. Each table is read once. A store of an earlier version leaves out what it has not got.
struct Sums {
    const char* table;
    std::vector<const char*> what;
    const char* select;
};

const std::vector<Sums>& allSums() {
    static const std::vector<Sums> sums{
        {"InventoryLedger",
         {"Quantity in the ledger", "Cost in the ledger", "Balances in the ledger"},
         "SELECT SUM(Qty), SUM(Qty * Cost_ea), SUM(QtyAfter) FROM InventoryLedger"},
        {"Stock", {"Stock", "Committed stock"}, "SELECT SUM(Quantity), SUM(QtyCommitt) FROM Stock"},
        {"Stock",
         {kStockValue},
         "SELECT SUM(s.Quantity * (SELECT l.Cost_wt FROM InventoryLedger l WHERE l.SKU = s.SKU AND l.MatrixSKU = s.MatrixSKU ORDER BY "
         "l.LedgerID DESC LIMIT 1)) FROM Stock s CROSS JOIN Item i ON i.SKU = s.SKU AND i.MatrixSKU = s.MatrixSKU WHERE i.TypeID <> 4"},
        {"Customer", {"Balances of customers", "Sales to customers"}, "SELECT SUM(Balance), SUM(TotalSales) FROM Customer"},
        {"CreditTransaction",
         {"Postings to accounts", "Open amounts of accounts"},
         "SELECT SUM(Total), SUM(OutstandingBalance) FROM CreditTransaction"},
        {"Transaction", {"Sales", "Sales tax"}, "SELECT SUM(Total), SUM(TaxTotal) FROM \"Transaction\""},
        {"TransactionEntry",
         {"Pieces sold", "Prices of what was sold"},
         "SELECT SUM(Quantity), SUM(Quantity * FullPrice - Discount) FROM TransactionEntry"},
        {"TransactionTender", {"Payments"}, "SELECT SUM(Amount) FROM TransactionTender"},
        {"PurchaseOrderItem", {"Pieces ordered"}, "SELECT SUM(Qty) FROM PurchaseOrderItem"},
    };
    return sums;
}

// Its dates in milliseconds; the newest rows stand at the end of their tables.
constexpr const char* kNewest[] = {
    "SELECT Time FROM \"Transaction\" ORDER BY rowid DESC LIMIT 1",
    "SELECT PostDate FROM InventoryLedger ORDER BY rowid DESC LIMIT 1",
    "SELECT Time FROM CreditTransaction ORDER BY rowid DESC LIMIT 1",
};

// A statement that this store's tables allow; nothing when they do not, which those of this program's own version always do.
std::optional<Statement3> prepared(Connection& connection, const char* select, int version) {
    try {
        return Statement3(connection.handle(), select);
    } catch (const db::DbError&) {
        if (version == db::kSchemaVersion)
            throw;
        return std::nullopt;
    }
}

std::vector<std::string> tablesOf(Connection& connection) {
    std::vector<std::string> tables;
    const Statement3 select(connection.handle(), "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'");
    while (connection.step(select.get()))
        tables.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(select.get(), 0)));
    return tables;
}

std::int64_t numberOf(Connection& connection, const std::string& select) {
    return connection.single(select).integer;
}

int versionOf(Connection& connection) {
    const auto statement = prepared(connection, "SELECT MAX(Version) FROM SchemaVersion", 0);
    return statement && connection.step(statement->get()) ? sqlite3_column_int(statement->get(), 0) : 0;
}

void addSums(Connection& connection, const Sums& sums, StoreFigures& figures) {
    const auto statement = prepared(connection, sums.select, figures.version);
    if (!statement || !connection.step(statement->get()))
        return;
    for (std::size_t i = 0; i < sums.what.size(); ++i)
        figures.sums[sums.what[i]] = sqlite3_column_int64(statement->get(), static_cast<int>(i));
}

Date newestOf(Connection& connection, int version) {
    std::int64_t newest = 0;
    for (const char* select : kNewest)
        if (const auto statement = prepared(connection, select, version); statement && connection.step(statement->get()))
            newest = std::max<std::int64_t>(newest, sqlite3_column_int64(statement->get(), 0));
    return Date::fromMs(newest);
}

std::string shown(std::int64_t number) {
    return withThousands(number);
}

// Of figures by name: what the copy lacks, has more, or has otherwise.
std::string differenceOf(const std::map<std::string, std::int64_t>& original, const std::map<std::string, std::int64_t>& copy,
                         const char* unit) {
    for (const auto& [what, number] : original) {
        const auto found = copy.find(what);
        if (found == copy.end())
            return what + " is missing in the copy.";
        if (found->second != number)
            return what + ": the store had " + shown(number) + unit + ", the copy has " + shown(found->second) + unit + ".";
    }
    for (const auto& [what, number] : copy)
        if (!original.contains(what))
            return what + " is in the copy, but was not in the store.";
    return "";
}

} // namespace

std::int64_t StoreFigures::rowCount() const {
    std::int64_t count = 0;
    for (const auto& [table, number] : rows)
        count += number;
    return count;
}

StoreFigures figuresOf(Connection& connection) {
    db::embedded::registerCollations(connection.handle(), db::embedded::textOrderOf(connection.handle()));
    StoreFigures figures;
    for (const std::string& table : tablesOf(connection))
        figures.rows[table] = numberOf(connection, "SELECT COUNT(*) FROM \"" + table + "\"");
    figures.version = versionOf(connection);
    for (const Sums& sums : allSums())
        if (figures.rows.contains(sums.table))
            addSums(connection, sums, figures);
    figures.stockValue = Currency::fromUnits(figures.sums[kStockValue]);
    figures.newest = newestOf(connection, figures.version);
    return figures;
}

StoreFigures figuresOf(const std::filesystem::path& store) {
    db::embedded::requireStoreFile(store);
    Connection connection(store, true);
    return figuresOf(connection);
}

StoreMark markOf(const std::filesystem::path& store) {
    db::embedded::requireStoreFile(store);
    db::embedded::putForeignLogAside(store);
    Connection connection(store, true);
    StoreMark mark;
    mark.version = versionOf(connection);
    mark.newest = newestOf(connection, mark.version);
    return mark;
}

std::string differenceOf(const StoreFigures& original, const StoreFigures& copy) {
    if (original.version != copy.version)
        return "The store is of version " + std::to_string(original.version) + ", the copy of " + std::to_string(copy.version) + ".";
    if (const std::string rows = differenceOf(original.rows, copy.rows, " rows"); !rows.empty())
        return rows;
    return differenceOf(original.sums, copy.sums, "");
}

} // namespace merchantry::app
