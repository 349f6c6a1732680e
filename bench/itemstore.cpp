#include "bench/itemstore.h"

#include "app/storefile.h"

#include <random>

namespace merchantry::bench {
namespace {

constexpr int kRowsAtOnce = 500;
constexpr int kOpening = 40; // units of the first movement

std::string nameOf(int item) {
    static const char* const kWords[] = {"White", "hanging", "heart",   "T-light", "holder",  "Vintage",
                                         "union", "jack",    "bunting", "mug",     "Regency", "cakestand"};
    const auto word = [](int at) { return std::string(kWords[at % 12]) + " "; };
    return word(item) + word(item / 12) + word(item / 144) + std::to_string(item);
}

void addDepartments(db::Session& session) {
    db::NoResult none;
    session.execute("INSERT INTO Departments (Department) VALUES ('Candles & lights'), ('Kitchen'), ('Bags'), ('Bikes')", none);
}

void addItems(db::Session& session, int first, int last) {
    std::string batch = "INSERT INTO Item (SKU, MatrixSKU, Name, DepartmentID) VALUES ";
    for (int item = first; item < last; ++item)
        batch += (item > first ? ", ('" : "('") + ItemStore::sku(item) + "', '" + ItemStore::sku(item) + "A', '" + nameOf(item) + "', " +
                 std::to_string(1 + item % 5) + ")";
    db::NoResult none;
    session.execute(batch, none);
}

} // namespace

ItemStore::ItemStore(int items)
    : items_(items), folder_(std::filesystem::temp_directory_path() / ("merchantry-bench-" + std::to_string(std::random_device()()))),
      file_(folder_ / "bench.store") {
    std::filesystem::create_directories(folder_);
    app::createStoreFile(
        file_,
        [&](db::Session& session, const auto&) {
            addDepartments(session);
            session.begin();
            for (int first = 0; first < items; first += kRowsAtOnce)
                addItems(session, first, std::min(first + kRowsAtOnce, items));
            session.commit();
        },
        [](int) {});
}

void ItemStore::addMovements(int perItem) const {
    const auto open = session();
    db::NoResult none;
    const auto insert = [&](const std::string& into, const auto& rowOf) {
        for (int first = 0; first < items_; first += kRowsAtOnce) {
            std::string batch = "INSERT INTO " + into + " VALUES ";
            for (int item = first; item < std::min(first + kRowsAtOnce, items_); ++item)
                batch += (item > first ? ", ('" : "('") + sku(item) + "', '" + sku(item) + "A', " + rowOf(item) + ")";
            open->execute(batch, none);
        }
    };
    open->begin();
    insert("Stock (SKU, MatrixSKU, Quantity)", [&](int) { return std::to_string(kOpening - (perItem - 1)); });
    for (int move = 0; move < perItem; ++move)
        insert("InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea, Cost_wt, QtyAfter)", [&](int item) {
            const std::string cost = std::to_string(1 + item % 90) + ".25";
            return (move == 0 ? "'Receipt', " + std::to_string(kOpening) : std::string("'Sale', -1")) + ", " + cost + ", " + cost + ", " +
                   std::to_string(kOpening - move);
        });
    open->execute("UPDATE Item SET SerialFlag = 1 WHERE SKU LIKE '%50' OR SKU LIKE '%00'", none);
    open->commit();
}

ItemStore::~ItemStore() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string ItemStore::sku(int item) {
    return std::to_string(20'000 + item);
}

} // namespace merchantry::bench
