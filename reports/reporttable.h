#pragma once

#include <string_view>

namespace merchantry::reports {

// What a report key means. Keys are exact and case-sensitive.
struct ReportKey {
    const char* key;
    const char* file; // in the folder of reports; empty for a key without one
    bool viewerTools = true;
    bool fifthTool = false;
};

// Null for a key that the table does not know.
const ReportKey* reportKey(std::string_view key);

} // namespace merchantry::reports
