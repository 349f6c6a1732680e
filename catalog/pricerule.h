#pragma once

#include "base/currency.h"

#include <optional>
#include <span>
#include <string>

namespace merchantry::catalog {

// The prices that a new price may take: `end` above a whole multiple of `step`, so that a step of 1 and an end of .99 give 0.99, 1.99, 2.99
// ... A step of 0 takes every price as it comes. Ends and steps are never negative.
struct PriceRounding {
    const char* caption;
    Currency step;
    Currency end;
};

// The choices of the screen, the first of which rounds nothing.
std::span<const PriceRounding> priceRoundings();

// How prices are changed together.
struct PriceRule {
    bool percent = true;    // else by an amount
    Currency change;        // in percent (at most two decimals: 2.5 is 2.5 %) or in money; negative lowers
    PriceRounding rounding; // of the new price
};

// What becomes of one price.
struct NewPrice {
    enum class Remark {
        None,        // it changes
        Unchanged,   // the new price is the old one
        NoPrice,     // the old price is 0: there is none to change
        NotAboveZero // the new price would be 0 or less
    };
    Currency price; // the old one unless it changes
    Remark remark = Remark::None;
};

// The nearest price that the rounding allows, the higher of two that are equally near; never below the rounding's end. The change by
// percent is rounded once, to four decimals, halves to even. Throws OverflowError for a price that money cannot hold.
Currency roundedPrice(Currency price, const PriceRounding& rounding);
NewPrice changedPrice(Currency old, const PriceRule& rule);

// The user's number: nothing for a text that is none, has more than two decimals as a percentage or more than four as an amount.
std::optional<Currency> changeFromText(const std::string& text, bool percent);

// The rule in words, such as "+5 %, to end in .99" or "-$0.50".
std::string wordsFor(const PriceRule& rule);

} // namespace merchantry::catalog
