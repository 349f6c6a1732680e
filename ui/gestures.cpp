#include "ui/gestures.h"

#include "base/characters.h"
#include "ui/desk.h"
#include "ui/form.h"
#include "ui/gridcopy.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace merchantry::ui::gestures {
namespace {

// The letter behind "&" in a caption, in lower case; 0 when there is none.
char mnemonic(const std::string& caption) {
    for (std::size_t at = 0; at + 1 < caption.size(); ++at) {
        if (caption[at] != '&')
            continue;
        if (caption[at + 1] == '&')
            ++at;
        else
            return static_cast<char>(std::tolower(static_cast<unsigned char>(caption[at + 1])));
    }
    return '\0';
}

bool pressMnemonic(Form& form, char letter) {
    for (Control* control : form.controls()) {
        if (!control->obstacle().empty())
            continue;
        if (auto* button = dynamic_cast<Button*>(control); button != nullptr && mnemonic(button->caption()) == letter)
            return press(*button).empty();
        if (auto* box = dynamic_cast<CheckBox*>(control); box != nullptr && mnemonic(box->caption()) == letter)
            return check(*box, !box->value()).empty();
        if (auto* option = dynamic_cast<OptionButton*>(control); option != nullptr && mnemonic(option->caption()) == letter)
            return choose(*option).empty();
    }
    return false;
}

// What of the text such a field lets in: digits for the mask's "#" with its other characters between them, and no more than fits.
std::string fitting(const TextBox& box, const std::string& text) {
    if (box.mask.empty())
        return box.maxLength > 0 ? std::string(characters(text, 0, static_cast<std::size_t>(box.maxLength))) : text;
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](unsigned char c) { return std::isdigit(c) != 0; });
    std::string shown;
    std::size_t next = 0;
    for (const char place : box.mask) {
        if (next == digits.size())
            break;
        shown += place == '#' ? digits[next++] : place;
    }
    return shown;
}

// Keys that work on the text of a box; false when this one means nothing there.
bool editText(TextBox& box, const std::string& name) {
    if (name == "Ctrl+C") {
        if (!box.password)
            box.form().desk().copyText(box.selectedText());
        return true;
    }
    if (name == "Ctrl+A") {
        box.selectAll();
        return true;
    }
    if (name != "Delete" || box.locked() || box.selectionLength() == 0)
        return false;
    const auto start = static_cast<std::size_t>(box.selectionStart());
    const std::string& text = box.text();
    box.setText(std::string(characters(text, 0, start)) +
                std::string(characters(text, start + static_cast<std::size_t>(box.selectionLength()), characterCount(text))));
    return true;
}

// What is clicked like a button; boxes by Space alone.
bool clickFocused(Control* control, bool boxesToo) {
    if (auto* button = dynamic_cast<Button*>(control))
        return press(*button).empty();
    if (auto* image = dynamic_cast<Image*>(control))
        return press(*image).empty();
    if (auto* label = dynamic_cast<Label*>(control))
        return press(*label).empty();
    if (auto* box = dynamic_cast<CheckBox*>(control); box != nullptr && boxesToo)
        return check(*box, !box->value()).empty();
    if (auto* option = dynamic_cast<OptionButton*>(control); option != nullptr && boxesToo)
        return choose(*option).empty();
    return false;
}

// Keys that copy and export any grid's rows; several selected rows are copied as such.
bool useGrid(Grid& grid, const std::string& name) {
    if (name == "Ctrl+C" && grid.firstSelected() != grid.lastSelected()) {
        copySelection(grid);
        return true;
    }
    for (const GridUse& one : gridUses())
        if (*one.key != '\0' && name == one.key) {
            one.run(grid);
            return true;
        }
    return false;
}

// The tab set around what has the focus, or else the first that can be used.
TabSet* tabsInUse(const Form& form) {
    for (Control* around = form.focused(); around != nullptr; around = around->container())
        if (auto* tabs = dynamic_cast<TabSet*>(around))
            return tabs;
    for (Control* control : form.controls())
        if (auto* tabs = dynamic_cast<TabSet*>(control); tabs != nullptr && tabs->obstacle().empty())
            return tabs;
    return nullptr;
}

// To the next page or the one before, round about; the focus goes to its first field.
bool turnPage(Form& form, int step) {
    TabSet* const tabs = tabsInUse(form);
    if (tabs == nullptr || tabs->count() == 0)
        return false;
    if (turn(*tabs, (tabs->current() + step + tabs->count()) % tabs->count()).empty() && form.focused() == tabs)
        form.focusFirstOn(*tabs);
    return true;
}

