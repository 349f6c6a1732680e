#pragma once

#include "ui/control.h"
#include "ui/layout.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::ui {

class Button;
class Desk;

// What draws a form. Attached by the desktop; the screens never see it.
class FormView {
public:
    virtual ~FormView() = default;
    virtual void controlChanged(Control& control, Aspect aspect) = 0;
    virtual void formChanged() = 0;  // caption, size, wait state
    virtual void focusChanged() = 0; // the form's focused control is another one
};

// A screen: named controls, event procedures, a layout. Made through Desk::form, loaded at its first show (or by ensureLoaded), shown
// modally or not through the desk, gone after unload. A default instance is made anew after it was unloaded.
class Form {
public:
    Form(Desk& desk, std::string name, std::string caption);
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    Desk& desk() const { return desk_; }
    const std::string& name() const { return name_; }
    const std::string& caption() const { return caption_; }
    void setCaption(std::string caption);

    // Runs Form_Load once. Every show does this first; a screen's public operation that touches controls does it before.
    void ensureLoaded();
    bool loaded() const { return loaded_; }
    // Runs Form_Unload, which may refuse, and closes the window. Safe to call from an event of the form: it lives until that is over.
    void unload();
    bool closed() const { return closed_; }
    void hide();
    bool hidden() const { return hidden_; }
    bool modal() const { return modal_; }
    bool minimised() const { return minimised_; }
    void setMinimised(bool on); // by the drawing

    const std::vector<Control*>& controls() const { return controls_; }
    // The control of that name (case does not matter), elements of an array as "cmdExit(1)"; null when there is none.
    Control* find(const std::string& name) const;
    const Item& layout() const { return layout_; }
    // The controls in the order in which Tab visits them: that of the layout.
    std::vector<Control*> tabOrder() const;

    Control* focused() const { return focused_; }
    // Moves the focus with every event that this brings: validate and lostFocus of the old control, gotFocus of the new.
    // False when the old control kept it or the new one cannot take it; null takes it from all.
    bool focus(Control* control);
    // To the next control of the tab order that can take it.
    void focusNext(bool backwards = false);
    // Where a user begins: the first field, list or grid of the tab order, or else what Tab reaches first.
    void focusFirst();
    // To that of the page of the tab set that is turned up, as far as it has one.
    void focusFirstOn(const Control& tabs);

    // A key that works anywhere on the form, whatever has the focus ("F1"). False when the form has no use for it.
    bool takesKey(const std::string& key) const { return keys_.contains(key); }
    bool pressKey(const std::string& key);

    // Enter and Escape press these; null for none.
    Button* defaultButton() const;
    Button* cancelButton() const;

    // Whether the user changed something that only a button of this screen saves; Escape and the close box ask before it is lost.
    bool unsaved() const { return asks_ && touched_; }
    // The user changed what the control holds; called by the gestures.
    void touched(const Control& control);

    Twips width() const { return width_; }
    Twips height() const { return height_; }
    // By the screen or the drawing; runs Form_Resize when loaded.
    void setSize(Twips width, Twips height);
    bool sizeable() const { return sizeable_; }
    const std::string& icon() const { return icon_; }

    FormView* view() const { return view_; }
    void attach(FormView* view) { view_ = view; }

    // A public operation by its name, for scripts: takes its arguments as texts and gives its answer as one. Null when the form offers none
    // such.
    using Operation = std::function<std::string(const std::vector<std::string>& arguments)>;
    const Operation* operation(const std::string& name) const;

    // Called by the desk.
    void shown(bool asModal);
    void activate();
    // The keyboard goes to another form and comes back: the focused control loses the focus and gets it again.
    void focusAway();
    void focusBack();

protected:
    virtual void Form_Load() {}
    virtual void Form_Activate() {}
    virtual void Form_Resize() {}
    virtual void Form_Unload(bool& /*cancel*/) {}

    // Called by a screen's constructor, after its controls stand.
    void setLayout(Item layout);
    void offer(std::string operation, Operation procedure);
    void onKey(std::string key, std::function<void()> procedure) { keys_[std::move(key)] = std::move(procedure); }
    void setIcon(std::string icon) { icon_ = std::move(icon); }
    void setFixedSize() { sizeable_ = false; }
    // For a screen that writes nothing before a button is pressed. Controls that only choose what is shown are left aside.
    void asksBeforeLeaving(std::vector<const Control*> aside = {}) {
        asks_ = true;
        aside_ = std::move(aside);
    }
    // What was changed is written, or gone.
    void nothingUnsaved() { touched_ = false; }

private:
    friend class Control;
    void add(Control& control);
    void remove(Control& control);
    std::vector<Control*> tabStops() const;

    Desk& desk_;
    std::string name_;
    std::string caption_;
    std::string icon_;
    std::vector<Control*> controls_;
    std::map<std::string, Operation> operations_;
    std::map<std::string, std::function<void()>> keys_;
    Item layout_;
    std::vector<const Control*> aside_; // see asksBeforeLeaving
    Control* focused_ = nullptr;
    FormView* view_ = nullptr;
    Twips width_ = 0;
    Twips height_ = 0;
    bool sizeable_ = true;
    bool loaded_ = false;
    bool closed_ = false;
    bool hidden_ = false;
    bool modal_ = false;
    bool minimised_ = false;
    bool unloading_ = false;
    bool asks_ = false;
    bool touched_ = false;
    bool away_ = false;   // the keyboard is with another form
    bool moving_ = false; // between two controls: neither has the focus
};

} // namespace merchantry::ui
