#include "ui/chart.h"

#include "ui/qt/formwindow.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include <algorithm>
#include <array>
#include <cmath>

namespace merchantry::ui {
namespace {

constexpr int kOwnHeight = 180;
constexpr int kOwnWidth = 320;
constexpr int kMargin = 10;
constexpr int kLegendLine = 18;
constexpr int kSample = 22; // of a series' line in the legend
constexpr Qt::PenStyle kPens[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine};

// The next of 1, 2, 5, 10, 20 ... that is not less.
double roundStep(double least) {
    const double power = std::pow(10.0, std::floor(std::log10(std::max(least, 1e-4))));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least)
            return factor * power;
    return 10 * power;
}

// Paints the chart as it stands at that moment; all measures in pixels of the widget.
class Picture {
public:
    Picture(QPainter& painter, const Skin& skin, const Chart& chart, const QRect& all) : painter_(painter), skin_(skin), chart_(chart) {
        painter_.setFont(skin.small());
        measure(all);
    }
    void paint() {
        heading();
        gridLines();
        words();
        for (std::size_t i = 0; i < chart_.series().size(); ++i)
            series(i);
        legend();
    }
    // What the user points at.
    std::int64_t xAt(int pixel) const {
        std::int64_t nearest = ticks_.front();
        if (!chart_.evenly) {
            const double share = std::clamp((pixel - plot_.left()) / std::max(1.0, plot_.width()), 0.0, 1.0);
            return first_ + static_cast<std::int64_t>(std::llround(share * static_cast<double>(last_ - first_)));
        }
        for (const std::int64_t tick : ticks_)
            if (xOf(tick) <= pixel)
                nearest = tick;
        return nearest;
    }

private:
    void measure(const QRect& all) {
        all_ = all.adjusted(kMargin, kMargin, -kMargin, -kMargin);
        ticks_ = chart_.ticks;
        for (const ChartSeries& one : chart_.series())
            for (const ChartPoint& point : one.points) {
                top_ = std::max(top_, point.y.toDouble());
                bottom_ = std::min(bottom_, point.y.toDouble());
                if (chart_.ticks.empty())
                    ticks_.push_back(point.x);
            }
        std::sort(ticks_.begin(), ticks_.end());
        ticks_.erase(std::unique(ticks_.begin(), ticks_.end()), ticks_.end());
        first_ = ticks_.front();
        last_ = std::max(ticks_.back(), first_ + 1);
        step_ = top_ > bottom_ ? roundStep((top_ - bottom_) / 4) : 1;
        top_ = std::max(step_, std::ceil(top_ / step_) * step_);
        bottom_ = std::floor(bottom_ / step_) * step_;
        const QFontMetrics metrics = painter_.fontMetrics();
        int left = 0;
        for (double y = bottom_; y <= top_ + step_ / 2; y += step_)
            left = std::max(left, metrics.horizontalAdvance(yWords(y)));
        plot_ = QRectF(all_).adjusted(left + 8, 2 * kLegendLine - 4, -6, -kLegendLine - legendLines() * kLegendLine);
    }
    int legendLines() const { return chart_.series().size() < 2 ? 0 : (static_cast<int>(chart_.series().size()) + 1) / 2; }
    QString yWords(double y) const { return toQt(chart_.wordsY(Currency::fromDouble(y))); }
    double xOf(std::int64_t x) const {
        if (!chart_.evenly)
            return plot_.left() + plot_.width() * static_cast<double>(x - first_) / static_cast<double>(last_ - first_);
        const auto at = std::lower_bound(ticks_.begin(), ticks_.end(), x) - ticks_.begin();
        return plot_.left() + plot_.width() * static_cast<double>(at) / static_cast<double>(ticks_.size());
    }
    double yOf(double y) const { return plot_.bottom() - plot_.height() * (y - bottom_) / (top_ - bottom_); }

