#pragma once

#include "base/currency.h"
#include "base/date.h"

#include <cstdint>
#include <string>
#include <vector>

namespace merchantry::catalog {

// A dated special price of an item, as the sales screen holds it until it is saved. Both days belong to the sale.
struct SaleEvent {
    std::int32_t ID = -1; // -1 for a new one
    std::string SKU;
    std::string MatrixSKU;
    Date DateFrom;
    Date DateTo;
    Currency SalePrice;
    bool InDatabase = false;
    bool Deleted = false;
    bool Dirty = false;
};

// A sale that begins later than now is a future one; one that ends before now is past. A sale that ends today ends at the beginning of
// today, so that it is past.
enum class SaleTime { Past, Current, Future };
SaleTime timeOf(const SaleEvent& sale, Date now);

// Why the sales cannot be saved, as a sentence that counts them from 1; empty when they can. First the one that ends before it begins,
// deleted ones included; then the first two, not deleted, that have a day in common.
std::string faultIn(const std::vector<SaleEvent>& sales);

} // namespace merchantry::catalog
