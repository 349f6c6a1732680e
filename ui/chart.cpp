#include "ui/chart.h"

#include "base/text.h"

namespace merchantry::ui {

void Chart::show(std::vector<ChartSeries> series) {
    series_ = std::move(series);
    changed(Aspect::Items);
}

std::string Chart::wordsX(std::int64_t x) const {
    return xText ? xText(x) : std::to_string(x);
}

std::string Chart::wordsY(Currency y) const {
    return yText ? yText(y) : y.toText();
}

std::string Chart::text() const {
    std::vector<std::string> all;
    for (const ChartSeries& one : series_) {
        std::vector<std::string> points;
        for (const ChartPoint& point : one.points)
            points.push_back(wordsX(point.x) + " " + wordsY(point.y));
        all.push_back(one.name + ": " + joined(points, ", "));
    }
    return joined(all, "; ");
}

const ChartPoint* Chart::at(const ChartSeries& series, std::int64_t x) {
    const ChartPoint* found = nullptr;
    for (const ChartPoint& point : series.points)
        if (point.x <= x)
            found = &point;
    return found;
}

} // namespace merchantry::ui
