#include "app/db/embedded/functions.h"

#include "app/db/tsql/errors.h"
#include "base/characters.h"
#include "base/lettercase.h"
#include "base/textorder.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace merchantry::db::embedded {
namespace {

// A LIKE pattern taken apart: % any run, _ one character, [set], [^set], an escape that makes the next character plain.
class Pattern {
public:
    Pattern(std::string_view text, char32_t escape, bool caseCounts) : caseCounts_(caseCounts) {
        for (std::size_t at = 0; at < text.size();) {
            const char32_t c = nextCodePoint(text, at);
            if (escape != 0 && c == escape && at < text.size())
                add({Kind::One, folded(nextCodePoint(text, at)), {}, false});
            else if (c == U'%')
                add({Kind::Run, 0, {}, false});
            else if (c == U'_')
                add({Kind::Any, 0, {}, false});
            else if (c == U'[' && text.find(']', at) != std::string_view::npos)
                set(text, at, escape);
            else
                add({Kind::One, folded(c), {}, false});
        }
    }

    // Blanks at the end of the text do not count.
    bool matches(std::string_view text) const { return matchesFrom(text, 0, 0); }

    // Where the pattern first fits, in characters from 1; 0 when nowhere.
    std::int64_t find(std::string_view text) const {
        if (elements_.empty() || elements_[0].kind != Kind::Run)
            return matches(text) ? 1 : 0;
        std::size_t first = 0;
        while (first < elements_.size() && elements_[first].kind == Kind::Run)
            ++first;
        std::int64_t number = 1;
        for (std::size_t at = 0; at <= text.size(); ++number) {
            if (matchesFrom(text, at, first))
                return number;
            if (at == text.size())
                break;
            nextCodePoint(text, at);
        }
        return 0;
    }

private:
    enum class Kind { One, Any, Run, Set };
    struct Element {
        Kind kind;
        char32_t c;
        std::vector<std::pair<char32_t, char32_t>> ranges;
        bool negated;
    };

    char32_t folded(char32_t c) const { return caseCounts_ ? c : foldedCase(c); }

    void add(Element element) {
        if (element.kind == Kind::Run && !elements_.empty() && elements_.back().kind == Kind::Run)
            return;
        elements_.push_back(std::move(element));
    }

    void set(std::string_view text, std::size_t& at, char32_t escape) {
        Element element{Kind::Set, 0, {}, false};
        std::size_t next = at;
        if (nextCodePoint(text, next) == U'^') {
            element.negated = true;
            at = next;
        }
        while (at < text.size()) {
            char32_t low = nextCodePoint(text, at);
            if (low == U']')
                break;
            if (escape != 0 && low == escape && at < text.size())
                low = nextCodePoint(text, at);
            char32_t high = low;
            std::size_t behind = at;
            if (at < text.size() && nextCodePoint(text, behind) == U'-' && behind < text.size() && text[behind] != ']') {
                at = behind;
                high = nextCodePoint(text, at);
            }
            element.ranges.emplace_back(folded(low), folded(high));
        }
        add(std::move(element));
    }

    // A range goes by the order of texts, in which letters with accents stand beside their base letter. Letters without stand as their
    // codes.
    static bool within(const std::pair<char32_t, char32_t>& range, char32_t c) {
        constexpr char32_t kPlain = 0x80;
        if (range.first == range.second || (c < kPlain && range.first < kPlain && range.second < kPlain))
            return c >= range.first && c <= range.second;
        const auto text = [](char32_t one) {
            std::string result;
            appendCodePoint(result, one);
            return result;
        };
        return compareText(text(c), text(range.first)) >= 0 && compareText(text(c), text(range.second)) <= 0;
    }

    bool fits(const Element& element, char32_t c) const {
        switch (element.kind) {
        case Kind::Any:
            return true;
        case Kind::One:
            return folded(c) == element.c;
        case Kind::Set: {
            const char32_t wanted = folded(c);
            const bool inside =
                std::any_of(element.ranges.begin(), element.ranges.end(), [&](const auto& range) { return within(range, wanted); });
            return inside != element.negated;
        }
        default:
            return false;
        }
    }

    static bool onlyBlanks(std::string_view text, std::size_t from) { return text.find_first_not_of(' ', from) == std::string_view::npos; }

    bool matchesFrom(std::string_view text, std::size_t t, std::size_t e) const {
        std::size_t runElement = std::string_view::npos;
        std::size_t runText = 0;
        while (true) {
            if (e == elements_.size()) {
                if (onlyBlanks(text, t))
                    return true;
            } else if (elements_[e].kind == Kind::Run) {
                runElement = ++e;
                runText = t;
                if (e == elements_.size())
                    return true;
                continue;
            } else if (t < text.size()) {
                std::size_t next = t;
                if (fits(elements_[e], nextCodePoint(text, next))) {
                    t = next;
                    ++e;
                    continue;
                }
            }
            if (runElement == std::string_view::npos || runText >= text.size())
                return false;
            nextCodePoint(text, runText);
            t = runText;
            e = runElement;
        }
    }

    bool caseCounts_;
    std::vector<Element> elements_;
};

void destroyPattern(void* pattern) {
    delete static_cast<Pattern*>(pattern);
}

// The pattern of an argument; made once as long as it stays the same through a statement.
const Pattern& patternOf(const Call& call, int index, char32_t escape, bool caseCounts, std::unique_ptr<Pattern>& own) {
    if (auto* kept = static_cast<Pattern*>(sqlite3_get_auxdata(call.context, index)))
        return *kept;
    own = std::make_unique<Pattern>(call.text(index), escape, caseCounts);
    auto* made = new Pattern(*own);
    sqlite3_set_auxdata(call.context, index, made, destroyPattern);
    return *own;
}

void likeWith(const Call& call, bool caseCounts) {
    char32_t escape = 0;
    if (call.count > 2) {
        const std::string_view text = call.text(2);
        std::size_t at = 0;
        escape = text.empty() ? 0 : nextCodePoint(text, at);
        if (text.empty() || at != text.size())
            throw serverMessage(Message::InvalidEscape, {std::string(text)});
    }
    std::unique_ptr<Pattern> own;
    call.give(std::int64_t{patternOf(call, 1, escape, caseCounts, own).matches(call.text(0)) ? 1 : 0});
}

void like(const Call& call) {
    likeWith(call, false);
}

void likeCased(const Call& call) {
    likeWith(call, true);
}

void patternIndex(const Call& call) {
    std::unique_ptr<Pattern> own;
    call.give(patternOf(call, 0, 0, false, own).find(call.text(1)));
}

} // namespace

void registerLikeFunctions(sqlite3* db, FunctionHost& host) {
    static constexpr auto kEntries = std::to_array<FunctionEntry>({
        {"ts_like", -1, like},
        {"ts_like_cs", -1, likeCased},
        {"ts_patindex", 2, patternIndex},
    });
    registerEntries(db, host, kEntries.data(), kEntries.size());
}

} // namespace merchantry::db::embedded
