#include "ui/qt/pagepainter.h"

#include "ui/qt/texts.h"

#include <QFontMetricsF>
#include <QPageSize>
#include <QPainterPath>
#include <QPdfWriter>
#include <QPen>
#include <QPolygonF>
#include <QSaveFile>

#include <array>

namespace merchantry::ui {
namespace {

constexpr double kTwipsPerPoint = 20;
constexpr int kMeasured = 200;       // points of the font that letters are measured with
constexpr int kPdfResolution = 1440; // one dot is a twip

QColor colorOf(PageInk ink) {
    switch (ink) {
    case PageInk::Red:
        return {0xB0, 0x1E, 0x1E};
    case PageInk::Green:
        return {0x1B, 0x6E, 0x38};
    case PageInk::Blue:
        return {0x2B, 0x5C, 0x9E};
    case PageInk::Grey:
        return {0x6A, 0x6F, 0x76};
    case PageInk::Amber:
        return {0xA8, 0x64, 0x00};
    case PageInk::Faint:
        return {0xEE, 0xF0, 0xF3};
    case PageInk::White:
        return Qt::white;
    case PageInk::Black:
        break;
    }
    return {0x14, 0x17, 0x1A};
}

QColor shaded(PageInk ink, int percent) {
    const QColor full = colorOf(ink);
    const auto mix = [&](int part) { return 255 - (255 - part) * percent / 100; };
    return {mix(full.red()), mix(full.green()), mix(full.blue())};
}

// Hatches as lines of their own, so that they print alike everywhere.
void hatch(QPainter& painter, const QPainterPath& shape, int pattern) {
    if (pattern == 0)
        return;
    static constexpr std::array<std::array<int, 2>, 6> kSteps{{{0, 0}, {1, 1}, {1, -1}, {1, 0}, {0, 1}, {2, 1}}};
    painter.save();
    painter.setClipPath(shape, Qt::IntersectClip);
    painter.setPen(QPen(Qt::white, 14));
    const QRectF box = shape.boundingRect();
    const double reach = box.width() + box.height();
    const auto [dx, dy] =
        std::pair(kSteps.at(static_cast<std::size_t>(pattern % 6))[0], kSteps.at(static_cast<std::size_t>(pattern % 6))[1]);
    for (double at = -reach; at < reach; at += 90) {
        const QPointF from = dx == 0 ? QPointF(box.left() + at, box.top()) : QPointF(box.left(), box.top() + at);
        painter.drawLine(from, from + QPointF(dx * reach, dy * reach));
    }
    painter.restore();
}

void fillShape(QPainter& painter, const QPainterPath& shape, const PageItem& item) {
    painter.fillPath(shape, shaded(item.fill, item.shade));
    hatch(painter, shape, item.pattern);
}

void paintText(QPainter& painter, const PageItem& item) {
    const QFont font = pageFont(item.halfPoints, item.bold);
    painter.save();
    painter.setPen(colorOf(item.ink));
    painter.translate(item.x, item.y);
    painter.setFont(font);
    const QFontMetricsF metrics(font);
    const QString text = toQt(item.text);
    const double width = metrics.horizontalAdvance(text);
    double x = 0;
    if (item.align == PageAlign::Right)
        x = item.width - width;
    else if (item.align == PageAlign::Center)
        x = (item.width - width) / 2;
    painter.drawText(QPointF(x, (item.height + metrics.ascent() - metrics.descent()) / 2), text);
    painter.restore();
}

void paintItem(QPainter& painter, const PageItem& item) {
    const QRectF box(item.x, item.y, item.width, item.height);
    switch (item.kind) {
    case PageItem::Kind::Text:
        paintText(painter, item);
        break;
    case PageItem::Kind::Line:
        painter.setPen(QPen(colorOf(item.ink), item.ink == PageInk::Black ? 12 : 8));
        painter.drawLine(QPointF(item.x, item.y), QPointF(item.x + item.width, item.y + item.height));
        break;
    case PageItem::Kind::Box: {
        QPainterPath shape;
        shape.addRect(box);
        if (item.fill == PageInk::White) {
            painter.setPen(QPen(colorOf(item.ink), 8));
            painter.drawPath(shape);
        } else {
            fillShape(painter, shape, item);
        }
        break;
    }
    case PageItem::Kind::Sector: {
        QPainterPath shape(box.center());
        shape.arcTo(box, item.start / 16.0, item.span / 16.0);
        shape.closeSubpath();
        fillShape(painter, shape, item);
        painter.setPen(QPen(Qt::white, 16));
        painter.drawPath(shape);
        break;
    }
    case PageItem::Kind::Path: {
        QPolygonF line;
        for (std::size_t i = 0; i + 1 < item.points.size(); i += 2)
            line << QPointF(item.points[i], item.points[i + 1]);
        painter.setPen(QPen(colorOf(item.ink), 30, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(line);
        break;
    }
    }
}

} // namespace

// Sizes are pixels of the painter's coordinates, which are twips.
QFont pageFont(int halfPoints, bool bold) {
    QFont font(QStringLiteral("Inter"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(static_cast<int>(halfPoints * kTwipsPerPoint / 2));
    font.setWeight(bold ? QFont::DemiBold : QFont::Normal);
    font.setKerning(false);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

int QtTextMeasure::width(const std::string& text, int halfPoints, bool bold) const {
    auto& letters = letters_[{0, bold}];
    double width = 0;
    for (const char32_t letter : toQt(text).toStdU32String()) {
        const auto [known, isNew] = letters.try_emplace(letter, 0);
        if (isNew)
            known->second = QFontMetricsF(pageFont(kMeasured, bold)).horizontalAdvance(QString::fromUcs4(&letter, 1));
        width += known->second;
    }
    return static_cast<int>(width * halfPoints / kMeasured);
}

void paintPage(QPainter& painter, const Page& page) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    for (const PageItem& item : page.items)
        paintItem(painter, item);
    painter.restore();
}

QString writePdf(const QString& file, const QString& title, const Pages& pages, const std::function<bool(int done)>& goOn) {
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly))
        return QStringLiteral("The file %1 cannot be written: %2").arg(file, out.errorString());
    {
        QPdfWriter writer(&out);
        writer.setResolution(kPdfResolution);
        writer.setTitle(title);
        writer.setCreator(QStringLiteral("Merchantry"));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        QPainter painter;
        for (int number = 0; number < pages.count(); ++number) {
            const Page next = pages.page(number);
            writer.setPageSize(QPageSize(QSizeF(next.width / kTwipsPerPoint, next.height / kTwipsPerPoint), QPageSize::Point));
            if (number == 0)
                painter.begin(&writer);
            else
                writer.newPage();
            paintPage(painter, next);
            if (goOn && !goOn(number + 1)) {
                painter.end();
                out.cancelWriting();
                return QStringLiteral("Stopped: nothing was written.");
            }
        }
        painter.end();
    }
    return out.commit() ? QString() : QStringLiteral("The file %1 could not be written: %2").arg(file, out.errorString());
}

} // namespace merchantry::ui
