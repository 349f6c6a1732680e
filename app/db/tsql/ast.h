#pragma once

#include "app/db/sqltype.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The syntax tree of a batch: what was written, before names and types are looked up. A tree owns its parts and no text of the batch.
namespace merchantry::db::tsql {

struct Expr;
struct Query;
struct TableRef;
struct Statement;
using ExprPtr = std::unique_ptr<Expr>;
using QueryPtr = std::unique_ptr<Query>;
using TableRefPtr = std::unique_ptr<TableRef>;
using StatementPtr = std::unique_ptr<Statement>;
using Block = std::vector<StatementPtr>;

// A name of one to four parts, outermost first; parts left out between points are empty.
struct ObjectName {
    std::vector<std::string> parts;
    int line = 1;

    const std::string& last() const { return parts.back(); }
    bool empty() const { return parts.empty(); }
    std::string toText() const;
};

// A type as written: a built-in one with its measures, or a name to look up.
struct TypeName {
    std::string name;
    std::optional<int> first;  // length or precision
    std::optional<int> second; // scale
    bool max = false;
    int line = 1;
};

struct OrderItem {
    ExprPtr expr;
    bool descending = false;
};

struct WindowSpec {
    std::vector<ExprPtr> partition;
    std::vector<OrderItem> order;
    std::string frame; // "ROWS BETWEEN UNBOUNDED PRECEDING AND CURRENT ROW", empty when none
};

enum class ExprKind {
    Null,
    Integer,
    Number,
    Float,
    Money,
    Text,
    WideText,
    Binary,
    Column,         // name
    Variable,       // text, with @
    SystemVariable, // text, with @@
    Unary,          // text: - + ~
    Arithmetic,     // text: + - * / % & | ^
    Compare,        // text: = <> < <= > >=
    And,
    Or,
    Not,
    IsNull,     // negated
    Like,       // args: value, pattern, optional escape; negated
    Between,    // args: value, low, high; negated
    InList,     // args: value, members; negated
    InQuery,    // args: value; query; negated
    Exists,     // query
    Subquery,   // query
    Quantified, // args: value; query; text: operator; all
    Case,       // simple: input; args: when, then, ..., optional else (hasElse)
    Cast,       // args: value, optional style; type; text: CAST or CONVERT
    Function,   // name; args; distinct; star; window
    Default,    // the word DEFAULT
    Collate,    // args: value; text: collation
};

struct Expr {
    ExprKind kind = ExprKind::Null;
    int line = 1;
    std::string text;
    ObjectName name;
    std::vector<ExprPtr> args;
    ExprPtr input;
    QueryPtr query;
    TypeName type;
    bool negated = false;
    bool distinct = false;
    bool star = false;
    bool all = false;
    bool hasElse = false;
    std::unique_ptr<WindowSpec> window;
    std::string source; // as written, where a table keeps it (defaults, checks, computed columns)
};

struct SelectItem {
    ExprPtr expr; // null for a star
    bool star = false;
    ObjectName starOf; // of t.*
    std::string alias;
    std::string variable; // SELECT @v = ...
    std::string op = "=";
    int line = 1;
};

enum class JoinKind { Inner, Left, Right, Full, Cross, CrossApply, OuterApply };

struct TableRef {
    enum class Kind { Table, Derived, Join, Function, Variable, Values };
    Kind kind = Kind::Table;
    int line = 1;
    ObjectName name;
    std::string alias;
    std::vector<std::string> columnAliases;
    QueryPtr query;
    std::vector<ExprPtr> args;
    std::vector<std::vector<ExprPtr>> rows; // Values
    JoinKind join = JoinKind::Inner;
    TableRefPtr left;
    TableRefPtr right;
    ExprPtr on;
};

struct TopClause {
    ExprPtr count;
    bool percent = false;
    bool ties = false;
};

struct SelectCore {
    int line = 1;
    bool distinct = false;
    std::optional<TopClause> top;
    std::vector<SelectItem> items;
    ObjectName into;
    std::vector<TableRefPtr> from;
    ExprPtr where;
    std::vector<ExprPtr> groupBy;
    bool rollup = false;
    bool cube = false;
    ExprPtr having;
    bool alone = false; // the only SELECT of its statement, from one source, neither grouped nor ordered: a column can be no other's
};

enum class SetOperator { None, Union, UnionAll, Except, Intersect };

struct CommonTable {
    std::string name;
    std::vector<std::string> columns;
    QueryPtr query;
    int line = 1;
};

// A select, or two queries with a set operator between.
struct Query {
    int line = 1;
    std::vector<CommonTable> commonTables;
    SetOperator op = SetOperator::None;
    QueryPtr left;
    QueryPtr right;
    std::unique_ptr<SelectCore> core;
    std::vector<OrderItem> orderBy;
    ExprPtr offset;
    ExprPtr fetch;
    int maxRecursion = 100; // 0 for no limit
};

// ---- parts of table definitions

struct ForeignKeyClause {
    std::vector<std::string> columns;
    ObjectName table;
    std::vector<std::string> refColumns;
    std::string onDelete; // "", "CASCADE", "SET NULL", "SET DEFAULT", "NO ACTION"
    std::string onUpdate;
};

struct IndexColumn {
    std::string name;
    bool descending = false;
};

struct ConstraintClause {
    enum class Kind { PrimaryKey, Unique, Check, ForeignKey, Default };
    Kind kind = Kind::Check;
    std::string name;
    int line = 1;
    std::vector<IndexColumn> columns;
    bool clustered = false;
    ExprPtr expr;          // check or default
    std::string forColumn; // DEFAULT ... FOR column
    ForeignKeyClause foreignKey;
};

struct ColumnClause {
    std::string name;
    int line = 1;
    TypeName type;
    std::optional<bool> nullable;
    bool identity = false;
    std::int64_t seed = 1;
    std::int64_t increment = 1;
    ExprPtr computed;
    bool persisted = false;
    std::string collation;
    std::vector<ConstraintClause> constraints;
};

struct TableBody {
    std::vector<ColumnClause> columns;
    std::vector<ConstraintClause> constraints;
};

// ---- statements

enum class StatementKind {
    Select,
    Insert,
    Update,
    Delete,
    Truncate,
    CreateTable,
    AlterTable,
    CreateIndex,
    CreateView,
    CreateProcedure,
    CreateFunction,
    CreateTrigger,
    CreateType,
    Drop,
    Declare,
    DeclareTable,
    SetVariable,
    SetOption,
    If,
    While,
    Break,
    Continue,
    Return,
    Goto,
    Label,
    BlockOf,
    TryCatch,
    Raise,
    Throw,
    Print,
    Execute,
    ExecuteText,
    Begin,
    Commit,
    Rollback,
    Save,
    Use,
    Nothing, // accepted and without effect here: GRANT, CHECKPOINT, UPDATE STATISTICS, ...
    WaitFor,
    Cursor,
    Unsupported,
};

struct Statement {
    explicit Statement(StatementKind k) : kind(k) {}
    virtual ~Statement() = default;
    StatementKind kind;
    int line = 1;
    int number = -1; // place in the batch's list of plans
};

struct SelectStatement : Statement {
    SelectStatement() : Statement(StatementKind::Select) {}
    QueryPtr query;
};

struct OutputClause {
    std::vector<SelectItem> items;
    ObjectName into; // of one part; a table or @variable
    std::vector<std::string> intoColumns;
};

struct ExecuteStatement;
struct ExecuteTextStatement;

struct InsertStatement : Statement {
    InsertStatement() : Statement(StatementKind::Insert) {}
    std::vector<CommonTable> commonTables;
    std::optional<TopClause> top;
    ObjectName table;
    std::vector<std::string> columns;
    bool hasColumns = false;
    std::optional<OutputClause> output;
    std::vector<std::vector<ExprPtr>> rows;
    QueryPtr query;
    StatementPtr execute;
    bool defaultValues = false;
};

struct Assignment {
    std::string column; // may be empty when only a variable is set
    ObjectName qualified;
    std::string variable;
    std::string op = "=";
    ExprPtr value;
    int line = 1;
};

// What UPDATE and DELETE have in common: which rows of which table.
struct RowsStatement : Statement {
    using Statement::Statement;
    std::vector<CommonTable> commonTables;
    std::optional<TopClause> top;
    ObjectName table;
    std::optional<OutputClause> output;
    std::vector<TableRefPtr> from;
    ExprPtr where;
    std::string currentOf; // a cursor's name, empty without one
};

struct UpdateStatement : RowsStatement {
    UpdateStatement() : RowsStatement(StatementKind::Update) {}
    std::vector<Assignment> assignments;
};

struct DeleteStatement : RowsStatement {
    DeleteStatement() : RowsStatement(StatementKind::Delete) {}
};

struct TruncateStatement : Statement {
    TruncateStatement() : Statement(StatementKind::Truncate) {}
    ObjectName table;
};

struct CreateTableStatement : Statement {
    CreateTableStatement() : Statement(StatementKind::CreateTable) {}
    ObjectName table;
    TableBody body;
};

struct AlterTableStatement : Statement {
    enum class Action { Add, AlterColumn, DropColumns, DropConstraints, CheckConstraint, Trigger };
    AlterTableStatement() : Statement(StatementKind::AlterTable) {}
    ObjectName table;
    Action action = Action::Add;
    TableBody body;                 // Add; AlterColumn: one column
    std::vector<std::string> names; // columns, constraints or triggers; "ALL"
    bool enable = true;             // CheckConstraint, Trigger
    bool noCheck = false;           // WITH NOCHECK
};

struct CreateIndexStatement : Statement {
    CreateIndexStatement() : Statement(StatementKind::CreateIndex) {}
    std::string name;
    ObjectName table;
    bool unique = false;
    bool clustered = false;
    bool ignoreDuplicates = false;
    std::vector<IndexColumn> columns;
};

// Modules are kept as text; the text is the whole statement from CREATE or ALTER on.
struct CreateViewStatement : Statement {
    CreateViewStatement() : Statement(StatementKind::CreateView) {}
    bool alter = false;
    ObjectName name;
    std::vector<std::string> columns;
    QueryPtr query;
    std::string text;
};

struct ParameterClause {
    std::string name; // with @
    TypeName type;
    ExprPtr defaultValue;
    bool output = false;
    int line = 1;
};

struct CreateProcedureStatement : Statement {
    CreateProcedureStatement() : Statement(StatementKind::CreateProcedure) {}
    bool alter = false;
    ObjectName name;
    std::vector<ParameterClause> parameters;
    Block body;
    std::string text;
};

struct CreateFunctionStatement : Statement {
    CreateFunctionStatement() : Statement(StatementKind::CreateFunction) {}
    bool alter = false;
    ObjectName name;
    std::vector<ParameterClause> parameters;
    TypeName returns;
    QueryPtr table; // RETURNS TABLE AS RETURN (...)
    Block body;
    std::string text;
};

struct CreateTriggerStatement : Statement {
    CreateTriggerStatement() : Statement(StatementKind::CreateTrigger) {}
    bool alter = false;
    ObjectName name;
    ObjectName table;
    bool insteadOf = false;
    bool onInsert = false;
    bool onUpdate = false;
    bool onDelete = false;
    Block body;
    std::string text;
};

struct CreateTypeStatement : Statement {
    CreateTypeStatement() : Statement(StatementKind::CreateType) {}
    ObjectName name;
    TypeName base;
    std::optional<bool> nullable;
};

struct DropStatement : Statement {
    DropStatement() : Statement(StatementKind::Drop) {}
    std::string what; // TABLE, VIEW, PROCEDURE, FUNCTION, TRIGGER, INDEX, TYPE
    bool ifExists = false;
    std::vector<ObjectName> names;
    ObjectName onTable; // DROP INDEX x ON t
};

struct Declaration {
    std::string name; // with @
    TypeName type;
    bool cursor = false;
    ExprPtr value;
    int line = 1;
};

struct DeclareStatement : Statement {
    DeclareStatement() : Statement(StatementKind::Declare) {}
    std::vector<Declaration> variables;
};

struct DeclareTableStatement : Statement {
    DeclareTableStatement() : Statement(StatementKind::DeclareTable) {}
    std::string name; // with @
    TableBody body;
};

struct SetVariableStatement : Statement {
    SetVariableStatement() : Statement(StatementKind::SetVariable) {}
    std::string variable;
    std::string op = "=";
    ExprPtr value;
    StatementPtr cursor; // SET @c = CURSOR FOR ...
};

struct SetOptionStatement : Statement {
    SetOptionStatement() : Statement(StatementKind::SetOption) {}
    std::vector<std::string> options; // in capitals
    std::string value;                // in capitals, or the number or word given
    ObjectName table;                 // IDENTITY_INSERT
    ExprPtr expr;                     // ROWCOUNT, DATEFIRST with a variable
};

struct IfStatement : Statement {
    IfStatement() : Statement(StatementKind::If) {}
    ExprPtr condition;
    StatementPtr then;
    StatementPtr otherwise;
};

struct WhileStatement : Statement {
    WhileStatement() : Statement(StatementKind::While) {}
    ExprPtr condition;
    StatementPtr body;
};

struct ReturnStatement : Statement {
    ReturnStatement() : Statement(StatementKind::Return) {}
    ExprPtr value;
};

struct GotoStatement : Statement {
    explicit GotoStatement(StatementKind k) : Statement(k) {} // Goto or Label
    std::string label;
};

struct BlockStatement : Statement {
    BlockStatement() : Statement(StatementKind::BlockOf) {}
    Block body;
};

struct TryStatement : Statement {
    TryStatement() : Statement(StatementKind::TryCatch) {}
    Block body;
    Block handler;
};

struct RaiseStatement : Statement {
    RaiseStatement() : Statement(StatementKind::Raise) {}
    ExprPtr message;
    ExprPtr severity;
    ExprPtr state;
    std::vector<ExprPtr> arguments;
};

struct ThrowStatement : Statement {
    ThrowStatement() : Statement(StatementKind::Throw) {}
    ExprPtr number;
    ExprPtr message;
    ExprPtr state;
};

struct PrintStatement : Statement {
    PrintStatement() : Statement(StatementKind::Print) {}
    ExprPtr value;
};

struct Argument {
    std::string name; // with @, or empty
    ExprPtr value;    // a literal, a variable, a bare word as text, or Default
    bool output = false;
    int line = 1;
};

struct ExecuteStatement : Statement {
    ExecuteStatement() : Statement(StatementKind::Execute) {}
    std::string result; // variable that takes the return value
    ObjectName procedure;
    std::string procedureVariable; // EXEC @name
    std::vector<Argument> arguments;
};

struct ExecuteTextStatement : Statement {
    ExecuteTextStatement() : Statement(StatementKind::ExecuteText) {}
    ExprPtr text;
};

struct TransactionStatement : Statement {
    explicit TransactionStatement(StatementKind k) : Statement(k) {}
    std::string name; // a name, or a variable with @
};

struct UseStatement : Statement {
    UseStatement() : Statement(StatementKind::Use) {}
    std::string database;
};

struct WaitForStatement : Statement {
    WaitForStatement() : Statement(StatementKind::WaitFor) {}
    ExprPtr delay;
};

struct CursorStatement : Statement {
    enum class Action { Declare, Open, Fetch, Close, Deallocate };
    enum class Fetch { Next, Prior, First, Last, Absolute, Relative };
    CursorStatement() : Statement(StatementKind::Cursor) {}
    Action action = Action::Declare;
    std::string name; // with @ for a cursor variable
    QueryPtr query;
    bool local = false;
    bool scroll = false;
    Fetch fetch = Fetch::Next;
    ExprPtr position;
    std::vector<std::string> into;
};

// A statement that is understood and not carried out; running it throws DbError Unsupported with this text.
struct UnsupportedStatement : Statement {
    UnsupportedStatement() : Statement(StatementKind::Unsupported) {}
    std::string feature;
};

// A parsed batch or module body, with the numbers its statements got.
struct Batch {
    Block statements;
    int count = 0; // statements that have a number
};

} // namespace merchantry::db::tsql
