#include "base/errortext.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace merchantry {
namespace {

TEST(SentenceOf, TellsAFileAndTheReasonWithoutTheSystemsOwnWords) {
    const std::filesystem::filesystem_error error("cannot open file", "/shop/a.store", std::make_error_code(std::errc::permission_denied));
    EXPECT_EQ(sentenceOf(error), "/shop/a.store cannot be used: Permission denied.");
    EXPECT_EQ(sentenceOf(std::runtime_error("The price is not a number.")), "The price is not a number.");
}

} // namespace
} // namespace merchantry
