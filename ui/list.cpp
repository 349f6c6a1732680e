#include "ui/list.h"

#include "base/textorder.h"

namespace merchantry::ui {
namespace {

int positionOf(const std::vector<ListEntry>& entries, const std::string& text) {
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (sameText(entries[i].text, text))
            return static_cast<int>(i);
    return -1;
}

} // namespace

ListBox::ListBox(Form& form, std::string_view name) : Control(form, name) {}

ListBox::~ListBox() = default;

ComboBox::ComboBox(Form& form, std::string_view name) : Control(form, name) {}

ComboBox::~ComboBox() = default;

void ListBox::add(std::string text, int itemData) {
    entries_.push_back({std::move(text), itemData});
    changed(Aspect::Items);
}

void ListBox::clear() {
    entries_.clear();
    index_ = -1;
    changed(Aspect::Items);
}

void ListBox::removeEntry(int index) {
    entries_.erase(entries_.begin() + index);
    if (index_ == index)
        index_ = -1;
    else if (index_ > index)
        --index_;
    changed(Aspect::Items);
}

int ListBox::indexOf(const std::string& text) const {
    return positionOf(entries_, text);
}

void ListBox::setListIndex(int index) {
    index_ = index < count() ? index : -1;
    changed(Aspect::Choice);
    if (index_ >= 0 && click)
        click();
}

std::string ListBox::text() const {
    return index_ < 0 ? std::string() : entries_[static_cast<std::size_t>(index_)].text;
}

void ComboBox::add(std::string text, int itemData) {
    entries_.push_back({std::move(text), itemData});
    changed(Aspect::Items);
}

void ComboBox::clear() {
    entries_.clear();
    text_.clear();
    index_ = -1;
    changed(Aspect::Items);
}

int ComboBox::indexOf(const std::string& text) const {
    return positionOf(entries_, text);
}

void ComboBox::setText(std::string text) {
    if (text_ == text)
        return;
    text_ = std::move(text);
    index_ = indexOf(text_);
    changed(Aspect::Text);
    if (change)
        change();
}

void ComboBox::setListIndex(int index) {
    index_ = index < count() ? index : -1;
    text_ = index_ < 0 ? std::string() : entries_[static_cast<std::size_t>(index_)].text;
    changed(Aspect::Choice);
    if (index_ >= 0 && click)
        click();
}

void ComboBox::dropDown() {
    ++dropWishes_;
    changed(Aspect::Choice);
}

void ComboBox::setLocked(bool on) {
    locked_ = on;
    changed(Aspect::State);
}

void DataCombo::fill(const Rows& rows, const std::string& shownColumn) {
    clear();
    for (int column = 0; column < rows.columnCount(); ++column) {
        if (!sameText(rows.columnName(column), shownColumn))
            continue;
        for (int row = 0; row < rows.rowCount(); ++row)
            add(std::string(rows.cellText(row, column)), row);
    }
}

} // namespace merchantry::ui
