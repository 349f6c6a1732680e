#include "app/DataBroker.h"

#include "app/db/schema/content.h"
#include "app/db/schema/schema.h"
#include "base/errortext.h"

namespace merchantry::app {

void DataBroker::NewCommand(db::ConnectionPtr& connection, std::shared_ptr<ErrLog>& /*logger*/, db::CommandPtr& command) {
    command = std::make_shared<db::Command>(connection);
}

void DataBroker::OpenConnection(std::string& connectionString, std::shared_ptr<ErrLog>& /*logger*/, long& /*timeoutSeconds*/,
                                db::ConnectionPtr& connection) {
    connection = std::make_shared<db::Connection>(provider_);
    whyClosed_.clear();
    wasReached_ = false;
    try {
        connection->Open(connectionString);
        db::checkSchemaVersion(connection->session());
        db::renewContent(connection->session());
    } catch (const std::exception& error) {
        whyClosed_ = sentenceOf(error);
        wasReached_ = connection->State() != 0;
        connection->Close();
    }
}

void DataBroker::OpenCommand(db::RecordsetPtr& rows, std::shared_ptr<ErrLog>& /*logger*/, db::CommandPtr& command, db::CursorType cursor,
                             db::LockType lock, int& status) {
    rows->Open(*command, cursor, lock);
    status = 0;
}

} // namespace merchantry::app
