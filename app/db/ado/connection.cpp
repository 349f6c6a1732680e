#include "app/db/ado/connection.h"

#include "app/db/ado/recordset.h"

namespace merchantry::db {

void Connection::Open(const std::string& connectionString) {
    connectionString_ = connectionString;
    session_ = provider_.open(connectionString);
}

void Connection::OpenWhenUsed(const std::string& connectionString) {
    connectionString_ = connectionString;
    opensWhenUsed_ = true;
}

void Connection::Close() {
    opensWhenUsed_ = false;
    session_.reset();
}

RecordsetPtr Connection::Execute(const Sql& statement) {
    auto rows = std::make_shared<Recordset>();
    rows->Open(statement, shared_from_this(), CursorType::Static, LockType::ReadOnly);
    return rows;
}

void Connection::BeginTrans() {
    session().begin();
}

void Connection::CommitTrans() {
    session().commit();
}

void Connection::RollbackTrans() {
    session().rollback();
}

Session& Connection::session() {
    if (session_ == nullptr && opensWhenUsed_)
        session_ = provider_.open(connectionString_);
    if (session_ == nullptr)
        throw DbError(DbError::Category::Storage, 0, "Operation is not allowed when the object is closed.").withHresult(kClosedObject);
    return *session_;
}

void Connection::sent(const Sql& statement) const {
    if (provider_.statementSent)
        provider_.statementSent(statement.text(), statement.shownText());
}

} // namespace merchantry::db
