#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db::tsql {

enum class TokenKind {
    Word,           // a bare name or a word of the language
    Quoted,         // [name] or "name"
    Variable,       // @name
    SystemVariable, // @@name
    Integer,
    Number, // digits with a point
    Float,  // with an exponent
    Money,  // $1.50
    Text,   // 'text'
    WideText,
    Binary, // 0x...
    Symbol,
    Unclosed, // a text or name without its end; an error when it is reached
    End,
};

// A piece of a batch. The text lies in the batch, which must outlive the token; names and texts stand without their quotes.
struct Token {
    TokenKind kind = TokenKind::End;
    std::string_view text;
    bool doubled = false; // the closing quote stands doubled inside, so that value() must undo it
    bool blankBefore = false;
    int line = 1;
    std::size_t begin = 0; // place in the batch, in bytes
    std::size_t end = 0;
    char quote = 0;

    // The name or text with doubled quotes undone.
    std::string value() const;
    // Whether this is that bare word, in any case. Requires: word in capitals.
    bool is(std::string_view word) const;
    bool isSymbol(std::string_view symbol) const { return kind == TokenKind::Symbol && text == symbol; }
};

// Cuts a batch into tokens, the last of which is End. With quotedIdentifiers "x" is a name, otherwise a text.
// Throws DbError 113 for a comment that is not closed.
std::vector<Token> tokensOf(std::string_view batch, bool quotedIdentifiers);

// Whether a bare word cannot be a name. Requires nothing of its case.
bool isReservedWord(std::string_view word);

// Whether a text is one value, with nothing in front of it and nothing behind: a number with or without sign, money, a binary number, a
// whole literal in apostrophes, or one word in plain letters that is no word of the language (NULL and DEFAULT are values). Some server may
// read what stands behind the plain letters as a blank or an apostrophe: a byte from 0x80 on belongs into apostrophes.
bool isOneValue(std::string_view text);

// The first token of a text as it stands there; what a syntax error names. Empty when there is none.
std::string firstToken(std::string_view text);

// Whether two names or words are the same without case (ASCII fast, other letters folded).
bool sameName(std::string_view left, std::string_view right);

} // namespace merchantry::db::tsql
