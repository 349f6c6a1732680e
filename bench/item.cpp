// One item of 100,000 with 300,000 movements: its screen from the call to the last of its seven pages, and the saving of 50 suppliers,
// beside the same statements on SQLite.

#include "app/modMain.h"
#include "bench/barestore.h"
#include "bench/benchdesk.h"
#include "bench/ratio.h"
#include "catalog/frmItems.h"
#include "ui/gestures.h"

#include <string>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 21;
constexpr int kSuppliers = 50;
constexpr int kItem = 500;
constexpr int kPartNo = 6;

// Stock, prices, three movements and two suppliers for every item, and all suppliers for the one that is measured.
void furnish(db::Session& session) {
    db::NoResult none;
    session.begin();
    session.execute("INSERT INTO Stock (SKU, MatrixSKU, Quantity) SELECT SKU, MatrixSKU, 8 FROM Item "
                    "INSERT INTO PriceMatrix (SKU, MatrixSKU, Tier, Quantity, Price) SELECT SKU, MatrixSKU, 1, 1, 9.75 FROM Item",
                    none);
    for (const char* after : {"10", "9", "8"})
        session.execute(std::string("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea, Cost_wt, QtyAfter) "
                                    "SELECT SKU, MatrixSKU, 'Sale', -1, 4.25, 4.25, ") +
                            after + " FROM Item",
                        none);
    for (int i = 1; i <= kSuppliers; ++i)
        session.execute("INSERT INTO Suppliers (Supplier) VALUES ('Supplier " + std::to_string(i) + "')", none);
    session.execute(
        "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, Priority, PartNo) SELECT i.SKU, i.MatrixSKU, s.SupID, 4.25, "
        "s.SupID, 'P' FROM Item i INNER JOIN Suppliers s ON s.SupID IN (1, 2) OR (s.SupID > 2 AND i.SKU = '" +
            ItemStore::sku(kItem) + "')",
        none);
    session.commit();
}

std::string key(const std::string& name = "") {
    return " WHERE " + name + "SKU = '" + ItemStore::sku(kItem) + "' AND " + name + "MatrixSKU = '" + ItemStore::sku(kItem) + "A'";
}

// What the screen asks for, in its order.
std::vector<std::string> statements() {
    const std::string prices = "SELECT SKU, MatrixSKU, Tier, Quantity, Price FROM PriceMatrix" + key() + " AND Tier = 1 ORDER BY Quantity";
    const std::string sales = "SELECT ID, SKU, MatrixSKU, DateFrom, DateTo, SalePrice FROM Sales" + key() + " ORDER BY DateTo DESC, ID";
    return {
        "SELECT Description, TypeId FROM ItemTypes ORDER BY TypeId",
        "SELECT Department, DepartmentID FROM Departments ORDER BY Department",
        "SELECT Description, TaxID FROM TaxDef ORDER BY TaxID",
        "SELECT GroupName, GroupID FROM ItemMatrixGroups ORDER BY GroupName",
        "SELECT DISTINCT SKU FROM Item WHERE (SKU <> '$DROP' AND SKU <> '$CreditPayment' AND SKU <> '$CancelLayaway' AND SKU <> "
        "'$CreditAdjustment' AND SKU <> '$CreditApplication' AND SKU <> '$PAYOUT' AND TypeID <> 4) ORDER BY SKU",
        "SELECT * FROM Item" + key(),
        "SELECT Cost_wt FROM InventoryLedger" + key() + " ORDER BY PostDate DESC LIMIT 1",
        prices,
        "SELECT s.Quantity, i.DateLastSold, i.Reorder, i.Restock FROM Stock s INNER JOIN Item i ON i.SKU = s.SKU AND i.MatrixSKU = "
        "s.MatrixSKU" +
            key("s."),
        "SELECT d.SKU, d.MatrixSKU, s.Supplier, d.SupID, d.Cost, d.MinOrder, d.PartNo, d.Priority FROM SupplierMatrixDetail d "
        "INNER JOIN Suppliers s ON s.SupID = d.SupID" +
            key("d.") + " ORDER BY d.Priority, d.SupID, d.Cost",
        "SELECT * FROM Suppliers ORDER BY Supplier",
        "SELECT *, (SELECT COUNT(*) FROM TierDefs) AS cnt FROM TierDefs ORDER BY TierID",
        prices,
        prices,
        sales,
        "SELECT SKU, MatrixSKU, SubSKU, SubMatrixSKU, Priority, Notes FROM ItemSubstitutes" + key() + " ORDER BY Priority",
        "SELECT m.SKU, m.MatrixSKU, m.CategoryID, c.CategoryName FROM ItemMatrix m INNER JOIN ItemMatrixCategories c ON c.CategoryID = "
        "m.CategoryID" +
            key("m.") + " ORDER BY c.CategoryName",
        "SELECT Message FROM SalesMessages WHERE SalesMsgID = 0",
        "SELECT * FROM ItemSplitMatrix" + key(),
    };
}

