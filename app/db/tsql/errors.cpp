#include "app/db/tsql/errors.h"

#include "app/db/nativeerrors.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace merchantry::db::tsql {

namespace {

constexpr int kSyntaxSeverity = 15;
constexpr int kSeverity = 16;

// Every number that the engine raises has its place in the table of categories.
DbError known(int number, const std::string& message, int line, int severity) {
    assert(categoryOf(number) != DbError::Category::Other);
    return serverError(number, message, line).withSeverity(severity, 1);
}

} // namespace

DbError syntaxError(int number, const std::string& message, int line) {
    return known(number, message, line, kSyntaxSeverity);
}

DbError nameError(int number, const std::string& message, int line) {
    return known(number, message, line, kSeverity);
}

DbError typeError(int number, const std::string& message, int line) {
    return known(number, message, line, kSeverity);
}

DbError valueError(int number, const std::string& message) {
    return known(number, message, 0, kSeverity);
}

DbError unsupported(const std::string& feature, int line) {
    return DbError(DbError::Category::Unsupported, 0, "Not supported by the embedded store: " + feature + ".", line).withSeverity(16, 1);
}

bool endsBatch(int number) {
    static constexpr std::array<int, 11> kNumbers = {235, 241, 242, 244, 245, 248, 293, 295, 296, 8114, 8169};
    return std::find(kNumbers.begin(), kNumbers.end(), number) != kNumbers.end();
}

} // namespace merchantry::db::tsql
