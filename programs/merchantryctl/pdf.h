#pragma once

#include "reports/engine/report.h"

#include <filesystem>

namespace merchantry::programs {

// Lays the report out and writes its pages. Throws std::runtime_error with a sentence when the file cannot be written.
void writeReportPdf(const reports::Report& report, const std::filesystem::path& file);

} // namespace merchantry::programs