// Keys that lead elsewhere: to the help, to another page.
bool leads(Form& form, const std::string& name) {
    if (name == "Ctrl+Tab" || name == "Ctrl+PageDown")
        return turnPage(form, 1);
    if (name == "Ctrl+Shift+Tab" || name == "Ctrl+PageUp")
        return turnPage(form, -1);
    if (name != "F1" && name != "Shift+F1")
        return false;
    form.desk().showHelp(form);
    return true;
}

template <class C, class Act> std::string use(C& control, Act act) {
    if (std::string why = enter(control); !why.empty())
        return why;
    act();
    return "";
}

// The same for what changes the control's content.
template <class C, class Act> std::string change(C& control, Act act) {
    return use(control, [&] {
        control.form().touched(control);
        act();
    });
}

// One rule for every screen: what only a button would save is asked about before Escape or the close box lose it.
bool mayLose(Form& form) {
    return !form.unsaved() || form.desk().message("What you changed here is not saved. Leave all the same?", form.caption(),
                                                  MessageIcon::Exclamation, MessageButtons::YesNo) == Answer::Yes;
}

} // namespace

std::string obstacle(const Control& control) {
    if (std::string why = control.obstacle(); !why.empty())
        return why;
    const Form& form = control.form();
    if (form.closed() || form.hidden())
        return "closed";
    if (form.desk().covered(form))
        return "covered by another window";
    return "";
}

std::string enter(Control& control) {
    if (std::string why = obstacle(control); !why.empty())
        return why;
    control.form().desk().giveKeyboard(control.form());
    if (!control.takesFocus())
        return "";
    return control.form().focus(&control) ? "" : "the focus stays where it is";
}

std::string type(TextBox& box, const std::string& text) {
    if (std::string why = enter(box); !why.empty())
        return why;
    if (box.locked())
        return "locked";
    box.form().touched(box);
    box.setText(fitting(box, text));
    return "";
}

std::string append(TextBox& box, const std::string& text) {
    if (std::string why = enter(box); !why.empty())
        return why;
    if (box.locked())
        return "locked";
    box.form().touched(box);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        nextCodePoint(text, at);
        const std::string character = text.substr(start, at - start);
        bool swallow = false;
        if (box.keyDown)
            box.keyDown(character, swallow);
        if (!swallow)
            box.setText(fitting(box, box.text() + character));
    }
    return "";
}

std::string append(ComboBox& box, const std::string& text) {
    if (std::string why = enter(box); !why.empty())
        return why;
    if (box.locked() || !box.editable)
        return "locked";
    box.form().touched(box);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        nextCodePoint(text, at);
        box.setText(box.text() + text.substr(start, at - start));
    }
    return "";
}

std::string type(ComboBox& box, const std::string& text) {
    if (std::string why = enter(box); !why.empty())
        return why;
    if (box.locked())
        return "locked";
    if (!box.editable && box.indexOf(text) < 0)
        return "no such entry";
    box.form().touched(box);
    box.setText(text);
    return "";
}

std::string press(Button& button) {
    return use(button, [&] { button.press(); });
}

std::string hold(Button& button, bool down) {
    if (!down) { // what was held comes up whatever happened meanwhile
        button.hold(false);
        return "";
    }
    return use(button, [&] { button.hold(true); });
}

std::string press(Label& label) {
    return use(label, [&] { label.press(); });
}

std::string press(Image& image) {
    return use(image, [&] { image.press(); });
}

std::string press(MenuEntry& entry) {
    for (const MenuEntry* above = &entry; above != nullptr; above = above->parent())
        if (std::string why = obstacle(*above); !why.empty())
            return why;
    entry.press();
    return "";
}

std::string press(Toolbar& bar, const std::string& key) {
    if (std::string why = obstacle(bar); !why.empty())
        return why;
    for (const ToolButton& button : bar.buttons())
        if (button.key == key) {
            if (!bar.buttonEnabled(key))
                return "disabled";
            bar.press(key);
            return "";
        }
    return "no button of that key";
}

std::string check(CheckBox& box, bool on) {
    return change(box, [&] { box.setValue(on); });
}

std::string choose(OptionButton& option) {
    return change(option, [&] {
        const bool was = option.value();
        option.setValue(true);
        if (was && option.click)
            option.click();
    });
}

