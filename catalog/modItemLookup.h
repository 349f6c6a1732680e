#pragma once

#include <string>

namespace merchantry::catalog {

// What the lookups and the item screens share.

// Makes an item of that type with its stock and retail price rows; the pair "SKU|MatrixSKU", or empty. An empty sku is asked for with
// prompt and title; the item's own code is asked for unless the type is 4 (a parent). A child may take the department of its parent.
// Failures are reported.
std::string AddNewItem(int typeId, const std::string& sku, const std::string& prompt, const std::string& title, bool inheritDepartment);

// Adds a row with that key to the table unless there is one. The field list is "name;value;name;value", empty for no further column.
void AddItemRow(const std::string& table, const std::string& sku, const std::string& matrixSku, const std::string& fieldList);

// Whether the item exists; says so to the user when warn is set.
bool ItemExists(const std::string& sku, const std::string& matrixSku, bool warn);

// What stands before the first "|"; the whole text when there is none or it comes first.
std::string ParentOfPair(const std::string& pair);

// bsp_NewItem: true when it made the item.
bool makeItem(const std::string& sku, const std::string& matrixSku);

} // namespace merchantry::catalog
