#include "app/db/tsql/bind_from.h"

#include "app/db/tsql/bind_condition.h"
#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/bind_select.h"
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

// A column as those see it who read the query it is of.
BoundColumn shown(BoundColumn column, const std::string& alias, std::size_t index) {
    column.origin = {};
    column.value.form = queryColumn(alias, index, column.value.type).form;
    return column;
}

DbError namelessColumn(std::size_t index, const std::string& of, int line) {
    return serverMessage(Message::ColumnNameless, {std::to_string(index + 1), of}, line);
}

// Binds the sources of one FROM clause.
class SourceBinder {
public:
    SourceBinder(Binding& binding, Scope& scope) : binding_(binding), scope_(scope) {}

    from::Any any(const TableRef& ref) {
        switch (ref.kind) {
        case TableRef::Kind::Join:
            return {join(ref)};
        case TableRef::Kind::Derived:
            return {derived(ref, *ref.query, ref.columnAliases, ref.line)};
        case TableRef::Kind::Function:
            return {tableFunction(ref)};
        case TableRef::Kind::Values:
            return {values(ref)};
        default:
            return table(ref);
        }
    }

    from::Any table(const TableRef& ref) {
        for (std::size_t i = binding_.recursions.size(); i-- > 0;) {
            if (ref.name.parts.size() == 1 && sameName(binding_.recursions[i].table->name, ref.name.last()))
                return {ofRecursion(ref, binding_.recursions[i])};
        }
        if (const CommonTable* common = binding_.findCommonTable(ref.name))
            return commonTable(ref, *common);
        if (const std::shared_ptr<const TableDef> found = binding_.findTable(ref.name)) {
            const std::string alias = scope_.alone ? "" : binding_.nextAlias(); // shorter texts are prepared in less time
            add(tableSource(found, alias), ref);
            return {from::Table{found->storage, alias}};
        }
        if (ref.kind == TableRef::Kind::Variable)
            throw serverMessage(Message::UndeclaredTableVariable, {ref.name.last()}, ref.line).withSeverity(15, 2);
        if (const std::shared_ptr<const ViewDef> found = binding_.context.catalog.view(ref.name))
            return {view(ref, *found)};
        throw serverMessage(Message::InvalidObject, {ref.name.toText()}, ref.line);
    }

    from::Subquery view(const TableRef& ref, const ViewDef& view) {
        // A view sees nothing of the statement around it.
        const Restore tables(binding_.commonTables, std::vector<const CommonTable*>());
        const Restore recursions(binding_.recursions, std::vector<Recursion>());
        const Restore outer(scope_.outer, nullptr);
        from::Subquery rows = derived(ref, *view.statement->query, view.statement->columns, ref.line);
        scope_.sources.back().viewId = view.id;
        return rows;
    }

private:
    from::Join join(const TableRef& ref) {
        if (ref.join == JoinKind::CrossApply || ref.join == JoinKind::OuterApply)
            throw unsupported("APPLY", ref.line);
        from::Join result{ref.join, nullptr, nullptr, std::nullopt};
        result.left = std::make_shared<const from::Any>(any(*ref.left));
        result.right = std::make_shared<const from::Any>(any(*ref.right));
        if (ref.on)
            result.on = bindCondition(binding_, *ref.on);
        return result;
    }

    void add(Source source, const TableRef& ref) {
        if (!ref.alias.empty()) {
            source.exposed = ref.alias;
        } else if (!ref.name.empty()) {
            source.exposed = ref.name.last();
            source.name = ref.name;
        }
        if (!ref.columnAliases.empty()) {
            complete(binding_, source);
            if (ref.columnAliases.size() != source.columns.size())
                throw serverError(Message::TooManyColumns,
                                  "'" + source.exposed + "' has more or fewer columns than were specified in the column list.", ref.line);
            for (std::size_t i = 0; i < source.columns.size(); ++i)
                source.columns[i].name = ref.columnAliases[i];
        }
        for (const Source& other : scope_.sources) {
            if (sameName(other.exposed, source.exposed))
                throw serverMessage(Message::SameExposedNames, {other.exposed, source.exposed}, ref.line);
        }
        scope_.sources.push_back(std::move(source));
    }

