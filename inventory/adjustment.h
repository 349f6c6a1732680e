#pragma once

#include "app/db/ado/recordset.h"

#include <cstdint>
#include <string>

namespace merchantry::inventory {

// One adjustment as typed: units in (positive) or out, and what one of them cost.
struct Adjustment {
    std::int16_t quantity = 0;
    double cost = 0; // not negative
};

// What is wrong with the two texts, in the sentence for the user; empty when they can be posted. Both are read by their numeric prefix.
std::string complaintAbout(const std::string& quantity, const std::string& cost);

// Reads both texts: the quantity rounded to a 16-bit number, halves to even, so that 0.4 posts 0. Throws OverflowError when it does not
// fit. Requires: no complaint.
Adjustment readAdjustment(const std::string& quantity, const std::string& cost);

// The stock after the adjustment, in 16-bit arithmetic. Throws OverflowError when the stock now or then does not fit.
std::int16_t adjusted(std::int64_t present, std::int16_t quantity);

// Posts it: reads the stock, writes the new balance, then the ledger row, each a statement of its own without a transaction, so that a
// failure in between leaves the stock changed and no ledger row, and a sale in between is lost from the balance. Throws OverflowError
// (its sentence names the item) before
// anything is written, and DbError. A reason that is called like a movement of the registers or of an order is marked as the adjustment it
// is.
void postAdjustment(db::Connection& store, const std::string& sku, const std::string& matrixSku, const std::string& reason,
                    const Adjustment& made);

} // namespace merchantry::inventory
