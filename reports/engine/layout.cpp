#include "reports/engine/layout.h"

#include "reports/engine/chart.h"
#include "reports/engine/textfit.h"

#include <algorithm>
#include <utility>

namespace merchantry::reports {
namespace {

constexpr int kInch = 1440;
constexpr int kMargin = 864;
constexpr int kGap = 120;       // between columns
constexpr int kIndent = 180;    // of a group within the one around it
constexpr int kAfterHead = 160; // between the head and what follows
constexpr int kFootSize = 15;   // half points
constexpr int kTitleSize = 34;
constexpr int kSmallest = 8;

int twips(double points) {
    return static_cast<int>(points * 20);
}

ui::PageAlign alignOf(Align wanted, bool number) {
    switch (wanted) {
    case Align::Left:
        return ui::PageAlign::Left;
    case Align::Center:
        return ui::PageAlign::Center;
    case Align::Right:
        return ui::PageAlign::Right;
    case Align::Auto:
        break;
    }
    return number ? ui::PageAlign::Right : ui::PageAlign::Left;
}

ui::PageInk inkOf(Ink ink) {
    switch (ink) {
    case Ink::Red:
        return ui::PageInk::Red;
    case Ink::Green:
        return ui::PageInk::Green;
    case Ink::Blue:
        return ui::PageInk::Blue;
    case Ink::Grey:
        return ui::PageInk::Grey;
    case Ink::Amber:
        return ui::PageInk::Amber;
    case Ink::Black:
        break;
    }
    return ui::PageInk::Black;
}

bool holds(const std::string& comparison, std::strong_ordering order) {
    if (comparison == "=")
        return order == 0;
    if (comparison == "<>")
        return order != 0;
    if (comparison == "<")
        return order < 0;
    if (comparison == "<=")
        return order <= 0;
    return comparison == ">" ? order > 0 : order >= 0;
}

// The cell is compared as a number, or as the text that it shows.
bool holds(const StyleRule& rule, const std::optional<Figure>& figure, const std::string& text) {
    if (rule.isText)
        return holds(rule.comparison, text.compare(rule.operand) <=> 0);
    const auto operand = Figure::fromText(rule.operand);
    return figure && operand && holds(rule.comparison, *figure <=> *operand);
}

} // namespace

// Fills one page from a start, which it moves to where the next page begins. Without a page it only finds that place.
class Layout::Filler {
public:
    Filler(const Layout& layout, ui::Page* page, int number) : layout_(layout), page_(page), number_(number) {}

    // False when this was the last page.
    bool fill(Start& at, std::vector<ui::PageBranch>* tree) {
        bottom_ = layout_.paperHeight_ - kMargin - layout_.height(kFootSize);
        opens_ = number_ == at.letter;
        head(number_ - at.letter + 1);
        if (opens_)
            title();
        if (number_ == 0 && !first())
            return false;
        if (!at.foot) {
            if (!beginsForm(at.walk))
                headings();
            goOn(at);
            if (!rows(at, tree))
                return true;
            at.foot = true;
        }
        return !end(at);
    }

private:
    const Definition& definition() const { return layout_.outline_.definition(); }
    int inner() const { return layout_.paperWidth_ - 2 * kMargin; }

    void text(int x, int width, const std::string& words, int halfPoints, ui::PageAlign align = ui::PageAlign::Left, bool bold = false,
              ui::PageInk ink = ui::PageInk::Black) {
        if (page_ == nullptr || words.empty())
            return;
        ui::PageItem item;
        item.x = kMargin + x;
        item.y = y_;
        item.width = width;
        item.height = layout_.height(halfPoints);
        item.text = cutToWidth(layout_.measure_, words, width, halfPoints, bold);
        item.halfPoints = halfPoints;
        item.bold = bold;
        item.align = align;
        item.ink = ink;
        page_->items.push_back(std::move(item));
    }
    // A figure is never cut: it is made smaller until it has room.
    void figureOrText(const Place& place, const std::string& words, bool bold, ui::PageInk ink) {
        int size = layout_.body_;
        if (layout_.outline_.columns()[place.column].kind.isNumber)
            while (size > kSmallest && layout_.measure_.width(words, size, bold) > place.width)
                --size;
        const int top = y_;
        y_ += (layout_.height(layout_.body_) - layout_.height(size)) / 2;
        text(place.x, place.width, words, size, place.align, bold, ink);
        y_ = top;
    }
    void rule(int y, ui::PageInk ink) {
        if (page_ == nullptr)
            return;
        ui::PageItem item;
        item.kind = ui::PageItem::Kind::Line;
        item.x = kMargin;
        item.y = y;
        item.width = inner();
        item.ink = ink;
        page_->items.push_back(std::move(item));
    }
    void band(int y, int height) {
        if (page_ == nullptr)
            return;
        ui::PageItem item;
        item.kind = ui::PageItem::Kind::Box;
        item.x = kMargin;
        item.y = y;
        item.width = inner();
        item.height = height;
        item.fill = ui::PageInk::Faint;
        page_->items.push_back(std::move(item));
    }

