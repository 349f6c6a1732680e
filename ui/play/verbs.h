#pragma once

#include "ui/play/script.h"

#include <string>
#include <vector>

namespace merchantry::ui::play {

class Player;
class Step;

// A word of the language and what carries it out: the rest of the line is read from the step first, then the act is done.
// A new one is a line in the table of its file.
struct Entry {
    const char* word;
    const char* form; // how it is written, for failures and for the page that teaches the language
    void (*run)(Step& step);
};

// Throws ScriptError at the first line that begins with no verb.
void checkVerbs(const Script& script);
// Whether the application must have started for this line.
bool startsUp(const Line& line);
// Does the line. Throws LineFailure, and what the screens' procedures throw.
void doLine(Player& player, const Line& line);
// Does what the rest of a step's words say, a verb first.
void doVerb(Step& step);

// The tables.
const std::vector<Entry>& fieldVerbs();
const std::vector<Entry>& gridVerbs();
const std::vector<Entry>& worldVerbs();
const std::vector<Entry>& fieldExpectations();
const std::vector<Entry>& gridExpectations();
const std::vector<Entry>& worldExpectations();

// The verb "expect".
void expectLine(Step& step);
// "expect ctl ...": the control's text or state.
void expectControl(Step& step, const std::string& name);

} // namespace merchantry::ui::play
