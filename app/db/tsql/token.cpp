#include "app/db/tsql/token.h"

#include "app/db/dberror.h"
#include "app/db/messages.h"
#include "base/lettercase.h"
#include "base/text.h"

#include <algorithm>
#include <array>

namespace merchantry::db::tsql {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '#' || (static_cast<unsigned char>(c) & 0x80U) != 0;
}

bool isNamePart(char c) {
    return isNameStart(c) || isDigit(c) || c == '$' || c == '@';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

class Lexer {
public:
    Lexer(std::string_view batch, bool quotedIdentifiers) : batch_(batch), quotedIdentifiers_(quotedIdentifiers) {
        if (batch_.substr(0, 3) == "\xEF\xBB\xBF")
            at_ = 3;
    }

    std::vector<Token> run() {
        tokens_.reserve(batch_.size() / 4 + 4);
        while (true) {
            const bool blank = skipBlanks();
            start_ = at_;
            if (at_ >= batch_.size())
                break;
            next();
            tokens_.back().blankBefore = blank;
        }
        add(TokenKind::End, start_, start_);
        return std::move(tokens_);
    }

private:
    char peek(std::size_t ahead = 0) const { return at_ + ahead < batch_.size() ? batch_[at_ + ahead] : '\0'; }

    Token& add(TokenKind kind, std::size_t from, std::size_t to) {
        Token token;
        token.kind = kind;
        token.text = batch_.substr(from, to - from);
        token.line = tokenLine_;
        token.begin = start_;
        token.end = at_;
        return tokens_.emplace_back(token);
    }

    bool skipBlanks() {
        const std::size_t from = at_;
        while (at_ < batch_.size()) {
            const char c = batch_[at_];
            if (isBlank(c)) {
                line_ += c == '\n' ? 1 : 0;
                ++at_;
            } else if (c == '-' && peek(1) == '-') {
                while (at_ < batch_.size() && batch_[at_] != '\n')
                    ++at_;
            } else if (c == '/' && peek(1) == '*') {
                skipComment();
            } else {
                break;
            }
        }
        tokenLine_ = line_;
        return at_ != from;
    }

    void skipComment() {
        const int begun = line_;
        int depth = 0;
        do {
            if (at_ >= batch_.size())
                throw serverMessage(Message::UnclosedComment, {}, begun).withSeverity(15, 1);
            if (peek() == '/' && peek(1) == '*') {
                ++depth;
                at_ += 2;
            } else if (peek() == '*' && peek(1) == '/') {
                --depth;
                at_ += 2;
            } else {
                line_ += peek() == '\n' ? 1 : 0;
                ++at_;
            }
        } while (depth > 0);
    }

    void next() {
        const char c = peek();
        if (c == '\'')
            return quoted(TokenKind::Text, '\'');
        if ((c == 'N' || c == 'n') && peek(1) == '\'') {
            ++at_;
            return quoted(TokenKind::WideText, '\'');
        }
        if (c == '[')
            return quoted(TokenKind::Quoted, ']');
        if (c == '"')
            return quoted(quotedIdentifiers_ ? TokenKind::Quoted : TokenKind::Text, '"');
        if (c == '@')
            return variable();
        if (c == '0' && (peek(1) == 'x' || peek(1) == 'X'))
            return binary();
        if (isDigit(c) || (c == '.' && isDigit(peek(1))))
            return number();
        if (c == '$')
            return money();
        if (isNameStart(c))
            return word();
        symbol();
    }

    void quoted(TokenKind kind, char close) {
        const std::size_t from = ++at_;
        bool doubled = false;
        while (true) {
            if (at_ >= batch_.size()) {
                add(TokenKind::Unclosed, from, at_);
                return;
            }
            if (batch_[at_] == close) {
                if (peek(1) != close)
                    break;
                doubled = true;
                ++at_;
            }
            line_ += batch_[at_] == '\n' ? 1 : 0;
            ++at_;
        }
        const std::size_t to = at_++;
        Token& token = add(kind, from, to);
        token.doubled = doubled;
        token.quote = close;
    }

    void variable() {
        const std::size_t from = at_;
        const bool system = peek(1) == '@';
        at_ += system ? 2 : 1;
        while (isNamePart(peek()))
            ++at_;
        add(system ? TokenKind::SystemVariable : TokenKind::Variable, from, at_);
    }

    void binary() {
        at_ += 2;
        const std::size_t from = at_;
        while (isHexDigit(peek()))
            ++at_;
        add(TokenKind::Binary, from, at_);
    }

    void digits() {
        while (isDigit(peek()))
            ++at_;
    }

    void number() {
        const std::size_t from = at_;
        TokenKind kind = TokenKind::Integer;
        digits();
        if (peek() == '.') {
            kind = TokenKind::Number;
            ++at_;
            digits();
        }
        if (peek() == 'e' || peek() == 'E') {
            const std::size_t sign = peek(1) == '+' || peek(1) == '-' ? 1 : 0;
            if (isDigit(peek(1 + sign)) || !isNamePart(peek(1 + sign))) {
                kind = TokenKind::Float;
                at_ += 1 + sign;
                digits();
            }
        }
        add(kind, from, at_);
    }

    void money() {
        const std::size_t from = ++at_;
        if (peek() == '-' && (isDigit(peek(1)) || peek(1) == '.'))
            ++at_;
        digits();
        if (peek() == '.') {
            ++at_;
            digits();
        }
        if (at_ == from && isNamePart(peek())) // $action and the like
            return word();
        add(TokenKind::Money, from, at_);
    }

    void word() {
        const std::size_t from = at_;
        while (at_ < batch_.size() && isNamePart(batch_[at_]))
            ++at_;
        add(TokenKind::Word, from, at_);
    }

    void symbol() {
        static constexpr std::array<std::string_view, 15> kLong = {
            "<=", ">=", "<>", "!=", "!<", "!>", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "::"};
        const std::string_view two = batch_.substr(at_, 2);
        const bool isLong = std::find(kLong.begin(), kLong.end(), two) != kLong.end();
        const std::size_t from = at_;
        at_ += isLong ? 2 : 1;
        add(TokenKind::Symbol, from, at_);
    }

    std::string_view batch_;
    bool quotedIdentifiers_;
    std::size_t at_ = 0;
    std::size_t start_ = 0;
    int line_ = 1;
    int tokenLine_ = 1;
    std::vector<Token> tokens_;
};

// In order, for a binary search.
constexpr std::array kReserved = std::to_array<std::string_view>(
    {"ADD",        "ALL",          "ALTER",      "AND",        "ANY",       "AS",        "ASC",        "AUTHORIZATION",
     "BACKUP",     "BEGIN",        "BETWEEN",    "BREAK",      "BROWSE",    "BULK",      "BY",         "CASCADE",
     "CASE",       "CHECK",        "CHECKPOINT", "CLOSE",      "CLUSTERED", "COALESCE",  "COLLATE",    "COLUMN",
     "COMMIT",     "CONSTRAINT",   "CONTINUE",   "CONVERT",    "CREATE",    "CROSS",     "CURRENT",    "CURSOR",
     "DATABASE",   "DEALLOCATE",   "DECLARE",    "DEFAULT",    "DELETE",    "DENY",      "DESC",       "DISTINCT",
     "DROP",       "ELSE",         "END",        "ERRLVL",     "ESCAPE",    "EXCEPT",    "EXEC",       "EXECUTE",
     "EXISTS",     "EXIT",         "FETCH",      "FILLFACTOR", "FOR",       "FOREIGN",   "FROM",       "FULL",
     "FUNCTION",   "GOTO",         "GRANT",      "GROUP",      "HAVING",    "HOLDLOCK",  "IDENTITY",   "IDENTITY_INSERT",
     "IF",         "IN",           "INDEX",      "INNER",      "INSERT",    "INTERSECT", "INTO",       "IS",
     "JOIN",       "KEY",          "KILL",       "LEFT",       "LIKE",      "LINENO",    "MERGE",      "NATIONAL",
     "NOCHECK",    "NONCLUSTERED", "NOT",        "NULL",       "NULLIF",    "OF",        "OFF",        "ON",
     "OPEN",       "OPTION",       "OR",         "ORDER",      "OUTER",     "OVER",      "PERCENT",    "PIVOT",
     "PLAN",       "PRIMARY",      "PRINT",      "PROC",       "PROCEDURE", "RAISERROR", "READ",       "RECONFIGURE",
     "REFERENCES", "REPLICATION",  "RESTORE",    "RETURN",     "REVOKE",    "RIGHT",     "ROLLBACK",   "ROWCOUNT",
     "RULE",       "SAVE",         "SCHEMA",     "SELECT",     "SET",       "SETUSER",   "SHUTDOWN",   "SOME",
     "STATISTICS", "SYSTEM_USER",  "TABLE",      "THEN",       "TO",        "TOP",       "TRAN",       "TRANSACTION",
     "TRIGGER",    "TRUNCATE",     "UNION",      "UNIQUE",     "UNPIVOT",   "UPDATE",    "UPDATETEXT", "USE",
     "USER",       "VALUES",       "VARYING",    "VIEW",       "WAITFOR",   "WHEN",      "WHERE",      "WHILE",
     "WITH",       "WRITETEXT"});

static_assert(std::is_sorted(kReserved.begin(), kReserved.end()));

char upperAscii(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

} // namespace

std::string Token::value() const {
    if (!doubled)
        return std::string(text);
    const std::string one(1, quote);
    return replaced(text, one + one, one);
}

bool Token::is(std::string_view word) const {
    return kind == TokenKind::Word && text.size() == word.size() &&
           std::equal(text.begin(), text.end(), word.begin(), [](char a, char b) { return upperAscii(a) == b; });
}

std::vector<Token> tokensOf(std::string_view batch, bool quotedIdentifiers) {
    return Lexer(batch, quotedIdentifiers).run();
}

bool isReservedWord(std::string_view word) {
    std::array<char, 16> upper{};
    if (word.size() > upper.size())
        return false;
    std::transform(word.begin(), word.end(), upper.begin(), upperAscii);
    return std::binary_search(kReserved.begin(), kReserved.end(), std::string_view(upper.data(), word.size()));
}

namespace {

bool isPlain(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; });
}

