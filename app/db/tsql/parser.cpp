#include "app/db/tsql/parser.h"

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

Nesting::Nesting(Parser& parser) : parser_(parser) {
    if (++parser_.depth_ > kDeepest) {
        --parser_.depth_;
        throw syntaxError(191,
                          "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller queries.",
                          parser.peek().line);
    }
}

Nesting::~Nesting() {
    --parser_.depth_;
}

Parser::Parser(std::string_view text, bool quotedIdentifiers) : text_(text), tokens_(tokensOf(text, quotedIdentifiers)) {}

Batch parseBatch(std::string_view text, bool quotedIdentifiers) {
    return Parser(text, quotedIdentifiers).batch();
}

ExprPtr parseExpressionText(std::string_view text) {
    return Parser(text, true).wholeExpression();
}

TypeName parseTypeText(std::string_view text) {
    return Parser(text, true).wholeType();
}

std::vector<ParameterClause> parseParameterText(std::string_view text) {
    return Parser(text, true).wholeParameters();
}

Batch Parser::batch() {
    Batch result;
    batchStart_ = true;
    result.statements = block([&] { return atEnd(); });
    if (!atEnd())
        unexpected();
    result.count = count_;
    return result;
}

ExprPtr Parser::wholeExpression() {
    ExprPtr result = sourced([&] { return expression(); });
    if (!atEnd())
        unexpected();
    return result;
}

TypeName Parser::wholeType() {
    TypeName type = typeName();
    if (!atEnd())
        unexpected();
    return type;
}

std::vector<ParameterClause> Parser::wholeParameters() {
    std::vector<ParameterClause> parameters;
    if (!atEnd())
        parameters = parameterList();
    if (!atEnd())
        unexpected();
    return parameters;
}

// ---- tokens

bool Parser::acceptWord(std::string_view word) {
    if (!isWord(word))
        return false;
    take();
    return true;
}

void Parser::expectWord(std::string_view word) {
    if (!acceptWord(word))
        unexpected();
}

bool Parser::acceptSymbol(std::string_view symbol) {
    if (!isSymbol(symbol))
        return false;
    take();
    return true;
}

void Parser::expectSymbol(std::string_view symbol) {
    if (!acceptSymbol(symbol))
        unexpected();
}

void Parser::unexpected(const Token& token) const {
    if (token.kind == TokenKind::Unclosed)
        throw syntaxError(105, "Unclosed quotation mark after the character string '" + std::string(token.text.substr(0, 40)) + "'.",
                          token.line);
    if (token.kind == TokenKind::End) {
        const std::string near = at_ > 0 ? tokens_[at_ - 1].value() : std::string();
        throw syntaxError(102, "Incorrect syntax near '" + near + "'.", token.line);
    }
    if (token.kind == TokenKind::Word && isReservedWord(token.text))
        throw syntaxError(156, "Incorrect syntax near the keyword '" + std::string(token.text) + "'.", token.line);
    throw syntaxError(102, "Incorrect syntax near '" + token.value() + "'.", token.line);
}

void Parser::link(int& links) const {
    if (++links > kLongestChain)
        fail(191, "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller queries.");
}

void Parser::fail(int number, const std::string& message) const {
    throw syntaxError(number, message, peek().line);
}

// ---- names

// A word with a colon behind it begins a statement of its own: it is no alias, argument or name of what stands before it.
bool Parser::isLabel(std::size_t ahead) const {
    const Token& token = peek(ahead);
    return token.kind == TokenKind::Word && !isReservedWord(token.text) && isSymbol(":", ahead + 1);
}

bool Parser::isName(std::size_t ahead) const {
    const Token& token = peek(ahead);
    if (isLabel(ahead))
        return false;
    return token.kind == TokenKind::Quoted || (token.kind == TokenKind::Word && !isReservedWord(token.text));
}

std::string Parser::name() {
    if (!isName())
        unexpected();
    return take().value();
}

ObjectName Parser::objectName() {
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
        fail(117, "The object name '" + result.toText() + "' contains more than the maximum number of prefixes. The maximum is 3.");
    return result;
}

std::vector<std::string> Parser::nameList() {
    std::vector<std::string> names;
    expectSymbol("(");
    do {
        names.push_back(name());
    } while (acceptSymbol(","));
    expectSymbol(")");
    return names;
}

std::int64_t Parser::wholeNumber() {
    bool negative = false;
    while (isSymbol("-") || isSymbol("+"))
        negative = take().text == "-" ? !negative : negative;
    if (peek().kind != TokenKind::Integer || peek().text.size() > 18)
        unexpected();
    const std::int64_t number = std::stoll(std::string(take().text));
    return negative ? -number : number;
}

TypeName Parser::typeName() {
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

std::string Parser::sourceFrom(std::size_t begin) const {
    const std::size_t end = at_ > 0 ? tokens_[at_ - 1].end : begin;
    return std::string(text_.substr(begin, end - begin));
}

} // namespace merchantry::db::tsql
