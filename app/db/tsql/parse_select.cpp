#include "app/db/tsql/parsing.h"

namespace merchantry::db::tsql {
namespace {

bool isHint(const TokenReader& in, std::size_t ahead) {
    static constexpr std::string_view kHints[] = {
        "NOLOCK",          "UPDLOCK",       "HOLDLOCK",       "TABLOCK",      "TABLOCKX", "ROWLOCK", "PAGLOCK",      "READPAST", "XLOCK",
        "READUNCOMMITTED", "READCOMMITTED", "REPEATABLEREAD", "SERIALIZABLE", "INDEX",    "NOWAIT",  "FASTFIRSTROW", "NOEXPAND"};
    return std::any_of(std::begin(kHints), std::end(kHints), [&](std::string_view hint) { return in.isWord(hint, ahead); });
}

TableRefPtr joined(TokenReader& in);

void groupBy(TokenReader& in, SelectCore& core) {
    in.take();
    in.expectWord("BY");
    in.acceptWord("ALL");
    core.groupBy = parseExpressionList(in);
    if (in.isWord("WITH") && (in.isWord("ROLLUP", 1) || in.isWord("CUBE", 1))) {
        in.take();
        (in.take().is("ROLLUP") ? core.rollup : core.cube) = true;
    }
}

std::unique_ptr<SelectCore> selectCore(TokenReader& in) {
    auto core = begun<SelectCore>(in);
    in.expectWord("SELECT");
    ++in.state.selects;
    if (in.acceptWord("DISTINCT"))
        core->distinct = true;
    else
        in.acceptWord("ALL");
    core->top = parseTop(in);
    do {
        core->items.push_back(parseSelectItem(in));
    } while (in.acceptSymbol(","));
    if (in.acceptWord("INTO"))
        core->into = in.objectName();
    if (in.acceptWord("FROM"))
        core->from = parseFromList(in);
    if (in.acceptWord("WHERE"))
        core->where = parseCondition(in);
    if (in.isWord("GROUP"))
        groupBy(in, *core);
    if (in.acceptWord("HAVING"))
        core->having = parseCondition(in);
    return core;
}

QueryPtr queryTerm(TokenReader& in) {
    const Nesting nesting(in);
    if (in.acceptSymbol("(")) {
        QueryPtr inner = parseQuery(in);
        in.expectSymbol(")");
        return inner;
    }
    auto result = begun<Query>(in);
    result->core = selectCore(in);
    return result;
}

QueryPtr intersection(TokenReader& in) {
    QueryPtr left = queryTerm(in);
    int links = 0;
    while (in.isWord("INTERSECT")) {
        in.link(links);
        auto both = begun<Query>(in);
        both->op = SetOperator::Intersect;
        in.take();
        both->left = std::move(left);
        both->right = queryTerm(in);
        left = std::move(both);
    }
    return left;
}

QueryPtr queryWithoutOrder(TokenReader& in) {
    QueryPtr left = intersection(in);
    int links = 0;
    while (in.isWord("UNION") || in.isWord("EXCEPT")) {
        in.link(links);
        auto both = begun<Query>(in);
        both->op = SetOperator::Except;
        if (in.take().is("UNION"))
            both->op = in.acceptWord("ALL") ? SetOperator::UnionAll : SetOperator::Union;
        both->left = std::move(left);
        both->right = intersection(in);
        left = std::move(both);
    }
    return left;
}

void tableAlias(TokenReader& in, TableRef& table) {
    if (in.acceptWord("AS"))
        table.alias = in.name();
    else if (in.isName() && !(in.isWord("OPTION") && in.isSymbol("(", 1)) && !in.isWord("APPLY") && !in.isWord("OFFSET"))
        table.alias = in.name();
    if (!table.alias.empty() && in.isSymbol("(") && in.isName(1) && !isHint(in, 1))
        table.columnAliases = in.nameList();
}

TableRefPtr tablePrimary(TokenReader& in) {
    auto table = begun<TableRef>(in);
    if (in.isSymbol("(")) {
        if (startsQuery(in)) {
            in.take();
            table->kind = TableRef::Kind::Derived;
            table->query = parseQuery(in);
            in.expectSymbol(")");
            tableAlias(in, *table);
            if (table->alias.empty())
                in.unexpected();
            return table;
        }
        if (in.isWord("VALUES", 1)) {
            in.take();
            in.take();
            table->kind = TableRef::Kind::Values;
            do {
                table->rows.push_back(parseValuesRow(in));
            } while (in.acceptSymbol(","));
            in.expectSymbol(")");
            tableAlias(in, *table);
            if (table->alias.empty())
                in.unexpected();
            return table;
        }
        in.take();
        table = joined(in);
        in.expectSymbol(")");
        return table;
    }
    if (in.peek().kind == TokenKind::Variable) {
        table->kind = TableRef::Kind::Variable;
        table->name.parts.emplace_back(in.take().text);
        tableAlias(in, *table);
        return table;
    }
    table->name = in.objectName();
    if (in.isSymbol("(") && !isHint(in, 1)) {
        in.take();
        table->kind = TableRef::Kind::Function;
        if (!in.isSymbol(")"))
            table->args = parseExpressionList(in);
        in.expectSymbol(")");
    }
    skipTableHints(in);
    tableAlias(in, *table);
    skipTableHints(in);
    return table;
}

TableRefPtr joined(TokenReader& in) {
    const Nesting nesting(in);
    TableRefPtr left = tablePrimary(in);
    int links = 0;
    while (true) {
        in.link(links);
        auto join = begun<TableRef>(in);
        join->kind = TableRef::Kind::Join;
        bool hasCondition = true;
        if (in.isWord("CROSS") || (in.isWord("OUTER") && in.isWord("APPLY", 1))) {
            const bool cross = in.take().is("CROSS");
            const bool apply = in.take().is("APPLY");
            join->join = apply ? (cross ? JoinKind::CrossApply : JoinKind::OuterApply) : JoinKind::Cross;
            if (!apply && !in.last().is("JOIN"))
                in.unexpected(in.last());
            hasCondition = false;
        } else if (in.isWord("INNER") || in.isWord("JOIN")) {
            in.acceptWord("INNER");
        } else if (in.isWord("LEFT") || in.isWord("RIGHT") || in.isWord("FULL")) {
            const Token& side = in.take();
            join->join = side.is("LEFT") ? JoinKind::Left : side.is("RIGHT") ? JoinKind::Right : JoinKind::Full;
            in.acceptWord("OUTER");
        } else {
            return left;
        }
        if (hasCondition) {
            if (in.isWord("LOOP") || in.isWord("HASH") || in.isWord("MERGE"))
                in.take();
            in.expectWord("JOIN");
        }
        join->left = std::move(left);
        join->right = hasCondition ? joined(in) : tablePrimary(in);
        if (hasCondition) {
            in.expectWord("ON");
            join->on = parseCondition(in);
        }
        left = std::move(join);
    }
}

} // namespace

bool startsQuery(const TokenReader& in) {
    std::size_t ahead = 0;
    while (in.isSymbol("(", ahead))
        ++ahead;
    return in.isWord("SELECT", ahead);
}

StatementPtr parseSelect(TokenReader& in) {
    auto statement = begun<SelectStatement>(in);
    const int before = in.state.selects;
    statement->query = parseQuery(in);
    SelectCore* const core = statement->query->core.get();
    if (core != nullptr && in.state.selects == before + 1)
        core->alone = core->from.size() == 1 && core->groupBy.empty() && !core->having && statement->query->orderBy.empty();
    return statement;
}

StatementPtr parseWith(TokenReader& in) {
    std::vector<CommonTable> tables = parseCommonTables(in);
    if (in.isWord("INSERT")) {
        StatementPtr statement = parseInsert(in);
        static_cast<InsertStatement&>(*statement).commonTables = std::move(tables);
        return statement;
    }
    if (in.isWord("UPDATE")) {
        StatementPtr statement = parseUpdate(in);
        static_cast<UpdateStatement&>(*statement).commonTables = std::move(tables);
        return statement;
    }
    if (in.isWord("DELETE")) {
        StatementPtr statement = parseDelete(in);
        static_cast<DeleteStatement&>(*statement).commonTables = std::move(tables);
        return statement;
    }
    if (!startsQuery(in))
        in.unexpected();
    StatementPtr statement = parseSelect(in);
    static_cast<SelectStatement&>(*statement).query->commonTables = std::move(tables);
    return statement;
}

std::vector<CommonTable> parseCommonTables(TokenReader& in) {
    in.expectWord("WITH");
    std::vector<CommonTable> tables;
    do {
        CommonTable table;
        table.line = in.peek().line;
        table.name = in.name();
        if (in.isSymbol("("))
            table.columns = in.nameList();
        in.expectWord("AS");
        in.expectSymbol("(");
        table.query = parseQuery(in);
        in.expectSymbol(")");
        tables.push_back(std::move(table));
    } while (in.acceptSymbol(","));
    return tables;
}

QueryPtr parseQuery(TokenReader& in) {
    const Nesting nesting(in);
    QueryPtr result = queryWithoutOrder(in);
    if (in.isWord("ORDER")) {
        in.take();
        in.expectWord("BY");
        result->orderBy = parseOrderItems(in);
        if (in.acceptWord("OFFSET")) {
            result->offset = parseValue(in);
            if (!in.acceptWord("ROWS"))
                in.expectWord("ROW");
            if (in.acceptWord("FETCH")) {
                if (!in.acceptWord("NEXT"))
                    in.expectWord("FIRST");
                result->fetch = parseValue(in);
                if (!in.acceptWord("ROWS"))
                    in.expectWord("ROW");
                in.expectWord("ONLY");
            }
        }
    }
    if (in.isWord("FOR") && in.isWord("BROWSE", 1)) {
        in.take();
        in.take();
    }
    parseQueryHints(in, result.get());
    return result;
}

std::optional<TopClause> parseTop(TokenReader& in) {
    if (!in.acceptWord("TOP"))
        return std::nullopt;
    TopClause clause;
    if (in.acceptSymbol("(")) {
        clause.count = parseValue(in);
        in.expectSymbol(")");
    } else {
        clause.count = in.peek().kind == TokenKind::Variable ? parsePrimary(in) : parseLiteral(in);
    }
    clause.percent = in.acceptWord("PERCENT");
    if (in.isWord("WITH") && in.isWord("TIES", 1)) {
        in.take();
        in.take();
        clause.ties = true;
    }
    return clause;
}

SelectItem parseSelectItem(TokenReader& in) {
    SelectItem item;
    item.line = in.peek().line;
    if (in.acceptSymbol("*")) {
        item.star = true;
        return item;
    }
    if (in.peek().kind == TokenKind::Variable && in.peek(1).kind == TokenKind::Symbol && in.peek(1).text.back() == '=' &&
        in.peek(1).text != "<=" && in.peek(1).text != ">=" && in.peek(1).text != "!=") {
        item.variable = in.take().text;
        item.op = parseAssignmentOperator(in);
        item.expr = parseValue(in);
        return item;
    }
    if ((in.isName() || in.peek().kind == TokenKind::Text) && in.isSymbol("=", 1)) { // alias = value
        item.alias = in.take().value();
        in.take();
        item.expr = parseValue(in);
        return item;
    }
    for (std::size_t ahead = 0; in.isName(ahead) && in.isSymbol(".", ahead + 1); ahead += 2) { // t.*
        if (!in.isSymbol("*", ahead + 2))
            continue;
        item.star = true;
        item.starOf.line = item.line;
        while (!in.acceptSymbol("*")) {
            item.starOf.parts.push_back(in.take().value());
            in.take();
        }
        return item;
    }
    item.expr = parseValue(in);
    if (in.acceptWord("AS")) {
        if (!in.isName() && in.peek().kind != TokenKind::Text && in.peek().kind != TokenKind::WideText)
            in.unexpected();
        item.alias = in.take().value();
    } else if (in.isName() || in.peek().kind == TokenKind::Text) {
        item.alias = in.take().value();
    }
    return item;
}

std::vector<TableRefPtr> parseFromList(TokenReader& in) {
    std::vector<TableRefPtr> list;
    do {
        list.push_back(joined(in));
    } while (in.acceptSymbol(","));
    return list;
}

void skipTableHints(TokenReader& in) {
    const std::size_t open = in.isWord("WITH") && in.isSymbol("(", 1) ? 1 : 0;
    if (!in.isSymbol("(", open))
        return;
    if (!isHint(in, open + 1)) {
        if (open == 1)
            in.unexpected(in.peek(2));
        return;
    }
    if (open == 1)
        in.take();
    in.take();
    int depth = 1;
    while (depth > 0) {
        if (in.atEnd())
            in.unexpected();
        if (in.isSymbol("("))
            ++depth;
        else if (in.isSymbol(")"))
            --depth;
        in.take();
    }
}

void parseQueryHints(TokenReader& in, Query* query) {
    if (!(in.isWord("OPTION") && in.isSymbol("(", 1)))
        return;
    in.take();
    in.take();
    int depth = 1;
    while (depth > 0) {
        if (in.atEnd())
            in.unexpected();
        if (query && in.isWord("MAXRECURSION") && in.peek(1).kind == TokenKind::Integer) {
            in.take();
            query->maxRecursion = static_cast<int>(std::min<std::int64_t>(in.wholeNumber(), 32767));
            continue;
        }
        if (in.isSymbol("("))
            ++depth;
        else if (in.isSymbol(")"))
            --depth;
        in.take();
    }
}

} // namespace merchantry::db::tsql
