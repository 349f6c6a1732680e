#pragma once

#include "ui/control.h"

#include <string>

namespace merchantry::ui {

// A field of text. With a mask ("(###) ###-####": # a digit, other characters stand) it takes only what fits.
class TextBox : public Control {
public:
    TextBox(Form& form, std::string_view name);
    ~TextBox() override;
    Role role() const override { return Role::TextBox; }
    bool takesFocus() const override { return true; }
    bool tabStop() const override { return !locked_; }

    const std::string& text() const { return text_; }
    // What a window shows: for money the amount in the form "$#,##0.00;($#,##0.00)" while the field does not have the focus, otherwise
    // text().
    std::string shownText() const;
    // Runs change when the text becomes another one, whoever sets it.
    void setText(std::string text);
    // Number of characters selected and the first of them, for the user to see; kept inside the text.
    int selectionStart() const { return selStart_; }
    int selectionLength() const { return selLength_; }
    void select(int start, int length);
    void selectAll();
    std::string selectedText() const;

    bool locked() const { return locked_; }
    void setLocked(bool on);

    // Of a password: whether the window shows it instead of dots, as it does while a button is held.
    bool revealed() const { return revealed_; }
    void setRevealed(bool on);

    bool multiline = false;
    bool password = false;   // dots on a window; never copied, and dots wherever a screen's texts are written down
    bool alignRight = false; // numbers
    bool fixedWidth = false; // codes
    bool money = false;      // see shownText
    int maxLength = 0;       // characters, 0 for no limit
    std::string mask;
    std::string placeholder; // shown dim while the field is empty
    std::function<void()> change;
    // Before a key acts; setting the flag swallows it.
    std::function<void(const std::string& key, bool& swallow)> keyDown;

private:
    std::string text_;
    int selStart_ = 0;
    int selLength_ = 0;
    bool locked_ = false;
    bool revealed_ = false;
};

} // namespace merchantry::ui
