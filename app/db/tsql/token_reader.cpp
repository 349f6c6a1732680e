#include "app/db/tsql/token_reader.h"

#include "app/db/tsql/errors.h"
#include "base/text.h"

namespace merchantry::db::tsql {
namespace {

constexpr int kDeepest = 400;
constexpr int kLongestChain = 900; // what SQLite takes in one expression

} // namespace

std::string ObjectName::toText() const {
    return joined(parts, ".");
}

Nesting::Nesting(TokenReader& in) : state_(in.state) {
    if (state_.depth >= kDeepest)
        in.fail(Message::NestedTooDeeply);
    ++state_.depth;
}

void TokenReader::expectEnd() const {
    if (!atEnd())
        unexpected();
}

// ---- tokens

bool TokenReader::acceptWord(std::string_view word) {
    if (!isWord(word))
        return false;
    take();
    return true;
}

void TokenReader::expectWord(std::string_view word) {
    if (!acceptWord(word))
        unexpected();
}

bool TokenReader::acceptSymbol(std::string_view symbol) {
    if (!isSymbol(symbol))
        return false;
    take();
    return true;
}

void TokenReader::expectSymbol(std::string_view symbol) {
    if (!acceptSymbol(symbol))
        unexpected();
}

void TokenReader::unexpected(const Token& token) const {
    if (token.kind == TokenKind::Unclosed)
        throw serverMessage(Message::UnclosedQuote, {std::string(token.text.substr(0, 40))}, token.line);
    if (token.kind == TokenKind::End) {
        const std::string near = at_ > 0 ? last().value() : std::string();
        throw serverMessage(Message::IncorrectSyntax, {near}, token.line);
    }
    if (token.kind == TokenKind::Word && isReservedWord(token.text))
        throw serverMessage(Message::IncorrectKeyword, {std::string(token.text)}, token.line);
    throw serverMessage(Message::IncorrectSyntax, {token.value()}, token.line);
}

void TokenReader::link(int& links) const {
    if (++links > kLongestChain)
        fail(Message::NestedTooDeeply);
}

void TokenReader::fail(Message message, std::initializer_list<std::string> arguments) const {
    throw serverMessage(message, arguments, peek().line);
}

// ---- names

bool TokenReader::isLabel(std::size_t ahead) const {
    const Token& token = peek(ahead);
    return token.kind == TokenKind::Word && !isReservedWord(token.text) && isSymbol(":", ahead + 1);
}

bool TokenReader::isName(std::size_t ahead) const {
    const Token& token = peek(ahead);
    if (isLabel(ahead))
        return false;
    return token.kind == TokenKind::Quoted || (token.kind == TokenKind::Word && !isReservedWord(token.text));
}

std::string TokenReader::name() {
    if (!isName())
        unexpected();
    return take().value();
}

ObjectName TokenReader::objectName() {
    ObjectName result;
    result.line = peek().line;
    result.parts.push_back(name());
    while (isSymbol(".")) {
        take();
        if (isSymbol(".")) {
            result.parts.emplace_back();
            continue;
        }
        // Behind a point any word is a name.
        if (peek().kind != TokenKind::Word && peek().kind != TokenKind::Quoted)
            unexpected();
        result.parts.push_back(take().value());
    }
    if (result.parts.size() > 4)
        fail(Message::TooManyPrefixes, {result.toText()});
    return result;
}

std::vector<std::string> TokenReader::nameList() {
    std::vector<std::string> names;
    expectSymbol("(");
    do {
        names.push_back(name());
    } while (acceptSymbol(","));
    expectSymbol(")");
    return names;
}

std::int64_t TokenReader::wholeNumber() {
    bool negative = false;
    while (isSymbol("-") || isSymbol("+"))
        negative = take().text == "-" ? !negative : negative;
    if (peek().kind != TokenKind::Integer || peek().text.size() > 18)
        unexpected();
    const std::int64_t number = std::stoll(std::string(take().text));
    return negative ? -number : number;
}

TypeName TokenReader::typeName() {
    TypeName type;
    type.line = peek().line;
    if (acceptWord("NATIONAL")) {
        type.name = "n";
    }
    type.name += isName() ? objectName().last() : (unexpected(), std::string());
    if (sameName(type.name, "double") && acceptWord("PRECISION"))
        type.name = "float";
    if (isWord("VARYING")) {
        take();
        type.name = sameName(type.name, "character") || sameName(type.name, "char") ? "varchar"
                                                                                    : "n"
                                                                                      "varchar";
    }
    if (!isSymbol("("))
        return type;
    take();
    if (acceptWord("MAX")) {
        type.max = true;
    } else {
        type.first = static_cast<int>(std::min<std::int64_t>(wholeNumber(), 1'000'000));
        if (acceptSymbol(","))
            type.second = static_cast<int>(std::min<std::int64_t>(wholeNumber(), 1'000'000));
    }
    expectSymbol(")");
    return type;
}

std::string TokenReader::sourceFrom(std::size_t begin) const {
    const std::size_t end = at_ > 0 ? last().end : begin;
    return std::string(text_.substr(begin, end - begin));
}

} // namespace merchantry::db::tsql
