#pragma once

#include "tests/reliability/shopfolder.h"
#include "tools/registersim/liveregister.h"
#include "tools/registersim/query.h"

#include <sys/wait.h>
#include <unistd.h>

namespace merchantry {

// How many receipts each register of a test posts.
inline int receiptsWanted() {
    const char* text = std::getenv("MERCHANTRY_RECEIPTS");
    return text != nullptr ? std::atoi(text) : 12;
}

inline std::string cell(const std::filesystem::path& file, const std::string& select) {
    return registersim::query(*db::Store::open(file)->session(), select).at(0).at(0).toScriptText();
}

// One register in a process of its own, as in a shop: exit code 0 when every receipt was posted.
inline pid_t startRegister(const std::filesystem::path& file, int number, int receipts) {
    const pid_t child = fork();
    if (child != 0)
        return child;
    const std::string failed = saidBy([&] {
        registersim::LiveRegister till(db::Store::open(file)->session(), number, static_cast<std::uint64_t>(number));
        for (int posted = 0; posted < receipts;)
            posted += till.postOne(*Date::fromParts(2026, 11, 21, 16)) ? 1 : 0;
    });
    if (!failed.empty() && write(STDERR_FILENO, failed.data(), failed.size()) < 0)
        _exit(2);
    _exit(failed.empty() ? 0 : 1);
}

} // namespace merchantry
