#include "ui/reportview.h"

#include "base/lettercase.h"
#include "ui/desk.h"
#include "ui/form.h"

#include <algorithm>

namespace merchantry::ui {
namespace {

constexpr int kSameLine = 60; // twips between the middles of texts that stand on one line

int middle(const PageItem& item) {
    return item.y + item.height / 2;
}

// Where the text's letters begin, about: right-aligned ones end at the box.
int readingX(const PageItem& item) {
    return item.align == PageAlign::Right ? item.x + item.width : item.x;
}

} // namespace

std::vector<const PageItem*> readingOrder(const Page& page) {
    std::vector<const PageItem*> texts;
    for (const PageItem& item : page.items)
        if (item.kind == PageItem::Kind::Text && !item.text.empty())
            texts.push_back(&item);
    std::stable_sort(texts.begin(), texts.end(), [](const PageItem* a, const PageItem* b) { return middle(*a) < middle(*b); });
    for (auto line = texts.begin(); line != texts.end();) {
        const auto end = std::find_if(line, texts.end(), [&](const PageItem* one) { return middle(*one) - middle(**line) > kSameLine; });
        std::stable_sort(line, end, [](const PageItem* a, const PageItem* b) { return readingX(*a) < readingX(*b); });
        line = end;
    }
    return texts;
}

void ReportView::show(const Pages* pages, const std::vector<PageBranch>* tree) {
    pages_ = pages;
    tree_ = tree;
    page_ = pageCount() > 0 ? 1 : 0;
    selection_.reset();
    changed(Aspect::Rows);
    changed(Aspect::Choice);
    if (pageChange)
        pageChange();
}

void ReportView::turnTo(int page) {
    scrolledTo(page);
    changed(Aspect::Choice);
}

void ReportView::scrolledTo(int page) {
    const int wanted = pageCount() == 0 ? 0 : std::clamp(page, 1, pageCount());
    if (wanted == page_)
        return;
    page_ = wanted;
    changed(Aspect::Text);
    if (pageChange)
        pageChange();
}

void ReportView::zoom(Fit fit, int percent) {
    const int wanted = std::clamp(percent, kLeastPercent, kMostPercent);
    if (fit == fit_ && wanted == percent_)
        return;
    fit_ = fit;
    percent_ = wanted;
    changed(Aspect::Look);
    if (zoomChange)
        zoomChange();
}

void ReportView::zoomBy(int steps) {
    static constexpr int kSizes[] = {25, 50, 75, 100, 125, 150, 200, 300, 400};
    if (!zoomable)
        return;
    int size = fit_ == Fit::Percent ? percent_ : shownPercent;
    for (; steps > 0; --steps)
        size = *std::find_if(std::begin(kSizes), std::prev(std::end(kSizes)), [size](int one) { return one > size; });
    for (; steps < 0; ++steps)
        size = *std::find_if(std::rbegin(kSizes), std::prev(std::rend(kSizes)), [size](int one) { return one < size; });
    zoom(Fit::Percent, size);
}

void ReportView::setTreeShown(bool on) {
    treeShown_ = on;
    changed(Aspect::Items);
}

void ReportView::turnToGroup(bool backwards) {
    int found = 0;
    for (std::size_t i = 0; tree_ != nullptr && i < tree_->size(); ++i) {
        const int page = (*tree_)[i].page + 1;
        if (backwards && page < page_)
            found = page;
        else if (!backwards && page > page_ && found == 0)
            found = page;
    }
    if (found > 0)
        turnTo(found);
}

void ReportView::select(PageSpot from, PageSpot to) {
    anchor_ = from;
    end_ = to;
    selection_ = Selection{std::min(from, to), std::max(from, to)};
    changed(Aspect::Cells);
}

void ReportView::extend(int texts) {
    if (!selection_ || pages_ == nullptr)
        return;
    PageSpot to = end_;
    to.text += texts;
    if (to.text < 0) {
        if (to.page == 0)
            return;
        to.text = std::max(0, static_cast<int>(readingOrder(pages_->page(--to.page)).size()) - 1);
    } else if (to.text >= static_cast<int>(readingOrder(pages_->page(to.page)).size())) {
        if (to.page + 1 >= pageCount())
            return;
        to = {to.page + 1, 0};
    }
    select(anchor_, to);
}

void ReportView::selectPage() {
    if (page_ == 0)
        return;
    const int texts = static_cast<int>(readingOrder(pages_->page(page_ - 1)).size());
    if (texts > 0)
        select({page_ - 1, 0}, {page_ - 1, texts - 1});
}

void ReportView::clearSelection() {
    if (!selection_)
        return;
    selection_.reset();
    changed(Aspect::Cells);
}

std::string ReportView::selectedText() const {
    if (!selection_ || pages_ == nullptr)
        return "";
    std::string text;
    for (int number = selection_->from.page; number <= selection_->to.page; ++number) {
        const Page page = pages_->page(number);
        const auto texts = readingOrder(page);
        const int first = number == selection_->from.page ? selection_->from.text : 0;
        const int last = number == selection_->to.page ? selection_->to.text : static_cast<int>(texts.size()) - 1;
        const PageItem* before = nullptr;
        for (int i = first; i <= last && i < static_cast<int>(texts.size()); ++i) {
            const PageItem* one = texts[static_cast<std::size_t>(i)];
            if (!text.empty())
                text += before != nullptr && middle(*one) - middle(*before) <= kSameLine ? "\t" : "\n";
            text += one->text;
            before = one;
        }
    }
    return text;
}

void ReportView::copy() const {
    if (const std::string text = selectedText(); !text.empty())
        form().desk().copyText(text);
}

bool ReportView::findOn(int page, const std::string& words, bool backwards, bool whole) {
    const Page drawn = pages_->page(page - 1);
    const auto texts = readingOrder(drawn);
    const int count = static_cast<int>(texts.size());
    const std::string wanted = lowerCase(words);
    int at = backwards ? count - 1 : 0;
    if (!whole && selection_ && selection_->from.page == page - 1)
        at = backwards ? selection_->from.text - 1 : selection_->to.text + 1;
    for (; at >= 0 && at < count; at += backwards ? -1 : 1) {
        if (lowerCase(texts[static_cast<std::size_t>(at)]->text).find(wanted) == std::string::npos)
            continue;
        scrolledTo(page);
        select({page - 1, at}, {page - 1, at});
        return true;
    }
    return false;
}

ReportSearch::ReportSearch(ReportView& view, std::string words, bool backwards)
    : view_(view), words_(std::move(words)), backwards_(backwards),
      start_(view.selection() ? view.selection()->from.page : std::max(0, view.page() - 1)) {}

// The page of the start comes twice: from the selection on, and whole at the end.
int ReportSearch::step() {
    const int pages = view_.pageCount();
    if (found_ || done_ > pages)
        return 100;
    const int page = ((start_ + (backwards_ ? -done_ : done_)) % pages + pages) % pages;
    found_ = view_.findOn(page + 1, words_, backwards_, done_ > 0);
    ++done_;
    return found_ || done_ > pages ? 100 : std::min(99, done_ * 100 / (pages + 1));
}

} // namespace merchantry::ui
