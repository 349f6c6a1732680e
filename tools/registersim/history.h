#pragma once

#include "app/db/session.h"
#include "tools/registersim/shop.h"

#include <functional>

namespace merchantry::registersim {

struct HistoryPlan {
    Date from; // first day
    Date to;   // the day after the last
    std::uint64_t seed = 1;
    int salesPerDay = 40;     // on an ordinary day; the year, the weekday and chance change it
    bool openingStock = true; // fills the shelves of goods that never moved, on the first morning
};

struct HistoryFigures {
    int transactions = 0;
    int lines = 0;
    int orders = 0;
};

// Percent done, 0 to 100.
using Progress = std::function<void(int percent)>;

// Posts what the registers of a shop record in that time: receipts, drawers and log-ons, orders and deliveries, charge accounts; and brings
// stock, dates last sold and the customers' totals up to it. Deterministic for a store, a plan and popularities in the shop.
// In one transaction; throws DbError, and nothing is posted then. The shop is used up.
HistoryFigures postHistory(db::Session& session, Shop& shop, const HistoryPlan& plan, const Progress& progress);

} // namespace merchantry::registersim
