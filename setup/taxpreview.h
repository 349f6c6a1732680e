#pragma once

#include "base/rows.h"
#include "ui/grid.h"

#include <string>

namespace merchantry::setup {

// What an item of $10.00 costs in each tax class: with the tax on top of its price, and with the tax within it. Reckoned exactly, and
// rounded as the registers do.
//
// Fills the grid, one row for each row of the classes (TaxID, Amt, Description), in their order.
void fillTaxPreview(ui::Grid& preview, const ui::Grid& classes);
void shapeTaxPreview(ui::Grid& preview);

} // namespace merchantry::setup
