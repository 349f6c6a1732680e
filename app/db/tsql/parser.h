#pragma once

#include "app/db/dberror.h"
#include "app/db/tsql/ast.h"
#include "app/db/tsql/token.h"

#include <functional>
#include <string_view>

namespace merchantry::db::tsql {

// Reads a whole batch. Throws DbError of category Syntax (102, 105, 156, ...) with the line; nothing of a batch that is not
// understood from end to end may run. A statement that is understood but not carried out becomes an UnsupportedStatement.
Batch parseBatch(std::string_view text, bool quotedIdentifiers = true);

// Reads the text of a default, check or computed column alone.
ExprPtr parseExpressionText(std::string_view text);

// Reads a type as procedures pass it in a text, as "varchar(11)".
TypeName parseTypeText(std::string_view text);

// Reads the declaration list of sp_executesql, as "@a INT, @b VARCHAR(10) OUTPUT".
std::vector<ParameterClause> parseParameterText(std::string_view text);

// Recursive descent over the tokens of one batch. Each kind of statement has its own source file beside this page; the pieces that
// several of them share are here. A member that reads something throws at the first token that does not belong there.
class Parser {
public:
    Parser(std::string_view text, bool quotedIdentifiers);

    Batch batch();
    ExprPtr wholeExpression();
    TypeName wholeType();
    std::vector<ParameterClause> wholeParameters();

private:
    // tokens
    const Token& peek(std::size_t ahead = 0) const { return tokens_[std::min(at_ + ahead, tokens_.size() - 1)]; }
    const Token& take() { return tokens_[at_ + 1 < tokens_.size() ? at_++ : at_]; }
    bool isWord(std::string_view word, std::size_t ahead = 0) const { return peek(ahead).is(word); }
    bool acceptWord(std::string_view word);
    void expectWord(std::string_view word);
    bool isSymbol(std::string_view symbol, std::size_t ahead = 0) const { return peek(ahead).isSymbol(symbol); }
    bool acceptSymbol(std::string_view symbol);
    void expectSymbol(std::string_view symbol);
    bool atEnd() const { return peek().kind == TokenKind::End; }
    [[noreturn]] void unexpected() const { unexpected(peek()); }
    [[noreturn]] void unexpected(const Token& token) const;
    [[noreturn]] void fail(int number, const std::string& message) const;
    // Counts the links of a chain like a + b + c; throws at one that is too long to be worked on.
    void link(int& links) const;

    // names
    bool isLabel(std::size_t ahead = 0) const;
    bool isName(std::size_t ahead = 0) const;
    std::string name();
    ObjectName objectName();
    std::vector<std::string> nameList();
    TypeName typeName();
    std::int64_t wholeNumber();
    std::string sourceFrom(std::size_t begin) const;

    // expressions
    ExprPtr expression();
    ExprPtr value(); // an expression that is not a condition
    ExprPtr condition();
    ExprPtr conjunction();
    ExprPtr negation();
    ExprPtr comparison();
    ExprPtr comparisonAfter(ExprPtr left);
    ExprPtr quantified(ExprPtr left, const std::string& op, int line);
    ExprPtr membership(ExprPtr left, bool negated, int line);
    ExprPtr sum();
    ExprPtr product();
    ExprPtr unary();
    ExprPtr primary();
    ExprPtr collated(ExprPtr value);
    ExprPtr literal();
    ExprPtr parenthesized();
    ExprPtr caseExpression();
    ExprPtr castExpression();
    ExprPtr convertExpression();
    ExprPtr nameOrCall();
    ExprPtr call(ObjectName name, int line);
    std::unique_ptr<WindowSpec> window();
    std::vector<ExprPtr> expressionList();
    std::vector<OrderItem> orderItems();
    ExprPtr sourced(const std::function<ExprPtr()>& read);
    ExprPtr make(ExprKind kind) const;
    void requireCondition(const Expr& expr) const;
    void requireValue(const Expr& expr) const;

