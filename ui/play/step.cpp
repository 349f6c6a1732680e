#include "ui/play/step.h"

#include "base/text.h"
#include "base/textorder.h"
#include "ui/menu.h"

#include <charconv>

namespace merchantry::ui::play {
namespace {

std::optional<int> numberFrom(const Word& word) {
    if (word.kind != Word::Kind::Bare)
        return {};
    int number = 0;
    const char* const last = word.text.data() + word.text.size();
    const auto [end, error] = std::from_chars(word.text.data(), last, number);
    return error == std::errc{} && end == last ? std::optional(number) : std::nullopt;
}

std::string told(const Word& word) {
    if (word.kind == Word::Kind::Text)
        return inQuotes(word.text);
    return word.kind == Word::Kind::Setting ? word.name + "=" + inQuotes(word.text) : word.text;
}

Target findOn(const Form& form, const std::string& name) {
    if (Control* control = form.find(name))
        return {control, nullptr};
    for (Control* control : form.controls())
        if (auto* bar = dynamic_cast<Toolbar*>(control))
            for (const ToolButton& button : bar->buttons())
                if (sameText(button.key, name))
                    return {bar, &button};
    return {};
}

} // namespace

bool matchesPattern(std::string_view text, std::string_view pattern) {
    const std::vector<std::string> pieces = split(pattern, "%");
    if (pieces.size() == 1)
        return text == pattern;
    if (!text.starts_with(pieces.front()))
        return false;
    text.remove_prefix(pieces.front().size());
    for (std::size_t i = 1; i + 1 < pieces.size(); ++i) {
        const std::size_t found = text.find(pieces[i]);
        if (found == std::string_view::npos)
            return false;
        text.remove_prefix(found + pieces[i].size());
    }
    return text.ends_with(pieces.back());
}

bool Wanted::holds(std::string_view seen) const {
    return like ? matchesPattern(seen, text) : seen == text;
}

std::string Wanted::told() const {
    return (like ? "like " : "") + inQuotes(text);
}

Step::Step(Player& player, const Line& line) : player_(player), words_(line.words) {
    for (Word& word : words_)
        word.text = resolved(word.text);
}

std::string Step::resolved(const std::string& text) const {
    std::string result = text;
    for (std::size_t at = result.find("${"); at != std::string::npos; at = result.find("${", at)) {
        const std::size_t end = result.find('}', at);
        const std::string name = end == std::string::npos ? "" : result.substr(at + 2, end - at - 2);
        const auto known = player_.variables().find(name);
        lineNeeds(known != player_.variables().end(), "a value for ${" + name + "}", "no line \"let " + name + " = ...\" came before");
        result.replace(at, end - at + 1, known->second);
        at += known->second.size();
    }
    return result;
}

void Step::misread(const std::string& expected, const std::string& found) const {
    throw LineFailure{expected + " (" + written_ + ")", found};
}

const Word& Step::take(const std::string& what) {
    if (!more())
        misread(what, "the line ends before it");
    return words_[at_++];
}

std::string Step::bare(const std::string& what) {
    const Word& word = take(what);
    if (!(word.kind == Word::Kind::Bare))
        misread(what, "there was " + told(word));
    return word.text;
}

std::string Step::text(const std::string& what) {
    const Word& word = take(what);
    if (!(word.kind == Word::Kind::Text))
        misread(what + " in quotes", "there was " + told(word));
    return word.text;
}

std::string Step::any(const std::string& what) {
    const Word& word = take(what);
    if (!(word.kind != Word::Kind::Setting))
        misread(what, "there was " + told(word));
    return word.text;
}

int Step::number(const std::string& what) {
    const Word& word = take(what);
    const auto number = numberFrom(word);
    if (!(number.has_value()))
        misread(what, "there was " + told(word));
    return *number;
}

bool Step::nextIsText() const {
    return more() && words_[at_].kind == Word::Kind::Text;
}

bool Step::accept(std::string_view word) {
    const bool next = more() && words_[at_].kind == Word::Kind::Bare && words_[at_].text == word;
    at_ += next ? 1 : 0;
    return next;
}

bool Step::flag() {
    const std::string word = bare("on or off");
    if (!(word == "on" || word == "off"))
        misread("on or off", "there was " + word);
    return word == "on";
}

Wanted Step::wanted(const std::string& what) {
    const bool like = accept("like");
    return {text(what), like};
}

std::vector<std::string> Step::texts() {
    std::vector<std::string> rest;
    while (more())
        rest.push_back(text("a text"));
    return rest;
}

const Word& Step::setting(const std::string& what) {
    const Word& word = take(what);
    if (!(word.kind == Word::Kind::Setting))
        misread(what, "there was " + told(word));
    return word;
}

void Step::end() {
    if (more())
        misread("the end of the line", "there was " + told(words_[at_]));
}

Form* Step::openForm(const std::string& name) const {
    const auto& forms = player_.desk().openForms();
    for (auto form = forms.rbegin(); form != forms.rend(); ++form)
        if (!(*form)->hidden() && sameText((*form)->name(), name))
            return *form;
    return nullptr;
}

Form& Step::form() {
    Form* const form = named_ != nullptr ? named_ : player_.desk().top();
    if (form == nullptr) {
        const auto& ending = player_.ending();
        const std::string how = !ending           ? "none is"
                                : ending->message ? "the process ended with " + inQuotes(*ending->message)
                                                  : "the process has ended";
        throw LineFailure{"a form to be open", how};
    }
    return *form;
}

Target Step::target(const std::string& name) {
    Form& first = form();
    Target found = findOn(first, name);
    const auto& forms = player_.desk().openForms();
    for (auto next = forms.rbegin(); named_ == nullptr && found.control == nullptr && next != forms.rend(); ++next)
        if (!(*next)->hidden())
            found = findOn(**next, name);
    lineNeeds(found.control != nullptr, "a control " + name,
              "neither " + first.name() + (named_ == nullptr ? " nor another open form has it" : " nor its toolbar has it"));
    return found;
}

Control& Step::control() {
    return *target(any("a control's name")).control;
}

void Step::demand(const std::string& obstacle, const std::string& done) {
    // The screen's own procedure kept the user where he was: that is what the screen does, not a line that cannot be done.
    constexpr std::string_view kKept = "the focus stays where it is";
    if (obstacle.empty() || (obstacle == kKept && !refusalExpected_))
        return;
    throw LineFailure{"to " + done, "the way is barred: " + obstacle, !obstacle.starts_with("no such")};
}

void Step::refusedIf(bool refused, const std::string& done) {
    if (refused && refusalExpected_)
        throw LineFailure{"to " + done, "the screen refused it", true};
}

} // namespace merchantry::ui::play
