// The wizard lookups on 100,000 items with 300,000 ledger rows and 2,000 matrix families: InitLookupGrid for every entry of its filter
// list, beside stepping the same select and copying its cells; a search in a loaded grid, beside a bare scan of the same cells; and the
// change of many prices, beside the bare statements in one transaction.

#include "app/modMain.h"
#include "bench/barestore.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"
#include "catalog/gridsearch.h"
#include "catalog/modItemLookup.h"
#include "catalog/pricechange.h"
#include "ui/form.h"
#include "ui/play/playdesk.h"

#include <cctype>
#include <sstream>
#include <string>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kLoads = 11;
constexpr int kSearches = 25;
constexpr int kPrices = 20'000;
constexpr int kChanges = 3;

class GridForm : public ui::Form {
public:
    explicit GridForm(ui::Desk& desk) : Form(desk, "GridForm", "") {}
    ui::Grid grdItems{*this, "grdItems"};
};

// The first 22,000 items become 2,000 parents with ten children each, some others split, serialized and serial items; every item gets three
// movements.
void furnish(db::Session& session) {
    db::NoResult none;
    for (const char* batch : {"UPDATE Item SET TypeID = 2, SKU = CAST(CAST(SKU AS int) - (CAST(SKU AS int) - 20000) % 11 AS varchar(100)) "
                              "WHERE CAST(SKU AS int) < 42000 AND (CAST(SKU AS int) - 20000) % 11 <> 0",
                              "UPDATE Item SET TypeID = 4, MatrixSKU = SKU WHERE TypeID = 6 AND CAST(SKU AS int) < 42000",
                              "UPDATE Item SET TypeID = 3 WHERE TypeID = 6 AND CAST(SKU AS int) % 20 = 0",
                              "UPDATE Item SET TypeID = 5, SerialFlag = 1 WHERE TypeID = 6 AND CAST(SKU AS int) % 20 = 1"})
        session.execute(batch, none);
    session.begin();
    for (int i = 0; i < 3; ++i)
        session.execute("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea, Cost_wt, QtyAfter) "
                        "SELECT SKU, MatrixSKU, 'Received', 1, 2, 2, 1 FROM Item",
                        none);
    session.execute("INSERT INTO PriceMatrix (SKU, MatrixSKU, Tier, Quantity, Price) SELECT SKU, MatrixSKU, 1, 1, 2 FROM Item", none);
    session.commit();
}

std::vector<std::string> copied(const BareStore& store, const std::string& select) {
    sqlite3_stmt* const statement = store.prepare(select);
    std::vector<std::string> cells;
    while (sqlite3_step(statement) == SQLITE_ROW)
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
            cells.emplace_back(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, i)));
        }
    sqlite3_finalize(statement);
    return cells;
}

void loads(ui::Grid& grid, const BareStore& bare) {
    struct Entry {
        const char* text;
        int position;
        const char* condition;
    };
    for (const Entry& entry : {Entry{"Show All", 0, ""},
                               {"Serial", 1, " AND SerialFlag = 1"},
                               {"Matrix", 2, " AND TypeID = 2"},
                               {"Split", 3, " AND TypeID = 3"},
                               {"Parent", 4, " AND TypeID = 4"},
                               {"Serialized", 5, " AND TypeID = 5"},
                               {"Standard", 6, " AND TypeID = 6"}}) {
        const std::string select = "SELECT SKU, MatrixSKU, Name FROM Item WHERE SKU <> '$DROP' AND SKU <> '$Payout'" +
                                   std::string(entry.condition) + " ORDER BY SKU, MatrixSKU";
        db::RecordsetPtr rows;
        std::size_t theirs = 0;
        ratio((std::string("InitLookupGrid, \"") + entry.text + "\"").c_str(), kLoads,
              [&] { catalog::InitLookupGrid(rows, entry.text, entry.position, grid, "", ""); },
              [&] { theirs = copied(bare, select).size(); });
        if (static_cast<std::size_t>(grid.dataRows()) * 3 != theirs)
            std::printf("DIFFERENT: %d rows and %zu cells\n", grid.dataRows(), theirs);
        grid.bind(nullptr);
    }
}

bool begins(std::string_view text, std::string_view wanted) {
    if (text.size() < wanted.size())
        return false;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(text[i])) != std::tolower(static_cast<unsigned char>(wanted[i])))
            return false;
    return true;
}

