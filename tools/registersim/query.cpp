#include "tools/registersim/query.h"

#include <utility>

namespace merchantry::registersim {
namespace {

class Collector : public db::ResultSink {
public:
    void beginSet(const std::vector<db::Column>&) override {}
    void row(const db::RowView& row) override {
        Row cells;
        for (int i = 0; i < row.size(); ++i)
            cells.push_back(row.value(i));
        rows.push_back(std::move(cells));
    }
    std::vector<Row> rows;
};

// A parameter's value must be of its type's own kind.
Value fitted(Value value, char letter) {
    if (value.isNull())
        return value;
    if (letter == 'f')
        return value.toNumber();
    if (letter == 'm')
        return value.toCurrency();
    if (letter == 'b')
        return value.toFlag();
    return value;
}

} // namespace

std::vector<Row> query(db::Session& session, std::string_view batch) {
    Collector collector;
    session.execute(batch, collector);
    return std::move(collector.rows);
}

void run(db::Session& session, std::string_view batch, std::string_view types, Row values) {
    std::vector<db::Parameter> parameters;
    for (std::size_t i = 0; i < values.size(); ++i)
        parameters.push_back({"p" + std::to_string(i + 1), typeOf(types[i]), fitted(std::move(values[i]), types[i]), false});
    db::NoResult none;
    session.execute(batch, parameters, none);
}

db::SqlType typeOf(char letter) {
    switch (letter) {
    case 'i':
        return {.kind = db::TypeKind::Int};
    case 'm':
        return {.kind = db::TypeKind::Money};
    case 'f':
        return {.kind = db::TypeKind::Float};
    case 'd':
        return {.kind = db::TypeKind::DateTime};
    case 'b':
        return {.kind = db::TypeKind::Bit};
    default:
        return {.kind = db::TypeKind::VarChar, .length = 255};
    }
}

} // namespace merchantry::registersim
