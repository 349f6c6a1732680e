#pragma once

#include "base/currency.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::catalog {

// One supplier of an item at one cost, as the item screen holds it until it is left. Old supplier and old cost are those last saved: with
// the item they are the row's key in the store.
struct SupplierRow {
    std::string SKU;
    std::string MatrixSKU;
    std::int16_t OldSupID = 0;
    Currency OldCost;
    std::int16_t MinOrder = 0;
    std::int16_t Priority = 0; // 1 first
    std::string PartNo;
    std::int16_t SupID = 0; // 0 is the empty supplier
    Currency Cost;
    bool InDatabase = false;
    bool Dirty = false;
    bool Deleted = false;
};

// Gives the rows that are not deleted the priorities 1, 2, 3 and so on; a row whose number changes becomes dirty.
void renumber(std::vector<SupplierRow>& rows);

// The two change places, but each place keeps its priority; both become dirty.
void exchange(SupplierRow& one, SupplierRow& other);

// One statement of saving the rows: the row's place, and the cost at which it waits while another row takes the key that it leaves.
struct SupplierStep {
    std::size_t row = 0;
    std::optional<Currency> parked;
};
// The new and dirty rows in an order in which none meets a key (supplier and cost) that another one still holds in the store: a rise of all
// prices by the same amount begins with the highest. Rows that exchange their keys are parked in between at costs below 0.
std::vector<SupplierStep> stepsToWrite(const std::vector<SupplierRow>& rows);

// What is wrong with the rows in the order in which they are shown: the first one without a supplier, or the first two with the same
// supplier and cost.
struct SupplierFault {
    int row; // from 1
    std::string message;
};
std::optional<SupplierFault> faultIn(const std::vector<const SupplierRow*>& shown);

} // namespace merchantry::catalog
