#include "base/text.h"
#include "ui/grid.h"
#include "ui/play/colors.h"
#include "ui/play/looks.h"
#include "ui/play/verbs.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include "base/textorder.h"

#include <algorithm>

namespace merchantry::ui::play {
namespace {

std::string listed(const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "" : " ") + inQuotes(text);
    return list.empty() ? "none" : list;
}

void expectForm(Step& step) {
    const std::string name = step.any("a form's name");
    step.end();
    const Form* const top = step.desk().top();
    expectThat(top != nullptr && sameText(top->name(), name), name + " on top",
               top == nullptr ? "no form is open" : top->name() + " is on top");
}

std::string openNames(Step& step) {
    std::vector<std::string> names;
    for (const Form* form : step.desk().openForms())
        if (!form->hidden())
            names.push_back(form->name());
    return names.empty() ? "no form is open" : "open are " + joined(names, ", ");
}

void expectOpen(Step& step) {
    const std::string name = step.any("a form's name");
    step.end();
    expectThat(step.openForm(name) != nullptr, name + " to be open", openNames(step));
}

void expectClosed(Step& step) {
    const std::string name = step.any("a form's name");
    step.end();
    expectThat(step.openForm(name) == nullptr, name + " to be closed", "it is open");
}

void expectCaption(Step& step) {
    const Wanted wanted = step.wanted("a caption");
    step.end();
    const std::string& caption = step.form().caption();
    expectThat(wanted.holds(caption), "caption " + wanted.told(), "there was " + inQuotes(caption));
}

void expectText(Step& step) {
    const Wanted wanted = step.wanted("a text");
    step.end();
    const std::vector<std::string> texts = visibleTexts(step.form());
    expectThat(std::any_of(texts.begin(), texts.end(), [&](const std::string& text) { return wanted.holds(text); }),
               "a label " + wanted.told(), "there were " + listed(texts));
}

void expectPage(Step& step) {
    const auto& tabs = step.as<TabSet>("a tab set");
    const std::string caption = step.text("a page's caption");
    step.end();
    const std::string& turned = tabs.captions().at(static_cast<std::size_t>(tabs.current()));
    expectThat(turned == caption || replaced(turned, "&", "") == caption, "page " + inQuotes(caption), "there was " + inQuotes(turned));
}

// A state that holds, or not, of the control named next.
void expectState(Step& step, bool (*state)(const Control&), bool wanted, const char* word) {
    const Control& control = step.control();
    step.end();
    expectThat(state(control) == wanted, control.name() + " to be " + word, "it is not");
}

void expectEnabled(Step& step) {
    expectState(step, &isEnabled, true, "enabled");
}
void expectDisabled(Step& step) {
    expectState(step, &isEnabled, false, "disabled");
}
void expectVisible(Step& step) {
    expectState(step, &isVisible, true, "visible");
}
void expectHidden(Step& step) {
    expectState(step, &isVisible, false, "hidden");
}

void expectFocus(Step& step) {
    const Control& control = step.control();
    step.end();
    const Form* const keyboard = step.desk().keyboard();
    const Control* const focused = keyboard == nullptr ? nullptr : keyboard->focused();
    expectThat(focused == &control, "the focus on " + control.name(),
               focused == nullptr ? "nothing has it" : "it is on " + focused->name() + " of " + keyboard->name());
}

std::vector<std::string> entriesOf(Step& step) {
    const Control& list = step.control();
    const auto entries = shownEntries(list);
    expectThat(entries.has_value(), list.name() + " to be a list", "it is a " + kindOf(list));
    return *entries;
}

void expectCount(Step& step) {
    const std::vector<std::string> entries = entriesOf(step);
    const int count = step.number("a number of entries");
    step.end();
    expectThat(static_cast<int>(entries.size()) == count, std::to_string(count) + " entries",
               "there were " + std::to_string(entries.size()));
}

void expectEntries(Step& step) {
    const std::vector<std::string> entries = entriesOf(step);
    const std::vector<std::string> wanted = step.texts();
    expectThat(entries == wanted, "entries " + listed(wanted), "there were " + listed(entries));
}

void expectSelection(Step& step) {
    const auto& box = step.as<TextBox>("a text box");
    const Wanted wanted = step.wanted("the selected text");
    step.end();
    expectThat(wanted.holds(box.selectedText()), "selection " + wanted.told(),
               "there was " + (box.password ? "another" : inQuotes(box.selectedText())));
}

// Dots, as a window shows them, or the password itself while a button is held.
void expectDots(Step& step) {
    const auto& box = step.as<TextBox>("a text box");
    step.end();
    expectThat(box.password && !box.revealed(), box.name() + " to show dots", "it shows its text");
}

void expectTip(Step& step) {
    const Target target = step.target(step.any("a control's name"));
    const Wanted wanted = step.wanted("a tool tip");
    step.end();
    const std::string& tip = target.tool != nullptr ? target.tool->toolTip : target.control->toolTip();
    expectThat(wanted.holds(tip), "tool tip " + wanted.told(), "there was " + inQuotes(tip));
}

void expectColor(Step& step) {
    const Control& control = step.control();
    const auto* grid = dynamic_cast<const Grid*>(&control);
    Color given = control.foreColor();
    if (grid != nullptr) {
        const int row = step.number("a row");
        given = grid->cellColor(row, step.number("a column"));
    }
    const std::string wanted = step.bare("a colour");
    step.end();
    expectThat(isColorWord(wanted), "yellow, green, red, blue, none or #RRGGBB", "there was " + wanted);
    expectThat(isColor(given, wanted), "colour " + wanted, "there was " + wordFor(given));
}

} // namespace

void expectControl(Step& step, const std::string& name) {
    const Target target = step.target(name);
    const bool on = step.accept("on");
    if (on || step.accept("off")) {
        step.end();
        const auto flag = shownFlag(*target.control);
        expectThat(flag.has_value(), name + " to be a check box or an option", "it is a " + kindOf(*target.control));
        expectThat(*flag == on, name + (on ? " on" : " off"), *flag ? "it is on" : "it is off");
        return;
    }
    const Wanted wanted = step.wanted("a text, on or off");
    step.end();
    const auto text = shownText(target);
    expectThat(text.has_value(), name + " to show a text", "it is a " + kindOf(*target.control));
    expectThat(wanted.holds(*text), name + " " + wanted.told(), "there was " + inQuotes(*tellableText(target)));
}

const std::vector<Entry>& fieldExpectations() {
    static const std::vector<Entry> table{
        {"form", "expect form frmX", &expectForm},
        {"open", "expect open frmX", &expectOpen},
        {"closed", "expect closed frmX", &expectClosed},
        {"caption", R"(expect caption "text")", &expectCaption},
        {"text", R"(expect text "...")", &expectText},
        {"page", R"(expect page ctl "Caption")", &expectPage},
        {"enabled", "expect enabled ctl", &expectEnabled},
        {"disabled", "expect disabled ctl", &expectDisabled},
        {"visible", "expect visible ctl", &expectVisible},
        {"hidden", "expect hidden ctl", &expectHidden},
        {"focus", "expect focus ctl", &expectFocus},
        {"count", "expect count ctl n", &expectCount},
        {"entries", R"(expect entries ctl "a" "b" ...)", &expectEntries},
        {"selection", R"(expect selection ctl "text")", &expectSelection},
        {"dots", "expect dots ctl", &expectDots},
        {"tip", R"(expect tip ctl "text")", &expectTip},
        {"color", "expect color grd n col yellow or expect color ctl red", &expectColor},
    };
    return table;
}

} // namespace merchantry::ui::play
