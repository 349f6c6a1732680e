#pragma once

#include "reports/engine/outline.h"
#include "ui/page.h"

#include <cstdint>
#include <vector>

namespace merchantry::reports {

// Lays a report's rows out as labels on sheets or on a roll, as many of each as its definition says. A page is made when it is asked for.
// Borrows outline and measure, which must outlive it. Requires: the definition has a label.
class Labels : public ui::Pages {
public:
    // Throws DefinitionError where a line, a barcode or the quantity names a field that the rows do not have.
    Labels(const Outline& outline, const ui::TextMeasure& measure);

    int count() const override { return count_; }
    bool complete() const override { return true; }
    ui::Page page(int number) const override;
    // How many labels there are.
    std::int64_t labelCount() const { return ends_.empty() ? 0 : ends_.back(); }

private:
    void drawLabel(ui::Page& page, int row, int x, int y) const;

    const Outline& outline_;
    const ui::TextMeasure& measure_;
    const LabelDefinition& label_;
    std::vector<FieldText> lines_;
    std::vector<int> codes_;         // sources of the barcodes
    std::vector<std::int64_t> ends_; // by row: the labels up to and with it
    int count_ = 0;
};

} // namespace merchantry::reports
