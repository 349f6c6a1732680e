#pragma once

#include "app/db/session.h"

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <vector>

namespace merchantry::db::embedded {

struct AnswerCounts {
    int passed = 0;
    int failed = 0;
    int refused = 0; // ended with an error that names what is not supported

    AnswerCounts& operator+=(const AnswerCounts& other) {
        passed += other.passed;
        failed += other.failed;
        refused += other.refused;
        return *this;
    }
};

// Gives a session on an empty store; the one given before goes.
using FreshSession = std::function<Session&()>;

// Runs files of recorded answers, each on an empty store of its own, and writes what differs, block by block.
// Throws std::runtime_error for a file that cannot be read or is not of the format.
AnswerCounts checkAnswers(const std::vector<std::filesystem::path>& files, std::ostream& out);
// The same on other stores than those of this process.
AnswerCounts checkAnswers(const std::vector<std::filesystem::path>& files, std::ostream& out, const FreshSession& fresh);

} // namespace merchantry::db::embedded
