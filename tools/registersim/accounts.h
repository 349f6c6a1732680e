#pragma once

#include "tools/registersim/bulkinsert.h"
#include "tools/registersim/random.h"
#include "tools/registersim/shop.h"

namespace merchantry::registersim {

// What customers with a charge account owe and pay. Payments come once a month and are matched with the oldest debts. Borrows all.
class Accounts {
public:
    Accounts(db::Session& session, Random& random);

    void charge(int customerId, int transactionNumber, Date time, Currency amount);
    // The month's payments: most customers pay what was past due, a few pay half, one in ten nothing.
    void collect(Date day);
    // Writes batches and postings, and every customer's balance.
    void finish();

private:
    struct Posting {
        int customerId = 0;
        int transactionNumber = 0; // 0 for a payment
        int batch = 0;             // 0 for a debit
        Date time;
        Currency total;
        Currency open;
    };
    // A part of a payment that was matched with a debt.
    struct Match {
        std::size_t debt = 0; // of postings_
        std::size_t payment = 0;
        Currency amount;
    };
    Currency payFor(int customerId, Currency amount, std::size_t payment);
    void write(const std::vector<int>& batchNumbers);
    void writeMatches(const std::vector<int>& batchNumbers, int firstId);
    void writeBalances();

    db::Session& session_;
    Random& random_;
    std::vector<Posting> postings_;
    std::vector<Match> matches_;
    std::vector<Date> batches_;
};

} // namespace merchantry::registersim
