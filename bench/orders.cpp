// An automatic order run on frmPOCreate, 10,000 to 30,000 lines for 200 suppliers, from OK to the summary, beside the same statements on
// SQLite: each prepared as it comes, as the program gets them, and each prepared once. The sort by itself.

#include "bench/barestore.h"
#include "bench/benchdesk.h"
#include "bench/ratio.h"
#include "purchasing/frmPOCreate.h"
#include "ui/gestures.h"

#include <map>
#include <string>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kMostLines = 30'000;
constexpr int kSuppliers = 200;
constexpr int kRuns = 5;

// Every item on the shelf and with two suppliers, the cheaper one going round.
void furnish(db::Session& session) {
    db::NoResult none;
    session.begin();
    for (int i = 1; i <= kSuppliers; ++i)
        session.execute("INSERT INTO Suppliers (Supplier) VALUES ('Supplier " + std::to_string(i) + "')", none);
    session.execute("UPDATE Item SET Restock = 4, Reorder = 10 "
                    "INSERT INTO Stock (SKU, MatrixSKU, Quantity) SELECT SKU, MatrixSKU, 50 FROM Item "
                    "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, Priority, PartNo) SELECT SKU, MatrixSKU, CAST(SKU AS "
                    "int) % 200 + 1, 4.25, 2, 'P' + SKU FROM Item "
                    "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, Priority, PartNo) SELECT SKU, MatrixSKU, (CAST(SKU AS "
                    "int) + 1) % 200 + 1, 4.5, 1, 'Q' + SKU FROM Item",
                    none);
    session.commit();
}

// Leaves so many items without stock and nothing on order.
void empty(db::Session& session, int lines) {
    db::NoResult none;
    session.execute("DELETE FROM PurchaseOrder UPDATE Stock SET Quantity = CASE WHEN CAST(SKU AS int) < " + ItemStore::sku(lines) +
                        " THEN 0 ELSE 50 END",
                    none);
}

// The windows of the desktop, with every box answered.
class AnsweringDesk : public ui::QtDesk {
public:
    using Desk::message;
    using QtDesk::QtDesk;
    ui::Answer message(const ui::Message& message) override {
        said = message.text;
        return ui::Answer::Ok;
    }
    std::string said;
};

// The statements of a run with their values bound.
class BareRun {
public:
    BareRun(const BareStore& store, bool once) : store_(store), once_(once) { run("PRAGMA foreign_keys=ON", {}); }
    ~BareRun() {
        for (const auto& [sql, statement] : kept_)
            sqlite3_finalize(statement);
    }
    BareRun(const BareRun&) = delete;
    BareRun& operator=(const BareRun&) = delete;

    // "orders lines"
    std::string write();

private:
    using Row = std::vector<std::string>;
    struct Line {
        std::string sku, matrixSku, part;
        std::int64_t quantity = 0, cost = 0, supplier = 0;
    };
    // All rows, their cells copied.
    std::vector<Row> run(const std::string& sql, const std::vector<std::string>& values) {
        sqlite3_stmt*& kept = kept_[sql];
        sqlite3_stmt* const statement = kept != nullptr ? kept : store_.prepare(sql);
        for (std::size_t i = 0; i < values.size(); ++i)
            sqlite3_bind_text(statement, static_cast<int>(i) + 1, values[i].c_str(), -1, SQLITE_STATIC);
        std::vector<Row> rows;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            Row row;
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
                row.emplace_back(text == nullptr ? "" : text);
            }
            rows.push_back(std::move(row));
        }
        if (once_) {
            sqlite3_reset(statement);
            kept = statement;
        } else {
            sqlite3_finalize(statement);
            kept_.erase(sql);
        }
        return rows;
    }
    std::vector<Line> chosen();

    const BareStore& store_;
    bool once_;
    std::map<std::string, sqlite3_stmt*> kept_;
};

