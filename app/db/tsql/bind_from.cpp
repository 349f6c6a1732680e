#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

bool mentions(const TableRef& ref, const std::string& name);

bool mentions(const Query& query, const std::string& name) {
    if (query.left && (mentions(*query.left, name) || mentions(*query.right, name)))
        return true;
    if (!query.core)
        return false;
    return std::any_of(query.core->from.begin(), query.core->from.end(), [&](const TableRefPtr& ref) { return mentions(*ref, name); });
}

bool mentions(const TableRef& ref, const std::string& name) {
    switch (ref.kind) {
    case TableRef::Kind::Table:
        return ref.name.parts.size() == 1 && sameName(ref.name.last(), name);
    case TableRef::Kind::Derived:
        return mentions(*ref.query, name);
    case TableRef::Kind::Join:
        return mentions(*ref.left, name) || mentions(*ref.right, name);
    default:
        return false;
    }
}

// Whether rows of the right side come without one of the left: such a join may not take in what a comma put before it.
bool keepsRight(const TableRef& ref) {
    return ref.kind == TableRef::Kind::Join && (ref.join == JoinKind::Right || ref.join == JoinKind::Full || keepsRight(*ref.left));
}

} // namespace

std::string Binder::bindFrom(const std::vector<TableRefPtr>& from, Scope& scope) {
    readsTables_ = true;
    std::string sql;
    for (const TableRefPtr& ref : from) {
        const std::string one = bindTableRef(*ref, scope);
        // Brackets only where they matter: a table within them hides its row from the select around.
        const bool apart = !sql.empty() && keepsRight(*ref);
        sql += (sql.empty() ? "" : ",") + (apart ? "(" + one + ")" : one);
    }
    return sql;
}

std::string Binder::bindTableRef(const TableRef& ref, Scope& scope) {
    switch (ref.kind) {
    case TableRef::Kind::Join:
        return bindJoin(ref, scope);
    case TableRef::Kind::Derived:
        return bindDerived(ref, *ref.query, scope, ref.columnAliases, ref.line);
    case TableRef::Kind::Function:
        return bindTableFunction(ref, scope);
    case TableRef::Kind::Values:
        return bindValues(ref, scope);
    default:
        return bindTable(ref, scope);
    }
}

std::string Binder::bindJoin(const TableRef& ref, Scope& scope) {
    if (ref.join == JoinKind::CrossApply || ref.join == JoinKind::OuterApply)
        throw unsupported("APPLY", ref.line);
    const std::string left = bindTableRef(*ref.left, scope);
    std::string right = bindTableRef(*ref.right, scope);
    if (ref.right->kind == TableRef::Kind::Join)
        right = "(" + right + ")";
    static constexpr const char* kWords[] = {" JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ", " JOIN "};
    std::string sql = left + kWords[static_cast<int>(ref.join)] + right;
    if (ref.on)
        sql += " ON " + bindCondition(*ref.on);
    return sql;
}

void Binder::addSource(Scope& scope, Source source, const TableRef& ref) {
    if (!ref.alias.empty()) {
        source.exposed = ref.alias;
    } else if (!ref.name.empty()) {
        source.exposed = ref.name.last();
        source.name = ref.name;
    }
    if (!ref.columnAliases.empty()) {
        complete(source);
        if (ref.columnAliases.size() != source.columns.size())
            throw syntaxError(8158, "'" + source.exposed + "' has more or fewer columns than were specified in the column list.", ref.line);
        for (std::size_t i = 0; i < source.columns.size(); ++i)
            source.columns[i].name = ref.columnAliases[i];
    }
    for (const Source& other : scope.sources) {
        if (sameName(other.exposed, source.exposed))
            throw nameError(1013,
                            "The objects \"" + other.exposed + "\" and \"" + source.exposed +
                                "\" in the FROM clause have the same exposed names. "
                                "Use correlation names to distinguish them.",
                            ref.line);
    }
    scope.sources.push_back(std::move(source));
}

std::shared_ptr<const TableDef> Binder::findTable(const ObjectName& name) {
    if (name.parts.size() == 1) {
        if (context_.inserted && sameName(name.last(), "inserted"))
            return context_.inserted;
        if (context_.deleted && sameName(name.last(), "deleted"))
            return context_.deleted;
    }
    return context_.catalog.table(name);
}

const CommonTable* Binder::findCommonTable(const ObjectName& name) const {
    if (name.parts.size() != 1)
        return nullptr;
    for (auto table = commonTables_.rbegin(); table != commonTables_.rend(); ++table) {
        if (sameName((*table)->name, name.last()))
            return *table;
    }
    return nullptr;
}

