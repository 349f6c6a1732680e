#pragma once

#include "reports/engine/chart.h"
#include "reports/engine/definition.h"

#include <optional>
#include <string>
#include <vector>

namespace merchantry::reports {

// The bars of a linear code in modules, the widths of bar and gap by turns, beginning with a bar. Without the quiet zones.
struct Bars {
    std::vector<int> widths;
    int modules = 0;  // all of them together
    std::string text; // as it is read, with its check digit
};

// Nothing when the kind cannot carry the code. Auto takes EAN-13 and UPC-A for their digits with a right check digit, and else Code 128.
std::optional<Bars> barsOf(const std::string& code, BarcodeKind kind);

// Draws the code in its box with its quiet zones, the bars as high as the box less the text. A code that cannot be carried stands there as
// text behind a mark.
void drawBarcode(ui::Page& page, const PageBox& box, const std::string& code, const BarcodeDefinition& definition,
                 const ui::TextMeasure& measure);

} // namespace merchantry::reports
