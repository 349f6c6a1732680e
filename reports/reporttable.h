#pragma once

#include <optional>
#include <string_view>

namespace merchantry::reports {

// What a report key means. Keys are exact and case-sensitive.
struct ReportKey {
    const char* key;
    const char* file; // in the folder of reports; empty for a key without one
    bool viewerTools = true;
    bool fifthTool = false;
};

// Nothing for a key that no report has.
std::optional<ReportKey> reportKey(std::string_view key);

} // namespace merchantry::reports
