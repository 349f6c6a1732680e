#include "app/db/tsql/datetext.h"

#include "app/db/tsql/token.h"
#include "base/date.h"

#include <array>
#include <cstdio>
#include <optional>
#include <vector>

namespace merchantry::db::tsql {
namespace {

constexpr std::array<const char*, 12> kMonths = {"January", "February", "March",     "April",   "May",      "June",
                                                 "July",    "August",   "September", "October", "November", "December"};
constexpr std::array<const char*, 7> kDays = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

struct Piece {
    enum class Kind { Number, Word, Mark };
    Kind kind = Kind::Mark;
    std::string_view text;
    int number = 0;
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

int numberOf(std::string_view text) {
    int number = 0;
    for (const char c : text)
        number = number > 99'999'999 ? number : number * 10 + (c - '0');
    return number;
}

// Numbers, words and marks; blanks only part them.
std::vector<Piece> piecesOf(std::string_view text) {
    std::vector<Piece> pieces;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t from = at;
        if (text[at] == ' ' || text[at] == '\t') {
            ++at;
            continue;
        }
        Piece piece;
        if (isDigit(text[at])) {
            while (at < text.size() && isDigit(text[at]))
                ++at;
            piece.kind = Piece::Kind::Number;
        } else if (isLetter(text[at])) {
            while (at < text.size() && isLetter(text[at]))
                ++at;
            piece.kind = Piece::Kind::Word;
        } else {
            ++at;
        }
        piece.text = text.substr(from, at - from);
        if (piece.kind == Piece::Kind::Number)
            piece.number = numberOf(piece.text);
        pieces.push_back(piece);
    }
    return pieces;
}

std::optional<int> monthOf(std::string_view word) {
    for (std::size_t i = 0; i < kMonths.size(); ++i) {
        const std::string_view name = kMonths[i];
        if (sameName(word, name) || sameName(word, name.substr(0, 3)))
            return static_cast<int>(i) + 1;
    }
    return std::nullopt;
}

class Reader {
public:
    Reader(std::string_view text, int style) : pieces_(piecesOf(text)), style_(style % 100) {}

    DateTextResult read(std::int64_t& ms) {
        if (pieces_.empty()) {
            ms = 0;
            return DateTextResult::Ok;
        }
        bool sawDate = false;
        bool sawTime = false;
        while (at_ < pieces_.size()) {
            if (!sawTime && timeBegins()) {
                if (!time())
                    return DateTextResult::NoDate;
                sawTime = true;
            } else if (!sawDate && date()) {
                sawDate = true;
                if (isWord("T") && at_ + 1 < pieces_.size())
                    ++at_;
            } else {
                return DateTextResult::NoDate;
            }
        }
        return result(ms);
    }

private:
    const Piece* peek(std::size_t ahead = 0) const { return at_ + ahead < pieces_.size() ? &pieces_[at_ + ahead] : nullptr; }
    bool isNumber(std::size_t ahead = 0) const { return peek(ahead) && peek(ahead)->kind == Piece::Kind::Number; }
    bool isMark(char mark, std::size_t ahead = 0) const {
        return peek(ahead) && peek(ahead)->kind == Piece::Kind::Mark && peek(ahead)->text[0] == mark;
    }
    bool isWord(std::string_view word, std::size_t ahead = 0) const {
        return peek(ahead) && peek(ahead)->kind == Piece::Kind::Word && sameName(peek(ahead)->text, word);
    }
    bool isHalf(std::size_t ahead) const { return isWord("AM", ahead) || isWord("PM", ahead); }

    bool timeBegins() const { return isNumber() && (isMark(':', 1) || isHalf(1)); }

    bool time() {
        hour_ = pieces_[at_++].number;
        if (isMark(':')) {
            if (!isNumber(1))
                return false;
            minute_ = pieces_[at_ + 1].number;
            at_ += 2;
        }
        if (isMark(':') && isNumber(1)) {
            second_ = pieces_[at_ + 1].number;
            at_ += 2;
            if ((isMark('.') || isMark(':')) && isNumber(1)) {
                fraction(pieces_[at_ + 1].text, isMark('.'));
                at_ += 2;
            }
        }
        if (isHalf(0)) {
            if (hour_ < 1 || hour_ > 12)
                return false;
            hour_ = hour_ % 12 + (isWord("PM") ? 12 : 0);
            ++at_;
        }
        return hour_ < 24 && minute_ < 60 && second_ < 60;
    }

