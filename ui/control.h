#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace merchantry::ui {

class Form;
class TabSet;

// Screen measure: 1440 to the inch, 15 to a pixel at 100 %.
using Twips = int;
constexpr Twips kTwipsPerPixel = 15;

// A colour that a screen gives. Named ones are meanings; the skin says how they look.
enum class Color { None, Yellow, Green, Red, Blue };

enum class Role {
    Label,
    TextBox,
    Button,
    CheckBox,
    OptionButton,
    ListBox,
    ComboBox,
    Frame,
    TabSet,
    Grid,
    ProgressBar,
    Timer,
    Image,
    MenuEntry,
    Toolbar,
    ReportView,
    Chart,
};

// What of a control changed; tells a drawing how much to draw again.
enum class Aspect { Text, State, Choice, Items, Look, Rows, Cells, Place };

struct Place {
    Twips left = 0;
    Twips top = 0;
    Twips width = 0;
    Twips height = 0;
    bool operator==(const Place&) const = default;
};

// One named thing on a form: state and events, no drawing. The form knows its controls in the order of their construction and must outlive
// them (they are its members). Setting a property by program does what the user's own action would, events included,
// where the comment of the property says so.
class Control {
public:
    Control(Form& form, std::string_view name);
    virtual ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    virtual Role role() const = 0;
    const std::string& name() const { return name_; }
    Form& form() const { return form_; }

    bool enabled() const { return enabled_; }
    void setEnabled(bool on);
    bool visible() const { return visible_; }
    void setVisible(bool on);
    const std::string& toolTip() const { return toolTip_; }
    void setToolTip(std::string text);
    Color foreColor() const { return foreColor_; }
    void setForeColor(Color color);

    // Where the control stands on the window; filled in by the desktop after the first layout. A screen that moves its controls sets it.
    const Place& place() const { return place_; }
    void setPlace(const Place& place);

    // The frame or tab set that holds this control, and for a tab set the page; set by the form's layout. Null: the form itself.
    Control* container() const { return container_; }
    int page() const { return page_; }
    void putInto(Control* container, int page);

    // Why the user could not use the control now: "hidden", "on another page", "disabled"; empty when nothing is in the way.
    virtual std::string obstacle() const;
    // Whether the focus can stand here, by a click or by program.
    virtual bool takesFocus() const { return false; }
    // Whether Tab stops here: a locked field is passed over.
    virtual bool tabStop() const { return takesFocus(); }
    void setFocus();

    std::string tag;       // words for Resizer: "Top", "Left", "Width", "Height"
    std::string dataField; // the column that BindControls binds this control to; empty for none

    std::function<void()> gotFocus;
    std::function<void()> lostFocus;
    // Runs before the focus leaves; setting the flag keeps it here.
    std::function<void(bool& cancel)> validate;

    // For the classes of this folder and the drawings: tells the view that something changed.
    void changed(Aspect aspect);

private:
    Form& form_;
    std::string name_;
    std::string toolTip_;
    bool enabled_ = true;
    bool visible_ = true;
    Color foreColor_ = Color::None;
    Place place_;
    Control* container_ = nullptr;
    int page_ = 0;
};

} // namespace merchantry::ui