    // A query in a FROM clause sees what is around that clause, not the tables beside it.
    std::unique_ptr<BoundQuery> outside(const Query& query) {
        const Restore around(binding_.scope, scope_.outer);
        return bindSubquery(binding_, query);
    }

    from::Subquery derived(const TableRef& ref, const Query& query, const std::vector<std::string>& names, int line) {
        std::unique_ptr<BoundQuery> bound = outside(query);
        const std::string& exposed = ref.alias.empty() ? ref.name.last() : ref.alias;
        Source source = derivedSource(*bound, names, exposed, line);
        if (!source.grouped && !bound->bases.empty()) {
            bound->hasRowIds = true;
            for (std::size_t i = 0; i < bound->bases.size(); ++i)
                source.bases.push_back({bound->bases[i].table, ownColumn(source.alias, "_r" + std::to_string(i))});
        }
        TableRef named;
        named.alias = ref.alias;
        named.name = ref.name;
        named.line = line;
        const std::string alias = source.alias;
        add(std::move(source), named);
        return {std::move(bound), alias};
    }

    // The columns of a query under a name; names are those that were given beside it.
    Source derivedSource(const BoundQuery& bound, const std::vector<std::string>& names, const std::string& exposed, int line) {
        Source source;
        source.alias = binding_.nextAlias();
        source.grouped = bound.grouped || bound.distinct || bound.isLimited();
        for (std::size_t i = 0; i < bound.columns.size(); ++i) {
            BoundColumn column = shown(bound.columns[i], source.alias, i);
            if (i < names.size())
                column.name = names[i];
            if (column.name.empty())
                throw namelessColumn(i, exposed, line);
            for (const BoundColumn& other : source.columns) {
                if (sameName(other.name, column.name))
                    throw serverMessage(Message::DerivedColumnTwice, {column.name, exposed}, line);
            }
            if (bound.grouped || bound.distinct)
                column.value.table.reset();
            source.columns.push_back(std::move(column));
        }
        if (!names.empty() && names.size() != bound.columns.size())
            throw serverMessage(names.size() < bound.columns.size() ? Message::TooManyColumns : Message::TooFewColumns, {exposed}, line);
        return source;
    }

    from::Any commonTable(const TableRef& ref, const CommonTable& table) {
        if (table.query->op == SetOperator::UnionAll && mentions(*table.query->right, table.name))
            return {recursive(ref, table)};
        // It sees only those before it.
        const auto own = std::find(binding_.commonTables.begin(), binding_.commonTables.end(), &table);
        const Restore visible(binding_.commonTables, std::vector<const CommonTable*>(binding_.commonTables.begin(), own));
        return {derived(ref, *table.query, table.columns, table.line)};
    }

    // The step of a recursion reads what was found before.
    from::Table ofRecursion(const TableRef& ref, Recursion& recursion) {
        Source source;
        source.alias = binding_.nextAlias();
        source.columns = recursion.columns;
        for (std::size_t i = 0; i < source.columns.size(); ++i)
            source.columns[i] = shown(std::move(source.columns[i]), source.alias, i);
        recursion.alias = source.alias;
        add(std::move(source), ref);
        return {recursion.name, recursion.alias};
    }

    std::unique_ptr<BoundQuery> boundStep(const Query& query, Recursion& recursion) {
        binding_.recursions.push_back(recursion);
        const AtEnd known([this] { binding_.recursions.pop_back(); });
        std::unique_ptr<BoundQuery> step = outside(query);
        recursion = binding_.recursions.back();
        return step;
    }

