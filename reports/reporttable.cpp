#include "reports/reporttable.h"

#include "app/reportlistings.h"

#include <algorithm>

namespace merchantry::reports {
namespace {

// Keys without a file.
constexpr ReportKey kWithoutFile[] = {
    {"Customer", "", false},
    {"SalesTax", "", false},
    {"Register", "", false, true},
    {"SalesByItemSummary", ""},
};

} // namespace

std::optional<ReportKey> reportKey(std::string_view key) {
    if (const app::ReportListing* listing = app::reportListing(key))
        return ReportKey{listing->key, listing->file, listing->viewerTools};
    const auto* const found =
        std::find_if(std::begin(kWithoutFile), std::end(kWithoutFile), [&](const ReportKey& one) { return key == one.key; });
    return found == std::end(kWithoutFile) ? std::nullopt : std::optional(*found);
}

} // namespace merchantry::reports
