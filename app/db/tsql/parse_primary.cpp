#include "app/db/tsql/parsing.h"

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

ExprPtr collated(TokenReader& in, ExprPtr value) {
    while (in.isWord("COLLATE")) {
        ExprPtr result = newExpr(in, ExprKind::Collate);
        in.take();
        result->text = in.name();
        result->args.push_back(std::move(value));
        value = std::move(result);
    }
    return value;
}

ExprPtr parenthesized(TokenReader& in) {
    const Nesting nesting(in);
    const int line = in.peek().line;
    in.expectSymbol("(");
    ExprPtr result;
    if (startsQuery(in)) {
        result = newExpr(in, ExprKind::Subquery);
        result->query = parseQuery(in);
    } else {
        result = parseExpression(in);
    }
    result->line = line;
    in.expectSymbol(")");
    return result;
}

ExprPtr caseExpression(TokenReader& in) {
    const Nesting nesting(in);
    ExprPtr result = newExpr(in, ExprKind::Case);
    in.take();
    if (!in.isWord("WHEN"))
        result->input = parseValue(in);
    if (!in.isWord("WHEN"))
        in.unexpected();
    while (in.acceptWord("WHEN")) {
        result->args.push_back(result->input ? parseValue(in) : parseCondition(in));
        in.expectWord("THEN");
        result->args.push_back(parseValue(in));
    }
    if (in.acceptWord("ELSE")) {
        result->hasElse = true;
        result->args.push_back(parseValue(in));
    }
    in.expectWord("END");
    return result;
}

ExprPtr castExpression(TokenReader& in) {
    ExprPtr result = newExpr(in, ExprKind::Cast);
    result->text = in.take().is("CAST") ? "CAST" : "TRY_CAST";
    in.expectSymbol("(");
    result->args.push_back(parseValue(in));
    in.expectWord("AS");
    result->type = in.typeName();
    in.expectSymbol(")");
    return result;
}

ExprPtr convertExpression(TokenReader& in) {
    ExprPtr result = newExpr(in, ExprKind::Cast);
    result->text = in.take().is("CONVERT") ? "CONVERT" : "TRY_CONVERT";
    in.expectSymbol("(");
    result->type = in.typeName();
    in.expectSymbol(",");
    result->args.push_back(parseValue(in));
    if (in.acceptSymbol(","))
        result->args.push_back(parseValue(in));
    in.expectSymbol(")");
    return result;
}

std::unique_ptr<WindowSpec> window(TokenReader& in) {
    auto result = std::make_unique<WindowSpec>();
    in.expectWord("OVER");
    in.expectSymbol("(");
    if (in.acceptWord("PARTITION")) {
        in.expectWord("BY");
        result->partition = parseExpressionList(in);
    }
    if (in.isWord("ORDER")) {
        in.take();
        in.expectWord("BY");
        result->order = parseOrderItems(in);
    }
    if (in.isWord("ROWS") || in.isWord("RANGE")) {
        const std::size_t begin = in.peek().begin;
        while (!in.isSymbol(")")) {
            static constexpr std::array<std::string_view, 9> kWords = {"ROWS",      "RANGE",   "BETWEEN", "UNBOUNDED", "PRECEDING",
                                                                       "FOLLOWING", "CURRENT", "ROW",     "AND"};
            const bool known = std::any_of(kWords.begin(), kWords.end(), [&](std::string_view word) { return in.isWord(word); });
            if (!known && in.peek().kind != TokenKind::Integer)
                in.unexpected();
            in.take();
        }
        result->frame = in.sourceFrom(begin);
    }
    in.expectSymbol(")");
    return result;
}

ExprPtr call(TokenReader& in, ObjectName name, int line) {
    const Nesting nesting(in);
    ExprPtr result = newExpr(in, ExprKind::Function);
    result->line = line;
    result->name = std::move(name);
    in.expectSymbol("(");
    if (in.isSymbol("*") && in.isSymbol(")", 1)) {
        in.take();
        result->star = true;
    } else if (!in.isSymbol(")")) {
        if (in.acceptWord("DISTINCT"))
            result->distinct = true;
        else
            in.acceptWord("ALL");
        do {
            if (in.isWord("DEFAULT")) {
                result->args.push_back(newExpr(in, ExprKind::Default));
                in.take();
            } else if (sameName(result->name.last(), "IIF") && result->args.empty()) {
                result->args.push_back(parseCondition(in));
            } else {
                result->args.push_back(parseValue(in));
            }
        } while (in.acceptSymbol(","));
    }
    in.expectSymbol(")");
    if (in.isWord("OVER") && in.isSymbol("(", 1))
        result->window = window(in);
    return result;
}

