#pragma once

#include "base/currency.h"
#include "ui/control.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace merchantry::ui {

// A value that holds from x until the next point of its series.
struct ChartPoint {
    std::int64_t x = 0;
    Currency y;
};

struct ChartSeries {
    std::string name;
    std::vector<ChartPoint> points; // in order of x
};

// A picture of values that change in steps: prices over the quantity, stock over the days. The screen gives data and words, the drawing
// does the rest.
class Chart : public Control {
public:
    Chart(Form& form, std::string name) : Control(form, std::move(name)) {}
    Role role() const override { return Role::Chart; }

    const std::vector<ChartSeries>& series() const { return series_; }
    void show(std::vector<ChartSeries> series);
    // All of it in words: "Retail: 1 $5.00, 10 $4.50; Gold: 1 $4.00".
    std::string text() const;
    // The value of a series at x; nothing before its first point.
    static const ChartPoint* at(const ChartSeries& series, std::int64_t x);

    std::function<std::string(std::int64_t x)> xText; // a plain number without
    std::function<std::string(Currency y)> yText;
    std::vector<std::int64_t> ticks; // where the x axis has words; the points' own x when there are none
    bool evenly = false;             // the ticks stand at even distances, whatever lies between them
    std::string heading;
    std::string emptyText; // instead of a picture without a point

    std::string wordsX(std::int64_t x) const;
    std::string wordsY(Currency y) const;

private:
    std::vector<ChartSeries> series_;
};

} // namespace merchantry::ui
