#include "app/db/embedded/text_order.h"

#include "app/db/dberror.h"
#include "base/characters.h"
#include "base/lettercase.h"
#include "base/text.h"
#include "base/textorder.h"

#include <algorithm>
#include <string>

namespace merchantry::db::embedded {
namespace {

using Compare = int(std::string_view, std::string_view);

int compareByCode(std::string_view left, std::string_view right) {
    left = trimmedRight(left);
    right = trimmedRight(right);
    std::size_t l = 0;
    std::size_t r = 0;
    while (l < left.size() && r < right.size()) {
        const char32_t a = foldedCase(nextCodePoint(left, l));
        const char32_t b = foldedCase(nextCodePoint(right, r));
        if (a != b)
            return a < b ? -1 : 1;
    }
    return l < left.size() ? 1 : r < right.size() ? -1 : 0;
}

// Small letters before capitals where all else is the same.
template <Compare* kCaseless> int compareCased(std::string_view left, std::string_view right) {
    const int caseless = kCaseless(left, right);
    return caseless != 0 ? caseless : trimmedRight(right).compare(trimmedRight(left));
}

int compareBytes(std::string_view left, std::string_view right) {
    return trimmedRight(left).compare(trimmedRight(right));
}

template <Compare* kCompare> int compare(void*, int leftSize, const void* left, int rightSize, const void* right) {
    return kCompare({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                    {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}

void run(sqlite3* db, const char* sql) {
    if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw DbError(DbError::Category::Storage, 0, std::string("The indexes cannot be put into order: ") + sqlite3_errmsg(db));
}

} // namespace

TextOrder textOrderOf(sqlite3* db) {
    TextOrder order = TextOrder::ByCode;
    sqlite3_stmt* select = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT version FROM ts_order", -1, &select, nullptr) == SQLITE_OK && sqlite3_step(select) == SQLITE_ROW)
        order = static_cast<TextOrder>(sqlite3_column_int(select, 0));
    sqlite3_finalize(select);
    return order;
}

void registerCollations(sqlite3* db, TextOrder order) {
    const bool byCode = order == TextOrder::ByCode;
    const auto add = [&](const char* name, auto* collation) {
        if (sqlite3_create_collation_v2(db, name, SQLITE_UTF8, nullptr, collation, nullptr) != SQLITE_OK)
            throw DbError(DbError::Category::Storage, 0, sqlite3_errmsg(db));
    };
    add("ts", byCode ? compare<compareByCode> : compare<compareText>);
    add("ts_cs", byCode ? compare<compareCased<compareByCode>> : compare<compareCased<compareText>>);
    add("ts_bin", compare<compareBytes>);
}

void reorderTexts(sqlite3* db) {
    registerCollations(db, kNewestTextOrder);
    run(db, "REINDEX ts; REINDEX ts_cs; CREATE TABLE IF NOT EXISTS ts_order(version INTEGER NOT NULL) STRICT; DELETE FROM ts_order");
    run(db, ("INSERT INTO ts_order VALUES (" + std::to_string(static_cast<int>(kNewestTextOrder)) + ")").c_str());
}

} // namespace merchantry::db::embedded
