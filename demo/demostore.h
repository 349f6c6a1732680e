#pragma once

#include "app/db/session.h"
#include "base/date.h"

#include <cstdint>
#include <filesystem>
#include <functional>

namespace merchantry::demo {

struct DemoPlan {
    std::filesystem::path dataFolder; // with the .tsv files
    Date today;                       // the sales end the evening before
    int days = 731;                   // of sales
    int salesPerDay = 40;
    std::uint64_t seed = 20;
};

// The data files that stand beside the running program.
std::filesystem::path demoDataFolder();

// Fills a created store that holds nothing but its first rows: a shop for gifts and bicycles with items in families, prices by tier,
// suppliers, customers, cashiers, stock, and two years of sales. The same plan gives the same store. Every hundredth part `progress` is
// called with the percent done. Throws DbError or std::runtime_error; the store must be thrown away then.
void fillDemoStore(db::Session& session, const DemoPlan& plan, const std::function<void(int percent)>& progress);

} // namespace merchantry::demo
