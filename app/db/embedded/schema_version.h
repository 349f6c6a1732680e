#pragma once

#include "app/db/embedded/connection.h"
#include "app/db/embedded/store_catalog.h"
#include "app/db/embedded/text_order.h"

namespace merchantry::db::embedded {

// Which version of the definitions a connection has read. The file counts its own (SQLite's user_version), so that every program that has
// it open sees when another one changed a definition; plans and compiled modules are told by the number of this one.
class SchemaVersion {
public:
    SchemaVersion(Connection& connection, StoreCatalog& store);

    // Reads the catalogue if the file's number is another than the last read. Requires: a transaction of SQLite, as for all that read.
    void refresh();
    // Reads it whatever the number is.
    void readAgain();
    // A definition was changed in the file: counts its number up and reads it. Requires: a write transaction, as the next two.
    void countUp();
    // The same while the statement that changes definitions still runs: its end counts up.
    void readHalfDone();
    void touch() { touched_ = true; }

    // What plans depend on has changed, though not in the file.
    void changed() { ++number_; }
    // What was read is not so any more: the next refresh reads anew.
    void distrust();
    // Whether the transaction has changed definitions; its end settles it.
    bool touched() const { return touched_; }
    void settle() { touched_ = false; }

    // What plans are bound under: another number asks for another plan.
    std::uint64_t number() const { return number_; }
    // How often the catalogue was read: compiled modules hold for one reading.
    std::uint64_t readings() const { return readings_; }

    TextOrder textOrder() const { return textOrder_; }
    // Compares the texts of this connection in that order, whatever the file's is.
    void compareBy(TextOrder order);
    // Gives the file the newest order. Requires: a write transaction.
    void takeNewestTextOrder();

private:
    std::int64_t numberOfFile();
    void read();

    Connection& connection_;
    StoreCatalog& store_;
    Statement3 readNumber_;
    TextOrder textOrder_;
    std::int64_t fileNumber_ = -1;
    std::uint64_t number_ = 1;
    std::uint64_t readings_ = 0;
    bool touched_ = false;
};

} // namespace merchantry::db::embedded
