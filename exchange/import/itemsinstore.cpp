#include "exchange/import/itemsinstore.h"

#include "app/db/eachrow.h"
#include "base/lettercase.h"
#include "base/text.h"

#include <algorithm>
#include <utility>

namespace merchantry::exchange {
namespace {

constexpr int kParentType = 4;
constexpr int kSerializedType = 5;

std::string textAt(const db::RowView& row, int column) {
    return row.isNull(column) ? std::string() : std::string(row.text(column));
}

bool plainLower(char c) {
    return static_cast<unsigned char>(c) < 0x80 && (c < 'A' || c > 'Z');
}

// Digits without zeros in front; empty for any other text, and for zeros alone.
std::string_view numberIn(std::string_view code) {
    if (code.empty() || !std::all_of(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return "";
    return code.substr(std::min(code.find_first_not_of('0'), code.size()));
}

} // namespace

void readRows(db::Session& session, const std::string& select, const std::function<void(const db::RowView&)>& take) {
    db::EachRow taker(take);
    session.execute(select, taker);
}

std::string storeKey(std::string_view text) {
    const std::string_view bare = trimmedRight(text);
    return std::all_of(bare.begin(), bare.end(), plainLower) ? std::string(bare) : lowerCase(bare);
}

void NamesInStore::add(int id, const std::string& name) {
    all_.emplace_back(id, name);
    const auto [entry, fresh] = ids_.emplace(storeKey(name), id);
    if (!fresh)
        entry->second = kSeveral;
}

int NamesInStore::idOf(std::string_view name) const {
    const auto found = ids_.find(storeKey(name));
    return found == ids_.end() ? kNone : found->second;
}

std::string NamesInStore::nameOf(int id) const {
    const auto found = std::find_if(all_.begin(), all_.end(), [id](const auto& one) { return one.first == id; });
    return found == all_.end() ? "" : found->second;
}

ItemsInStore::ItemsInStore(db::Session& session, const ColumnMatch& match) {
    readRows(session, "SELECT DepartmentID, Department FROM Departments ORDER BY DepartmentID",
             [&](const db::RowView& row) { departments.add(static_cast<int>(row.number(0)), textAt(row, 1)); });
    readRows(session, "SELECT TaxID, Description FROM TaxDef ORDER BY TaxID",
             [&](const db::RowView& row) { taxes.add(static_cast<int>(row.number(0)), textAt(row, 1)); });
    readRows(session, "SELECT SupID, Supplier FROM Suppliers ORDER BY SupID",
             [&](const db::RowView& row) { suppliers.add(static_cast<int>(row.number(0)), textAt(row, 1)); });
    readItems(session, match.columnOf(item::Notes) >= 0);
    if (!items_.empty())
        readDetails(session, match);
}

void ItemsInStore::readItems(db::Session& session, bool notes) {
    const std::string more = notes ? ", Notes" : "";
    readRows(session,
             "SELECT SKU, MatrixSKU, Name, DepartmentID, TaxID, TypeID, Reorder, Restock, Active, SerialFlag" + more +
                 " FROM Item ORDER BY SKU, MatrixSKU",
             [&](const db::RowView& row) {
                 StoredItem& one = items_.emplace_back();
                 one.sku = textAt(row, 0);
                 one.matrixSku = textAt(row, 1);
                 one.name = textAt(row, 2);
                 one.department = row.isNull(3) ? -1 : static_cast<std::int32_t>(row.number(3));
                 one.tax = static_cast<std::int32_t>(row.number(4));
                 one.parent = row.number(5) == kParentType;
                 one.untaxed = row.number(5) == kSerializedType;
                 one.reorder = row.value(6).toNumber();
                 one.restock = row.value(7).toNumber();
                 one.active = row.number(8) != 0;
                 one.serialized = row.number(9) != 0 || one.untaxed;
                 one.notes = notes ? textAt(row, 10) : "";
             });
    next_.assign(items_.size(), -1);
    byCode_.reserve(items_.size());
    for (int i = static_cast<int>(items_.size()) - 1; i >= 0; --i) {
        const std::string& code = items_[static_cast<std::size_t>(i)].matrixSku;
        auto [entry, fresh] = byCode_.emplace(storeKey(code), i);
        if (!fresh)
            next_[static_cast<std::size_t>(i)] = std::exchange(entry->second, i);
        if (const std::string_view number = numberIn(code); !number.empty())
            byNumber_[std::string(number)] = i;
    }
}

// The select's first two cells are the item's codes.
StoredItem* ItemsInStore::pairOf(const db::RowView& row) {
    int found = find(row.text(1));
    const std::string sku = storeKey(row.text(0));
    while (found >= 0 && storeKey(items_[static_cast<std::size_t>(found)].sku) != sku)
        found = next(found);
    return found < 0 ? nullptr : &items_[static_cast<std::size_t>(found)];
}

void ItemsInStore::readDetails(db::Session& session, const ColumnMatch& match) {
    const auto each = [&](const std::string& select, const std::function<void(StoredItem&, const db::RowView&)>& take) {
        readRows(session, select, [&](const db::RowView& row) {
            if (StoredItem* one = pairOf(row))
                take(*one, row);
        });
    };
    if (match.columnOf(item::Price) >= 0)
        each("SELECT SKU, MatrixSKU, MAX(Price) FROM PriceMatrix WHERE Tier = 1 AND Quantity IN (0, 1) GROUP BY SKU, MatrixSKU",
             [](StoredItem& one, const db::RowView& row) { one.price = Currency::fromUnits(row.number(2)); });
    if (match.columnOf(item::Stock) >= 0)
        each("SELECT SKU, MatrixSKU, Quantity FROM Stock",
             [](StoredItem& one, const db::RowView& row) { one.stock = static_cast<std::int32_t>(row.number(2)); });
    if (match.columnOf(item::Supplier) >= 0 || match.columnOf(item::Cost) >= 0 || match.columnOf(item::PartNo) >= 0)
        each("SELECT SKU, MatrixSKU, SupID, Cost, PartNo FROM SupplierMatrixDetail ORDER BY SKU, MatrixSKU, Priority, SupID, Cost",
             [](StoredItem& one, const db::RowView& row) {
                 one.links.push_back({static_cast<std::int16_t>(row.number(2)), Currency::fromUnits(row.number(3)), textAt(row, 4)});
             });
}

int ItemsInStore::find(std::string_view code) const {
    const auto found = byCode_.find(storeKey(code));
    return found == byCode_.end() ? -1 : found->second;
}

int ItemsInStore::findByNumber(std::string_view digits) const {
    const std::string_view number = numberIn(digits);
    const auto found = number.empty() ? byNumber_.end() : byNumber_.find(std::string(number));
    return found == byNumber_.end() ? -1 : found->second;
}

} // namespace merchantry::exchange