std::string pick(ListBox& list, int index) {
    if (index < 0 || index >= list.count())
        return "no such entry";
    return change(list, [&] { list.setListIndex(index); });
}

std::string pick(ComboBox& list, int index) {
    if (index < 0 || index >= list.count())
        return "no such entry";
    if (list.locked())
        return "locked";
    return change(list, [&] { list.setListIndex(index); });
}

std::string turn(TabSet& tabs, int page) {
    if (page < 0 || page >= tabs.count())
        return "no such page";
    return use(tabs, [&] { tabs.setCurrent(page); });
}

std::string select(Grid& grid, int row, int column) {
    if (row < 1 || row > grid.dataRows())
        return "no such row";
    return use(grid, [&] { grid.userClick(row, column); });
}

std::string selectRows(Grid& grid, int from, int to) {
    if (from < 1 || to < 1 || std::max(from, to) > grid.dataRows())
        return "no such row";
    return use(grid, [&] {
        if (!grid.userSelect(from, grid.col()))
            return;
        grid.select(from, to);
        if (grid.click)
            grid.click();
    });
}

std::string clickHeading(Grid& grid, int column) {
    if (column < 0 || column >= grid.columnCount())
        return "no such column";
    return use(grid, [&] { grid.userHeader(column); });
}

std::string doubleClick(Grid& grid, int row, int column) {
    if (row < 1 || row > grid.dataRows())
        return "no such row";
    return use(grid, [&] { grid.userDoubleClick(row, column); });
}

std::string chooseUse(Grid& grid, const std::string& caption) {
    for (const GridUse& one : gridUses())
        if (caption == one.caption)
            return use(grid, [&] { one.run(grid); });
    for (const ColumnUse& one : columnUses(grid))
        if (caption == one.caption)
            return use(grid, [&] { grid.userTurnColumn(one.column); });
    return "no such entry in its menu";
}

std::string edit(Grid& grid, int row, int column, const std::string& text) {
    if (row < 1 || row > grid.dataRows() || column < 0 || column >= grid.columnCount())
        return "no such cell";
    if (std::string why = enter(grid); !why.empty())
        return why;
    if (!grid.userBeginEdit(row, column))
        return "";
    const std::string typed = grid.userEditText(text);
    if (!grid.userCommit(typed) && grid.editing())
        grid.userCancelEdit();
    return "";
}

bool key(Form& form, const std::string& name) {
    if (form.pressKey(name))
        return true;
    auto* box = dynamic_cast<TextBox*>(form.focused());
    if (box != nullptr && box->keyDown) {
        bool swallow = false;
        box->keyDown(name, swallow);
        if (swallow)
            return true;
    }
    if (leads(form, name) || (box != nullptr && editText(*box, name)))
        return true;
    if (auto* grid = dynamic_cast<Grid*>(form.focused()); grid != nullptr && useGrid(*grid, name))
        return true;
    if ((name == "Space" || name == "Enter") && clickFocused(form.focused(), name == "Space"))
        return true;
    if (name == "Tab" || name == "Shift+Tab") {
        form.focusNext(name != "Tab");
        return true;
    }
    if (name == "Enter" && box != nullptr && box->multiline) {
        if (!box->locked())
            box->setText(box->text() + "\n");
        return true;
    }
    if (name == "Enter") {
        if (auto* grid = dynamic_cast<Grid*>(form.focused()); grid != nullptr && grid->selected() && grid->dblClick) {
            grid->userDoubleClick(grid->row(), grid->col());
            return true;
        }
        Button* button = form.defaultButton();
        return button != nullptr && press(*button).empty();
    }
    if (name == "Escape") {
        if (auto* grid = dynamic_cast<Grid*>(form.focused()); grid != nullptr && grid->editing()) {
            grid->userCancelEdit();
            return true;
        }
        Button* button = form.cancelButton();
        return button != nullptr && (!mayLose(form) || press(*button).empty());
    }
    if (name.size() == 5 && name.starts_with("Alt+"))
        return pressMnemonic(form, static_cast<char>(std::tolower(static_cast<unsigned char>(name[4]))));
    return false;
}

std::string close(Form& form) {
    if (form.desk().covered(form))
        return "covered by another window";
    // What was typed into the field that has the focus counts, however the window is closed.
    if (!form.focus(nullptr))
        return "the focus stays where it is";
    if (mayLose(form))
        form.unload();
    return "";
}

} // namespace merchantry::ui::gestures