    // The store and, from the second page on, the title; the foot with date and page.
    void head(int page) {
        y_ = kMargin / 2 + 40;
        const int store = inner() * (opens_ ? 3 : 1) / 3;
        text(0, store, layout_.head_.store, kFootSize + 1, ui::PageAlign::Left, true, ui::PageInk::Grey);
        if (!opens_)
            text(store, inner() - store, fullTitle(), kFootSize + 1, ui::PageAlign::Right, false, ui::PageInk::Grey);
        y_ = layout_.paperHeight_ - kMargin / 2 - layout_.height(kFootSize);
        text(0, inner() / 2, layout_.head_.made.toShortText(), kFootSize, ui::PageAlign::Left, false, ui::PageInk::Grey);
        const int end = layout_.endOfLetter(number_);
        const std::string of = end > 0 ? " of " + std::to_string(end - number_ - 1 + page) : "";
        text(inner() / 2, inner() / 2, "Page " + std::to_string(page) + of, kFootSize, ui::PageAlign::Right, false, ui::PageInk::Grey);
        y_ = kMargin;
    }

    // What tells the second page of one order from that of another.
    std::string fullTitle() const {
        const std::string below = layout_.outline_.subtitle();
        return below.empty() ? definition().title : definition().title + ", " + below;
    }

    // Of the report or of each letter, with the criteria.
    void title() {
        text(0, inner(), definition().title, kTitleSize, ui::PageAlign::Left, true);
        y_ += layout_.height(kTitleSize);
        if (const std::string below = layout_.outline_.subtitle(); !below.empty())
            line(below, 22);
        for (const std::string& words : criteria())
            line(words, 17, ui::PageInk::Grey);
        y_ += kAfterHead;
    }
    // The form's head and the charts of the start. False when there is nothing else, for want of rows.
    bool first() {
        if (layout_.outline_.rows().rowCount() == 0) {
            text(0, inner(), definition().page.empty, 22);
            return false;
        }
        blocks(definition().headers);
        for (const ChartDefinition& chart : definition().charts)
            if (chart.atStart)
                drawn(chart);
        return true;
    }
    std::vector<std::string> criteria() const {
        return layout_.head_.criteria.empty() ? std::vector<std::string>()
                                              : wrapped(layout_.measure_, layout_.head_.criteria, inner(), 17, false);
    }
    void line(const std::string& words, int halfPoints, ui::PageInk ink = ui::PageInk::Black) {
        text(0, inner(), words, halfPoints, ui::PageAlign::Left, false, ink);
        y_ += layout_.height(halfPoints);
    }

    // The lines of a form's head or foot: two blocks side by side when some stand at the right.
    void blocks(const std::vector<TextLine>& lines, int ofRow = 0) {
        const db::RowStore& rows = layout_.outline_.rows();
        const bool two = std::any_of(lines.begin(), lines.end(), [](const TextLine& line) { return line.rightBlock; });
        const int width = two ? inner() / 2 - kGap : inner();
        const int top = y_;
        int leftEnd = y_;
        int rightEnd = y_;
        for (const TextLine& line : lines) {
            int& end = line.rightBlock ? rightEnd : leftEnd;
            const int size = line.size > 0 ? static_cast<int>(line.size * 2) : layout_.body_;
            const std::string words = FieldText(line.text, rows, definition().file.filename().string(), line.line).in(rows, ofRow);
            if (words.empty()) // an address line that is not there leaves no gap
                continue;
            for (const std::string& part : wrapped(layout_.measure_, words, width, size, line.bold)) {
                y_ = end;
                text(line.rightBlock ? inner() / 2 + kGap : 0, width, part, size, alignOf(line.align, false), line.bold);
                end += layout_.height(size);
            }
        }
        y_ = std::max(leftEnd, rightEnd) + (lines.empty() ? 0 : kAfterHead);
        if (lines.empty())
            y_ = top;
    }