std::string Binder::bindTable(const TableRef& ref, Scope& scope) {
    for (std::size_t i = recursions_.size(); i-- > 0;) {
        if (ref.name.parts.size() == 1 && sameName(recursions_[i].table->name, ref.name.last()))
            return fromRecursion(ref, scope, i);
    }
    if (const CommonTable* common = findCommonTable(ref.name))
        return bindCommonTable(ref, *common, scope);
    if (const std::shared_ptr<const TableDef> table = findTable(ref.name)) {
        if (scope.alone) { // shorter texts are prepared in less time
            addSource(scope, tableSourceOf(table, ""), ref);
            return table->storage;
        }
        const std::string alias = nextAlias();
        addSource(scope, tableSourceOf(table, alias), ref);
        return table->storage + " AS " + alias;
    }
    if (ref.kind == TableRef::Kind::Variable)
        throw nameError(1087, "Must declare the table variable \"" + ref.name.last() + "\".", ref.line).withSeverity(15, 2);
    if (const std::shared_ptr<const ViewDef> view = context_.catalog.view(ref.name))
        return bindView(ref, *view, scope);
    throw nameError(208, "Invalid object name '" + ref.name.toText() + "'.", ref.line);
}

// A computed column is its expression over the other columns of the source.
Typed Binder::computedValue(const Source& source, std::size_t column) {
    const TableDef& table = *source.table;
    if (inComputed_)
        throw typeError(1759,
                        "Computed column '" + table.columns[column].name + "' in table '" + table.name +
                            "' is not allowed to be used in another computed-column definition.",
                        table.columns[column].computed->line);
    const Restore inside(inComputed_, true);
    Scope own;
    own.sources.push_back(source);
    const Restore here(scope_, &own);
    Typed value = bindValueOf(*table.columns[column].computed);
    value.table = source.table;
    value.column = static_cast<int>(column);
    value.isColumn = false;
    value.literal.reset();
    return value;
}

BoundColumn Binder::tableColumn(const Source& source, std::size_t column) {
    const ColumnDef& definition = source.table->columns[column];
    BoundColumn bound;
    bound.name = definition.name;
    if (definition.computed) {
        bound.value = computedValue(source, column);
        return bound;
    }
    bound.value.sql = (source.sqlAlias.empty() ? "" : source.sqlAlias + ".") + quotedName(definition.name);
    bound.value.type = definition.type;
    bound.value.nullable = definition.nullable;
    bound.value.isColumn = true;
    if (!source.table->readOnly) {
        bound.value.table = source.table;
        bound.value.column = static_cast<int>(column);
    }
    return bound;
}

// Makes all columns of a source that were not made yet.
void Binder::complete(Source& source) {
    if (!source.table)
        return;
    for (std::size_t i = 0; i < source.table->columns.size(); ++i)
        source.columns.push_back(tableColumn(source, i));
    source.table.reset();
}

Source Binder::tableSourceOf(std::shared_ptr<const TableDef> table, const std::string& sqlAlias) {
    Source source;
    source.sqlAlias = sqlAlias;
    source.table = table;
    source.isTable = true;
    const std::string prefix = sqlAlias.empty() ? "" : sqlAlias + ".";
    if (!table->readOnly)
        source.bases.push_back({table, prefix + "_rowid_"});
    source.name.parts.push_back(table->name);
    return source;
}

// A query in a FROM clause sees what is around that clause, not the tables beside it.
std::unique_ptr<BoundQuery> Binder::bindOutside(const Query& query, const Scope& scope) {
    const Restore around(scope_, scope.outer);
    return bindSubquery(query);
}

