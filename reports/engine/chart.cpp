#include "reports/engine/chart.h"

#include "reports/engine/textfit.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace merchantry::reports {
namespace {

using ui::Page;
using ui::PageAlign;
using ui::PageInk;
using ui::PageItem;

constexpr int kSize = 16; // half points
constexpr int kLine = kSize * 13;
constexpr int kHead = kLine + 60; // the title above
constexpr int kPatterns = 6;
constexpr int kFullCircle = 360 * 16;
constexpr int kQuarter = 90 * 16;

Figure magnitude(Figure figure) {
    return figure < Figure() ? Figure() - figure : figure;
}

class Drawing {
public:
    Drawing(Page& page, PageBox box, const ChartDefinition& chart, const Outline& outline, const ui::TextMeasure& measure)
        : page_(page), box_(box), chart_(chart), measure_(measure), values_(chartValues(chart, outline)) {
        const int source = outline.rows().columnOf(chart.value);
        for (const Outline::ShownColumn& column : outline.columns())
            if (column.source == source && column.definition->share == Scope::None)
                format_ = column.kind.format;
        if (format_ == Format::Auto && outline.rows().columns()[static_cast<std::size_t>(source)].type.isMoney())
            format_ = Format::Money; // of a field that is no column
    }

    void draw() {
        if (!chart_.title.empty()) {
            text(box_.x, box_.y, box_.width, chart_.title, PageAlign::Left, true);
            box_.y += kHead;
            box_.height -= kHead;
        }
        if (values_.empty())
            return;
        if (chart_.kind == ChartKind::Bar)
            bars();
        else if (chart_.kind == ChartKind::Line)
            lines();
        else
            pie();
    }

private:
    void text(int x, int y, int width, const std::string& words, PageAlign align = PageAlign::Left, bool bold = false,
              PageInk ink = PageInk::Black) {
        PageItem item;
        item.x = x;
        item.y = y;
        item.width = width;
        item.height = kLine;
        item.text = cutToWidth(measure_, words, width, kSize, bold);
        item.halfPoints = kSize;
        item.bold = bold;
        item.align = align;
        item.ink = ink;
        page_.items.push_back(std::move(item));
    }
    void box(int x, int y, int width, int height, PageInk fill, int shade) {
        PageItem item;
        item.kind = PageItem::Kind::Box;
        item.x = x;
        item.y = y;
        item.width = width;
        item.height = height;
        item.fill = fill;
        item.shade = shade;
        page_.items.push_back(std::move(item));
    }
    void line(int x, int y, int width, int height, PageInk ink) {
        PageItem item;
        item.kind = PageItem::Kind::Line;
        item.x = x;
        item.y = y;
        item.width = width;
        item.height = height;
        item.ink = ink;
        page_.items.push_back(std::move(item));
    }
    double largest() const {
        double most = 0;
        for (const ChartValue& value : values_)
            most = std::max(most, magnitude(value.value).toDouble());
        return most > 0 ? most : 1;
    }
    int widest(bool ofLabels) const {
        int widest = 0;
        for (const ChartValue& value : values_)
            widest = std::max(widest, measure_.width(ofLabels ? value.label : figureText(value.value, format_), kSize, false));
        return widest;
    }

    // From the top down, the label before and the value behind the bar. Below zero a bar is lighter and says so by its value.
    void bars() {
        const int labels = std::min(widest(true) + 120, box_.width / 3);
        const int figures = widest(false) + 120;
        const int room = box_.width - labels - figures;
        const int step = std::min(box_.height / static_cast<int>(values_.size()), 2 * kLine);
        const int thick = std::max(step * 6 / 10, 20);
        const double most = largest();
        int y = box_.y;
        for (const ChartValue& value : values_) {
            const int length = static_cast<int>(room * magnitude(value.value).toDouble() / most);
            text(box_.x, y + (thick - kLine) / 2, labels - 120, value.label, PageAlign::Right);
            box(box_.x + labels, y, std::max(length, 10), thick, PageInk::Blue, value.value < Figure() ? 35 : 100);
            text(box_.x + labels + length + 60, y + (thick - kLine) / 2, figures, figureText(value.value, format_));
            y += step;
        }
        line(box_.x + labels, box_.y - 30, 0, y - box_.y, PageInk::Grey);
    }

    // Over time: a scale at the left, the first and the last label below, and as many between as have room.
    void lines() {
        const double top = niceAbove(largest());
        const bool below = std::any_of(values_.begin(), values_.end(), [](const ChartValue& value) { return value.value < Figure(); });
        const double bottom = below ? -top : 0;
        const int scale = measure_.width(figureText(Figure::ofDouble(below ? -top : top), format_), kSize, false) + 120;
        const PageBox plot{box_.x + scale, box_.y + kLine / 2, box_.width - scale - 200, box_.height - 2 * kLine};
        const auto yOf = [&](double value) { return plot.y + static_cast<int>(plot.height * (top - value) / (top - bottom)); };
        for (int i = 0; i <= 4; ++i) {
            const double value = bottom + (top - bottom) * i / 4;
            line(plot.x, yOf(value), plot.width, 0, i == 0 ? PageInk::Grey : PageInk::Faint);
            text(box_.x, yOf(value) - kLine / 2, scale - 80, figureText(Figure::ofDouble(value), format_), PageAlign::Right);
        }
        PageItem path;
        path.kind = PageItem::Kind::Path;
        path.ink = PageInk::Blue;
        const int count = static_cast<int>(values_.size());
        const auto xOf = [&](int i) { return plot.x + (count > 1 ? plot.width * i / (count - 1) : plot.width / 2); };
        for (int i = 0; i < count; ++i) {
            path.points.push_back(xOf(i));
            path.points.push_back(yOf(values_[static_cast<std::size_t>(i)].value.toDouble()));
        }
        page_.items.push_back(std::move(path));
        const int labelWidth = widest(true) + 160;
        const int shown = std::clamp(plot.width / std::max(labelWidth, 1), 1, count);
        for (int i = 0; i < shown; ++i) {
            const int at = shown > 1 ? (count - 1) * i / (shown - 1) : 0;
            text(xOf(at) - labelWidth / 2, plot.y + plot.height + 60, labelWidth, values_[static_cast<std::size_t>(at)].label,
                 PageAlign::Center);
        }
    }
    static double niceAbove(double value) {
        const double power = std::pow(10.0, std::floor(std::log10(value)));
        for (const double step : {1.0, 1.6, 2.0, 2.4, 3.2, 4.0, 6.0, 8.0, 10.0}) // quarters of them are round
            if (value <= step * power)
                return step * power;
        return 10 * power;
    }

