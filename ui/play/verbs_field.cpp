#include "base/text.h"
#include "ui/gestures.h"
#include "ui/play/looks.h"
#include "ui/play/verbs.h"

#include "base/textorder.h"

namespace merchantry::ui::play {
namespace {

// The first of these kinds that the control is does the act; false when it is none of them.
template <class... Kinds, class Act> bool actAs(Control& control, Act act) {
    bool acted = false;
    const auto tryOne = [&](auto* kind) {
        if (acted || kind == nullptr)
            return;
        acted = true;
        act(*kind);
    };
    (tryOne(dynamic_cast<Kinds*>(&control)), ...);
    return acted;
}

void typeText(Step& step) {
    Control& box = step.control();
    const std::string text = step.text("a text to type");
    step.end();
    const bool typed = actAs<TextBox, ComboBox>(box, [&](auto& one) { step.demand(gestures::type(one, text), "type into " + box.name()); });
    lineNeeds(typed, box.name() + " to be a box to type in", "it is a " + kindOf(box));
}

void appendText(Step& step) {
    Control& box = step.control();
    const std::string text = step.text("a text to type");
    step.end();
    const bool typed =
        actAs<TextBox, ComboBox>(box, [&](auto& one) { step.demand(gestures::append(one, text), "type into " + box.name()); });
    lineNeeds(typed, box.name() + " to be a box to type in", "it is a " + kindOf(box));
}

void enterControl(Step& step) {
    Control& control = step.control();
    step.end();
    lineNeeds(control.takesFocus(), control.name() + " to take the focus", "a " + kindOf(control) + " never does");
    step.demand(gestures::enter(control), "enter " + control.name());
}

void leaveControl(Step& step) {
    Control& control = step.control();
    step.end();
    step.demand(gestures::enter(control), "leave " + control.name());
    if (control.form().focused() == &control)
        control.form().focusNext();
}

void clickTarget(Step& step, const Target& target) {
    Control& control = *target.control;
    const std::string done = "click " + control.name();
    if (target.tool != nullptr) {
        step.demand(gestures::press(dynamic_cast<Toolbar&>(control), target.tool->key), "press " + target.tool->key);
        return;
    }
    if (actAs<Button, Label, Image, MenuEntry>(control, [&](auto& one) { step.demand(gestures::press(one), done); }))
        return;
    if (actAs<CheckBox>(control, [&](CheckBox& box) { step.demand(gestures::check(box, !box.value()), done); }))
        return;
    if (actAs<OptionButton>(control, [&](OptionButton& option) { step.demand(gestures::choose(option), done); }))
        return;
    lineNeeds(control.takesFocus(), control.name() + " to be clicked", "it is a " + kindOf(control));
    step.demand(gestures::enter(control), done);
}

void click(Step& step) {
    const Target target = step.target(step.any("a control's name"));
    step.end();
    lineNeeds(target.control->role() != Role::Grid, "a row of " + target.control->name(), "a grid is clicked with: row grd n [col]");
    clickTarget(step, target);
}

void holdButton(Step& step) {
    auto& button = step.as<Button>("a button");
    step.end();
    lineNeeds(static_cast<bool>(button.held), button.name() + " to be a button that is held", "it is pressed");
    step.demand(gestures::hold(button, true), "hold " + button.name());
}

void releaseButton(Step& step) {
    auto& button = step.as<Button>("a button");
    step.end();
    gestures::hold(button, false);
}

void check(Step& step) {
    Control& control = step.control();
    const bool on = step.flag();
    step.end();
    const auto now = shownFlag(control);
    lineNeeds(now.has_value(), control.name() + " to be a check box", "it is a " + kindOf(control));
    const std::string done = "click " + control.name();
    if (*now == on) {
        step.demand(gestures::obstacle(control), done);
        return;
    }
    if (auto* option = dynamic_cast<OptionButton*>(&control)) {
        lineNeeds(on, control.name() + " to go off by a click", "an option goes off when another goes on");
        step.demand(gestures::choose(*option), done);
    } else {
        step.demand(gestures::check(dynamic_cast<CheckBox&>(control), on), done);
    }
}

// The entry by its text, or by "#n" with n from 1.
int entryIndex(Step& step, const Control& list, const std::vector<std::string>& entries) {
    if (step.nextIsText()) {
        const std::string text = step.text("an entry");
        for (std::size_t i = 0; i < entries.size(); ++i)
            if (entries[i] == text)
                return static_cast<int>(i);
        throw LineFailure{"an entry " + inQuotes(text) + " in " + list.name(), "there are \"" + joined(entries, "\", \"") + "\""};
    }
    const std::string position = step.bare("an entry's text, or #n");
    const int index = position.starts_with("#") ? std::atoi(position.c_str() + 1) - 1 : -1;
    lineNeeds(index >= 0 && index < static_cast<int>(entries.size()), "an entry from #1 to #" + std::to_string(entries.size()),
              "there was " + position);
    return index;
}

void pick(Step& step) {
    Control& list = step.control();
    const auto entries = shownEntries(list);
    lineNeeds(entries && (list.role() == Role::ListBox || list.role() == Role::ComboBox), list.name() + " to be a list or combo",
              "it is a " + kindOf(list));
    // What is in the way is told before what is not in the list: a list behind a modal form cannot be read.
    step.demand(gestures::obstacle(list), "pick from " + list.name());
    const int index = entryIndex(step, list, *entries);
    step.end();
    actAs<ListBox, ComboBox>(list, [&](auto& one) { step.demand(gestures::pick(one, index), "pick from " + list.name()); });
}

void turnTo(Step& step) {
    auto& tabs = step.as<TabSet>("a tab set");
    const std::string caption = step.text("a page's caption");
    step.end();
    for (int page = 0; page < tabs.count(); ++page) {
        const std::string& one = tabs.captions()[static_cast<std::size_t>(page)];
        if (one == caption || replaced(one, "&", "") == caption) {
            step.demand(gestures::turn(tabs, page), "turn to " + inQuotes(caption));
            step.refusedIf(tabs.current() != page, "turn to " + inQuotes(caption));
            return;
        }
    }
    throw LineFailure{"a page " + inQuotes(caption), "there are \"" + joined(tabs.captions(), "\", \"") + "\""};
}

void pressKey(Step& step) {
    const std::string name = step.any("a key's name");
    step.end();
    Form* const keyboard = step.desk().keyboard();
    const bool taken = keyboard != nullptr && gestures::key(*keyboard, name);
    // A panel beside a list leaves to the list what it does not use itself.
    if (!taken && (keyboard == nullptr || step.desk().floating(*keyboard)))
        gestures::key(step.form(), name);
}

void closeForm(Step& step) {
    step.end();
    Form& form = step.form();
    step.demand(gestures::close(form), "close " + form.name());
    step.refusedIf(!form.closed() && !form.hidden(), "close " + form.name());
}

Form& openNamed(Step& step, const char* name) {
    Form* const form = step.openForm(name);
    lineNeeds(form != nullptr, std::string(name) + " to be open", "it is not");
    return *form;
}

void login(Step& step) {
    const std::string name = step.text("a user name");
    const std::string password = step.text("a password");
    step.end();
    Form& form = openNamed(step, "frmLogin");
    step.lookOn(form);
    step.demand(gestures::type(Step::cast<TextBox>(*step.target("txtLogin(0)").control, "a text box"), name), "type the name");
    step.demand(gestures::type(Step::cast<TextBox>(*step.target("txtLogin(1)").control, "a text box"), password), "type the password");
    auto& button = Step::cast<Button>(*step.target("cmdLogin(0)").control, "a button");
    // Set first: the main window may open a modal form of its own, whose loop does the lines that follow.
    PlayDesk& desk = step.desk();
    Player& player = step.player();
    player.checkLater([&desk, &player] {
        for (const Form* open : desk.openForms())
            if (!open->hidden() && sameText(open->name(), "frmMain"))
                return;
        const auto& messages = desk.messages;
        const std::string said = messages.empty() ? "it did not open" : "there was message " + told(messages.back());
        throw LineFailure{"the main window to open", player.ending() ? "the process ended" : said};
    });
    step.demand(gestures::press(button), "log in");
}

void command(Step& step) {
    const std::string name = step.bare("a command's name");
    step.end();
    step.lookOn(openNamed(step, "frmMain"));
    auto& entry = Step::cast<MenuEntry>(*step.target(name).control, "a menu entry");
    step.demand(gestures::press(entry), "give the command " + name);
}

void toolbar(Step& step) {
    const std::string key = step.any("a toolbar button's key");
    step.end();
    const Target target = step.target(key);
    lineNeeds(target.tool != nullptr, "a toolbar button " + key, "it is a " + kindOf(*target.control));
    clickTarget(step, target);
}

} // namespace

const std::vector<Entry>& fieldVerbs() {
    static const std::vector<Entry> table{
        {"login", R"(login "name" "password")", &login},
        {"command", "command mnuX", &command},
        {"toolbar", R"(toolbar "Key")", &toolbar},
        {"type", R"(type ctl "text")", &typeText},
        {"append", R"(append ctl "text")", &appendText},
        {"enter", "enter ctl", &enterControl},
        {"leave", "leave ctl", &leaveControl},
        {"click", "click ctl", &click},
        {"hold", "hold ctl", &holdButton},
        {"release", "release ctl", &releaseButton},
        {"check", "check ctl on|off", &check},
        {"pick", R"(pick ctl "text" or pick ctl #n)", &pick},
        {"tab", R"(tab ctl "Caption")", &turnTo},
        {"key", "key Name", &pressKey},
        {"close", "close", &closeForm},
    };
    return table;
}

} // namespace merchantry::ui::play
