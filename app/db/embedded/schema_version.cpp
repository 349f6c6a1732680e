#include "app/db/embedded/schema_version.h"

namespace merchantry::db::embedded {

SchemaVersion::SchemaVersion(Connection& connection, StoreCatalog& store)
    : connection_(connection), store_(store), readNumber_(connection.handle(), "PRAGMA user_version", true),
      textOrder_(textOrderOf(connection.handle())) {}

std::int64_t SchemaVersion::numberOfFile() {
    const ResetGuard guard(readNumber_.get());
    connection_.step(readNumber_.get());
    return sqlite3_column_int64(readNumber_.get(), 0);
}

void SchemaVersion::refresh() {
    const std::int64_t now = numberOfFile();
    if (now == fileNumber_)
        return;
    read();
    fileNumber_ = now;
}

void SchemaVersion::readAgain() {
    read();
    fileNumber_ = numberOfFile();
}

// What the file holds since another program, or a rollback, changed it.
void SchemaVersion::read() {
    if (const TextOrder order = textOrderOf(connection_.handle()); order != textOrder_) {
        registerCollations(connection_.handle(), order);
        textOrder_ = order;
    }
    store_.load();
    ++readings_;
    ++number_;
}

void SchemaVersion::countUp() {
    const std::int64_t next = numberOfFile() + 1;
    connection_.run("PRAGMA user_version=" + std::to_string(next));
    fileNumber_ = next;
    touched_ = true;
    read();
}

void SchemaVersion::readHalfDone() {
    store_.load();
    touched_ = true;
    ++number_;
}

void SchemaVersion::distrust() {
    fileNumber_ = -1;
    ++number_;
}

void SchemaVersion::compareBy(TextOrder order) {
    textOrder_ = order;
    registerCollations(connection_.handle(), order);
}

void SchemaVersion::takeNewestTextOrder() {
    textOrder_ = kNewestTextOrder;
    reorderTexts(connection_.handle());
    countUp();
}

} // namespace merchantry::db::embedded
