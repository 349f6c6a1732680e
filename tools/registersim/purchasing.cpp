#include "tools/registersim/purchasing.h"

#include <algorithm>

namespace merchantry::registersim {
namespace {

constexpr int kMonday = 2;
constexpr int kFirstOrderNumber = 1000; // PONumber of POID 1 is one more

int numberFrom(db::Session& session, std::string_view select) {
    return static_cast<int>(query(session, select).front().front().toInteger());
}

} // namespace

Purchasing::Purchasing(db::Session& session, Shop& shop, Random& random, Postings& postings)
    : shop_(shop), random_(random), postings_(postings),
      headerRows_(session, "PurchaseOrder", "POID, PONumber, SupID, PODate, Status", "iiidt", true),
      lineRows_(session, "PurchaseOrderItem", "POID, SKU, MatrixSKU, Qty, Cost, PartNo, QtyRecvd", "ittimti"),
      receiptRows_(session, "PurchaseOrderReceipt", "ReceiptNumber, POID, SKU, MatrixSKU, Quantity, Cost, PostDate", "iittimd"),
      onOrder_(shop.goods.size(), 0), lastId_(numberFrom(session, "SELECT ISNULL(MAX(POID), 0) FROM PurchaseOrder")),
      lastReceipt_(numberFrom(session, "SELECT ISNULL(MAX(ReceiptNumber), 0) FROM PurchaseOrderReceipt")),
      nextSerial_(numberFrom(session, "SELECT COUNT(*) FROM StockSerials") + 1) {}

bool Purchasing::Order::open() const {
    return std::any_of(lines.begin(), lines.end(), [](const Line& line) { return line.received < line.quantity; });
}

void Purchasing::day(Date morning) {
    if (morning.dayOfWeek() == kMonday)
        placeOrders(morning);
    for (Order& order : orders_)
        if (order.due <= morning) {
            receive(order, morning);
            if (!order.open())
                write(order);
        }
    std::erase_if(orders_, [](const Order& order) { return !order.open(); });
}

// The supplier's cost, which moves by a few percent from order to order.
Currency Purchasing::askedFor(const Good& good) {
    return Currency::fromUnits(std::max<std::int64_t>(good.supplierCost.units() * random_.between(96, 106) / 10'000, 1) * 100);
}

void Purchasing::placeOrders(Date morning) {
    std::map<int, Order> bySupplier;
    for (std::size_t i = 0; i < shop_.goods.size(); ++i) {
        const Good& good = shop_.goods[i];
        if (good.supplierId == 0 || good.reorderQty == 0 || good.onHand + onOrder_[i] > good.reorderAt)
            continue;
        const int quantity = std::max({good.reorderQty, good.reorderAt + 1 - good.onHand - onOrder_[i], good.minOrder});
        bySupplier[good.supplierId].lines.push_back({static_cast<int>(i), quantity, 0, askedFor(good)});
        onOrder_[i] += quantity;
    }
    for (auto& [supplier, order] : bySupplier) {
        order.id = ++lastId_;
        order.supplierId = supplier;
        order.placed = Date::fromMs(morning.ms() + 8 * 3'600'000 + random_.below(3'600) * 1000);
        order.due = morning.plusDays(random_.between(4, 16));
        order.split = random_.chance(8);
        orders_.push_back(std::move(order));
        ++orderCount_;
    }
}

void Purchasing::receive(Order& order, Date morning) {
    const Date time = Date::fromMs(morning.ms() + 8 * 3'600'000 + random_.below(1'800) * 1000);
    const int number = ++lastReceipt_;
    for (Line& line : order.lines) {
        const int open = line.quantity - line.received;
        const int quantity = order.split ? (open + 1) / 2 : open;
        if (quantity == 0)
            continue;
        Good& good = shop_.goods[static_cast<std::size_t>(line.good)];
        line.received += quantity;
        onOrder_[static_cast<std::size_t>(line.good)] -= quantity;
        good.move(quantity, line.cost);
        postings_.move(good, "Receipt", quantity, line.cost, time);
        for (int i = 0; good.serialized && i < quantity; ++i)
            good.serials.push_back("SN" + std::to_string(100'000 + nextSerial_++));
        order.receipts.push_back({number, time, line.good, quantity, line.cost});
    }
    order.split = false;
    order.due = morning.plusDays(7);
}

void Purchasing::write(const Order& order) {
    const bool begun = !order.receipts.empty();
    headerRows_.add({order.id, kFirstOrderNumber + order.id, order.supplierId, order.placed, !order.open() ? "C" : begun ? "P" : "O"});
    for (const Line& line : order.lines) {
        const Good& good = shop_.goods[static_cast<std::size_t>(line.good)];
        lineRows_.add({order.id, good.sku, good.matrixSku, line.quantity, line.cost, good.partNo, line.received});
    }
    for (const Receipt& receipt : order.receipts) {
        const Good& good = shop_.goods[static_cast<std::size_t>(receipt.good)];
        receiptRows_.add({receipt.number, order.id, good.sku, good.matrixSku, receipt.quantity, receipt.cost, receipt.time});
    }
    if (!headerRows_.full())
        return;
    for (BulkInsert* rows : {&headerRows_, &lineRows_, &receiptRows_})
        rows->flush();
}

void Purchasing::finish() {
    for (const Order& order : orders_)
        write(order);
    orders_.clear();
    for (BulkInsert* rows : {&headerRows_, &lineRows_, &receiptRows_})
        rows->finish();
}

} // namespace merchantry::registersim