std::vector<BareRun::Line> BareRun::chosen() {
    std::vector<Line> lines;
    run("DELETE FROM wrkPODepartments", {});
    run("DELETE FROM wrkPOSuppliers", {});
    run("INSERT INTO wrkPOSuppliers (SupID) SELECT SupID FROM Suppliers WHERE SupID <> 0 AND SupID NOT IN (SELECT SupID FROM "
        "wrkPOSuppliers)",
        {});
    for (const Row& item :
         run("SELECT Item.SKU, Item.MatrixSKU, Stock.Quantity, Item.Restock, Item.Reorder, (SELECT IFNULL(SUM(i.Qty - i.QtyRecvd - "
             "i.QtyCanceled), 0) FROM PurchaseOrderItem i INNER JOIN PurchaseOrder o ON o.POID = i.POID WHERE i.SKU = Item.SKU AND "
             "i.MatrixSKU = Item.MatrixSKU AND o.Status <> 'C' AND i.Qty > i.QtyRecvd + i.QtyCanceled) FROM Item INNER JOIN Stock ON "
             "Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU WHERE Item.Active = 1 AND Item.TypeID <> 4 AND Item.SKU NOT LIKE "
             "'$%' AND Item.Reorder > 0 AND Stock.Quantity <= Item.Restock AND EXISTS (SELECT * FROM SupplierMatrixDetail d WHERE d.SKU = "
             "Item.SKU AND d.MatrixSKU = Item.MatrixSKU AND d.SupID <> 0) ORDER BY Item.SKU, Item.MatrixSKU",
             {})) {
        const std::string wanted = std::to_string(std::stoll(item[4]) - std::stoll(item[5]));
        const Row shortBy =
            run("SELECT Item.Restock + 1 - Stock.Quantity - (Item.Reorder - CAST(?3 AS INTEGER)) FROM Item INNER JOIN Stock "
                "ON Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU WHERE Item.SKU = ?1 AND Item.MatrixSKU = ?2",
                {item[0], item[1], wanted})
                .at(0);
        run("SELECT SplitQuantity FROM ItemSplitMatrix WHERE SKU = ?1 AND MatrixSKU = ?2 AND SplitQuantity >= 2", {item[0], item[1]});
        const auto offers =
            run("SELECT MAX(IFNULL(d.MinOrder, 0), CAST(?3 AS INTEGER), CAST(?4 AS INTEGER)), d.Cost, d.PartNo, d.SupID, d.Priority FROM "
                "SupplierMatrixDetail d INNER JOIN wrkPOSuppliers w ON w.SupID = d.SupID WHERE d.SKU = ?1 AND d.MatrixSKU = ?2 ORDER BY "
                "d.Cost, d.Priority, d.SupID",
                {item[0], item[1], wanted, shortBy[0]});
        const Row& best = offers.at(0);
        lines.push_back({item[0], item[1], best[2], std::stoll(best[0]), std::stoll(best[1]), std::stoll(best[3])});
    }
    std::stable_sort(lines.begin(), lines.end(), [](const Line& left, const Line& right) { return left.supplier < right.supplier; });
    return lines;
}

