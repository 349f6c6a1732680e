#include "base/decimal.h"

#include <algorithm>
#include <cmath>

namespace merchantry {
namespace {

using Wide = __int128;
constexpr int kMaxDigits = 38;

Wide powerOfTen(int exponent) {
    Wide power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

Wide limit() {
    return powerOfTen(kMaxDigits);
}

Wide magnitude(Wide number) {
    return number < 0 ? -number : number;
}

} // namespace

std::optional<Decimal> Decimal::fromText(std::string_view text) {
    Decimal result;
    std::size_t at = 0;
    bool negative = false;
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        negative = text[at++] == '-';
    bool point = false;
    int count = 0;
    bool any = false;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '.' && !point) {
            point = true;
        } else if (c >= '0' && c <= '9') {
            any = true;
            if (result.digits != 0 || c != '0')
                ++count;
            if (count > kMaxDigits)
                return std::nullopt;
            result.digits = result.digits * 10 + (c - '0');
            if (point)
                ++result.scale;
        } else {
            return std::nullopt;
        }
    }
    if (!any || result.scale > kMaxDigits)
        return std::nullopt;
    if (negative)
        result.digits = -result.digits;
    return result;
}

std::string Decimal::toText() const {
    std::string text;
    Wide rest = magnitude(digits);
    do {
        text.push_back(static_cast<char>('0' + static_cast<int>(rest % 10)));
        rest /= 10;
    } while (rest != 0);
    while (static_cast<int>(text.size()) <= scale)
        text.push_back('0');
    std::reverse(text.begin(), text.end());
    if (scale > 0)
        text.insert(text.size() - static_cast<std::size_t>(scale), ".");
    return digits < 0 ? "-" + text : text;
}

double Decimal::toDouble() const {
    return static_cast<double>(std::strtold(toText().c_str(), nullptr));
}

std::optional<Decimal> Decimal::rescaled(int newScale) const {
    Decimal result{digits, newScale};
    if (newScale >= scale) {
        for (int i = scale; i < newScale; ++i) {
            if (magnitude(result.digits) >= limit() / 10)
                return std::nullopt;
            result.digits *= 10;
        }
        return result;
    }
    const Wide divisor = powerOfTen(scale - newScale);
    const Wide rest = magnitude(digits % divisor);
    result.digits = digits / divisor;
    if (rest >= divisor - rest)
        result.digits += digits < 0 ? -1 : 1;
    return result;
}

int Decimal::precision() const {
    int count = 0;
    for (Wide rest = magnitude(digits); rest != 0; rest /= 10)
        ++count;
    return std::max({count, scale, 1});
}

std::strong_ordering Decimal::operator<=>(const Decimal& other) const {
    if ((digits < 0) != (other.digits < 0))
        return digits < 0 ? std::strong_ordering::less : std::strong_ordering::greater;
    // Compare whole parts first, so that bringing both to one scale cannot overflow.
    const Wide wholeLeft = digits / powerOfTen(scale);
    const Wide wholeRight = other.digits / powerOfTen(other.scale);
    if (wholeLeft != wholeRight)
        return wholeLeft < wholeRight ? std::strong_ordering::less : std::strong_ordering::greater;
    const int common = std::max(scale, other.scale);
    const Wide left = digits % powerOfTen(scale) * powerOfTen(common - scale);
    const Wide right = other.digits % powerOfTen(other.scale) * powerOfTen(common - other.scale);
    return left == right ? std::strong_ordering::equal : (left < right ? std::strong_ordering::less : std::strong_ordering::greater);
}

} // namespace merchantry
