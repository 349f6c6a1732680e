#include "purchasing/receiveline.h"

#include "app/db/ado/transaction.h"
#include "app/modMain.h"
#include "purchasing/othercosts.h"

namespace merchantry::purchasing {

Currency subtotalOf(const std::vector<ReceiveLine>& lines) {
    Currency sum;
    for (const ReceiveLine& line : lines)
        sum += line.extended();
    return sum;
}

void spreadOver(std::vector<ReceiveLine>& lines, Currency Subtotal, Currency OtherCost) {
    std::vector<ReceivedQuantity> received;
    received.reserve(lines.size());
    for (const ReceiveLine& line : lines)
        received.push_back({line.RecvQty, line.Cost});
    const auto shares = SpreadOtherCosts(received, Subtotal, OtherCost);
    for (std::size_t i = 0; i < lines.size(); ++i)
        lines[i].OtherCostShare = shares[i];
}

std::int32_t postReceipt(std::int32_t PONumber, const std::vector<ReceiveLine>& lines, Currency OtherCost,
                         const std::string& OtherCostDesc) {
    using db::Sql;
    db::Transaction transaction(app::modMain().Conn);
    int CostID = 0;
    if (OtherCost > Currency()) {
        const auto cost =
            app::modMain().Conn->Execute(Sql("sp_InsertOtherCost ") + PONumber + ", " + OtherCost + ", '" + OtherCostDesc + "'");
        CostID = static_cast<int>((*cost)["CostID"].Value().toInteger());
    }
    const std::int32_t ReceiptNumber =
        postLines(PONumber, lines, &ReceiveLine::RecvQty, "ReceiptNumber", [&](const ReceiveLine& line, std::int32_t number) {
            return Sql("sp_ReceiveItem 1, ") + PONumber + ", '" + line.SKU + "', '" + line.MatrixSKU + "', " + int{line.RecvQty} + ", " +
                   line.Cost + ", " + line.OtherCostShare + ", " + CostID + ", " + number + ", '" + line.PartNo + "'";
        });
    transaction.commit();
    return ReceiptNumber;
}

} // namespace merchantry::purchasing
