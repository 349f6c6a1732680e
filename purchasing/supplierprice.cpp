#include "purchasing/supplierprice.h"

#include "app/modMain.h"
#include "base/numbers.h"

#include <algorithm>
#include <limits>

namespace merchantry::purchasing {

using namespace app;

namespace {

constexpr std::int16_t kMostPieces = std::numeric_limits<std::int16_t>::max(); // of an order line

// A procedure of one item, with more arguments behind its key.
db::RecordsetPtr ofItem(const db::Sql& procedure, const std::string& sku, const std::string& matrixSku,
                        const std::vector<db::Parameter>& more = {}) {
    db::Command command(modMain().Conn);
    command.setCommandType(db::CommandType::StoredProcedure);
    command.setCommandText(procedure);
    std::vector<db::Parameter> parameters{textParameter("SKU", 100, sku), textParameter("MatrixSKU", 100, matrixSku)};
    parameters.insert(parameters.end(), more.begin(), more.end());
    for (const db::Parameter& parameter : parameters)
        command.append(parameter.name, parameter.type, parameter.value);
    auto rows = std::make_shared<db::Recordset>();
    rows->Open(command);
    return rows;
}

std::vector<SupplierTerms> termsOf(std::int16_t supplier, const std::string& sku, const std::string& matrixSku) {
    std::vector<SupplierTerms> terms;
    const auto rows = ofItem("bsp_SupplierMatrixDetailLookup", sku, matrixSku);
    for (; !rows->Eof(); rows->MoveNext()) {
        db::Recordset& row = *rows;
        if (row["SupID"].Value().toInt16() == supplier)
            terms.push_back({row["MinOrder"].Value().toInt16(), row["Priority"].Value().toInt16(), row["Cost"].Value().toCurrency(),
                             row["PartNo"].text()});
    }
    return terms;
}

// Whether the one goes before the other at that quantity.
bool goesBefore(const SupplierTerms& one, const SupplierTerms& other, std::int16_t quantity) {
    const bool reached = one.MinOrder <= quantity;
    if (reached != (other.MinOrder <= quantity))
        return reached;
    if (one.MinOrder != other.MinOrder)
        return reached ? one.MinOrder > other.MinOrder : one.MinOrder < other.MinOrder;
    return one.Priority < other.Priority;
}

} // namespace

const SupplierTerms* termsFor(std::span<const SupplierTerms> all, std::int16_t quantity) {
    const auto best = std::min_element(all.begin(), all.end(), [quantity](const SupplierTerms& one, const SupplierTerms& other) {
        return goesBefore(one, other, quantity);
    });
    return best == all.end() ? nullptr : &*best;
}

std::int16_t SupplierPrice::DefaultQuantity(std::int16_t SupplierID, const std::string& SKU, const std::string& MatrixSKU) const {
    const auto item = ofItem("sp_GetItemReorderData", SKU, MatrixSKU);
    std::int16_t least = 0;
    if (!item->Eof()) {
        const int wanted = toInt32((*item)["Reorder"].Value().toNumber() - (*item)["QtyOrdered"].Value().toNumber());
        const auto rows =
            ofItem("bsp_POInfo", SKU, MatrixSKU,
                   {intParameter("Wanted", std::max(wanted, 0)), intParameter("ByCost", 1), intParameter("SupID", SupplierID)});
        for (; !rows->Eof(); rows->MoveNext())
            if (const int quantity = (*rows)["ReorderQty"].Value().toInt32(); quantity > 0 && (least == 0 || quantity < least))
                least = static_cast<std::int16_t>(std::min(quantity, int{kMostPieces}));
    }
    if (least > 0)
        return least;
    const auto terms = termsOf(SupplierID, SKU, MatrixSKU);
    const SupplierTerms* const smallest = termsFor(terms, 0);
    return smallest == nullptr ? std::int16_t{1} : std::max(smallest->MinOrder, std::int16_t{1});
}

Currency SupplierPrice::UnitCost(std::int16_t SupplierID, const std::string& SKU, const std::string& MatrixSKU,
                                 std::int16_t quantity) const {
    const auto terms = termsOf(SupplierID, SKU, MatrixSKU);
    const SupplierTerms* const holding = termsFor(terms, quantity);
    return holding == nullptr ? Currency() : holding->Cost;
}

std::string SupplierPrice::PartNo(std::int16_t SupplierID, const std::string& SKU, const std::string& MatrixSKU, std::int16_t quantity,
                                  Currency cost) const {
    const auto terms = termsOf(SupplierID, SKU, MatrixSKU);
    for (const SupplierTerms& one : terms)
        if (one.Cost == cost)
            return one.PartNo;
    const SupplierTerms* const holding = termsFor(terms, quantity);
    return holding == nullptr ? std::string() : holding->PartNo;
}

} // namespace merchantry::purchasing
