#pragma once

#include "app/db/ado/connection.h"

#include <string>
#include <vector>

namespace merchantry::db {

enum class CommandType { Text = 1, StoredProcedure = 4 };

// A statement or procedure with its parameters, bound to a connection or, by a connection string, to one of its own.
class Command {
public:
    explicit Command(ConnectionPtr connection) : connection_(std::move(connection)), provider_(&connection_->provider()) {}

    void setActiveConnection(ConnectionPtr connection) { connection_ = std::move(connection); }
    // A connection of its own, opened with this string when the command runs.
    void setActiveConnection(const std::string& connectionString);
    void setCommandType(CommandType type) { type_ = type; }
    void setCommandText(Sql text) { text_ = std::move(text); }
    void append(std::string parameter, SqlType type, Value value);

    CommandType type() const { return type_; }
    const Sql& text() const { return text_; }
    std::vector<Parameter>& parameters() { return parameters_; }
    // The connection to run on; opens it when the command has a string only.
    ConnectionPtr connection();

private:
    ConnectionPtr connection_;
    Provider* provider_;
    std::string ownConnection_;
    CommandType type_ = CommandType::Text;
    Sql text_;
    std::vector<Parameter> parameters_;
};
using CommandPtr = std::shared_ptr<Command>;

} // namespace merchantry::db
