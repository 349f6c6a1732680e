#pragma once

#include "base/currency.h"
#include "base/date.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace merchantry::db {

// A value that no message may show, such as a password.
struct Secret {
    std::string value;
};

// A statement as it is joined from texts and values: literals of the program stand as they are, a std::string is a value. The joined text
// is exactly what joining gives, nothing is escaped; but a value cannot become a piece of the statement: one that would end its quotes, or
// one outside quotes that is more than a single token or a word of the language, makes check() throw the server's own syntax error (102,
// 105 or 156) before anything is sent. The lexer decides what a token is.
//
//   Sql("SELECT * FROM Item WHERE SKU = '") + sku + "' AND TypeID = " + typeId
class Sql {
public:
    Sql() = default;
    // A text that stands in the program; what is made at run time is a value and goes through add.
    template <std::size_t N> Sql(const char (&literal)[N]) { addLiteral({literal, N - 1}); }
    template <std::size_t N> Sql(char (&notALiteral)[N]) = delete;

    template <std::size_t N> Sql& add(const char (&literal)[N]) { return addLiteral({literal, N - 1}); }
    template <std::size_t N> Sql& add(char (&notALiteral)[N]) = delete;
    Sql& add(const std::string& value);
    // As the text itself; an error that check() throws for it does not tell it.
    Sql& add(const Secret& secret);
    Sql& add(std::int64_t number);
    Sql& add(int number) { return add(static_cast<std::int64_t>(number)); }
    // In shortest decimal form.
    Sql& add(double number);
    Sql& add(Currency amount);
    // As mm/dd/yyyy.
    Sql& add(Date date);
    Sql& add(const Sql& other);

    // The joined text, byte for byte.
    const std::string& text() const { return text_; }
    // The same with "…" in place of every secret, for whoever writes statements down.
    std::string shownText() const;
    // Throws DbError (category Syntax) when a value would have become a piece of the statement.
    void check() const;

    template <std::size_t N> friend Sql operator+(Sql left, const char (&literal)[N]) { return std::move(left.add(literal)); }
    template <class T> friend Sql operator+(Sql left, const T& value) { return std::move(left.add(value)); }

private:
    Sql& addLiteral(std::string_view words);
    Sql& addBare(const std::string& value);
    Sql& addNumber(const std::string& number);

    std::string text_;
    std::vector<std::pair<std::size_t, std::size_t>> secrets_; // where they begin in the text, and how long they are
    char close_ = '\0';                                        // ends the literal or quoted name that the text so far ends in; 0 outside
    std::size_t bareBegin_ = 0;                                // of the bare value that the text so far ends with
    std::size_t bareEnd_ = std::string::npos;
    int badNumber_ = 0; // 102, 105 or 156 once a value broke out
    std::string badNear_;
};

} // namespace merchantry::db
