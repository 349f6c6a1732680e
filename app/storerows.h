#pragma once

#include "app/db/session.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::app {

// Rows on their way into a table, in blocks of one statement each.
class RowBlock {
public:
    virtual ~RowBlock() = default;
    virtual void add(const db::RowView& row) = 0;
    // Puts what was added into the table. Throws DbError.
    virtual void send(db::Session& to) = 0;
    // Whether it is time to.
    virtual bool isFull() const = 0;
};

// The columns of a table that hold something of their own.
std::vector<db::TableShape::Field> storedFields(db::Session& session, const std::string& table);
// "[SKU], [Name]"
std::string namesOf(const std::vector<db::TableShape::Field>& fields);
std::string bracketed(const std::string& name);

// Blocks for a table with these fields: rows as JSON, which a server takes apart much faster than it reads them in statements, or as
// statements, for a session or a table that has no JSON.
std::unique_ptr<RowBlock> rowBlockFor(const std::string& table, const std::vector<db::TableShape::Field>& fields, bool takesJson);
// Whether the session takes rows as JSON: a server may be too old for it, or keep the database as an older one would.
bool takesJson(db::Session& session);

} // namespace merchantry::app
