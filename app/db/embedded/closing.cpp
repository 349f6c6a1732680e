#include "app/db/embedded/closing.h"

#include "app/db/dberror.h"

namespace merchantry::db {
namespace {

// The store's own name behind links, which is the same for all.
std::filesystem::path noticeOf(const std::filesystem::path& store) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::weakly_canonical(store, error);
    return (error ? store : real).string() + ".closing";
}

platform::Notice made(const std::filesystem::path& store) try {
    return {noticeOf(store), "The store is being restored by process " + std::to_string(platform::ownProcess()) + ".\n"};
} catch (const std::filesystem::filesystem_error& error) {
    throw DbError(DbError::Category::Storage, 0,
                  "The other programs cannot be asked to close " + store.string() + " (" + error.code().message() +
                      "). Somebody else may be restoring it.");
}

} // namespace

AskedToClose::AskedToClose(const std::filesystem::path& store) : notice_(made(store)) {}

bool closingAsked(const std::filesystem::path& store) {
    return platform::noticeStands(noticeOf(store));
}

} // namespace merchantry::db
