#pragma once

#include "demo/goods.h"

namespace merchantry::demo {

// Customers with their addresses, by tier; some buy on account, some without tax, a few work here.
void addCustomers(db::Session& session, const std::filesystem::path& dataFolder, const Ids& tiers, Date today);
// Cashiers and registers beside those that every store has.
void addStaff(db::Session& session);
// What customers have put aside, and the vouchers that are about. Requires: stock and customers.
void addPromises(db::Session& session, Date today);

} // namespace merchantry::demo
