#include "app/storefigures.h"

#include "app/db/embedded/connection.h"
#include "app/db/embedded/filehead.h"
#include "app/db/embedded/text_order.h"
#include "app/db/schema/schema.h"
#include "base/numbers.h"

#include <exception>
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
        {"InventoryLedger", {"Quantity in the ledger", "Cost in the ledger"}, "SELECT SUM(Qty), SUM(Qty * Cost_ea) FROM InventoryLedger"},
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

// Every page of every table and index counts its entries: an index has as many as its table has rows, or pages of one of them are not what
// they were.
void requireWholeIndexes(Connection& connection, const StoreFigures& figures) {
    const Statement3 select(connection.handle(),
                            "SELECT m.name, m.tbl_name, d.entries, d.rows, m.type FROM (SELECT name, SUM(ncell) AS entries, SUM(CASE WHEN "
                            "pagetype = 'leaf' THEN ncell ELSE 0 END) AS rows FROM dbstat WHERE pagetype <> 'overflow' GROUP BY name) d "
                            "INNER JOIN sqlite_master m ON m.name = d.name WHERE m.type = 'table' OR m.sql NOT LIKE '% WHERE %'");
    const auto text = [&](int column) { return std::string(reinterpret_cast<const char*>(sqlite3_column_text(select.get(), column))); };
    while (connection.step(select.get())) {
        const bool isTable = text(4) == "table";
        const std::int64_t found = sqlite3_column_int64(select.get(), isTable ? 3 : 2);
        const auto table = figures.rows.find(text(1));
        if (table != figures.rows.end() && found != table->second)
            throw db::DbError(db::DbError::Category::Storage, 824,
                              "The " + std::string(isTable ? "table " : "index ") + text(0) + " is damaged: it has " +
                                  withThousands(found) + " entries for " + withThousands(table->second) + " rows.");
    }
}

StoreFigures readFigures(Connection& connection) {
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

// Lets somebody look up now and then while SQLite is at work, and stop it. What is thrown there must not pass through SQLite.
class Asked {
public:
    Asked(Connection& connection, const GoOn& goOn) : connection_(connection), goOn_(goOn) {
        constexpr int kStepsBetween = 200'000; // some milliseconds
        if (goOn_)
            sqlite3_progress_handler(connection_.handle(), kStepsBetween, &Asked::ask, this);
    }
    ~Asked() { sqlite3_progress_handler(connection_.handle(), 0, nullptr, nullptr); }
    Asked(const Asked&) = delete;
    Asked& operator=(const Asked&) = delete;

    template <class Work> auto during(Work&& work) {
        try {
            return work();
        } catch (const db::DbError&) {
            if (thrown_)
                std::rethrow_exception(thrown_);
            throw;
        }
    }

private:
    static int ask(void* self) {
        auto& asked = *static_cast<Asked*>(self);
        try {
            return asked.goOn_() ? 0 : 1;
        } catch (...) {
            asked.thrown_ = std::current_exception();
            return 1;
        }
    }

    Connection& connection_;
    const GoOn& goOn_;
    std::exception_ptr thrown_;
};

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

StoreFigures figuresOf(Connection& connection, const GoOn& goOn) {
    return Asked(connection, goOn).during([&] { return readFigures(connection); });
}

StoreFigures figuresOf(const std::filesystem::path& store) {
    db::embedded::requireStoreFile(store);
    Connection connection(store, true);
    return figuresOf(connection);
}

StoreFigures figuresOfOwn(const std::filesystem::path& store, const GoOn& goOn) {
    Connection connection(store, false);
    connection.run("PRAGMA mmap_size=" + std::to_string(std::filesystem::file_size(store)));
    return Asked(connection, goOn).during([&] {
        StoreFigures figures = readFigures(connection);
        requireWholeIndexes(connection, figures);
        return figures;
    });
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
