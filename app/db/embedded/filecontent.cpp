#include "app/db/embedded/filecontent.h"

#include "app/db/dberror.h"

#include <fstream>
#include <memory>
#include <vector>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace merchantry::db {
namespace {

constexpr std::size_t kBlock = 1024 * 1024; // bytes

} // namespace

std::uint64_t contentOf(const std::filesystem::path& file) {
    const std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> state(XXH3_createState(), &XXH3_freeState);
    XXH3_64bits_reset(state.get());
    std::ifstream stream(file, std::ios::binary);
    std::vector<char> block(kBlock);
    while (stream) {
        stream.read(block.data(), static_cast<std::streamsize>(block.size()));
        XXH3_64bits_update(state.get(), block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (!stream.eof())
        throw DbError(DbError::Category::Storage, 0, file.string() + " cannot be read to its end.");
    return XXH3_64bits_digest(state.get());
}

} // namespace merchantry::db
