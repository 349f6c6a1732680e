#include "app/db/tsql/bound.h"

namespace merchantry::db::tsql {

std::vector<SqlType> columnTypes(const BoundQuery& query) {
    std::vector<SqlType> types;
    for (const BoundColumn& column : query.columns)
        types.push_back(column.value.type);
    return types;
}

void convertColumns(BoundQuery& query, const std::vector<SqlType>& types) {
    if (query.op != SetOperator::None) {
        convertColumns(*query.left, types);
        convertColumns(*query.right, types);
    }
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        Typed& value = query.columns[i].value;
        if (query.op == SetOperator::None)
            value = convertTo(std::move(value), types[i]);
        else
            value.type = types[i];
    }
}

} // namespace merchantry::db::tsql