    void fraction(std::string_view digits, bool decimal) {
        ms_ = 0;
        for (std::size_t i = 0; i < 3; ++i)
            ms_ = ms_ * 10 + (i < digits.size() ? digits[i] - '0' : 0);
        if (!decimal)
            ms_ = numberOf(digits.substr(0, 3));
    }

    bool date() { return named() || separated() || packed(); }

    // "Mar 5 2024", "5 March, 2024", "March 2024"
    bool named() {
        std::size_t ahead = 0;
        std::vector<const Piece*> numbers;
        std::optional<int> month;
        for (; peek(ahead) && numbers.size() + (month ? 1 : 0) < 3; ++ahead) {
            const Piece& piece = *peek(ahead);
            if (piece.kind == Piece::Kind::Number) {
                if (isMark(':', ahead + 1) || isHalf(ahead + 1))
                    break;
                numbers.push_back(&piece);
            } else if (piece.kind == Piece::Kind::Word) {
                if (month || !monthOf(piece.text))
                    break;
                month = monthOf(piece.text);
            } else if (piece.text != "," && piece.text != "-" && piece.text != "/" && piece.text != ".") {
                break;
            }
        }
        if (!month || numbers.empty())
            return false;
        month_ = *month;
        day_ = 1;
        const bool yearFirst = numbers[0]->text.size() > 2;
        if (numbers.size() == 1) {
            setYear(*numbers[0]);
        } else {
            day_ = numbers[yearFirst ? 1 : 0]->number;
            setYear(*numbers[yearFirst ? 0 : 1]);
        }
        at_ += ahead;
        return true;
    }

    // "3/5/2024", "2024-03-05", "05.03.24"
    bool separated() {
        if (!(isNumber() && isNumber(2) && isNumber(4)))
            return false;
        const char mark = peek(1)->text[0];
        if ((mark != '/' && mark != '-' && mark != '.') || !isMark(mark, 3))
            return false;
        const Piece& first = *peek(0);
        const Piece& second = *peek(2);
        const Piece& third = *peek(4);
        if (first.text.size() == 4) {
            setYear(first);
            month_ = second.number;
            day_ = third.number;
        } else if (third.text.size() == 4 || third.text.size() <= 2) {
            const bool dayFirst = style_ == 3 || style_ == 4 || style_ == 5 || style_ == 13 || style_ == 31;
            const bool yearFirst = third.text.size() <= 2 && (style_ == 2 || style_ == 11);
            month_ = (dayFirst || yearFirst ? second : first).number;
            day_ = (yearFirst ? third : dayFirst ? first : second).number;
            setYear(yearFirst ? first : third);
        } else {
            return false;
        }
        at_ += 5;
        return true;
    }

    // "20240305", "240305", "2024"
    bool packed() {
        if (!isNumber())
            return false;
        const Piece& piece = *peek();
        if (piece.text.size() == 8) {
            year_ = piece.number / 10000;
        } else if (piece.text.size() == 6) {
            setTwoDigitYear(piece.number / 10000);
        } else if (piece.text.size() == 4) {
            year_ = piece.number;
            month_ = day_ = 1;
            ++at_;
            return true;
        } else {
            return false;
        }
        month_ = piece.number / 100 % 100;
        day_ = piece.number % 100;
        ++at_;
        return true;
    }

    void setYear(const Piece& piece) {
        if (piece.text.size() <= 2)
            setTwoDigitYear(piece.number);
        else
            year_ = piece.number;
    }

    void setTwoDigitYear(int year) { year_ = year + (year < 50 ? 2000 : 1900); }

    DateTextResult result(std::int64_t& ms) const {
        const std::optional<Date> date = Date::fromParts(year_, month_, day_, hour_, minute_, second_, ms_);
        if (!date || date->ms() < kFirstDateTime)
            return DateTextResult::OutOfRange;
        ms = date->ms();
        return DateTextResult::Ok;
    }

