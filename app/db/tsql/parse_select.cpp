#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

// Whether a query begins here, perhaps behind opening parentheses.
bool Parser::startsQuery() const {
    std::size_t ahead = 0;
    while (isSymbol("(", ahead))
        ++ahead;
    return isWord("SELECT", ahead);
}

StatementPtr Parser::select() {
    auto statement = begin<SelectStatement>();
    const int before = selects_;
    statement->query = query();
    SelectCore* const core = statement->query->core.get();
    if (core != nullptr && selects_ == before + 1)
        core->alone = core->from.size() == 1 && core->groupBy.empty() && !core->having && statement->query->orderBy.empty();
    return statement;
}

StatementPtr Parser::withStatement() {
    std::vector<CommonTable> tables = commonTables();
    if (isWord("INSERT")) {
        StatementPtr statement = insert();
        static_cast<InsertStatement&>(*statement).commonTables = std::move(tables);
        return statement;
    }
    if (isWord("UPDATE")) {
        StatementPtr statement = update();
        static_cast<UpdateStatement&>(*statement).commonTables = std::move(tables);
        return statement;
    }
    if (isWord("DELETE")) {
        StatementPtr statement = deleteFrom();
        static_cast<DeleteStatement&>(*statement).commonTables = std::move(tables);
        return statement;
    }
    if (!startsQuery())
        unexpected();
    StatementPtr statement = select();
    static_cast<SelectStatement&>(*statement).query->commonTables = std::move(tables);
    return statement;
}

std::vector<CommonTable> Parser::commonTables() {
    expectWord("WITH");
    std::vector<CommonTable> tables;
    do {
        CommonTable table;
        table.line = peek().line;
        table.name = name();
        if (isSymbol("("))
            table.columns = nameList();
        expectWord("AS");
        expectSymbol("(");
        table.query = query();
        expectSymbol(")");
        tables.push_back(std::move(table));
    } while (acceptSymbol(","));
    return tables;
}

// A query with its ORDER BY.
QueryPtr Parser::query() {
    const Nesting nesting(*this);
    QueryPtr result = queryWithoutOrder();
    if (isWord("ORDER")) {
        take();
        expectWord("BY");
        result->orderBy = orderItems();
        if (acceptWord("OFFSET")) {
            result->offset = value();
            if (!acceptWord("ROWS"))
                expectWord("ROW");
            if (acceptWord("FETCH")) {
                if (!acceptWord("NEXT"))
                    expectWord("FIRST");
                result->fetch = value();
                if (!acceptWord("ROWS"))
                    expectWord("ROW");
                expectWord("ONLY");
            }
        }
    }
    if (isWord("FOR") && isWord("BROWSE", 1)) {
        take();
        take();
    }
    queryHints(result.get());
    return result;
}

QueryPtr Parser::queryWithoutOrder() {
    QueryPtr left = intersection();
    int links = 0;
    while (isWord("UNION") || isWord("EXCEPT")) {
        link(links);
        auto both = std::make_unique<Query>();
        both->line = peek().line;
        both->op = SetOperator::Except;
        if (take().is("UNION"))
            both->op = acceptWord("ALL") ? SetOperator::UnionAll : SetOperator::Union;
        both->left = std::move(left);
        both->right = intersection();
        left = std::move(both);
    }
    return left;
}

QueryPtr Parser::intersection() {
    QueryPtr left = queryTerm();
    int links = 0;
    while (isWord("INTERSECT")) {
        link(links);
        auto both = std::make_unique<Query>();
        both->line = peek().line;
        both->op = SetOperator::Intersect;
        take();
        both->left = std::move(left);
        both->right = queryTerm();
        left = std::move(both);
    }
    return left;
}

QueryPtr Parser::queryTerm() {
    const Nesting nesting(*this);
    if (acceptSymbol("(")) {
        QueryPtr inner = query();
        expectSymbol(")");
        return inner;
    }
    auto result = std::make_unique<Query>();
    result->line = peek().line;
    result->core = selectCore();
    return result;
}

