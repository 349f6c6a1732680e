#pragma once

#include <span>
#include <string_view>

namespace merchantry::app {

// A report that the program offers, as its file tells (its [listing]).
struct ReportListing {
    const char* key;  // exact and case-sensitive
    const char* file; // in the folder of reports
    const char* menu;
    const char* command;
    const char* caption;
    bool viewerTools;
};

// By menu, and within one in the order of its commands.
std::span<const ReportListing> reportListings();

// Null for a key that no file has.
const ReportListing* reportListing(std::string_view key);

} // namespace merchantry::app
