#pragma once

#include "ui/button.h"
#include "ui/choice.h"
#include "ui/control.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/menu.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <string>

// What a user can do to a control, with everything that it brings, in the order in which it happens on a window: first the focus moves
// (leaving and entering), then the act. The drawing of the desktop and the scripts both go through here, so that they cannot differ. Each
// gives back why it cannot be done ("hidden", "disabled", "locked", "covered by frmX"), or an empty text when it was.
namespace merchantry::ui::gestures {

std::string obstacle(const Control& control);
std::string enter(Control& control);

std::string type(TextBox& box, const std::string& text);   // replaces all
std::string append(TextBox& box, const std::string& text); // at the end, character by character
std::string type(ComboBox& box, const std::string& text);
std::string append(ComboBox& box, const std::string& text);
std::string press(Button& button);
// Goes down on a button that works while it is held, and comes up.
std::string hold(Button& button, bool down);
std::string press(Label& label);
std::string press(Image& image);
std::string press(MenuEntry& entry);
std::string press(Toolbar& bar, const std::string& key);
std::string check(CheckBox& box, bool on);
std::string choose(OptionButton& option);
std::string pick(ListBox& list, int index);
std::string pick(ComboBox& list, int index);
std::string turn(TabSet& tabs, int page);
std::string select(Grid& grid, int row, int column);
// From one row to another, as by dragging; the click comes once they are selected.
std::string selectRows(Grid& grid, int from, int to);
std::string clickHeading(Grid& grid, int column);
std::string doubleClick(Grid& grid, int row, int column);
// An entry of the context menu that every grid has.
std::string chooseUse(Grid& grid, const std::string& caption);
// Begins the edit, types, commits. A refused edit is no obstacle: the grid's procedures have spoken.
std::string edit(Grid& grid, int row, int column, const std::string& text);
// F1 and Shift+F1 open the form's help, Ctrl+Tab and Ctrl+PageDown turn pages, with Shift and Ctrl+PageUp backwards. Enter, Escape, Tab and
// Alt+letter do on a form what a user expects, Space clicks what has the focus, Ctrl+A, Ctrl+C and Delete work in a box or on a cell; false
// when the key means nothing there.
bool key(Form& form, const std::string& key);
// By the close box or Escape's button.
std::string close(Form& form);

} // namespace merchantry::ui::gestures
