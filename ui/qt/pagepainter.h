#pragma once

#include "ui/page.h"

#include <QFont>
#include <QPainter>
#include <QString>

#include <functional>
#include <map>

namespace merchantry::ui {

// The font of printed pages.
QFont pageFont(int halfPoints, bool bold);

// Widths as pages are drawn, on whatever they are drawn. Wants a running application object.
class QtTextMeasure : public TextMeasure {
public:
    int width(const std::string& text, int halfPoints, bool bold) const override;

private:
    // By size and weight: widths of single letters, which add up since pages are drawn without kerning.
    mutable std::map<std::pair<int, bool>, std::map<char32_t, double>> letters_;
};

// Draws a page; the painter's coordinates are twips then, and as before behind it.
void paintPage(QPainter& painter, const Page& page);

// Writes pages into a PDF with its fonts inside and its text as text. The file appears whole or not at all; a sentence tells what went
// wrong, empty when nothing did. False from `goOn` stops it.
QString writePdf(const QString& file, const QString& title, const Pages& pages, const std::function<bool(int done)>& goOn);

} // namespace merchantry::ui
