#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace merchantry::ui {

// How a text stands in its box.
enum class PageAlign : std::uint8_t { Left, Center, Right };
// The inks of printed pages: a skin is for windows, paper is white.
enum class PageInk : std::uint8_t { Black, Red, Green, Blue, Grey, Amber, Faint, White };

// One thing drawn on a page. Places and sizes are in twips (1440 to the inch) from the page's top left corner.
struct PageItem {
    enum class Kind : std::uint8_t {
        Text,   // in its box: one line, cut off at the box
        Line,   // from x, y to x + width, y + height
        Box,    // filled with `fill`, or its outline when that is White
        Sector, // of the circle in its box, from `start` on over `span`
        Path,   // a line through `points`
    };
    Kind kind = Kind::Text;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    std::string text;
    int halfPoints = 18; // size of the text: 9 points
    bool bold = false;
    PageAlign align = PageAlign::Left;
    PageInk ink = PageInk::Black;
    PageInk fill = PageInk::White;
    int shade = 100; // of the fill, in percent
    int pattern = 0; // 0 plain, 1 to 5 hatched, so that fills can be told apart in grey
    int start = 0;   // of a sector: sixteenths of a degree, against the clock from three o'clock
    int span = 0;
    std::vector<int> points; // of a path: x, y, x, y, ...
};

// A printed page: plain drawing items, so that screen, printer and files show the same.
struct Page {
    int width = 12240;
    int height = 15840;
    std::vector<PageItem> items;
};

// Pages that are made when they are asked for. What makes them may still be laying out more.
class Pages {
public:
    virtual ~Pages() = default;
    virtual int count() const = 0;
    virtual bool complete() const = 0;
    // Requires: 0 <= number < count().
    virtual Page page(int number) const = 0;
};

// A place of a report's group tree: a header and the page that it stands on, from 0.
struct PageBranch {
    std::string text;
    int level = 0;
    int page = 0;
};

// Where pages are put one after the other: a printer, a file. Gone unfinished it leaves nothing behind that was not there before; what a
// printer has taken is the printer's.
class PageSink {
public:
    virtual ~PageSink() = default;
    // Throws std::runtime_error with a sentence for the user.
    virtual void put(const Page& page) = 0;
    virtual void finish() = 0;
};

// How wide a text will be drawn. The desktop measures with its fonts, a test with letters of one width.
class TextMeasure {
public:
    virtual ~TextMeasure() = default;
    // In twips.
    virtual int width(const std::string& text, int halfPoints, bool bold) const = 0;
};

// Every letter is half as wide as its size, bold ones included.
class FixedMeasure : public TextMeasure {
public:
    int width(const std::string& text, int halfPoints, bool bold) const override;
};

} // namespace merchantry::ui
