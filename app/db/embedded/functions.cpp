#include "app/db/embedded/functions.h"

#include "app/db/tsql/errors.h"
#include "base/text.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace merchantry::db::embedded {
namespace {

// What SQLite keeps for a registered function.
struct Registered {
    FunctionEntry entry;
    FunctionHost& host;
};

void run(sqlite3_context* context, int count, sqlite3_value** values) {
    const auto& registered = *static_cast<Registered*>(sqlite3_user_data(context));
    const Call call{context, count, values, registered.host};
    if (registered.entry.nullForNull && call.anyNull())
        return sqlite3_result_null(context);
    try {
        registered.entry.body(call);
    } catch (const DbError& error) {
        failWith(context, registered.host, error);
    } catch (const std::exception& error) {
        failWith(context, registered.host, tsql::valueError(8115, error.what()));
    }
}

void destroy(void* registered) {
    delete static_cast<Registered*>(registered);
}

constexpr bool isWide(unsigned char c) {
    return (c & 0x80U) != 0;
}

constexpr unsigned char lowered(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + 32) : c;
}

// Without case and trailing blanks.
int compareCaseless(void*, int leftSize, const void* leftData, int rightSize, const void* rightData) {
    const auto* left = static_cast<const unsigned char*>(leftData);
    const auto* right = static_cast<const unsigned char*>(rightData);
    while (leftSize > 0 && left[leftSize - 1] == ' ')
        --leftSize;
    while (rightSize > 0 && right[rightSize - 1] == ' ')
        --rightSize;
    const int common = std::min(leftSize, rightSize);
    for (int i = 0; i < common; ++i) {
        const unsigned char a = left[i];
        const unsigned char b = right[i];
        if (a == b)
            continue;
        if (isWide(a) || isWide(b))
            return compareText({static_cast<const char*>(leftData), static_cast<std::size_t>(leftSize)},
                               {static_cast<const char*>(rightData), static_cast<std::size_t>(rightSize)});
        const int difference = lowered(a) - lowered(b);
        if (difference != 0)
            return difference;
    }
    return leftSize - rightSize;
}

int compareCased(void*, int leftSize, const void* leftData, int rightSize, const void* rightData) {
    const std::string_view left = trimmedRight({static_cast<const char*>(leftData), static_cast<std::size_t>(leftSize)});
    const std::string_view right = trimmedRight({static_cast<const char*>(rightData), static_cast<std::size_t>(rightSize)});
    const int caseless = compareText(left, right);
    return caseless != 0 ? caseless : right.compare(left); // small letters before capitals
}

int compareBytes(void*, int leftSize, const void* leftData, int rightSize, const void* rightData) {
    const std::string_view left = trimmedRight({static_cast<const char*>(leftData), static_cast<std::size_t>(leftSize)});
    const std::string_view right = trimmedRight({static_cast<const char*>(rightData), static_cast<std::size_t>(rightSize)});
    return left.compare(right);
}

} // namespace

bool Call::anyNull() const {
    for (int i = 0; i < count; ++i) {
        if (isNull(i))
            return true;
    }
    return false;
}

std::string_view Call::text(int index) const {
    const auto* data = reinterpret_cast<const char*>(sqlite3_value_text(values[index]));
    return {data ? data : "", static_cast<std::size_t>(sqlite3_value_bytes(values[index]))};
}

void failWith(sqlite3_context* context, FunctionHost& host, const DbError& error) {
    if (!host.failure)
        host.failure = error;
    sqlite3_result_error(context, error.what(), -1);
}

void registerEntries(sqlite3* db, FunctionHost& host, const FunctionEntry* entries, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const int flags = SQLITE_UTF8 | (entries[i].pure ? SQLITE_DETERMINISTIC : 0);
        auto registered = std::make_unique<Registered>(Registered{entries[i], host});
        if (sqlite3_create_function_v2(db, entries[i].name, entries[i].count, flags, registered.release(), run, nullptr, nullptr,
                                       destroy) != SQLITE_OK)
            throw DbError(DbError::Category::Storage, 0, sqlite3_errmsg(db));
    }
}

void registerCollations(sqlite3* db) {
    sqlite3_create_collation_v2(db, "ts", SQLITE_UTF8, nullptr, compareCaseless, nullptr);
    sqlite3_create_collation_v2(db, "ts_cs", SQLITE_UTF8, nullptr, compareCased, nullptr);
    sqlite3_create_collation_v2(db, "ts_bin", SQLITE_UTF8, nullptr, compareBytes, nullptr);
}

void registerFunctions(sqlite3* db, FunctionHost& host) {
    registerCollations(db);
    registerTextFunctions(db, host);
    registerLikeFunctions(db, host);
    registerMathFunctions(db, host);
    registerDateFunctions(db, host);
    registerConvertFunctions(db, host);
    registerSystemFunctions(db, host);
    registerAggregates(db, host);
}

} // namespace merchantry::db::embedded
