#pragma once

#include <string_view>
#include <vector>

namespace merchantry::exchange {

// A column of a file and the column of the table that it stands for.
struct FlatColumn {
    const char* file;
    const char* table;
    bool quoted = false; // on export: its cells stand in quotes
};

// What moves between a table and a file of rows parted by commas, as data.
struct FlatPackage {
    const char* name; // of its one step, as failures name it
    const char* table;
    const char* select; // on export: where the rows come from; null for an import, which appends to the table
    std::vector<FlatColumn> columns;
    bool heading; // the file's first row names the columns; on import they are found by it, else by their order
};

// Requires: there is one of that name.
const FlatPackage& flatPackage(std::string_view name);

} // namespace merchantry::exchange
