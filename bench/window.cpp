// Lists of 100,000 rows, from the call to the painted window, beside the load of their rows alone: the items, and the stock with its
// yellow serial items and 300,000 movements behind it.

#include "bench/benchdesk.h"
#include "bench/ratio.h"
#include "catalog/itemlistform.h"
#include "inventory/frmInventory.h"
#include "ui/qt/formwindow.h"

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 11;
constexpr int kMovesEach = 3;

// Alternating, with the closing outside of the watch.
template <class F> void measure(const char* what, const char* grid, ui::QtDesk& desk, PaintWatch& watch, const db::Sql& list) {
    std::vector<double> shown;
    std::vector<double> loaded;
    for (int i = 0; i < kRuns; ++i) {
        loaded.push_back(msOf([&] { app::openDirect(list, db::CursorType::Static, db::LockType::ReadOnly); }));
        shown.push_back(msOf([&] { showPainted<F>(desk, watch); }));
        if (const int rows = dynamic_cast<ui::Grid&>(*desk.form<F>().find(grid)).dataRows(); rows != kItems)
            std::printf("DIFFERENT: %d rows shown\n", rows);
        desk.enter([&] { desk.form<F>().unload(); });
        QCoreApplication::processEvents();
    }
    print(what, median(shown), median(loaded));
}

} // namespace

int main(int argc, char** argv) {
    const ItemStore items;
    items.addMovements(kMovesEach);
    BenchDesk<> bench(argc, argv, items);
    auto& desk = bench.desk;
    PaintWatch& watch = bench.watch;
    measure<catalog::frmItemLookup>("frmItemLookup on 100,000 items until painted", "grdItems", desk, watch, "sp_GetAllItems 1, 0");
    measure<inventory::frmInventory>(
        "frmInventory on 100,000 items until painted", "grdInv", desk, watch,
        "select Stock.SKU, Stock.MatrixSKU, Item.Name, Stock.Quantity, Stock.QtyCommitt, Item.SerialFlag FROM Stock INNER JOIN Item ON "
        "Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU WHERE Item.TypeID <> 4 ORDER BY Stock.SKU, Stock.MatrixSKU");
    return 0;
}
