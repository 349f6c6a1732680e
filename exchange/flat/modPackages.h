#pragma once

#include <filesystem>

namespace merchantry::exchange {

// The packages of flat files, one function each: run on a connection of their own, with progress and a Stop. True on success; a step that
// fails says so in a box, with the row and column of the first bad cell, and leaves the store, or the file that stood there, as it was.
bool ExportCust(const std::filesystem::path& file);
bool ExportItemData(const std::filesystem::path& file);
bool ExportSuppliers(const std::filesystem::path& file);
bool ImportCust(const std::filesystem::path& file);
// The items of the file, and with them their stock where the file tells it rightly: a stock row cannot stand before its item.
bool ImportData(const std::filesystem::path& file);
// The stock of items that the store has. What the file tells of items that it brings itself is left to ImportData.
bool ImportStock(const std::filesystem::path& file);
bool ImportSupp(const std::filesystem::path& file);

} // namespace merchantry::exchange
