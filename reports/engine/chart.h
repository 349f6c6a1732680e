#pragma once

#include "reports/engine/definition.h"
#include "reports/engine/outline.h"
#include "ui/page.h"

#include <string>
#include <vector>

namespace merchantry::reports {

// A rectangle of a page, in twips.
struct PageBox {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

// One label of a chart with what its rows come to.
struct ChartValue {
    std::string label;
    Figure value;
};

// The labels in the order of the rows (dates) or from the largest value down, those beyond the definition's number as "Others".
std::vector<ChartValue> chartValues(const ChartDefinition& chart, const Outline& outline);

// What the chart takes of a page, in twips: its own height, or less when there are few bars.
int chartHeight(const ChartDefinition& chart, const Outline& outline);

void drawChart(ui::Page& page, const PageBox& box, const ChartDefinition& chart, const Outline& outline, const ui::TextMeasure& measure);

} // namespace merchantry::reports
