#include "app/db/tsql/parser.h"

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

StatementPtr Parser::setOption() {
    auto statement = begin<SetOptionStatement>();
    take();
    if (isWord("TRANSACTION") && isWord("ISOLATION", 1)) {
        take();
        take();
        expectWord("LEVEL");
        statement->options.emplace_back("TRANSACTION ISOLATION LEVEL");
        if (isWord("READ")) {
            take();
            statement->value = "READ ";
        }
        if (isWord("REPEATABLE"))
            take();
        statement->value += upper(take().text);
        return statement;
    }
    do {
        const bool known = isName() || isWord("IDENTITY_INSERT") || isWord("ROWCOUNT") || isWord("STATISTICS");
        if (!known)
            unexpected();
        statement->options.push_back(upper(take().text));
        if (statement->options.back() == "STATISTICS")
            name();
    } while (acceptSymbol(","));
    if (statement->options[0] == "IDENTITY_INSERT")
        statement->table = objectName();
    if (isWord("ON") || isWord("OFF")) {
        statement->value = upper(take().text);
    } else if (peek().kind == TokenKind::Word || peek().kind == TokenKind::Text || peek().kind == TokenKind::WideText ||
               peek().kind == TokenKind::Quoted) {
        statement->value = upper(take().text);
    } else {
        statement->expr = unary();
    }
    return statement;
}

} // namespace merchantry::db::tsql
