#include "purchasing/rehearsal.h"

#include "app/modMain.h"
#include "app/profit.h"
#include "base/counted.h"
#include "base/numbers.h"

#include <algorithm>
#include <map>

namespace merchantry::purchasing {
namespace {

// Of an item now.
struct Figures {
    app::MovingAverage ledger;
    std::optional<Currency> price;
};

std::map<std::string, Figures> figuresOf(std::int32_t PONumber) {
    const auto rows = app::openDirect(
        db::Sql(
            "SELECT i.SKU, i.MatrixSKU, l.QtyAfter, l.Cost_wt, "
            "(SELECT TOP 1 p.Price FROM PriceMatrix p WHERE p.SKU = i.SKU AND p.MatrixSKU = i.MatrixSKU AND p.Tier = 1 ORDER BY "
            "p.Quantity) "
            "AS Price, "
            "(SELECT MIN(s.SalePrice) FROM Sales s WHERE s.SKU = i.SKU AND s.MatrixSKU = i.MatrixSKU AND DATEDIFF(day, s.DateFrom, "
            "GETDATE()) >= 0 AND DATEDIFF(day, GETDATE(), s.DateTo) >= 0) AS SalePrice "
            "FROM PurchaseOrder o INNER JOIN PurchaseOrderItem i ON i.POID = o.POID LEFT JOIN InventoryLedger l ON l.LedgerID = "
            "(SELECT MAX(m.LedgerID) FROM InventoryLedger m WHERE m.SKU = i.SKU AND m.MatrixSKU = i.MatrixSKU AND m.QtyAfter IS NOT NULL) "
            "WHERE o.PONumber = ") +
        PONumber);
    auto& row = *rows;
    std::map<std::string, Figures> found;
    for (; !row.Eof(); row.MoveNext()) {
        Figures figures;
        if (!row["QtyAfter"].isNull())
            figures.ledger.onHand = row["QtyAfter"].Value().toInteger();
        if (!row["Cost_wt"].isNull())
            figures.ledger.average = row["Cost_wt"].Value().toCurrency().units();
        if (!row["Price"].isNull())
            figures.price = row["Price"].Value().toCurrency();
        if (figures.price && !row["SalePrice"].isNull())
            figures.price = std::min(*figures.price, row["SalePrice"].Value().toCurrency());
        found.emplace(itemKey(row["SKU"].text(), row["MatrixSKU"].text()), figures);
    }
    return found;
}

} // namespace

std::optional<int> RehearsedLine::margin() const {
    if (!price || *price <= Currency())
        return std::nullopt;
    return app::profitPercent(*price, costAfter());
}

std::string RehearsedLine::remark() const {
    const int open = line.OpenQty - line.RecvQty;
    std::string words = open > 0 ? std::to_string(open) + " stay open" : open == 0 ? "Closes" : std::to_string(-open) + " over, closes";
    if (before.average && before.onHand <= 0)
        words += "; none on hand";
    return words;
}

std::vector<RehearsedLine> rehearsed(std::int32_t PONumber, const std::vector<ReceiveLine>& lines, Currency OtherCost) {
    std::vector<ReceiveLine> spread = lines;
    spreadOver(spread, subtotalOf(lines), OtherCost);
    const auto figures = figuresOf(PONumber);
    std::vector<RehearsedLine> result;
    for (const ReceiveLine& line : spread) {
        if (line.RecvQty <= 0)
            continue;
        RehearsedLine one;
        one.line = line;
        if (const auto item = figures.find(itemKey(line.SKU, line.MatrixSKU)); item != figures.end()) {
            one.before = item->second.ledger;
            one.price = item->second.price;
        }
        one.costEach = Currency::fromUnits(app::costWithShare(line.Cost.units(), line.OtherCostShare.units(), line.RecvQty));
        one.after = one.before;
        one.after.move(line.RecvQty, one.costEach.units());
        result.push_back(std::move(one));
    }
    return result;
}

std::string wordsForReceipt(const std::vector<ReceiveLine>& lines) {
    std::int64_t received = 0;
    std::int64_t open = 0;
    std::int64_t over = 0;
    for (const ReceiveLine& line : lines) {
        received += line.RecvQty > 0 ? 1 : 0;
        open += line.staysOpen() ? 1 : 0;
        over += line.RecvQty > line.OpenQty ? 1 : 0;
    }
    if (received == 0)
        return "No item is being received: there is nothing to rehearse.";
    std::string words = "Nothing is posted yet. Posted now, " + counted(received, "line is", "lines are") + " received and the order is " +
                        (open == 0 ? "closed." : "partial: " + counted(open, "line stays", "lines stay") + " open.");
    if (over > 0)
        words += " " + counted(over, "line brings", "lines bring") +
                 " more than is open: all of it is paid for and goes into stock at its cost, the line closes, and the order's quantity "
                 "stays as it was.";
    return words;
}

} // namespace merchantry::purchasing
