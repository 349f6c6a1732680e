#include "bench/barestore.h"

#include "app/db/embedded/text_order.h"

#include <cstdio>
#include <cstdlib>

namespace merchantry::bench {
namespace {

void require(int code, sqlite3* db) {
    if (code == SQLITE_OK)
        return;
    std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(db));
    std::exit(1);
}

} // namespace

BareStore::BareStore(const std::filesystem::path& file) {
    require(sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr), db_);
    db::embedded::registerCollations(db_, db::embedded::textOrderOf(db_));
    require(sqlite3_exec(db_, "PRAGMA cache_size=-16384", nullptr, nullptr, nullptr), db_);
}

BareStore::~BareStore() {
    sqlite3_close_v2(db_);
}

sqlite3_stmt* BareStore::prepare(const std::string& sql) const {
    sqlite3_stmt* statement = nullptr;
    require(sqlite3_prepare_v2(db_, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr), db_);
    return statement;
}

long readRow(sqlite3_stmt* statement) {
    long sum = 0;
    for (int i = 0; i < sqlite3_column_count(statement); ++i)
        switch (sqlite3_column_type(statement, i)) {
        case SQLITE_NULL:
            break;
        case SQLITE_TEXT:
            sum += *sqlite3_column_text(statement, i) + sqlite3_column_bytes(statement, i);
            break;
        case SQLITE_FLOAT:
            sum += static_cast<long>(sqlite3_column_double(statement, i));
            break;
        default:
            sum += sqlite3_column_int64(statement, i);
        }
    return sum;
}

} // namespace merchantry::bench