    void drawn(const ChartDefinition& chart) {
        const int height = chartHeight(chart, layout_.outline_);
        if (page_ != nullptr)
            drawChart(*page_, {kMargin, y_, inner(), height}, chart, layout_.outline_, layout_.measure_);
        y_ += height + kAfterHead;
    }

    void headings() {
        const int lines = layout_.headingLines_;
        const int size = layout_.body_;
        const int top = y_;
        for (const Place& place : layout_.places_)
            for (std::size_t i = 0; i < place.heading.size(); ++i) {
                // The lowest lines of all headings stand level.
                y_ = top + (lines - static_cast<int>(place.heading.size()) + static_cast<int>(i)) * layout_.height(size);
                text(place.x, place.width, place.heading[i], size, place.align, true);
            }
        y_ = top + lines * layout_.height(size) + 30;
        rule(y_, ui::PageInk::Black);
        y_ += 40;
    }

    const GroupDefinition& groupAt(int level) const { return definition().groups[static_cast<std::size_t>(level)]; }

    // Whether the next line is a group's head of its own, with the headings below.
    bool beginsForm(const Walk& walk) const {
        Walk ahead = walk;
        return ahead.peek() == Band::Kind::Header && !groupAt(ahead.take(false).group).head.empty();
    }

    void form(const Band& header) {
        const GroupDefinition& group = groupAt(header.group);
        y_ = std::max(y_, static_cast<int>(group.top * kInch));
        blocks(group.head, header.row);
        headings();
    }
    // The slip's place is the foot of the page; room() saw to it that there is some.
    void ended(const Band& footer) {
        const GroupDefinition& group = groupAt(footer.group);
        if (!group.below.empty()) {
            y_ += kAfterHead;
            blocks(group.below, footer.row);
        }
        if (group.slip.empty())
            return;
        y_ = std::max(y_, bottom_ - blockHeight(group.slip, footer.row));
        rule(y_, ui::PageInk::Grey);
        y_ += kAfterHead;
        blocks(group.slip, footer.row);
    }
    // With the distance above.
    int blockHeight(const std::vector<TextLine>& lines, int ofRow) const {
        if (lines.empty())
            return 0;
        Filler measure(layout_, nullptr, number_);
        measure.blocks(lines, ofRow);
        return measure.y_ + kAfterHead;
    }

    // What goes on from the page before is named again.
    void goOn(const Start& at) {
        Walk walk = at.walk;
        const auto kind = walk.peek();
        if (!kind || number_ == 0)
            return;
        std::size_t levels = at.open.size();
        if (*kind == Band::Kind::Header)
            levels = std::min(levels, static_cast<std::size_t>(walk.take(false).group));
        if (*kind == Band::Kind::Total)
            levels = 0;
        for (std::size_t level = 0; level < levels; ++level)
            if (!at.open[level].empty())
                groupLine(at.open[level] + " (continued)", static_cast<int>(level));
    }
    void groupLine(const std::string& words, int level) {
        const int height = layout_.bodyHeight() + 20;
        if (level == 0)
            band(y_, height);
        y_ += 20;
        text(level * kIndent + 40, inner() - level * kIndent - 40, words, layout_.body_ + (level == 0 ? 1 : 0), ui::PageAlign::Left, true);
        y_ += height - 20;
    }

    // The room that the next line wants, with the rows that a header keeps beside it.
    int room(Band::Kind kind, const Walk& walk) const {
        const int row = layout_.bodyHeight();
        switch (kind) {
        case Band::Kind::Header: {
            Walk ahead = walk;
            const Band next = ahead.take(false);
            const GroupDefinition& group = definition().groups[static_cast<std::size_t>(next.group)];
            const int deeper = layout_.outline_.groupCount() - next.group;
            const int head = group.head.empty() ? 0 : blockHeight(group.head, next.row) + layout_.headingLines_ * row;
            return deeper * (row + 20) + group.keep * row + head;
        }
        case Band::Kind::Footer: {
            Walk ahead = walk;
            const Band next = ahead.take(false);
            const GroupDefinition& group = groupAt(next.group);
            return row + 60 + blockHeight(group.below, next.row) + blockHeight(group.slip, next.row);
        }
        case Band::Kind::Total:
            return row + 60;
        case Band::Kind::Row:
            break;
        }
        return row;
    }

