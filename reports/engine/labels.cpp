#include "reports/engine/labels.h"

#include "base/numbers.h"
#include "reports/engine/barcode.h"
#include "reports/engine/textfit.h"

#include <algorithm>
#include <stdexcept>

namespace merchantry::reports {
namespace {

constexpr int kInch = 1440;
constexpr int kPadding = 90;
constexpr std::int64_t kMostLabels = 1'000'000;

int twips(double inches) {
    return static_cast<int>(inches * kInch + 0.5);
}

} // namespace

Labels::Labels(const Outline& outline, const ui::TextMeasure& measure)
    : outline_(outline), measure_(measure), label_(*outline.definition().label) {
    const std::string file = outline.definition().file.filename().string();
    const db::RowStore& rows = outline.rows();
    const auto sourceOf = [&](const std::string& field, int line) {
        const int source = rows.columnOf(field);
        if (source < 0)
            throw DefinitionError(file, line, "The query has no column \"" + field + "\".");
        return source;
    };
    for (const TextLine& line : label_.lines)
        lines_.emplace_back(line.text, rows, file, line.line);
    for (const BarcodeDefinition& barcode : label_.barcodes)
        codes_.push_back(sourceOf(barcode.field, barcode.line));
    const int quantity = label_.quantityField.empty() ? -1 : sourceOf(label_.quantityField, label_.quantityLine);
    if (quantity >= 0 && rows.columns()[static_cast<std::size_t>(quantity)].type.isText())
        throw DefinitionError(file, label_.quantityLine, "\"" + label_.quantityField + "\" is no number.");
    std::int64_t end = 0;
    for (int row = 0; row < rows.rowCount(); ++row) {
        const std::int64_t wanted = quantity < 0 ? label_.quantity : rows.value(row, quantity).toInteger();
        if (wanted > kMostLabels - end)
            throw std::runtime_error("These are more than " + withThousands(kMostLabels) +
                                     " labels. Narrow the conditions or the quantity.");
        end += std::max<std::int64_t>(0, wanted);
        ends_.push_back(end);
    }
    const std::int64_t aPage = static_cast<std::int64_t>(label_.columns) * label_.rows;
    count_ = static_cast<int>(std::max<std::int64_t>(1, (end + aPage - 1) / aPage));
}

ui::Page Labels::page(int number) const {
    ui::Page page;
    const bool a4 = outline_.definition().page.size == PaperSize::A4;
    page.width = label_.roll ? twips(label_.width) : a4 ? 11906 : 12240;
    page.height = label_.roll ? twips(label_.height) : a4 ? 16838 : 15840;
    const std::int64_t aPage = static_cast<std::int64_t>(label_.columns) * label_.rows;
    const std::int64_t first = number * aPage;
    for (std::int64_t i = first; i < std::min(first + aPage, labelCount()); ++i) {
        const auto row = static_cast<int>(std::upper_bound(ends_.begin(), ends_.end(), i) - ends_.begin());
        const auto place = static_cast<int>(i - first);
        const int column = place % label_.columns;
        const int line = place / label_.columns;
        drawLabel(page, row, twips(label_.roll ? 0 : label_.left + column * (label_.width + label_.gapX)),
                  twips(label_.roll ? 0 : label_.top + line * (label_.height + label_.gapY)));
    }
    if (labelCount() == 0) {
        ui::PageItem none;
        none.x = kInch / 4;
        none.y = kInch / 4;
        none.width = page.width - kInch / 2;
        none.height = 300;
        none.text = outline_.definition().page.empty;
        page.items.push_back(std::move(none));
    }
    return page;
}

// The lines from the top down, the codes standing on the label's foot.
void Labels::drawLabel(ui::Page& page, int row, int x, int y) const {
    const int width = twips(label_.width) - 2 * kPadding;
    const int foot = y + twips(label_.height) - kPadding;
    int codesTop = foot;
    for (std::size_t i = codes_.size(); i-- > 0;) {
        const int height = twips(label_.barcodes[i].height);
        codesTop -= height;
        drawBarcode(page, {x + kPadding, codesTop, width, height}, outline_.rows().value(row, codes_[i]).toText(), label_.barcodes[i],
                    measure_);
    }
    int at = y + kPadding;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const TextLine& line = label_.lines[i];
        const int size = line.size > 0 ? static_cast<int>(line.size * 2) : 18;
        if (at + size * 13 > codesTop)
            break;
        const std::string text = lines_[i].in(outline_.rows(), row);
        if (text.empty())
            continue; // an address closes up
        ui::PageItem item;
        item.x = x + kPadding;
        item.y = at;
        item.width = width;
        item.height = size * 13;
        item.text = cutToWidth(measure_, text, width, size, line.bold);
        item.halfPoints = size;
        item.bold = line.bold;
        item.align = line.align == Align::Right    ? ui::PageAlign::Right
                     : line.align == Align::Center ? ui::PageAlign::Center
                                                   : ui::PageAlign::Left;
        page.items.push_back(std::move(item));
        at += size * 13;
    }
}

} // namespace merchantry::reports
