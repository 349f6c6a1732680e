#pragma once

#include "ui/grid.h"

#include <filesystem>

namespace merchantry::ui {

// Writes a grid into a file, some rows at a time. Made for the target, asked for steps until 100, then finished; gone unfinished it leaves
// what was there. The grid must stay as it is meanwhile. Throws std::runtime_error with a sentence for the user.
class GridWriter {
public:
    virtual ~GridWriter() = default;
    // Writes the next rows; percent done.
    virtual int step() = 0;
    // Puts the file in its place.
    virtual void finish() = 0;
};

std::unique_ptr<GridWriter> csvWriter(const Grid& grid, const std::filesystem::path& target);
std::unique_ptr<GridWriter> workbookWriter(const Grid& grid, const std::filesystem::path& target);

} // namespace merchantry::ui
