#pragma once

#include "app/db/ado/provider.h"
#include "app/db/tsql/sql.h"

#include <memory>
#include <string>

namespace merchantry::db {

class Recordset;
using RecordsetPtr = std::shared_ptr<Recordset>;

// A connection to the store database, as screens know it. Made closed; dropping it rolls back and closes. Shared by reference between those
// that use it.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    explicit Connection(Provider& provider) : provider_(provider) {}

    // Throws DbError with a sentence for the user; the connection stays closed then.
    void Open(const std::string& connectionString);
    // The same, as soon as something is sent: what fails to open then throws there.
    void OpenWhenUsed(const std::string& connectionString);
    void Close();
    // 0 closed, 1 open.
    int State() const { return session_ != nullptr || opensWhenUsed_ ? 1 : 0; }
    const std::string& ConnectionString() const { return connectionString_; }
    // Seconds that a statement may take, 0 for no limit. A store in a file sets no limit of its own.
    int CommandTimeout = 30;

    // Runs the statement; the first set of rows as a static, read-only recordset (closed when the statement gives none).
    RecordsetPtr Execute(const Sql& statement);

    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();

    // The session below. Throws DbError (kClosedObject) when the connection is closed.
    Session& session();
    Provider& provider() const { return provider_; }
    // Tells lookers-on that this statement is about to be sent.
    void sent(const Sql& statement) const;

private:
    Provider& provider_;
    std::string connectionString_;
    std::unique_ptr<Session> session_;
    bool opensWhenUsed_ = false;
};
using ConnectionPtr = std::shared_ptr<Connection>;

} // namespace merchantry::db