// Every row stepped to and its cells copied; the number of rows.
std::size_t runBare(const BareStore& store, const std::vector<std::string>& all) {
    std::size_t rows = 0;
    std::vector<std::string> cells;
    for (const std::string& sql : all) {
        cells.clear();
        sqlite3_stmt* const statement = store.prepare(sql);
        for (; sqlite3_step(statement) == SQLITE_ROW; ++rows)
            for (int i = 0; i < sqlite3_column_count(statement); ++i)
                if (const unsigned char* text = sqlite3_column_text(statement, i))
                    cells.emplace_back(reinterpret_cast<const char*>(text), static_cast<std::size_t>(sqlite3_column_bytes(statement, i)));
        sqlite3_finalize(statement);
    }
    return rows;
}

void open(ui::QtDesk& desk) {
    desk.enter([&] { app::modMain().doors.CheckSKUs(ItemStore::sku(kItem) + "|" + ItemStore::sku(kItem) + "A", false); });
}

void leave(ui::QtDesk& desk) {
    desk.enter([&] { ui::gestures::press(dynamic_cast<ui::Button&>(*desk.form<catalog::frmItems>().find("cmdExit(1)"))); });
}

ui::Grid& suppliersOf(ui::QtDesk& desk) {
    return dynamic_cast<ui::Grid&>(*desk.form<catalog::frmItems>().find("grdSuppliers"));
}

void turnToSuppliers(ui::QtDesk& desk) {
    desk.enter([&] { dynamic_cast<ui::TabSet&>(*desk.form<catalog::frmItems>().find("tabItems")).setCurrent(1); });
}

void measureOpening(ui::QtDesk& desk, const BareStore& bare) {
    std::vector<double> ours;
    std::vector<double> theirs;
    std::size_t rows = 0;
    for (int i = 0; i < kRuns; ++i) {
        theirs.push_back(msOf([&] { rows = runBare(bare, statements()); }));
        ours.push_back(msOf([&] { open(desk); }));
        if (suppliersOf(desk).dataRows() != kSuppliers || rows < kItems)
            std::printf("DIFFERENT: %d suppliers, %zu rows\n", suppliersOf(desk).dataRows(), rows);
        turnToSuppliers(desk);
        leave(desk);
        QCoreApplication::processEvents();
    }
    print("frmItems until its seven pages are filled", median(ours), median(theirs));
}

// The number of rows written.
int saveBare(const BareStore& store, const std::string& part) {
    int written = 0;
    for (int supplier = 1; supplier <= kSuppliers; ++supplier) {
        sqlite3_stmt* const statement =
            store.prepare("UPDATE SupplierMatrixDetail SET SupID = ?1, Cost = ?2, MinOrder = 1, Priority = ?1, PartNo "
                          "= ?3" +
                          key() + " AND SupID = ?1 AND Cost = ?2");
        sqlite3_bind_int(statement, 1, supplier);
        sqlite3_bind_int64(statement, 2, 42'500);
        sqlite3_bind_text(statement, 3, part.c_str(), -1, SQLITE_STATIC);
        sqlite3_step(statement);
        written += sqlite3_changes(sqlite3_db_handle(statement));
        sqlite3_finalize(statement);
    }
    return written;
}

void measureSaving(ui::QtDesk& desk, const BareStore& bare) {
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int i = 0; i < kRuns; ++i) {
        open(desk);
        turnToSuppliers(desk);
        desk.enter([&] {
            for (int row = 1; row <= kSuppliers; ++row)
                ui::gestures::edit(suppliersOf(desk), row, kPartNo, "M" + std::to_string(i));
        });
        QCoreApplication::processEvents();
        ours.push_back(msOf([&] { leave(desk); }));
        QCoreApplication::processEvents();
        if (desk.existing<catalog::frmItems>() != nullptr)
            std::printf("DIFFERENT: the item was not left\n");
        int written = 0;
        theirs.push_back(msOf([&] { written = saveBare(bare, "T" + std::to_string(i)); }));
        if (written != kSuppliers)
            std::printf("DIFFERENT: %d rows written\n", written);
    }
    print("50 suppliers saved by Exit", median(ours), median(theirs));
}

} // namespace

int main(int argc, char** argv) {
    const ItemStore items;
    furnish(*items.session());
    BenchDesk<> bench(argc, argv, items);
    auto& desk = bench.desk;
    app::modMain().doors.ShowItemList = {}; // leaving an item leads back here
    const BareStore bare(items.file());
    measureOpening(desk, bare);
    measureSaving(desk, bare);
    return 0;
}
