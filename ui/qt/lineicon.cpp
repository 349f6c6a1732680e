#include "ui/qt/lineicon.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

// Resources of a static library must be asked for; the macro wants to stand outside of every namespace.
static void loadIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace merchantry::ui {
namespace {

// Icons are drawn with "currentColor", which is replaced by the wanted colour before rendering.
QByteArray drawing(const QString& name, const QColor& color) {
    loadIcons();
    QFile file(QStringLiteral(":/icons/") + name + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().replace("currentColor", color.name().toLatin1());
}

class LineIconEngine : public QIconEngine {
public:
    LineIconEngine(QByteArray svg, QByteArray faded, const QColor& tile) : svg_(std::move(svg)), faded_(std::move(faded)), tile_(tile) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        QSvgRenderer renderer(mode == QIcon::Disabled ? faded_ : svg_);
        QRectF where(rect);
        painter->setRenderHint(QPainter::Antialiasing);
        if (tile_.isValid()) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(tile_);
            painter->drawRoundedRect(where, where.width() * 0.22, where.height() * 0.22);
            where = where.marginsRemoved(QMarginsF(1, 1, 1, 1) * (where.width() * 0.17));
        }
        renderer.render(painter, where);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        return {QSize(16, 16), QSize(24, 24), QSize(32, 32), QSize(48, 48), QSize(128, 128)};
    }

    QIconEngine* clone() const override { return new LineIconEngine(svg_, faded_, tile_); }

private:
    QByteArray svg_;
    QByteArray faded_;
    QColor tile_;
};

} // namespace

QIcon lineIcon(const QString& name, const QColor& color) {
    const QByteArray svg = drawing(name, color);
    if (svg.isEmpty())
        return {};
    QColor faded = color;
    faded.setHsl(color.hslHue(), color.hslSaturation() / 3, (color.lightness() + 128) / 2);
    return QIcon(new LineIconEngine(svg, drawing(name, faded), {}));
}

QIcon tileIcon(const QString& name, const QColor& tile, const QColor& color) {
    const QByteArray svg = drawing(name, color);
    return svg.isEmpty() ? QIcon() : QIcon(new LineIconEngine(svg, svg, tile));
}

} // namespace merchantry::ui