// The row, from 1, of which a cell begins with the text, column by column; 0 for none.
int scanned(const std::vector<std::string>& cells, const std::string& wanted) {
    for (std::size_t column = 0; column < 3; ++column)
        for (std::size_t row = 0; row * 3 < cells.size(); ++row)
            if (begins(cells[row * 3 + column], wanted))
                return static_cast<int>(row) + 1;
    return 0;
}

void searches(ui::Grid& grid) {
    db::RecordsetPtr rows;
    catalog::InitLookupGrid(rows, "Show All", 0, grid, "", "");
    std::vector<std::string> cells;
    for (int row = 0; row < rows->rowCount(); ++row)
        for (int column = 0; column < 3; ++column)
            cells.emplace_back(rows->cellText(row, column));
    for (const char* wanted : {"119999", "119999a", "white vintage union", "not there"}) {
        int theirs = 0;
        bool found = false;
        ratio((std::string("the search for \"") + wanted + "\" in the grid").c_str(), kSearches,
              [&] { found = catalog::SelectInGrid(grid, wanted); }, [&] { theirs = scanned(cells, wanted); });
        if (found != (theirs > 0) || (found && grid.row() != theirs))
            std::printf("DIFFERENT: row %d and row %d\n", grid.row(), theirs);
    }
    grid.bind(nullptr);
}

// The same writes as changePrices, each statement prepared once.
int changedBare(const BareStore& store, const std::vector<catalog::PriceStep>& steps) {
    const auto run = [&](const char* sql) {
        sqlite3_stmt* const statement = store.prepare(sql);
        sqlite3_step(statement);
        sqlite3_finalize(statement);
    };
    run("BEGIN IMMEDIATE");
    run("INSERT INTO PriceChange (MadeAt, Words) VALUES (0, 'bare')");
    sqlite3_stmt* const update =
        store.prepare("UPDATE PriceMatrix SET Price = ?5 WHERE SKU = ?1 AND MatrixSKU = ?2 AND Tier = 1 AND Quantity = 1 AND Price = ?4");
    sqlite3_stmt* const keep =
        store.prepare("INSERT INTO PriceChangeItem (PriceChangeID, SKU, MatrixSKU, Tier, Quantity, OldPrice, NewPrice) "
                      "VALUES ((SELECT MAX(PriceChangeID) FROM PriceChange), ?1, ?2, 1, 1, ?4, ?5)");
    int written = 0;
    for (const catalog::PriceStep& step : steps)
        for (sqlite3_stmt* const statement : {update, keep}) {
            sqlite3_bind_text(statement, 1, step.sku.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_text(statement, 2, step.matrixSku.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_int64(statement, 4, step.from.units());
            sqlite3_bind_int64(statement, 5, step.to.units());
            sqlite3_step(statement);
            sqlite3_reset(statement);
            written += statement == update ? sqlite3_changes(sqlite3_db_handle(statement)) : 0;
        }
    sqlite3_finalize(update);
    sqlite3_finalize(keep);
    run("COMMIT");
    return written;
}

void changes(const BareStore& bare) {
    std::vector<catalog::PriceStep> up;
    const auto items = app::openDirect("SELECT SKU, MatrixSKU FROM Item");
    for (int row = 0; row < kPrices; ++row)
        up.push_back(
            {items->cell(row, 0).toText(), items->cell(row, 1).toText(), 1, 1, Currency::fromInteger(2), Currency::fromInteger(3)});
    std::vector<catalog::PriceStep> down = up;
    for (catalog::PriceStep& step : down)
        std::swap(step.from, step.to);
    int ours = 0;
    int theirs = 0;
    ratio(
        "20,000 prices changed together", kChanges,
        [&] { ours = catalog::changePrices(app::modMain().Conn, "ours", down, [](int) { return true; }).written; },
        [&] { theirs = changedBare(bare, up); });
    if (ours != kPrices || theirs != kPrices)
        std::printf("DIFFERENT: %d and %d prices\n", ours, theirs);
}

} // namespace

int main() {
    const ItemStore items;
    furnish(*items.session());
    const BareStore bare(items.file());
    std::ostringstream nowhere;
    ui::play::Transcript transcript(nowhere);
    ui::play::PlayDesk desk(transcript);
    app::ModMain& session = app::modMain();
    session.desk = &desk;
    session.provider = std::make_unique<db::Provider>();
    session.Conn = std::make_shared<db::Connection>(*session.provider);
    session.Conn->Open("Data Source=" + items.file().string());
    GridForm form(desk);
    loads(form.grdItems, bare);
    searches(form.grdItems);
    changes(bare);
    app::resetModMain();
    return 0;
}
