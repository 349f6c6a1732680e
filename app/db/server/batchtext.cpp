#include "app/db/server/batchtext.h"

#include "app/db/tsql/parser.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <optional>

namespace merchantry::db::server {
namespace {

using tsql::Token;
using tsql::TokenKind;

constexpr std::string_view kOpening = "PRINT ''; ";

std::vector<Token> tokensOrNone(std::string_view batch) {
    try {
        return tsql::tokensOf(batch, true);
    } catch (const DbError&) {
        return {};
    }
}

bool definesModule(const std::vector<Token>& tokens) {
    if (tokens.size() < 2 || (!tokens[0].is("CREATE") && !tokens[0].is("ALTER")))
        return false;
    const Token& what = tokens[tokens[1].is("OR") && tokens.size() > 3 ? 3 : 1];
    return what.is("PROC") || what.is("PROCEDURE") || what.is("TRIGGER") || what.is("VIEW") || what.is("FUNCTION") || what.is("SCHEMA");
}

// A name that is no word of the language, at the very beginning, calls a procedure; a label has a colon behind.
bool callsBarely(const std::vector<Token>& tokens) {
    if (tokens.empty())
        return false;
    if (tokens[0].kind == TokenKind::Quoted)
        return true;
    return tokens[0].kind == TokenKind::Word && !tsql::isReservedWord(tokens[0].text) && !tokens[0].is("THROW") && !tokens[0].is("DBCC") &&
           !(tokens.size() > 1 && tokens[1].isSymbol(":"));
}

bool hasWord(const std::vector<Token>& tokens, std::string_view word) {
    return std::any_of(tokens.begin(), tokens.end(), [&](const Token& token) { return token.is(word); });
}

// A batch of one statement; nothing for any other, and for one that is not understood.
std::optional<tsql::Batch> onlyStatement(std::string_view batch) {
    try {
        tsql::Batch read = tsql::parseBatch(batch);
        return read.statements.size() == 1 ? std::optional(std::move(read)) : std::nullopt;
    } catch (const DbError&) {
        return std::nullopt;
    }
}

bool isSelect(const tsql::Statement& statement) {
    const auto* select = dynamic_cast<const tsql::SelectStatement*>(&statement);
    return select != nullptr && (select->query->core == nullptr || select->query->core->into.empty());
}

// One call by the procedure's name, with or without its word.
bool isOneCall(const std::vector<Token>& tokens, std::string_view batch) {
    if (!callsBarely(tokens) && (tokens.empty() || (!tokens[0].is("EXEC") && !tokens[0].is("EXECUTE"))))
        return false;
    const std::optional<tsql::Batch> read = onlyStatement(batch);
    const auto* call = read ? dynamic_cast<const tsql::ExecuteStatement*>(read->statements.front().get()) : nullptr;
    return call != nullptr;
}

} // namespace

SentBatch sentBatch(std::string_view batch) {
    const std::vector<Token> tokens = tokensOrNone(batch);
    if (definesModule(tokens) || isOneCall(tokens, batch))
        return {std::string(batch), false};
    std::string text(kOpening);
    if (callsBarely(tokens))
        text += "EXEC ";
    return {text.append(batch), true};
}

bool isOneReading(std::string_view batch) {
    const std::optional<tsql::Batch> read = onlyStatement(batch);
    return read && (read->statements.front()->kind == tsql::StatementKind::Execute || isSelect(*read->statements.front()));
}

bool isOneSelect(std::string_view batch) {
    const std::optional<tsql::Batch> read = onlyStatement(batch);
    return read && isSelect(*read->statements.front());
}

bool leavesTraces(std::string_view batch) {
    if (batch.find('#') == std::string_view::npos && batch.find("SET ") == std::string_view::npos &&
        batch.find("set ") == std::string_view::npos && batch.find("Set ") == std::string_view::npos)
        return false;
    const std::vector<Token> tokens = tokensOrNone(batch);
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        const bool named = tokens[i].kind == TokenKind::Word || tokens[i].kind == TokenKind::Quoted;
        if (named && tokens[i].text.starts_with('#'))
            return true;
        // "UPDATE t SET a = 1" assigns, "SET @a = 1" too; "SET ROWCOUNT 5" and "SET IDENTITY_INSERT t ON" stay.
        if (tokens[i].is("SET") && tokens[i + 1].kind == TokenKind::Word && i + 2 < tokens.size() && !tokens[i + 2].isSymbol("=") &&
            !tokens[i + 2].isSymbol("."))
            return true;
    }
    return false;
}

bool touchesTransactions(std::string_view batch) {
    const std::vector<Token> tokens = tokensOrNone(batch);
    return tokens.empty() || hasWord(tokens, "TRAN") || hasWord(tokens, "TRANSACTION") || hasWord(tokens, "COMMIT") ||
           hasWord(tokens, "ROLLBACK");
}

} // namespace merchantry::db::server
