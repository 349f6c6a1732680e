#pragma once

#include "tools/registersim/bulkinsert.h"
#include "tools/registersim/sale.h"

namespace merchantry::registersim {

// Writes what registers record, many rows at a time: receipts with their lines, tenders and taxes, movements of stock, and what happens at
// the drawers. Transaction numbers follow the store's highest. Borrows the session.
class Postings {
public:
    explicit Postings(db::Session& session);

    // Gives the transaction's number. Requires: the shop as it was when the receipt was made; the movements are written from it.
    int post(const Shop& shop, const Sale& sale);
    void move(const Good& good, const std::string& type, int quantity, Currency cost, Date time);
    void drawer(int registerId, int cashierId, Date time, const std::string& event, Currency amount);
    void cashier(int cashierId, int registerId, Date time, const std::string& event);
    // Writes everything that still waits.
    void finish();

    int transactions() const { return transactionCount_; }
    int lines() const { return lineCount_; }

private:
    void postTaxes(const Shop& shop, const Sale& sale, int number);
    void flushFull();

    BulkInsert transactionRows_;
    BulkInsert lineRows_;
    BulkInsert tenderRows_;
    BulkInsert taxRows_;
    BulkInsert ledgerRows_;
    BulkInsert drawerRows_;
    BulkInsert cashierRows_;
    int lastNumber_;
    int transactionCount_ = 0;
    int lineCount_ = 0;
};

} // namespace merchantry::registersim
