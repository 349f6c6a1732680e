#include "app/storenumbers.h"

#include "app/db/eachrow.h"
#include "app/storerows.h"

#include <algorithm>

namespace merchantry::app {
namespace {

using db::Session;
using Field = db::TableShape::Field;

void run(Session& session, const std::string& batch) {
    db::NoResult none;
    session.execute(batch, none);
}

Value cellOf(Session& session, const std::string& select) {
    Value cell;
    db::EachRow rows([&](const db::RowView& row) { cell = row.value(0); });
    session.execute(select, rows);
    return cell;
}

} // namespace

void carryLastNumber(Session& from, Session& to, const std::string& table, bool toServer) {
    const db::TableShape shape = from.table(table);
    const auto identity = std::find_if(shape.fields.begin(), shape.fields.end(), [](const Field& field) { return field.identity; });
    if (identity == shape.fields.end())
        return;
    const std::int64_t last = cellOf(from, "SELECT CAST(IDENT_CURRENT('" + table + "') AS bigint)").toInteger();
    const Value newest = cellOf(to, "SELECT MAX(" + bracketed(identity->name) + ") FROM " + bracketed(table));
    const std::int64_t first = cellOf(from, "SELECT CAST(IDENT_SEED('" + table + "') AS bigint)").toInteger();
    if (last <= (newest.isNull() ? first : newest.toInteger()))
        return;
    if (!toServer)
        run(to, "EXEC sp_useidentity '" + table + "', " + std::to_string(last));
    else // of a table that never held a row, the number is the next one
        run(to, "DBCC CHECKIDENT ('" + table + "', RESEED, " + std::to_string(newest.isNull() ? last + 1 : last) + ") WITH NO_INFOMSGS");
}

} // namespace merchantry::app
