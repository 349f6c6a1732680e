#pragma once

#include "app/db/session.h"
#include "base/currency.h"
#include "base/date.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::registersim {

struct PriceBreak {
    int tier = 1;
    int quantity = 1; // from this quantity on
    Currency price;
};

struct SaleEvent {
    Date from; // both days inclusive
    Date to;
    Currency price;
};

// An item that a register can sell, with what is on hand and what it cost.
struct Good {
    std::string sku;
    std::string matrixSku;
    int departmentId = 1;
    int taxId = 0;
    int popularity = 1; // weight in a shopper's choice
    int onHand = 0;
    int reorderAt = 0;    // Item.Restock: at so many or fewer on hand it is ordered
    int reorderQty = 0;   // Item.Reorder: how many; 0 for never
    Currency averageCost; // weighted, as the ledger has it
    std::vector<PriceBreak> prices;
    std::vector<SaleEvent> events;
    bool serialized = false;
    std::vector<std::string> serials; // of the units on hand
    int supplierId = 0;               // the preferred one; 0 for none
    Currency supplierCost;
    std::string partNo;
    int minOrder = 1;
    std::optional<Date> lastSold; // during this run
    bool hasLedger = false;

    // Takes units in, or out when negative, with the weighted average that the store's ledger keeps.
    void move(int quantity, Currency cost);
};

struct Shopper {
    int id = 0;
    int tier = 1;
    bool charge = false;
    bool exempt = false;
    bool employee = false;
    Currency bought{}; // during this run
    std::optional<Date> lastPurchase{};
};

// A way to pay that registers offer.
struct TenderKey {
    std::string type; // as receipts and reports know it
    std::string name; // as the cashier sees it
};

// What registers know of a store: read once, kept up to date by those who post.
struct Shop {
    std::vector<Good> goods;
    std::vector<Shopper> shoppers;
    std::vector<int> cashierIds;
    std::vector<int> registerIds;
    std::vector<TenderKey> tenders; // offered, in the order of the keys
    std::map<int, int> taxRates;    // in thousandths of a percent, by TaxID

    // The price of a piece for a tier at this quantity on this day: the tier's highest break reached, otherwise retail; a sale event
    // holds where it is lower.
    static Currency price(const Good& good, int tier, int quantity, Date day);
    // Tax on an amount, rounded to cents, halves away from zero.
    Currency tax(int taxId, Currency amount) const;
    // The rate of a class; 0 for one that is not known.
    double taxPercent(int taxId) const;
};

// What the registers offer now, in its order; those that are not available are left out. Throws DbError.
std::vector<TenderKey> loadTenders(db::Session& session);
// What a manager may change while registers are at work: tenders and tax rates. Throws DbError.
void readSettings(db::Session& session, Shop& shop);
// Every item that can be sold (no parents, no pseudo-items), in key order. Throws DbError.
Shop loadShop(db::Session& session);

} // namespace merchantry::registersim
