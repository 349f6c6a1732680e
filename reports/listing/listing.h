#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::reports {

// A column of a report's query that the criteria screen offers.
struct OfferedCriterion {
    std::string name;  // what users read
    std::string field; // a column or an expression over the tables of the query
    bool date = false; // compared by the day
};

// Where the program offers a report: what stands in [listing] of its file.
struct Listing {
    std::string key;     // what the program knows it by; exact and case-sensitive
    std::string menu;    // the menu in which its command stands
    int place = 0;       // among the reports of that menu, from 1
    std::string command; // the command's name
    std::string caption;
    bool viewerTools = true; // the viewer's tools are shown
    std::vector<OfferedCriterion> criteria;
};

// Which printer's labels a file prints by which rule of quantity: what stands in [prints_labels].
struct PrintedLabels {
    std::string printer;
    std::string quantity;
    int place = 0; // in the lists of both, from 1
};

// What one report file says of where it is offered; most have one of the two or none.
struct ReportFile {
    std::string file; // its name without the folder
    std::optional<Listing> listing;
    std::optional<PrintedLabels> labels;
};

// The report files of a folder by their names. Throws toml::FileError for a mistake in what is read here, and for two that want the same
// key, command or place.
std::vector<ReportFile> readListings(const std::filesystem::path& folder);

} // namespace merchantry::reports