    Recursion recursionOf(const CommonTable& table, const BoundQuery& anchor) {
        Recursion recursion;
        recursion.table = &table;
        recursion.name = "r" + binding_.nextAlias();
        for (std::size_t i = 0; i < anchor.columns.size(); ++i) {
            BoundColumn column = shown(anchor.columns[i], "", i);
            if (i < table.columns.size())
                column.name = table.columns[i];
            if (column.name.empty())
                throw namelessColumn(i, table.name, table.line);
            column.value.table.reset();
            if (column.value.type.kind == TypeKind::Null)
                column.value.type = simpleType(TypeKind::Int);
            recursion.columns.push_back(std::move(column));
        }
        return recursion;
    }

    // The types of the columns, which the step must give, too.
    static std::vector<SqlType> stepTypes(const CommonTable& table, const Recursion& recursion, const BoundQuery& anchor,
                                          const BoundQuery& step) {
        if (step.columns.size() != recursion.columns.size())
            throw serverMessage(Message::UnequalColumns, {}, table.line);
        if (step.op != SetOperator::None || anchor.op != SetOperator::None)
            throw unsupported("a recursive common table expression of more than two parts", table.line);
        std::vector<SqlType> types;
        for (std::size_t i = 0; i < recursion.columns.size(); ++i) {
            const SqlType& type = recursion.columns[i].value.type;
            const Typed& given = step.columns[i].value;
            if (!(given.type == type) && given.type.kind != TypeKind::Null && !given.literal())
                throw serverMessage(Message::RecursionTypes, {recursion.columns[i].name, table.name}, table.line);
            types.push_back(type);
        }
        return types;
    }

    from::Recursive recursive(const TableRef& ref, const CommonTable& table) {
        std::unique_ptr<BoundQuery> anchor = outside(*table.query->left);
        Recursion recursion = recursionOf(table, *anchor);
        std::unique_ptr<BoundQuery> step = boundStep(*table.query->right, recursion);
        const std::vector<SqlType> types = stepTypes(table, recursion, *anchor, *step);
        convertColumns(*anchor, types);
        convertColumns(*step, types);
        anchor->depth = wholeNumber(0);
        step->depth =
            called("ts_level", {ownColumn(recursion.alias, "_lv"), wholeNumber(binding_.maxRecursion)}, simpleType(TypeKind::Int));
        Source source;
        source.alias = binding_.nextAlias();
        source.grouped = true;
        source.columns = recursion.columns;
        for (std::size_t i = 0; i < source.columns.size(); ++i)
            source.columns[i] = shown(std::move(source.columns[i]), source.alias, i);
        const std::string alias = source.alias;
        add(std::move(source), ref);
        return {recursion.name, std::move(anchor), std::move(step), alias};
    }

    from::Values values(const TableRef& ref) {
        from::Values result;
        std::vector<SqlType> types;
        for (const std::vector<ExprPtr>& row : ref.rows) {
            result.rows.emplace_back();
            for (std::size_t i = 0; i < row.size(); ++i) {
                result.rows.back().push_back(bindValue(binding_, *row[i]));
                if (types.size() <= i)
                    types.emplace_back();
                types[i] = commonType(types[i], result.rows.back()[i].type, row[i]->line);
            }
            if (row.size() != types.size() || ref.columnAliases.size() != types.size())
                throw serverMessage(Message::TooManyColumns, {ref.alias}, ref.line);
        }
        for (std::vector<Typed>& row : result.rows) {
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = implicitTo(std::move(row[i]), types[i], ref.line);
        }
        result.alias = binding_.nextAlias();
        Source source;
        source.alias = result.alias;
        source.grouped = true;
        for (std::size_t i = 0; i < types.size(); ++i) {
            BoundColumn column;
            column.name = ref.columnAliases[i];
            column.value = queryColumn(result.alias, i, types[i]);
            source.columns.push_back(std::move(column));
        }
        add(std::move(source), ref);
        return result;
    }

