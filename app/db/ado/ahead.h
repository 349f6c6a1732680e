#pragma once

#include "app/db/ado/connection.h"
#include "app/db/ado/rowstore.h"
#include "app/db/tsql/sql.h"

#include <memory>
#include <string>
#include <vector>

namespace merchantry::db {

// Reads what a screen is about to ask for, in one batch: to a server each statement that is sent alone takes the way there and back. While
// it stands, whoever opens one of these statements or procedures finds its rows here and sends nothing; each is found once. The statements
// must only read, and none may depend on what another one, or the screen in between, does.
//
// A store in a file is near: nothing is read ahead. Where the batch fails, each statement is sent alone and fails by itself.
class Ahead {
public:
    explicit Ahead(Connection& connection);
    ~Ahead();
    Ahead(const Ahead&) = delete;
    Ahead& operator=(const Ahead&) = delete;

    // A select as it will be opened.
    void select(const Sql& statement);
    // A procedure with the parameters that it will be called with; whether its rows will be written back.
    void call(const Sql& procedure, const std::vector<Parameter>& parameters, bool writesBack = false);
    // Sends them all.
    void read();

    // The rows of the statement, called with these parameters; null when they were not read, or were taken.
    std::shared_ptr<RowStore> take(const std::string& statement, const std::vector<Parameter>& parameters, bool writesBack);

private:
    struct Asked {
        std::string text;
        std::vector<Parameter> parameters;
        bool writesBack = false;
        std::shared_ptr<RowStore> rows{};
    };
    class Sets;

    Connection& connection_;
    Ahead* before_;
    bool far_;
    std::vector<Asked> asked_;
};

} // namespace merchantry::db
