#pragma once

#include "base/currency.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace merchantry::purchasing {

// What a supplier asks for an item from a quantity on.
struct SupplierTerms {
    std::int16_t MinOrder = 1;
    std::int16_t Priority = 0; // 1 first
    Currency Cost;
    std::string PartNo;
};

// The terms that hold for a quantity: those with the largest minimum that the quantity reaches, otherwise those with the smallest; ties by
// priority. Null when there are none. sp_AdjustSupplierMatrix remembers costs by the same rule.
const SupplierTerms* termsFor(std::span<const SupplierTerms> all, std::int16_t quantity);

// What to put on an order line when an item is picked for a supplier, from the supplier's terms. Asked in this order, each answer going
// into the next question. All three throw DbError.
class SupplierPrice {
public:
    // What an automatic order would take from this supplier; when nothing is wanted, the supplier's smallest minimum. At least 1.
    std::int16_t DefaultQuantity(std::int16_t SupplierID, const std::string& SKU, const std::string& MatrixSKU) const;
    // Of one piece at that quantity; 0 when the supplier does not deliver it.
    Currency UnitCost(std::int16_t SupplierID, const std::string& SKU, const std::string& MatrixSKU, std::int16_t quantity) const;
    // The supplier's own number for the item at that cost, otherwise at that quantity; empty when there is none.
    std::string PartNo(std::int16_t SupplierID, const std::string& SKU, const std::string& MatrixSKU, std::int16_t quantity,
                       Currency cost) const;
};

} // namespace merchantry::purchasing
