#pragma once

#include "tools/registersim/postings.h"

namespace merchantry::registersim {

// Keeps the shelves full: every week it orders what is low from the preferred suppliers, and takes in the deliveries when they come.
// An order is written when it is closed, or at the end as it then is. Borrows all.
class Purchasing {
public:
    Purchasing(db::Session& session, Shop& shop, Random& random, Postings& postings);

    // Requires: days in order. Orders on Mondays, receives what is due.
    void day(Date morning);
    // Writes the orders that are still open.
    void finish();
    int orders() const { return orderCount_; }

private:
    struct Line {
        int good = 0;
        int quantity = 0;
        int received = 0;
        Currency cost; // of a piece, as the supplier asks this time
    };
    struct Receipt {
        int number = 0;
        Date time;
        int good = 0;
        int quantity = 0;
        Currency cost;
    };
    struct Order {
        int id = 0;
        int supplierId = 0;
        Date placed;
        Date due;
        bool split = false; // comes in two deliveries
        std::vector<Line> lines;
        std::vector<Receipt> receipts;
        bool open() const;
    };

    Currency askedFor(const Good& good);
    void placeOrders(Date morning);
    void receive(Order& order, Date morning);
    void write(const Order& order);

    Shop& shop_;
    Random& random_;
    Postings& postings_;
    BulkInsert headerRows_;
    BulkInsert lineRows_;
    BulkInsert receiptRows_;
    std::vector<Order> orders_; // open ones
    std::vector<int> onOrder_;  // by position of the good
    int lastId_;
    int lastReceipt_;
    int nextSerial_ = 1;
    int orderCount_ = 0;
};

} // namespace merchantry::registersim
