#include "app/db/embedded/answers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace merchantry::db::embedded {
namespace {

// Recorded answers of a server. One block shows a spelling of money as text that the documentation of the language does not bear out.
TEST(Answers, areThoseOfAServer) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator("tests/db/answers")) {
        if (entry.path().extension() == ".tsql")
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    ASSERT_EQ(files.size(), 64U);
    std::ostringstream differences;
    const AnswerCounts counts = checkAnswers(files, differences);
    EXPECT_GE(counts.passed, 1187) << differences.str();
    EXPECT_LE(counts.failed, 1) << differences.str();
    EXPECT_EQ(counts.passed + counts.failed + counts.refused, 1189);
}

} // namespace
} // namespace merchantry::db::embedded