    // queries
    QueryPtr query();
    QueryPtr queryWithoutOrder();
    QueryPtr intersection();
    QueryPtr queryTerm();
    std::unique_ptr<SelectCore> selectCore();
    SelectItem selectItem();
    std::optional<TopClause> top();
    std::vector<TableRefPtr> fromList();
    TableRefPtr joined();
    TableRefPtr tablePrimary();
    void tableAlias(TableRef& table);
    void tableHints();
    void queryHints(Query* query = nullptr);
    void groupBy(SelectCore& core);
    std::vector<CommonTable> commonTables();
    bool startsQuery() const;

    // statements
    Block block(const std::function<bool()>& ends);
    StatementPtr statement();
    StatementPtr statementByWord();
    StatementPtr statementOf();
    StatementPtr withStatement();
    StatementPtr select();
    StatementPtr insert();
    StatementPtr update();
    StatementPtr deleteFrom();
    StatementPtr truncate();
    StatementPtr create();
    StatementPtr alter();
    StatementPtr drop();
    StatementPtr dropIndex();
    std::optional<OutputClause> output();
    void changedTable(RowsStatement& statement); // of UPDATE and DELETE, with its hints
    void whichRows(RowsStatement& statement);    // OUTPUT, FROM, WHERE and what follows
    Assignment assignment();
    void insertSource(InsertStatement& insert);
    std::vector<ExprPtr> valuesRow();
    std::string assignmentOperator();

    // tables
    StatementPtr createTable();
    StatementPtr alterTable();
    void alterTableAction(AlterTableStatement& alter);
    TableBody tableBody();
    void tableElement(TableBody& body);
    ColumnClause columnClause();
    bool columnOption(ColumnClause& column);
    std::optional<ConstraintClause> constraint(bool ofColumn);
    void keyConstraint(ConstraintClause& constraint);
    void foreignKey(ConstraintClause& constraint);
    void identity(ColumnClause& column);
    std::vector<IndexColumn> indexColumns();
    void indexOptions();
    void storageOptions();
    StatementPtr createIndex();
    StatementPtr createType();

    // modules
    StatementPtr createView(bool alter, std::size_t begin);
    StatementPtr createProcedure(bool alter, std::size_t begin);
    StatementPtr createFunction(bool alter, std::size_t begin);
    StatementPtr createTrigger(bool alter, std::size_t begin);
    ParameterClause parameter();
    std::vector<ParameterClause> parameterList();
    void moduleOptions();
    Block moduleBody();

    // procedural statements
    StatementPtr declare();
    StatementPtr set();
    StatementPtr setOption();
    StatementPtr ifStatement();
    StatementPtr whileStatement();
    StatementPtr beginStatement();
    StatementPtr tryCatch();
    StatementPtr returnStatement();
    StatementPtr gotoStatement();
    StatementPtr raise();
    StatementPtr throwStatement();
    StatementPtr print();
    StatementPtr waitFor();
    StatementPtr use();
    StatementPtr execute(bool withWord);
    Argument argument();
    ExprPtr argumentValue();
    ExprPtr constant();
    StatementPtr transaction(StatementKind kind);
    StatementPtr cursorDeclaration(std::string name);
    StatementPtr cursorAction(CursorStatement::Action action);
    StatementPtr fetch();
    std::string cursorName();
    void cursorOptions(CursorStatement& cursor);
    StatementPtr nothing();
    StatementPtr unsupported(const std::string& feature);

    template <class T> std::unique_ptr<T> begin() const {
        auto statement = std::make_unique<T>();
        statement->line = peek().line;
        return statement;
    }

    std::string_view text_;
    std::vector<Token> tokens_;
    int selects_ = 0; // read so far
    std::size_t at_ = 0;
    int count_ = 0;
    int depth_ = 0;
    int loops_ = 0;
    bool inModule_ = false;
    bool batchStart_ = false;

    friend class Nesting;
};

// Guards against texts that nest deeper than the stack is.
class Nesting {
public:
    explicit Nesting(Parser& parser);
    ~Nesting();
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    Parser& parser_;
};

} // namespace merchantry::db::tsql
