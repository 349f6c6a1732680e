#pragma once

#include "app/db/session.h"
#include "base/currency.h"
#include "exchange/import/columns.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace merchantry::exchange {

// Hands each row of a select to a function.
void readRows(db::Session& session, const std::string& select, const std::function<void(const db::RowView&)>& take);

// The key that a text has in the store, whose comparisons leave letter case and blanks at the end aside.
std::string storeKey(std::string_view text);

// Names with their keys: departments, tax classes, suppliers.
class NamesInStore {
public:
    static constexpr int kNone = -1;
    static constexpr int kSeveral = -2;

    void add(int id, const std::string& name);
    // kNone, or kSeveral where more than one is called so.
    int idOf(std::string_view name) const;
    std::string nameOf(int id) const;
    const std::vector<std::pair<int, std::string>>& all() const { return all_; }

private:
    std::vector<std::pair<int, std::string>> all_; // by number
    std::unordered_map<std::string, int> ids_;
};

// What an item has from one of its suppliers.
struct SupplierLink {
    std::int16_t supplier = 0;
    Currency cost;
    std::string partNo;
};

struct StoredItem {
    std::string sku;
    std::string matrixSku;
    std::string name;
    std::string notes; // only where the file has notes
    std::optional<Currency> price;
    std::int32_t department = -1;
    std::int32_t tax = 0;
    std::int32_t stock = 0;
    double reorder = 0;
    double restock = 0;
    std::vector<SupplierLink> links;
    bool active = true;
    bool parent = false;
    bool serialized = false;
    bool untaxed = false; // of the type that has no tax class
};

// What the store has of items, as far as the columns of a file ask for it. Reads only. Throws DbError.
class ItemsInStore {
public:
    ItemsInStore(db::Session& session, const ColumnMatch& match);

    const std::vector<StoredItem>& items() const { return items_; }
    // The items with this code, one behind the other: the first one's position or -1, then the next one's.
    int find(std::string_view code) const;
    int next(int item) const { return next_[static_cast<std::size_t>(item)]; }
    // An item whose code is the same number, written with other zeros in front; -1 for none.
    int findByNumber(std::string_view digits) const;

    NamesInStore departments;
    NamesInStore taxes;
    NamesInStore suppliers;

private:
    void readItems(db::Session& session, bool notes);
    void readDetails(db::Session& session, const ColumnMatch& match);
    StoredItem* pairOf(const db::RowView& row);

    std::vector<StoredItem> items_;
    std::vector<int> next_;
    std::unordered_map<std::string, int> byCode_;
    std::unordered_map<std::string, int> byNumber_;
};

} // namespace merchantry::exchange
