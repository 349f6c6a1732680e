#pragma once

#include "app/modMain.h"
#include "app/takeback.h"
#include "app/titles.h"
#include "base/currency.h"
#include "ui/list.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace merchantry::catalog {

using app::kProduct;

// What the sources of frmItems share.

constexpr const char* kItemsTag = "MR_frmItems";
constexpr const char* kPofessional = "Velmora Tillmark Pofessional";

// The key of the current item as the parameters SKU and MatrixSKU.
std::vector<db::Parameter> itemKey();
// The rows of a procedure, to be read once.
db::RecordsetPtr openList(const db::Sql& procedure, const std::vector<db::Parameter>& parameters = {});
// The rows of a procedure, for a grid to edit.
db::RecordsetPtr openUpdatable(const db::Sql& procedure, const std::vector<db::Parameter>& parameters = {});

// The statements with which the screen opens, beside its procedures: the items that may be a split's parent, the average cost, the
// suppliers and tiers to choose from, the split of the current item.
db::Sql splitParents();
db::Sql itemCost();
db::Sql supplierChoices();
db::Sql tierChoices();
db::Sql itemSplit();

// The procedure's parameters when it wants one more beside the item's key.
std::vector<db::Parameter> itemKeyAnd(const db::Parameter& more);
// The item's prices in this tier, before they are written.
app::WrittenRows pricesOfTier(int tier);
constexpr int kRetailTier = 1;

// The current item's row, as long as there is one.
db::RecordsetPtr itemOnRow();
// Changes the item's row and saves it. False when the store refused it, after the row was read again, or when the item could not be
// fetched. `passing`, where given, tells whether the failure has nothing to do with what was to be written (app::isPassing): it can be
// tried again as it was typed.
bool writeItem(const std::string& procedure, const std::function<void(db::Recordset& item)>& set, bool* passing = nullptr);
bool writeField(const std::string& procedure, const std::string& column, const std::function<Value()>& value, bool* passing = nullptr);
// Runs a write and notes whether its failure is a passing one; the failure goes on.
void notingPassing(bool* passing, const std::function<void()>& write);
// The row as the store has it now.
void readStored(db::Recordset& item);

// The pair that the user picks in the item lookup as its two codes; empty when none was picked.
std::vector<std::string> pickedItem();

// Adds each row's text, with its key as the entry's number.
void fill(ui::ListBox& list, const db::RecordsetPtr& rows, const std::string& text, const std::string& key);
// The last entry of that number; -1 when there is none.
int positionOfKey(const ui::ListBox& list, std::int64_t key);

// The amount that a text in a cell means: a number in any form that a user may type, exact to four decimals where it has no exponent.
// Throws std::invalid_argument ("Type mismatch...") for a text that is no number and OverflowError for one too large for money.
Currency amountIn(const std::string& text);

// The value that a cell held before the edit under way. A 0 does not take the place of what was there before, so that a refused 0 can be
// put back to the last value that was none. A cell that is no number changes nothing.
struct ValueBefore {
    Currency last;
    Currency lastNonZero;
    void remember(const std::string& cell);
};

} // namespace merchantry::catalog
