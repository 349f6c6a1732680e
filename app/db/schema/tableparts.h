#pragma once

#include "app/db/session.h"

#include <map>
#include <string>
#include <vector>

namespace merchantry::db {

// What the tables of a store are made of: their columns, keys, checks and indexes, each by its name in a sentence ("column Price of the
// table Item") with its definition as text. Without indexes for a server that gives them names of its own.
std::map<std::string, std::string> tableParts(Session& session, bool withIndexes = true);

// What a store lacks of the tables of a new one, or has otherwise, in a sentence each. What it has beyond that is its own affair.
// Names compare without case.
std::vector<std::string> changedTables(const std::map<std::string, std::string>& stored, const std::map<std::string, std::string>& own);

} // namespace merchantry::db
