#include "app/db/ado/command.h"

namespace merchantry::db {

void Command::setActiveConnection(const std::string& connectionString) {
    connection_.reset();
    ownConnection_ = connectionString;
}

void Command::append(std::string parameter, SqlType type, Value value) {
    parameters_.push_back({std::move(parameter), type, std::move(value), false});
}

ConnectionPtr Command::connection() {
    if (connection_ == nullptr) {
        connection_ = std::make_shared<Connection>(*provider_);
        connection_->OpenWhenUsed(ownConnection_);
    }
    return connection_;
}

} // namespace merchantry::db
