#pragma once

#include "app/db/session.h"

#include <map>
#include <string>
#include <vector>

namespace merchantry::db {

// What the tables of a store are made of: their columns, keys, checks and indexes, each by its name in a sentence ("column Price of the
// table Item") with its definition as text.
std::map<std::string, std::string> tableParts(Session& session);

// What a store lacks of the tables of a new one, or has otherwise, in a sentence each. What it has beyond that is its own affair.
std::vector<std::string> changedTables(const std::map<std::string, std::string>& stored, const std::map<std::string, std::string>& own);

} // namespace merchantry::db