std::string Binder::bindDerived(const TableRef& ref, const Query& query, Scope& scope, const std::vector<std::string>& names, int line) {
    const std::unique_ptr<BoundQuery> bound = bindOutside(query, scope);
    const std::string alias = nextAlias();
    Source source;
    source.sqlAlias = alias;
    source.grouped = bound->grouped || bound->distinct || !bound->limit.empty();
    const std::string& exposed = ref.alias.empty() ? ref.name.last() : ref.alias;
    for (std::size_t i = 0; i < bound->columns.size(); ++i) {
        BoundColumn column = bound->columns[i];
        column.origin = {};
        if (i < names.size())
            column.name = names[i];
        if (column.name.empty())
            throw syntaxError(8155, "No column name was specified for column " + std::to_string(i + 1) + " of '" + exposed + "'.", line);
        for (const BoundColumn& other : source.columns) {
            if (sameName(other.name, column.name))
                throw syntaxError(8156, "The column '" + column.name + "' was specified multiple times for '" + exposed + "'.", line);
        }
        if (bound->grouped || bound->distinct)
            column.value.table.reset();
        column.value.sql = alias + "._c" + std::to_string(i);
        column.value.isColumn = true;
        column.value.isPlace = false;
        column.value.literal.reset();
        source.columns.push_back(std::move(column));
    }
    if (!names.empty() && names.size() != bound->columns.size())
        throw syntaxError(names.size() < bound->columns.size() ? 8158 : 8159,
                          "'" + exposed + "' has another number of columns than were specified in the column list.", line);
    if (!source.grouped && !bound->bases.empty()) {
        bound->hasRowIds = true;
        for (std::size_t i = 0; i < bound->bases.size(); ++i)
            source.bases.push_back({bound->bases[i].table, alias + "._r" + std::to_string(i)});
    }
    const std::string text = "(" + render(*bound) + ") AS " + alias;
    TableRef named;
    named.alias = ref.alias;
    named.name = ref.name;
    named.line = line;
    addSource(scope, std::move(source), named);
    return text;
}

std::string Binder::bindView(const TableRef& ref, const ViewDef& view, Scope& scope) {
    // A view sees nothing of the statement around it.
    const Restore tables(commonTables_, std::vector<const CommonTable*>());
    const Restore recursions(recursions_, std::vector<Recursion>());
    const Restore outer(scope.outer, nullptr);
    std::string sql = bindDerived(ref, *view.statement->query, scope, view.statement->columns, ref.line);
    scope.sources.back().viewId = view.id;
    return sql;
}

std::string Binder::bindCommonTable(const TableRef& ref, const CommonTable& table, Scope& scope) {
    if (table.query->op == SetOperator::UnionAll && mentions(*table.query->right, table.name))
        return bindRecursive(ref, table, scope);
    // It sees only those before it.
    const auto own = std::find(commonTables_.begin(), commonTables_.end(), &table);
    const Restore visible(commonTables_, std::vector<const CommonTable*>(commonTables_.begin(), own));
    return bindDerived(ref, *table.query, scope, table.columns, table.line);
}

std::string Binder::fromRecursion(const TableRef& ref, Scope& scope, std::size_t index) {
    const std::string alias = nextAlias();
    Source source;
    source.sqlAlias = alias;
    source.columns = recursions_[index].columns;
    for (std::size_t i = 0; i < source.columns.size(); ++i)
        source.columns[i].value.sql = alias + "._c" + std::to_string(i);
    recursions_[index].alias = alias;
    addSource(scope, std::move(source), ref);
    return recursions_[index].sqlName + " AS " + alias;
}

// The part of a recursion that reads what was found before.
std::unique_ptr<BoundQuery> Binder::bindStep(const Query& query, const Scope& scope, Recursion& recursion) {
    recursions_.push_back(recursion);
    const AtEnd known([this] { recursions_.pop_back(); });
    std::unique_ptr<BoundQuery> step = bindOutside(query, scope);
    recursion = recursions_.back();
    return step;
}

