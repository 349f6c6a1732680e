#include "purchasing/orderpreview.h"

#include "base/counted.h"
#include "base/numbers.h"
#include "base/shown.h"

namespace merchantry::purchasing {

std::vector<SupplierOffer> readOffers(db::Recordset& offers) {
    std::vector<SupplierOffer> read;
    for (; !offers.Eof(); offers.MoveNext()) {
        OrderLine line;
        takeOffer(line, offers);
        read.push_back({line.SupID, line.Cost, line.Priority, line.ReorderQty, line.PartNo});
    }
    return read;
}

std::string whyNot(const SupplierOffer& offer, const SupplierOffer& preferred, SupplierRule rule) {
    const std::string dearer = shownCost(offer.Cost - preferred.Cost) + " dearer";
    const std::string later = "priority " + std::to_string(offer.Priority) + " after " + std::to_string(preferred.Priority);
    if (rule == SupplierRule::LowestCost && offer.Cost != preferred.Cost)
        return dearer;
    if (rule == SupplierRule::Priority && offer.Priority != preferred.Priority)
        return later;
    if (offer.Priority != preferred.Priority)
        return "same cost, " + later;
    if (offer.Cost != preferred.Cost)
        return "same priority, " + dearer;
    return "same cost and priority, later number";
}

std::string whyTaken(const std::vector<SupplierOffer>& offers, SupplierRule rule) {
    const SupplierOffer& first = offers.at(0);
    if (offers.size() == 1)
        return "taken: no other takes part";
    const bool sameCost = first.Cost == offers[1].Cost;
    const bool samePriority = first.Priority == offers[1].Priority;
    const std::string priority = "priority " + std::to_string(first.Priority);
    if (sameCost && samePriority)
        return "taken: of equals the earlier number";
    if (rule == SupplierRule::LowestCost)
        return "taken: lowest cost" + (sameCost ? ", " + priority : "");
    return "taken: " + priority + (samePriority ? ", lowest cost" : "");
}

void OrderPreview::setLines(std::vector<PreviewLine> lines) {
    lines_ = std::move(lines);
    tellListeners();
}

std::string OrderPreview::summary() const {
    int orders = 0;
    int items = 0;
    int dropped = 0;
    int orphans = 0;
    Currency total;
    const PreviewLine* before = nullptr;
    bool counts = false; // the order at hand has a line that stays
    for (const PreviewLine& line : lines_) {
        if (before == nullptr || before->line.SupID != line.line.SupID)
            counts = false;
        before = &line;
        if (line.orphan()) {
            ++orphans;
            continue;
        }
        if (line.dropped()) {
            ++dropped;
            continue;
        }
        orders += counts ? 0 : 1;
        counts = true;
        ++items;
        total += line.line.Cost * line.line.ReorderQty;
    }
    if (orphans > 0)
        return counted(orphans, "item has", "items have") +
               " no supplier that takes part: the run would end in an error before any order is written.";
    std::string words = counted(orders, "order") + " with " + counted(items, "item") + " for " + total.toDisplay();
    if (dropped > 0)
        words += "; " + counted(dropped, "line asks", "lines ask") + " for nothing, enough is on order";
    return words;
}

Value OrderPreview::cell(int row, int column) const {
    const PreviewLine& shown = line(row);
    const OrderLine& ordered = shown.line;
    switch (column) {
    case 0:
        return shown.supplier;
    case 1:
        return ordered.MatrixSKU;
    case 2:
        return shown.name;
    case 3:
        return ordered.Quantity;
    case kQty:
        return ordered.ReorderQty;
    case 5:
        return ordered.Cost;
    default:
        return shown.dropped() ? Currency() : ordered.Cost * ordered.ReorderQty;
    }
}

} // namespace merchantry::purchasing
