#pragma once

#include "app/db/session.h"
#include "customers/statements/reckoning.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace merchantry::customers {

// A customer's statement, with whose it is.
struct CustomerStatement {
    std::int32_t customer = 0;
    std::string name; // "First Last", the company where there is neither
    Statement figures;
};

// Statements of all customers with a charge account, or with something open, who have anything to be told: a balance, or a movement in the
// period.
struct StatementRun {
    Date asAt;
    std::vector<CustomerStatement> statements; // by the customer's number
    Currency financeCharges;
    Currency balances;
    bool stopped = false; // before the end; nothing was written
};

// Takes part of the work as done, in percent; false stops it.
using RunProgress = std::function<bool(int percent)>;

// The accounts are not as they were when the statements were drawn up.
class AccountsChanged : public std::runtime_error {
public:
    AccountsChanged()
        : std::runtime_error(
              "An account or its terms changed meanwhile. The statements were drawn up again: please look at them, then post.") {}
};

// Statements as at the run's day, or a later one, are posted already: another desktop was faster.
class PostedMeanwhile : public std::runtime_error {
public:
    explicit PostedMeanwhile(Date day)
        : std::runtime_error("Statements as at " + day.toShortText() + " were posted already, by somebody else meanwhile."), day_(day) {}
    // The last day that is posted.
    Date day() const { return day_; }

private:
    Date day_;
};

// The billing day of the store's options; 5 where there is none.
int billingDayOfMonth(db::Session& session);

// Draws up the statements as at a day; it reads only. Throws DbError.
StatementRun drawUpStatements(db::Session& session, Date asAt, const RunProgress& progress);

// Posts the run in one transaction: its finance charges, a posting for each customer that has one, and the statements. All of it or
// nothing. The number of the run, 0 when it was stopped. Throws PostedMeanwhile when that day, or a later one, is posted already,
// AccountsChanged when drawing it up again gives other figures, and DbError.
std::int32_t postStatements(db::Session& session, const StatementRun& run, const RunProgress& progress, int store = 1, int cashier = 5);

// The statements of a run as they were posted; none for an unknown number. Throws DbError.
StatementRun postedStatements(db::Session& session, std::int32_t run);

} // namespace merchantry::customers
