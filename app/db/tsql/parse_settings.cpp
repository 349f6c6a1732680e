#include "app/db/tsql/parsing.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

std::string upper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return result;
}

} // namespace

StatementPtr parseSetOption(TokenReader& in) {
    auto statement = begun<SetOptionStatement>(in);
    in.take();
    if (in.isWord("TRANSACTION") && in.isWord("ISOLATION", 1)) {
        in.take();
        in.take();
        in.expectWord("LEVEL");
        statement->options.emplace_back("TRANSACTION ISOLATION LEVEL");
        if (in.isWord("READ")) {
            in.take();
            statement->value = "READ ";
        }
        if (in.isWord("REPEATABLE"))
            in.take();
        statement->value += upper(in.take().text);
        return statement;
    }
    do {
        const bool known = in.isName() || in.isWord("IDENTITY_INSERT") || in.isWord("ROWCOUNT") || in.isWord("STATISTICS");
        if (!known)
            in.unexpected();
        statement->options.push_back(upper(in.take().text));
        if (statement->options.back() == "STATISTICS")
            in.name();
    } while (in.acceptSymbol(","));
    if (statement->options[0] == "IDENTITY_INSERT")
        statement->table = in.objectName();
    if (in.isWord("ON") || in.isWord("OFF")) {
        statement->value = upper(in.take().text);
    } else if (in.peek().kind == TokenKind::Word || in.peek().kind == TokenKind::Text || in.peek().kind == TokenKind::WideText ||
               in.peek().kind == TokenKind::Quoted) {
        statement->value = upper(in.take().text);
    } else {
        statement->expr = parseUnary(in);
    }
    return statement;
}

} // namespace merchantry::db::tsql
