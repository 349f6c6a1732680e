#include "setup/taxpreview.h"

#include "base/taxrate.h"

namespace merchantry::setup {

using namespace ui;

namespace {

constexpr int kRate = 1;
constexpr int kDescription = 2;
constexpr Currency kPrice = Currency::fromUnits(10 * Currency::kUnitsPerOne);

} // namespace

void shapeTaxPreview(Grid& preview) {
    using Format = GridColumn::Format;
    preview.setColumns({{.heading = "Tax Class", .characters = 14},
                        {.heading = "Tax on Top", .format = Format::Currency},
                        {.heading = "To Pay", .format = Format::Currency},
                        {.heading = "Tax Within", .format = Format::Currency}});
    preview.editable = false;
    preview.setToolTip("The tax on top of a price of $10.00, or within it, in cents as the registers round it.");
}

void fillTaxPreview(Grid& preview, const Grid& classes) {
    preview.setDataRows(0);
    for (int row = 1; row <= classes.dataRows(); ++row) {
        const TaxRate rate = TaxRate::fromPercent(classes.value(row, kRate).toNumber());
        const Currency onTop = rate.on(kPrice);
        preview.addRow({classes.text(row, kDescription), onTop.toText(), (kPrice + onTop).toText(), rate.within(kPrice).toText()});
    }
    if (classes.selected())
        preview.setCurrent(classes.row(), 0);
}

} // namespace merchantry::setup
