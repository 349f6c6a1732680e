#pragma once

#include "ui/form.h"
#include "ui/play/player.h"

#include <type_traits>

namespace merchantry::ui {
struct ToolButton;
class Toolbar;
} // namespace merchantry::ui

namespace merchantry::ui::play {

// A text that is expected, exactly or (like) with "%" for any text.
struct Wanted {
    std::string text;
    bool like = false;
    bool holds(std::string_view seen) const;
    std::string told() const;
};

// "the same with % for any text": bytes compare exactly but for that.
bool matchesPattern(std::string_view text, std::string_view pattern);

// A control by its name, or a toolbar's button by its key.
struct Target {
    Control* control = nullptr;
    const ToolButton* tool = nullptr; // then control is its bar
};

// One line while it is done: gives its words one after the other, and the controls that they name.
// Every member that takes a word fails the line when there is none or it is of the wrong kind.
class Step {
public:
    Step(Player& player, const Line& line);

    // Words. `what` names the argument in a failure.
    bool more() const { return at_ < words_.size(); }
    std::string bare(const std::string& what);
    std::string text(const std::string& what); // in quotes
    std::string any(const std::string& what);  // either
    int number(const std::string& what);
    bool nextIsText() const;
    // Takes the word if it is the next.
    bool accept(std::string_view word);
    bool flag(); // "on" or "off"
    Wanted wanted(const std::string& what);
    std::vector<std::string> texts(); // the rest
    const Word& setting(const std::string& what);
    // Requires every word to be taken.
    void end();

    // How such a line is written; told where its words are not as they should be.
    void isWritten(const char* form) { written_ = form; }

    // Screens. The form that `on` named, otherwise the one on top.
    Form& form();
    Form* openForm(const std::string& name) const; // not hidden; the newest
    void lookOn(Form& form) { named_ = &form; }
    Target target(const std::string& name);
    Control& control(); // the next word's
    template <class C> C& as(const char* kind) {
        const std::string name = any("a control's name");
        return cast<C>(*target(name).control, kind);
    }
    template <class C> static C& cast(Control& control, const char* kind) {
        if (auto* wanted = dynamic_cast<C*>(&control))
            return *wanted;
        throw LineFailure{control.name() + " to be " + kind, "it is another kind of control"};
    }

    // Fails the line when something stood in the way of what was done.
    void demand(const std::string& obstacle, const std::string& done);
    void refusalIsExpected() { refusalExpected_ = true; }
    // The screen itself did not let it happen: no failure of the line, but what "expect refused" waits for.
    void refusedIf(bool refused, const std::string& done);

    Player& player() { return player_; }
    PlayDesk& desk() { return player_.desk(); }
    PlayHost& host() { return player_.host(); }

private:
    const Word& take(const std::string& what);
    [[noreturn]] void misread(const std::string& expected, const std::string& found) const;
    std::string resolved(const std::string& text) const;

    Player& player_;
    std::vector<Word> words_;
    std::size_t at_ = 0;
    Form* named_ = nullptr;
    bool refusalExpected_ = false;
    const char* written_ = "verb ...";
};

// Fails the line unless what it speaks of is there at all.
inline void lineNeeds(bool there, const std::string& expected, const std::string& found) {
    if (!there)
        throw LineFailure{expected, found};
}

// Fails the line unless it holds.
inline void expectThat(bool holds, const std::string& expected, const std::string& found) {
    if (!holds)
        throw LineFailure{expected, found, false, true};
}

} // namespace merchantry::ui::play
