#include "reports/engine/outline.h"

#include <algorithm>

namespace merchantry::reports {

Walk::Walk(const Outline& outline)
    : outline_(&outline), stage_(outline.rows().rowCount() > 0 ? Stage::Headers : Stage::Done),
      sums_(static_cast<std::size_t>(outline.groupCount()) + 1, outline.noSums()) {}

// Each stage passes over what gives no line, until one is certain.
std::optional<Band::Kind> Walk::peek() {
    while (true) {
        switch (stage_) {
        case Stage::Headers:
            if (settleHeaders())
                return Band::Kind::Header;
            break;
        case Stage::Row:
            if (settleRow())
                return Band::Kind::Row;
            break;
        case Stage::Footers:
            if (settleFooters())
                return Band::Kind::Footer;
            break;
        case Stage::Total:
            if (settleTotal())
                return Band::Kind::Total;
            break;
        case Stage::Done:
            return std::nullopt;
        }
    }
}

bool Walk::settleHeaders() {
    for (; level_ < outline_->groupCount(); ++level_)
        if (!groupAt(level_).header.empty() || breaksPage())
            return true;
    if (outline_->groupCount() > 0 && outline_->wantsGroupSums())
        groupAhead_ = outline_->groupSums(row_);
    stage_ = Stage::Row;
    return false;
}

bool Walk::settleRow() {
    if (outline_->groupCount() == 0 || outline_->definition().groups.back().details)
        return true;
    addRow();
    return false;
}

bool Walk::settleFooters() {
    for (; level_ >= break_; closeGroup())
        if (!groupAt(level_).footer.empty())
            return true;
    toNextRow();
    return false;
}

bool Walk::settleTotal() {
    if (outline_->hasTotals() && !outline_->definition().page.grandTotal.empty())
        return true;
    stage_ = Stage::Done;
    return false;
}

bool Walk::breaksPage() {
    return stage_ == Stage::Headers && level_ < outline_->groupCount() && groupAt(level_).pageBreak && row_ > 0;
}

void Walk::addRow() {
    for (Sums& sums : sums_)
        outline_->add(sums, row_);
    break_ = row_ + 1 < outline_->rows().rowCount() ? outline_->breakBefore(row_ + 1) : 0;
    level_ = outline_->groupCount() - 1;
    stage_ = Stage::Footers;
}

void Walk::closeGroup() {
    sums_[static_cast<std::size_t>(level_)] = outline_->noSums();
    --level_;
}

void Walk::toNextRow() {
    if (row_ + 1 >= outline_->rows().rowCount()) {
        stage_ = Stage::Total;
        return;
    }
    ++row_;
    level_ = break_;
    stage_ = break_ == outline_->groupCount() ? Stage::Row : Stage::Headers;
}

Band Walk::take(bool withCells) {
    Band band;
    band.kind = *peek();
    band.group = level_;
    band.row = row_;
    switch (band.kind) {
    case Band::Kind::Header:
        band.label = outline_->header(level_, row_);
        ++level_;
        break;
    case Band::Kind::Row:
        addRow();
        if (withCells)
            band.cells = outline_->cells(band.row, {groupAhead_.empty() ? sums_.back() : groupAhead_,
                                                    sums_[sums_.size() - std::min<std::size_t>(sums_.size(), 2)], sums_.back()});
        break;
    case Band::Kind::Footer:
        band.label = outline_->footer(level_, row_);
        if (withCells)
            band.cells = outline_->totals(sums_[static_cast<std::size_t>(level_)], outline_->grand());
        closeGroup();
        break;
    case Band::Kind::Total:
        band.label = outline_->definition().page.grandTotal;
        if (withCells)
            band.cells = outline_->totals(outline_->grand(), outline_->grand());
        stage_ = Stage::Done;
        break;
    }
    return band;
}

} // namespace merchantry::reports
