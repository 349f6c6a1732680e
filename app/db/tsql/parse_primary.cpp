#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {
namespace {

constexpr std::size_t kMostDigits = 38; // of a decimal

// Of a number, without zeros in front.
std::size_t digitsOf(const Token& token) {
    if (token.kind != TokenKind::Integer && token.kind != TokenKind::Number)
        return 0;
    const std::size_t first = std::min(token.text.find_first_not_of('0'), token.text.size());
    return token.text.size() - first - (token.kind == TokenKind::Number ? 1 : 0);
}

} // namespace

ExprPtr Parser::primary() {
    const Token& token = peek();
    switch (token.kind) {
    case TokenKind::Integer:
    case TokenKind::Number:
    case TokenKind::Float:
    case TokenKind::Money:
    case TokenKind::Text:
    case TokenKind::WideText:
    case TokenKind::Binary:
        return collated(literal());
    case TokenKind::Variable:
    case TokenKind::SystemVariable: {
        ExprPtr result = make(token.kind == TokenKind::Variable ? ExprKind::Variable : ExprKind::SystemVariable);
        result->text = take().text;
        return collated(std::move(result));
    }
    case TokenKind::Symbol:
        if (token.text == "(")
            return collated(parenthesized());
        break;
    case TokenKind::Quoted:
        return collated(nameOrCall());
    case TokenKind::Word:
        if (token.is("NULL")) {
            ExprPtr result = make(ExprKind::Null);
            take();
            return result;
        }
        if (token.is("CASE"))
            return caseExpression();
        if (token.is("CAST") || token.is("TRY_CAST"))
            return collated(castExpression());
        if (token.is("CONVERT") || token.is("TRY_CONVERT"))
            return collated(convertExpression());
        return collated(nameOrCall());
    case TokenKind::Unclosed:
    case TokenKind::End:
        break;
    }
    unexpected();
}

ExprPtr Parser::collated(ExprPtr value) {
    while (isWord("COLLATE")) {
        ExprPtr result = make(ExprKind::Collate);
        take();
        result->text = name();
        result->args.push_back(std::move(value));
        value = std::move(result);
    }
    return value;
}

ExprPtr Parser::literal() {
    ExprPtr result = make(ExprKind::Integer);
    if (digitsOf(peek()) > kMostDigits)
        fail(1007, "The number '" + peek().value() + "' is out of the range for numeric representation (maximum precision 38).");
    const Token& token = take();
    switch (token.kind) {
    case TokenKind::Integer:
        result->kind = ExprKind::Integer;
        break;
    case TokenKind::Number:
        result->kind = ExprKind::Number;
        break;
    case TokenKind::Float:
        result->kind = ExprKind::Float;
        break;
    case TokenKind::Money:
        result->kind = ExprKind::Money;
        break;
    case TokenKind::Text:
        result->kind = ExprKind::Text;
        break;
    case TokenKind::WideText:
        result->kind = ExprKind::WideText;
        break;
    case TokenKind::Binary:
        result->kind = ExprKind::Binary;
        break;
    default:
        unexpected(token);
    }
    result->text = token.value();
    return result;
}

ExprPtr Parser::parenthesized() {
    const Nesting nesting(*this);
    const int line = peek().line;
    expectSymbol("(");
    ExprPtr result;
    if (startsQuery()) {
        result = make(ExprKind::Subquery);
        result->query = query();
    } else {
        result = expression();
    }
    result->line = line;
    expectSymbol(")");
    return result;
}

ExprPtr Parser::caseExpression() {
    const Nesting nesting(*this);
    ExprPtr result = make(ExprKind::Case);
    take();
    if (!isWord("WHEN"))
        result->input = value();
    if (!isWord("WHEN"))
        unexpected();
    while (acceptWord("WHEN")) {
        result->args.push_back(result->input ? value() : condition());
        expectWord("THEN");
        result->args.push_back(value());
    }
    if (acceptWord("ELSE")) {
        result->hasElse = true;
        result->args.push_back(value());
    }
    expectWord("END");
    return result;
}

ExprPtr Parser::castExpression() {
    ExprPtr result = make(ExprKind::Cast);
    result->text = take().is("CAST") ? "CAST" : "TRY_CAST";
    expectSymbol("(");
    result->args.push_back(value());
    expectWord("AS");
    result->type = typeName();
    expectSymbol(")");
    return result;
}

