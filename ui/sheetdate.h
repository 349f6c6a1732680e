#pragma once

#include "base/date.h"

#include <xlsxwriter.h>

namespace merchantry::ui {

// A date and time as the cell of a workbook takes it, to the second.
inline lxw_datetime forSheet(const Date& date) {
    return {date.year(), date.month(), date.day(), date.hour(), date.minute(), static_cast<double>(date.second())};
}

} // namespace merchantry::ui
