#include "catalog/pricepreview.h"

#include <array>

namespace merchantry::catalog {
namespace {

constexpr std::array kNames{"SKU", "MatrixSKU", "Name", "Qty >=", "Before", "After", "Remark"};

const char* wordsFor(NewPrice::Remark remark) {
    switch (remark) {
    case NewPrice::Remark::Unchanged:
        return "stays";
    case NewPrice::Remark::NoPrice:
        return "has no price yet";
    case NewPrice::Remark::NotAboveZero:
        return "would not be above 0";
    default:
        return "";
    }
}

} // namespace

void PricePreview::setLines(std::vector<Line> lines) {
    lines_ = std::move(lines);
    applyNone();
}

void PricePreview::apply(const PriceRule& rule) {
    std::vector<NewPrice> prices;
    prices.reserve(lines_.size());
    for (const Line& line : lines_)
        prices.push_back(changedPrice(line.step.from, rule));
    take(prices);
}

void PricePreview::applyNone() {
    std::vector<NewPrice> prices;
    prices.reserve(lines_.size());
    for (const Line& line : lines_)
        prices.push_back({line.step.from, NewPrice::Remark::Unchanged});
    take(prices);
}

void PricePreview::take(const std::vector<NewPrice>& prices) {
    changing_ = refused_ = belowCost_ = 0;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        lines_[i].step.to = prices[i].price;
        lines_[i].remark = prices[i].remark;
        changing_ += prices[i].remark == NewPrice::Remark::None ? 1 : 0;
        refused_ += prices[i].remark == NewPrice::Remark::NoPrice || prices[i].remark == NewPrice::Remark::NotAboveZero ? 1 : 0;
        belowCost_ += lines_[i].belowCost() ? 1 : 0;
    }
    tellListeners();
}

std::vector<PriceStep> PricePreview::steps() const {
    std::vector<PriceStep> steps;
    steps.reserve(static_cast<std::size_t>(changing_));
    for (const Line& line : lines_)
        if (line.remark == NewPrice::Remark::None)
            steps.push_back(line.step);
    return steps;
}

int PricePreview::columnCount() const {
    return static_cast<int>(kNames.size());
}

std::string PricePreview::columnName(int column) const {
    return kNames.at(static_cast<std::size_t>(column));
}

Value PricePreview::cell(int row, int column) const {
    const Line& line = lines_.at(static_cast<std::size_t>(row));
    switch (column) {
    case 0:
        return line.step.sku;
    case 1:
        return line.step.matrixSku;
    case 2:
        return line.name;
    case 3:
        return line.step.quantity;
    case 4:
        return line.step.from;
    case 5:
        return line.step.to;
    default:
        return line.belowCost() ? "below cost" : wordsFor(line.remark);
    }
}

} // namespace merchantry::catalog
