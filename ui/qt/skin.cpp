#include "ui/qt/skin.h"

#include "ui/qt/lineicon.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QStyleFactory>

#include <cmath>

namespace merchantry::ui {
namespace {

QFont inter(int pixels, QFont::Weight weight = QFont::Normal) {
    QFont font(QStringLiteral("Inter"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

double linear(double channel) {
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

int widestDigit(const QFontMetrics& metrics) {
    int widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    return widest;
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

Tokens lightTokens() {
    return {.paper = "#f6f5f2",
            .panel = "#ffffff",
            .ink = "#1f2428",
            .dim = "#5b626d",
            .line = "#dcdad4",
            .strongLine = "#8b8f96",
            .accent = "#0f766e",
            .accentInk = "#ffffff",
            .accentOver = "#0b625b",
            .soft = "#e3f1ee",
            .head = "#f0eee9",
            .alternate = "#fbfaf8",
            .open = "#fff3b0",
            .partial = "#ffd7d2",
            .closed = "#d3f2df",
            .chosen = "#cfe3fa",
            .danger = "#b42318",
            .caution = "#7a5600",
            .fine = "#146c3c"};
}

Tokens darkTokens() {
    return {.paper = "#16181a",
            .panel = "#1e2124",
            .ink = "#e8e6e1",
            .dim = "#a2a8ae",
            .line = "#33383d",
            .strongLine = "#7d848b",
            .accent = "#3fb5a3",
            .accentInk = "#0a1f1c",
            .accentOver = "#5cc7b6",
            .soft = "#1d3b38",
            .head = "#24282c",
            .alternate = "#1b1e21",
            .open = "#4d4413",
            .partial = "#5a211d",
            .closed = "#173d2b",
            .chosen = "#1b3d5f",
            .danger = "#ff8a80",
            .caution = "#f0d264",
            .fine = "#6fd39b"};
}

bool Skin::systemIsDark() {
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

Skin::Skin(Tone tone, bool systemDark)
    : dark_(tone == Tone::Dark || (tone == Tone::System && systemDark)), tokens_(dark_ ? darkTokens() : lightTokens()) {}

void Skin::apply(QApplication& application) const {
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(palette());
    QApplication::setFont(text());
    application.setStyleSheet(sheet());
}

QFont Skin::text() const {
    return inter(13);
}

QFont Skin::strong() const {
    return inter(13, QFont::DemiBold);
}

QFont Skin::code() const {
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(12);
    return font;
}

QFont Skin::title() const {
    return inter(20, QFont::DemiBold);
}

QFont Skin::figure() const {
    return inter(18, QFont::DemiBold);
}

QFont Skin::small() const {
    return inter(12);
}

QIcon Skin::icon(const QString& name, const QColor& color) const {
    return lineIcon(name, color);
}

QIcon Skin::windowIcon(const QString& name) const {
    return tileIcon(name, tokens_.accent, tokens_.accentInk);
}

QColor Skin::ground(Color color) const {
    switch (color) {
    case Color::Yellow:
        return tokens_.open;
    case Color::Red:
        return tokens_.partial;
    case Color::Green:
        return tokens_.closed;
    case Color::Blue:
        return tokens_.chosen;
    case Color::None:
        break;
    }
    return {};
}

QColor Skin::ink(Color color) const {
    switch (color) {
    case Color::Yellow:
        return tokens_.caution;
    case Color::Red:
        return tokens_.danger;
    case Color::Green:
        return tokens_.fine;
    case Color::Blue:
        return tokens_.accent;
    case Color::None:
        break;
    }
    return tokens_.ink;
}

int Skin::figuresWidth(const QFontMetrics& metrics, const QString& text) {
    const int digit = widestDigit(metrics);
    int width = 0;
    for (const QChar c : text)
        width += c.isDigit() ? digit : metrics.horizontalAdvance(c);
    return width;
}

void Skin::drawFigures(QPainter& painter, const QRect& where, const QString& text, Qt::Alignment alignment) {
    const QFontMetrics metrics = painter.fontMetrics();
    const int digit = widestDigit(metrics);
    int x = where.left();
    if (alignment & Qt::AlignRight)
        x = where.right() + 1 - figuresWidth(metrics, text);
    else if (alignment & Qt::AlignHCenter)
        x = where.left() + (where.width() - figuresWidth(metrics, text)) / 2;
    const int base = where.top() + (where.height() + metrics.ascent() - metrics.descent()) / 2;
    for (const QChar c : text) {
        const int own = metrics.horizontalAdvance(c);
        const int room = c.isDigit() ? digit : own;
        painter.drawText(QPointF(x + (room - own) / 2.0, base), QString(c));
        x += room;
    }
}

void Skin::drawTick(QPainter& painter, const QRect& box, bool on, bool enabled, bool hover) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5);
    const QColor fill = on ? (enabled ? tokens_.accent : tokens_.dim) : (enabled ? tokens_.panel : tokens_.head);
    painter.setPen(QPen(on ? fill : (hover && enabled ? tokens_.accent : tokens_.strongLine), 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(frame, 4, 4);
    if (on) {
        const double unit = box.width() / 16.0;
        QPainterPath tick;
        tick.moveTo(frame.left() + 3.4 * unit, frame.top() + 7.8 * unit);
        tick.lineTo(frame.left() + 6.6 * unit, frame.top() + 11.0 * unit);
        tick.lineTo(frame.left() + 11.8 * unit, frame.top() + 4.6 * unit);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(enabled ? tokens_.accentInk : tokens_.panel, 2 * unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(tick);
    }
    painter.restore();
}

QPalette Skin::palette() const {
    QPalette palette;
    palette.setColor(QPalette::Window, tokens_.paper);
    palette.setColor(QPalette::Base, tokens_.panel);
    palette.setColor(QPalette::AlternateBase, tokens_.alternate);
    palette.setColor(QPalette::Button, tokens_.panel);
    palette.setColor(QPalette::ToolTipBase, tokens_.ink);
    palette.setColor(QPalette::ToolTipText, tokens_.paper);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::BrightText})
        palette.setColor(role, tokens_.ink);
    palette.setColor(QPalette::PlaceholderText, tokens_.dim);
    palette.setColor(QPalette::Highlight, tokens_.accent);
    palette.setColor(QPalette::HighlightedText, tokens_.accentInk);
    palette.setColor(QPalette::Link, tokens_.accent);
    palette.setColor(QPalette::Mid, tokens_.line);
    palette.setColor(QPalette::Dark, tokens_.line);
    palette.setColor(QPalette::Light, tokens_.panel);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, tokens_.dim);
    return palette;
}

} // namespace merchantry::ui
