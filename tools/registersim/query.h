#pragma once

#include "app/db/session.h"

#include <string_view>
#include <vector>

namespace merchantry::registersim {

using Row = std::vector<Value>;

// The rows of a batch's results, one after the other.
std::vector<Row> query(db::Session& session, std::string_view batch);
// Runs a batch whose "@p1", "@p2", ... stand for these values. `types` has one letter a value, as BulkInsert.
void run(db::Session& session, std::string_view batch, std::string_view types, Row values);
// The type that a letter stands for: i int, m money, f float, d datetime, b bit, t varchar(255).
db::SqlType typeOf(char letter);

} // namespace merchantry::registersim
