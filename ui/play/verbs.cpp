#include "ui/play/verbs.h"

#include "ui/play/step.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace merchantry::ui::play {
namespace {

using Tables = std::vector<const std::vector<Entry>*>;

const Entry* find(const Tables& tables, std::string_view word) {
    for (const auto* table : tables)
        for (const Entry& entry : *table)
            if (entry.word == word)
                return &entry;
    return nullptr;
}

const Tables& verbs() {
    static const std::vector<Entry> expect{{"expect", "expect what ...", &expectLine}};
    static const Tables tables{&fieldVerbs(), &gridVerbs(), &worldVerbs(), &expect};
    return tables;
}

const Tables& expectations() {
    static const Tables tables{&fieldExpectations(), &gridExpectations(), &worldExpectations()};
    return tables;
}

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// The position of a line's verb: behind "on frmX" when the line begins so.
std::size_t verbAt(const Line& line) {
    return line.words.front().text == "on" && line.words.size() > 2 ? 2 : 0;
}

} // namespace

void checkVerbs(const Script& script) {
    for (const Line& line : script.lines) {
        const Word& verb = line.words[verbAt(line)];
        if (verb.kind != Word::Kind::Bare || find(verbs(), verb.text) == nullptr)
            throw ScriptError(script.name + ":" + std::to_string(line.number) + ": expected a verb, there was " +
                              (verb.kind == Word::Kind::Text ? inQuotes(verb.text) : verb.text));
    }
}

bool startsUp(const Line& line) {
    return !isOneOf(line.words.front().text, {"config", "answer", "input", "file", "printers", "clock"});
}

void doLine(Player& player, const Line& line) {
    Step step(player, line);
    doVerb(step);
}

void doVerb(Step& step) {
    if (step.accept("on")) {
        const std::string name = step.bare("a form's name");
        Form* const form = step.openForm(name);
        lineNeeds(form != nullptr, name + " to be open", "it is not");
        step.lookOn(*form);
    }
    const std::string word = step.bare("a verb");
    const Entry* const verb = find(verbs(), word);
    lineNeeds(verb != nullptr, "a verb", "there was " + word);
    // These prepare or look; what the last verb brought about stays for them.
    if (!isOneOf(word, {"expect", "answer", "input", "file", "printers", "clock", "config", "sql", "let", "print"}))
        step.desk().doings = {};
    step.isWritten(verb->form);
    verb->run(step);
}

void expectLine(Step& step) {
    const std::string word = step.any("what to expect");
    if (const Entry* known = find(expectations(), word)) {
        step.isWritten(known->form);
        known->run(step);
    } else {
        step.isWritten(R"(expect ctl "text", expect ctl like "...%" or expect ctl on|off)");
        expectControl(step, word);
    }
}

} // namespace merchantry::ui::play
