#pragma once

#include "app/db/ado/connection.h"

#include <utility>

namespace merchantry::db {

// A transaction on a connection from here to the end of the block: rolled back unless told that the work is done.
class Transaction {
public:
    explicit Transaction(ConnectionPtr connection) : connection_(std::move(connection)) { connection_->BeginTrans(); }
    ~Transaction() {
        try {
            if (!done_)
                connection_->RollbackTrans();
        } catch (const std::exception&) {
            // The store does so itself when the connection goes.
        }
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit() {
        connection_->CommitTrans();
        done_ = true;
    }

private:
    ConnectionPtr connection_;
    bool done_ = false;
};

} // namespace merchantry::db
