#include "app/db/tsql/functions.h"
#include "app/db/tsql/token.h"

#include <array>

namespace merchantry::db::tsql {

int datePartOf(std::string_view word) {
    struct Word {
        std::string_view word;
        DatePart part;
    };
    static constexpr std::array kWords = std::to_array<Word>({
        {"year", DatePart::Year},       {"yyyy", DatePart::Year},
        {"yy", DatePart::Year},         {"quarter", DatePart::Quarter},
        {"qq", DatePart::Quarter},      {"q", DatePart::Quarter},
        {"month", DatePart::Month},     {"mm", DatePart::Month},
        {"m", DatePart::Month},         {"dayofyear", DatePart::DayOfYear},
        {"dy", DatePart::DayOfYear},    {"y", DatePart::DayOfYear},
        {"day", DatePart::Day},         {"dd", DatePart::Day},
        {"d", DatePart::Day},           {"week", DatePart::Week},
        {"wk", DatePart::Week},         {"ww", DatePart::Week},
        {"weekday", DatePart::Weekday}, {"dw", DatePart::Weekday},
        {"w", DatePart::Weekday},       {"hour", DatePart::Hour},
        {"hh", DatePart::Hour},         {"minute", DatePart::Minute},
        {"mi", DatePart::Minute},       {"n", DatePart::Minute},
        {"second", DatePart::Second},   {"ss", DatePart::Second},
        {"s", DatePart::Second},        {"millisecond", DatePart::Millisecond},
        {"ms", DatePart::Millisecond},
    });
    for (const Word& entry : kWords) {
        if (sameName(entry.word, word))
            return static_cast<int>(entry.part);
    }
    return -1;
}

} // namespace merchantry::db::tsql
