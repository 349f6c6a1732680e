#include "app/db/tsql/parser.h"

#include <cstddef>
#include <cstdint>

// Any bytes at all are either a batch or an error; nothing else may come of them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const bool quoted : {true, false}) {
        try {
            merchantry::db::tsql::parseBatch(text, quoted);
        } catch (const merchantry::db::DbError&) {
        }
    }
    return 0;
}
