#include "app/db/embedded/raised_text.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "base/characters.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>

namespace merchantry::db::embedded {
namespace {

constexpr std::size_t kLongestMessage = 2047; // characters
constexpr int kWidest = 400;

// One % with what follows it.
struct Conversion {
    std::string flags;
    int width = 0;
    int precision = -1;
    bool isBig = false; // I64
    char kind = '\0';
};

class Filling {
public:
    Filling(std::string_view format, const std::vector<RaisedArgument>& arguments) : format_(format), arguments_(arguments) {}

    std::string text() {
        while (at_ < format_.size()) {
            if (format_[at_] != '%')
                text_ += format_[at_++];
            else
                convert();
        }
        if (characterCount(text_) > kLongestMessage)
            text_ = std::string(characters(text_, 0, kLongestMessage - 3)) + "...";
        return text_;
    }

private:
    void convert() {
        const std::size_t from = at_++;
        if (take("%")) {
            text_ += '%';
            return;
        }
        const Conversion conversion = read(from);
        const RaisedArgument* argument = next();
        text_ += !argument || argument->cell.isNull() ? padded("(null)", conversion)
                 : conversion.kind == 's'             ? texts(*argument, conversion)
                                                      : number(*argument, conversion);
    }

    Conversion read(std::size_t from) {
        Conversion conversion;
        while (at_ < format_.size() && std::string_view("-+0# ").find(format_[at_]) != std::string_view::npos)
            conversion.flags += format_[at_++];
        conversion.width = size();
        if (conversion.width < 0) {
            conversion.flags += '-';
            conversion.width = -conversion.width;
        }
        if (take("."))
            conversion.precision = std::max(size(), 0);
        conversion.isBig = take("I64");
        if (!conversion.isBig && !take("h"))
            take("l");
        if (at_ == format_.size() || std::string_view("diouxXs").find(format_[at_]) == std::string_view::npos)
            throw serverMessage(Message::InvalidFormat, {std::string(format_.substr(from, at_ + 1 - from))});
        conversion.kind = format_[at_++];
        return conversion;
    }

    bool take(std::string_view what) {
        if (format_.substr(at_, what.size()) != what)
            return false;
        at_ += what.size();
        return true;
    }

    // Digits, or * for an argument.
    int size() {
        if (take("*")) {
            const RaisedArgument* argument = next();
            const std::int64_t given = argument && argument->cell.kind == tsql::Cell::Kind::Integer ? argument->cell.integer : 0;
            return static_cast<int>(std::clamp<std::int64_t>(given, -kWidest, kWidest));
        }
        int number = 0;
        for (; at_ < format_.size() && format_[at_] >= '0' && format_[at_] <= '9'; ++at_)
            number = std::min(number * 10 + (format_[at_] - '0'), kWidest);
        return number;
    }

    const RaisedArgument* next() { return used_ < arguments_.size() ? &arguments_[used_++] : (++used_, nullptr); }

    void require(bool fits) const {
        if (!fits)
            throw serverMessage(Message::SubstitutionType, {std::to_string(used_)});
    }

    std::string texts(const RaisedArgument& argument, const Conversion& conversion) const {
        require(argument.type.isText());
        const std::string text = tsql::textOf(argument.cell, argument.type);
        const auto most = conversion.precision < 0 ? text.size() : static_cast<std::size_t>(conversion.precision);
        return padded(std::string(characters(text, 0, most)), conversion);
    }

    static std::string padded(std::string text, const Conversion& conversion) {
        const std::size_t count = characterCount(text);
        const auto width = static_cast<std::size_t>(conversion.width);
        if (count < width)
            text.insert(conversion.flags.find('-') == std::string::npos ? 0 : text.size(), width - count, ' ');
        return text;
    }

    std::string number(const RaisedArgument& argument, const Conversion& conversion) const {
        const bool big = argument.type.kind == TypeKind::BigInt;
        require(argument.type.isWhole() && argument.type.kind != TypeKind::Bit && (!big || conversion.isBig));
        const bool isSigned = conversion.kind == 'd' || conversion.kind == 'i';
        const auto unsignedNumber = static_cast<unsigned long long>(argument.cell.integer) & (conversion.isBig ? ~0ULL : 0xFFFFFFFFULL);
        const std::string format = "%" + conversion.flags + "*.*ll" + conversion.kind;
        std::array<char, 2 * kWidest + 32> buffer{};
        if (isSigned)
            std::snprintf(buffer.data(), buffer.size(), format.c_str(), conversion.width, conversion.precision,
                          static_cast<long long>(argument.cell.integer));
        else
            std::snprintf(buffer.data(), buffer.size(), format.c_str(), conversion.width, conversion.precision, unsignedNumber);
        return buffer.data();
    }

    std::string_view format_;
    const std::vector<RaisedArgument>& arguments_;
    std::size_t at_ = 0;
    std::size_t used_ = 0;
    std::string text_;
};

} // namespace

std::string raisedText(std::string_view format, const std::vector<RaisedArgument>& arguments) {
    return Filling(format, arguments).text();
}

} // namespace merchantry::db::embedded
