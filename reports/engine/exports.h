#pragma once

#include "reports/engine/report.h"

#include <functional>
#include <iosfwd>

namespace merchantry::reports {

// All of these throw std::runtime_error for labels, which have no columns.

// Asked now and then with the rows written; false stops the writing.
using KeepWriting = std::function<bool(int rows)>;

// The rows as RFC 4180 has it: a line of titles, then a line a row, the groups' names first, hidden columns too; numbers plain, dates as
// yyyy-mm-dd hh:mm:ss. With criteria a last column carries them in its first row. False when it was stopped.
bool writeCsv(const Report& report, std::ostream& out, const KeepWriting& goOn = {});

// A page for a browser, with groups and totals, that needs nothing beside it. False when it was stopped.
bool writeHtml(const Report& report, std::ostream& out, const KeepWriting& goOn = {});

// A workbook with typed cells, the titles frozen, and a second sheet that tells report, criteria and date. The file appears whole or not at
// all. Throws std::exception with a sentence when it cannot be written. False when it was stopped.
bool writeWorkbook(const Report& report, const std::filesystem::path& file, const KeepWriting& goOn = {});

} // namespace merchantry::reports
