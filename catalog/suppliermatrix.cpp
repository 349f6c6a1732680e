#include "catalog/suppliermatrix.h"

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
