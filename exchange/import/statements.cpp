#include "exchange/import/statements.h"

#include "app/db/eachrow.h"

namespace merchantry::exchange {
namespace {

// Hands a copy of each row to the list.
db::EachRow into(std::vector<std::vector<Value>>& all) {
    return db::EachRow([&all](const db::RowView& row) {
        auto& cells = all.emplace_back();
        for (int column = 0; column < row.size(); ++column)
            cells.push_back(row.value(column));
    });
}

} // namespace

db::Parameter parameter(std::string name, const db::SqlType& type, Value value) {
    return {std::move(name), type, std::move(value), false};
}

std::vector<std::vector<Value>> called(db::Session& session, const std::string& procedure, std::vector<db::Parameter> parameters) {
    std::vector<std::vector<Value>> all;
    db::EachRow rows = into(all);
    session.call(procedure, parameters, rows);
    return all;
}

std::vector<std::vector<Value>> ran(db::Session& session, const std::string& batch, std::vector<db::Parameter> parameters) {
    std::vector<std::vector<Value>> all;
    db::EachRow rows = into(all);
    session.execute(batch, parameters, rows);
    return all;
}

} // namespace merchantry::exchange