    // Lines until the page is full, false then.
    bool rows(Start& at, std::vector<ui::PageBranch>* tree) {
        bool any = false;
        std::vector<std::string> above;
        while (const auto kind = at.walk.peek()) {
            if (any && (at.walk.breaksPage() || y_ + room(*kind, at.walk) > bottom_))
                return false;
            Walk before = layout_.wraps_ && *kind == Band::Kind::Row ? at.walk : Walk(layout_.outline_);
            Band next = at.walk.take(page_ != nullptr || layout_.wraps_);
            if (*kind == Band::Kind::Row && layout_.wraps_ && any && y_ + rowHeight(next) > bottom_) {
                at.walk = before;
                return false;
            }
            any = true;
            draw(next, above);
            if (next.kind == Band::Kind::Header)
                opened(at, next, tree);
        }
        return true;
    }
    void opened(Start& at, const Band& header, std::vector<ui::PageBranch>* tree) const {
        at.open.resize(static_cast<std::size_t>(header.group));
        at.open.push_back(header.label);
        if (tree != nullptr && !header.label.empty())
            tree->push_back({header.label, header.group, number_});
    }

    std::vector<std::string> linesOf(const Band& row, const Place& place) const {
        const std::string& cell = row.cells[place.column];
        if (!layout_.outline_.columns()[place.column].definition->wrap)
            return {cell};
        return wrapped(layout_.measure_, cell, place.width, layout_.body_, false);
    }
    int rowHeight(const Band& row) const {
        std::size_t lines = 1;
        if (layout_.wraps_)
            for (const Place& place : layout_.places_)
                lines = std::max(lines, linesOf(row, place).size());
        return static_cast<int>(lines) * layout_.height(layout_.body_) + 30;
    }

    void draw(const Band& next, std::vector<std::string>& above) {
        switch (next.kind) {
        case Band::Kind::Header:
            if (!groupAt(next.group).head.empty())
                form(next);
            else if (!next.label.empty())
                groupLine(next.label, next.group);
            above.clear();
            break;
        case Band::Kind::Row:
            drawRow(next, above);
            break;
        case Band::Kind::Footer:
            drawTotals(next, definition().groups.back().details);
            ended(next);
            break;
        case Band::Kind::Total:
            rule(y_ + 10, ui::PageInk::Black);
            rule(y_ + 30, ui::PageInk::Black);
            y_ += 40;
            drawTotals(next, false);
            break;
        }
    }

    void drawRow(const Band& row, std::vector<std::string>& above) {
        const int top = y_;
        const int height = rowHeight(row);
        if (page_ != nullptr)
            for (const Place& place : layout_.places_)
                drawCell(row, place, above, top);
        above = row.cells;
        y_ = top + height;
    }
    void drawCell(const Band& row, const Place& place, const std::vector<std::string>& above, int top) {
        const Outline::ShownColumn& column = layout_.outline_.columns()[place.column];
        const std::string& cell = row.cells[place.column];
        if (!column.definition->repeat && !above.empty() && above[place.column] == cell)
            return;
        ui::PageInk ink = ui::PageInk::Black;
        bool bold = false;
        for (const StyleRule& rule : column.definition->styles)
            if (holds(rule, layout_.outline_.figure(row.row, place.column), cell)) {
                ink = inkOf(rule.ink);
                bold = bold || rule.bold;
            }
        y_ = top;
        for (const std::string& words : linesOf(row, place)) {
            figureOrText(place, words, bold, ink);
            y_ += layout_.height(layout_.body_);
        }
    }

    // The label reaches to the first figure.
    void drawTotals(const Band& totals, bool ruled) {
        if (ruled)
            rule(y_ + 5, ui::PageInk::Grey);
        y_ += 20;
        int labelEnd = inner();
        if (page_ != nullptr)
            for (const Place& place : layout_.places_) {
                const std::string& cell = totals.cells[place.column];
                if (cell.empty())
                    continue;
                labelEnd = std::min(labelEnd, place.x);
                figureOrText(place, cell, true, ui::PageInk::Black);
            }
        const bool strong = ruled || totals.kind == Band::Kind::Total;
        const int indent = totals.kind == Band::Kind::Footer ? totals.group * kIndent : 0;
        text(indent, std::max(0, labelEnd - indent - kGap), totals.label, layout_.body_, ui::PageAlign::Left, strong);
        y_ += layout_.bodyHeight();
    }

