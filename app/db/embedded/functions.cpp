#include "app/db/embedded/functions.h"
#include "app/db/embedded/text_order.h"

#include "app/db/tsql/errors.h"

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
        failWith(context, registered.host, serverError(Message::ArithmeticOverflow, error.what()));
    }
}

void destroy(void* registered) {
    delete static_cast<Registered*>(registered);
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

void registerFunctions(sqlite3* db, FunctionHost& host) {
    registerCollations(db, textOrderOf(db));
    registerTextFunctions(db, host);
    registerLikeFunctions(db, host);
    registerMathFunctions(db, host);
    registerDateFunctions(db, host);
    registerConvertFunctions(db, host);
    registerSystemFunctions(db, host);
    registerAggregates(db, host);
}

} // namespace merchantry::db::embedded
