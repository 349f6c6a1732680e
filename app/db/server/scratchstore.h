#pragma once

#include "app/db/session.h"

#include <functional>
#include <memory>
#include <vector>

namespace merchantry::db::server {

// An empty store in this process with the tables, views and procedures of a server, which tells what the driver cannot: from which table
// each column of a result comes, and what the tables look like. Made once for a schema. One thread.
class ScratchStore {
public:
    // Reads the server's own catalogue. What of it this program does not understand is left out: nothing can be written through it then.
    explicit ScratchStore(const std::function<void(std::string_view batch, ResultSink& sink)>& server);

    // The columns of each set of rows that a batch gives, with their tables. `known` becomes false for a name that is not there.
    std::vector<std::vector<Column>> setsOf(std::string_view batch, const std::vector<Parameter>& parameters, bool& known);
    // Throws DbError 208 when there is no such table.
    TableShape table(std::string_view name);

private:
    std::unique_ptr<Session> session_;
};

// The columns, named by the driver, with the tables that a set of the same columns has in the scratch store; unchanged when there is none.
void nameTables(std::vector<Column>& columns, const std::vector<std::vector<Column>>& sets);

} // namespace merchantry::db::server