    void heading() {
        painter_.setFont(skin_.strong());
        painter_.setPen(skin_.tokens().ink);
        painter_.drawText(all_, Qt::AlignLeft | Qt::AlignTop, toQt(chart_.heading));
        painter_.setFont(skin_.small());
    }
    void gridLines() {
        for (double y = bottom_; y <= top_ + step_ / 2; y += step_) {
            painter_.setPen(QPen(std::fabs(y) < step_ / 2 ? skin_.tokens().strongLine : skin_.tokens().line, 1));
            painter_.drawLine(QPointF(plot_.left(), yOf(y)), QPointF(plot_.right(), yOf(y)));
            painter_.setPen(skin_.tokens().dim);
            painter_.drawText(QRectF(all_.left(), yOf(y) - 9, plot_.left() - 8 - all_.left(), 18), Qt::AlignRight | Qt::AlignVCenter,
                              yWords(y));
        }
    }
    // As many words as have room.
    void words() {
        painter_.setPen(skin_.tokens().dim);
        double free = plot_.left();
        for (const std::int64_t tick : ticks_) {
            const QString text = toQt(chart_.wordsX(tick));
            const double wide = painter_.fontMetrics().horizontalAdvance(text);
            const double left = std::min(xOf(tick), plot_.right() - wide);
            if (left < free)
                continue;
            painter_.drawText(QRectF(left, plot_.bottom() + 2, wide + 2, kLegendLine), Qt::AlignLeft | Qt::AlignVCenter, text);
            free = left + wide + 10;
        }
    }
    QPen penOf(std::size_t i) const {
        const Tokens& t = skin_.tokens();
        const std::array<QColor, 6> inks{t.accent, t.danger, t.ink, t.caution, t.fine, t.dim};
        return {inks[i % inks.size()], 2, kPens[i % std::size(kPens)], Qt::FlatCap, Qt::MiterJoin};
    }
    // A value holds until the next one; the last to the end.
    void series(std::size_t i) {
        const auto& points = chart_.series()[i].points;
        if (points.empty())
            return;
        QPainterPath path(QPointF(xOf(points.front().x), yOf(points.front().y.toDouble())));
        for (const ChartPoint& point : points) {
            path.lineTo(xOf(point.x), path.currentPosition().y());
            path.lineTo(xOf(point.x), yOf(point.y.toDouble()));
        }
        path.lineTo(plot_.right(), path.currentPosition().y());
        painter_.setPen(penOf(i));
        painter_.setBrush(Qt::NoBrush);
        painter_.drawPath(path);
    }
    void legend() {
        if (legendLines() == 0)
            return;
        const double half = all_.width() / 2.0;
        for (std::size_t i = 0; i < chart_.series().size(); ++i) {
            const double left = all_.left() + (i % 2 == 0 ? 0 : half);
            const double top = all_.bottom() - (legendLines() - static_cast<int>(i / 2)) * kLegendLine + 2;
            painter_.setPen(penOf(i));
            painter_.drawLine(QPointF(left, top + kLegendLine / 2.0), QPointF(left + kSample, top + kLegendLine / 2.0));
            painter_.setPen(skin_.tokens().ink);
            const QString name =
                painter_.fontMetrics().elidedText(toQt(chart_.series()[i].name), Qt::ElideRight, static_cast<int>(half) - kSample - 14);
            painter_.drawText(QRectF(left + kSample + 6, top, half - kSample - 8, kLegendLine), Qt::AlignLeft | Qt::AlignVCenter, name);
        }
    }

    QPainter& painter_;
    const Skin& skin_;
    const Chart& chart_;
    QRect all_;
    QRectF plot_;
    std::vector<std::int64_t> ticks_;
    std::int64_t first_ = 0;
    std::int64_t last_ = 1;
    double top_ = 0;
    double bottom_ = 0;
    double step_ = 1;
};

class ChartWidget : public QWidget {
public:
    ChartWidget(FormWindow& host, const Chart& chart, QWidget* parent) : QWidget(parent), host_(host), chart_(chart) {
        setMinimumSize(220, 140);
    }
    QSize sizeHint() const override { return {kOwnWidth, kOwnHeight}; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Tokens& t = host_.skin().tokens();
        painter.setPen(t.line);
        painter.setBrush(t.panel);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), measure::kPanelRadius, measure::kPanelRadius);
        if (host_.form() == nullptr)
            return;
        if (hasPoints()) {
            Picture(painter, host_.skin(), chart_, rect()).paint();
            return;
        }
        painter.setPen(t.dim);
        painter.setFont(host_.skin().text());
        painter.drawText(rect().adjusted(kMargin, kMargin, -kMargin, -kMargin), Qt::AlignCenter | Qt::TextWordWrap, toQt(chart_.emptyText));
    }
    // Every series' value where the mouse rests.
    bool event(QEvent* event) override {
        if (event->type() != QEvent::ToolTip || host_.form() == nullptr || !hasPoints())
            return QWidget::event(event);
        auto* const help = static_cast<QHelpEvent*>(event);
        QPixmap nowhere(size());
        QPainter painter(&nowhere);
        const std::int64_t x = Picture(painter, host_.skin(), chart_, rect()).xAt(help->pos().x());
        QStringList lines{toQt(chart_.wordsX(x))};
        for (const ChartSeries& one : chart_.series())
            if (const ChartPoint* point = Chart::at(one, x))
                lines << toQt(one.name + ": " + chart_.wordsY(point->y));
        QToolTip::showText(help->globalPos(), plainTip(lines.join(QLatin1Char('\n'))), this);
        return true;
    }

private:
    bool hasPoints() const {
        return std::any_of(chart_.series().begin(), chart_.series().end(), [](const ChartSeries& one) { return !one.points.empty(); });
    }

    FormWindow& host_;
    const Chart& chart_;
};

class ChartDrawing : public Drawing {
public:
    ChartDrawing(FormWindow& host, Chart& chart, QWidget* parent) : Drawing(host, chart, new ChartWidget(host, chart, parent)) {}
    bool wide() const override { return true; }
    bool tall() const override { return true; }
    void refresh(Aspect) override { widget_->update(); }
    void restyle() override { widget_->update(); }
};

} // namespace

Drawn drawChart(FormWindow& host, Chart& chart, QWidget* parent) {
    return std::make_unique<ChartDrawing>(host, chart, parent);
}

} // namespace merchantry::ui