    std::vector<Piece> pieces_;
    int style_;
    std::size_t at_ = 0;
    int year_ = 1900;
    int month_ = 1;
    int day_ = 1;
    int hour_ = 0;
    int minute_ = 0;
    int second_ = 0;
    int ms_ = 0;
};

// A style is a small picture: Y year, y two digits of it, M month, D day, N month name of three letters, d day in two places,
// H hour, h hour of twelve in two places, m minute, s second, f thousandths, P AM or PM; the rest stands for itself.
const char* pictureOf(int style) {
    switch (style) {
    case 0:
    case 100:
        return "N d Y h:mP";
    case 1:
        return "M/D/y";
    case 101:
        return "M/D/Y";
    case 2:
        return "y.M.D";
    case 102:
        return "Y.M.D";
    case 3:
        return "D/M/y";
    case 103:
        return "D/M/Y";
    case 4:
        return "D.M.y";
    case 104:
        return "D.M.Y";
    case 5:
        return "D-M-y";
    case 105:
        return "D-M-Y";
    case 6:
        return "D N y";
    case 106:
        return "D N Y";
    case 7:
        return "N D, y";
    case 107:
        return "N D, Y";
    case 8:
    case 108:
    case 24:
        return "H:m:s";
    case 9:
    case 109:
        return "N d Y h:m:s:fP";
    case 10:
        return "M-D-y";
    case 110:
        return "M-D-Y";
    case 11:
        return "y/M/D";
    case 111:
        return "Y/M/D";
    case 12:
        return "yMD";
    case 112:
        return "YMD";
    case 13:
    case 113:
        return "D N Y H:m:s:f";
    case 14:
    case 114:
        return "H:m:s:f";
    case 20:
    case 120:
        return "Y-M-D H:m:s";
    case 21:
    case 25:
    case 121:
        return "Y-M-D H:m:s.f";
    case 22:
        return "M/D/y h:m:s P";
    case 23:
        return "Y-M-D";
    case 126:
    case 127:
        return "Y-M-DTH:m:s.f";
    default:
        return nullptr;
    }
}

std::string formatted(const char* format, int number) {
    std::array<char, 24> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, number);
    return buffer.data();
}

std::string placed(const Date& date, char letter) {
    switch (letter) {
    case 'Y':
        return formatted("%04d", date.year());
    case 'y':
        return formatted("%02d", date.year() % 100);
    case 'M':
        return formatted("%02d", date.month());
    case 'D':
        return formatted("%02d", date.day());
    case 'd':
        return formatted("%2d", date.day());
    case 'N':
        return std::string(monthName(date.month())).substr(0, 3);
    case 'H':
        return formatted("%02d", date.hour());
    case 'h':
        return formatted("%2d", date.hour() % 12 == 0 ? 12 : date.hour() % 12);
    case 'm':
        return formatted("%02d", date.minute());
    case 's':
        return formatted("%02d", date.second());
    case 'f':
        return formatted("%03d", date.millisecond());
    case 'P':
        return date.hour() < 12 ? "AM" : "PM";
    default:
        return std::string(1, letter);
    }
}

} // namespace

DateTextResult readDate(std::string_view text, int style, std::int64_t& ms) {
    return Reader(text, style).read(ms);
}

bool writeDate(std::int64_t ms, int style, std::string& text) {
    const char* picture = pictureOf(style);
    if (!picture)
        return false;
    const Date date = Date::fromMs(ms);
    text.clear();
    for (const char* letter = picture; *letter != '\0'; ++letter)
        text += placed(date, *letter);
    if ((style == 126 || style == 127) && date.millisecond() == 0)
        text.resize(text.size() - 4);
    return true;
}

std::int64_t roundedToTick(std::int64_t ms) {
    std::int64_t day = ms / Date::kMsPerDay;
    std::int64_t rest = ms % Date::kMsPerDay;
    if (rest < 0) {
        rest += Date::kMsPerDay;
        --day;
    }
    const std::int64_t ticks = (rest * 3 + 5) / 10;
    return day * Date::kMsPerDay + (ticks * 10 + 1) / 3;
}

std::int64_t roundedToMinute(std::int64_t ms) {
    constexpr std::int64_t kMinute = 60'000;
    std::int64_t minutes = ms / kMinute;
    std::int64_t rest = ms % kMinute;
    if (rest < 0) {
        rest += kMinute;
        --minutes;
    }
    return (minutes + (rest >= 29'999 ? 1 : 0)) * kMinute;
}

const char* monthName(int month) {
    return kMonths[static_cast<std::size_t>(month) - 1];
}

const char* dayName(int day) {
    return kDays[static_cast<std::size_t>(day) - 1];
}

} // namespace merchantry::db::tsql
