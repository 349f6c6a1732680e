#pragma once

#include "app/db/ado/connection.h"
#include "base/currency.h"
#include "base/date.h"

#include <functional>
#include <string>
#include <vector>

namespace merchantry::catalog {

// One price to be written: the break of an item in a tier, what it is thought to be now, and what it shall be.
struct PriceStep {
    std::string sku;
    std::string matrixSku;
    int tier = 1;
    double quantity = 1;
    Currency from;
    Currency to;
};

// What came of writing many prices.
struct PriceOutcome {
    bool stopped = false; // the user stopped it, or it was undone before: nothing was written
    int written = 0;
    std::vector<PriceStep> skipped; // no longer what they were thought to be, or gone
};

// Told how many of the prices are written; false stops the work.
using PriceProgress = std::function<bool(int done)>;

// Writes the prices in one transaction of a connection that this call has for itself, and keeps what they were under the words. Prices that
// someone else changed meanwhile are left alone. Throws DbError; nothing is written then.
PriceOutcome changePrices(const db::ConnectionPtr& connection, const std::string& words, const std::vector<PriceStep>& steps,
                          const PriceProgress& progress);

// Puts all prices of such a change back in one transaction, in the same manner. A change that was undone before is left alone; one of which
// every price has changed again stays to be undone.
PriceOutcome undoPriceChange(const db::ConnectionPtr& connection, int priceChangeId, const PriceProgress& progress);

} // namespace merchantry::catalog
