#include "bench/barepdf.h"

#include "ui/qt/pagepainter.h"
#include "ui/qt/texts.h"

#include <QFile>
#include <QPainter>
#include <QPdfWriter>

namespace merchantry::bench {

void writeBarePdf(const std::filesystem::path& path, std::span<const ui::Page> pages) {
    QFile file(ui::toQt(path.string()));
    file.open(QIODevice::WriteOnly);
    QPdfWriter writer(&file);
    writer.setResolution(1440);
    writer.setPageSize(QPageSize(QSizeF(pages[0].width / 20.0, pages[0].height / 20.0), QPageSize::Point));
    QPainter painter(&writer);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (i > 0)
            writer.newPage();
        for (const ui::PageItem& item : pages[i].items)
            if (item.kind == ui::PageItem::Kind::Text) {
                painter.setFont(ui::pageFont(item.halfPoints, item.bold));
                painter.drawText(QPointF(item.x, item.y + item.height), ui::toQt(item.text));
            }
    }
    painter.end();
}

} // namespace merchantry::bench
