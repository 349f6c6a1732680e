#include "purchasing/orderrun.h"

#include "app/db/ado/transaction.h"
#include "app/db/again.h"
#include "base/numbers.h"

#include <algorithm>
#include <optional>
#include <span>

namespace merchantry::purchasing {

using db::Sql;

namespace {

std::int16_t shortOf(db::Recordset& row, const char* column) {
    return row[column].Value().toInt16();
}

std::int32_t intOf(db::Recordset& row, const char* column) {
    return row[column].Value().toInt32();
}

using Lines = std::span<const OrderLine>;

// The lines at the front that go to one supplier.
Lines firstOrder(Lines lines) {
    const auto end = std::find_if(lines.begin(), lines.end(), [&](const OrderLine& line) { return line.SupID != lines.front().SupID; });
    return {lines.begin(), end};
}

// One order in a transaction of its own: how many lines it took; nothing when it was stopped. An order without lines is given up, and no
// number is used up for it.
std::optional<int> writeOrder(const db::ConnectionPtr& connection, Lines lines, const std::function<bool(int line)>& progress) {
    db::Transaction transaction(connection);
    const auto header = connection->Execute(Sql("sp_InsertPOHeader ") + lines.front().SupID);
    const std::int32_t poid = intOf(*header, "POID");
    int taken = 0;
    int done = 0;
    for (const OrderLine& line : lines) {
        const auto entered = connection->Execute(Sql("sp_InsertPOItem ") + poid + ", '" + line.SKU + "', '" + line.MatrixSKU + "', " +
                                                 line.ReorderQty + ", " + line.Cost + ", '" + line.PartNo + "'");
        taken += intOf(*entered, "Qty") > 0 ? 1 : 0;
        if (!progress(++done))
            return std::nullopt;
    }
    if (taken > 0) {
        connection->Execute(Sql("sp_UpdatePONumber ") + poid);
        transaction.commit();
    }
    return taken;
}

} // namespace

void addLine(std::vector<OrderLine>& lines, db::Recordset& row) {
    OrderLine line;
    line.SKU = row["SKU"].text();
    line.MatrixSKU = row["MatrixSKU"].text();
    line.Quantity = intOf(row, "Quantity");
    line.Restock = intOf(row, "Restock");
    line.ReorderQty = toInt32(row["Reorder"].Value().toNumber() - row["QtyOrdered"].Value().toNumber());
    toInt16(static_cast<double>(lines.size() + 1)); // lines are counted in 16 bits
    lines.push_back(std::move(line));
}

void addLines(std::vector<OrderLine>& lines, db::Recordset& rows) {
    const std::size_t first = lines.size();
    for (; !rows.Eof(); rows.MoveNext())
        if (lines.size() == first || lines.back().SKU != rows["SKU"].text() || lines.back().MatrixSKU != rows["MatrixSKU"].text())
            addLine(lines, rows);
}

db::RecordsetPtr offersFor(db::Connection& connection, const OrderLine& line, SupplierRule rule) {
    return connection.Execute((rule == SupplierRule::LowestCost ? Sql("sp_GetPOInfoByCost '") : Sql("sp_GetPOInfoByPriority '")) +
                              line.SKU + "', '" + line.MatrixSKU + "', " + line.ReorderQty);
}

void takeOffer(OrderLine& line, db::Recordset& offer) {
    line.ReorderQty = intOf(offer, "ReorderQty");
    line.Cost = offer["Cost"].Value().toCurrency();
    line.PartNo = offer["PartNo"].text();
    line.SupID = shortOf(offer, "SupID");
    line.Priority = shortOf(offer, "Priority");
}

void groupBySupplier(std::vector<OrderLine>& lines) {
    const int count = static_cast<int>(lines.size());
    // A supplier and, in the lower half, the line's place: what changes places in the passes. Comparing the places of one supplier's lines
    // never moves them, since they begin in order.
    std::vector<std::uint32_t> keys(static_cast<std::size_t>(count) + 1); // counted from 1
    for (int i = 1; i <= count; ++i) {
        const auto supplier = static_cast<std::uint32_t>(lines[static_cast<std::size_t>(i) - 1].SupID + 0x8000);
        keys[static_cast<std::size_t>(i)] = supplier << 16 | static_cast<std::uint32_t>(i - 1);
    }
    for (int i = count - 1; i >= 2; --i) {
        std::uint32_t exchanged = 0;
        std::uint32_t carried = keys[1]; // line j, which moves on while the next one is smaller
        for (int j = 1; j <= i; ++j) {
            const std::uint32_t next = keys[static_cast<std::size_t>(j) + 1];
            const std::uint32_t smaller = std::min(carried, next);
            exchanged |= smaller ^ carried;
            keys[static_cast<std::size_t>(j)] = smaller;
            carried = std::max(carried, next);
        }
        keys[static_cast<std::size_t>(i) + 1] = carried;
        if (exchanged == 0)
            break;
    }
    std::vector<OrderLine> grouped;
    grouped.reserve(lines.size());
    for (int i = 1; i <= count; ++i)
        grouped.push_back(std::move(lines[keys[static_cast<std::size_t>(i)] & 0xffff]));
    lines = std::move(grouped);
}

OrdersWritten writeOrders(const db::ConnectionPtr& connection, const std::vector<OrderLine>& lines,
                          const std::function<bool(int done)>& progress) {
    OrdersWritten written;
    for (Lines left = lines; !left.empty();) {
        const Lines order = firstOrder(left);
        const int before = static_cast<int>(lines.size() - left.size());
        const auto taken = db::againWhenBusy(
            connection->session(), [&] { return writeOrder(connection, order, [&](int line) { return progress(before + line); }); });
        if (!taken) {
            written.stopped = true;
            return written;
        }
        written.lines += *taken;
        written.orders += *taken > 0 ? 1 : 0;
        left = left.subspan(order.size());
    }
    return written;
}

} // namespace merchantry::purchasing
