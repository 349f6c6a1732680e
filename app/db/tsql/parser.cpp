#include "app/db/tsql/parser.h"

#include "app/db/tsql/parsing.h"

namespace merchantry::db::tsql {

Batch parseBatch(std::string_view text, bool quotedIdentifiers) {
    TokenReader in(text, quotedIdentifiers);
    in.state.batchStart = true;
    Batch result;
    result.statements = parseBlock(in, [&] { return in.atEnd(); });
    result.count = in.state.statements;
    return result;
}

ExprPtr parseExpressionText(std::string_view text) {
    TokenReader in(text, true);
    ExprPtr result = parseSourced(in, [&] { return parseExpression(in); });
    in.expectEnd();
    return result;
}

TypeName parseTypeText(std::string_view text) {
    TokenReader in(text, true);
    TypeName type = in.typeName();
    in.expectEnd();
    return type;
}

std::vector<ParameterClause> parseParameterText(std::string_view text) {
    TokenReader in(text, true);
    std::vector<ParameterClause> parameters;
    if (!in.atEnd())
        parameters = parseParameterList(in);
    in.expectEnd();
    return parameters;
}

} // namespace merchantry::db::tsql
