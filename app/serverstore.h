#pragma once

#include "app/db/session.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::app {

// Where a store is, as one text: the path of a store file, or a connection string for a store on a server
// ("Data Source=shop1; Initial Catalog=Tillmark2k; User ID=sa; Password=…").
bool isServerPlace(const std::string& place);
// The place without its password, for messages.
std::string shownPlace(const std::string& place);

// A session on a store of either kind. Throws DbError with a sentence for the user.
std::unique_ptr<db::Session> openStore(const std::string& place);

using StorePercent = std::function<void(int percent)>;

// Makes a store with its first rows on a server, in a database of its own. Throws DbError with a sentence; nothing is left then.
void createServerStore(const std::string& place, const StorePercent& progress);

// Whether the store on a server was made by an earlier version of this program; false when it cannot be asked.
bool isOlderServerStore(const std::string& place);

// Brings a store on a server to this program's schema, in one transaction; false when it is of this version already. The server's own
// backup is the copy of what was before.
bool upgradeServerStore(const std::string& place);

// Renews what a store of this version has otherwise than this program (procedures, first rows); returns how many files of it.
std::size_t renewStore(const std::string& place);

// What renewing would do to a store of this version, or why it does nothing, in a sentence; empty when all is as this program has it.
std::string renewalInWords(const std::string& place);

// What is wrong with a store on a server, in a sentence each: changed procedures, triggers, views and tables, and rules of the program that
// its rows break.
std::vector<std::string> checkServerStore(const std::string& place);

} // namespace merchantry::app