ExprPtr Parser::convertExpression() {
    ExprPtr result = make(ExprKind::Cast);
    result->text = take().is("CONVERT") ? "CONVERT" : "TRY_CONVERT";
    expectSymbol("(");
    result->type = typeName();
    expectSymbol(",");
    result->args.push_back(value());
    if (acceptSymbol(","))
        result->args.push_back(value());
    expectSymbol(")");
    return result;
}

ExprPtr Parser::nameOrCall() {
    const int line = peek().line;
    static constexpr std::array<std::string_view, 10> kFunctionWords = {"LEFT",     "RIGHT",   "COALESCE",    "NULLIF",   "UPDATE",
                                                                        "IDENTITY", "CONVERT", "REPLICATION", "TRUNCATE", "CHECKSUM"};
    static constexpr std::array<std::string_view, 5> kValueWords = {"USER", "SYSTEM_USER", "CURRENT_USER", "SESSION_USER",
                                                                    "CURRENT_TIMESTAMP"};
    if (peek().kind == TokenKind::Word && !isSymbol("(", 1)) {
        for (const std::string_view word : kValueWords) {
            if (!isWord(word) || isSymbol(".", 1))
                continue;
            ExprPtr result = make(ExprKind::Function);
            take();
            result->name.parts.emplace_back(word);
            return result;
        }
    }
    if (peek().kind == TokenKind::Word && isSymbol("(", 1)) {
        for (const std::string_view word : kFunctionWords) {
            if (!isWord(word))
                continue;
            ObjectName name;
            name.line = line;
            name.parts.emplace_back(take().text);
            return call(std::move(name), line);
        }
    }
    ObjectName name = objectName();
    if (isSymbol("("))
        return call(std::move(name), line);
    ExprPtr result = make(ExprKind::Column);
    result->line = line;
    result->name = std::move(name);
    return result;
}

ExprPtr Parser::call(ObjectName name, int line) {
    const Nesting nesting(*this);
    ExprPtr result = make(ExprKind::Function);
    result->line = line;
    result->name = std::move(name);
    expectSymbol("(");
    if (isSymbol("*") && isSymbol(")", 1)) {
        take();
        result->star = true;
    } else if (!isSymbol(")")) {
        if (acceptWord("DISTINCT"))
            result->distinct = true;
        else
            acceptWord("ALL");
        do {
            if (isWord("DEFAULT")) {
                result->args.push_back(make(ExprKind::Default));
                take();
            } else if (sameName(result->name.last(), "IIF") && result->args.empty()) {
                result->args.push_back(condition());
            } else {
                result->args.push_back(value());
            }
        } while (acceptSymbol(","));
    }
    expectSymbol(")");
    if (isWord("OVER") && isSymbol("(", 1))
        result->window = window();
    return result;
}

std::unique_ptr<WindowSpec> Parser::window() {
    auto result = std::make_unique<WindowSpec>();
    expectWord("OVER");
    expectSymbol("(");
    if (acceptWord("PARTITION")) {
        expectWord("BY");
        result->partition = expressionList();
    }
    if (isWord("ORDER")) {
        take();
        expectWord("BY");
        result->order = orderItems();
    }
    if (isWord("ROWS") || isWord("RANGE")) {
        const std::size_t begin = peek().begin;
        while (!isSymbol(")")) {
            static constexpr std::array<std::string_view, 9> kWords = {"ROWS",      "RANGE",   "BETWEEN", "UNBOUNDED", "PRECEDING",
                                                                       "FOLLOWING", "CURRENT", "ROW",     "AND"};
            const bool known = std::any_of(kWords.begin(), kWords.end(), [&](std::string_view word) { return isWord(word); });
            if (!known && peek().kind != TokenKind::Integer)
                unexpected();
            take();
        }
        result->frame = sourceFrom(begin);
    }
    expectSymbol(")");
    return result;
}

std::vector<ExprPtr> Parser::expressionList() {
    std::vector<ExprPtr> list;
    do {
        list.push_back(value());
    } while (acceptSymbol(","));
    return list;
}

std::vector<OrderItem> Parser::orderItems() {
    std::vector<OrderItem> items;
    do {
        OrderItem item;
        item.expr = value();
        if (acceptWord("DESC"))
            item.descending = true;
        else
            acceptWord("ASC");
        items.push_back(std::move(item));
    } while (acceptSymbol(","));
    return items;
}

ExprPtr Parser::sourced(const std::function<ExprPtr()>& read) {
    const std::size_t begin = peek().begin;
    ExprPtr result = read();
    result->source = sourceFrom(begin);
    return result;
}

} // namespace merchantry::db::tsql
