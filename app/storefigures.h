#pragma once

#include "base/currency.h"
#include "base/date.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace merchantry::db::embedded {
class Connection;
} // namespace merchantry::db::embedded

namespace merchantry::app {

// What a store comes to, exact: two stores with the same figures hold, as far as a shop can tell, the same.
struct StoreFigures {
    int version = 0;                          // of the schema
    std::map<std::string, std::int64_t> rows; // by table
    // Of the ledger, the stock, the accounts and the sales, by what is summed ("Balances of customers"); money in ten-thousandths.
    std::map<std::string, std::int64_t> sums;
    Currency stockValue; // at average cost
    Date newest;         // as in StoreMark
    // The fingerprint of the backup's file, where these are the figures of what was backed up; see db::contentOf.
    std::optional<std::uint64_t> content{};

    std::int64_t rowCount() const;
};

// Asked now and then during a long work; false stops it: DbError Cancelled.
using GoOn = std::function<bool()>;

// Reads only; one moment of the store when the connection holds one. Throws DbError.
StoreFigures figuresOf(db::embedded::Connection& connection, const GoOn& goOn = {});
// Of a file; throws DbError with a sentence when it is no store.
StoreFigures figuresOf(const std::filesystem::path& store);
// Of a file that only the caller knows, with a look at every page of its tables and indexes. Throws DbError when one is damaged.
StoreFigures figuresOfOwn(const std::filesystem::path& store, const GoOn& goOn = {});

// What can be told of a store at a glance.
struct StoreMark {
    int version = 0; // of the schema; 0 for a file without one
    Date newest;     // receipt, stock movement or posting to an account; 1900 when there is none
};
// Of a file that this process or others may have open; throws DbError with a sentence when it is no store.
StoreMark markOf(const std::filesystem::path& store);

// The first figure in which a copy differs from its original, in a sentence; empty when they agree.
std::string differenceOf(const StoreFigures& original, const StoreFigures& copy);

} // namespace merchantry::app