bool isNumber(const Token& token) {
    return token.kind == TokenKind::Integer || token.kind == TokenKind::Number || token.kind == TokenKind::Float ||
           token.kind == TokenKind::Money;
}

bool isValue(const Token& token) {
    if (token.kind == TokenKind::Word)
        return isPlain(token.text) && (!isReservedWord(token.text) || token.is("NULL") || token.is("DEFAULT"));
    return isNumber(token) || token.kind == TokenKind::Binary || (token.kind == TokenKind::Text && token.quote == '\'');
}

// The tokens of a text without the last one, End; none of one that ends within a comment.
std::vector<Token> tokensWithin(std::string_view text) {
    try {
        std::vector<Token> tokens = tokensOf(text, true);
        tokens.pop_back();
        return tokens;
    } catch (const DbError&) {
        return {};
    }
}

} // namespace

bool isOneValue(std::string_view text) {
    const std::vector<Token> tokens = tokensWithin(text);
    if (tokens.empty() || tokens.front().begin != 0 || tokens.back().end != text.size())
        return false;
    if (tokens.size() == 1)
        return isValue(tokens[0]);
    const bool isSigned = tokens[0].isSymbol("-") || tokens[0].isSymbol("+");
    return tokens.size() == 2 && isSigned && isNumber(tokens[1]) && !tokens[1].blankBefore;
}

std::string firstToken(std::string_view text) {
    const std::vector<Token> tokens = tokensWithin(text);
    if (tokens.empty())
        return std::string(trimmed(text).substr(0, 1));
    return std::string(text.substr(tokens[0].begin, tokens[0].end - tokens[0].begin));
}

bool sameName(std::string_view left, std::string_view right) {
    if (left.size() == right.size() &&
        std::equal(left.begin(), left.end(), right.begin(), [](char a, char b) { return upperAscii(a) == upperAscii(b); }))
        return true;
    const auto wide = [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; };
    return (std::any_of(left.begin(), left.end(), wide) || std::any_of(right.begin(), right.end(), wide)) &&
           lowerCase(left) == lowerCase(right);
}

} // namespace merchantry::db::tsql
