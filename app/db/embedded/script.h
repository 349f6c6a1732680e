#pragma once

#include "app/db/session.h"

#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db::embedded {

// A batch of a script, and the line of the script on which it begins.
struct ScriptBatch {
    std::string text;
    int line = 1;
    int times = 1; // GO 5
};

// The batches between the lines that hold nothing but GO. A GO inside a text or comment parts nothing. Batches of blanks are left out.
// Text behind the mark of UTF-16 is that, in either order; text that is no UTF-8 is taken for Windows-1252.
std::vector<ScriptBatch> batchesOf(std::string_view saved);

// Runs a script batch by batch and stops at the first batch with an error, which it throws; its line is then that of the script.
void runScript(Session& session, std::string_view script);
void runScript(Session& session, std::string_view script, ResultSink& sink);

} // namespace merchantry::db::embedded

namespace merchantry::db {
using embedded::runScript;
} // namespace merchantry::db
