#pragma once

#include "base/value.h"
#include "tools/registersim/random.h"
#include "tools/registersim/shop.h"

namespace merchantry::registersim {

struct SaleLine {
    int good = 0; // position in Shop::goods
    int quantity = 1;
    Currency fullPrice; // of a piece
    Currency cost;      // of a piece, weighted
    Currency discount;  // of the line
    Currency tax;       // of the line
    std::string serial;
    Currency amount() const { return fullPrice * quantity - discount; }
};

struct Tender {
    std::string type;
    Currency amount; // negative: change given back, or a refund
};

// One receipt: a sale, or goods brought back (negative quantities).
struct Sale {
    Date time;
    int registerId = 1;
    int cashierId = 5;
    int shopper = -1; // position in Shop::shoppers; -1 for a passer-by
    bool isReturn = false;
    bool exempt = false;
    std::vector<SaleLine> lines;
    std::vector<Tender> tenders;

    Currency subTotal() const;
    Currency taxTotal() const;
    Currency total() const { return subTotal() + taxTotal(); }
    // Null for a passer-by.
    Value customerId(const Shop& shop) const;
    // What was put on the customer's account.
    Currency charged() const;
};

// Makes up receipts as a shop's day brings them. Deterministic for a shop and a seed. Borrows both.
class SaleMaker {
public:
    SaleMaker(const Shop& shop, Random& random);

    // Nothing when the shopper found nothing on the shelves, or no way to pay. Sells no more than is on hand; the shop stays as it is.
    std::optional<Sale> make(Date time, int registerId, int cashierId);

private:
    void fill(Sale& sale);
    void addLine(Sale& sale, int good, int quantity, bool fetchSerial);
    int quantityFor(const Good& good, int tier);
    bool pay(Sale& sale);
    bool offers(const std::string& tender) const;
    void payCash(Sale& sale, Currency due);

    const Shop& shop_;
    Random& random_;
    Wheel goods_;
    Wheel shoppers_;
};

// The shop after the receipt: stock, serial numbers, dates, the customer's total.
void takeOffShelves(Shop& shop, const Sale& sale);

} // namespace merchantry::registersim
