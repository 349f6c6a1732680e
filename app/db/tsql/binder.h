#pragma once

#include "app/db/tsql/ast.h"
#include "app/db/tsql/bound.h"
#include "app/db/tsql/catalog.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/plan.h"
#include "app/db/tsql/types.h"
#include "base/guard.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace merchantry::db::tsql {

// A variable of a batch or module.
struct Variable {
    std::string name; // with @
    SqlType type;
    bool isCursor = false;
};

// What a statement is bound against, beside the catalogue.
struct BindContext {
    Catalog& catalog;
    const std::vector<Variable>& variables;
    bool ansiNulls = true;
    const TableDef* triggerTable = nullptr;             // in a trigger: the table
    std::shared_ptr<const TableDef> inserted = nullptr; // in a trigger or for OUTPUT
    std::shared_ptr<const TableDef> deleted = nullptr;
};

// The common tables of a query or statement are known while it is bound.
class CommonTablesScope {
public:
    CommonTablesScope(std::vector<const CommonTable*>& known, const std::vector<CommonTable>& own) : known_(known), before_(known.size()) {
        for (const CommonTable& table : own)
            known_.push_back(&table);
    }
    ~CommonTablesScope() { known_.resize(before_); }
    CommonTablesScope(const CommonTablesScope&) = delete;
    CommonTablesScope& operator=(const CommonTablesScope&) = delete;

private:
    std::vector<const CommonTable*>& known_;
    std::size_t before_;
};

// Looks up names and types and turns a tree into SQL for SQLite. One binder serves one statement; what it gives is a plan.
// Throws DbError of category Name (207, 208, 209, 4104, ...), Type (402, 8117, ...) or Syntax with the line.
class Binder {
public:
    explicit Binder(const BindContext& context) : context_(context) {}

    QueryPlan query(const Query& query);
    ValuePlan value(const Expr& expr, const std::optional<SqlType>& target = std::nullopt);
    ValuePlan condition(const Expr& expr);
    // @variable op (value), as SET @variable op= value means it.
    ValuePlan compound(const std::string& variable, char op, const Expr& value, int line);
    ChangePlan insert(const InsertStatement& statement);
    // INSERT ... EXEC: the columns that take the rows, as a plan whose places are the cells of a row in order.
    ChangePlan insertRow(const InsertStatement& statement, const std::vector<SqlType>& types);
    ChangePlan update(const UpdateStatement& statement);
    ChangePlan deleteFrom(const DeleteStatement& statement);
    // A check, default or computed column of a table, as SQLite text over its bare column names.
    std::string check(const TableDef& table, const Expr& expr);
    Typed computed(const TableDef& table, const Expr& expr);
    // The columns of a view, as the catalogue shows them.
    std::vector<BoundColumn> viewColumns(const ViewDef& view);
    // The type of a declared variable, parameter or column.
    SqlType declaredType(const TypeName& name, bool* nullable = nullptr) const;
    int variableSlot(const std::string& name, int line) const;

private:
    friend class FunctionBinder;

    // expressions
    Typed bindValue(const Expr& expr);
    Typed bindValueOf(const Expr& expr);
    std::string bindCondition(const Expr& expr);
    Typed integerLiteral(const Expr& expr);
    Typed numberLiteral(const Expr& expr);
    Typed moneyLiteral(const Expr& expr);
    Typed textLiteral(const Expr& expr);
    Typed binaryLiteral(const Expr& expr);
    Typed column(const Expr& expr);
    BoundColumn columnAt(const ColumnPlace& place);
    Typed resolved(const ColumnPlace& place, int line);
    Typed variable(const Expr& expr);
    Typed systemVariable(const Expr& expr);
    Typed system(SystemValue value, const SqlType& type);
    Typed unary(const Expr& expr);
    Typed arithmetic(const Expr& expr);
    Typed caseOf(const Expr& expr);
    Typed cast(const Expr& expr);
    SqlType typeOfCast(const Expr& expr) const;
    Typed subquery(const Expr& expr);
    Typed collate(const Expr& expr);
    std::string compare(const std::string& op, Typed left, Typed right, int line);
    std::string chained(const Expr& expr);
    std::string like(const Expr& expr);
    std::string inList(const Expr& expr);
    std::string inQuery(const Expr& expr);
    std::string quantified(const Expr& expr);
    std::string place(bool system, int slot);

    // functions
    Typed function(const Expr& expr);
    Typed userFunction(const Expr& expr);
    Typed aggregate(const Expr& expr, const std::string& name);
    Typed windowed(const Expr& expr, const std::string& name);
    std::string over(const WindowSpec& window);
    bool containsAggregate(const Expr& expr) const;
    bool containsAggregate(const SelectCore& core) const;

    // queries
    std::unique_ptr<BoundQuery> bindQueryBody(const Query& query);
    std::unique_ptr<BoundQuery> bindQuery(const Query& query, bool topLevel);
    std::unique_ptr<BoundQuery> bindCore(const Query& query, const SelectCore& core);
    std::unique_ptr<BoundQuery> bindSetOperation(const Query& query);
    std::unique_ptr<BoundQuery> bindSubquery(const Query& query);
    void bindItems(const SelectCore& core, Scope& scope, BoundQuery& result);
    BoundColumn bindItem(const SelectItem& item, bool isRow);
    void bindSource(const SelectCore& core, Scope& scope, BoundQuery& result);
    void bindGroups(const SelectCore& core, Scope& scope);
    void bindHaving(const SelectCore& core, Scope& scope, BoundQuery& result);
    std::string orderBy(const std::vector<OrderItem>& items, Scope* scope, const BoundQuery& result);
    // What an item of ORDER BY orders by: a column of the result, or an expression of its own.
    struct OrderKey {
        int output = -1;
        Origin origin;
        Typed value;
    };
    OrderKey orderKey(const OrderItem& item, Scope* scope, const BoundQuery& result);
    void bindTop(const TopClause& top, BoundQuery& result);
    void expandStar(const SelectItem& item, Scope& scope, std::vector<BoundColumn>& columns);
    QueryPlan plan(const BoundQuery& bound, const Query& query);
    void noteAssigned(const SelectCore& core, QueryPlan& plan) const;

