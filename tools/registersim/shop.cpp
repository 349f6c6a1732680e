#include "tools/registersim/shop.h"

#include "base/division.h"
#include "base/taxrate.h"
#include "tools/registersim/query.h"

namespace merchantry::registersim {
namespace {

int wholeOf(const Value& value) {
    return static_cast<int>(value.toInteger());
}

std::string textOf(const Value& value) {
    return value.isNull() ? std::string() : value.as<std::string>();
}

using Places = std::map<std::pair<std::string, std::string>, std::size_t>;

void readGoods(db::Session& session, Shop& shop, Places& places) {
    for (const Row& row :
         query(session,
               "SELECT i.SKU, i.MatrixSKU, ISNULL(i.DepartmentID, 1), i.TaxID, ISNULL(s.Quantity, 0), i.Reorder, i.Restock, i.SerialFlag "
               "FROM Item i LEFT JOIN Stock s ON s.SKU = i.SKU AND s.MatrixSKU = i.MatrixSKU "
               "WHERE i.SKU NOT LIKE '$%' AND i.TypeID <> 4 AND i.Active = 1 ORDER BY i.SKU, i.MatrixSKU")) {
        Good good;
        good.sku = textOf(row[0]);
        good.matrixSku = textOf(row[1]);
        good.departmentId = wholeOf(row[2]);
        good.taxId = wholeOf(row[3]);
        good.onHand = wholeOf(row[4]);
        good.reorderQty = wholeOf(row[5]);
        good.reorderAt = wholeOf(row[6]);
        good.serialized = row[7].toFlag();
        places[{good.sku, good.matrixSku}] = shop.goods.size();
        shop.goods.push_back(std::move(good));
    }
}

// Calls take(good, row) for every row whose first two cells are the key of a good.
template <class Take> void forGoods(db::Session& session, Shop& shop, const Places& places, std::string_view select, Take take) {
    for (const Row& row : query(session, select)) {
        const auto place = places.find({textOf(row[0]), textOf(row[1])});
        if (place != places.end())
            take(shop.goods[place->second], row);
    }
}

void readTerms(db::Session& session, Shop& shop, const Places& places) {
    forGoods(session, shop, places, "SELECT SKU, MatrixSKU, Tier, Quantity, Price FROM PriceMatrix", [](Good& good, const Row& row) {
        good.prices.push_back({wholeOf(row[2]), wholeOf(row[3]), row[4].toCurrency()});
    });
    forGoods(session, shop, places, "SELECT SKU, MatrixSKU, DateFrom, DateTo, SalePrice FROM Sales", [](Good& good, const Row& row) {
        good.events.push_back({row[2].as<Date>().dateOnly(), row[3].as<Date>().dateOnly(), row[4].toCurrency()});
    });
    forGoods(session, shop, places,
             "SELECT SKU, MatrixSKU, SupID, Cost, ISNULL(MinOrder, 1), PartNo FROM SupplierMatrixDetail ORDER BY Priority DESC",
             [](Good& good, const Row& row) {
                 good.supplierId = wholeOf(row[2]);
                 good.supplierCost = row[3].toCurrency();
                 good.minOrder = wholeOf(row[4]);
                 good.partNo = textOf(row[5]);
             });
}

void readStock(db::Session& session, Shop& shop, const Places& places) {
    forGoods(session, shop, places, "SELECT SKU, MatrixSKU, SerialNo FROM StockSerials WHERE LockedFlag = 0 ORDER BY StockSerialID",
             [](Good& good, const Row& row) { good.serials.push_back(textOf(row[2])); });
    forGoods(session, shop, places,
             "SELECT l.SKU, l.MatrixSKU, l.Cost_wt FROM (SELECT MAX(LedgerID) AS Newest FROM InventoryLedger GROUP BY SKU, MatrixSKU) n "
             "INNER JOIN InventoryLedger l ON l.LedgerID = n.Newest",
             [](Good& good, const Row& row) {
                 good.averageCost = row[2].toCurrency();
                 good.hasLedger = true;
             });
    forGoods(session, shop, places, "SELECT SKU, MatrixSKU, COUNT(*) FROM TransactionEntry GROUP BY SKU, MatrixSKU",
             [](Good& good, const Row& row) { good.popularity = 1 + wholeOf(row[2]); });
}

void readPeople(db::Session& session, Shop& shop) {
    for (const Row& row :
         query(session, "SELECT ID, TierID, ChargeAccount, TaxExempt, Employee FROM Customer WHERE Active = 1 ORDER BY ID"))
        shop.shoppers.push_back({wholeOf(row[0]), wholeOf(row[1]), row[2].toFlag(), row[3].toFlag(), row[4].toFlag(), {}, {}});
    for (const Row& row : query(session, "SELECT ID FROM Cashier ORDER BY ID"))
        shop.cashierIds.push_back(wholeOf(row[0]));
    for (const Row& row : query(session, "SELECT ID FROM Register ORDER BY ID"))
        shop.registerIds.push_back(wholeOf(row[0]));
}

} // namespace

void Good::move(int quantity, Currency cost) {
    if (quantity > 0 && (onHand <= 0 || !hasLedger))
        averageCost = cost;
    else if (quantity > 0)
        averageCost = Currency::fromUnits(dividedAwayFromZero(
            static_cast<__int128>(onHand) * averageCost.units() + static_cast<__int128>(quantity) * cost.units(), onHand + quantity));
    else if (!hasLedger)
        averageCost = cost;
    hasLedger = true;
    onHand += quantity;
}

Currency Shop::price(const Good& good, int tier, int quantity, Date day) {
    const PriceBreak* best = nullptr;
    for (const PriceBreak& one : good.prices) {
        const bool fits = (one.tier == tier || one.tier == 1) && (one.quantity <= quantity || one.quantity <= 1);
        if (fits && (best == nullptr || std::pair(one.tier == tier, one.quantity) > std::pair(best->tier == tier, best->quantity)))
            best = &one;
    }
    Currency price = best == nullptr ? Currency() : best->price;
    for (const SaleEvent& event : good.events)
        if (event.from <= day && day <= event.to)
            price = std::min(price, event.price);
    return price;
}

double Shop::taxPercent(int taxId) const {
    const auto rate = taxRates.find(taxId);
    return rate == taxRates.end() ? 0 : rate->second / 1000.0;
}

Currency Shop::tax(int taxId, Currency amount) const {
    const auto rate = taxRates.find(taxId);
    if (rate == taxRates.end())
        return {};
    return TaxRate::fromThousandths(rate->second).on(amount);
}

std::vector<TenderKey> loadTenders(db::Session& session) {
    std::vector<TenderKey> keys;
    for (const Row& row : query(session, "EXEC sp_GetTenderTypes 1"))
        if (row[2].toFlag())
            keys.push_back({textOf(row[1]), row[3].isNull() ? textOf(row[1]) : textOf(row[3])});
    return keys;
}

void readSettings(db::Session& session, Shop& shop) {
    shop.tenders = loadTenders(session);
    shop.taxRates.clear();
    for (const Row& row : query(session, "SELECT TaxID, Amt FROM TaxDef"))
        shop.taxRates[wholeOf(row[0])] = static_cast<int>(TaxRate::fromPercent(row[1].toNumber()).thousandths());
}

Shop loadShop(db::Session& session) {
    Shop shop;
    Places places;
    readGoods(session, shop, places);
    readTerms(session, shop, places);
    readStock(session, shop, places);
    readPeople(session, shop);
    readSettings(session, shop);
    return shop;
}

} // namespace merchantry::registersim
