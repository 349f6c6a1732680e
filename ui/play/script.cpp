#include "ui/play/script.h"

#include "base/text.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>

namespace merchantry::ui::play {
namespace {

constexpr std::string_view kEscapes = "\"\\nrt";
constexpr std::string_view kEscaped = "\"\\\n\r\t";

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

// Cuts one line into words.
class Lexer {
public:
    Lexer(std::string_view line, std::string place) : line_(line), place_(std::move(place)) {}

    std::vector<Word> words() {
        while (skipBlanks(), at_ < line_.size() && !atComment())
            words_.push_back(next());
        return std::move(words_);
    }

private:
    void skipBlanks() {
        while (at_ < line_.size() && isBlank(line_[at_]))
            ++at_;
    }

    // "#" starts a comment, but for the position in "pick lst #2" and the colour in "expect color grd 1 0 #FFFF00".
    bool atComment() const {
        if (line_[at_] != '#')
            return false;
        std::size_t end = at_ + 1;
        while (end < line_.size() && !isBlank(line_[end]))
            ++end;
        const std::string_view sign = line_.substr(at_ + 1, end - at_ - 1);
        const auto all = [&](int (*kind)(int)) {
            return !sign.empty() && std::all_of(sign.begin(), sign.end(), [&](unsigned char c) { return kind(c) != 0; });
        };
        return !(has("pick") && all(std::isdigit)) && !(has("color") && sign.size() == 6 && all(std::isxdigit));
    }

    bool has(std::string_view bare) const {
        return std::any_of(words_.begin(), words_.end(),
                           [&](const Word& word) { return word.kind == Word::Kind::Bare && word.text == bare; });
    }

    Word next() {
        if (line_[at_] == '"')
            return {Word::Kind::Text, text(), ""};
        const std::size_t start = at_;
        while (at_ < line_.size() && !isBlank(line_[at_]) && line_[at_] != '"')
            ++at_;
        const std::string word(line_.substr(start, at_ - start));
        if (at_ == line_.size() || line_[at_] != '"')
            return {Word::Kind::Bare, word, ""};
        if (word.size() < 2 || word.back() != '=')
            fail("a blank before the text", "\"" + word + "\" stands right before it");
        return {Word::Kind::Setting, text(), word.substr(0, word.size() - 1)};
    }

    std::string text() {
        std::string result;
        for (++at_; at_ < line_.size(); ++at_) {
            if (line_[at_] == '"') {
                ++at_;
                return result;
            }
            result += line_[at_] == '\\' ? escape() : line_[at_];
        }
        fail("a closing \" at the text's end", "the line ends before it");
    }

    char escape() {
        const char sign = ++at_ < line_.size() ? line_[at_] : ' ';
        const std::size_t known = kEscapes.find(sign);
        if (known == std::string_view::npos)
            fail(R"(one of \" \\ \n \r \t)", std::string("there was \\") + sign);
        return kEscaped[known];
    }

    [[noreturn]] void fail(const std::string& expected, const std::string& found) const {
        throw ScriptError(place_ + ": expected " + expected + ", " + found);
    }

    std::string_view line_;
    std::string place_;
    std::size_t at_ = 0;
    std::vector<Word> words_;
};

} // namespace

Script parseScript(std::string name, std::string_view source) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (source.starts_with(kByteOrderMark))
        source.remove_prefix(kByteOrderMark.size());
    Script script{std::move(name), {}};
    int number = 0;
    for (const std::string& line : split(source, "\n")) {
        ++number;
        std::vector<Word> words = Lexer(line, script.name + ":" + std::to_string(number)).words();
        if (!words.empty())
            script.lines.push_back({number, std::move(words)});
    }
    return script;
}

Script readScript(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in || std::filesystem::is_directory(file))
        throw ScriptError(file.string() + ": expected a script, the file cannot be read");
    const std::string source{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    return parseScript(file.string(), source);
}

std::string inQuotes(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        const std::size_t special = kEscaped.find(c);
        if (special == std::string_view::npos)
            result += c;
        else
            result += std::string("\\") + kEscapes[special];
    }
    return result + "\"";
}

} // namespace merchantry::ui::play
