#pragma once

#include "ui/page.h"

#include <filesystem>
#include <span>

namespace merchantry::bench {

// The same strings at the same places of a PDF, with nothing between them and the painter.
void writeBarePdf(const std::filesystem::path& file, std::span<const ui::Page> pages);

} // namespace merchantry::bench