std::unique_ptr<SelectCore> Parser::selectCore() {
    auto core = std::make_unique<SelectCore>();
    core->line = peek().line;
    expectWord("SELECT");
    ++selects_;
    if (acceptWord("DISTINCT"))
        core->distinct = true;
    else
        acceptWord("ALL");
    core->top = top();
    do {
        core->items.push_back(selectItem());
    } while (acceptSymbol(","));
    if (acceptWord("INTO"))
        core->into = objectName();
    if (acceptWord("FROM"))
        core->from = fromList();
    if (acceptWord("WHERE"))
        core->where = condition();
    if (isWord("GROUP"))
        groupBy(*core);
    if (acceptWord("HAVING"))
        core->having = condition();
    return core;
}

void Parser::groupBy(SelectCore& core) {
    take();
    expectWord("BY");
    acceptWord("ALL");
    core.groupBy = expressionList();
    if (isWord("WITH") && (isWord("ROLLUP", 1) || isWord("CUBE", 1))) {
        take();
        (take().is("ROLLUP") ? core.rollup : core.cube) = true;
    }
}

std::optional<TopClause> Parser::top() {
    if (!acceptWord("TOP"))
        return std::nullopt;
    TopClause clause;
    if (acceptSymbol("(")) {
        clause.count = value();
        expectSymbol(")");
    } else {
        clause.count = peek().kind == TokenKind::Variable ? primary() : literal();
    }
    clause.percent = acceptWord("PERCENT");
    if (isWord("WITH") && isWord("TIES", 1)) {
        take();
        take();
        clause.ties = true;
    }
    return clause;
}

SelectItem Parser::selectItem() {
    SelectItem item;
    item.line = peek().line;
    if (acceptSymbol("*")) {
        item.star = true;
        return item;
    }
    if (peek().kind == TokenKind::Variable && peek(1).kind == TokenKind::Symbol && peek(1).text.back() == '=' && peek(1).text != "<=" &&
        peek(1).text != ">=" && peek(1).text != "!=") {
        item.variable = take().text;
        item.op = assignmentOperator();
        item.expr = value();
        return item;
    }
    if ((isName() || peek().kind == TokenKind::Text) && isSymbol("=", 1)) { // alias = value
        item.alias = take().value();
        take();
        item.expr = value();
        return item;
    }
    for (std::size_t ahead = 0; isName(ahead) && isSymbol(".", ahead + 1); ahead += 2) { // t.*
        if (!isSymbol("*", ahead + 2))
            continue;
        item.star = true;
        item.starOf.line = item.line;
        while (!acceptSymbol("*")) {
            item.starOf.parts.push_back(take().value());
            take();
        }
        return item;
    }
    item.expr = value();
    if (acceptWord("AS")) {
        if (!isName() && peek().kind != TokenKind::Text && peek().kind != TokenKind::WideText)
            unexpected();
        item.alias = take().value();
    } else if (isName() || peek().kind == TokenKind::Text) {
        item.alias = take().value();
    }
    return item;
}

// ---- FROM

std::vector<TableRefPtr> Parser::fromList() {
    std::vector<TableRefPtr> list;
    do {
        list.push_back(joined());
    } while (acceptSymbol(","));
    return list;
}

TableRefPtr Parser::joined() {
    const Nesting nesting(*this);
    TableRefPtr left = tablePrimary();
    int links = 0;
    while (true) {
        link(links);
        auto join = std::make_unique<TableRef>();
        join->kind = TableRef::Kind::Join;
        join->line = peek().line;
        bool hasCondition = true;
        if (isWord("CROSS") || (isWord("OUTER") && isWord("APPLY", 1))) {
            const bool cross = take().is("CROSS");
            const bool apply = take().is("APPLY");
            join->join = apply ? (cross ? JoinKind::CrossApply : JoinKind::OuterApply) : JoinKind::Cross;
            if (!apply && !tokens_[at_ - 1].is("JOIN"))
                unexpected(tokens_[at_ - 1]);
            hasCondition = false;
        } else if (isWord("INNER") || isWord("JOIN")) {
            acceptWord("INNER");
        } else if (isWord("LEFT") || isWord("RIGHT") || isWord("FULL")) {
            const Token& side = take();
            join->join = side.is("LEFT") ? JoinKind::Left : side.is("RIGHT") ? JoinKind::Right : JoinKind::Full;
            acceptWord("OUTER");
        } else {
            return left;
        }
        if (hasCondition) {
            if (isWord("LOOP") || isWord("HASH") || isWord("MERGE"))
                take();
            expectWord("JOIN");
        }
        join->left = std::move(left);
        join->right = hasCondition ? joined() : tablePrimary();
        if (hasCondition) {
            expectWord("ON");
            join->on = condition();
        }
        left = std::move(join);
    }
}

