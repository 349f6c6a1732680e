#include "app/db/tsql/parser.h"

#include <array>

namespace merchantry::db::tsql {

Block Parser::block(const std::function<bool()>& ends) {
    Block statements;
    while (true) {
        while (acceptSymbol(";")) {
        }
        if (ends())
            return statements;
        if (atEnd())
            unexpected();
        statements.push_back(statement());
        batchStart_ = false;
    }
}

StatementPtr Parser::statement() {
    const Nesting nesting(*this);
    const int line = peek().line;
    StatementPtr result = statementOf();
    result->line = line;
    result->number = count_++;
    return result;
}

// A statement that its first word tells; null for any other.
StatementPtr Parser::statementByWord() {
    using Read = StatementPtr (Parser::*)();
    struct Entry {
        std::string_view word;
        Read read;
    };
    static constexpr std::array kEntries = std::to_array<Entry>({
        {"SELECT", &Parser::select},
        {"WITH", &Parser::withStatement},
        {"INSERT", &Parser::insert},
        {"UPDATE", &Parser::update},
        {"DELETE", &Parser::deleteFrom},
        {"TRUNCATE", &Parser::truncate},
        {"CREATE", &Parser::create},
        {"ALTER", &Parser::alter},
        {"DROP", &Parser::drop},
        {"DECLARE", &Parser::declare},
        {"SET", &Parser::set},
        {"IF", &Parser::ifStatement},
        {"WHILE", &Parser::whileStatement},
        {"BEGIN", &Parser::beginStatement},
        {"RETURN", &Parser::returnStatement},
        {"GOTO", &Parser::gotoStatement},
        {"RAISERROR", &Parser::raise},
        {"THROW", &Parser::throwStatement},
        {"PRINT", &Parser::print},
        {"WAITFOR", &Parser::waitFor},
        {"USE", &Parser::use},
        {"FETCH", &Parser::fetch},
    });
    for (const Entry& entry : kEntries) {
        if (isWord(entry.word))
            return (this->*entry.read)();
    }
    return nullptr;
}

StatementPtr Parser::statementOf() {
    if (StatementPtr statement = statementByWord())
        return statement;
    if (isSymbol("(") && startsQuery())
        return select();
    if (isWord("EXEC") || isWord("EXECUTE"))
        return execute(true);
    if (isWord("COMMIT"))
        return transaction(StatementKind::Commit);
    if (isWord("ROLLBACK"))
        return transaction(StatementKind::Rollback);
    if (isWord("SAVE"))
        return transaction(StatementKind::Save);
    if (isWord("OPEN"))
        return cursorAction(CursorStatement::Action::Open);
    if (isWord("CLOSE"))
        return cursorAction(CursorStatement::Action::Close);
    if (isWord("DEALLOCATE"))
        return cursorAction(CursorStatement::Action::Deallocate);
    if (isWord("BREAK") || isWord("CONTINUE")) {
        if (loops_ == 0)
            fail(isWord("BREAK") ? 135 : 136, "Cannot use a " + peek().value() + " statement outside the scope of a WHILE statement.");
        return std::make_unique<Statement>(take().is("BREAK") ? StatementKind::Break : StatementKind::Continue);
    }
    if (isWord("MERGE"))
        return unsupported("MERGE");
    if (isWord("GRANT") || isWord("REVOKE") || isWord("DENY") || isWord("CHECKPOINT") || isWord("RECONFIGURE") || isWord("DBCC") ||
        isWord("BACKUP"))
        return nothing();
    if (isLabel()) {
        auto label = std::make_unique<GotoStatement>(StatementKind::Label);
        label->label = take().value();
        take();
        return label;
    }
    if (batchStart_ && isName())
        return execute(false);
    unexpected();
}

// Reads a statement without effect up to where the next one can begin.
StatementPtr Parser::nothing() {
    auto statement = std::make_unique<Statement>(StatementKind::Nothing);
    if (take().is("CHECKPOINT"))
        return statement;
    static constexpr std::array<std::string_view, 23> kStarts = {
        "GRANT",   "SELECT", "UPDATE", "INSERT",     "EXEC", "EXECUTE", "CREATE", "DROP",  "DELETE",    "DENY",   "REVOKE", "SET",
        "DECLARE", "PRINT",  "IF",     "CHECKPOINT", "END",  "ELSE",    "BEGIN",  "WHILE", "RAISERROR", "RETURN", "USE"};
    bool sawTo = false;
    while (!atEnd() && !isSymbol(";") && !isLabel()) {
        const bool starts = std::any_of(kStarts.begin(), kStarts.end(), [&](std::string_view word) { return isWord(word); });
        // Behind GRANT stand the names of statements; they end at ON or TO.
        if (starts && (sawTo || (!isSymbol(",", 1) && !isWord("ON", 1) && !isWord("TO", 1) && !isWord("TABLE", 1) && !isWord("FROM", 1))))
            break;
        sawTo = sawTo || isWord("TO") || isWord("FROM");
        take();
    }
    return statement;
}

// Reads to the end of the batch.
StatementPtr Parser::unsupported(const std::string& feature) {
    auto statement = begin<UnsupportedStatement>();
    statement->feature = feature;
    while (!atEnd())
        take();
    return statement;
}

StatementPtr Parser::use() {
    auto statement = begin<UseStatement>();
    take();
    statement->database = name();
    return statement;
}

StatementPtr Parser::create() {
    const std::size_t begin = peek().begin;
    take();
    if (isWord("TABLE"))
        return createTable();
    if (isWord("UNIQUE") || isWord("CLUSTERED") || isWord("NONCLUSTERED") || isWord("INDEX"))
        return createIndex();
    if (isWord("VIEW"))
        return createView(false, begin);
    if (isWord("PROC") || isWord("PROCEDURE"))
        return createProcedure(false, begin);
    if (isWord("FUNCTION"))
        return createFunction(false, begin);
    if (isWord("TRIGGER"))
        return createTrigger(false, begin);
    if (isWord("TYPE"))
        return createType();
    if (isWord("DATABASE") || isWord("STATISTICS") || isWord("LOGIN") || isWord("USER") || isWord("ROLE") || isWord("SCHEMA"))
        return nothing();
    if (isWord("RULE") || isWord("DEFAULT"))
        return unsupported("CREATE " + std::string(isWord("RULE") ? "RULE" : "DEFAULT"));
    unexpected();
}

StatementPtr Parser::alter() {
    const std::size_t begin = peek().begin;
    take();
    if (isWord("TABLE"))
        return alterTable();
    if (isWord("VIEW"))
        return createView(true, begin);
    if (isWord("PROC") || isWord("PROCEDURE"))
        return createProcedure(true, begin);
    if (isWord("FUNCTION"))
        return createFunction(true, begin);
    if (isWord("TRIGGER"))
        return createTrigger(true, begin);
    if (isWord("DATABASE") || isWord("INDEX") || isWord("AUTHORIZATION")) {
        auto statement = std::make_unique<Statement>(StatementKind::Nothing);
        while (!atEnd() && !isSymbol(";"))
            take();
        return statement;
    }
    unexpected();
}

StatementPtr Parser::drop() {
    auto statement = begin<DropStatement>();
    take();
    if (isWord("INDEX"))
        return dropIndex();
    static constexpr std::array<std::string_view, 7> kKinds = {"TABLE", "VIEW", "PROCEDURE", "PROC", "FUNCTION", "TRIGGER", "TYPE"};
    for (const std::string_view kind : kKinds) {
        if (isWord(kind))
            statement->what = kind == "PROC" ? "PROCEDURE" : kind;
    }
    if (statement->what.empty()) {
        if (isWord("DATABASE") || isWord("STATISTICS") || isWord("USER") || isWord("LOGIN") || isWord("ROLE"))
            return nothing();
        if (isWord("RULE") || isWord("DEFAULT"))
            return unsupported("DROP " + peek().value());
        unexpected();
    }
    take();
    if (isWord("IF") && isWord("EXISTS", 1)) {
        take();
        take();
        statement->ifExists = true;
    }
    do {
        statement->names.push_back(objectName());
    } while (acceptSymbol(","));
    return statement;
}

StatementPtr Parser::dropIndex() {
    auto statement = begin<DropStatement>();
    statement->what = "INDEX";
    take();
    if (isWord("IF") && isWord("EXISTS", 1)) {
        take();
        take();
        statement->ifExists = true;
    }
    statement->names.push_back(objectName());
    if (acceptWord("ON")) {
        statement->onTable = objectName();
    } else {
        ObjectName& name = statement->names[0];
        if (name.parts.size() < 2)
            fail(159, "Must specify the table name and index name for the DROP INDEX statement.");
        statement->onTable.line = name.line;
        statement->onTable.parts.assign(name.parts.begin(), name.parts.end() - 1);
        name.parts.erase(name.parts.begin(), name.parts.end() - 1);
    }
    return statement;
}

} // namespace merchantry::db::tsql
