// All items of a list into a client-side recordset, beside stepping and copying the same cells: time, and memory that stays.

#include "app/db/ado/recordset.h"
#include "bench/barestore.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"

#include <malloc.h>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 11;

std::vector<std::string> copied(const BareStore& store) {
    sqlite3_stmt* const statement = store.prepare("SELECT i.SKU, i.MatrixSKU, i.Name, d.Department FROM Item i "
                                                  "LEFT JOIN Departments d ON d.DepartmentID = i.DepartmentID "
                                                  "WHERE i.SKU NOT LIKE '$%' ORDER BY i.SKU, i.MatrixSKU");
    std::vector<std::string> cells;
    while (sqlite3_step(statement) == SQLITE_ROW)
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
            cells.emplace_back(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, i)));
        }
    sqlite3_finalize(statement);
    return cells;
}

std::size_t heap() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

double mebibytes(std::size_t bytes) {
    return static_cast<double>(bytes) / (1 << 20);
}

} // namespace

int main() {
    const ItemStore items;
    const BareStore bare(items.file());
    db::Provider provider;
    const auto connection = std::make_shared<db::Connection>(provider);
    connection->Open("Data Source=" + items.file().string());
    const auto load = [&] { return connection->Execute("sp_GetAllItems 1, 0"); };

    std::size_t ourCells = 0;
    std::size_t bareCells = 0;
    ratio(
        "100,000 items through sp_GetAllItems 1, 0", kRuns,
        [&] {
            const auto rows = load();
            ourCells = static_cast<std::size_t>(rows->RecordCount()) * static_cast<std::size_t>(rows->FieldCount());
        },
        [&] { bareCells = copied(bare).size(); });
    if (ourCells != bareCells)
        std::printf("DIFFERENT: %zu and %zu cells\n", ourCells, bareCells);

    // Everything that is cached is cached by now.
    const std::size_t before = heap();
    const auto rows = load();
    const std::size_t ours = heap() - before;
    const auto cells = copied(bare);
    const std::size_t theirs = heap() - before - ours;
    std::printf("%-58s %10.2f MB %10.2f MB   ratio %.2f\n", "memory of the same", mebibytes(ours), mebibytes(theirs),
                static_cast<double>(ours) / static_cast<double>(theirs));
    return 0;
}
