#pragma once

#include "exchange/import/importplan.h"
#include "exchange/import/itemsinstore.h"

#include <string_view>
#include <unordered_map>

namespace merchantry::exchange {

// What becomes of one item. Departments and suppliers that are to be made have negative numbers, see kFirstNew.
struct ItemRow {
    std::int32_t tableRow = 0;
    std::int32_t existing = -1; // of the items in the store; -1 for a new one
    RowState state = RowState::Bad;
    bool linkMade = false;     // the item does not have this supplier yet
    std::uint16_t changed = 0; // fields that are written, a bit by position; of a new item all that the file gives
    std::int16_t link = -1;    // position among the item's suppliers
    std::string_view sku;
    std::string_view matrixSku;
    std::string_view name;
    std::string_view partNo;
    std::string_view notes;
    Currency price;
    Currency cost;
    std::int32_t department = 0;
    std::int32_t tax = 0;
    std::int32_t stock = 0;
    std::int32_t supplier = -1; // -1 for none
    std::int32_t reorder = 0;
    std::int32_t restock = 0;
    bool active = true;
    bool flattened = false; // a text had line ends or tabs

    bool has(int field) const { return (changed >> field & 1U) != 0; }
    void set(int field, bool on = true) { changed = static_cast<std::uint16_t>(on ? changed | 1U << field : changed & ~(1U << field)); }
};

// The number of the first department or supplier that an import makes, before the store gives it one; the next ones count down.
constexpr int kFirstNew = -10;

// The plan of a file of items. The items in the store must outlive it.
class ItemPlan : public ImportPlan {
public:
    ItemPlan(const SheetTable& table, const ColumnMatch& match, const ImportOptions& options, const ItemsInStore& store);

    int rows() const override { return static_cast<int>(rows_.size()); }
    RowState state(int row) const override { return at(row).state; }
    int tableRow(int row) const override { return at(row).tableRow; }
    std::string key(int row) const override { return std::string(at(row).matrixSku); }
    std::string name(int row) const override;
    std::vector<std::string> sums() const override;

    const ItemRow& at(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    const StoredItem* stored(const ItemRow& row) const;
    const ImportOptions& options() const { return options_; }

private:
    void checkRow(int tableRow) override;
    void checkedAll() override;
    void setState(int row, RowState state) override { rows_[static_cast<std::size_t>(row)].state = state; }
    std::string changesOf(int row) const override;

    bool takeCode(ItemRow& row);
    void judgeCode(const SheetCell& cell, std::string_view& code, Refusal& refusal);
    bool findItem(ItemRow& row, std::string_view code, std::string_view parent);
    bool takeFields(ItemRow& row, bool known);
    bool takeTexts(ItemRow& row);
    bool takeNumbers(ItemRow& row);
    bool takeAmount(const SheetCell& cell, Currency& into, Refusal& refusal);
    bool takeNames(ItemRow& row);
    bool takeSupplier(ItemRow& row);
    bool takeLink(ItemRow& row);
    bool checkNew(ItemRow& row);
    void leaveOutSame(ItemRow& row) const;
    void noteTwice(int rowIndex);
    int numberOf(std::vector<std::string>& made, std::string_view name);
    std::string departmentName(int id) const;
    std::string supplierName(int id) const;
    bool refused(const ItemRow& row, int field, const Refusal& refusal);

    ImportOptions options_;
    const ItemsInStore& store_;
    CellReader reader_;
    bool decimalsOpen_; // and the user has not said what they are
    std::vector<ItemRow> rows_;
    std::unordered_map<std::string, int> seen_; // by parent and code: the row of the plan
};

} // namespace merchantry::exchange
