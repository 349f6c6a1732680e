#pragma once

#include "base/date.h"
#include "reports/engine/outline.h"
#include "ui/page.h"

#include <memory>
#include <string>
#include <vector>

namespace merchantry::reports {

// What stands on every page beside the rows.
struct PageHead {
    std::string store;
    std::string criteria; // in words; empty without any
    Date made;
};

// A letter of a report: its pages, from 0, and the words that name its file.
struct Letter {
    int first = 0;
    int last = 0;
    std::string name;
};

// Lays a report out on pages. Only where each page begins is kept; a page is made when it is asked for and owned by the caller.
// Borrows outline and measure, which must outlive it.
class Layout : public ui::Pages {
public:
    Layout(const Outline& outline, const ui::TextMeasure& measure, PageHead head);

    // Lays out at most so many more pages; true when all are laid out. The first page is laid out from the start.
    bool layOut(int pages);
    bool complete() const override { return complete_; }
    int count() const override { return static_cast<int>(starts_.size()); }
    const std::vector<ui::PageBranch>& tree() const { return tree_; }
    // "Page n of m" has its m once all pages are laid out, or all of the page's letter.
    ui::Page page(int number) const override;
    // The letters of a report that consists of such; none of any other. Requires: complete().
    std::vector<Letter> letters() const;

private:
    // Where a column stands, in twips from the left margin.
    struct Place {
        std::size_t column = 0;
        int x = 0;
        int width = 0;
        ui::PageAlign align = ui::PageAlign::Left;
        std::vector<std::string> heading;
    };
    struct Start {
        Walk walk;
        std::vector<std::string> open; // headers of the groups that go on from the page before
        bool foot = false;             // nothing but what follows the rows
        std::size_t chart = 0;         // the first chart of that page
        int letter = 0;                // the page on which its letter begins
    };
    class Filler;
    friend class Filler;

    void placeColumns();
    bool beginsLetter(const Walk& walk) const;
    int endOfLetter(int number) const;
    int height(int halfPoints) const { return halfPoints * 13; } // 1.3 times the size
    int bodyHeight() const { return height(body_) + 30; }

    const Outline& outline_;
    const ui::TextMeasure& measure_;
    PageHead head_;
    int body_;       // half points
    int paperWidth_; // twips
    int paperHeight_;
    std::vector<Place> places_;
    int headingLines_ = 1;
    bool wraps_ = false;
    std::vector<Start> starts_;
    std::vector<ui::PageBranch> tree_;
    bool complete_ = false;
};

} // namespace merchantry::reports
