#include "app/db/sql.h"

#include "app/db/dberror.h"
#include "base/value.h"

#include <cctype>

namespace merchantry::db {
namespace {

bool isWordLetter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$' || c == '#' || c == '@' ||
           static_cast<unsigned char>(c) >= 0x80;
}

// Position behind the apostrophe that would end a literal holding this text; npos when none would.
std::size_t breakOut(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\'')
            continue;
        if (at + 1 < text.size() && text[at + 1] == '\'')
            ++at;
        else
            return at + 1;
    }
    return std::string_view::npos;
}

// The word that the server would stumble over.
std::string wordAt(std::string_view text, std::size_t at) {
    while (at < text.size() && text[at] == ' ')
        ++at;
    std::size_t end = at;
    while (end < text.size() && isWordLetter(text[end]))
        ++end;
    if (end == at && end < text.size())
        ++end;
    return std::string(text.substr(at, end - at));
}

// A number with an optional sign, one word or one whole literal; the empty text is no token and is left to the server.
bool isOneToken(std::string_view text) {
    if (text.empty())
        return true;
    if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'')
        return breakOut(text.substr(1, text.size() - 2)) == std::string_view::npos;
    std::size_t at = text[0] == '-' || text[0] == '+' ? 1 : 0;
    if (at == text.size())
        return false;
    bool point = false;
    if (std::isdigit(static_cast<unsigned char>(text[at])) != 0 || text[at] == '.') {
        for (; at < text.size(); ++at) {
            const char c = text[at];
            if (c == '.' && !point)
                point = true;
            else if ((c == 'e' || c == 'E') && at + 1 < text.size() && (text[at + 1] == '-' || text[at + 1] == '+'))
                ++at;
            else if (std::isalnum(static_cast<unsigned char>(c)) == 0)
                return false;
        }
        return true;
    }
    if (at != 0)
        return false;
    for (const char c : text)
        if (!isWordLetter(c))
            return false;
    return true;
}

} // namespace

Sql& Sql::addLiteral(std::string_view words) {
    for (const char c : words)
        if (c == '\'')
            quoted_ = !quoted_;
    text_ += words;
    return *this;
}

Sql& Sql::add(const std::string& value) {
    text_ += value;
    if (badNumber_ != 0)
        return *this;
    if (quoted_) {
        const std::size_t end = breakOut(value);
        if (end == std::string::npos)
            return *this;
        badNear_ = wordAt(value, end);
        badNumber_ = badNear_.empty() ? 105 : 102;
        if (badNumber_ == 105)
            badNear_ = value;
    } else if (!isOneToken(value)) {
        badNumber_ = 102;
        badNear_ = wordAt(value, 0);
    }
    return *this;
}

Sql& Sql::add(const Secret& secret) {
    const bool good = badNumber_ == 0;
    add(secret.value);
    if (good && badNumber_ != 0)
        badNear_ = "…";
    return *this;
}

Sql& Sql::add(std::int64_t number) {
    text_ += std::to_string(number);
    return *this;
}

Sql& Sql::add(double number) {
    text_ += shortestDecimal(number);
    return *this;
}

Sql& Sql::add(Currency amount) {
    text_ += amount.toText();
    return *this;
}

Sql& Sql::add(Date date) {
    text_ += date.toStatementText();
    return *this;
}

Sql& Sql::add(const Sql& other) {
    text_ += other.text_;
    quoted_ = quoted_ != other.quoted_;
    if (badNumber_ == 0) {
        badNumber_ = other.badNumber_;
        badNear_ = other.badNear_;
    }
    return *this;
}

void Sql::check() const {
    if (badNumber_ == 105)
        throw DbError(DbError::Category::Syntax, 105, "Unclosed quotation mark after the character string '" + badNear_ + "'.", 1);
    if (badNumber_ == 102)
        throw DbError(DbError::Category::Syntax, 102, "Incorrect syntax near '" + badNear_ + "'.", 1);
}

} // namespace merchantry::db