std::string BareRun::write() {
    int orders = 0;
    int written = 0;
    std::int64_t supplier = -1;
    std::string poid;
    const auto close = [&] {
        if (supplier < 0)
            return;
        run("UPDATE PurchaseOrder SET PONumber = (SELECT IFNULL(MAX(PONumber), 0) + 1 FROM PurchaseOrder) WHERE POID = ?1 AND PONumber IS "
            "NULL",
            {poid});
        run("SELECT PONumber FROM PurchaseOrder WHERE POID = ?1", {poid});
        run("COMMIT", {});
        ++orders;
    };
    for (const Line& line : chosen()) {
        if (line.supplier != supplier) {
            close();
            run("BEGIN IMMEDIATE", {});
            supplier = line.supplier;
            poid = run("INSERT INTO PurchaseOrder (POID, SupID, PODate, Status) SELECT IFNULL(MAX(POID), 0) + 1, ?1, 0, 'O' FROM "
                       "PurchaseOrder RETURNING POID",
                       {std::to_string(supplier)})
                       .at(0)
                       .at(0);
        }
        run("SELECT EXISTS (SELECT * FROM PurchaseOrderItem WHERE POID = ?1 AND SKU = ?2 AND MatrixSKU = ?3)",
            {poid, line.sku, line.matrixSku});
        run("INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost, PartNo, QtyRecvd, QtyCanceled) VALUES (?1, ?2, ?3, ?4, ?5, "
            "?6, 0, 0)",
            {poid, line.sku, line.matrixSku, std::to_string(line.quantity), std::to_string(line.cost), line.part});
        written += static_cast<int>(
            run("SELECT Qty FROM PurchaseOrderItem WHERE POID = ?1 AND SKU = ?2 AND MatrixSKU = ?3", {poid, line.sku, line.matrixSku})
                .size());
    }
    close();
    return std::to_string(orders) + " purchase order(s) with total of " + std::to_string(written) + " item(s) have been generated.";
}

// The form shown, OK pressed, the summary given.
double runOurs(AnsweringDesk& desk) {
    auto& form = desk.form<purchasing::frmPOCreate>();
    desk.enter([&] { desk.show(form); });
    QCoreApplication::processEvents();
    const double ms = msOf([&] { desk.enter([&] { ui::gestures::press(dynamic_cast<ui::Button&>(*form.find("cmdOK"))); }); });
    desk.enter([&] { form.unload(); });
    QCoreApplication::processEvents();
    return ms;
}

// The run's own time for so many lines.
double measure(AnsweringDesk& desk, db::Session& session, const BareStore& bare, int lines) {
    std::vector<double> ours;
    std::vector<double> texts;
    std::vector<double> once;
    for (int i = 0; i < kRuns; ++i) {
        std::string said[2];
        for (const bool prepared : {false, true}) {
            empty(session, lines);
            BareRun run(bare, prepared);
            (prepared ? once : texts).push_back(msOf([&] { said[prepared ? 1 : 0] = run.write(); }));
        }
        empty(session, lines);
        ours.push_back(runOurs(desk));
        if (desk.said != said[0] || desk.said != said[1])
            std::printf("DIFFERENT: %s / %s\n", desk.said.c_str(), said[0].c_str());
    }
    const std::string what = "an order run of " + std::to_string(lines) + " lines";
    print((what + " / each statement prepared").c_str(), median(ours), median(texts));
    print((what + " / prepared once").c_str(), median(ours), median(once));
    return median(ours);
}

double sortOf(int count) {
    std::vector<double> times;
    for (int i = 0; i < kRuns; ++i) {
        std::vector<purchasing::OrderLine> lines(static_cast<std::size_t>(count));
        for (std::size_t at = 0; at < lines.size(); ++at)
            lines[at].SupID = static_cast<std::int16_t>(at % kSuppliers);
        times.push_back(msOf([&] { purchasing::groupBySupplier(lines); }));
    }
    return median(times);
}

} // namespace

int main(int argc, char** argv) {
    const ItemStore items(kMostLines);
    const auto session = items.session();
    furnish(*session);
    BenchDesk<AnsweringDesk> bench(argc, argv, items);
    auto& desk = bench.desk;
    const BareStore bare(items.file());
    double first = 0;
    for (const int lines : {10'000, 20'000, kMostLines}) {
        const double ms = measure(desk, *session, bare, lines);
        const double sort = sortOf(lines);
        first = first == 0 ? (ms - sort) / lines : first;
        std::printf("  %.1f us a line without the sort (%.2f of the first), the sort %.1f ms\n", (ms - sort) / lines * 1000,
                    (ms - sort) / lines / first, sort);
    }
    return 0;
}
