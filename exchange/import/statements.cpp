#include "exchange/import/statements.h"

namespace merchantry::exchange {
namespace {

class AllRows : public db::ResultSink {
public:
    void beginSet(const std::vector<db::Column>&) override {}
    void row(const db::RowView& row) override {
        auto& cells = rows.emplace_back();
        for (int column = 0; column < row.size(); ++column)
            cells.push_back(row.value(column));
    }
    std::vector<std::vector<Value>> rows;
};

} // namespace

db::Parameter parameter(std::string name, const db::SqlType& type, Value value) {
    return {std::move(name), type, std::move(value), false};
}

std::vector<std::vector<Value>> called(db::Session& session, const std::string& procedure, std::vector<db::Parameter> parameters) {
    AllRows all;
    session.call(procedure, parameters, all);
    return std::move(all.rows);
}

std::vector<std::vector<Value>> ran(db::Session& session, const std::string& batch, std::vector<db::Parameter> parameters) {
    AllRows all;
    session.execute(batch, parameters, all);
    return std::move(all.rows);
}

} // namespace merchantry::exchange
