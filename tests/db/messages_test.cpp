#include "app/db/messages.h"

#include <gtest/gtest.h>

namespace merchantry::db {
namespace {

// A name may hold the sign that marks a place.
TEST(Messages, FillTheirPlacesInOrder) {
    const DbError error = serverMessage(Message::ColumnTwice, {"100%", "%s %"}, 7);
    EXPECT_STREQ(error.what(),
                 "Column names in each table must be unique. Column name '100%' in table '%s %' is specified more than once.");
    EXPECT_EQ(error.native(), 2705);
    EXPECT_EQ(error.line(), 7);
    EXPECT_EQ(error.category(), DbError::Category::Name);
}

TEST(Messages, KnowTheirCategoryAndSeverity) {
    EXPECT_EQ(serverMessage(Message::IncorrectSyntax, {"x"}).severity(), 15);
    EXPECT_EQ(serverMessage(Message::DivideByZero).severity(), 16);
    const std::pair<int, DbError::Category> others[] = {
        {1205, DbError::Category::Busy},    {9002, DbError::Category::Storage}, {kUnnamedError, DbError::Category::Syntax},
        {50001, DbError::Category::Raised}, {17142, DbError::Category::Other},  {1, DbError::Category::Other},
    };
    for (const auto& [number, category] : others)
        EXPECT_EQ(categoryOf(number), category) << number;
}

} // namespace
} // namespace merchantry::db