TableRefPtr Parser::tablePrimary() {
    auto table = std::make_unique<TableRef>();
    table->line = peek().line;
    if (isSymbol("(")) {
        if (startsQuery()) {
            take();
            table->kind = TableRef::Kind::Derived;
            table->query = query();
            expectSymbol(")");
            tableAlias(*table);
            if (table->alias.empty())
                unexpected();
            return table;
        }
        if (isWord("VALUES", 1)) {
            take();
            take();
            table->kind = TableRef::Kind::Values;
            do {
                table->rows.push_back(valuesRow());
            } while (acceptSymbol(","));
            expectSymbol(")");
            tableAlias(*table);
            if (table->alias.empty())
                unexpected();
            return table;
        }
        take();
        table = joined();
        expectSymbol(")");
        return table;
    }
    if (peek().kind == TokenKind::Variable) {
        table->kind = TableRef::Kind::Variable;
        table->name.parts.emplace_back(take().text);
        tableAlias(*table);
        return table;
    }
    table->name = objectName();
    if (isSymbol("(") &&
        !(isWord("NOLOCK", 1) || isWord("INDEX", 1) || isWord("UPDLOCK", 1) || isWord("HOLDLOCK", 1) || isWord("TABLOCK", 1) ||
          isWord("TABLOCKX", 1) || isWord("ROWLOCK", 1) || isWord("READPAST", 1) || isWord("FASTFIRSTROW", 1))) {
        take();
        table->kind = TableRef::Kind::Function;
        if (!isSymbol(")"))
            table->args = expressionList();
        expectSymbol(")");
    }
    tableHints();
    tableAlias(*table);
    tableHints();
    return table;
}

void Parser::tableAlias(TableRef& table) {
    if (acceptWord("AS"))
        table.alias = name();
    else if (isName() && !(isWord("OPTION") && isSymbol("(", 1)) && !isWord("APPLY") && !isWord("OFFSET"))
        table.alias = name();
    if (!table.alias.empty() && isSymbol("(") && isName(1) && !isWord("NOLOCK", 1) && !isWord("INDEX", 1))
        table.columnAliases = nameList();
}

// WITH (NOLOCK) and the like: read and of no effect.
void Parser::tableHints() {
    const std::size_t open = isWord("WITH") && isSymbol("(", 1) ? 1 : 0;
    static constexpr std::string_view kHints[] = {
        "NOLOCK",          "UPDLOCK",       "HOLDLOCK",       "TABLOCK",      "TABLOCKX", "ROWLOCK", "PAGLOCK",      "READPAST", "XLOCK",
        "READUNCOMMITTED", "READCOMMITTED", "REPEATABLEREAD", "SERIALIZABLE", "INDEX",    "NOWAIT",  "FASTFIRSTROW", "NOEXPAND"};
    if (!isSymbol("(", open))
        return;
    const auto known = [&](std::size_t ahead) {
        for (const std::string_view hint : kHints) {
            if (isWord(hint, ahead))
                return true;
        }
        return false;
    };
    if (!known(open + 1)) {
        if (open == 1)
            unexpected(peek(2));
        return;
    }
    if (open == 1)
        take();
    take();
    int depth = 1;
    while (depth > 0) {
        if (atEnd())
            unexpected();
        if (isSymbol("("))
            ++depth;
        else if (isSymbol(")"))
            --depth;
        take();
    }
}

// OPTION (...): read and, but for MAXRECURSION, of no effect.
void Parser::queryHints(Query* query) {
    if (!(isWord("OPTION") && isSymbol("(", 1)))
        return;
    take();
    take();
    int depth = 1;
    while (depth > 0) {
        if (atEnd())
            unexpected();
        if (query && isWord("MAXRECURSION") && peek(1).kind == TokenKind::Integer) {
            take();
            query->maxRecursion = static_cast<int>(std::min<std::int64_t>(wholeNumber(), 32767));
            continue;
        }
        if (isSymbol("("))
            ++depth;
        else if (isSymbol(")"))
            --depth;
        take();
    }
}

} // namespace merchantry::db::tsql
