#pragma once

#include "reports/reportpages.h"
#include "ui/desk.h"

#include <filesystem>
#include <string>

namespace merchantry::reports {

// The kinds of files that a report can be written to, as a file dialogue lists them.
std::string exportFilter();
// Writes the report, in the kind that the file's ending tells (a PDF without one), with progress and a Stop. False when the user stopped
// it. Throws std::runtime_error with a sentence for the user; a file that stood there is whole then. Requires: all pages are laid out.
bool exportReport(ui::Desk& desk, const ReportPages& report, std::filesystem::path file);

// Puts the pages, from 1, one after the other, with progress and a Stop. False when the user stopped it.
bool putPages(ui::Desk& desk, const std::string& what, const ui::Pages& pages, int first, int last, ui::PageSink& sink);

} // namespace merchantry::reports
