#include "app/db/tsql/parsing.h"

#include <array>

namespace merchantry::db::tsql {
namespace {

// Reads a statement without effect up to where the next one can begin.
StatementPtr nothing(TokenReader& in) {
    auto statement = std::make_unique<Statement>(StatementKind::Nothing);
    if (in.take().is("CHECKPOINT"))
        return statement;
    static constexpr std::array<std::string_view, 23> kStarts = {
        "GRANT",   "SELECT", "UPDATE", "INSERT",     "EXEC", "EXECUTE", "CREATE", "DROP",  "DELETE",    "DENY",   "REVOKE", "SET",
        "DECLARE", "PRINT",  "IF",     "CHECKPOINT", "END",  "ELSE",    "BEGIN",  "WHILE", "RAISERROR", "RETURN", "USE"};
    bool sawTo = false;
    while (!in.atEnd() && !in.isSymbol(";") && !in.isLabel()) {
        const bool starts = std::any_of(kStarts.begin(), kStarts.end(), [&](std::string_view word) { return in.isWord(word); });
        // Behind GRANT stand the names of statements; they end at ON or TO.
        if (starts && (sawTo || (!in.isSymbol(",", 1) && !in.isWord("ON", 1) && !in.isWord("TO", 1) && !in.isWord("TABLE", 1) &&
                                 !in.isWord("FROM", 1))))
            break;
        sawTo = sawTo || in.isWord("TO") || in.isWord("FROM");
        in.take();
    }
    return statement;
}

StatementPtr use(TokenReader& in) {
    auto statement = begun<UseStatement>(in);
    in.take();
    statement->database = in.name();
    return statement;
}

StatementPtr create(TokenReader& in) {
    const std::size_t begin = in.peek().begin;
    in.take();
    if (in.isWord("TABLE"))
        return parseCreateTable(in);
    if (in.isWord("UNIQUE") || in.isWord("CLUSTERED") || in.isWord("NONCLUSTERED") || in.isWord("INDEX"))
        return parseCreateIndex(in);
    if (in.isWord("VIEW"))
        return parseCreateView(in, false, begin);
    if (in.isWord("PROC") || in.isWord("PROCEDURE"))
        return parseCreateProcedure(in, false, begin);
    if (in.isWord("FUNCTION"))
        return parseCreateFunction(in, false, begin);
    if (in.isWord("TRIGGER"))
        return parseCreateTrigger(in, false, begin);
    if (in.isWord("TYPE"))
        return parseCreateType(in);
    if (in.isWord("DATABASE") || in.isWord("STATISTICS") || in.isWord("LOGIN") || in.isWord("USER") || in.isWord("ROLE") ||
        in.isWord("SCHEMA"))
        return nothing(in);
    if (in.isWord("RULE") || in.isWord("DEFAULT"))
        return parseUnsupported(in, "CREATE " + std::string(in.isWord("RULE") ? "RULE" : "DEFAULT"));
    in.unexpected();
}

StatementPtr alter(TokenReader& in) {
    const std::size_t begin = in.peek().begin;
    in.take();
    if (in.isWord("TABLE"))
        return parseAlterTable(in);
    if (in.isWord("VIEW"))
        return parseCreateView(in, true, begin);
    if (in.isWord("PROC") || in.isWord("PROCEDURE"))
        return parseCreateProcedure(in, true, begin);
    if (in.isWord("FUNCTION"))
        return parseCreateFunction(in, true, begin);
    if (in.isWord("TRIGGER"))
        return parseCreateTrigger(in, true, begin);
    if (in.isWord("DATABASE") || in.isWord("INDEX") || in.isWord("AUTHORIZATION")) {
        auto statement = std::make_unique<Statement>(StatementKind::Nothing);
        while (!in.atEnd() && !in.isSymbol(";"))
            in.take();
        return statement;
    }
    in.unexpected();
}

StatementPtr dropIndex(TokenReader& in) {
    auto statement = begun<DropStatement>(in);
    statement->what = "INDEX";
    in.take();
    if (in.isWord("IF") && in.isWord("EXISTS", 1)) {
        in.take();
        in.take();
        statement->ifExists = true;
    }
    statement->names.push_back(in.objectName());
    if (in.acceptWord("ON")) {
        statement->onTable = in.objectName();
    } else {
        ObjectName& name = statement->names[0];
        if (name.parts.size() < 2)
            in.fail(Message::IndexWithoutTable);
        statement->onTable.line = name.line;
        statement->onTable.parts.assign(name.parts.begin(), name.parts.end() - 1);
        name.parts.erase(name.parts.begin(), name.parts.end() - 1);
    }
    return statement;
}

StatementPtr drop(TokenReader& in) {
    auto statement = begun<DropStatement>(in);
    in.take();
    if (in.isWord("INDEX"))
        return dropIndex(in);
    static constexpr std::array<std::string_view, 7> kKinds = {"TABLE", "VIEW", "PROCEDURE", "PROC", "FUNCTION", "TRIGGER", "TYPE"};
    for (const std::string_view kind : kKinds) {
        if (in.isWord(kind))
            statement->what = kind == "PROC" ? "PROCEDURE" : kind;
    }
    if (statement->what.empty()) {
        if (in.isWord("DATABASE") || in.isWord("STATISTICS") || in.isWord("USER") || in.isWord("LOGIN") || in.isWord("ROLE"))
            return nothing(in);
        if (in.isWord("RULE") || in.isWord("DEFAULT"))
            return parseUnsupported(in, "DROP " + in.peek().value());
        in.unexpected();
    }
    in.take();
    if (in.isWord("IF") && in.isWord("EXISTS", 1)) {
        in.take();
        in.take();
        statement->ifExists = true;
    }
    do {
        statement->names.push_back(in.objectName());
    } while (in.acceptSymbol(","));
    return statement;
}

// A statement that its first word tells; null for any other.
StatementPtr statementByWord(TokenReader& in) {
    using Read = StatementPtr (*)(TokenReader&);
    struct Entry {
        std::string_view word;
        Read read;
    };
    static constexpr std::array kEntries = std::to_array<Entry>({
        {"SELECT", &parseSelect},   {"WITH", &parseWith},       {"INSERT", &parseInsert},
        {"UPDATE", &parseUpdate},   {"DELETE", &parseDelete},   {"TRUNCATE", &parseTruncate},
        {"CREATE", &create},        {"ALTER", &alter},          {"DROP", &drop},
        {"DECLARE", &parseDeclare}, {"SET", &parseSet},         {"IF", &parseIf},
        {"WHILE", &parseWhile},     {"BEGIN", &parseBegin},     {"RETURN", &parseReturn},
        {"GOTO", &parseGoto},       {"RAISERROR", &parseRaise}, {"THROW", &parseThrow},
        {"PRINT", &parsePrint},     {"WAITFOR", &parseWaitFor}, {"USE", &use},
        {"FETCH", &parseFetch},
    });
    for (const Entry& entry : kEntries) {
        if (in.isWord(entry.word))
            return entry.read(in);
    }
    return nullptr;
}

StatementPtr statementOf(TokenReader& in) {
    if (StatementPtr statement = statementByWord(in))
        return statement;
    if (in.isSymbol("(") && startsQuery(in))
        return parseSelect(in);
    if (in.isWord("EXEC") || in.isWord("EXECUTE"))
        return parseExecute(in, true);
    if (in.isWord("COMMIT"))
        return parseTransaction(in, StatementKind::Commit);
    if (in.isWord("ROLLBACK"))
        return parseTransaction(in, StatementKind::Rollback);
    if (in.isWord("SAVE"))
        return parseTransaction(in, StatementKind::Save);
    if (in.isWord("OPEN"))
        return parseCursorAction(in, CursorStatement::Action::Open);
    if (in.isWord("CLOSE"))
        return parseCursorAction(in, CursorStatement::Action::Close);
    if (in.isWord("DEALLOCATE"))
        return parseCursorAction(in, CursorStatement::Action::Deallocate);
    if (in.isWord("BREAK") || in.isWord("CONTINUE")) {
        if (in.state.loops == 0)
            in.fail(in.isWord("BREAK") ? Message::BreakOutsideLoop : Message::ContinueOutsideLoop);
        return std::make_unique<Statement>(in.take().is("BREAK") ? StatementKind::Break : StatementKind::Continue);
    }
    if (in.isWord("MERGE") || in.isWord("BACKUP") || in.isWord("RESTORE"))
        return parseUnsupported(in, in.peek().value());
    if (in.isWord("GRANT") || in.isWord("REVOKE") || in.isWord("DENY") || in.isWord("CHECKPOINT") || in.isWord("RECONFIGURE") ||
        in.isWord("DBCC"))
        return nothing(in);
    if (in.isLabel()) {
        auto label = std::make_unique<GotoStatement>(StatementKind::Label);
        label->label = in.take().value();
        in.take();
        return label;
    }
    if (in.state.batchStart && in.isName())
        return parseExecute(in, false);
    in.unexpected();
}

} // namespace

Block parseBlock(TokenReader& in, const std::function<bool()>& ends) {
    Block statements;
    while (true) {
        while (in.acceptSymbol(";")) {
        }
        if (ends())
            return statements;
        if (in.atEnd())
            in.unexpected();
        statements.push_back(parseStatement(in));
        in.state.batchStart = false;
    }
}

StatementPtr parseStatement(TokenReader& in) {
    const Nesting nesting(in);
    const int line = in.peek().line;
    StatementPtr result = statementOf(in);
    result->line = line;
    result->number = in.state.statements++;
    return result;
}

StatementPtr parseUnsupported(TokenReader& in, const std::string& feature) {
    auto statement = begun<UnsupportedStatement>(in);
    statement->feature = feature;
    while (!in.atEnd())
        in.take();
    return statement;
}

} // namespace merchantry::db::tsql
