#pragma once

#include <string>
#include <vector>

namespace merchantry::ui {

class Control;
class Frame;
class Label;
class TabSet;

// How the controls of a form stand on the window, as data: a tree of rows, columns, field lists, groups and pages with the controls as
// leaves. The desktop draws it, tests walk it, and its order is the tab order. An Item borrows its controls.
//
//   setLayout(column({
//       row({title(lblName), stretch(), figure("Price", lblPrice)}),
//       pages(tabItems, {fields({field("Name:", txtName), field("Type:", lbxType)}), ...}),
//       buttons({at(cmdDelete), stretch(), note("Every field is saved as you leave it"), at(cmdExit)}),
//   }));
class Item {
public:
    enum class Kind {
        Empty,
        Control, // a control by itself
        Field,   // a caption and its control, with more controls behind it on the same line
        Caption, // the first child of a field whose caption is a label of the screen
        Row,     // side by side
        Column,  // one below the other
        Fields,  // Field items one below the other, captions aligned
        Group,   // a frame around one child
        Pages,   // a tab set, one child a page
        Buttons, // the command bar at the foot of a window
        Foot,    // a line below everything else, whose room is kept while there is nothing on it
        Title,   // a label as the window's heading
        Figure,  // a caption above a label that shows a key figure
        Note,    // a dim line of text
        Stretch, // takes the room that is left
        Gap,     // the distance between two groups of things
    };

    Item();
    ~Item();
    Item(const Item&);
    Item(Item&&) noexcept;
    Item& operator=(const Item&);
    Item& operator=(Item&&) noexcept;
    Item(Kind kind, Control* control, std::string text, std::vector<Item> children);

    Kind kind() const { return kind_; }
    Control* control() const { return control_; }
    const std::string& text() const { return text_; }
    const std::vector<Item>& children() const { return children_; }

    // Share of the room that is left, 0 for none.
    int stretch() const { return stretch_; }
    Item stretched(int share = 1) && {
        stretch_ = share;
        return std::move(*this);
    }
    // Wished width in characters of the control, 0 for its own.
    int characters() const { return characters_; }
    Item wide(int characters) && {
        characters_ = characters;
        return std::move(*this);
    }
    // Wished height in lines of text, 0 for its own.
    int lines() const { return lines_; }
    Item high(int lines) && {
        lines_ = lines;
        return std::move(*this);
    }

private:
    Kind kind_ = Kind::Empty;
    Control* control_ = nullptr;
    std::string text_;
    std::vector<Item> children_;
    int stretch_ = 0;
    int characters_ = 0;
    int lines_ = 0;
};

Item at(Control& control);
Item field(std::string caption, Control& control, std::vector<Item> behind = {});
// A field whose caption a procedure colours or disables.
Item field(Label& caption, Control& control, std::vector<Item> behind = {});
Item row(std::vector<Item> items);
Item column(std::vector<Item> items);
Item fields(std::vector<Item> items);
Item group(Frame& frame, Item content);
// A box with a heading that no procedure names.
Item box(std::string heading, Item content);
Item pages(TabSet& tabs, std::vector<Item> contents);
Item buttons(std::vector<Item> items);
Item foot(std::vector<Item> items);
Item title(Control& label);
Item figure(std::string caption, Control& label);
Item note(std::string text);
Item stretch();
Item gap();

} // namespace merchantry::ui
