#include "app/db/tsql/parsing.h"

#include <array>

namespace merchantry::db::tsql {

std::string parseCursorName(TokenReader& in) {
    in.acceptWord("GLOBAL");
    if (in.peek().kind == TokenKind::Variable)
        return std::string(in.take().text);
    return in.name();
}

void parseCursorOptions(TokenReader& in, CursorStatement& cursor) {
    static constexpr std::array<std::string_view, 14> kOptions = {
        "INSENSITIVE", "SCROLL",       "LOCAL",     "GLOBAL",       "FORWARD_ONLY", "STATIC",       "KEYSET",
        "DYNAMIC",     "FAST_FORWARD", "READ_ONLY", "SCROLL_LOCKS", "OPTIMISTIC",   "TYPE_WARNING", "READ"};
    while (std::any_of(kOptions.begin(), kOptions.end(), [&](std::string_view word) { return in.isWord(word); })) {
        cursor.local = cursor.local || in.isWord("LOCAL");
        cursor.scroll = cursor.scroll || in.isWord("SCROLL");
        if (in.take().is("READ"))
            in.expectWord("ONLY");
    }
    if (!cursor.query || !in.isWord("FOR"))
        return;
    in.take();
    if (in.acceptWord("READ")) {
        in.expectWord("ONLY");
        return;
    }
    in.expectWord("UPDATE");
    if (in.acceptWord("OF")) {
        do {
            in.name();
        } while (in.acceptSymbol(","));
    }
}

StatementPtr parseCursorDeclaration(TokenReader& in, std::string name) {
    auto statement = begun<CursorStatement>(in);
    statement->name = std::move(name);
    parseCursorOptions(in, *statement);
    in.expectWord("CURSOR");
    parseCursorOptions(in, *statement);
    in.expectWord("FOR");
    statement->query = parseQuery(in);
    parseCursorOptions(in, *statement);
    return statement;
}

StatementPtr parseCursorAction(TokenReader& in, CursorStatement::Action action) {
    auto statement = begun<CursorStatement>(in);
    in.take();
    statement->action = action;
    statement->name = parseCursorName(in);
    return statement;
}

StatementPtr parseFetch(TokenReader& in) {
    using Fetch = CursorStatement::Fetch;
    auto statement = begun<CursorStatement>(in);
    in.take();
    statement->action = CursorStatement::Action::Fetch;
    static constexpr std::array<std::pair<std::string_view, Fetch>, 6> kWords = {{{"NEXT", Fetch::Next},
                                                                                  {"PRIOR", Fetch::Prior},
                                                                                  {"FIRST", Fetch::First},
                                                                                  {"LAST", Fetch::Last},
                                                                                  {"ABSOLUTE", Fetch::Absolute},
                                                                                  {"RELATIVE", Fetch::Relative}}};
    for (const auto& [word, fetch] : kWords) {
        if (!in.isWord(word) || in.isWord("INTO", 1))
            continue;
        in.take();
        statement->fetch = fetch;
        if (fetch == Fetch::Absolute || fetch == Fetch::Relative)
            statement->position = parseUnary(in);
        break;
    }
    in.acceptWord("FROM");
    statement->name = parseCursorName(in);
    if (in.acceptWord("INTO")) {
        do {
            if (in.peek().kind != TokenKind::Variable)
                in.unexpected();
            statement->into.emplace_back(in.take().text);
        } while (in.acceptSymbol(","));
    }
    return statement;
}

} // namespace merchantry::db::tsql
