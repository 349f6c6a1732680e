#pragma once

#include "app/db/ado/recordset.h"
#include "base/currency.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace merchantry::purchasing {

// The steps of an automatic order run, without a screen: candidates, a supplier for each, the grouping, the writing.

// One item that goes on an order.
struct OrderLine {
    std::string SKU;
    std::string MatrixSKU;
    std::int32_t Restock = 0;
    std::int32_t ReorderQty = 0; // Reorder less what is on order; once a supplier is chosen, what to order from them
    std::int32_t Quantity = 0;   // on hand
    Currency Cost;               // of one; this and what follows is the chosen supplier's
    std::int16_t Priority = 0;
    std::int16_t SupID = 0;
    std::string PartNo; // empty for none
};

enum class SupplierRule { LowestCost, Priority };

// Adds a line for the row that the recordset stands on (columns SKU, MatrixSKU, Quantity, Restock, Reorder, QtyOrdered). Throws DbError
// when it stands on none, and OverflowError for more than 32,767 lines. Quantities are read as they are: what does not fit an order is
// refused by the store when its supplier is looked for.
void addLine(std::vector<OrderLine>& lines, db::Recordset& row);
// The same for all rows; of the rows of one item that stand together only the first counts.
void addLines(std::vector<OrderLine>& lines, db::Recordset& rows);

// What the suppliers of the work table offer for the line, the preferred one first; columns ReorderQty, Cost, PartNo, SupID, Priority.
db::RecordsetPtr offersFor(db::Connection& connection, const OrderLine& line, SupplierRule rule);
// Gives the line the offer that the recordset stands on. Throws DbError when it stands on none: no supplier serves the item.
void takeOffer(OrderLine& line, db::Recordset& offer);

// Brings the lines of each supplier together with an exchange sort by SupID whose last pass never runs: the first two lines can stay out of
// order, and a supplier can come up twice. Lines of one supplier keep their order. Requires: at most 32,767 lines.
void groupBySupplier(std::vector<OrderLine>& lines);

struct OrdersWritten {
    int orders = 0;
    int lines = 0; // that the store took; one that asks for nothing is dropped
    bool stopped = false;
};

// Writes the lines in their order: each run of lines of one supplier becomes an order in a transaction of its own, which is given up when
// no line of it was taken, when a statement fails (throws DbError) and when the user stops. Orders before it stay. `progress` gets the
// number of lines done and answers whether to go on.
OrdersWritten writeOrders(const db::ConnectionPtr& connection, const std::vector<OrderLine>& lines,
                          const std::function<bool(int done)>& progress);

} // namespace merchantry::purchasing