std::string Binder::bindRecursive(const TableRef& ref, const CommonTable& table, Scope& scope) {
    const std::unique_ptr<BoundQuery> anchor = bindOutside(*table.query->left, scope);
    Recursion recursion;
    recursion.table = &table;
    recursion.sqlName = "r" + nextAlias();
    for (std::size_t i = 0; i < anchor->columns.size(); ++i) {
        BoundColumn column = anchor->columns[i];
        column.origin = {};
        if (i < table.columns.size())
            column.name = table.columns[i];
        if (column.name.empty())
            throw syntaxError(8155, "No column name was specified for column " + std::to_string(i + 1) + " of '" + table.name + "'.",
                              table.line);
        column.value.isColumn = true;
        column.value.isPlace = false;
        column.value.literal.reset();
        column.value.table.reset();
        if (column.value.type.kind == TypeKind::Null)
            column.value.type = simpleType(TypeKind::Int);
        recursion.columns.push_back(std::move(column));
    }
    const std::unique_ptr<BoundQuery> step = bindStep(*table.query->right, scope, recursion);
    if (step->columns.size() != recursion.columns.size())
        throw syntaxError(205,
                          "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of expressions in "
                          "their target lists.",
                          table.line);
    if (step->op != SetOperator::None || anchor->op != SetOperator::None)
        throw unsupported("a recursive common table expression of more than two parts", table.line);
    std::string columns;
    std::vector<SqlType> types;
    for (std::size_t i = 0; i < recursion.columns.size(); ++i) {
        const SqlType& type = recursion.columns[i].value.type;
        if (!(step->columns[i].value.type == type) && step->columns[i].value.type.kind != TypeKind::Null && !step->columns[i].value.literal)
            throw typeError(240,
                            "Types don't match between the anchor and the recursive part in column \"" + recursion.columns[i].name +
                                "\" of recursive query \"" + table.name + "\".",
                            table.line);
        types.push_back(type);
        columns += "_c" + std::to_string(i) + ",";
    }
    anchor->level = "0";
    step->level = "ts_level(" + recursion.alias + "._lv," + std::to_string(maxRecursion_) + ")";
    const std::string alias = nextAlias();
    const std::string text = "(WITH RECURSIVE " + recursion.sqlName + "(" + columns + "_lv) AS (" + render(*anchor, &types) +
                             " UNION ALL " + render(*step, &types) + ") SELECT * FROM " + recursion.sqlName + ") AS " + alias;
    Source source;
    source.sqlAlias = alias;
    source.grouped = true;
    source.columns = recursion.columns;
    for (std::size_t i = 0; i < source.columns.size(); ++i)
        source.columns[i].value.sql = alias + "._c" + std::to_string(i);
    addSource(scope, std::move(source), ref);
    return text;
}

std::string Binder::bindValues(const TableRef& ref, Scope& scope) {
    std::vector<std::vector<Typed>> rows;
    std::vector<SqlType> types;
    for (const std::vector<ExprPtr>& row : ref.rows) {
        rows.emplace_back();
        for (std::size_t i = 0; i < row.size(); ++i) {
            rows.back().push_back(bindValue(*row[i]));
            if (types.size() <= i)
                types.emplace_back();
            types[i] = commonType(types[i], rows.back()[i].type, row[i]->line);
        }
        if (row.size() != types.size() || ref.columnAliases.size() != types.size())
            throw syntaxError(8158, "'" + ref.alias + "' has more columns than were specified in the column list.", ref.line);
    }
    const std::string alias = nextAlias();
    std::string text;
    for (std::vector<Typed>& row : rows) {
        text += text.empty() ? "SELECT " : " UNION ALL SELECT ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i] = implicitTo(std::move(row[i]), types[i], ref.line);
            text += (i > 0 ? "," : "") + collated(row[i]) + " AS _c" + std::to_string(i);
        }
    }
    Source source;
    source.sqlAlias = alias;
    source.grouped = true;
    for (std::size_t i = 0; i < types.size(); ++i) {
        BoundColumn column;
        column.name = ref.columnAliases[i];
        column.value.sql = alias + "._c" + std::to_string(i);
        column.value.type = types[i];
        column.value.isColumn = true;
        source.columns.push_back(std::move(column));
    }
    addSource(scope, std::move(source), ref);
    return "(" + text + ") AS " + alias;
}

std::string Binder::bindTableFunction(const TableRef& ref, Scope& scope) {
    const std::shared_ptr<const FunctionDef> function = context_.catalog.function(ref.name);
    if (!function || !function->statement->table)
        throw nameError(208, "Invalid object name '" + ref.name.toText() + "'.", ref.line);
    if (ref.args.size() != function->parameters.size())
        throw syntaxError(ref.args.size() < function->parameters.size() ? 313 : 8144,
                          "Procedure or function " + function->name + " has another number of arguments.", ref.line);
    std::vector<std::pair<std::string, Typed>> arguments;
    for (std::size_t i = 0; i < ref.args.size(); ++i)
        arguments.emplace_back(function->parameters[i].name, implicitTo(bindValue(*ref.args[i]), function->parameters[i].type, ref.line));
    const AtEnd outside([this, count = inlined_.size()] { inlined_.resize(count); });
    inlined_.insert(inlined_.end(), arguments.begin(), arguments.end());
    return bindDerived(ref, *function->statement->table, scope, ref.columnAliases, ref.line);
}

std::vector<BoundColumn> Binder::viewColumns(const ViewDef& view) {
    Scope scope;
    TableRef ref;
    ref.name.parts.push_back(view.name);
    bindView(ref, view, scope);
    return scope.sources[0].columns;
}

} // namespace merchantry::db::tsql
