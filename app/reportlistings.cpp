#include "app/reportlistings.h"

#include <algorithm>

namespace merchantry::app {
namespace {

constexpr ReportListing kListings[] = {
#include "reportcommands.inc" // written from the report files when the program is built
};

} // namespace

std::span<const ReportListing> reportListings() {
    return kListings;
}

const ReportListing* reportListing(std::string_view key) {
    const auto* const found =
        std::find_if(std::begin(kListings), std::end(kListings), [&](const ReportListing& one) { return key == one.key; });
    return found == std::end(kListings) ? nullptr : found;
}

} // namespace merchantry::app
