#pragma once

#include "base/listrows.h"
#include "catalog/pricechange.h"
#include "catalog/pricerule.h"

#include <string>
#include <vector>

namespace merchantry::catalog {

// The prices that a rule would change, before and after: what the grid of frmBulkPrice shows. Columns: SKU, MatrixSKU, Name, Qty >=,
// Before, After, Remark. Read only; it works out nothing anew but when the rule changes.
class PricePreview : public ListRows {
public:
    struct Line {
        PriceStep step; // `from` the price that stands, `to` the one that the rule gives
        std::string name;
        NewPrice::Remark remark = NewPrice::Remark::None;
        Currency cost; // of a piece; 0 while none is known

        // A price that would be written and does not bring in what the piece cost.
        bool belowCost() const { return remark == NewPrice::Remark::None && step.to < cost; }
    };

    void setLines(std::vector<Line> lines);
    // Without a rule all prices stay. Throws OverflowError for a price that money cannot hold; everything is as before then.
    void apply(const PriceRule& rule);
    void applyNone();

    const std::vector<Line>& lines() const { return lines_; }
    int changing() const { return changing_; }
    int refused() const { return refused_; }     // neither changing nor unchanged
    int belowCost() const { return belowCost_; } // of the changing ones
    // What would be written.
    std::vector<PriceStep> steps() const;

    int columnCount() const override;
    std::string columnName(int column) const override;
    int rowCount() const override { return static_cast<int>(lines_.size()); }
    Value cell(int row, int column) const override;

private:
    void take(const std::vector<NewPrice>& prices);

    std::vector<Line> lines_;
    int changing_ = 0;
    int refused_ = 0;
    int belowCost_ = 0;
};

} // namespace merchantry::catalog
