#pragma once

#include "ui/page.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QString>

#include <array>
#include <functional>
#include <map>
#include <memory>

namespace merchantry::ui {

// The font of printed pages.
QFont pageFont(int halfPoints, bool bold);

// Widths of single letters, which add up to those of texts since pages are drawn without kerning. Each letter is measured once.
class LetterWidths {
public:
    explicit LetterWidths(const QFont& font) : metrics_(font) { plain_.fill(-1); }
    double of(const QString& text);

private:
    QFontMetricsF metrics_;
    std::array<double, 128> plain_{}; // of ASCII; below 0 for not measured
    std::map<char32_t, double> others_;
};

// Widths as pages are drawn, on whatever they are drawn. Wants a running application object.
class QtTextMeasure : public TextMeasure {
public:
    QtTextMeasure();
    int width(const std::string& text, int halfPoints, bool bold) const override;

private:
    mutable LetterWidths regular_;
    mutable LetterWidths bold_;
};

// Draws a page; the painter's coordinates are twips then, and as before behind it.
void paintPage(QPainter& painter, const Page& page);

// A PDF with its fonts inside and its text as text, one page put after the other. The file appears whole when it is finished. Throws
// std::runtime_error when it cannot be written.
std::unique_ptr<PageSink> pdfFile(const QString& file, const QString& title);

// Writes all pages into a PDF; a sentence tells what went wrong, empty when nothing did. False from `goOn` stops it.
QString writePdf(const QString& file, const QString& title, const Pages& pages, const std::function<bool(int done)>& goOn);

} // namespace merchantry::ui
