#pragma once

#include <filesystem>
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

// Runs files of recorded answers, each on an empty store of its own, and writes what differs, block by block.
// Throws std::runtime_error for a file that cannot be read or is not of the format.
AnswerCounts checkAnswers(const std::vector<std::filesystem::path>& files, std::ostream& out);

} // namespace merchantry::db::embedded
