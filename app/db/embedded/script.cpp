#include "app/db/embedded/script.h"

#include "base/characters.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace merchantry::db::embedded {
namespace {

bool isUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        if (nextCodePoint(text, at) == 0xFFFD && text.substr(from, 3) != "\xEF\xBF\xBD")
            return false;
    }
    return true;
}

// The characters of Windows-1252 that differ from their numbers, 0x80 to 0x9F.
constexpr std::array<char32_t, 32> kWindows = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6,  0x2030, 0x160,
                                               0x2039, 0x152,  0x8D,   0x17D,  0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                                               0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

std::string fromWindows(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        appendCodePoint(result, byte >= 0x80 && byte < 0xA0 ? kWindows[byte - 0x80U] : byte);
    }
    return result;
}

// The 16-bit units behind the mark in front, joined to characters; a half of one alone is a character that cannot be shown.
std::string fromWide(std::string_view text, bool highFirst) {
    const auto unit = [&](std::size_t at) -> char32_t {
        const auto first = static_cast<unsigned char>(text[at]);
        const auto second = at + 1 < text.size() ? static_cast<unsigned char>(text[at + 1]) : 0U;
        return highFirst ? first * 256U + second : second * 256U + first;
    };
    std::string result;
    for (std::size_t at = 2; at < text.size(); at += 2) {
        const char32_t high = unit(at);
        const bool isHigh = high >= 0xD800 && high < 0xDC00;
        const char32_t low = isHigh && at + 2 < text.size() ? unit(at + 2) : 0;
        const bool isPair = low >= 0xDC00 && low < 0xE000;
        if (isPair)
            at += 2;
        const bool isHalf = high >= 0xD800 && high < 0xE000;
        appendCodePoint(result, isPair ? 0x10000 + (high - 0xD800) * 0x400 + (low - 0xDC00) : isHalf ? char32_t{0xFFFD} : high);
    }
    return result;
}

// A script as UTF-8, whatever it was saved in.
std::string utf8Of(std::string_view script) {
    const std::string_view mark = script.substr(0, 2);
    if (mark == "\xFF\xFE" || mark == "\xFE\xFF")
        return fromWide(script, mark == "\xFE\xFF");
    return isUtf8(script) ? std::string(script) : fromWindows(script);
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// How often GO runs the batch; 0 for a line that is no GO.
int goCount(std::string_view line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t' || line.back() == ';'))
        line.remove_suffix(1);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
        line.remove_prefix(1);
    if (line.size() < 2 || (line[0] != 'G' && line[0] != 'g') || (line[1] != 'O' && line[1] != 'o'))
        return 0;
    const std::string_view rest = trimmed(line.substr(2));
    if (rest.empty())
        return 1;
    const bool number = line[2] == ' ' && rest.find_first_not_of("0123456789") == std::string_view::npos && rest.size() < 6;
    return number ? std::atoi(std::string(rest).c_str()) : rest.substr(0, 2) == "--" ? 1 : 0;
}

// Follows texts and comments from line to line.
class Quoting {
public:
    bool isOpen() const { return quote_ != 0 || comments_ > 0; }

    void read(std::string_view line) {
        for (std::size_t at = 0; at < line.size(); ++at) {
            const char c = line[at];
            const char next = at + 1 < line.size() ? line[at + 1] : '\0';
            if (comments_ > 0) {
                if (c == '/' && next == '*') {
                    ++comments_;
                    ++at;
                } else if (c == '*' && next == '/') {
                    --comments_;
                    ++at;
                }
            } else if (quote_ != 0) {
                if (c == quote_)
                    quote_ = 0;
            } else if (c == '\'' || c == '"') {
                quote_ = c;
            } else if (c == '[') {
                quote_ = ']';
            } else if (c == '-' && next == '-') {
                return;
            } else if (c == '/' && next == '*') {
                comments_ = 1;
                ++at;
            }
        }
    }

private:
    char quote_ = 0;
    int comments_ = 0;
};

} // namespace

std::vector<ScriptBatch> batchesOf(std::string_view saved) {
    const std::string text = utf8Of(saved);
    std::string_view script = text;
    std::vector<ScriptBatch> batches;
    ScriptBatch batch;
    Quoting quoting;
    int number = 0;
    const auto finish = [&](int times) {
        batch.times = times;
        if (!isBlank(batch.text))
            batches.push_back(batch);
        batch = {};
        batch.line = number + 1;
        quoting = {};
    };
    while (!script.empty()) {
        const std::size_t end = script.find('\n');
        const std::string_view line = script.substr(0, end);
        script.remove_prefix(end == std::string_view::npos ? script.size() : end + 1);
        ++number;
        if (!quoting.isOpen() && goCount(line) > 0) {
            finish(goCount(line));
            continue;
        }
        quoting.read(line);
        batch.text += line;
        batch.text += '\n';
    }
    finish(1);
    return batches;
}

void runScript(Session& session, std::string_view script, ResultSink& sink) {
    for (const ScriptBatch& batch : batchesOf(script)) {
        for (int i = 0; i < batch.times; ++i) {
            try {
                session.execute(batch.text, sink);
            } catch (DbError& error) {
                if (error.line() > 0 && error.procedure().empty())
                    error.at(error.line() + batch.line - 1);
                throw;
            }
        }
    }
}

void runScript(Session& session, std::string_view script) {
    NoResult none;
    runScript(session, script, none);
}

} // namespace merchantry::db::embedded