    // FROM
    std::string bindFrom(const std::vector<TableRefPtr>& from, Scope& scope);
    std::string bindTableRef(const TableRef& ref, Scope& scope);
    std::string bindJoin(const TableRef& ref, Scope& scope);
    std::string bindTable(const TableRef& ref, Scope& scope);
    std::unique_ptr<BoundQuery> bindOutside(const Query& query, const Scope& scope);
    std::string bindDerived(const TableRef& ref, const Query& query, Scope& scope, const std::vector<std::string>& names, int line);
    std::string bindView(const TableRef& ref, const ViewDef& view, Scope& scope);
    std::string bindValues(const TableRef& ref, Scope& scope);
    std::string bindTableFunction(const TableRef& ref, Scope& scope);
    std::string bindCommonTable(const TableRef& ref, const CommonTable& table, Scope& scope);
    std::string bindRecursive(const TableRef& ref, const CommonTable& table, Scope& scope);
    void addSource(Scope& scope, Source source, const TableRef& ref);
    Typed computedValue(const Source& source, std::size_t column);
    BoundColumn tableColumn(const Source& source, std::size_t column);
    void complete(Source& source);
    Source tableSourceOf(std::shared_ptr<const TableDef> table, const std::string& sqlAlias);
    std::string fromRecursion(const TableRef& ref, Scope& scope, std::size_t index);
    std::shared_ptr<const TableDef> findTable(const ObjectName& name);
    const CommonTable* findCommonTable(const ObjectName& name) const;
    std::string nextAlias();

    // changes
    struct Target {
        std::shared_ptr<const TableDef> table;
        std::vector<int> columns; // INSERT through a view: the table's columns that the view shows
        std::vector<std::string> names;
        std::int64_t viewId = 0;
    };
    Target insertTarget(const ObjectName& name);
    std::vector<int> insertColumns(const InsertStatement& statement, const Target& target);
    void checkIdentity(const TableDef& table, const std::vector<int>& columns, bool named, int line);
    Typed defaultOf(const TableDef& table, int column);
    std::string storedValue(Typed value, const TableDef& table, int column, int line);
    // Numbers: of an identity column; none for a row that a trigger takes.
    enum class Numbers { Given, None };
    std::vector<std::string> rowValues(const TableDef& table, const std::vector<int>& columns, const std::vector<std::string>& given,
                                       Numbers numbers = Numbers::Given);
    std::string insertHead(const TableDef& table) const;
    std::string insertValues(const InsertStatement& statement, const Target& target, const std::vector<int>& columns, Numbers numbers);
    std::string insertQuery(const InsertStatement& statement, const Target& target, const std::vector<int>& columns, Numbers numbers);
    void checkWidth(const InsertStatement& statement, std::size_t wanted, std::size_t given, bool values) const;
    void bindOutput(ChangePlan& plan, const OutputClause& output);
    BaseRow changeTarget(const ObjectName& name, const std::vector<TableRefPtr>& from, Scope& scope, std::string& tail, Source& source);
    struct Updating;
    void chooseBase(Updating& update);
    void assign(Updating& update, const Assignment& assignment, ChangePlan& plan);
    void assignVariable(Updating& update, const Assignment& assignment);
    int assignedColumn(const Updating& update, const Assignment& assignment, const BoundColumn& target) const;
    std::string assignedValue(const Assignment& assignment, const TableDef& table, int column, const std::string& current);
    void updateText(const Updating& update, ChangePlan& plan);
    bool containsSubquery(const Expr& expr) const;
    std::string topLimit(const std::optional<TopClause>& top);
    void bindInstead(ChangePlan& plan, const Source& source, const std::map<std::string, std::string>& values, const std::string& tail,
                     bool withNew, bool withOld);

    const BindContext context_;
    std::vector<Placeholder> places_;
    std::map<std::pair<bool, int>, int> placeOf_;
    Scope* scope_ = nullptr;
    std::vector<const CommonTable*> commonTables_;
    struct Recursion {
        const CommonTable* table;
        std::string sqlName;
        std::vector<BoundColumn> columns;
        std::string alias;
    };
    std::unique_ptr<BoundQuery> bindStep(const Query& query, const Scope& scope, Recursion& recursion);
    std::vector<Recursion> recursions_;
    int maxRecursion_ = 100;
    bool readsTables_ = false;                           // anything was read from a FROM clause
    bool inDefinition_ = false;                          // of a check, which has no places
    bool inComputed_ = false;                            // within a computed column, which may use no other
    std::vector<std::pair<std::string, Typed>> inlined_; // parameters of a table function
    std::set<int> assigned_;                             // slots that this statement sets while it runs
    int aliases_ = 0;
    int depth_ = 0;
};

} // namespace merchantry::db::tsql
