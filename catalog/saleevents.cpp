#include "catalog/saleevents.h"

namespace merchantry::catalog {
namespace {

bool overlap(const SaleEvent& one, const SaleEvent& other) {
    return other.DateTo >= one.DateFrom && one.DateTo >= other.DateFrom;
}

} // namespace

SaleTime timeOf(const SaleEvent& sale, Date now) {
    if (sale.DateFrom > now)
        return SaleTime::Future;
    return sale.DateTo >= now ? SaleTime::Current : SaleTime::Past;
}

std::string faultIn(const std::vector<SaleEvent>& sales) {
    for (std::size_t i = 0; i < sales.size(); ++i)
        if (sales[i].DateFrom > sales[i].DateTo)
            return "Starting date exceeds ending date in line " + std::to_string(i + 1) + ". Please reenter.";
    for (std::size_t i = 0; i < sales.size(); ++i)
        for (std::size_t j = i + 1; j < sales.size(); ++j)
            if (!sales[i].Deleted && !sales[j].Deleted && overlap(sales[i], sales[j]))
                return "Sales periods are overlapping in lines " + std::to_string(i + 1) + " and " + std::to_string(j + 1) + ".";
    return "";
}

} // namespace merchantry::catalog
