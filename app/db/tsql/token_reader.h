#pragma once

#include "app/db/messages.h"
#include "app/db/tsql/ast.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db::tsql {

// What a parser knows of what it has read.
struct ParseState {
    int statements = 0; // of the batch or module, which numbers them
    int selects = 0;    // so far, to tell the only one
    int depth = 0;      // of what stands within something, see Nesting
    int loops = 0;      // around the place
    bool inModule = false;
    bool batchStart = false; // nothing was read yet
};

// The tokens of one text, read from front to back. What expects something throws DbError of category Syntax (102, 105, 156) at the first
// token that does not belong there. The text outlives the reader.
class TokenReader {
public:
    TokenReader(std::string_view text, bool quotedIdentifiers) : text_(text), tokens_(tokensOf(text, quotedIdentifiers)) {}

    // Behind the end stands a token of kind End, however far ahead.
    const Token& peek(std::size_t ahead = 0) const { return tokens_[std::min(at_ + ahead, tokens_.size() - 1)]; }
    const Token& take() { return tokens_[at_ + 1 < tokens_.size() ? at_++ : at_]; }
    // The token that was taken last; the first one before any was.
    const Token& last() const { return tokens_[at_ > 0 ? at_ - 1 : 0]; }
    bool atEnd() const { return peek().kind == TokenKind::End; }
    void expectEnd() const;

    bool isWord(std::string_view word, std::size_t ahead = 0) const { return peek(ahead).is(word); }
    bool acceptWord(std::string_view word);
    void expectWord(std::string_view word);
    bool isSymbol(std::string_view symbol, std::size_t ahead = 0) const { return peek(ahead).isSymbol(symbol); }
    bool acceptSymbol(std::string_view symbol);
    void expectSymbol(std::string_view symbol);

    // A word with a colon behind it begins a statement of its own: it is no alias, argument or name of what stands before it.
    bool isLabel(std::size_t ahead = 0) const;
    bool isName(std::size_t ahead = 0) const;
    std::string name();
    ObjectName objectName();
    std::vector<std::string> nameList(); // (a, b, c)
    TypeName typeName();
    std::int64_t wholeNumber();
    // The text from that byte to the end of the last token.
    std::string sourceFrom(std::size_t begin) const;

    [[noreturn]] void unexpected() const { unexpected(peek()); }
    [[noreturn]] void unexpected(const Token& token) const;
    [[noreturn]] void fail(Message message, std::initializer_list<std::string> arguments = {}) const;
    // Counts the links of a chain like a + b + c; throws at one that is too long to be worked on.
    void link(int& links) const;

    ParseState state;

private:
    std::string_view text_;
    std::vector<Token> tokens_;
    std::size_t at_ = 0;
};

// Guards against texts that nest deeper than the stack is (191).
class Nesting {
public:
    explicit Nesting(TokenReader& in);
    ~Nesting() { --state_.depth; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    ParseState& state_;
};

} // namespace merchantry::db::tsql
