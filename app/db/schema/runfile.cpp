#include "app/db/schema/runfile.h"

#include "base/textorder.h"

#include <string>

namespace merchantry::db {
namespace {

// What a file makes: "sp_GetPOID" of "procedures/sp_GetPOID.sql".
std::string_view objectOf(std::string_view file) {
    const std::string_view name = file.substr(file.find('/') + 1);
    return name.substr(0, name.rfind('.'));
}

// Lines of another procedure or trigger, which the text calls, are none of the file.
bool isOfThisText(const DbError& error, std::string_view file) {
    return error.line() > 0 && (error.procedure().empty() || sameText(error.procedure(), objectOf(file)));
}

} // namespace

void runFile(Session& session, std::string_view name, std::string_view text) {
    try {
        NoResult none;
        session.execute(text, none);
    } catch (const DbError& error) {
        const std::string line = isOfThisText(error, name) ? ", line " + std::to_string(error.line()) : "";
        throw DbError(error.category(), error.native(), std::string(name) + line + ": " + error.what(), error.line());
    }
}

} // namespace merchantry::db
