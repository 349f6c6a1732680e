#pragma once

#include "app/db/ado/recordset.h"
#include "ui/grid.h"

#include <string>

namespace merchantry::catalog {

// What the lookups and the item screens share.

// The first columns of every list of items.
enum ItemColumn { kParentColumn, kMatrixColumn, kNameColumn };
// The pair "SKU|MatrixSKU" of a row of such a list.
std::string itemPairAt(const ui::Grid& grid, int row);

// Makes an item of that type with its stock and retail price rows; the pair "SKU|MatrixSKU", or empty. An empty sku is asked for with
// prompt and title; the item's own code is asked for unless the type is 4 (a parent). A child may take the department of its parent.
// Failures are reported.
std::string AddNewItem(int typeId, const std::string& sku, const std::string& prompt, const std::string& title, bool inheritDepartment);

// Adds a row with that key to the table unless there is one. The field list is "name;value;name;value", empty for no further column.
void AddItemRow(const std::string& table, const std::string& sku, const std::string& matrixSku, const std::string& fieldList);

// Whether a new item cannot have these codes, which is said to the user.
bool isRefused(const std::string& sku, const std::string& matrixSku);

// Whether the item exists; says so to the user when warn is set.
bool ItemExists(const std::string& sku, const std::string& matrixSku, bool warn);

// What stands before the first "|"; the whole text when there is none or it comes first.
std::string ParentOfPair(const std::string& pair);

// Asks for a parent's code, makes the parent and opens it.
void AddNewParent();

// Shows frmItemLookupWiz modally. Kind 1: all standard items; 2: the matrix parents; any other: the matrix items.
std::string ShowItemLookup(int kind);

// Loads a lookup grid by a statement of its own, into a new recordset that takes the place of the old one. The filter text is an entry of
// the filter list and filterPosition its position there, from 0: "Serial" asks for serial items, "Show All" and nothing for all, any other
// entry for the items whose type number is the position. With an sku the filter counts for nothing: the items of that family are listed,
// without the parent. orderBy is one column, empty for SKU, MatrixSKU. A failure is reported; the grid is empty then.
void InitLookupGrid(db::RecordsetPtr& rows, const std::string& filterText, int filterPosition, ui::Grid& grid, const std::string& orderBy,
                    const std::string& sku);

// bsp_NewItem: true when it made the item.
bool makeItem(const std::string& sku, const std::string& matrixSku);

} // namespace merchantry::catalog