    // What follows the rows; false while some of it waits for the next page.
    bool end(Start& at) {
        const auto& charts = definition().charts;
        for (; at.chart < charts.size(); ++at.chart) {
            if (charts[at.chart].atStart)
                continue;
            const bool fresh = y_ <= kMargin + kInch;
            if (!fresh && y_ + kAfterHead + twips(charts[at.chart].height) > bottom_)
                return false;
            y_ += kAfterHead;
            drawn(charts[at.chart]);
        }
        const int needed = static_cast<int>(definition().footers.size()) * layout_.height(layout_.body_);
        if (needed > 0 && y_ + kAfterHead + needed > bottom_ && y_ > kMargin + kInch)
            return false;
        y_ += kAfterHead;
        blocks(definition().footers);
        return true;
    }

    const Layout& layout_;
    ui::Page* page_;
    int number_;
    bool opens_ = false; // the first page of the report, or of a letter
    int y_ = 0;
    int bottom_ = 0;
};

Layout::Layout(const Outline& outline, const ui::TextMeasure& measure, PageHead head)
    : outline_(outline), measure_(measure), head_(std::move(head)), body_(static_cast<int>(outline.definition().page.fontSize * 2)) {
    const PageDefinition& page = outline.definition().page;
    paperWidth_ = page.size == PaperSize::A4 ? 11906 : 12240;
    paperHeight_ = page.size == PaperSize::A4 ? 16838 : 15840;
    if (page.landscape)
        std::swap(paperWidth_, paperHeight_);
    placeColumns();
    starts_.push_back({Walk(outline_), {}, false, 0});
}

void Layout::placeColumns() {
    double all = 0;
    int shown = 0;
    for (const Outline::ShownColumn& column : outline_.columns())
        if (!column.definition->hide) {
            all += column.definition->width;
            ++shown;
        }
    const int room = paperWidth_ - 2 * kMargin - (shown - 1) * kGap;
    int x = 0;
    for (std::size_t i = 0; i < outline_.columns().size(); ++i) {
        const Outline::ShownColumn& column = outline_.columns()[i];
        if (column.definition->hide)
            continue;
        Place place;
        place.column = i;
        place.x = x;
        place.width = static_cast<int>(room * column.definition->width / all);
        place.align = alignOf(column.definition->align, column.kind.isNumber);
        place.heading = wrapped(measure_, column.definition->title, place.width, body_, true);
        headingLines_ = std::max(headingLines_, static_cast<int>(place.heading.size()));
        wraps_ = wraps_ || column.definition->wrap;
        x += place.width + kGap;
        places_.push_back(std::move(place));
    }
}

bool Layout::layOut(int pages) {
    for (int i = 0; i < pages && !complete_; ++i) {
        Start next = starts_.back();
        const bool more = Filler(*this, nullptr, count() - 1).fill(next, &tree_);
        complete_ = !more;
        if (!more)
            break;
        if (beginsLetter(next.walk))
            next.letter = count();
        starts_.push_back(std::move(next));
    }
    return complete_;
}

bool Layout::beginsLetter(const Walk& walk) const {
    Walk ahead = walk;
    return ahead.peek() == Band::Kind::Header &&
           !outline_.definition().groups[static_cast<std::size_t>(ahead.take(false).group)].letter.empty();
}

// The page behind the last of the page's letter; 0 while that is not known.
int Layout::endOfLetter(int number) const {
    const auto& groups = outline_.definition().groups;
    if (std::all_of(groups.begin(), groups.end(), [](const GroupDefinition& group) { return group.letter.empty(); }))
        return complete_ ? count() : 0;
    const auto page = starts_.begin() + std::min(number, count() - 1);
    const auto end = std::find_if(page, starts_.end(), [&](const Start& start) { return start.letter != page->letter; });
    return end == starts_.end() && !complete_ ? 0 : static_cast<int>(end - starts_.begin());
}

std::vector<Letter> Layout::letters() const {
    std::vector<Letter> all;
    for (int number = 0; number < count(); number = endOfLetter(number)) {
        Walk walk = starts_[static_cast<std::size_t>(number)].walk;
        if (!beginsLetter(walk))
            return {};
        const Band header = walk.take(false);
        const GroupDefinition& group = outline_.definition().groups[static_cast<std::size_t>(header.group)];
        const FieldText words(group.letter, outline_.rows(), outline_.definition().file.filename().string(), group.line);
        all.push_back({number, endOfLetter(number) - 1, words.in(outline_.rows(), header.row)});
    }
    return all;
}

ui::Page Layout::page(int number) const {
    ui::Page page;
    page.width = paperWidth_;
    page.height = paperHeight_;
    Start at = starts_.at(static_cast<std::size_t>(number));
    Filler(*this, &page, number).fill(at, nullptr);
    return page;
}

} // namespace merchantry::reports
