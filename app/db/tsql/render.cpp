#include "app/db/tsql/bound.h"

namespace merchantry::db::tsql {
namespace {

std::string setOperatorSql(SetOperator op) {
    switch (op) {
    case SetOperator::Union:
        return " UNION ";
    case SetOperator::UnionAll:
        return " UNION ALL ";
    case SetOperator::Except:
        return " EXCEPT ";
    default:
        return " INTERSECT ";
    }
}

// Whether a query can stand as an operand without parentheses, which SQLite does not have there.
bool isPlainOperand(const BoundQuery& query, bool isLeft) {
    if (!query.orderBy.empty() || !query.limit.empty())
        return false;
    return query.op == SetOperator::None || isLeft;
}

std::string renderCore(const BoundQuery& query, const std::vector<SqlType>* types, bool unnamed) {
    std::string sql = query.distinct ? "SELECT DISTINCT " : "SELECT ";
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        Typed value = query.columns[i].value;
        if (types)
            value = convertTo(std::move(value), (*types)[i]);
        const bool plain = value.isColumn && value.collation.empty();
        sql += (i > 0 ? "," : "") + (plain || !value.type.isText() ? value.sql : collated(value)) +
               (unnamed ? std::string() : " AS _c" + std::to_string(i));
    }
    for (std::size_t i = 0; query.hasRowIds && i < query.bases.size(); ++i)
        sql += "," + query.bases[i].sql + " AS _r" + std::to_string(i);
    if (!query.level.empty())
        sql += "," + query.level;
    return sql + query.tail;
}

} // namespace

std::vector<SqlType> columnTypes(const BoundQuery& query) {
    std::vector<SqlType> types;
    for (const BoundColumn& column : query.columns)
        types.push_back(column.value.type);
    return types;
}

std::string render(const BoundQuery& query, const std::vector<SqlType>* types, bool unnamed) {
    if (query.op == SetOperator::None)
        return renderCore(query, types, unnamed) + query.orderBy + query.limit;
    const std::vector<SqlType> own = types ? *types : columnTypes(query);
    const auto operand = [&](const BoundQuery& side, bool isLeft) {
        const std::string text = render(side, &own);
        return isPlainOperand(side, isLeft) ? text : "SELECT * FROM (" + text + ")";
    };
    return operand(*query.left, true) + setOperatorSql(query.op) + operand(*query.right, false) + query.orderBy + query.limit;
}

} // namespace merchantry::db::tsql
