#include "reports/listing/listing.h"

#include "base/tomltable.h"

#include <algorithm>
#include <map>

namespace merchantry::reports {
namespace {

using toml::CheckedTable;

constexpr int kMostPlaces = 1000;

int placeOf(CheckedTable& table) {
    int place = 0;
    table.read("place", place, 1, kMostPlaces);
    if (place == 0)
        table.failHere("It wants its \"place\".");
    return place;
}

Listing listingOf(CheckedTable& table) {
    Listing listing;
    listing.key = table.wanted("key");
    listing.menu = table.wanted("menu");
    listing.place = placeOf(table);
    listing.command = table.wanted("command");
    listing.caption = table.wanted("caption");
    table.read("viewer_tools", listing.viewerTools);
    for (CheckedTable& entry : table.list("criteria", "a criterion")) {
        OfferedCriterion criterion{entry.wanted("name"), entry.wanted("field")};
        entry.read("date", criterion.date);
        entry.finish();
        listing.criteria.push_back(std::move(criterion));
    }
    table.finish();
    return listing;
}

PrintedLabels labelsOf(CheckedTable& table) {
    PrintedLabels labels{table.wanted("printer"), table.wanted("quantity"), placeOf(table)};
    table.finish();
    return labels;
}

ReportFile readOne(const std::filesystem::path& path) {
    ReportFile result{path.filename().string(), {}, {}};
    try {
        const toml::Value root = toml::parseFile(path.string());
        CheckedTable table(root, result.file, "a report");
        if (std::optional<CheckedTable> listing = table.table("listing"))
            result.listing = listingOf(*listing);
        if (std::optional<CheckedTable> labels = table.table("prints_labels"))
            result.labels = labelsOf(*labels);
    } catch (const toml::Error& error) {
        throw toml::FileError(result.file, error.line(), error.what());
    }
    return result;
}

// What only one file may have.
class Taken {
public:
    void take(const std::string& what, const std::string& file) {
        const auto [other, isNew] = by_.emplace(what, file);
        if (!isNew)
            throw toml::FileError(file, 0, what + " is taken by " + other->second + ".");
    }

private:
    std::map<std::string, std::string> by_;
};

void requireOneEach(const std::vector<ReportFile>& files) {
    Taken taken;
    for (const ReportFile& one : files) {
        if (one.listing) {
            taken.take("The key " + one.listing->key, one.file);
            taken.take("The command " + one.listing->command, one.file);
            taken.take("Place " + std::to_string(one.listing->place) + " of " + one.listing->menu, one.file);
        }
        if (one.labels) {
            taken.take("\"" + one.labels->quantity + "\" of \"" + one.labels->printer + "\"", one.file);
            taken.take("Place " + std::to_string(one.labels->place) + " of the labels", one.file);
        }
    }
}

} // namespace

std::vector<ReportFile> readListings(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".rpt")
            paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<ReportFile> files;
    for (const auto& path : paths)
        files.push_back(readOne(path));
    requireOneEach(files);
    return files;
}

} // namespace merchantry::reports
