#pragma once

#include "reports/engine/labels.h"
#include "reports/engine/report.h"

#include <chrono>
#include <memory>
#include <vector>

namespace merchantry::reports {

// A report that was run, with its pages, laid out a portion at a time. Owns the report; borrows the measure.
class ReportPages {
public:
    ReportPages(std::unique_ptr<Report> report, const ui::TextMeasure& measure);

    const Report& report() const { return *report_; }
    const ui::Pages& pages() const { return *pages_; }
    // Null for labels, which have no groups.
    const std::vector<ui::PageBranch>* tree() const { return layout_ == nullptr ? nullptr : &layout_->tree(); }
    // A report of letters, each for somebody; none for any other. Requires: all pages are laid out.
    std::vector<Letter> letters() const { return layout_ == nullptr ? std::vector<Letter>() : layout_->letters(); }
    int rowCount() const { return report_->outline().rows().rowCount(); }
    // Lays out more pages for about so long; true when all are.
    bool layOut(std::chrono::milliseconds time);

private:
    std::unique_ptr<Report> report_;
    std::unique_ptr<ui::Pages> pages_;
    Layout* layout_ = nullptr; // pages_, when they are no labels
};

} // namespace merchantry::reports
