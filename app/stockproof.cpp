#include "app/stockproof.h"

#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "app/movingaverage.h"
#include "base/currency.h"
#include "base/lettercase.h"
#include "base/shown.h"

#include <unordered_map>

namespace merchantry::app {
namespace {

using db::RowView;
using What = ProofFinding::What;
constexpr std::int64_t kRowsBetweenTellings = 5000;
constexpr const char* kNothing = "nothing";

struct Stopped {};

// An item's figures as its movements so far make them.
struct Built {
    std::string sku;
    std::string matrixSku;
    MovingAverage figures;
    bool wrong = false; // a row was found already
};

// Items by their codes, whatever their case and trailing blanks.
class Items {
public:
    Built& at(std::string_view sku, std::string_view matrixSku) {
        spelled_.assign(sku).append(1, '\0').append(matrixSku);
        const auto known = bySpelling_.find(spelled_);
        if (known != bySpelling_.end())
            return built_[known->second];
        const auto [place, added] = byKey_.emplace(lowerCase(withoutEnd(sku)) + '\0' + lowerCase(withoutEnd(matrixSku)), built_.size());
        if (added)
            built_.push_back({std::string(sku), std::string(matrixSku), {}, false});
        bySpelling_.emplace(spelled_, place->second);
        return built_[place->second];
    }
    const std::vector<Built>& all() const { return built_; }

private:
    static std::string_view withoutEnd(std::string_view text) {
        while (!text.empty() && text.back() == ' ')
            text.remove_suffix(1);
        return text;
    }
    std::vector<Built> built_;
    std::unordered_map<std::string, std::size_t> bySpelling_;
    std::unordered_map<std::string, std::size_t> byKey_;
    std::string spelled_;
};

// Follows the ledger row by row.
class LedgerWalk : public db::ResultSink {
public:
    LedgerWalk(Proof& proof, Items& items, std::int64_t lastId, const ProofProgress& progress)
        : proof_(proof), items_(items), lastId_(std::max<std::int64_t>(lastId, 1)), progress_(progress) {}
    void beginSet(const std::vector<db::Column>&) override {}
    void row(const RowView& row) override {
        Built& item = items_.at(row.text(0), row.text(1));
        const std::int64_t id = row.number(2);
        const bool comesBack = !row.isNull(8) && row.number(3) > 0;
        item.figures.move(row.number(3), row.number(comesBack ? 8 : 4), !row.isNull(7));
        compare(item, row, id, 6, What::Balance, item.figures.onHand);
        compare(item, row, id, 5, What::WeightedCost, *item.figures.average);
        if (++proof_.rows % kRowsBetweenTellings == 0 && !progress_(static_cast<int>(std::min<std::int64_t>(99, id * 100 / lastId_))))
            throw Stopped();
    }

private:
    static std::string told(What what, std::int64_t figure) {
        return what == What::Balance ? std::to_string(figure) : shownCost(Currency::fromUnits(figure));
    }
    void compare(Built& item, const RowView& row, std::int64_t id, int column, What what, std::int64_t wanted) {
        const bool missing = row.isNull(column);
        if (item.wrong || (!missing && row.number(column) == wanted))
            return;
        item.wrong = true;
        proof_.ledger.push_back(
            {what, item.sku, item.matrixSku, id, missing ? kNothing : told(what, row.number(column)), told(what, wanted)});
    }

    Proof& proof_;
    Items& items_;
    std::int64_t lastId_;
    const ProofProgress& progress_;
};

// Compares each item's stock with its movements.
class StockWalk : public db::ResultSink {
public:
    StockWalk(Proof& proof, Items& items) : proof_(proof), items_(items) {}
    void beginSet(const std::vector<db::Column>&) override {}
    void row(const RowView& row) override {
        Built& item = items_.at(row.text(0), row.text(1));
        if (item.figures.onHand != row.number(2))
            proof_.stock.push_back(
                {What::Stock, item.sku, item.matrixSku, 0, std::to_string(row.number(2)), std::to_string(item.figures.onHand)});
    }

private:
    Proof& proof_;
    Items& items_;
};

class OneRow : public db::ResultSink {
public:
    void beginSet(const std::vector<db::Column>&) override {}
    void row(const RowView& row) override {
        cells.clear();
        for (int i = 0; i < row.size(); ++i)
            cells.push_back(row.value(i));
    }
    std::vector<Value> cells;
};

std::int64_t lastLedgerId(db::Session& session) {
    OneRow last;
    session.execute("SELECT ISNULL(MAX(LedgerID), 0) FROM InventoryLedger", last);
    return last.cells.at(0).toInteger();
}

// Both figures of an item at one moment; false when they agree.
bool stillDiffers(db::Session& session, ProofFinding& finding) {
    OneRow both;
    const db::SqlType code{db::TypeKind::VarChar, 100, 0, 0};
    std::vector<db::Parameter> key{{"sku", code, finding.sku, false}, {"matrix", code, finding.matrixSku, false}};
    session.execute(
        "SELECT s.Quantity, ISNULL((SELECT SUM(l.Qty) FROM InventoryLedger l WHERE l.SKU = s.SKU AND l.MatrixSKU = s.MatrixSKU), "
        "0) FROM Stock s WHERE s.SKU = @sku AND s.MatrixSKU = @matrix",
        key, both);
    if (both.cells.empty() || both.cells[0].toInteger() == both.cells[1].toInteger())
        return false;
    finding.found = both.cells[0].toText();
    finding.expected = both.cells[1].toText();
    return true;
}

} // namespace

std::string ProofFinding::title() const {
    return what == What::Balance ? "Balance" : what == What::WeightedCost ? "Weighted cost" : "Stock";
}

std::string ProofFinding::sentence() const {
    const std::string item = sku + "/" + matrixSku;
    if (what == What::Stock)
        return "Item " + item + ": the stock is " + found + ", its ledger adds up to " + expected + ".";
    return "Item " + item + ": ledger row " + std::to_string(ledgerId) + " holds the " +
           (what == What::Balance ? "balance " : "weighted cost ") + found + " where its movements make " + expected + ".";
}

Proof proveStock(db::Session& session, const ProofProgress& progress) {
    Proof proof;
    Items items;
    try {
        const std::int64_t last = lastLedgerId(session);
        LedgerWalk ledger(proof, items, last, progress);
        session.execute("SELECT l.SKU, l.MatrixSKU, l.LedgerID, l.Qty, l.Cost_ea, l.Cost_wt, l.QtyAfter, l.ReversesID, CASE WHEN "
                        "l.ReversesID IS NULL THEN "
                        "NULL ELSE (SELECT r.Cost_wt FROM InventoryLedger r WHERE r.LedgerID = l.ReversesID) END FROM InventoryLedger l "
                        "WHERE l.LedgerID <= " +
                            std::to_string(last) + " ORDER BY l.LedgerID",
                        ledger);
        proof.items = static_cast<std::int64_t>(items.all().size());
        StockWalk stock(proof, items);
        session.execute("SELECT SKU, MatrixSKU, Quantity FROM Stock", stock);
        if (lastLedgerId(session) != last)
            std::erase_if(proof.stock, [&](ProofFinding& finding) { return !stillDiffers(session, finding); });
    } catch (const Stopped&) {
        proof.stopped = true;
    }
    progress(100);
    return proof;
}

Proof proveStockFile(const std::filesystem::path& file, const ProofProgress& progress) {
    const auto session = db::Store::open(file)->session();
    db::checkSchemaVersion(*session);
    return proveStock(*session, progress);
}

} // namespace merchantry::app