    // Each slice has its pattern and stands in a list with value and percentage. What is not above zero has no slice.
    void pie() {
        Figure sum;
        for (const ChartValue& value : values_)
            sum = sum + (value.value < Figure() ? Figure() : value.value);
        const int side = std::min(box_.height - 60, box_.width / 2);
        int from = kQuarter;
        int index = 0;
        const int step = std::min(box_.height / static_cast<int>(values_.size()), kLine + 60);
        const int list = box_.x + side + 400;
        const int width = box_.x + box_.width - list - kLine - 80;
        const int labels = std::min(widest(true) + 120, width / 2);
        for (const ChartValue& value : values_) {
            const auto share = value.value > Figure() ? value.value.over(sum) : std::nullopt;
            const int span = share ? static_cast<int>(std::lround(share->toDouble() * kFullCircle)) : 0;
            from -= span;
            sector({box_.x, box_.y, side, side}, from, span, index);
            const int y = box_.y + index * step;
            sample(list, y + 30, index);
            const std::string figures =
                figureText(value.value, format_) + (share ? "  " + figureText(*share, Format::Percent) : std::string());
            text(list + kLine + 80, y, labels, value.label);
            text(list + kLine + 80 + labels, y, widest(false) + 1000, figures, PageAlign::Right);
            ++index;
        }
    }
    static int shadeOf(int index) { return std::max(25, 100 - 15 * (index % kPatterns)); }
    void sector(const PageBox& where, int from, int span, int index) {
        if (span == 0)
            return;
        PageItem item;
        item.kind = PageItem::Kind::Sector;
        item.x = where.x;
        item.y = where.y;
        item.width = where.width;
        item.height = where.height;
        item.fill = PageInk::Blue;
        item.shade = shadeOf(index);
        item.pattern = index % kPatterns;
        item.start = from;
        item.span = span;
        page_.items.push_back(std::move(item));
    }
    void sample(int x, int y, int index) {
        PageItem item;
        item.kind = PageItem::Kind::Box;
        item.x = x;
        item.y = y;
        item.width = kLine - 60;
        item.height = kLine - 60;
        item.fill = PageInk::Blue;
        item.shade = shadeOf(index);
        item.pattern = index % kPatterns;
        page_.items.push_back(std::move(item));
    }

    Page& page_;
    PageBox box_;
    const ChartDefinition& chart_;
    const ui::TextMeasure& measure_;
    std::vector<ChartValue> values_;
    Format format_ = Format::Auto;
};

} // namespace

std::vector<ChartValue> chartValues(const ChartDefinition& chart, const Outline& outline) {
    const db::RowStore& rows = outline.rows();
    const int label = rows.columnOf(chart.label);
    const int value = rows.columnOf(chart.value);
    std::vector<ChartValue> values;
    std::map<std::string, std::size_t> places;
    for (int row = 0; row < rows.rowCount(); ++row) {
        const auto figure = Figure::of(rows.value(row, value));
        if (!figure)
            continue;
        const Value of = rows.value(row, label);
        const std::string words = cellText(of, kindOf(of, Format::Auto).format);
        const auto [place, isNew] = places.try_emplace(words, values.size());
        if (isNew)
            values.push_back({words, Figure()});
        values[place->second].value = values[place->second].value + *figure;
    }
    if (rows.columns()[static_cast<std::size_t>(label)].type.isDate()) {
        std::vector<std::pair<Date, ChartValue>> inTime;
        for (const ChartValue& one : values)
            inTime.emplace_back(Date::fromText(one.label).value_or(Date()), one);
        std::stable_sort(inTime.begin(), inTime.end(), [](const auto& left, const auto& right) { return left.first < right.first; });
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = inTime[i].second;
        return values;
    }
    if (chart.kind == ChartKind::Line)
        return values;
    std::stable_sort(values.begin(), values.end(),
                     [](const ChartValue& left, const ChartValue& right) { return left.value > right.value; });
    const auto most = static_cast<std::size_t>(chart.most);
    if (values.size() > most && !chart.others)
        values.resize(most);
    if (values.size() > most) {
        ChartValue others{"Others", Figure()};
        for (std::size_t i = most - 1; i < values.size(); ++i)
            others.value = others.value + values[i].value;
        values.resize(most - 1);
        values.push_back(others);
    }
    return values;
}

int chartHeight(const ChartDefinition& chart, const Outline& outline) {
    const int wished = static_cast<int>(chart.height * 20); // points
    if (chart.kind != ChartKind::Bar)
        return wished;
    const int head = chart.title.empty() ? 0 : kHead;
    return std::min(wished, head + static_cast<int>(chartValues(chart, outline).size()) * 2 * kLine);
}

void drawChart(Page& page, const PageBox& box, const ChartDefinition& chart, const Outline& outline, const ui::TextMeasure& measure) {
    Drawing(page, box, chart, outline, measure).draw();
}

} // namespace merchantry::reports
