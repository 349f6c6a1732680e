#pragma once

#include "ui/control.h"
#include "ui/page.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::ui {

// A text on a page: the page's number from 0, and the place of the text among the page's texts in reading order, from 0.
struct PageSpot {
    int page = 0;
    int text = 0;
    auto operator<=>(const PageSpot&) const = default;
};

// The texts of a page as one reads them, line by line from left to right. Borrows the page.
std::vector<const PageItem*> readingOrder(const Page& page);

// Where a report's pages are shown, with the tree of its groups at the left. The screen gives the pages, says when more are laid out, and
// turns; the drawing makes a page only when it is looked at. Pages count from 1 here.
class ReportView : public Control {
public:
    ReportView(Form& form, std::string name) : Control(form, std::move(name)) {}
    Role role() const override { return Role::ReportView; }
    bool takesFocus() const override { return true; }

    // Borrows both until the next show; null shows an empty desk. Turns to the first page, nothing selected.
    void show(const Pages* pages, const std::vector<PageBranch>* tree = nullptr);
    // More of them are laid out.
    void grown() { changed(Aspect::Rows); }
    const Pages* pages() const { return pages_; }
    int pageCount() const { return pages_ == nullptr ? 0 : pages_->count(); }

    // The page looked at, 0 when there is none.
    int page() const { return page_; }
    // Turns to the nearest page that there is, and runs pageChange when that is another one.
    void turnTo(int page);
    // The user scrolled there: the same without moving what is seen.
    void scrolledTo(int page);

    // How large pages are seen: as wide as the window, whole, or in percent of their true size, from 25 to 400.
    enum class Fit { Width, Page, Percent };
    Fit fit() const { return fit_; }
    int percent() const { return percent_; }
    void zoom(Fit fit, int percent = 100);
    // To the next of the usual sizes, larger or smaller than what is seen now.
    void zoomBy(int steps);
    int shownPercent = 100; // what a fitted page comes to; by the drawing
    static constexpr int kLeastPercent = 25;
    static constexpr int kMostPercent = 400;

    // The branches in order; null without.
    const std::vector<PageBranch>* tree() const { return tree_; }
    // To the page of the next group, or of the one before; the first branch on another page counts.
    void turnToGroup(bool backwards);
    bool treeShown() const { return treeShown_; }
    void setTreeShown(bool on);

    // The selected texts, first and last; nothing without.
    struct Selection {
        PageSpot from;
        PageSpot to;
    };
    const std::optional<Selection>& selection() const { return selection_; }
    // In either order. The drawing brings the end into sight.
    void select(PageSpot from, PageSpot to);
    // The other end moves by so many texts, as Shift with an arrow does; nothing without a selection.
    void extend(int texts);
    void selectPage();
    void clearSelection();
    // Cells of a line are parted by tabs.
    std::string selectedText() const;

    void copy() const;

    // The next text after the selection, or before it, that contains the words (case does not matter), on this page alone and, with
    // `whole`, from its beginning or end on. Selects it and turns there; false when there is none.
    bool findOn(int page, const std::string& words, bool backwards, bool whole);

    bool zoomable = true; // whether the user may change how large pages are
    std::function<void()> pageChange;
    std::function<void()> zoomChange;

private:
    const Pages* pages_ = nullptr;
    const std::vector<PageBranch>* tree_ = nullptr;
    int page_ = 0;
    Fit fit_ = Fit::Width;
    int percent_ = 100;
    bool treeShown_ = true;
    std::optional<Selection> selection_; // from <= to
    PageSpot anchor_;
    PageSpot end_;
};

// Looks for words from the selection on, a page a step, once around the report.
class ReportSearch {
public:
    // Borrows the view. Requires: it shows pages.
    ReportSearch(ReportView& view, std::string words, bool backwards);
    // Percent done; 100 when the words were found (found() tells) or the whole report was searched.
    int step();
    bool found() const { return found_; }

private:
    ReportView& view_;
    std::string words_;
    bool backwards_;
    int start_;
    int done_ = 0;
    bool found_ = false;
};

} // namespace merchantry::ui
