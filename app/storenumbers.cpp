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

// A value unlike any that is there, for keys, and for columns of a table without rows.
std::string anyValue(const Field& field, const std::string& number) {
    if (field.type.isText())
        return "'" + number.substr(0, static_cast<std::size_t>(std::max(1, field.type.length))) + "'";
    if (field.type.isDate())
        return "'19000101'";
    return field.type.isBinary() ? "0x" : "0";
}

bool isInKey(const db::TableShape& shape, const std::string& column) {
    return std::any_of(shape.keys.begin(), shape.keys.end(),
                       [&](const std::vector<std::string>& key) { return std::find(key.begin(), key.end(), column) != key.end(); });
}

// A row under that number, which is deleted at once: a copy of one that is there, so that it may refer to what it refers to. One for an
// empty table may be refused; its numbers begin anew then.
void useUp(Session& to, const db::TableShape& shape, const std::string& identity, const std::string& number, bool isEmpty) {
    std::string columns = bracketed(identity);
    std::string values = number;
    for (const Field& field : shape.fields) {
        const bool inKey = isInKey(shape, field.name);
        if (field.identity || field.computed || (isEmpty && !inKey && (field.nullable || field.hasDefault)))
            continue;
        columns += ", " + bracketed(field.name);
        values += ", " + (isEmpty || inKey ? anyValue(field, number) : bracketed(field.name));
    }
    const std::string table = bracketed(shape.name);
    run(to, "SET IDENTITY_INSERT " + table + " ON BEGIN TRY INSERT INTO " + table + " (" + columns + ") SELECT " +
                (isEmpty ? values : "TOP 1 " + values + " FROM " + table) + " DELETE FROM " + table + " WHERE " + bracketed(identity) +
                " = " + number + " END TRY BEGIN CATCH END CATCH SET IDENTITY_INSERT " + table + " OFF");
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
        useUp(to, shape, identity->name, std::to_string(last), newest.isNull());
    else // of a table that never held a row, the number is the next one
        run(to, "DBCC CHECKIDENT ('" + table + "', RESEED, " + std::to_string(newest.isNull() ? last + 1 : last) + ") WITH NO_INFOMSGS");
}

} // namespace merchantry::app
