#include "reports/engine/celltext.h"

#include "base/shown.h"

#include <array>
#include <cstdio>

namespace merchantry::reports {
namespace {

// "-1234.5" becomes "-1,234.5".
std::string withCommas(std::string number) {
    const std::size_t first = number.starts_with('-') ? 1 : 0;
    std::size_t at = std::min(number.find('.'), number.size());
    while (at > first + 3) {
        at -= 3;
        number.insert(at, ",");
    }
    return number;
}

std::string moneyText(Figure amount, int decimals) {
    std::string text = withCommas(amount.toText(decimals));
    const bool negative = text.starts_with('-');
    text = "$" + (negative ? text.substr(1) : text);
    return negative ? "(" + text + ")" : text;
}

// Cents, and what a cost has beyond them.
std::string costText(Figure cost) {
    const std::string fine = cost.toText(4);
    return moneyText(cost, fine.ends_with("00") ? 2 : 4);
}

std::string timeText(Date date) {
    const std::string iso = date.toIsoText();
    const int hour = std::stoi(iso.substr(11, 2));
    const int shown = hour % 12 == 0 ? 12 : hour % 12;
    return std::to_string(shown) + iso.substr(13, 3) + (hour < 12 ? " AM" : " PM");
}

std::string dateText(Date date, Format format) {
    if (format == Format::Time)
        return timeText(date);
    const std::string day = date.dateOnly().toShortText();
    return format == Format::DateTime ? day + " " + timeText(date) : day;
}

} // namespace

ColumnKind kindOf(const Value& sample, Format wanted) {
    Format own = Format::Text;
    if (sample.is<bool>())
        own = Format::Flag;
    else if (sample.is<std::int64_t>())
        own = Format::Integer;
    else if (sample.is<Currency>())
        own = Format::Money;
    else if (sample.is<Decimal>() || sample.is<double>())
        own = Format::Number;
    else if (sample.is<Date>())
        own = Format::Date;
    const Format format = wanted == Format::Auto ? own : wanted;
    const bool number = format == Format::Number || format == Format::Integer || format == Format::Quantity || format == Format::Money ||
                        format == Format::Cost || format == Format::Percent;
    return {format, number};
}

std::string figureText(Figure figure, Format format) {
    switch (format) {
    case Format::Money:
        return moneyText(figure, 2);
    case Format::Cost:
        return costText(figure);
    case Format::Percent:
        return shownPercent(withCommas((figure * Figure::ofInteger(100)).toText(1)));
    case Format::Integer:
        return withCommas(figure.toText(0));
    case Format::Flag:
        return figure == Figure() ? "" : "Yes";
    case Format::Number:
        return figure.toShortText();
    default:
        return withCommas(figure.toShortText());
    }
}

std::string cellText(const Value& value, Format format) {
    if (value.isNull())
        return "";
    if (value.is<Date>())
        return dateText(value.as<Date>(), format);
    const bool plain = format == Format::Text || format == Format::Date || format == Format::Time || format == Format::DateTime;
    if (const auto figure = plain ? std::nullopt : Figure::of(value))
        return figureText(*figure, format);
    return value.toText();
}

} // namespace merchantry::reports
