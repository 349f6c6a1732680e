#pragma once

#include "base/listrows.h"
#include "purchasing/orderrun.h"

#include <string>
#include <vector>

namespace merchantry::purchasing {

// What one supplier offers for a line of an order.
struct SupplierOffer {
    std::int16_t SupID = 0;
    Currency Cost;
    std::int16_t Priority = 0;
    std::int32_t ReorderQty = 0;
    std::string PartNo;
};

// A line that a run would write, with all offers for it, the preferred one first; none when no supplier takes part.
struct PreviewLine {
    OrderLine line;
    std::vector<SupplierOffer> offers;
    std::string name;     // of the item
    std::string supplier; // the chosen one's

    bool orphan() const { return offers.empty(); }
    // The store drops a line that asks for nothing.
    bool dropped() const { return line.ReorderQty < 1; }
};

// All offers of such a recordset, in its order.
std::vector<SupplierOffer> readOffers(db::Recordset& offers);

// Why the preferred offer was taken, or why this one was not.
std::string whyNot(const SupplierOffer& offer, const SupplierOffer& preferred, SupplierRule rule);
std::string whyTaken(const std::vector<SupplierOffer>& offers, SupplierRule rule);

// The lines of a run as the preview shows them, in the order in which they would be written. Columns: Supplier, SKU, Name, In Stock, Qty,
// Cost, Extended.
class OrderPreview : public ListRows {
public:
    static constexpr int kQty = 4;

    void setLines(std::vector<PreviewLine> lines);
    const PreviewLine& line(int row) const { return lines_.at(static_cast<std::size_t>(row)); }
    // "2 orders with 14 items for $120.50"; how many lines would be dropped or end the run.
    std::string summary() const;

    int columnCount() const override { return 7; }
    std::string columnName(int) const override { return ""; }
    int rowCount() const override { return static_cast<int>(lines_.size()); }
    Value cell(int row, int column) const override;

private:
    std::vector<PreviewLine> lines_;
};

} // namespace merchantry::purchasing