ExprPtr nameOrCall(TokenReader& in) {
    const int line = in.peek().line;
    static constexpr std::array<std::string_view, 10> kFunctionWords = {"LEFT",     "RIGHT",   "COALESCE",    "NULLIF",   "UPDATE",
                                                                        "IDENTITY", "CONVERT", "REPLICATION", "TRUNCATE", "CHECKSUM"};
    static constexpr std::array<std::string_view, 5> kValueWords = {"USER", "SYSTEM_USER", "CURRENT_USER", "SESSION_USER",
                                                                    "CURRENT_TIMESTAMP"};
    if (in.peek().kind == TokenKind::Word && !in.isSymbol("(", 1)) {
        for (const std::string_view word : kValueWords) {
            if (!in.isWord(word) || in.isSymbol(".", 1))
                continue;
            ExprPtr result = newExpr(in, ExprKind::Function);
            in.take();
            result->name.parts.emplace_back(word);
            return result;
        }
    }
    if (in.peek().kind == TokenKind::Word && in.isSymbol("(", 1)) {
        for (const std::string_view word : kFunctionWords) {
            if (!in.isWord(word))
                continue;
            ObjectName name;
            name.line = line;
            name.parts.emplace_back(in.take().text);
            return call(in, std::move(name), line);
        }
    }
    ObjectName name = in.objectName();
    if (in.isSymbol("("))
        return call(in, std::move(name), line);
    ExprPtr result = newExpr(in, ExprKind::Column);
    result->line = line;
    result->name = std::move(name);
    return result;
}

} // namespace

ExprPtr parsePrimary(TokenReader& in) {
    const Token& token = in.peek();
    switch (token.kind) {
    case TokenKind::Integer:
    case TokenKind::Number:
    case TokenKind::Float:
    case TokenKind::Money:
    case TokenKind::Text:
    case TokenKind::WideText:
    case TokenKind::Binary:
        return collated(in, parseLiteral(in));
    case TokenKind::Variable:
    case TokenKind::SystemVariable: {
        ExprPtr result = newExpr(in, token.kind == TokenKind::Variable ? ExprKind::Variable : ExprKind::SystemVariable);
        result->text = in.take().text;
        return collated(in, std::move(result));
    }
    case TokenKind::Symbol:
        if (token.text == "(")
            return collated(in, parenthesized(in));
        break;
    case TokenKind::Quoted:
        return collated(in, nameOrCall(in));
    case TokenKind::Word:
        if (token.is("NULL")) {
            ExprPtr result = newExpr(in, ExprKind::Null);
            in.take();
            return result;
        }
        if (token.is("CASE"))
            return caseExpression(in);
        if (token.is("CAST") || token.is("TRY_CAST"))
            return collated(in, castExpression(in));
        if (token.is("CONVERT") || token.is("TRY_CONVERT"))
            return collated(in, convertExpression(in));
        return collated(in, nameOrCall(in));
    case TokenKind::Unclosed:
    case TokenKind::End:
        break;
    }
    in.unexpected();
}

ExprPtr parseLiteral(TokenReader& in) {
    ExprPtr result = newExpr(in, ExprKind::Integer);
    if (digitsOf(in.peek()) > kMostDigits)
        in.fail(Message::NumberTooLong, {in.peek().value()});
    const Token& token = in.take();
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
        in.unexpected(token);
    }
    result->text = token.value();
    return result;
}

std::vector<ExprPtr> parseExpressionList(TokenReader& in) {
    std::vector<ExprPtr> list;
    do {
        list.push_back(parseValue(in));
    } while (in.acceptSymbol(","));
    return list;
}

std::vector<OrderItem> parseOrderItems(TokenReader& in) {
    std::vector<OrderItem> items;
    do {
        OrderItem item;
        item.expr = parseValue(in);
        if (in.acceptWord("DESC"))
            item.descending = true;
        else
            in.acceptWord("ASC");
        items.push_back(std::move(item));
    } while (in.acceptSymbol(","));
    return items;
}

ExprPtr parseSourced(TokenReader& in, const std::function<ExprPtr()>& read) {
    const std::size_t begin = in.peek().begin;
    ExprPtr result = read();
    result->source = in.sourceFrom(begin);
    return result;
}

} // namespace merchantry::db::tsql
