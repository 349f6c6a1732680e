#pragma once

#include "app/titles.h"
#include "reports/engine/report.h"
#include "ui/desk.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace merchantry::reports {

using app::kProduct;

// There is no such report file.
class ReportNotFound : public std::runtime_error {
public:
    static constexpr unsigned kCode = 0x80043AC3;
    ReportNotFound() : std::runtime_error("File not found.") {}
};

// A report file that a screen has opened, with its numbered parameters. The same object is prepared by one screen and run by the window
// that shows it.
class RptFile {
public:
    // The name's case does not matter. Throws ReportNotFound, or DefinitionError for a file with a mistake.
    explicit RptFile(std::filesystem::path path);

    const std::filesystem::path& path() const { return path_; }
    const std::string& title() const { return definition_.title; }
    // From 1, in any order.
    void setParameter(std::size_t number, const std::string& value);
    const ParameterTexts& parameters() const { return parameters_; }
    // The criteria as a reader knows them, for pages and exports; empty takes the conditions of the parameters.
    std::string criteria;

    // Runs the report on a session of its own, with progress and a Stop. Null when the user stopped it; throws what the store and the file
    // have against it.
    std::unique_ptr<Report> run(ui::Desk& desk) const;
    // How many rows the report would have; nothing when the user stopped it. Throws as run does.
    std::optional<int> countRows(ui::Desk& desk) const;

private:
    std::filesystem::path path_;
    Definition definition_;
    ParameterTexts parameters_;
};
using RptFilePtr = std::shared_ptr<RptFile>;

// The folder of the report files that the program brings along.
std::filesystem::path reportFolder(const ui::Desk& desk);
// Opens the file; what keeps it from being opened is said in a message, and null is given.
RptFilePtr openReport(ui::Desk& desk, const std::filesystem::path& path);
// The sentence for a report that could not be opened.
std::string openFailure(const std::filesystem::path& path, const std::exception& error);

} // namespace merchantry::reports
