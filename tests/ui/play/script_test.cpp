#include "ui/play/script.h"

#include <gtest/gtest.h>

using namespace merchantry::ui::play;

namespace {

std::string shape(const Script& script) {
    std::string result;
    for (const Line& line : script.lines) {
        result += std::to_string(line.number) + ":";
        for (const Word& word : line.words)
            result += " " + (word.kind == Word::Kind::Bare   ? word.text
                             : word.kind == Word::Kind::Text ? inQuotes(word.text)
                                                             : word.name + "=" + inQuotes(word.text));
        result += "\n";
    }
    return result;
}

TEST(PlayScript, ReadsWordsTextsSettingsAndComments) {
    const struct {
        const char* source;
        const char* shape;
    } cases[] = {
        {"", ""},
        {"# only a comment\n\n   \t\r\nclick cmdExit(1) # why\n", "4: click cmdExit(1)\n"},
        {R"(type txtName "a \"b\" \\ \n\r\t#c")", "1: type txtName \"a \\\"b\\\" \\\\ \\n\\r\\t#c\"\n"},
        {"config name=\"a b\" server=\"@store\"", "1: config name=\"a b\" server=\"@store\"\n"},
        {"pick lst #2 # the second\npick lst \"x\" #2nd", "1: pick lst #2\n2: pick lst \"x\"\n"},
        {"expect color grd 1 0 #FFff00\nclick cmd #FFff00", "1: expect color grd 1 0 #FFff00\n2: click cmd\n"},
        {"\xEF\xBB\xBF"
         "close\r\n",
         "1: close\n"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(shape(parseScript("s", one.source)), one.shape) << one.source;
}

TEST(PlayScript, TellsWhereAndWhatCannotBeRead) {
    const struct {
        const char* source;
        const char* message;
    } cases[] = {
        {"close\ntype txt \"open", "s:2: expected a closing \" at the text's end, the line ends before it"},
        {"type txt \"C:\\dir\"", "s:1: expected one of \\\" \\\\ \\n \\r \\t, there was \\d"},
        {"type txt \"end\\", "s:1: expected one of \\\" \\\\ \\n \\r \\t, there was \\ "},
        {"type txt\"x\"", "s:1: expected a blank before the text, \"txt\" stands right before it"},
    };
    for (const auto& one : cases) {
        try {
            parseScript("s", one.source);
            ADD_FAILURE() << "read: " << one.source;
        } catch (const ScriptError& error) {
            EXPECT_STREQ(error.what(), one.message);
        }
    }
}

} // namespace