    from::Subquery tableFunction(const TableRef& ref) {
        const std::shared_ptr<const FunctionDef> function = binding_.context.catalog.function(ref.name);
        if (!function || !function->statement->table)
            throw serverMessage(Message::InvalidObject, {ref.name.toText()}, ref.line);
        if (ref.args.size() != function->parameters.size())
            throw serverMessage(ref.args.size() < function->parameters.size() ? Message::TooFewArguments : Message::TooManyArguments,
                                {function->name}, ref.line);
        std::vector<std::pair<std::string, Typed>> arguments;
        for (std::size_t i = 0; i < ref.args.size(); ++i) {
            const FunctionDef::Parameter& parameter = function->parameters[i];
            arguments.emplace_back(parameter.name, implicitTo(bindValue(binding_, *ref.args[i]), parameter.type, ref.line));
        }
        const AtEnd outside([this, count = binding_.inlined.size()] { binding_.inlined.resize(count); });
        binding_.inlined.insert(binding_.inlined.end(), arguments.begin(), arguments.end());
        return derived(ref, *function->statement->table, ref.columnAliases, ref.line);
    }

    Binding& binding_;
    Scope& scope_;
};

// A computed column is its expression over the other columns of the source.
Typed computedValue(Binding& binding, const Source& source, std::size_t column) {
    const ColumnDef& definition = source.table->columns[column];
    if (binding.inComputed)
        throw serverMessage(Message::ComputedOfComputed, {definition.name, source.table->name}, definition.computed->line);
    const Restore inside(binding.inComputed, true);
    Scope own;
    own.sources.push_back(source);
    const Restore here(binding.scope, &own);
    Typed computed = bindUngrouped(binding, *definition.computed);
    const SqlType type = computed.type;
    const bool nullable = computed.nullable;
    const Collation collation = computed.collation;
    Typed value = typed(form::Same{std::move(computed)}, type);
    value.nullable = nullable;
    value.collation = collation;
    return value;
}

} // namespace

from::Any bindFrom(Binding& binding, const std::vector<TableRefPtr>& refs, Scope& scope) {
    binding.readsTables = true;
    SourceBinder binder(binding, scope);
    from::List list;
    for (const TableRefPtr& ref : refs)
        list.members.push_back(binder.any(*ref));
    if (list.members.size() == 1)
        return std::move(list.members[0]);
    return {std::move(list)};
}

from::Any bindTable(Binding& binding, const TableRef& ref, Scope& scope) {
    return SourceBinder(binding, scope).table(ref);
}

from::Any bindView(Binding& binding, const TableRef& ref, const ViewDef& view, Scope& scope) {
    return {SourceBinder(binding, scope).view(ref, view)};
}

Source tableSource(const std::shared_ptr<const TableDef>& table, const std::string& alias) {
    Source source;
    source.alias = alias;
    source.table = table;
    source.isTable = true;
    if (!table->readOnly)
        source.bases.push_back({table, ownColumn(alias, "_rowid_")});
    source.name.parts.push_back(table->name);
    return source;
}

BoundColumn boundColumn(Binding& binding, const Source& source, std::size_t column) {
    if (!source.table)
        return source.columns[column];
    const ColumnDef& definition = source.table->columns[column];
    BoundColumn bound;
    bound.name = definition.name;
    if (definition.computed) {
        bound.value = computedValue(binding, source, column);
    } else {
        bound.value = typed(form::Column{source.alias, definition.name}, definition.type);
        bound.value.nullable = definition.nullable;
    }
    if (definition.computed || !source.table->readOnly) {
        bound.value.table = source.table;
        bound.value.column = static_cast<int>(column);
    }
    return bound;
}

void complete(Binding& binding, Source& source) {
    if (!source.table)
        return;
    for (std::size_t i = 0; i < source.table->columns.size(); ++i)
        source.columns.push_back(boundColumn(binding, source, i));
    source.table.reset();
}

} // namespace merchantry::db::tsql
