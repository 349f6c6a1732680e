#include "app/db/tsql/sql.h"

#include "app/db/dberror.h"
#include "app/db/messages.h"
#include "app/db/tsql/token.h"
#include "base/text.h"
#include "base/value.h"

namespace merchantry::db {
namespace {

// Position behind the quote that would end a literal or name holding this text; npos when none would.
std::size_t breakOut(std::string_view text, char close) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != close)
            continue;
        if (at + 1 < text.size() && text[at + 1] == close)
            ++at;
        else
            return at + 1;
    }
    return std::string_view::npos;
}

// The quote that ends what this one begins; 0 when it begins nothing.
char closingOf(char c) {
    return c == '\'' || c == '"' ? c : c == '[' ? ']' : '\0';
}

} // namespace

Sql& Sql::addLiteral(std::string_view words) {
    for (const char c : words) {
        if (close_ == '\0')
            close_ = closingOf(c);
        else if (c == close_)
            close_ = '\0';
    }
    text_ += words;
    return *this;
}

Sql& Sql::add(const std::string& value) {
    if (close_ == '\0')
        return addBare(value);
    text_ += value;
    const std::size_t end = breakOut(value, close_);
    if (end != std::string::npos && badNumber_ == 0) {
        badNear_ = tsql::firstToken(std::string_view(value).substr(end));
        badNumber_ = badNear_.empty() ? 105 : 102;
        if (badNumber_ == 105)
            badNear_ = value;
    }
    return *this;
}

Sql& Sql::add(const Secret& secret) {
    const bool good = badNumber_ == 0;
    secrets_.emplace_back(text_.size(), secret.value.size());
    add(secret.value);
    if (good && badNumber_ != 0)
        badNear_ = "…";
    return *this;
}

// Values that follow each other without a word between them are one value.
Sql& Sql::addBare(const std::string& value) {
    if (bareEnd_ != text_.size())
        bareBegin_ = text_.size();
    const bool isComment = bareBegin_ > 0 && text_[bareBegin_ - 1] == '-' && !value.empty() && value.front() == '-';
    text_ += value;
    bareEnd_ = text_.size();
    const std::string_view bare = trimmed(std::string_view(text_).substr(bareBegin_));
    if (badNumber_ != 0 || bare.empty() || (tsql::isOneValue(bare) && !isComment))
        return *this;
    badNear_ = tsql::firstToken(bare);
    badNumber_ = tsql::isReservedWord(badNear_) ? 156 : 102;
    return *this;
}

Sql& Sql::add(std::int64_t number) {
    return addNumber(std::to_string(number));
}

Sql& Sql::add(double number) {
    return addNumber(shortestDecimal(number));
}

Sql& Sql::add(Currency amount) {
    return addNumber(amount.toText());
}

// A number goes into a literal as it is.
Sql& Sql::addNumber(const std::string& number) {
    if (close_ == '\0')
        return addBare(number);
    text_ += number;
    return *this;
}

Sql& Sql::add(Date date) {
    text_ += date.toStatementText();
    return *this;
}

Sql& Sql::add(const Sql& other) {
    if (badNumber_ == 0) {
        badNumber_ = other.badNumber_;
        badNear_ = other.badNear_;
    }
    for (const auto& [begin, length] : other.secrets_)
        secrets_.emplace_back(text_.size() + begin, length);
    return addLiteral(other.text_);
}

std::string Sql::shownText() const {
    std::string shown;
    std::size_t from = 0;
    for (const auto& [begin, length] : secrets_) {
        shown += text_.substr(from, begin - from) + "…";
        from = begin + length;
    }
    return shown + text_.substr(from);
}

void Sql::check() const {
    if (badNumber_ == 105)
        throw serverMessage(Message::UnclosedQuote, {badNear_}, 1);
    if (badNumber_ == 102)
        throw serverMessage(Message::IncorrectSyntax, {badNear_}, 1);
    if (badNumber_ == 156)
        throw serverMessage(Message::IncorrectKeyword, {badNear_}, 1);
}

} // namespace merchantry::db
