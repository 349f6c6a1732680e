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
#include <memory>
#include <stdexcept>

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

// The fonts of one page, each made once.
class Fonts {
public:
    struct Font {
        QFont font;
        LetterWidths widths;
        double height;
        double ascent;
    };
    Font& of(const PageItem& item) {
        auto& known = fonts_[{item.halfPoints, item.bold}];
        if (!known) {
            const QFont font = pageFont(item.halfPoints, item.bold);
            const QFontMetricsF metrics(font);
            known = std::make_unique<Font>(Font{font, LetterWidths(font), metrics.ascent() + metrics.descent(), metrics.ascent()});
        }
        return *known;
    }
    // The painter takes a font only when it is another one.
    void use(QPainter& painter, const Font& font) {
        if (used_ != &font)
            painter.setFont(font.font);
        used_ = &font;
    }

private:
    std::map<std::pair<int, bool>, std::unique_ptr<Font>> fonts_;
    const Font* used_ = nullptr;
};

void paintText(QPainter& painter, const PageItem& item, Fonts& fonts) {
    Fonts::Font& font = fonts.of(item);
    fonts.use(painter, font);
    painter.setPen(colorOf(item.ink));
    const QString text = toQt(item.text);
    double x = item.x;
    if (item.align != PageAlign::Left) {
        const double room = item.width - font.widths.of(text);
        x += item.align == PageAlign::Right ? room : room / 2;
    }
    painter.drawText(QPointF(x, item.y + (item.height - font.height) / 2 + font.ascent), text);
}

void paintItem(QPainter& painter, const PageItem& item, Fonts& fonts) {
    const QRectF box(item.x, item.y, item.width, item.height);
    switch (item.kind) {
    case PageItem::Kind::Text:
        paintText(painter, item, fonts);
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

class PdfFile : public PageSink {
public:
    PdfFile(const QString& file, const QString& title) : out_(file) {
        if (!out_.open(QIODevice::WriteOnly))
            throw std::runtime_error(fromQt(QStringLiteral("The file %1 cannot be written: %2").arg(out_.fileName(), out_.errorString())));
        writer_ = std::make_unique<QPdfWriter>(&out_);
        writer_->setResolution(kPdfResolution);
        writer_->setTitle(title);
        writer_->setCreator(QStringLiteral("Merchantry"));
        writer_->setPageMargins(QMarginsF(0, 0, 0, 0));
    }
    ~PdfFile() override {
        close();
        out_.cancelWriting(); // no file comes of it, unless it is finished already
    }
    void put(const Page& page) override {
        writer_->setPageSize(QPageSize(QSizeF(page.width / kTwipsPerPoint, page.height / kTwipsPerPoint), QPageSize::Point));
        if (painter_.isActive())
            writer_->newPage();
        else
            painter_.begin(writer_.get());
        paintPage(painter_, page);
    }
    void finish() override {
        close();
        if (!out_.commit())
            throw std::runtime_error(
                fromQt(QStringLiteral("The file %1 could not be written: %2").arg(out_.fileName(), out_.errorString())));
    }

private:
    void close() {
        if (painter_.isActive())
            painter_.end();
        writer_.reset();
    }

    QSaveFile out_;
    std::unique_ptr<QPdfWriter> writer_;
    QPainter painter_;
};

} // namespace

// Sizes are pixels of the painter's coordinates, which are twips.
QFont pageFont(int halfPoints, bool bold) {
    QFont font(QStringLiteral("Inter"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(static_cast<int>(halfPoints * kTwipsPerPoint / 2));
    font.setWeight(bold ? QFont::DemiBold : QFont::Normal);
    font.setKerning(false);
    // Letters as they are: a font's contextual forms (a raised colon between digits, brackets around capitals) have no text in a PDF.
    font.setStyleStrategy(QFont::PreferNoShaping);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

double LetterWidths::of(const QString& text) {
    double width = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar letter = text[i];
        if (letter.unicode() < plain_.size()) {
            double& known = plain_[letter.unicode()];
            if (known < 0)
                known = metrics_.horizontalAdvance(letter);
            width += known;
            continue;
        }
        const bool pair = letter.isHighSurrogate() && i + 1 < text.size();
        const char32_t point = pair ? QChar::surrogateToUcs4(letter, text[i + 1]) : letter.unicode();
        const auto [known, isNew] = others_.try_emplace(point, 0);
        if (isNew)
            known->second = metrics_.horizontalAdvance(text.mid(i, pair ? 2 : 1));
        width += known->second;
        i += pair ? 1 : 0;
    }
    return width;
}

QtTextMeasure::QtTextMeasure() : regular_(pageFont(kMeasured, false)), bold_(pageFont(kMeasured, true)) {}

int QtTextMeasure::width(const std::string& text, int halfPoints, bool bold) const {
    return static_cast<int>((bold ? bold_ : regular_).of(toQt(text)) * halfPoints / kMeasured);
}

void paintPage(QPainter& painter, const Page& page) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    Fonts fonts;
    for (const PageItem& item : page.items)
        paintItem(painter, item, fonts);
    painter.restore();
}

std::unique_ptr<PageSink> pdfFile(const QString& file, const QString& title) {
    return std::make_unique<PdfFile>(file, title);
}

QString writePdf(const QString& file, const QString& title, const Pages& pages, const std::function<bool(int done)>& goOn) {
    try {
        const auto pdf = pdfFile(file, title);
        for (int number = 0; number < pages.count(); ++number) {
            pdf->put(pages.page(number));
            if (goOn && !goOn(number + 1))
                return QStringLiteral("Stopped: nothing was written.");
        }
        pdf->finish();
    } catch (const std::runtime_error& failure) {
        return QString::fromUtf8(failure.what());
    }
    return {};
}

} // namespace merchantry::ui
