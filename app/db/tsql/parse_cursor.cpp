#include "app/db/tsql/parser.h"

#include <array>

namespace merchantry::db::tsql {

std::string Parser::cursorName() {
    acceptWord("GLOBAL");
    if (peek().kind == TokenKind::Variable)
        return std::string(take().text);
    return name();
}

void Parser::cursorOptions(CursorStatement& cursor) {
    static constexpr std::array<std::string_view, 14> kOptions = {
        "INSENSITIVE", "SCROLL",       "LOCAL",     "GLOBAL",       "FORWARD_ONLY", "STATIC",       "KEYSET",
        "DYNAMIC",     "FAST_FORWARD", "READ_ONLY", "SCROLL_LOCKS", "OPTIMISTIC",   "TYPE_WARNING", "READ"};
    while (std::any_of(kOptions.begin(), kOptions.end(), [&](std::string_view word) { return isWord(word); })) {
        cursor.local = cursor.local || isWord("LOCAL");
        cursor.scroll = cursor.scroll || isWord("SCROLL");
        if (take().is("READ"))
            expectWord("ONLY");
    }
    if (!cursor.query || !isWord("FOR"))
        return;
    take();
    if (acceptWord("READ")) {
        expectWord("ONLY");
        return;
    }
    expectWord("UPDATE");
    if (acceptWord("OF")) {
        do {
            name();
        } while (acceptSymbol(","));
    }
}

StatementPtr Parser::cursorDeclaration(std::string name) {
    auto statement = begin<CursorStatement>();
    statement->name = std::move(name);
    cursorOptions(*statement);
    expectWord("CURSOR");
    cursorOptions(*statement);
    expectWord("FOR");
    statement->query = query();
    cursorOptions(*statement);
    return statement;
}

StatementPtr Parser::cursorAction(CursorStatement::Action action) {
    auto statement = begin<CursorStatement>();
    take();
    statement->action = action;
    statement->name = cursorName();
    return statement;
}

StatementPtr Parser::fetch() {
    using Fetch = CursorStatement::Fetch;
    auto statement = begin<CursorStatement>();
    take();
    statement->action = CursorStatement::Action::Fetch;
    static constexpr std::array<std::pair<std::string_view, Fetch>, 6> kWords = {{{"NEXT", Fetch::Next},
                                                                                  {"PRIOR", Fetch::Prior},
                                                                                  {"FIRST", Fetch::First},
                                                                                  {"LAST", Fetch::Last},
                                                                                  {"ABSOLUTE", Fetch::Absolute},
                                                                                  {"RELATIVE", Fetch::Relative}}};
    for (const auto& [word, fetch] : kWords) {
        if (!isWord(word) || isWord("INTO", 1))
            continue;
        take();
        statement->fetch = fetch;
        if (fetch == Fetch::Absolute || fetch == Fetch::Relative)
            statement->position = unary();
        break;
    }
    acceptWord("FROM");
    statement->name = cursorName();
    if (acceptWord("INTO")) {
        do {
            if (peek().kind != TokenKind::Variable)
                unexpected();
            statement->into.emplace_back(take().text);
        } while (acceptSymbol(","));
    }
    return statement;
}

} // namespace merchantry::db::tsql
