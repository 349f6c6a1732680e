#include "exchange/import/decimals.h"

#include <algorithm>

namespace merchantry::exchange {
namespace {

constexpr std::size_t kGroup = 3;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// From its first digit to its last: without signs of currencies around it.
std::string_view bareNumber(std::string_view text) {
    const auto first = std::find_if(text.begin(), text.end(), isDigit);
    const auto last = std::find_if(text.rbegin(), text.rend(), isDigit).base();
    return first >= last ? std::string_view() : std::string_view(&*first, static_cast<std::size_t>(last - first));
}

bool hasDecimalSign(std::string_view number) {
    return number.find_first_of(".,") != std::string_view::npos && number.find_first_not_of("0123456789.,") == std::string_view::npos;
}

} // namespace

bool readsEitherWay(std::string_view amount) {
    const std::string_view number = bareNumber(amount);
    const std::size_t sign = number.find_first_of(".,");
    return hasDecimalSign(number) && sign <= kGroup && number[0] != '0' && number.size() == sign + 1 + kGroup &&
           number.find_last_of(".,") == sign;
}

bool decimalsUnclear(const SheetTable& table, const ColumnMatch& match, Target target) {
    bool unclear = false;
    for (std::size_t column = 0; column < match.fields.size(); ++column) {
        const int field = match.fields[column];
        if (field < 0 || fieldsOf(target)[static_cast<std::size_t>(field)].kind != FieldKind::Money)
            continue;
        for (int row = match.headingRow + 1; row < table.rows(); ++row) {
            const SheetCell cell = table.cell(row, static_cast<int>(column));
            if (cell.kind != CellKind::Text || !hasDecimalSign(bareNumber(cell.text)))
                continue;
            if (!readsEitherWay(cell.text))
                return false;
            unclear = true;
        }
    }
    return unclear;
}

} // namespace merchantry::exchange
