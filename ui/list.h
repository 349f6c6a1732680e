#pragma once

#include "base/rows.h"
#include "ui/control.h"

#include <string>
#include <vector>

namespace merchantry::ui {

struct ListEntry {
    std::string text;
    int itemData = 0; // a number that the screen keeps with the entry
};

// A list of which one entry, or none, is selected. Positions count from 0; -1 is no selection.
class ListBox : public Control {
public:
    ListBox(Form& form, std::string_view name);
    ~ListBox() override;
    Role role() const override { return Role::ListBox; }
    bool takesFocus() const override { return true; }

    const std::vector<ListEntry>& entries() const { return entries_; }
    int count() const { return static_cast<int>(entries_.size()); }
    void add(std::string text, int itemData = 0);
    void clear(); // no event
    void removeEntry(int index);
    // Position of the first entry of that text (case does not matter); -1 when there is none.
    int indexOf(const std::string& text) const;

    int listIndex() const { return index_; }
    // Selects and, from 0 on, runs click, whoever sets it. Requires: -1 to count - 1.
    void setListIndex(int index);
    // The selected entry's text; empty when there is none.
    std::string text() const;
    // The selected entry's itemData. Requires: a selection.
    int itemData() const { return entries_.at(static_cast<std::size_t>(index_)).itemData; }

    bool dropDown = true; // drawn closed, opening on demand; false: an open list of several lines
    std::function<void()> click;
    std::function<void()> dblClick;

private:
    std::vector<ListEntry> entries_;
    int index_ = -1;
};

// A field of text with a list to choose from. Only a listed text may be typed unless `editable`.
class ComboBox : public Control {
public:
    ComboBox(Form& form, std::string_view name);
    ~ComboBox() override;
    Role role() const override { return Role::ComboBox; }
    bool takesFocus() const override { return true; }
    bool tabStop() const override { return !locked_; }

    const std::vector<ListEntry>& entries() const { return entries_; }
    int count() const { return static_cast<int>(entries_.size()); }
    void add(std::string text, int itemData = 0);
    void clear(); // text too; no event
    int indexOf(const std::string& text) const;

    const std::string& text() const { return text_; }
    // Takes the text and the entry that equals it, or none (-1); runs change when the text becomes another one.
    void setText(std::string text);
    int listIndex() const { return index_; }
    // Takes the entry; runs click. Requires: -1 to count - 1.
    void setListIndex(int index);
    int itemData() const { return entries_.at(static_cast<std::size_t>(index_)).itemData; }

    bool locked() const { return locked_; }
    void setLocked(bool on);
    // Opens the list before the user, where one is drawn.
    void dropDown();
    // Counts these wishes, so that a drawing notices a new one.
    int dropWishes() const { return dropWishes_; }

    bool editable = false;
    std::function<void()> change;
    std::function<void()> click;

private:
    std::vector<ListEntry> entries_;
    std::string text_;
    int index_ = -1;
    int dropWishes_ = 0;
    bool locked_ = false;
};

// A combo whose entries are the rows of a table: shows one column of it.
class DataCombo : public ComboBox {
public:
    using ComboBox::ComboBox;
    // Fills the list from the rows; borrows nothing.
    void fill(const Rows& rows, const std::string& shownColumn);
};

} // namespace merchantry::ui
