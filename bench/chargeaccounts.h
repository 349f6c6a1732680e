#pragma once

#include "app/db/session.h"

namespace merchantry::bench {

// So many customers with a charge account and 50 postings each: a sale and a payment in each of 25 months, all but the newest sale paid and
// matched. Requires: as many items.
void makeChargeAccounts(db::Session& session, int customers);

} // namespace merchantry::bench
