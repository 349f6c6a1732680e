#include "catalog/suppliermatrix.h"

#include <algorithm>
#include <utility>

namespace merchantry::catalog {

void renumber(std::vector<SupplierRow>& rows) {
    std::int16_t next = 1;
    for (SupplierRow& row : rows) {
        if (row.Deleted)
            continue;
        if (row.Priority != next) {
            row.Priority = next;
            row.Dirty = true;
        }
        ++next;
    }
}

void exchange(SupplierRow& one, SupplierRow& other) {
    std::swap(one, other);
    std::swap(one.Priority, other.Priority);
    one.Dirty = other.Dirty = true;
}

std::vector<SupplierStep> stepsToWrite(const std::vector<SupplierRow>& rows) {
    using Key = std::pair<std::int16_t, Currency>;
    std::vector<std::size_t> waiting;
    std::vector<Key> held; // in the store, by place of the row that will leave it
    for (std::size_t i = 0; i < rows.size(); ++i) {
        held.emplace_back(rows[i].OldSupID, rows[i].OldCost);
        if (!rows[i].Deleted && (!rows[i].InDatabase || rows[i].Dirty))
            waiting.push_back(i);
    }
    std::vector<SupplierStep> steps;
    const auto free = [&](std::size_t place) {
        return std::none_of(waiting.begin(), waiting.end(), [&](std::size_t other) {
            return other != place && rows[other].InDatabase && held[other] == Key(rows[place].SupID, rows[place].Cost);
        });
    };
    Currency parking;
    while (!waiting.empty()) {
        const auto next = std::find_if(waiting.begin(), waiting.end(), free);
        if (next != waiting.end()) {
            steps.push_back({*next, std::nullopt});
            waiting.erase(next);
            continue;
        }
        // All wait for each other: one in the store steps aside.
        const auto aside = std::find_if(waiting.begin(), waiting.end(), [&](std::size_t place) {
            return rows[place].InDatabase && std::any_of(waiting.begin(), waiting.end(), [&](std::size_t other) {
                       return other != place && Key(rows[other].SupID, rows[other].Cost) == held[place];
                   });
        });
        parking -= Currency::fromInteger(1);
        held[*aside] = {rows[*aside].SupID, parking};
        steps.push_back({*aside, parking});
    }
    return steps;
}

std::optional<SupplierFault> faultIn(const std::vector<const SupplierRow*>& shown) {
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        if (shown[i]->SupID == 0)
            return SupplierFault{static_cast<int>(i) + 1, "Supplier is not specified in row " + number + "."};
        for (std::size_t j = i + 1; j < shown.size(); ++j)
            if (shown[j]->SupID == shown[i]->SupID && shown[j]->Cost == shown[i]->Cost)
                return SupplierFault{static_cast<int>(i) + 1, "Duplicate supplier/cost combination is detected in rows " + number +
                                                                  " and " + std::to_string(j + 1) + "."};
    }
    return std::nullopt;
}

} // namespace merchantry::catalog
