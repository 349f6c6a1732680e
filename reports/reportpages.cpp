#include "reports/reportpages.h"

namespace merchantry::reports {

ReportPages::ReportPages(std::unique_ptr<Report> report, const ui::TextMeasure& measure) : report_(std::move(report)) {
    if (report_->definition().label) {
        pages_ = std::make_unique<Labels>(report_->outline(), measure);
        return;
    }
    auto layout = std::make_unique<Layout>(report_->outline(), measure, report_->head());
    layout_ = layout.get();
    pages_ = std::move(layout);
}

bool ReportPages::layOut(std::chrono::milliseconds time) {
    if (layout_ == nullptr)
        return true;
    const auto end = std::chrono::steady_clock::now() + time;
    while (!layout_->layOut(1))
        if (std::chrono::steady_clock::now() >= end)
            return false;
    return true;
}

} // namespace merchantry::reports
