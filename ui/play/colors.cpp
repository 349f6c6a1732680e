#include "ui/play/colors.h"

#include "base/textorder.h"

namespace merchantry::ui::play {
namespace {

struct Named {
    Color color;
    const char* word;
    const char* code;
};
constexpr Named kNamed[] = {
    {Color::None, "none", ""},      {Color::Yellow, "yellow", "#FFFF00"}, {Color::Green, "green", "#00FF00"},
    {Color::Red, "red", "#FF0000"}, {Color::Blue, "blue", "#83B7F0"},
};

} // namespace

std::string wordFor(Color color) {
    for (const Named& one : kNamed)
        if (one.color == color)
            return one.word;
    return "another";
}

bool isColorWord(const std::string& word) {
    for (const Named& one : kNamed)
        if (word == one.word)
            return true;
    return word.size() == 7 && word.front() == '#';
}

bool isColor(Color color, const std::string& word) {
    for (const Named& one : kNamed)
        if (one.color == color)
            return word == one.word || sameText(word, one.code);
    return false;
}

} // namespace merchantry::ui::play
