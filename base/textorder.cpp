#include "base/textorder.h"

#include "base/characters.h"
#include "base/lettercase.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <utility>

// The order of texts, by one rule: signs come before digits and digits before letters; letters with accents stand beside their base letter
// and come behind it only where all else is the same; letters of other alphabets follow, by their numbers. Case and trailing blanks mean
// nothing.

namespace merchantry {
namespace {

using Weight = char32_t;

constexpr Weight kDigits = 0x200000;
constexpr Weight kLetters = 0x210000;
constexpr Weight kOthers = 0x400000;
constexpr Weight kEnd = 0;

constexpr bool isDigit(char32_t c) {
    return c >= U'0' && c <= U'9';
}

constexpr bool isSmallLetter(char32_t c) {
    return c >= U'a' && c <= U'z';
}

// The ranks of the plain characters. Weights of two of them are ordered like their ranks.
constexpr std::array<unsigned char, 128> ranks() {
    std::array<unsigned char, 128> result{};
    unsigned char rank = 1;
    const auto isLetter = [](char32_t c) { return isSmallLetter(c) || (c >= U'A' && c <= U'Z'); };
    for (char32_t c = 0; c < result.size(); ++c)
        if (!isDigit(c) && !isLetter(c))
            result[c] = rank++;
    for (char32_t c = U'0'; c <= U'9'; ++c)
        result[c] = rank++;
    for (char32_t c = U'a'; c <= U'z'; ++c)
        result[c] = result[c - 32] = rank++;
    return result;
}

constexpr std::array<unsigned char, 128> kRanks = ranks();

// The base letters of U+00C0 to U+017F; a capital stands for two letters, * for a sign.
constexpr std::string_view kBases = "aaaaaaAceeeeiiiidnooooo*ouuuuyTSaaaaaaAceeeeiiiidnooooo*ouuuuyTy"
                                    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiiiJJjjkkkllllllllllnnnnnnnnn"
                                    "ooooooOOrrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";
constexpr char32_t kFirstBase = 0xC0;
static_assert(kBases.size() == 0x180 - kFirstBase);

constexpr std::string_view pairOf(char base) {
    switch (base) {
    case 'A':
        return "ae";
    case 'J':
        return "ij";
    case 'O':
        return "oe";
    case 'S':
        return "ss";
    default:
        return "th";
    }
}

constexpr bool isSign(char32_t c) {
    return c < kFirstBase || (c >= 0x2B0 && c < 0x370) || (c >= 0x2000 && c < 0x2C00) || (c >= 0x3000 && c < 0x3040);
}

// The weights of a text's characters, one by one.
class Weights {
public:
    explicit Weights(std::string_view text) : text_(text) {}

    // kEnd behind the last one.
    Weight next() {
        if (second_ != '\0')
            return letter(std::exchange(second_, '\0'));
        if (at_ >= text_.size())
            return kEnd;
        const char32_t c = foldedCase(nextCodePoint(text_, at_));
        if (isSmallLetter(c))
            return letter(static_cast<char>(c));
        if (isDigit(c))
            return kDigits + c;
        if (c >= kFirstBase && c < kFirstBase + kBases.size())
            return accented(c);
        return (isSign(c) ? 1 : kOthers) + c;
    }

private:
    static Weight letter(char c) { return kLetters + static_cast<unsigned char>(c); }

    Weight accented(char32_t c) {
        const char base = kBases[c - kFirstBase];
        if (base == '*')
            return 1 + c;
        if (base >= 'a')
            return letter(base);
        second_ = pairOf(base)[1];
        return letter(pairOf(base)[0]);
    }

    std::string_view text_;
    std::size_t at_ = 0;
    char second_ = '\0'; // of a pair
};

int compareFolded(std::string_view left, std::string_view right) {
    std::size_t l = 0;
    std::size_t r = 0;
    while (l < left.size() && r < right.size()) {
        const char32_t a = foldedCase(nextCodePoint(left, l));
        const char32_t b = foldedCase(nextCodePoint(right, r));
        if (a != b)
            return a < b ? -1 : 1;
    }
    return l < left.size() ? 1 : r < right.size() ? -1 : 0;
}

int compareWide(std::string_view left, std::string_view right) {
    Weights l(left);
    Weights r(right);
    while (true) {
        const Weight a = l.next();
        const Weight b = r.next();
        if (a != b)
            return a < b ? -1 : 1;
        if (a == kEnd)
            return compareFolded(left, right);
    }
}

} // namespace

int compareText(std::string_view left, std::string_view right) {
    left = trimmedRight(left);
    right = trimmedRight(right);
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto a = static_cast<unsigned char>(left[i]);
        const auto b = static_cast<unsigned char>(right[i]);
        if (a == b)
            continue;
        if (((a | b) & 0x80U) != 0)
            return compareWide(left, right);
        if (kRanks[a] != kRanks[b])
            return kRanks[a] < kRanks[b] ? -1 : 1;
    }
    return left.size() < right.size() ? -1 : left.size() > right.size() ? 1 : 0;
}

} // namespace merchantry
