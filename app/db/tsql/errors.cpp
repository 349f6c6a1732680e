#include "app/db/tsql/errors.h"

#include <algorithm>
#include <array>

namespace merchantry::db::tsql {

DbError unsupported(const std::string& feature, int line) {
    return DbError(DbError::Category::Unsupported, 0, "Not supported by the embedded store: " + feature + ".", line).withSeverity(16, 1);
}

bool endsBatch(int number) {
    static constexpr std::array<int, 11> kNumbers = {235, 241, 242, 244, 245, 248, 293, 295, 296, 8114, 8169};
    return std::find(kNumbers.begin(), kNumbers.end(), number) != kNumbers.end();
}

} // namespace merchantry::db::tsql
